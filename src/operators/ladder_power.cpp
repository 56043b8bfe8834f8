// Powers with a PF base or exponent. Matrices have whole powers only, scalars have any, complex ones too.
#include "engine/errors.h"
#include "numerics/complex_scalar.h"
#include "operators/ladder.h"
#include "operators/ladders.h"
#include "values/convert.h"

namespace vesko {

using MatrixPower = Matrix *(*)(Matrix *m, int32_t n, PcNode *node);

static Matrix *wholePower(MatrixPower power, Matrix *a, const Matrix *b, PcNode *node) {
    int32_t n;
    if (!oneWholeNumber(b, n)) error_undef_opr2(node);
    return power(a, n, node);
}

// Two scalars, at least one of them complex.
static Matrix *complexPower(const Matrix *a, const Matrix *b, PcNode *node) {
    Complex x, y, z;
    if (!extract_CS(a, x.re, x.im) || !extract_CS(b, y.re, y.im)) error_undef_opr2(node);
    if (b->l2type == L2::CS)
        cmpl_cmpl_pow(x.re, x.im, y.re, y.im, z.re, z.im);
    else
        cmpl_real_pow(x.re, x.im, y.re, z.re, z.im);
    return newCompScalarMat(z.re, z.im);
}

static Matrix *powerAsReal(Matrix *a, Matrix *b, PcNode *node) {
    Matrix *x = a->l1type == L1::PF ? convToDb(a) : a;
    Matrix *y = b->l1type == L1::PF ? convToDb(b) : b;
    return applyMade(Arith::Pow, x, y, a, b, node);
}

// Of matrices, and of kinds whose scalars are no reals either.
static Matrix *powerOfKind(Matrix *a, Matrix *b, PcNode *node) {
    switch (a->l2type) {
        case L2::RNG:
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::PM: return wholePower(matpow_generic, a, b, node);
        case L2::BAND:
        case L2::SPARSE:
        case L2::BIGINT:
        case L2::MPF: error_kind_not_built(node, a->l2type);
        case L2::CM: return wholePower(matpow_c, a, b, node);
        case L2::BY: return wholePower(matpow_b, a, b, node);
        case L2::BI: return wholePower(matpow_n, a, b, node);
        default: return powerAsReal(a, b, node);
    }
}

// An exponent is one number; bases that are no numbers fail in the conversion.
static Matrix *power(Matrix *a, Matrix *b, PcNode *node) {
    if (a->l2type == L2::OBJ) return objectOperator(Arith::Pow, a, b, node);
    if (b->length != 1 || !isNumeric(b->l2type)) error_undef_opr2(node);
    if (b->l2type == L2::BIGINT || b->l2type == L2::MPF) error_kind_not_built(node, b->l2type);
    if (a->l2type == L2::CS || b->l2type == L2::CS) return complexPower(a, b, node);
    const bool one_real = a->length == 1 && (isByteKind(a->l2type) || a->l2type == L2::RNG);
    if (a->l1type != L1::PF || one_real) return powerAsReal(a, b, node);
    return powerOfKind(a, b, node);
}

#define X(op, L, R) \
    Matrix *op##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return power(a, b, node); }
PF_PAIRS(X, pow)
#undef X

}  // namespace vesko
