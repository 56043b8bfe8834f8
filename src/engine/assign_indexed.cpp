// Indexed stores: `m[i] = v` and its relatives. The child of the statement is the indexed node, whose
// children are the base and the index or indices.
#include <algorithm>

#include "engine/assign.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "operators/index.h"
#include "operators/index_multidim.h"
#include "operators/index_store.h"

namespace vesko {

namespace {

PcNode *baseOf(PcNode *node) { return node->child(0)->child(0); }
PcNode *indexOf(PcNode *node) { return node->child(0)->child(1); }

// A checked index of a store, pinned if it is a value of its own.
IndexRun storeIndex(Matrix *value, uint32_t bound, uint32_t &max, PcNode *node) {
    Matrix *index = asgnIndxMat(value, bound, max, node);
    if (index != value) pinMat(index);
    return asgnIndexRun(index);
}

Matrix *storeAt(Target &target, const IndexedPlaces &where, Matrix *value, PcNode *node) {
    Matrix *m = *target.slot;
    if (where.rows.length != 0 && (where.form == IndexForm::Flat || where.cols.length != 0))
        m = refAsgn(*target.slot, where, value, node);
    return closeTarget(target, m, node);
}

Matrix *storeTwoIndices(PcNode *node, IndexForm form) {
    Target target = openTarget(baseOf(node));
    Matrix *value = pinMat(node->eval(1));
    PcNode *indices = indexOf(node);
    Matrix *row_values = pinMat(indices->eval(0));
    Matrix *col_values = pinMat(indices->eval(1));
    Matrix **plain = plainSlot(target);
    if (plain && quickStore2(*plain, row_values, col_values, value)) return storedQuickly(target, *plain);
    const Matrix *m = uniquelize(target);
    const uint32_t cols = m->l2type == L2::NUL ? 0 : m->ncols;
    IndexedPlaces where{form, {}, {}, 0, 0};
    where.rows = storeIndex(row_values, m->nrows, where.max_row, indices->child(0));
    where.cols = storeIndex(col_values, cols, where.max_col, indices->child(1));
    return storeAt(target, where, value, node);
}

}  // namespace

Matrix *doRefAsgn(PcNode *node) {
    Target target = openTarget(baseOf(node));
    Matrix *value = pinMat(node->eval(1));
    PcNode *index = indexOf(node);
    Matrix *index_value = pinMat(index->exec(index));
    Matrix **plain = plainSlot(target);
    if (plain && quickStore(*plain, index_value, value)) return storedQuickly(target, *plain);
    const Matrix *m = uniquelize(target);
    IndexedPlaces where{IndexForm::Flat, {}, {}, 0, 0};
    where.rows = storeIndex(index_value, m->length, where.max_row, index);
    return storeAt(target, where, value, node);
}

Matrix *doRef2Asgn(PcNode *node) { return storeTwoIndices(node, IndexForm::Block); }
Matrix *doRefMAsgn(PcNode *node) { return storeTwoIndices(node, IndexForm::Pairs); }

// ---- Diagonals: pairs of equal indices

namespace {

uint32_t demandSquare(const Matrix *m, PcNode *node) {
    if (!isNumeric(m->l2type) && m->l2type != L2::NUL) error_undef_opr2(node);
    if (!m->isSquare()) error_mat_no_square(node, baseOf(node));
    return m->nrows;
}

Matrix *storeDiagonal(Target &target, const IndexRun &run, uint32_t max, Matrix *value, PcNode *node) {
    if (value->length != 1 && value->length != run.length) error_size_nomatch(node);
    return storeAt(target, {IndexForm::Pairs, run, run, max, max}, value, node);
}

}  // namespace

Matrix *doDiagAsgn(PcNode *node) {
    Target target = openTarget(baseOf(node));
    Matrix *value = pinMat(node->eval(1));
    const uint32_t n = demandSquare(uniquelize(target), node);
    return storeDiagonal(target, IndexRun::spaced(n, 1, 1), n, value, node);
}

Matrix *doDiagMAsgn(PcNode *node) {
    Target target = openTarget(baseOf(node));
    Matrix *value = pinMat(node->eval(1));
    PcNode *index_node = indexOf(node)->child(1);
    Matrix *index_value = pinMat(index_node->exec(index_node));
    const uint32_t n = demandSquare(uniquelize(target), node);
    uint32_t max;
    Matrix *index = chkIndxMat(index_value, n, max, index_node);
    if (index != index_value) pinMat(index);
    return storeDiagonal(target, asgnIndexRun(index), max, value, node);
}

// ---- Three and more indices. Multidimensional matrices do not grow; an empty target becomes zeros of the
// extents that the largest indices make.

namespace {

Matrix *newMultidimZeros(const Matrix *extents) {
    Vector *v = newVector(extents->length);
    uint32_t length = 1;
    for (uint32_t d = 0; d < extents->length; d++) {
        addElement(v, asEntry(extents->ints()[d]));
        length *= static_cast<uint32_t>(extents->ints()[d]);
    }
    Matrix *m = newRMDM_Mat(length, v);
    std::fill_n(m->rdata, length, 0.0);
    return m;
}

// Null when an index is empty.
Matrix *newMultidimTarget(const Matrix *values, PcNode *indices) {
    Matrix *extents = newIntMat(1, values->length);
    uint32_t length = 1;
    for (uint32_t d = 0; d < values->length; d++) {
        uint32_t max;
        releaseMat(asgnIndxMat(values->entries()[d], 0, max, indices->child(d)));
        extents->ints()[d] = static_cast<int32_t>(max);
        length = checkedLength(length, max);
    }
    Matrix *m = length ? newMultidimZeros(extents) : nullptr;
    releaseMat(extents);
    return m;
}

Matrix *storedMultidim(Matrix *m, const Matrix *values, Matrix *value, PcNode *node) {
    PcNode *indices = indexOf(node);
    if (!isMultidim(m) || extentsOf(m)->size != indices->ncub) error_ref3asgn(node, false);
    const MultidimPlaces places = openPlaces(extentsOf(m), values, indices);
    Matrix *result = places.count ? storeMultidim(m, places, value, node) : m;
    closePlaces(places);
    return result;
}

}  // namespace

Matrix *asgnMatRefMd(PcNode *node) {
    Target target = openTarget(baseOf(node));
    Matrix *value = pinMat(node->eval(1));
    Matrix *values = pinMat(evalArgVec(indexOf(node)));
    Matrix *old = uniquelize(target);
    Matrix *m = old->l2type == L2::NUL ? newMultidimTarget(values, indexOf(node)) : old;
    if (m) m = storedMultidim(m, values, value, node);
    if (m && m != old) replaceMat(*target.slot, m);
    return closeTarget(target, *target.slot, node);
}

Matrix *ref3Asgn(PcNode *node) { return asgnMatRefMd(node); }

}  // namespace vesko
