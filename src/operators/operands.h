// Evaluating and releasing the operands of a node.
#pragma once

#include "engine/frame.h"
#include "engine/node.h"
#include "engine/pins.h"

namespace vesko {

// A child whose evaluation is a mere look-up and changes nothing.
inline bool isLeaf(const PcNode *node) { return node->kind == NodeKind::Variable || node->isConstant(); }

// What exec does, without the call for the commonest leaves.
inline Matrix *evalOperand(PcNode *node) {
    if (node->kind == NodeKind::Variable) return getVarMat(static_cast<uint32_t>(node->value));
    if (node->isConstant()) return node->constant;
    return node->exec(node);
}

// The right operand, evaluated while the left one is kept alive: evaluation may change the variable that
// holds it.
inline Matrix *evalBeside(Matrix *left, PcNode *right) {
    if (left->isTemp() || isLeaf(right)) return evalOperand(right);
    pinMat(left);
    Matrix *m = evalOperand(right);
    unpinMat();
    return m;
}

// Releases the operands, one of which may be the result.
inline Matrix *releaseOperands(Matrix *result, Matrix *a, Matrix *b) {
    keepResult(result);
    releaseMat(a);
    releaseMat(b);
    return passResult(result);
}

}  // namespace vesko
