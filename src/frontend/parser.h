// Expressions, targets of assignment, aggregates and definitions: token lists to nodes.
//
// A token list is consumed by its cut: it can be parsed once. Every failure is a parse error, shown by xMesg
// and ended by parseError; nothing returns a failure.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "frontend/token.h"

namespace vesko {

// ---- Expressions
PcNode *parseTokenList(Token *list);  // null for a null list
Opr splitTokenList(Token *list, Token *&left, Token *&right);
PcNode *makeNode(Opr op, Token *left, Token *right);  // left null: prefix use; right null: postfix use
PcNode *processTokenAtom(Token *token);
PcNode *newNumNode(double value, uint32_t line);
PcNode *newZNumNode(double value, uint32_t line);
PcNode *newBNumNode(double value, uint32_t line);
void setOpr(PcNode *node, Opr op);  // kind and handler, specialised where the operands allow
void setAsgnOpr(PcNode *node);      // a node that reads a place becomes one that assigns to it
Opr cmpasgn2opr(Opr op);
bool lv_has_par(const PcNode *node);
bool is_ds_var_node(const PcNode *node);  // a variable of the domain of real scalars
PcNode *copyIfProtected(PcNode *node);    // a running loop counter is read by copy

// ---- Targets of assignment. The c forms create the variable.
PcNode *getLValueNode(Token *tokens);
PcNode *getLvPrim(Token *tokens);
PcNode *cGetLValueNode(Token *tokens);
PcNode *cGetLValueNodeAtom(Token *tokens);
PcNode *cGetLvPrim(Token *tokens);

// ---- Aggregates and argument lists
uint32_t countParts(Token *list, TokenKind separator);
uint32_t countHoles(Token *list, TokenKind separator);
Token *readHead(Token *&list, TokenKind separator);
PcNode *parseMat(Token *list, uint32_t line);
PcNode *parseList(Token *list, uint32_t line);
PcNode *parseStruct(Token *list, uint32_t line);
PcNode *parseNpArgs(Token *list, uint32_t line);
PcNode *parseArgList(PcNode *base, Token *list);
enum class IndexMode : int { Assign = -1, Entry = 0, Read = 1 };
PcNode *makeMatRefNode(PcNode *base, Token *group, IndexMode mode);
PcNode *makeListEntryNode(PcNode *base, Token *tokens);
PcNode *makeHashEntryNode(PcNode *base, Token *tokens);
PcNode *topReference();  // the node that `$` stands for, or null
void resetRefStackPtr();

// ---- Definitions
PcNode *makeFunctionNode(InstNode *inst, uint32_t line);                    // function ... end
PcNode *makeOneLineFunctionNode(Token *left, Token *right, uint32_t line);  // x -> e
uint32_t findParameter(uint32_t symbol);
uint32_t findIntParameter(uint32_t symbol);
uint32_t findAnyParameter(uint32_t symbol);
PcNode *readClass(InstNode *inst);
PcNode *readConditional(InstNode *inst);
PcNode *readproc(InstNode *inst);

// ---- System commands: `cd "x"`
uint32_t findSyscmd(const char *name);
const char *getSyscmdName(uint32_t number);
PcNode *processSyscmd(uint32_t number, uint32_t count, Token *tokens);

// ---- Memory of the parse: texts live until the next command.
char *xstringCopy(const char *text);
char *xstringScan(const char *text);
char *xstringSQScan(const char *text);

}  // namespace vesko
