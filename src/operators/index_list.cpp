// Entries of lists and hash tables, and the limits that `$` stands for inside an index.
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "operators/operands.h"
#include "values/containers.h"

namespace vesko {

namespace {

// Releases an operand that the result may be a part of.
Matrix *partOf(Matrix *owner, Matrix *result) {
    keepResult(result);
    releaseMat(owner);
    return passResult(result);
}

Matrix *takeEntries(const Matrix *list, const Matrix *index) {
    const IndexRun run = indexRun(index);
    if (run.length == 0) return theEmptyMat();
    Matrix *result = list->l2type == L2::LS ? newListMat(run.length) : newVListMat(run.length + 1);
    run.visit([&](auto i) {
        for (uint32_t k = 0; k < run.length; k++) addListEntry(result, list->entries()[i(k)]);
    });
    return result;
}

Matrix *entryAt(Matrix *list, PcNode *index_node) {
    uint32_t max;
    Matrix *index = chkEvalIndxMat(index_node, list->length, max);
    Matrix *result = index->length == 1 ? list->entries()[max - 1] : takeEntries(list, index);
    releaseMat(index);
    return result;
}

// A value that is no list counts as a list of itself.
Matrix *onlyEntry(Matrix *m, PcNode *index_node) {
    uint32_t max;
    releaseMat(chkEvalIndxMat(index_node, 1, max));
    return m;
}

Matrix *fieldByKey(Matrix *object, const Matrix *key, PcNode *node) {
    if (key->l2type != L2::TX) error_obj_asgn_key_not_str(node);
    const uint32_t name = rtFindFieldIndexByStr(key->text());
    Matrix *value = name == not_found ? nullptr : readObjField(object, name, node);
    if (!value) error_dne(node, key->text());
    return value;
}

}  // namespace

// The entry of a variable's list by a real scalar at hand: nothing is evaluated, so nothing has to be held.
// Null where the general way must decide.
static Matrix *peekEntry(const PcNode *list_node, const PcNode *index_node) {
    const Matrix *list = peekLeaf(list_node), *index = peekLeaf(index_node);
    if (!list || !index || !isList(list->l2type) || index->l1type != L1::RS) return nullptr;
    const double k = *index->rdata;
    return k >= 1.0 && k < list->length + 1.0 ? list->entries()[static_cast<uint32_t>(k) - 1] : nullptr;
}

Matrix *getListEntry(PcNode *node) {
    if (Matrix *entry = peekEntry(node->child(0), node->child(1))) return entry;
    Matrix *m = pinMat(node->eval(0));
    Matrix *result = isList(m->l2type) ? entryAt(m, node->child(1)) : onlyEntry(m, node->child(1));
    keepResult(result);
    releaseMat(unpinMat());
    return passResult(result);
}

// ---- Hash tables. An object is read by the name of a field.

Matrix *getHashEntry(PcNode *node) {
    Matrix *m = pinMat(node->eval(0));
    Matrix *key = evalKey(node);
    Matrix *result = nullptr;
    if (m->l2type == L2::HASH)
        result = findHashData(m->table(), key);
    else if (m->l2type == L2::OBJ)
        result = fieldByKey(m, key, node);
    else
        error_undef_opr2(node);
    keepResult(result);
    releaseMat(key);
    releaseMat(unpinMat());
    return passResult(result);
}

Matrix *getDfltHashEntry(PcNode *node) {
    Matrix *m = node->eval(0);
    if (m->l2type != L2::HASH) error_undef_opr2(node);
    return partOf(m, getDfltHashVal(m->table()));
}

// ---- Index limits: the child is the indexed operand.

namespace {

template <class Limit>
Matrix *limitOf(PcNode *node, Limit limit) {
    Matrix *m = node->eval(0);
    Matrix *result = newRealScalarMat(limit(m));
    releaseMat(m);
    return result;
}

uint32_t entryCount(const Matrix *m) {
    if (isList(m->l2type)) return m->length;
    if (m->l2type == L2::HASH || m->l2type == L2::FSET) return m->table()->count();
    return m->l2type == L2::NUL ? 0 : 1;
}

uint32_t elementCount(const Matrix *m) {
    const bool container = m->l2type == L2::HASH || m->l2type == L2::FSET;
    return container ? entryCount(m) : m->length;
}

}  // namespace

Matrix *getMaxMIndex(PcNode *node) { return limitOf(node, elementCount); }
Matrix *getMaxLIndex(PcNode *node) { return limitOf(node, entryCount); }
Matrix *getMaxMIndexRow(PcNode *node) {
    return limitOf(node, [](const Matrix *m) { return m->nrows; });
}
Matrix *getMaxMIndexCol(PcNode *node) {
    return limitOf(node, [](const Matrix *m) { return m->l2type == L2::NUL ? 0 : m->ncols; });
}
Matrix *getMaxMIndexDiag(PcNode *node) {
    return limitOf(node, [](const Matrix *m) { return m->nrows < m->ncols ? m->nrows : m->ncols; });
}

}  // namespace vesko
