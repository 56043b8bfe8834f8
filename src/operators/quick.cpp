// The quick family: operators on results of other operators. They work in the buffer of a temporary operand
// where one can take the result, and do as the plain operator where none can.
#include <algorithm>

#include "numerics/kernels.h"
#include "operators/elementwise.h"
#include "operators/plain.h"

namespace vesko {

// The temporary that can take a result of `shape` with elements C, or null. The left one is preferred.
template <class C, L1 L, L1 R>
static Matrix *reusable(Matrix *a, Matrix *b, const Matrix *shape) {
    if constexpr (std::is_same_v<Element<L>, C>)
        if (a->isTemp() && sameShape(a, shape)) return a;
    if constexpr (std::is_same_v<Element<R>, C>)
        if (b->isTemp() && sameShape(b, shape)) return b;
    return nullptr;
}

template <class Op, L1 L, L1 R>
static Matrix *quick(Matrix *a, Matrix *b, PcNode *node) {
    using C = Common<Element<L>, Element<R>>;
    const auto *x = elementsOf<Element<L>>(a);
    const auto *y = elementsOf<Element<R>>(b);
    if constexpr (is_scalar<L> && is_scalar<R>) {
        const C z = Op::apply(static_cast<C>(*x), static_cast<C>(*y));
        Matrix *r = reusable<C, L, R>(a, b, a);
        if (!r) return newScalar<C>(z);
        *elementsOf<C>(r) = z;
        return r;
    } else {
        const Fit fit = is_scalar<L> || is_scalar<R> ? Fit::Flat : fitOf(a, b);
        Matrix *shape = is_scalar<L> ? b : shapeGiver(fit, a, b);
        Matrix *r = fit == Fit::None ? nullptr : reusable<C, L, R>(a, b, shape);
        if (!r) return elementwise<Op, L, R>(a, b, node);
        if constexpr (is_scalar<L>)
            loopSV<Op>(*x, y, elementsOf<C>(r), b->length);
        else if constexpr (is_scalar<R>)
            loopVS<Op>(x, *y, elementsOf<C>(r), a->length);
        else
            applyFit<Op>(fit, x, y, elementsOf<C>(r), r->nrows, r->ncols);
        return r;
    }
}

#define BIND(op, Op, L, R) \
    Matrix *q##op##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return quick<Op, L1::L, L1::R>(a, b, node); }
BIND(sum, Sum, RS, RS)
BIND(sum, Sum, RS, RM)
BIND(sum, Sum, RS, IS)
BIND(sum, Sum, RM, RS)
BIND(sum, Sum, RM, IS)
BIND(sum, Sum, RM, IM)
BIND(sum, Sum, IS, IS)
BIND(sum, Sum, IS, IM)
BIND(sum, Sum, IM, IS)
BIND(sum, Sum, IM, IM)
BIND(sub, Sub, RS, RS)
BIND(sub, Sub, RS, RM)
BIND(sub, Sub, RM, RS)
BIND(sub, Sub, RM, RM)
BIND(sub, Sub, IS, IS)
BIND(sub, Sub, IM, IS)
BIND(sub, Sub, IM, IM)
BIND(mpy, Mpy, RS, RS)
BIND(mpy, Mpy, RS, RM)
BIND(mpy, Mpy, RM, RS)
BIND(mpy, Mpy, IS, IS)
BIND(mpy, Mpy, IM, IS)
#undef BIND

// Shapes that do not fit are an undefined operation here, and a size error in the plain sum; programs rely on
// both.
Matrix *qsumRM_RM(Matrix *a, Matrix *b, PcNode *node) {
    if (fitOf(a, b) == Fit::None) error_undef_opr2(node);
    return quick<Sum, L1::RM, L1::RM>(a, b, node);
}

// A square factor leaves the shape of the other one: small products run in the temporary's own buffer, row by
// row or column by column. Large ones are faster in a fresh buffer.
constexpr uint32_t largest_in_place = 32;

Matrix *qmpyRM_RM(Matrix *a, Matrix *b, PcNode *node) {
    if (a->ncols != b->nrows || a == b || a->ncols > largest_in_place) return mpyRM_RM(a, b, node);
    double scratch[largest_in_place];
    if (a->isTemp() && b->isSquare()) {
        matmul_AEAB(a->rdata, b->rdata, a->nrows, b->nrows, scratch);
        return a;
    }
    if (b->isTemp() && a->isSquare()) {
        matmul_BEAB(a->rdata, b->rdata, a->nrows, b->ncols, scratch);
        return b;
    }
    return mpyRM_RM(a, b, node);
}

}  // namespace vesko
