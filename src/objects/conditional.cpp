// Conditional classes: classes that an object is not born into but qualifies for. Whether it does is asked at
// each use and never remembered, so that it follows the state of the object.
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "objects/object.h"
#include "operators/dispatch.h"

namespace vesko {

static Matrix *entryOf(const Matrix *cond, CondEntry entry) { return classOf(cond)->head->matAt(entry); }

// ---- The definition: children are the entries of the head in their order, then the fields. An entry that is
// written like a field is an item, whose second child is the value.

static void enterFunction(Xclass *type, CondEntry entry, PcNode *node) {
    PcNode *item = node->child(entry);
    Matrix *value = item->ncub > 1 ? item->eval(1) : item->exec(item);
    if (value->l2type == L2::UF) {
        if (value->func()->data->nargs != 1) error_build_conditional(node, entry, EntryFault::Inputs);
    } else if (value->l2type != L2::NUL) {
        error_build_conditional(node, entry, EntryFault::NotFunction);
    }
    appendMatVecEntry(type->head, value);
}

Matrix *buildConditional(PcNode *node) {
    const PcNode *fields = node->child(n_cond_entries);
    Matrix *cond = pinMat(makeXclass(L2::COND, fields->ncub, static_cast<uint32_t>(node->value)));
    Xclass *type = classOf(cond);
    appendMatVecEntry(type->head, node->eval(cond_database));
    appendMatVecEntry(type->head, node->eval(cond_title));
    for (CondEntry entry : {cond_join, cond_validate, cond_withdraw}) enterFunction(type, entry, node);
    for (uint32_t k = 0; k < fields->ncub; k++) enterField(type, fields->child(k), false, node);
    return unpinMat();
}

// ---- The test

bool validate_membership(Matrix *object, Matrix *cond, PcNode *node) {
    Matrix *test = entryOf(cond, cond_validate);
    if (test->l2type == L2::NUL) return true;
    Matrix *result = callMemberFunc(test, cond, object, node);
    const bool qualifies = getMatLogVal(result);
    releaseMat(result);
    return qualifies;
}

// ---- The database, for functions that run on an object

static bool isRunning(const Matrix *f) { return f->l2type == L2::UF && f->func() == top->func; }

Matrix *readDatabase(Matrix *cond, PcNode *node) {
    Matrix *parent = top->parent;
    if (!parent || !top->func) return nullptr;
    const bool own = isRunning(entryOf(cond, cond_join)) || isRunning(entryOf(cond, cond_validate));
    return own || validate_membership(parent, cond, node) ? entryOf(cond, cond_database) : nullptr;
}

// ---- Members

static Matrix *memberOf(Matrix *cond, Matrix *object, uint32_t name, PcNode *node) {
    if (name == FIELD_INDEX_APPLY) return entryOf(cond, cond_join);
    if (name == FIELD_INDEX_VALIDATE) return entryOf(cond, cond_validate);
    const uint32_t k = findClassFieldIndex(name, classOf(cond));
    if (name != FIELD_INDEX_WITHDRAW && k == not_found) return theDneMat();
    if (!validate_membership(object, cond, node)) return theDneMat();
    return k == not_found ? entryOf(cond, cond_withdraw) : classOf(cond)->field(k)->value;
}

Matrix *findObjVlField(Matrix *object, PcNode *condnode, uint32_t name) {
    if (const sfield *acquired = findAcquiredField(objectOf(object), name)) return acquired->value;
    Matrix *cond = pinMat(condnode->exec(condnode));
    Matrix *member = cond->l2type == L2::COND ? memberOf(cond, object, name, condnode) : theDneMat();
    keepResult(member);
    releaseMat(unpinMat());
    return passResult(member);
}

}  // namespace vesko
