// From node kind to handler: the table, the statement loop, argument lists, and the wrappers that set and
// show `ans`.
#include <cassert>

#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "values/containers.h"
#include "values/display.h"

namespace vesko {

ExecFn pcOprn[n_node_kinds];

void setTreeOprnFunc() {
    for (ExecFn &handler : pcOprn) handler = noHandler;
#define OP(number, name, handler, label, priority) pcOprn[number] = handler;
#include "engine/node_kinds.def"
#undef OP
}

// ---- Walking

void exec_func() {
    // `top` is read afresh at every turn: a handler may change the frame.
    while (PcNode *pc = top->pc) {
        countNode();
        pc->exec(pc);
    }
}

void getTreeVal(PcNode *root) {
    guardStack();
    top->pc = root;
    exec_func();
}

// ---- Argument lists. The list holds each value as soon as it is there, so that a later argument cannot free
// it and a failure leaves a well-formed list.

Matrix *evalArgList(PcNode *node) {
    guardStack();
    if (node->ncub == 0) return theEmptyMat();
    if (node->ncub == 1) return node->child(0)->kind == NodeKind::Atom ? newVListMat(0) : node->eval(0);
    Matrix *list = newVListMat(node->ncub);
    for (uint32_t k = 0; k < node->ncub; k++) addListEntry(list, node->eval(k));
    return list;
}

Matrix *evalArgVec(PcNode *node) {
    guardStack();
    Matrix *list = newListMat(node->ncub);
    for (uint32_t k = 0; k < node->ncub; k++) addListEntry(list, node->eval(k));
    return list;
}

Matrix *evalNpArgVec(PcNode *node) {
    guardStack();
    Matrix *list = newListMat(node->ncub);
    for (uint32_t k = 0; k < node->ncub; k++) addListEntry(list, node->child(k)->eval(0));
    return list;
}

// ---- Handlers without a room of their own

Matrix *doNothing(PcNode *) { return theNullMat(); }

Matrix *pickupMat(PcNode *node) { return node->constant; }

// Kinds that only the parser sees.
Matrix *noHandler(PcNode *node) { error_no_handler(node, index(node->kind), opr2str(node->kind)); }

// ---- Setting and showing `ans`. Each wrapper has one child; `value` is the variable `ans`.

Matrix *setCubToAns(PcNode *node) { return updVar(node->value, node->eval(0)); }

// The child is an assignment: its target holds the value.
Matrix *dispAnsValue(PcNode *node) { return dispMat(node->eval(0)); }

Matrix *setAnsDispCubValue(PcNode *node) { return dispMat(updVar(node->value, node->eval(0))); }

Matrix *throwAnsDispCubValue(PcNode *node) {
    Matrix *m = node->eval(0);
    dispMat(m);
    releaseMat(m);
    return theEmptyMat();
}

Matrix *throwCubValue(PcNode *node) {
    releaseMat(node->eval(0));
    return theEmptyMat();
}

}  // namespace vesko
