// The operator functions whose two operands belong to the plain families, under their names by the family
// law: operator, left family, underscore, right family.
#pragma once

#include "operators/dispatch.h"
#include "operators/families.h"

namespace vesko {

// ---- Value operators. Where either side is a scalar, the element-wise product and quotient and the left
// division are the functions of * and /, and a power of two scalars serves both powers.
#define VESKO_DECLARE(op, L, R) Matrix *op##L##_##R(Matrix *left, Matrix *right, PcNode *node);
#define VESKO_PAIR_OPS(L, R) \
    VESKO_DECLARE(sum, L, R) \
    VESKO_DECLARE(sub, L, R) \
    VESKO_DECLARE(mpy, L, R) \
    VESKO_DECLARE(dvd, L, R) VESKO_DECLARE(pow, L, R) VESKO_DECLARE(dpw, L, R) VESKO_DECLARE(mod, L, R)
VESKO_PLAIN_PAIRS(VESKO_PAIR_OPS)
#undef VESKO_PAIR_OPS
#define VESKO_PAIR_OPS(L, R) VESKO_DECLARE(dmu, L, R) VESKO_DECLARE(ddv, L, R) VESKO_DECLARE(bsl, L, R)
VESKO_MATRIX_PAIRS(VESKO_PAIR_OPS)
#undef VESKO_PAIR_OPS

// ---- The quick family, which may answer a temporary operand as its result.
#define VESKO_QUICK_PAIRS(X) \
    X(qsum, RS, RS)          \
    X(qsum, RS, RM)          \
    X(qsum, RS, IS)          \
    X(qsum, RM, RS)          \
    X(qsum, RM, RM)          \
    X(qsum, RM, IS)          \
    X(qsum, RM, IM)          \
    X(qsum, IS, IS)          \
    X(qsum, IS, IM)          \
    X(qsum, IM, IS)          \
    X(qsum, IM, IM)          \
    X(qsub, RS, RS)          \
    X(qsub, RS, RM)          \
    X(qsub, RM, RS)          \
    X(qsub, RM, RM)          \
    X(qsub, IS, IS)          \
    X(qsub, IM, IS)          \
    X(qsub, IM, IM)          \
    X(qmpy, RS, RS) X(qmpy, RS, RM) X(qmpy, RM, RS) X(qmpy, RM, RM) X(qmpy, IS, IS) X(qmpy, IM, IS)
VESKO_QUICK_PAIRS(VESKO_DECLARE)
#undef VESKO_DECLARE

// ---- The in-place family. The rows that exist are those of the tables.
#define VESKO_DECLARE(op, L, R) \
    Matrix *op##L##_##R(Matrix *target, Matrix *operand, Variable *var, PcNode *node);
#define VESKO_ROWS(R)         \
    VESKO_DECLARE(add, RS, R) \
    VESKO_DECLARE(add, RM, R) \
    VESKO_DECLARE(add, IM, R) \
    VESKO_DECLARE(ded, RS, R) \
    VESKO_DECLARE(ded, RM, R) \
    VESKO_DECLARE(ded, IM, R) \
    VESKO_DECLARE(mul, RS, R) \
    VESKO_DECLARE(mul, RM, R) \
    VESKO_DECLARE(mul, IM, R) VESKO_DECLARE(div, RM, R) VESKO_DECLARE(div, IM, R)
VESKO_PLAIN(VESKO_ROWS)
#undef VESKO_ROWS
#undef VESKO_DECLARE

// ---- Comparisons.
#define VESKO_DECLARE(op, L, R) bool op##L##_##R(Matrix *left, Matrix *right, PcNode *node);
#define VESKO_PAIR_OPS(L, R) VESKO_DECLARE(equ, L, R) VESKO_DECLARE(les, L, R) VESKO_DECLARE(leq, L, R)
VESKO_PLAIN_PAIRS(VESKO_PAIR_OPS)
#undef VESKO_PAIR_OPS
#undef VESKO_DECLARE

// ---- One operand.
#define VESKO_UNARY_OPS(F)                   \
    Matrix *trs##F(Matrix *m, PcNode *node); \
    Matrix *neg##F(Matrix *m, PcNode *node);
VESKO_PLAIN(VESKO_UNARY_OPS)
#undef VESKO_UNARY_OPS
Matrix *ntrsRM(
    const Matrix *m);  // transpose with the sign changed: the imaginary part of a complex transpose

}  // namespace vesko
