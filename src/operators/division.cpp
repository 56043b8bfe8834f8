// Right and left division by matrices: A / B solves X B = A, and A \ B solves A X = B. The left division has
// the right side as its first argument.
#include "engine/errors.h"
#include "numerics/dense.h"
#include "operators/plain.h"
#include "values/convert.h"

namespace vesko {

// Converts the integer operands and delegates.
template <L1 L, L1 R>
static Matrix *throughReals(BinaryFn f, Matrix *a, Matrix *b, PcNode *node) {
    Matrix *x = L == L1::IM ? convToDb(a) : a;
    Matrix *y = R == L1::IM ? convToDb(b) : b;
    Matrix *r = f(x, y, node);
    if (x != a) releaseMat(x);
    if (y != b) releaseMat(y);
    return r;
}

// Above this size a right division keeps the factors in the divisor, which becomes a processed matrix.
constexpr uint32_t largest_plain_divisor = 16;
// The same for the left division, when somebody holds the divisor.
constexpr uint32_t largest_plain_left_divisor = 8;

Matrix *dvdRM_RM(Matrix *a, Matrix *b, PcNode *node) {
    if (a->ncols != b->ncols) error_size_nomatch(node);
    if (!b->isSquare()) error_not_built(node, "least squares");
    if (b->nrows > largest_plain_divisor) {
        lu_rm(b);
        return plusolve_xAEb(b, a);
    }
    Matrix *bt = trsRM(b, node);
    Matrix *at = trsRM(a, node);
    eliminate(bt, at);
    releaseMat(bt);
    Matrix *r = trsRM(at, node);
    releaseMat(at);
    return r;
}

// Close to lower triangular: many zeros, more of them at the ends of the rows than at their heads.
static bool isNearlyLower(const Matrix *a) {
    uint64_t leading, trailing;
    row_zeros_count(a, leading, trailing);
    const uint64_t n = a->nrows;
    return trailing > leading && trailing > n * (n - 1) / 20;
}

// Reversed columns make a nearly lower matrix nearly upper, which elimination leaves sparse; the unknowns
// come out in reverse order.
static Matrix *solveByElimination(const Matrix *a, const Matrix *b) {
    const bool reversed = isNearlyLower(a);
    Matrix *factors = cloneRM(a);
    if (reversed) reverseColumns(factors->rdata, factors->nrows, factors->ncols);
    Matrix *x = cloneRM(b);
    eliminate(factors, x);
    releaseMat(factors);
    if (reversed) reverseRows(x->rdata, x->nrows, x->ncols);
    return x;
}

Matrix *bslRM_RM(Matrix *b, Matrix *a, PcNode *node) {
    if (a->nrows != b->nrows) error_size_nomatch(node);
    if (!a->isSquare()) error_not_built(node, "least squares");
    if (a->nrows > largest_plain_left_divisor && !a->isTemp()) {
        lu_rm(a);
        return alusolve(a, b);
    }
    return solveByElimination(a, b);
}

// The quotients with integers demand a square divisor, so they never take the least squares path.
template <L1 L, L1 R>
static Matrix *convertedQuotient(Matrix *a, Matrix *b, PcNode *node) {
    if (!b->isSquare() || a->ncols != b->ncols) error_size_nomatch(node);
    return throughReals<L, R>(dvdRM_RM, a, b, node);
}

#define BIND(L, R)                                               \
    Matrix *dvd##L##_##R(Matrix *a, Matrix *b, PcNode *node) {   \
        return convertedQuotient<L1::L, L1::R>(a, b, node);      \
    }                                                            \
    Matrix *bsl##L##_##R(Matrix *b, Matrix *a, PcNode *node) {   \
        return throughReals<L1::L, L1::R>(bslRM_RM, b, a, node); \
    }
BIND(RM, IM) BIND(IM, RM) BIND(IM, IM)
#undef BIND

}  // namespace vesko
