// Automatic fields that tell of magnitudes: absolute values, the 1-norm, the share of zeros.
#include <algorithm>
#include <cmath>

#include "engine/errors.h"
#include "members/auto_fields.h"
#include "members/kinds.h"

namespace vesko {

namespace {

// The smallest integer has no opposite and stays.
int32_t absOf(int32_t x) { return x < 0 ? static_cast<int32_t>(0u - static_cast<uint32_t>(x)) : x; }

Matrix *absOfReals(const Matrix *m) {
    Matrix *result = allocRealMat(m->length, m->nrows, m->ncols);
    std::transform(m->rdata, m->rdata + m->length, result->rdata, [](double x) { return std::fabs(x); });
    return result;
}

Matrix *absOfIntegers(const Matrix *m) {
    Matrix *result = newIntMat(m->nrows, m->ncols);
    std::transform(m->ints(), m->ints() + m->length, result->ints(), absOf);
    return result;
}

Matrix *absOfComplex(const Matrix *m) {
    const double *re = m->re()->rdata, *im = m->im()->rdata;
    Matrix *result = allocRealMat(m->length, m->nrows, m->ncols);
    for (uint32_t i = 0; i < m->length; i++) result->rdata[i] = std::hypot(re[i], im[i]);
    return result;
}

double sumOfAbs(const double *x, uint32_t n, size_t stride) {
    double s = 0;
    for (uint32_t i = 0; i < n; i++) s += std::fabs(x[i * stride]);
    return s;
}

// A NaN stays.
double largerOf(double a, double b) { return a > b || std::isnan(a) ? a : b; }

// The 1-norm: of a vector the sum of the magnitudes, of a matrix the largest one of its columns.
double norm1(const Matrix *m) {
    if (m->nrows == 1 || m->ncols == 1) return sumOfAbs(m->rdata, m->length, 1);
    double norm = 0;
    for (uint32_t j = 0; j < m->ncols; j++) norm = largerOf(norm, sumOfAbs(m->rdata + j, m->nrows, m->ncols));
    return norm;
}

}  // namespace

Matrix *mat_field_abs(Matrix *m, PcNode *node) {
    if (kinds::reals.has(m->l2type)) return absOfReals(m);
    if (kinds::integers.has(m->l2type)) return absOfIntegers(m);
    if (kinds::complexes.has(m->l2type)) return absOfComplex(m);
    error_not_built(node, "the absolute value of this kind");
}

Matrix *mat_field_abs_bm(Matrix *m, PcNode *) { return m; }

Matrix *mat_field_norm(Matrix *m, PcNode *node) {
    if (kinds::scalars.has(m->l2type)) return mat_field_abs(m, node);
    return newRealScalarMat(norm1(m));
}

Matrix *mat_field_sparsity_dense(Matrix *, PcNode *) { return theFalseMat(); }
Matrix *mat_field_sparsity(Matrix *, PcNode *node) { error_not_built(node, "the sparsity of this kind"); }

}  // namespace vesko
