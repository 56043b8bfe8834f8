// The product of real matrices at full speed: blocked, packed, with a kernel that holds a tile of the result
// in registers. Vectors run along the columns of the result, so each element is still summed alone, in order
// of the inner index, from 0, with every product rounded: the bits of the plain triple loop.
#include <algorithm>

#include "numerics/fill.h"
#include "numerics/kernels.h"
#include "values/matrix.h"

namespace vesko {

namespace {

using Lanes = double __attribute__((vector_size(32)));
using UnalignedLanes = double __attribute__((vector_size(32), aligned(8), may_alias));
constexpr uint32_t lanes = 4;

constexpr uint32_t tile_rows = 6, tile_vectors = 2, tile_cols = tile_vectors * lanes;
constexpr uint32_t depth_block = 256;  // a strip of packed b stays in the first cache level
constexpr uint32_t row_block = 96;     // a block of packed a stays in the second

constexpr uint32_t roundUp(uint32_t x, uint32_t unit) { return (x + unit - 1) / unit * unit; }

// One tile of c, `stride` apart, plus the product of a packed strip of a and a packed strip of b.
VESKO_CLONES void tileKernel(const double *a, const double *b, double *c, uint32_t stride, uint32_t depth) {
    const auto at = [c, stride](uint32_t i) {
        return reinterpret_cast<UnalignedLanes *>(c + size_t{i} * stride);
    };
    Lanes sum[tile_rows][tile_vectors];
    for (uint32_t i = 0; i < tile_rows; i++)
        for (uint32_t v = 0; v < tile_vectors; v++) sum[i][v] = at(i)[v];
    for (; depth; depth--, a += tile_rows, b += tile_cols) {
        Lanes row[tile_vectors];
        for (uint32_t v = 0; v < tile_vectors; v++) row[v] = reinterpret_cast<const UnalignedLanes *>(b)[v];
        for (uint32_t i = 0; i < tile_rows; i++)
            for (uint32_t v = 0; v < tile_vectors; v++) sum[i][v] += a[i] * row[v];
    }
    for (uint32_t i = 0; i < tile_rows; i++)
        for (uint32_t v = 0; v < tile_vectors; v++) at(i)[v] = sum[i][v];
}

// Strips of tile_rows rows, inner index slowest; rows past the end are zeros.
void packRows(const double *a, uint32_t stride, uint32_t rows, uint32_t depth, double *to) {
    for (uint32_t i0 = 0; i0 < rows; i0 += tile_rows)
        for (uint32_t k = 0; k < depth; k++)
            for (uint32_t i = i0; i < i0 + tile_rows; i++) *to++ = i < rows ? a[size_t{i} * stride + k] : 0.0;
}

// Strips of tile_cols columns, inner index slowest; columns past the end are zeros.
void packCols(const double *b, uint32_t stride, uint32_t depth, uint32_t cols, double *to) {
    for (uint32_t j0 = 0; j0 < cols; j0 += tile_cols) {
        const uint32_t width = std::min(tile_cols, cols - j0);
        for (uint32_t k = 0; k < depth; k++, to += tile_cols)
            std::fill(std::copy_n(b + size_t{k} * stride + j0, width, to), to + tile_cols, 0.0);
    }
}

// A tile that juts out over the edge of c is worked on a copy.
void edgeTile(const double *a, const double *b, double *c, uint32_t stride, uint32_t depth, uint32_t rows,
              uint32_t cols) {
    double tile[tile_rows * tile_cols] = {};
    for (uint32_t i = 0; i < rows; i++) std::copy_n(c + size_t{i} * stride, cols, tile + i * tile_cols);
    tileKernel(a, b, tile, tile_cols, depth);
    for (uint32_t i = 0; i < rows; i++) std::copy_n(tile + i * tile_cols, cols, c + size_t{i} * stride);
}

void multiplyBlock(const double *a, const double *b, double *c, uint32_t rows, uint32_t depth, uint32_t cols,
                   uint32_t stride) {
    for (uint32_t j = 0; j < cols; j += tile_cols)
        for (uint32_t i = 0; i < rows; i += tile_rows) {
            const double *strip_a = a + size_t{i} * depth, *strip_b = b + size_t{j} * depth;
            double *tile = c + size_t{i} * stride + j;
            if (rows - i >= tile_rows && cols - j >= tile_cols)
                tileKernel(strip_a, strip_b, tile, stride, depth);
            else
                edgeTile(strip_a, strip_b, tile, stride, depth, std::min(tile_rows, rows - i),
                         std::min(tile_cols, cols - j));
        }
}

}  // namespace

void gemm(const double *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n) {
    std::fill_n(c, size_t{m} * n, 0.0);
    const uint32_t deepest = std::min(k, depth_block);
    Matrix *scratch_a = allocRealMat(deepest * row_block, deepest, row_block);
    Matrix *scratch_b = allocRealMat(deepest * roundUp(n, tile_cols), deepest, roundUp(n, tile_cols));
    for (uint32_t k0 = 0; k0 < k; k0 += depth_block) {
        const uint32_t depth = std::min(depth_block, k - k0);
        packCols(b + size_t{k0} * n, n, depth, n, scratch_b->rdata);
        for (uint32_t i0 = 0; i0 < m; i0 += row_block) {
            const uint32_t rows = std::min(row_block, m - i0);
            packRows(a + size_t{i0} * k + k0, k, rows, depth, scratch_a->rdata);
            multiplyBlock(scratch_a->rdata, scratch_b->rdata, c + size_t{i0} * n, rows, depth, n, n);
        }
    }
    releaseMat(scratch_a);
    releaseMat(scratch_b);
}

}  // namespace vesko
