// Powers of square matrices by repeated products, and negation of any kind.
#include "engine/errors.h"
#include "numerics/dense.h"
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

static Matrix *inverseOf(const Matrix *m, PcNode *node) {
    if (!isRealLike(m->l2type)) error_not_built(node, "the inverse of a complex matrix");
    Matrix *real = convToDb(m);
    Matrix *inverse = inverseRM(real);
    releaseMat(real);
    return inverse;
}

// A negative power is one of the inverse, which is real also for integers, bytes and bits.
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

Matrix *negateMat(Matrix *m, PcNode *node) { return getMatNeg(m, node); }

}  // namespace vesko
