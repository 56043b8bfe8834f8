// Matrix products of the plain families. Every element of a product is summed in order of the inner index.
#include "numerics/kernels.h"
#include "operators/elementwise.h"
#include "operators/plain.h"

namespace vesko {

template <auto kernel, class A, class B>
static Matrix *matrixProduct(Matrix *a, Matrix *b, PcNode *node) {
    using C = Common<A, B>;
    if (a->ncols != b->nrows) error_size_nomatch(node);
    Matrix *r = newPlainMat<C>(a->nrows, b->ncols);
    kernel(elementsOf<A>(a), elementsOf<B>(b), elementsOf<C>(r), a->nrows, a->ncols, b->ncols);
    return r;
}

#define BIND(L, R, kernel)                                                        \
    Matrix *mpy##L##_##R(Matrix *a, Matrix *b, PcNode *node) {                    \
        return matrixProduct<kernel, Element<L1::L>, Element<L1::R>>(a, b, node); \
    }
BIND(RM, RM, matmul_dd)
BIND(RM, IM, matmul_di)
BIND(IM, RM, matmul_id)
BIND(IM, IM, matmul_ii)
#undef BIND

}  // namespace vesko
