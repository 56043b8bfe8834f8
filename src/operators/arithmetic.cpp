// Sum, difference, element-wise product and quotient, and remainder of the plain families; products and
// quotients with a scalar on either side.
#include "operators/elementwise.h"
#include "operators/plain.h"

namespace vesko {

#define BIND(L, R)                                             \
    Matrix *sum##L##_##R(Matrix *a, Matrix *b, PcNode *node) { \
        return elementwise<Sum, L1::L, L1::R>(a, b, node);     \
    }                                                          \
    Matrix *sub##L##_##R(Matrix *a, Matrix *b, PcNode *node) { \
        return elementwise<Sub, L1::L, L1::R>(a, b, node);     \
    }
VESKO_PLAIN_PAIRS(BIND)
#undef BIND

// A remainder of two matrices takes equal shapes only.
template <L1 L, L1 R>
static Matrix *remainderOf(Matrix *a, Matrix *b, PcNode *node) {
    if constexpr (!is_scalar<L> && !is_scalar<R>)
        if (!sameShape(a, b)) error_size_nomatch(node);
    return elementwise<Mod, L, R>(a, b, node);
}
#define BIND(L, R) \
    Matrix *mod##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return remainderOf<L1::L, L1::R>(a, b, node); }
VESKO_PLAIN_PAIRS(BIND)
#undef BIND

// ---- Scalar products. An integer 1 leaves a held matrix as it is.
template <L1 L, L1 R>
static Matrix *scaled(Matrix *a, Matrix *b, PcNode *node) {
    if constexpr (L == L1::IS && R == L1::IM)
        if (*a->ints() == 1 && !b->isTemp()) return b;
    if constexpr (L == L1::IM && R == L1::IS)
        if (*b->ints() == 1 && !a->isTemp()) return a;
    return elementwise<Mpy, L, R>(a, b, node);
}

// Of all quotients that give a real result, integer by real matrix alone refuses a divisor 0; programs rely
// on it.
template <L1 L, L1 R>
static Matrix *quotient(Matrix *a, Matrix *b, PcNode *node) {
    if constexpr (L == L1::IS && R == L1::RM) refuseZeroDivisor(b->rdata, b->length, node);
    return elementwise<Dvd, L, R>(a, b, node);
}

#define SCALAR_PAIRS(X) \
    X(RS, RS)           \
    X(RS, RM)           \
    X(RS, IS) X(RS, IM) X(RM, RS) X(RM, IS) X(IS, RS) X(IS, RM) X(IS, IS) X(IS, IM) X(IM, RS) X(IM, IS)
#define BIND(L, R)                                                                                        \
    Matrix *mpy##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return scaled<L1::L, L1::R>(a, b, node); } \
    Matrix *dvd##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return quotient<L1::L, L1::R>(a, b, node); }
SCALAR_PAIRS(BIND)
#undef BIND

// ---- Element by element. A real operand of one element, which a conversion can hand over, counts as the
// scalar it is.
template <class Op, L1 L, L1 R>
static Matrix *dotted(Matrix *a, Matrix *b, PcNode *node) {
    if constexpr (L == L1::RM || R == L1::RM)
        if (a->length == 1 || b->length == 1)
            return std::is_same_v<Op, Mpy> ? getMatProduct(a, b, node) : getMatSlash(a, b, node);
    return elementwise<Op, L, R>(a, b, node);
}
#define BIND(L, R)                                             \
    Matrix *dmu##L##_##R(Matrix *a, Matrix *b, PcNode *node) { \
        return dotted<Mpy, L1::L, L1::R>(a, b, node);          \
    }                                                          \
    Matrix *ddv##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return dotted<Dvd, L1::L, L1::R>(a, b, node); }
VESKO_MATRIX_PAIRS(BIND)
#undef BIND

}  // namespace vesko
