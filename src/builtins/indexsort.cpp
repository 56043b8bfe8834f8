// indexsort and its row and column forms: where the elements stand, in their order.
#include "builtins/arguments.h"
#include "builtins/sort_kernels.h"
#include "builtins/sort_runs.h"
#include "builtins/value_order.h"
#include "builtins/workers.h"
#include "engine/pins.h"
#include "values/elements.h"

namespace vesko {

namespace {

// The positions of one run, from 1, into the same places of the result. precedes(i, j) compares elements of
// the value, from 0. Scratch for two runs.
template <class Precedes>
void sortPositions(int32_t *result, Run run, uint32_t *scratch, Precedes precedes) {
    for (uint32_t k = 0; k < run.count; k++) scratch[k] = k;
    const uint32_t *order = merge_sort(scratch, scratch + run.count, run.count, [&](uint32_t i, uint32_t j) {
        return precedes(run.at(i), run.at(j));
    });
    for (uint32_t k = 0; k < run.count; k++) result[run.at(k)] = static_cast<int32_t>(order[k] + 1);
}

template <class Precedes>
Matrix *sortAllPositions(const Matrix *m, Matrix *result, Wise wise, Precedes precedes) {
    pinMat(result);
    Matrix *scratch = pinMat(allocGMat(2 * size_t{m->length} * sizeof(uint32_t)));
    eachRun(m, wise, [&](Run run) {
        sortPositions(result->ints(), run, static_cast<uint32_t *>(scratch->vdata), precedes);
    });
    releaseMat(unpinMat());
    return unpinMat();
}

// NaN stands behind all numbers.
Matrix *positionsInArray(const Matrix *m, Wise wise) {
    Matrix *reals = pinMat(allocRealMat(m->length, m->nrows, m->ncols));
    const double *x = reals->rdata;
    copyElements(reals->rdata, m, 0, m->length);
    Matrix *result = sortAllPositions(m, newIntMat(m->nrows, m->ncols), wise, [x](uint32_t i, uint32_t j) {
        return x[i] < x[j] || (std::isnan(x[j]) && !std::isnan(x[i]));
    });
    releaseMat(unpinMat());
    return result;
}

Matrix *positionsInList(const Matrix *list, const char *builtin, PcNode *node) {
    Matrix *const *entries = list->entries();
    return sortAllPositions(list, newIntMat(1, list->length), Wise::Whole, [=](uint32_t i, uint32_t j) {
        return mat_compare(entries[i], entries[j], builtin, node) < 0;
    });
}

Matrix *positions(const char *builtin, const Matrix *m, Wise wise, PcNode *node) {
    if (m->l2type == L2::NUL || (isList(m->l2type) && m->length == 0)) return theEmptyMat();
    if (isList(m->l2type) && wise == Wise::Whole) return positionsInList(m, builtin, node);
    if (!hasPlainElements(m->l2type)) refuseArgument(node, builtin);
    return m->length == 1 ? theTrueMat() : positionsInArray(m, wise);
}

}  // namespace

Matrix *indexsort_bf(Matrix *x, Matrix **, PcNode *node) {
    return positions("indexsort", x, Wise::Whole, node);
}
Matrix *rowindexsort_bf(Matrix *x, Matrix **, PcNode *node) {
    return positions("rowindexsort", x, Wise::Row, node);
}
Matrix *columnindexsort_bf(Matrix *x, Matrix **, PcNode *node) {
    return positions("columnindexsort", x, Wise::Column, node);
}

}  // namespace vesko
