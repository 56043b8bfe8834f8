// The pseudo-code tree: node record, node kinds, and the table from kind to handler.
//
// A node carries the function that evaluates it. An expression handler evaluates its children through their
// `exec` and returns a borrowed Matrix (values/matrix.h tells the law of links). A statement handler returns
// null and leaves the next statement in top->pc. Handlers report errors by error_* functions, which do not
// return: so a handler owns nothing but pool records.
#pragma once

#include <array>
#include <cstdint>

#include "values/fault.h"

namespace vesko {

struct Matrix;
struct PcNode;
struct Pod;

// Node kinds and operators share one numbering.
enum class NodeKind : uint32_t {
#define OP(number, name, handler, label, priority) name = number,
#include "engine/node_kinds.def"
#undef OP
};
using Opr = NodeKind;
constexpr unsigned n_node_kinds = 208;
constexpr unsigned index(NodeKind k) { return static_cast<unsigned>(k); }

// "Not found" and "no value", throughout.
constexpr int32_t no_value = 0x7FFFFFFF;

using ExecFn = Matrix *(*)(PcNode *);

struct PcNode {
    NodeKind kind;
    int32_t value;  // what the kind says: a variable, global, field, built-in, ...; or no_value
    uint32_t ncub;  // number of children
    uint32_t line;  // source line, for messages
    Matrix *file;   // linked: name of the source file; not a string for the console
    ExecFn exec;
    union {
        PcNode **cub;      // the children
        Matrix *constant;  // kind Constant: the value, linked
    };
    PcNode *next;     // next statement
    PcNode *libnext;  // chain of the owner's nodes, or of the free ones

    PcNode *child(uint32_t i) const { return cub[i]; }
    Matrix *eval(uint32_t i) const {
        countNode();
        return cub[i]->exec(cub[i]);
    }
    bool isConstant() const { return kind == NodeKind::Constant; }
};

// ---- Making nodes. A node belongs to the compile scope that is open when it is made.
PcNode *newPcNode(NodeKind kind, int32_t value, uint32_t ncub, uint32_t line);
void setPcNode(PcNode *node, NodeKind kind, int32_t value, uint32_t ncub);  // re-targets an existing node
PcNode *newMatPcNode(Matrix *constant, uint32_t line);                      // links the constant
void setPcCub(PcNode *node, uint32_t k, PcNode *child);
void addPcCub(PcNode *node, PcNode *child);  // grows the children by one
void recyclePcLib(PcNode *chain);            // gives a whole chain back; file links are dropped
void recycleSMPcLib(PcNode *chain);          // the same for constant nodes; constants are dropped too
uint32_t getPcNodesCount();
void auditNodes(const PcNode *chain);  // for the audit of links: files and constants

// ---- The table.
extern ExecFn pcOprn[n_node_kinds];
void setTreeOprnFunc();
const char *opr2str(Opr op);
extern const std::array<int8_t, n_node_kinds> opr_priority;
inline int thePriorityOf(Opr op) { return opr_priority[index(op)]; }
bool isBinary(Opr op);

// ---- Walking.
void exec_func();               // runs statements until top->pc is null
void getTreeVal(PcNode *root);  // the entry from outside
Matrix *evalArgList(PcNode *node);
Matrix *evalArgVec(PcNode *node);
Matrix *evalNpArgVec(PcNode *node);

// ---- Source text of a node, for messages and for printing functions: a string, temporary.
Matrix *pcnode2str(PcNode *node);

}  // namespace vesko
