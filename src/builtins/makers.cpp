// Makers: matrices of given sizes filled with one value, points between two ends, lists of empty entries, and
// copies laid side by side.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "operators/ladder.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

// ---- Matrices of one value

static Matrix *filledReals(Matrix *m, double x) {
    std::fill_n(m->rdata, m->length, x);
    return m;
}

static Matrix *filledComplexMultidim(Matrix *dims, double x, PcNode *node) {
    uint32_t n;
    Vector *extents = extract_dim_vec(dims, n, node);
    Matrix *m = filledReals(newCMDM_Mat(n, extents), x);
    std::fill_n(m->rdata + n, n, 0.0);
    return m;
}

static Matrix *filledComplex(uint32_t rows, uint32_t cols, double x) {
    Matrix *m = allocCompMat(checkedLength(rows, cols), rows, cols);
    filledReals(m->re(), x);
    filledReals(m->im(), 0);
    return m;
}

static Matrix *filledInts(uint32_t rows, uint32_t cols, int32_t x) {
    Matrix *m = newIntMat(rows, cols);
    std::fill_n(m->ints(), m->length, x);
    return m;
}

static Matrix *filledBytes(Matrix *m, uint8_t x) {
    std::fill_n(m->bytes(), m->length, x);
    return m;
}

// The kind of the elements is told by the domain behind the sizes.
static Matrix *filled(Matrix *args, int x, PcNode *node, const char *builtin) {
    uint32_t rows, cols;
    char kind;
    const bool flat = extractMatDims(args, rows, cols, true, node, kind);
    if (kind == 'L') error_kind_not_built(node, L2::BIGINT);
    if (kind == 'M') error_kind_not_built(node, L2::MPF);
    if (kind == 'D') return filledReals(allocateNumericalMat(args, node), x);
    if (kind == 'C') return flat ? filledComplex(rows, cols, x) : filledComplexMultidim(args, x, node);
    if (!flat) refuseArgument(node, builtin);
    switch (kind) {
        case 'Z': return filledInts(rows, cols, x);
        case 'B': return filledBytes(newByteMat(rows, cols), static_cast<uint8_t>(x));
        default: refuseArgument(node, builtin);
    }
}

Matrix *zeros_bf(Matrix *args, Matrix **, PcNode *node) { return filled(args, 0, node, "zeros"); }
Matrix *ones_bf(Matrix *args, Matrix **, PcNode *node) { return filled(args, 1, node, "ones"); }

Matrix *binary_bf(Matrix *args, Matrix **, PcNode *node) {
    uint32_t rows, cols;
    char kind;
    extractMatDims(args, rows, cols, false, node, kind);
    if (kind != 'D') refuseArgument(node, "binary");
    return filledBytes(newBinaryMat(rows, cols), 0);
}

// ---- A list of n entries without a value

static uint32_t readCount(const Matrix *m, uint32_t least, uint32_t most, PcNode *node, const char *builtin,
                          int argument) {
    double n;
    if (!extract_RS(m, n) || !(n >= least && n <= most) || n != std::floor(n))
        error_bf_argk_domain(node, builtin, argument);
    return static_cast<uint32_t>(n);
}

Matrix *newlist_bf(Matrix *args, Matrix **, PcNode *node) {
    constexpr uint32_t most = 1u << 28;  // all entries link one record
    const uint32_t n = readCount(args, 0, most, node, "newlist", 0);
    Matrix *list = newListMat(n);
    for (uint32_t k = 0; k < n; k++) addListEntry(list, theEmptyMat());
    return list;
}

// ---- Points between two ends, both of which are among them

Matrix *linspace_bf(Matrix *args, Matrix **, PcNode *node) {
    constexpr uint32_t usual_count = 100, fewest = 2, most = 3;
    demandCount(args, fewest, most, node, "linspace");
    const double first = realArg(args, 0, node, "linspace"), last = realArg(args, 1, node, "linspace");
    const Matrix *count = args->length == most ? argAt(args, 2) : theEmptyMat();
    const uint32_t n = ISEMPTY(count) ? usual_count : readCount(count, 1, UINT32_MAX, node, "linspace", 2);
    Matrix *points = allocRealMat(n, 1, n);
    const double step = n > 1 ? (last - first) / (n - 1) : 0;
    for (uint32_t k = 0; k < n; k++) points->rdata[k] = first + k * step;
    points->rdata[n - 1] = last;
    return points;
}

// ---- Copies of a matrix side by side

// `down` rows and `across` columns of blocks.
template <class T>
static void tile(T *to, const T *from, uint32_t rows, uint32_t cols, uint32_t down, uint32_t across) {
    for (uint32_t i = 0; i < down; i++)
        for (uint32_t r = 0; r < rows; r++)
            for (uint32_t j = 0; j < across; j++, to += cols) std::copy_n(from + size_t{r} * cols, cols, to);
}

static Matrix *tiledReal(const Matrix *x, uint32_t down, uint32_t across) {
    const uint32_t rows = checkedLength(x->nrows, down), cols = checkedLength(x->ncols, across);
    Matrix *m = allocRealMat(checkedLength(rows, cols), rows, cols);
    tile(m->rdata, x->rdata, x->nrows, x->ncols, down, across);
    return m;
}

static Matrix *tiled(Matrix *x, uint32_t down, uint32_t across, PcNode *node) {
    if (isComplex(x->l2type)) {
        Matrix *re = tiledReal(x->re(), down, across);
        return newCompMat(re, tiledReal(x->im(), down, across));
    }
    if (isDenseReal(x->l2type)) return tiledReal(x, down, across);
    if (!isRealLike(x->l2type)) error_bf_argk_domain(node, "reptile", 0);
    const uint32_t rows = checkedLength(x->nrows, down), cols = checkedLength(x->ncols, across);
    switch (x->l2type) {
        case L2::IS:
        case L2::IM: {
            Matrix *m = newIntMat(rows, cols);
            tile(m->ints(), x->ints(), x->nrows, x->ncols, down, across);
            return m;
        }
        case L2::BY:
        case L2::BI: {
            Matrix *m = x->l2type == L2::BY ? newByteMat(rows, cols) : newBinaryMat(rows, cols);
            tile(m->bytes(), x->bytes(), x->nrows, x->ncols, down, across);
            return m;
        }
        case L2::RNG: {
            Matrix *real = convToDb(x);
            Matrix *m = tiledReal(real, down, across);
            releaseMat(real);
            return m;
        }
        default: error_kind_not_built(node, x->l2type);
    }
}

// The sizes are told as those of a new matrix: one number stacks copies.
Matrix *reptile_bf(Matrix *args, Matrix **, PcNode *node) {
    constexpr uint32_t fewest = 2, most = 3;
    demandCount(args, fewest, most, node, "reptile");
    uint32_t down, across;
    char kind;
    const bool both = args->length == most && !ISEMPTY(argAt(args, 2));
    Matrix *dims = both ? makeBiMatVec(argAt(args, 1), argAt(args, 2)) : argAt(args, 1);
    extractMatDims(dims, down, across, false, node, kind);
    if (both) releaseMat(dims);
    return tiled(argAt(args, 0), down, across, node);
}

}  // namespace vesko
