// Factors that a matrix keeps: the processed matrix record, LU factorisation, and solving with the kept
// factors.
#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "engine/interrupt.h"
#include "numerics/dense.h"
#include "numerics/kernels.h"
#include "values/audit.h"
#include "values/convert.h"
#include "values/matrix.h"
#include "values/memory.h"

namespace vesko {

ProcessedMatrix *newProcessedMatrix() {
    auto *p = newBlock<ProcessedMatrix>();
    *p = {};
    return p;
}

void freeProcessedMatrix(ProcessedMatrix *p) {
    if (!p) return;
    for (Matrix *m : {p->lu, p->pivots, p->qr, p->tau, p->u, p->s, p->v})
        if (m) ucReleaseMat(m);
    recycleBlock(p);
}

static ProcessedMatrix *factorsOf(const Matrix *m) { return static_cast<ProcessedMatrix *>(m->vdata); }

static void auditFactors(const Matrix *m) {
    const ProcessedMatrix *p = factorsOf(m);
    for (const Matrix *held : {p->lu, p->pivots, p->qr, p->tau, p->u, p->s, p->v}) auditLink(held);
}

void initFactors() {
    for (L2 kind : {L2::PM, L2::UPPER, L2::LOWER, L2::SYMM}) {
        setPayloadFree(kind, [](Matrix *m) { freeProcessedMatrix(factorsOf(m)); });
        setPayloadWalk(kind, auditFactors);
    }
}

void reset_pm(Matrix *m) {
    ProcessedMatrix *p = factorsOf(m);
    m->vdata = nullptr;
    freeProcessedMatrix(p);
}

void strip_pm(Matrix *m) {
    m->l1type = L1::RM;
    m->l2type = L2::RM;
    reset_pm(m);
}

namespace {

// Column j of L: what is left of the column under the products with the columns before. Answers the pivot's
// row.
uint32_t croutColumn(uint32_t n, double *a, uint32_t j, double *column) {
    for (uint32_t k = 0; k < j; k++) column[k] = a[size_t{k} * n + j];
    uint32_t best = j;
    double largest = -1.0;
    for (uint32_t i = j; i < n; i++) {
        double *row = a + size_t{i} * n;
        row[j] -= ddot(j, row, column);
        if (std::fabs(row[j]) > largest) {
            largest = std::fabs(row[j]);
            best = i;
        }
    }
    return best;
}

}  // namespace

uint32_t ludcmp(uint32_t n, double *a, int32_t *rows) {
    uint32_t singular = n;
    Matrix *scratch = allocRealMat(n, n, 1);
    for (uint32_t i = 0; i < n; i++) rows[i] = static_cast<int32_t>(i);
    for (uint32_t j = 0; j < n; j++) {
        const uint32_t p = croutColumn(n, a, j, scratch->rdata);
        double *row = a + size_t{j} * n;
        if (p != j) {
            std::swap_ranges(row, row + n, a + size_t{p} * n);
            std::swap(rows[p], rows[j]);
        }
        for (uint32_t k = 0; k < j; k++) daxpy(n - j - 1, -row[k], a + size_t{k} * n + j + 1, row + j + 1);
        if (row[j] == 0.0) singular = j;
        for (uint32_t k = j + 1; k < n; k++) row[k] /= row[j];
    }
    releaseMat(scratch);
    return singular;
}

double get_permutation_sign(const int32_t *rows, uint32_t n) {
    Matrix *copy = newIntMat(n, 1);
    int32_t *p = copy->ints();
    std::copy_n(rows, n, p);
    double sign = 1.0;
    for (uint32_t i = 0; i < n; i++)
        while (p[i] != static_cast<int32_t>(i)) {
            std::swap(p[p[i]], p[i]);
            sign = -sign;
        }
    releaseMat(copy);
    return sign;
}

void lu_rm(Matrix *m) {
    assert(m->isSquare() && (m->l2type == L2::RM || m->l2type == L2::PM));
    if (m->l2type == L2::PM && factorsOf(m)->lu) return;
    Matrix *lu = cloneRM(m);
    Matrix *pivots = newIntMat(m->nrows, 1);
    ludcmp(m->nrows, lu->rdata, pivots->ints());
    ProcessedMatrix *p = m->vdata ? factorsOf(m) : newProcessedMatrix();
    holdInterrupt();
    linkMat(lu);
    linkMat(pivots);
    p->lu = lu;
    p->pivots = pivots;
    m->vdata = p;
    m->l1type = L1::PF;
    m->l2type = L2::PM;
    freeInterrupt();
}

Matrix *alusolve(const Matrix *a, const Matrix *b) {
    const ProcessedMatrix *p = factorsOf(a);
    const uint32_t n = a->nrows, nrhs = b->ncols;
    assert(p && p->lu && b->nrows == n);
    const double *lu = p->lu->rdata;
    const int32_t *rows = p->pivots->ints();
    Matrix *r = allocRealMat(b->length, n, nrhs);
    double *x = r->rdata;
    for (uint32_t i = 0; i < n; i++) {
        const double *l = lu + size_t{i} * n;
        double *xi = std::copy_n(b->rdata + size_t(rows[i]) * nrhs, nrhs, x + size_t{i} * nrhs) - nrhs;
        for (uint32_t k = 0; k < i; k++) daxpy(nrhs, -l[k], x + size_t{k} * nrhs, xi);
        for (uint32_t j = 0; j < nrhs; j++) xi[j] /= l[i];
    }
    for (uint32_t i = n; i-- > 0;) {
        const double *u = lu + size_t{i} * n;
        for (uint32_t k = i + 1; k < n; k++) daxpy(nrhs, -u[k], x + size_t{k} * nrhs, x + size_t{i} * nrhs);
    }
    return r;
}

// One row at a time: first z of z U = b, forward, then w of w L = z, backward; the entries of w go to their
// places.
Matrix *plusolve_xAEb(const Matrix *a, const Matrix *b) {
    const ProcessedMatrix *p = factorsOf(a);
    const uint32_t n = a->nrows;
    assert(p && p->lu && b->ncols == n);
    const double *lu = p->lu->rdata;
    const int32_t *rows = p->pivots->ints();
    Matrix *r = allocRealMat(b->length, b->nrows, n);
    Matrix *scratch = allocRealMat(n, 1, n);
    double *z = scratch->rdata;
    for (uint32_t i = 0; i < b->nrows; i++) {
        double *x = r->rdata + size_t{i} * n;
        std::copy_n(b->rdata + size_t{i} * n, n, z);
        for (uint32_t k = 0; k < n; k++) daxpy(n - k - 1, -z[k], lu + size_t{k} * n + k + 1, z + k + 1);
        for (uint32_t k = n; k-- > 0;) {
            z[k] /= lu[size_t{k} * n + k];
            daxpy(k, -z[k], lu + size_t{k} * n, z);
        }
        for (uint32_t k = 0; k < n; k++) x[rows[k]] = z[k];
    }
    releaseMat(scratch);
    return r;
}

}  // namespace vesko
