// Powers of square matrices by repeated products, and negation of any kind.
#include "engine/errors.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

// m times itself, n - 1 products from the left. No squaring: the order of the products is part of the result.
static Matrix *productChain(Matrix *m, int64_t n, PcNode *node) {
    Matrix *power = getMatProduct(m, m, node);
    for (int64_t k = 2; k < n; k++) {
        Matrix *next = getMatProduct(power, m, node);
        if (power != next && power != m) releaseMat(power);
        power = next;
    }
    return power;
}

static Matrix *inverseOf(Matrix *, PcNode *node) {
    error_not_built(node, "the inverse of a matrix");
}

Matrix *matpow_generic(Matrix *m, int32_t n, PcNode *node) {
    if (!m->isSquare()) error_size_nomatch(node);
    if (n == 0) return theEleMat(m->nrows);
    if (n == 1) return cloneMatrix(m);
    if (n > 1) return productChain(m, n, node);
    Matrix *inverse = inverseOf(m, node);
    if (n == -1) return inverse;
    Matrix *power = productChain(inverse, -int64_t{n}, node);
    releaseMat(inverse);
    return power;
}

// A negative power of integers, bytes or bits is that of the real matrix.
static Matrix *powerOfWhole(Matrix *m, int32_t n, PcNode *node) {
    if (n >= 0) return matpow_generic(m, n, node);
    Matrix *real = convToDb(m);
    Matrix *power = matpow_generic(real, n, node);
    releaseMat(real);
    return power;
}

Matrix *matpow_d(Matrix *m, int32_t n, PcNode *node) {
    return matpow_generic(m, n, node);
}
Matrix *matpow_c(Matrix *m, int32_t n, PcNode *node) {
    return matpow_generic(m, n, node);
}
Matrix *matpow_i(Matrix *m, int32_t n, PcNode *node) {
    return powerOfWhole(m, n, node);
}
Matrix *matpow_b(Matrix *m, int32_t n, PcNode *node) {
    return powerOfWhole(m, n, node);
}
Matrix *matpow_n(Matrix *m, int32_t n, PcNode *node) {
    return powerOfWhole(m, n, node);
}

Matrix *negateMat(Matrix *m, PcNode *node) {
    return getMatNeg(m, node);
}

}  // namespace vesko
