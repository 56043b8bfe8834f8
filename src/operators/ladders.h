// The members of the operator families that have a PF operand on either side: one list, from which the
// dispatch tables and the declarations follow. The contracts are those of operators/dispatch.h.
#pragma once

#include "operators/dispatch.h"

namespace vesko {

// PF_PAIRS(X, op): every pair of families with PF on either side.
#define PF_PAIRS(X, op) \
    X(op, RS, PF)       \
    X(op, RM, PF)       \
    X(op, IS, PF) X(op, IM, PF) X(op, PF, RS) X(op, PF, RM) X(op, PF, IS) X(op, PF, IM) X(op, PF, PF)
// PF_DENSE_PAIRS(X, op): those in which both sides can be matrices. The tables of the element-wise product,
// the element-wise quotient and the left division hold mpy or dvd functions at the other pairs.
#define PF_DENSE_PAIRS(X, op) X(op, RM, PF) X(op, IM, PF) X(op, PF, RM) X(op, PF, IM) X(op, PF, PF)
// PF_INPLACE_PAIRS(X, op): in place, the row of IS is the row of IM.
#define PF_INPLACE_PAIRS(X, op) \
    X(op, RS, PF)               \
    X(op, RM, PF) X(op, IM, PF) X(op, PF, RS) X(op, PF, RM) X(op, PF, IS) X(op, PF, IM) X(op, PF, PF)

#define PF_VALUE_FUNCTIONS(X) \
    PF_PAIRS(X, sum)          \
    PF_PAIRS(X, sub)          \
    PF_PAIRS(X, mpy)          \
    PF_PAIRS(X, dvd)          \
    PF_PAIRS(X, pow)          \
    PF_PAIRS(X, dpw) PF_PAIRS(X, mod) PF_DENSE_PAIRS(X, ddv) PF_DENSE_PAIRS(X, dmu) PF_DENSE_PAIRS(X, bsl)
#define PF_INPLACE_FUNCTIONS(X) \
    PF_INPLACE_PAIRS(X, add) PF_INPLACE_PAIRS(X, ded) PF_INPLACE_PAIRS(X, mul) PF_INPLACE_PAIRS(X, div)
#define PF_TRUTH_FUNCTIONS(X) PF_PAIRS(X, equ) PF_PAIRS(X, les) PF_PAIRS(X, leq)

#define X(op, L, R) Matrix *op##L##_##R(Matrix *left, Matrix *right, PcNode *node);
PF_VALUE_FUNCTIONS(X)
#undef X
#define X(op, L, R) Matrix *op##L##_##R(Matrix *target, Matrix *operand, Variable *var, PcNode *node);
PF_INPLACE_FUNCTIONS(X)
#undef X
#define X(op, L, R) bool op##L##_##R(Matrix *left, Matrix *right, PcNode *node);
PF_TRUTH_FUNCTIONS(X)
#undef X

Matrix *negPF(Matrix *m, PcNode *node);
Matrix *trsPF(Matrix *m, PcNode *node);

}  // namespace vesko
