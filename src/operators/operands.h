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

// The value of a leaf, which somebody holds; null for other children.
inline Matrix *peekLeaf(const PcNode *node) {
    if (node->kind == NodeKind::Variable) return getVarMat(static_cast<uint32_t>(node->value));
    return node->isConstant() ? node->constant : nullptr;
}

// The key of a table's entry. A running loop counter is read where it stands: who keeps it makes a copy.
inline bool isCounterKey(const PcNode *entry) { return entry->child(1)->kind == NodeKind::CopyVar; }
inline Matrix *evalKey(PcNode *entry) {
    PcNode *key = entry->child(1);
    return isCounterKey(entry) ? getVarMat(static_cast<uint32_t>(key->value)) : key->exec(key);
}

// Both children are leaves that hold real scalars: the case to answer without any call.
inline bool peekRealScalars(const PcNode *left, const PcNode *right, double &x, double &y) {
    const Matrix *a = peekLeaf(left);
    if (!a || a->l1type != L1::RS) return false;
    const Matrix *b = peekLeaf(right);
    if (!b || b->l1type != L1::RS) return false;
    x = *a->rdata;
    y = *b->rdata;
    return true;
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

// Releases both operands. In x * x++ they are one record, the one that x held.
inline void releasePair(Matrix *a, Matrix *b) {
    if (b != a) releaseMat(b);
    releaseMat(a);
}

// Releases the operands, one of which may be the result.
inline Matrix *releaseOperands(Matrix *result, Matrix *a, Matrix *b) {
    keepResult(result);
    releasePair(a, b);
    return passResult(result);
}

}  // namespace vesko
