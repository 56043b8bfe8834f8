// Node handlers of the arithmetic operators.
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "numerics/complex_scalar.h"
#include "operators/elementwise.h"
#include "operators/operands.h"
#include "operators/plain.h"
#include "values/pools.h"

namespace vesko {

// The result of two real scalars goes into a temporary operand if there is one.
template <class Op>
static inline Matrix *realScalars(Matrix *a, Matrix *b) {
    const double x = Op::apply(*a->rdata, *b->rdata);
    Matrix *r = a->isTemp() ? a : b;
    if (!r->isTemp()) return newRealScalarMat(x);
    *r->rdata = x;
    if (r == a && b != a) releaseMat(b);
    return r;
}

template <const BinaryFn *table, class RealScalarOp>
[[gnu::noinline]] static Matrix *operateOnTrees(PcNode *node, PcNode *left, PcNode *right) {
    guardStack();
    Matrix *a = evalOperand(left);
    Matrix *b = evalBeside(a, right);
    if constexpr (!std::is_void_v<RealScalarOp>)
        if (a->l1type == L1::RS && b->l1type == L1::RS) return realScalars<RealScalarOp>(a, b);
    return releaseOperands(table[pairIndex(a, b)](a, b, node), a, b);
}

template <const BinaryFn *table, class RealScalarOp = void>
static inline Matrix *operate(PcNode *node, PcNode *left, PcNode *right) {
    double x, y;
    if constexpr (!std::is_void_v<RealScalarOp>)
        if (peekRealScalars(left, right, x, y)) return makeRealScalar(RealScalarOp::apply(x, y));
    return operateOnTrees<table, RealScalarOp>(node, left, right);
}

template <const BinaryFn *table, class RealScalarOp = void>
static Matrix *evalBinary(PcNode *node) {
    return operate<table, RealScalarOp>(node, node->child(0), node->child(1));
}

// The right factor stands in a list node, which with one child evaluates to that child.
template <const BinaryFn *table>
static Matrix *evalProduct(PcNode *node) {
    PcNode *right = node->child(1);
    if (right->kind == NodeKind::List && right->ncub == 1) right = right->child(0);
    return operate<table, Mpy>(node, node->child(0), right);
}

Matrix *getTreeSum(PcNode *node) { return evalBinary<sumfun, Sum>(node); }
Matrix *getTreeSub(PcNode *node) { return evalBinary<subfun, Sub>(node); }
Matrix *getTreeProduct(PcNode *node) { return evalProduct<mpyfun>(node); }
Matrix *getTreeSlash(PcNode *node) { return evalBinary<dvdfun, Dvd>(node); }
Matrix *getTreeDmu(PcNode *node) { return evalBinary<dmufun>(node); }
Matrix *getTreeDdv(PcNode *node) { return evalBinary<ddvfun>(node); }
Matrix *getTreeDpw(PcNode *node) { return evalBinary<dpwfun>(node); }
Matrix *getTreeMod(PcNode *node) { return evalBinary<modfun, Mod>(node); }
Matrix *getTreeQSum(PcNode *node) { return evalBinary<qsumfun, Sum>(node); }
Matrix *getTreeQSub(PcNode *node) { return evalBinary<qsubfun, Sub>(node); }
Matrix *getTreeQProd(PcNode *node) { return evalProduct<qmpyfun>(node); }

// The table takes the right operand first.
Matrix *getTreeBsl(PcNode *node) {
    guardStack();
    Matrix *a = evalOperand(node->child(0));
    Matrix *b = evalBeside(a, node->child(1));
    return releaseOperands(getMatBsl(a, b, node), a, b);
}

Matrix *getTreeNegative(PcNode *node) {
    guardStack();
    Matrix *m = evalOperand(node->child(0));
    Matrix *r = keepResult(getMatNeg(m, node));
    releaseMat(m);
    return passResult(r);
}

Matrix *getTreeTrans(PcNode *node) {
    guardStack();
    Matrix *m = evalOperand(node->child(0));
    Matrix *r = getMatTrs(m, node);
    if (r != m) releaseMat(m);
    return r;
}

// ---- Two real scalars that the parser knows: V a variable whose domain admits nothing else, M a literal. An
// unset variable takes the general way.
static Matrix *variableOf(const PcNode *child) { return getVarMat(static_cast<uint32_t>(child->value)); }
static Matrix *literalOf(const PcNode *child) { return child->constant; }

template <class Op, auto left, auto right, ExecFn general>
static Matrix *evalScalars(PcNode *node) {
    const Matrix *a = left(node->child(0)), *b = right(node->child(1));
    if (a->l1type != L1::RS || b->l1type != L1::RS) [[unlikely]]
        return general(node);
    return newRealScalarMat(Op::apply(*a->rdata, *b->rdata));
}

#define BIND(name, Op)                                                                                   \
    Matrix *name##_VDS_VDS(PcNode *node) { return evalScalars<Op, variableOf, variableOf, name>(node); } \
    Matrix *name##_VDS_MDS(PcNode *node) { return evalScalars<Op, variableOf, literalOf, name>(node); }  \
    Matrix *name##_MDS_VDS(PcNode *node) { return evalScalars<Op, literalOf, variableOf, name>(node); }
BIND(getTreeSum, Sum)
BIND(getTreeSub, Sub)
BIND(getTreeProduct, Mpy)
BIND(getTreeSlash, Dvd)
#undef BIND

// ---- Powers. The parser marks a literal exponent: 2 and 3 are themselves, 12 is one half.
enum PowerMark : int32_t { square = 2, cube = 3, square_root = 12 };

template <class T>
static T smallPower(T x, int32_t n) {
    const T xx = Mpy::apply(x, x);
    return n == square ? xx : Mpy::apply(xx, x);
}

static Matrix *complexSmallPower(double a, double b, int32_t n) {
    if (n == square) return newCompScalarMat(a * a - b * b, 2.0 * a * b);
    if (n == square_root) {
        double re, im;
        cmpl_sqrt(a, b, re, im);
        return newCompScalarMat(re, im);
    }
    return newCompScalarMat((a * a - 3.0 * b * b) * a, (3.0 * a * a - b * b) * b);
}

static Matrix *scalarRoot(double x) {
    return x < 0.0 ? newCompScalarMat(0.0, std::sqrt(-x)) : newRealScalarMat(std::sqrt(x));
}

// The power by the mark alone, or null where the base has no short way.
static Matrix *markedPower(const Matrix *base, int32_t mark) {
    switch (base->l2type) {
        case L2::RS:
            return mark == square_root ? scalarRoot(*base->rdata)
                                       : newRealScalarMat(smallPower(*base->rdata, mark));
        case L2::IS:
            return mark == square_root ? scalarRoot(*base->ints())
                                       : newIntScalarMat(smallPower(*base->ints(), mark));
        case L2::CS: return complexSmallPower(*base->re()->rdata, *base->im()->rdata, mark);
        default: return nullptr;
    }
}

Matrix *getTreePow(PcNode *node) {
    if (node->value != square && node->value != cube && node->value != square_root)
        return evalBinary<powfun>(node);
    guardStack();
    Matrix *base = evalOperand(node->child(0));
    Matrix *power = markedPower(base, node->value);
    if (power) {
        releaseMat(base);
        return power;
    }
    Matrix *exponent = evalOperand(node->child(1));
    return releaseOperands(getMatPow(base, exponent, node), base, exponent);
}

}  // namespace vesko
