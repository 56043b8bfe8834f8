// Instructions: the first pass over a command finds the shape of its blocks, the second makes nodes.
#pragma once

#include <cstdint>

#include "frontend/token.h"

namespace vesko {

// Ids below 63 are keyword ids where such a keyword exists.
enum class InstId : int32_t {
    If = 0,
    Elseif = 1,
    Else = 2,
    For = 3,
    While = 4,
    End = 5,
    Cases = 6,
    Break = 12,
    Continue = 13,
    Return = 14,
    Function = 15,
    Until = 17,
    Switch = 18,
    Case = 19,
    Unless = 20,
    Default = 21,
    Try = 23,
    Catch = 24,
    Throw = 25,
    IfElse = 28,
    IfChain = 29,
    IfChainElse = 30,
    SwitchDefault = 31,
    DoUntil = 32,
    DoWhile = 33,
    TailWhile = 34,
    TailUntil = 35,
    Class = 40,
    Yield = 52,
    Automaton = 55,
    Group = 56,
    Stop = 62,
    Simple = 63,
    InputDomains = 64,
    OutputDomains = 65,
    GatherResults = 66,
    DefaultReturn = 67,
    Conditional = 68,
    MakeObject = 71,
    EmptyHeader = 72,
    NoInst = -1
};

// A simple statement's token is its stop token, whose `next` points back to the first token of the statement.
struct InstNode {
    InstId id;
    uint32_t ncub;
    Token *token;
    InstNode **cub;
    InstNode *next;  // next instruction of the block
    InstNode *poolnext;
};

InstNode *newInstNode(InstId id, Token *token, uint32_t ncub);
void setInstID(InstNode *inst, InstId id);
void setInstCub(InstNode *inst, uint32_t k, InstNode *child);
void addInstCub(InstNode *inst, InstNode *child);
uint32_t instLine(const InstNode *inst);  // of its first token; 0 for instructions without source
void recycleInstLib();

InstNode *getInstNode();            // the next instruction
InstNode *getInstBlock(InstId id);  // head and body of a block whose keyword was read
InstNode *getClassBlock();          // one child: the first item, or null
InstNode *getClubBlock();           // likewise
InstNode *getProcBlock(InstId id);  // header (EmptyHeader if there is none) and body
InstNode *transformInstructList(InstNode *list);
PcNode *buildPcTree();  // tree of the next instruction
PcNode *buildFuncCodeTree(InstNode *list);
PcNode *buildPcList(InstNode *list, PcNode *head, PcNode *after, PcNode *continue_to, PcNode *break_to);
void buildPcNode(InstNode *inst, PcNode *node, PcNode *after, PcNode *continue_to, PcNode *break_to);
PcNode *makeTopPcNode(InstNode *inst);

uint32_t getLoopDepth();
void incLoopDepth();
void decLoopDepth();
void resetLoopDepth();
void incBlockDepth();
void decBlockDepth();
void resetBlockDepth();

}  // namespace vesko
