// Stores into lists and hash tables.
#include "engine/assign.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/growth.h"
#include "operators/index.h"
#include "operators/index_walk.h"
#include "operators/operands.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

namespace {

void storeEntries(Matrix *list, const IndexRun &run, Matrix *value, bool each) {
    run.visit([=, n = run.length](auto i) {
        for (uint32_t k = 0; k < n; k++)
            replaceMat(list->entries()[i(k)], each ? value->entries()[k] : value);
    });
}

// A VL grows to the largest index, an LS never does. Several entries take the entries of a list of that many,
// or all take the one value.
void storeIntoList(Matrix *&slot, const Matrix *index, uint32_t max, Matrix *value, PcNode *node) {
    const IndexRun run = asgnIndexRun(index);
    if (run.length == 0) return;
    const bool each = run.length != 1 && isList(value->l2type);
    if (each && value->length != run.length)
        error_list_asgn_nomatch(node, static_cast<int32_t>(value->length), static_cast<int32_t>(run.length));
    if (max > slot->length) {
        if (slot->l2type == L2::LS) error_list_asgn_index_out_bound(node, static_cast<int32_t>(max));
        vlGetNewLen(slot, max);
    }
    storeEntries(slot, run, value, each);
}

// One entry of an unshared list, or the one behind the last of a VL, by a real scalar; false where the
// general way must decide.
bool storeEntryQuickly(Matrix *&slot, const Matrix *index, Matrix *value) {
    Matrix *list = slot;
    if (!isList(list->l2type) || list->nlinks() > 1 || index->l2type != L2::RS) return false;
    const double k = *index->rdata;
    if (!(k >= 1.0 && k < list->length + (list->l2type == L2::VL ? 2.0 : 1.0))) return false;
    const auto i = static_cast<uint32_t>(k);
    if (i > list->length) list = vlGetNewLen(slot, i);
    replaceMat(list->entries()[i - 1], value);
    return true;
}

Matrix *newHashMat() {
    Matrix *m = newPfMat();
    m->l2type = L2::HASH;
    m->vdata = newHashTable(1);
    return m;
}

// The table in the slot: an empty value becomes one. Null for other kinds.
hashtable *tableIn(Matrix *&slot) {
    if (slot->l2type == L2::NUL) replaceMat(slot, newHashMat());
    return slot->l2type == L2::HASH ? slot->table() : nullptr;
}

void storeUnderKey(hashtable *table, Matrix *key, Matrix *value, const PcNode *entry) {
    if (!isCounterKey(entry))
        addHashData(table, key, value);
    else if (hashnode *known = findHashNode(table, key))
        replaceMat(known->data, value);
    else
        addHashData(table, cloneMatrix(key), value);
}

void storeByFieldName(Matrix *object, const Matrix *key, Matrix *value, PcNode *node) {
    if (key->l2type != L2::TX) error_obj_asgn_key_not_str(node);
    const uint32_t field = rtFindFieldIndexByStr(key->text());
    if (field == not_found) error_obj_asgn_key_dne(node, key->text());
    resetObjFieldWithValidation(object, field, value, node);
}

}  // namespace

Matrix *doListAsgn(PcNode *node) {
    PcNode *entry = node->child(0), *index_node = entry->child(1);
    Target target = openTarget(entry->child(0));
    Matrix *value = pinMat(node->eval(1));
    Matrix *index_value = pinMat(index_node->exec(index_node));
    Matrix **plain = plainSlot(target);
    if (plain && storeEntryQuickly(*plain, index_value, value)) return storedQuickly(target, value);
    const Matrix *list = uniquelize(target);
    if (!isList(list->l2type)) error_list_asgn_index_nolist(node, getdatatypestr(list->l2type));
    uint32_t max;
    Matrix *index = asgnIndxMat(index_value, list->length, max, index_node);
    if (index != index_value) pinMat(index);
    storeIntoList(*target.slot, index, max, value, node);
    return closeTarget(target, value, node);
}

Matrix *doHashAsgn(PcNode *node) {
    PcNode *entry = node->child(0);
    Target target = openTarget(entry->child(0));
    Matrix *value = pinMat(node->eval(1));
    Matrix *key = pinMat(evalKey(entry));
    Matrix **plain = plainSlot(target);
    if (plain && (*plain)->l2type == L2::HASH && (*plain)->nlinks() < 2) {
        storeUnderKey((*plain)->table(), key, value, entry);
        return storedQuickly(target, value);
    }
    Matrix *m = uniquelize(target);
    if (hashtable *table = tableIn(*target.slot))
        storeUnderKey(table, key, value, entry);
    else if (m->l2type == L2::OBJ)
        storeByFieldName(pinMat(m), key, value, node);
    else
        error_hash_asgn(node, getdatatypestr(m->l2type));
    return closeTarget(target, value, node);
}

Matrix *doDfltHashAsgn(PcNode *node) {
    Target target = openTarget(node->child(0)->child(0));
    Matrix *value = pinMat(node->eval(1));
    const Matrix *m = uniquelize(target);
    hashtable *table = tableIn(*target.slot);
    if (!table) error_hash_asgn(node, getdatatypestr(m->l2type));
    setDfltHashVal(table, value);
    return closeTarget(target, value, node);
}

}  // namespace vesko
