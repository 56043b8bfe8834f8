// Transpose and negation of the plain families.
#include <algorithm>

#include "operators/elementwise.h"
#include "operators/plain.h"

namespace vesko {

struct Neg {
    static double apply(double x) { return -x; }
    static int32_t apply(int32_t x) { return Sub::apply(0, x); }
};

// Goes over the matrix in squares that fit the first cache level: one side of a transpose always strides.
template <bool Negate, class T>
static void transposeInto(const T *from, T *to, uint32_t rows, uint32_t cols) {
    constexpr uint32_t square = 16;
    for (uint32_t i0 = 0; i0 < rows; i0 += square)
        for (uint32_t j0 = 0; j0 < cols; j0 += square)
            for (uint32_t i = i0; i < std::min(i0 + square, rows); i++)
                for (uint32_t j = j0; j < std::min(j0 + square, cols); j++) {
                    const T x = from[size_t{i} * cols + j];
                    to[size_t{j} * rows + i] = Negate ? Neg::apply(x) : x;
                }
}

template <class T, bool Negate = false>
static Matrix *transposed(const Matrix *m) {
    Matrix *r = newPlainMat<T>(m->ncols, m->nrows);
    transposeInto<Negate>(elementsOf<T>(m), elementsOf<T>(r), m->nrows, m->ncols);
    return r;
}

// A held scalar is its own transpose.
Matrix *trsRS(Matrix *m, PcNode *) { return m->isTemp() ? newRealScalarMat(*m->rdata) : m; }
Matrix *trsIS(Matrix *m, PcNode *) { return m->isTemp() ? newIntScalarMat(*m->ints()) : m; }
Matrix *trsRM(Matrix *m, PcNode *) { return transposed<double>(m); }
Matrix *trsIM(Matrix *m, PcNode *) { return transposed<int32_t>(m); }
Matrix *ntrsRM(const Matrix *m) { return transposed<double, true>(m); }

template <L1 F>
static Matrix *negated(const Matrix *m) {
    using T = Element<F>;
    if constexpr (is_scalar<F>) return newScalar(Neg::apply(*elementsOf<T>(m)));
    Matrix *r = newPlainMat<T>(m->nrows, m->ncols);
    const T *x = elementsOf<T>(m);
    fillElements(elementsOf<T>(r), m->length, true, [x](uint32_t i) { return Neg::apply(x[i]); });
    return r;
}
#define BIND(F) \
    Matrix *neg##F(Matrix *m, PcNode *) { return negated<L1::F>(m); }
VESKO_PLAIN(BIND)
#undef BIND

}  // namespace vesko
