// Even spaced vectors: what keeps them two stored numbers, and what makes them dense.
#include "operators/ladder.h"
#include "values/convert.h"

namespace vesko {

static Matrix *rangeLike(const Matrix *m, double first, double step) {
    return newRngMat(m->nrows, m->ncols, first, step);
}

static double numberOf(const Matrix *scalar) {
    return scalar->l1type == L1::RS ? scalar->rdata[0] : scalar->ints()[0];
}

// The product with a range whose elements are all equal is even spaced; so is the quotient by such a range.
static bool staysRange(Arith op, const Matrix *a, const Matrix *b) {
    if (!sameShape(a, b)) return false;
    switch (op) {
        case Arith::Sum:
        case Arith::Sub: return true;
        case Arith::Dmu: return a->step() == 0 || b->step() == 0;
        case Arith::Ddv: return b->step() == 0;
        default: return false;
    }
}

Matrix *rangePair(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    if (!staysRange(op, a, b)) return asReals(op, a, b, node);
    const double x = a->first(), y = b->first();
    switch (op) {
        case Arith::Sum: return rangeLike(a, x + y, a->step() + b->step());
        case Arith::Sub: return rangeLike(a, x - y, a->step() - b->step());
        case Arith::Ddv: return rangeLike(a, x / y, a->step() / y);
        default: return rangeLike(a, x * y, b->step() == 0 ? a->step() * y : x * b->step());
    }
}

// A matrix plus or minus a range of its shape, the sum taken in the order of the terms m, first, k * step.
template <class Op>
static Matrix *matrixWithRange(const Matrix *a, const Matrix *b) {
    const bool range_left = a->l2type == L2::RNG;
    const Matrix *range = range_left ? a : b;
    const double first = range->first(), step = range->step();
    const double *m = (range_left ? b : a)->rdata;
    Matrix *result = allocRealMat(range->length, range->nrows, range->ncols);
    double *z = result->rdata;
    if (range_left)
        for (uint32_t k = 0; k < range->length; k++) z[k] = Op::apply(first + k * step, m[k]);
    else
        for (uint32_t k = 0; k < range->length; k++) z[k] = Op::apply(Op::apply(m[k], first), k * step);
    return result;
}

static Matrix *rangeScalar(Arith op, const Matrix *a, const Matrix *b) {
    const bool range_left = a->l2type == L2::RNG;
    const Matrix *range = range_left ? a : b, *scalar = range_left ? b : a;
    const double s = numberOf(scalar);
    if (op == Arith::Sum) return rangeLike(range, range->first() + s, range->step());
    if (op == Arith::Sub && range_left) return rangeLike(range, range->first() - s, range->step());
    if (op == Arith::Sub) return rangeLike(range, s - range->first(), -range->step());
    if (scalar->l1type == L1::IS && s == 0) return newZerosMat(range->nrows, range->ncols);
    return rangeLike(range, range->first() * s, range->step() * s);
}

Matrix *rangeNumber(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const Matrix *other = a->l2type == L2::RNG ? b : a;
    if (other->length == 1) return rangeScalar(op, a, b);
    if (other->l1type != L1::RM || op == Arith::Mpy || !sameShape(a, b)) return asReals(op, a, b, node);
    return op == Arith::Sum ? matrixWithRange<Sum>(a, b) : matrixWithRange<Sub>(a, b);
}

}  // namespace vesko
