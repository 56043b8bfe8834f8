// Functions as operands: what the operators make of them.
#include "builtins/function_algebra.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "operators/ladder.h"
#include "operators/operands.h"

namespace vesko {

// ---- Calls

static Matrix *callPinned(Matrix *f, Matrix *argument, PcNode *node) {
    if (f->l2type == L2::BF) return callBf(f->builtin(), argument, node);
    const bool spreads = isList(argument->l2type) || argument->l2type == L2::NUL;
    return spreads ? callUfByList(f->func(), argument, node) : callUfByMat(f->func(), argument, node);
}

// The call may change the variables that hold the function and the argument.
Matrix *callFunction(Matrix *f, Matrix *argument, PcNode *node) {
    pinMat(f);
    pinMat(argument);
    Matrix *result = callPinned(f, argument, node);
    unpinMat();
    unpinMat();
    return result;
}

// ---- Steps

Matrix *functionSum(Arith op, Matrix *a, Matrix *b, PcNode *) {
    return op == Arith::Sum ? newFPlusBfMat(a, b) : newFMinusBfMat(a, b);
}

Matrix *functionProduct(Arith, Matrix *a, Matrix *b, PcNode *node) {
    if (isFunction(a->l2type) && !isFunction(b->l2type)) return callFunction(a, b, node);
    return newFCompBfMat(a, b);
}

// The left quotient has its right operand first.
Matrix *functionQuotient(Arith op, Matrix *a, Matrix *b, PcNode *) {
    return op == Arith::Dvd ? newFAdvBfMat(a, b) : newFBslBfMat(b, a);
}

// ---- The operators on functions alone: one operand at least is a function

template <Matrix *(*construct)(Matrix *, Matrix *)>
static Matrix *functionOfTrees(PcNode *node) {
    guardStack();
    Matrix *a = evalOperand(node->child(0));
    Matrix *b = evalBeside(a, node->child(1));
    if (!isFunction(a->l2type) && !isFunction(b->l2type)) error_undef_opr2(node);
    return releaseOperands(construct(a, b), a, b);
}

Matrix *getTreeFuncMul(PcNode *node) { return functionOfTrees<newFAmuBfMat>(node); }
Matrix *getTreeFuncDiv(PcNode *node) { return functionOfTrees<newFAdvBfMat>(node); }
Matrix *getTreeCompo(PcNode *node) { return functionOfTrees<newFCompBfMat>(node); }

}  // namespace vesko
