// Gaussian elimination with implicit scaled partial pivoting, and what is built on it.
#include <algorithm>
#include <cassert>
#include <cmath>

#include "numerics/dense.h"
#include "numerics/kernels.h"
#include "values/convert.h"
#include "values/matrix.h"

namespace vesko {

namespace {

// The largest absolute entry of each row, for choosing pivots.
void rowScales(uint32_t n, const double *a, double *scale) {
    for (uint32_t i = 0; i < n; i++, a += n) {
        scale[i] = 0.0;
        for (uint32_t j = 0; j < n; j++) scale[i] = std::max(scale[i], std::fabs(a[j]));
    }
}

// The row at or below k with the relatively largest entry in column k, the first such on ties.
uint32_t pivotRow(uint32_t n, const double *a, const double *scale, uint32_t k) {
    uint32_t best = k;
    double largest = std::fabs(a[size_t{k} * n + k]) / scale[k];
    for (uint32_t i = k + 1; i < n; i++) {
        const double x = std::fabs(a[size_t{i} * n + k]) / scale[i];
        if (x > largest) {
            largest = x;
            best = i;
        }
    }
    return best;
}

void backSubstitute(uint32_t n, uint32_t nrhs, const double *a, double *b) {
    for (uint32_t i = n; i-- > 0;) {
        const double *row = a + size_t{i} * n;
        double *x = b + size_t{i} * nrhs;
        for (uint32_t k = i + 1; k < n; k++) daxpy(nrhs, -row[k], b + size_t{k} * nrhs, x);
        for (uint32_t j = 0; j < nrhs; j++) x[j] /= row[i];
    }
}

}  // namespace

uint32_t gmElim(uint32_t n, uint32_t nrhs, double *a, double *b) {
    uint32_t swaps = 0;
    Matrix *scales = allocRealMat(n, n, 1);
    double *scale = scales->rdata;
    rowScales(n, a, scale);
    for (uint32_t k = 0; k < n; k++) {
        double *row = a + size_t{k} * n, *rhs = b + size_t{k} * nrhs;
        const uint32_t p = pivotRow(n, a, scale, k);
        if (p != k) {
            std::swap_ranges(row + k, row + n, a + size_t{p} * n + k);
            std::swap_ranges(rhs, rhs + nrhs, b + size_t{p} * nrhs);
            std::swap(scale[p], scale[k]);
            swaps++;
        }
        for (uint32_t i = k + 1; i < n; i++) {
            double *below = a + size_t{i} * n;
            const double factor = below[k] / row[k];
            if (factor == 0.0) continue;
            daxpy(n - k - 1, -factor, row + k + 1, below + k + 1);
            daxpy(nrhs, -factor, rhs, b + size_t{i} * nrhs);
        }
    }
    releaseMat(scales);
    backSubstitute(n, nrhs, a, b);
    return swaps;
}

uint32_t gaussElim(uint32_t n, double *a, double *b) { return gmElim(n, 1, a, b); }

uint32_t eliminate(Matrix *a, Matrix *b) {
    assert(a->isSquare() && a->nrows == b->nrows);
    return gmElim(a->nrows, b->ncols, a->rdata, b->rdata);
}

void row_zeros_count(const Matrix *a, uint64_t &leading, uint64_t &trailing) {
    const uint32_t n = a->ncols;
    leading = trailing = 0;
    for (const double *row = a->rdata, *end = row + a->length; row != end; row += n) {
        uint32_t first = 0, last = n;
        while (first < n && row[first] == 0.0) first++;
        while (last > 0 && row[last - 1] == 0.0) last--;
        leading += first;
        trailing += n - last;
    }
}

void reverseRows(double *a, uint32_t rows, uint32_t cols) {
    for (uint32_t i = 0; i < rows / 2; i++)
        std::swap_ranges(a + size_t{i} * cols, a + size_t{i + 1} * cols, a + size_t{rows - 1 - i} * cols);
}

void reverseColumns(double *a, uint32_t rows, uint32_t cols) {
    for (uint32_t i = 0; i < rows; i++, a += cols) std::reverse(a, a + cols);
}

double findDet(const Matrix *m) {
    assert(m->isSquare());
    const uint32_t n = m->nrows;
    Matrix *a = cloneRM(m);
    Matrix *zeros = newZerosMat(n, 1);
    const uint32_t swaps = eliminate(a, zeros);
    double det = swaps % 2 ? -1.0 : 1.0;
    for (uint32_t i = 0; i < n; i++) det *= a->rdata[size_t{i} * n + i];
    releaseMat(a);
    releaseMat(zeros);
    return det;
}

Matrix *inverseRM(const Matrix *m) {
    assert(m->isSquare());
    Matrix *a = cloneRM(m);
    Matrix *x = theEleMat(m->nrows);
    eliminate(a, x);
    releaseMat(a);
    return x;
}

}  // namespace vesko
