// Tests of elements for NaN and infinity. An element of a complex value is NaN when either part is.
#include <algorithm>
#include <cmath>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "values/elements.h"

namespace vesko {

namespace {

// The truth of test(re, im) for each element.
template <class Test>
Matrix *testElements(const Matrix *m, const char *name, PcNode *node, Test test) {
    demandKinds(m, kinds::dense, node, name);
    const bool complex = isComplex(m->l2type);
    const Matrix *re = complex ? m->re() : m;
    const double *im = complex ? m->im()->rdata : nullptr;
    if (m->length == 1) return truthMat(test(elementOf(re, 0), im ? im[0] : 0));
    Matrix *truth = newBinaryMat(m->nrows, m->ncols);
    for (uint32_t i = 0; i < m->length; i++) truth->bytes()[i] = test(elementOf(re, i), im ? im[i] : 0);
    return truth;
}

bool anyNan(const double *x, size_t n) {
    return std::any_of(x, x + n, [](double v) { return std::isnan(v); });
}

}  // namespace

Matrix *isnan_bf(Matrix *args, Matrix **, PcNode *node) {
    return testElements(args, "isnan", node,
                        [](double re, double im) { return std::isnan(re) || std::isnan(im); });
}

Matrix *isfinite_bf(Matrix *args, Matrix **, PcNode *node) {
    return testElements(args, "isfinite", node,
                        [](double re, double im) { return std::isfinite(re) && std::isfinite(im); });
}

Matrix *hasnan_bf(Matrix *args, Matrix **, PcNode *node) {
    demandKinds(args, kinds::dense | kinds::multidim, node, "hasnan");
    const size_t n = args->length;
    switch (args->l2type) {
        case L2::CS:
        case L2::CM: return truthMat(anyNan(args->re()->rdata, n) || anyNan(args->im()->rdata, n));
        case L2::RMDM: return truthMat(anyNan(args->rdata, n));
        case L2::CMDM: return truthMat(anyNan(args->rdata, 2 * n));
        case L2::RNG: return truthMat(std::isnan(args->first()) || std::isnan(args->step()));
        default: return truthMat(kinds::reals.has(args->l2type) && anyNan(args->rdata, n));
    }
}

}  // namespace vesko
