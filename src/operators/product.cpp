// Matrix products of the plain families. Every element of a product is summed in order of the inner index.
#include "numerics/kernels.h"
#include "operators/elementwise.h"
#include "operators/plain.h"

namespace vesko {

template <class A, class B>
static Matrix *matrixProduct(Matrix *a, Matrix *b, PcNode *node) {
    using C = Common<A, B>;
    if (a->ncols != b->nrows) error_size_nomatch(node);
    Matrix *r = newPlainMat<C>(a->nrows, b->ncols);
    matmul(elementsOf<A>(a), elementsOf<B>(b), elementsOf<C>(r), a->nrows, a->ncols, b->ncols);
    return r;
}

#define BIND(L, R)                                                        \
    Matrix *mpy##L##_##R(Matrix *a, Matrix *b, PcNode *node) {            \
        return matrixProduct<Element<L1::L>, Element<L1::R>>(a, b, node); \
    }
VESKO_MATRIX_PAIRS(BIND)
#undef BIND

}  // namespace vesko
