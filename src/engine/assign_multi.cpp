// Several targets in one assignment: `(a, b) = v`. The left child lists the targets: plain variables, or
// fields of one object.
#include "engine/assign.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "operators/index.h"

namespace vesko {

namespace {

bool hasComponents(const Matrix *m) {
    switch (m->l2type) {
        case L2::LS:
        case L2::VL:
        case L2::RS:
        case L2::RM:
        case L2::IS:
        case L2::IM:
        case L2::CS:
        case L2::CM:
        case L2::TX:
        case L2::MPF:
        case L2::BIGINT: return true;
        default: return false;
    }
}

void storeInVariable(PcNode *target, Matrix *value, PcNode *node) {
    if (target->kind != NodeKind::Variable) error_multi_asgn(node, no_value);
    Variable *var = getVar(target->value);
    if (var->domain && !memberOfSet(value, var->domain, node)) error_asgn_justify(node);
    updateVariable(var, value);
}

// In order: a failure leaves the earlier targets assigned.
void storeInVariables(PcNode *targets, Matrix *values, PcNode *node) {
    for (uint32_t k = 0; k < targets->ncub; k++) {
        Matrix *value = pinMat(getMatVecComponent(values, k));
        storeInVariable(targets->child(k), value, node);
        releaseMat(unpinMat());
    }
}

// ---- Fields of one object

using StoreField = void (*)(Matrix *object, uint32_t name, Matrix *value, PcNode *node);

// The values are those of a list. Each store stays open.
void storeFields(PcNode *targets, Matrix *object, Matrix *values, PcNode *node) {
    const bool parent = targets->child(0)->child(0)->kind == NodeKind::Parent;
    const StoreField store = parent ? resetParField : resetObjField;
    for (uint32_t k = 0; k < targets->ncub; k++) {
        if (targets->child(k)->kind != NodeKind::Field) error_multi_asgn(node, no_value);
        store(object, static_cast<uint32_t>(targets->child(k)->value), values->entries()[k], node);
    }
}

// A class with `validate` judges all the new values together; it is not asked about fields that are missing.
void storeValidFields(PcNode *targets, Matrix *object, Matrix *values, PcNode *node) {
    releaseMat(buildMatList(targets));
    storeFields(targets, object, values, node);
    if (!validate_class_member(object, node)) error_asgn_justify(node);
}

Matrix *listOfComponents(Matrix *values) {
    if (isList(values->l2type)) return values;
    Matrix *list = newListMat(values->length);
    for (uint32_t k = 0; k < values->length; k++) addListEntry(list, getMatVecComponent(values, k));
    return list;
}

void storeInObject(PcNode *targets, Matrix *values, PcNode *node) {
    Target target = openTarget(targets->child(0)->child(0));
    Matrix *object = pinMat(uniquelize(target));
    if (object->l2type != L2::OBJ) error_multi_asgn(node, static_cast<int32_t>(index(object->l2type)));
    pinMat(values = listOfComponents(values));
    if (objectOf(object)->type->validate == not_found)
        storeFields(targets, object, values, node);
    else
        storeValidFields(targets, object, values, node);
    closeTarget(target, theNullMat(), node);
}

}  // namespace

// The result is nothing to show.
Matrix *doMultiVarAsgn(PcNode *node) {
    const uint32_t first_pin = pinCount();
    PcNode *targets = node->child(0);
    Matrix *values = pinMat(node->eval(1));
    if (!hasComponents(values) || values->length != targets->ncub) error_multi_asgn(node, no_value);
    if (targets->value == no_value)
        storeInVariables(targets, values, node);
    else
        storeInObject(targets, values, node);
    releasePins(first_pin);
    return theNullMat();
}

// Variables and a written list of as many values: pair by pair, so that a later value sees the earlier
// stores.
Matrix *doMultiVarAsgn_rhs_list(PcNode *node) {
    PcNode *targets = node->child(0), *values = node->child(1);
    for (uint32_t k = 0; k < targets->ncub; k++) {
        Matrix *value = pinMat(values->eval(k));
        storeInVariable(targets->child(k), value, node);
        releaseMat(unpinMat());
    }
    return theNullMat();
}

}  // namespace vesko
