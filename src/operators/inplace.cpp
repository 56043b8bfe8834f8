// The in-place family: += -= *= /= on a variable. The target is the variable's value and has no other holder.
// Where its kind can hold the result the function writes into it; otherwise the value operator's result takes
// its place.
//
// The tables have no row for a target IS: it lies like an IM of one element and uses that row; for /= an RS
// uses the row of RM too. So a function of a matrix row can meet a scalar, and what leaves the buffer goes by
// the target's own tags.
#include "engine/frame.h"
#include "operators/elementwise.h"
#include "operators/plain.h"
#include "values/convert.h"

namespace vesko {

// A scalar operand as an element of the target: an integer target counts with the truncated real.
template <class C, L1 R>
static C operandAs(const Matrix *operand) {
    if constexpr (std::is_same_v<C, int32_t> && R == L1::RS)
        return truncToInt(*operand->rdata);
    else
        return static_cast<C>(*elementsOf<Element<R>>(operand));
}

template <class Op, L1 L, L1 R>
static Matrix *stepScalar(Matrix *target, const Matrix *operand, PcNode *node) {
    using C = Element<L>;
    const C x = operandAs<C, R>(operand);
    if constexpr (divides<Op> && std::is_same_v<C, int32_t>) refuseZeroDivisor(&x, 1, node);
    C *z = elementsOf<C>(target);
    if (target->length == 1)
        *z = Op::apply(*z, x);
    else
        loopVS<Op>(z, x, z, target->length);
    return target;
}

// A real scalar meets a matrix: the matrix, or a copy of one that is held, takes the result and the variable.
template <class Op>
static Matrix *growScalar(const Matrix *target, Matrix *operand, Variable *var) {
    Matrix *m = operand->isTemp() ? operand : cloneRM(operand);
    loopSV<Op>(*target->rdata, m->rdata, m->rdata, m->length);
    return updateVariable(var, m);
}

// Unequal shapes are undefined, but an integer matrix of another shape leaves a real one silently as it is;
// programs rely on both.
template <class Op, L1 L, L1 R>
static Matrix *stepMatrix(Matrix *target, const Matrix *operand, PcNode *node) {
    if (!sameShape(target, operand)) {
        if constexpr (L == L1::RM && R == L1::IM) return target;
        error_undef_opr2(node);
    }
    auto *z = elementsOf<Element<L>>(target);
    loopVV<Op>(z, elementsOf<Element<R>>(operand), z, target->length);
    return target;
}

template <BinaryFn general>
static Matrix *recompute(Matrix *target, Matrix *operand, Variable *var, PcNode *node) {
    return updateVariable(var, general(target, operand, node));
}

// Sums and differences.
template <class Op, BinaryFn general, L1 L, L1 R>
static Matrix *accumulate(Matrix *target, Matrix *operand, Variable *var, PcNode *node) {
    if constexpr (is_scalar<R>)
        return stepScalar<Op, L, R>(target, operand, node);
    else if constexpr (L == L1::RS && R == L1::RM)
        return growScalar<Op>(target, operand, var);
    else if constexpr (L == L1::RM || (L == L1::IM && R == L1::IM))
        return stepMatrix<Op, L, R>(target, operand, node);
    else
        return recompute<general>(target, operand, var, node);
}

// Products and quotients: those with a matrix operand cannot be done in their own buffer.
template <class Op, BinaryFn general, L1 L, L1 R>
static Matrix *scale(Matrix *target, Matrix *operand, Variable *var, PcNode *node) {
    if constexpr (is_scalar<R>)
        return stepScalar<Op, L, R>(target, operand, node);
    else if constexpr (L == L1::RS && R == L1::RM)
        return growScalar<Op>(target, operand, var);
    else
        return recompute<general>(target, operand, var, node);
}

#define IN_PLACE(op, rule, Op, general, L, R)                                           \
    Matrix *op##L##_##R(Matrix *target, Matrix *operand, Variable *var, PcNode *node) { \
        return rule<Op, general, L1::L, L1::R>(target, operand, var, node);             \
    }
#define BIND(R)                                      \
    IN_PLACE(add, accumulate, Sum, getMatSum, RS, R) \
    IN_PLACE(add, accumulate, Sum, getMatSum, RM, R) \
    IN_PLACE(add, accumulate, Sum, getMatSum, IM, R) \
    IN_PLACE(ded, accumulate, Sub, getMatSub, RM, R) \
    IN_PLACE(ded, accumulate, Sub, getMatSub, IM, R) \
    IN_PLACE(mul, scale, Mpy, getMatProduct, RS, R)  \
    IN_PLACE(mul, scale, Mpy, getMatProduct, RM, R)  \
    IN_PLACE(mul, scale, Mpy, getMatProduct, IM, R)  \
    IN_PLACE(div, scale, Dvd, getMatSlash, RM, R)    \
    IN_PLACE(div, scale, Dvd, getMatSlash, IM, R)
VESKO_PLAIN(BIND)
#undef BIND

// No dedRS_IS: an integer scalar taken from a real one goes through the value operator, as dedRS_IM does.
IN_PLACE(ded, accumulate, Sub, getMatSub, RS, RS)
IN_PLACE(ded, accumulate, Sub, getMatSub, RS, RM)
IN_PLACE(ded, accumulate, Sub, getMatSub, RS, IM)

}  // namespace vesko
