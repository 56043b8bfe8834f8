// Stores into fields, parameters and what pointers point to.
#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/automatons.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "values/convert.h"
#include "values/memory.h"
#include "values/payload.h"

namespace vesko {

namespace {

uint32_t fieldOf(PcNode *node) { return static_cast<uint32_t>(node->child(0)->value); }

[[noreturn]] void refuseField(PcNode *node, const Matrix *owner) {
    error_field_asgn_dne(node, getFieldName(fieldOf(node)), getdatatypestr(owner->l2type));
}

// The right side of a field store: a value, or `v in D`, which confines a new field. Both are pinned; a value
// that its domain refuses leaves `valid` false.
struct FieldValue {
    Matrix *value;
    Matrix *domain;  // null without one
    bool valid;
};

FieldValue evalFieldValue(PcNode *node) {
    PcNode *right = node->child(1);
    if (right->kind != NodeKind::In) return {pinMat(right->exec(right)), nullptr, true};
    Matrix *value = pinMat(right->eval(0));
    Matrix *domain = pinMat(right->eval(1));
    return {value, domain, memberOfSet(value, domain, node) != 0};
}

void addConfinedField(Matrix *owner, const FieldValue &v, PcNode *node) {
    if (owner->l2type != L2::OBJ || !v.valid) refuseField(node, owner);
    initObjVLField(objectOf(owner), fieldOf(node), v.value, v.domain, node);
}

void storeParameter(sfield *parm, Matrix *value, PcNode *node) {
    if (!memberOfSet(value, parm->domain, node)) error_uf_field_domain(node, getFieldName(parm->index));
    replaceMat(parm->value, value);
}

// The parameter of the node's name that is public, or that is not; null if there is none.
sfield *findParameter(const Vector *parms, bool is_public, PcNode *node) {
    for (uint32_t k = 0; k < countFields(parms); k++) {
        sfield *parm = parms->at<sfield>(k);
        const bool fits = (parm->flag == static_cast<uint8_t>(Access::Public)) == is_public;
        if (fits && parm->index == fieldOf(node)) return parm;
    }
    return nullptr;
}

void storePublicParameter(Matrix *owner, const Vector *parms, Matrix *value, PcNode *node) {
    sfield *parm = findParameter(parms, true, node);
    if (!parm) refuseField(node, owner);
    storeParameter(parm, value, node);
}

void storeField(Matrix *owner, Matrix *value, PcNode *node) {
    switch (owner->l2type) {
        case L2::OBJ: return resetObjFieldWithValidation(owner, fieldOf(node), value, node);
        case L2::UF: return storePublicParameter(owner, owner->func()->parms, value, node);
        case L2::BF: return resetBfParm(owner->builtin(), fieldOf(node), value, node);
        case L2::AUTOMATON: return storePublicParameter(owner, procOf(owner)->parms, value, node);
        case L2::COND: error_invalid_lvalue(node);
        default: refuseField(node, owner);
    }
}

}  // namespace

// The object of a variable without a domain, if the variable alone holds it; or null.
static Matrix *soleObject(const PcNode *lvalue) {
    if (lvalue->kind != NodeKind::Variable) return nullptr;
    const Variable *var = getVar(static_cast<uint32_t>(lvalue->value));
    const bool sole = var->value->l2type == L2::OBJ && var->value->nlinks() == 1 && !var->domain;
    return sole ? var->value : nullptr;
}

// The owner is pinned: domains and `validate` run code of the user.
Matrix *doFieldAsgn(PcNode *node) {
    Target target = openTarget(node->child(0)->child(0));
    const FieldValue v = evalFieldValue(node);
    Matrix *object = v.domain ? nullptr : soleObject(target.lvalue);
    if (object && quickStore(object, fieldOf(node), v.value)) return storedQuickly(target, v.value);
    Matrix *owner = pinMat(uniquelize(target));
    if (v.domain)
        addConfinedField(owner, v, node);
    else
        storeField(owner, v.value, node);
    return closeTarget(target, v.value, node);
}

// The child is x::C.f: a field node on a node of a forced type, whose children are object and class.
Matrix *doForcedFieldAsgn(PcNode *node) {
    constexpr int32_t wrong_kinds = 117;
    PcNode *forced = node->child(0)->ncub ? node->child(0)->child(0) : nullptr;
    if (!forced || forced->kind != NodeKind::ForcedType) error_invalid_lvalue(node);
    Target target = openTarget(forced->child(0));
    Matrix *type = pinMat(forced->eval(1));
    Matrix *value = pinMat(node->eval(1));
    Matrix *object = pinMat(uniquelize(target));
    if (object->l2type != L2::OBJ || type->l2type != L2::CLASS)
        error_forced_field_asgn(node, wrong_kinds, object);
    const ForcedStore done = resetForcedObjField(objectOf(object), fieldOf(node), classOf(type), value, node);
    if (done != ForcedStore::Done) error_forced_field_asgn(node, static_cast<int32_t>(done), object);
    return closeTarget(target, value, node);
}

// ---- Fields of the parent: the caller has un-shared the object that a function changes.

namespace {

void storeReadonlyParameter(const FuncRec *f, Matrix *value, PcNode *node) {
    sfield *parm = findParameter(f->parms, false, node);
    if (!parm) error_field_asgn(node, getFieldName(fieldOf(node)));
    if (parm->flag != static_cast<uint8_t>(Access::Readonly))
        error_uf_field_domain(node, getFieldName(parm->index));
    storeParameter(parm, value, node);
}

// An object in a field of its own is a copy, or it would hold itself.
void storeInObject(Matrix *parent, Matrix *value, PcNode *node) {
    if (quickStore(parent, fieldOf(node), value)) return;
    if (value == parent) value = pinMat(cloneMatrix(value));
    resetParFieldWithValidation(parent, fieldOf(node), value, node);
}

}  // namespace

Matrix *doParFieldAsgn(PcNode *node) {
    const uint32_t first_pin = pinCount();
    const FieldValue v = evalFieldValue(node);
    Matrix *parent = getParent(node);
    if (v.domain)
        addConfinedField(parent, v, node);
    else if (parent->l2type == L2::OBJ)
        storeInObject(parent, v.value, node);
    else if (parent->l2type == L2::UF)
        storeReadonlyParameter(parent->func(), v.value, node);
    else
        error_field_asgn(node, getFieldName(fieldOf(node)));
    keepResult(v.value);
    releasePins(first_pin);
    return passResult(v.value);
}

// Only a private parameter takes a value of its domain; all other stores do nothing, in silence.
Matrix *doParmAsgn(PcNode *node) {
    const uint32_t first_pin = pinCount();
    Matrix *value = pinMat(node->eval(1));
    sfield *parm = getParameter(static_cast<uint32_t>(node->value));
    const bool stored =
        parm->flag == static_cast<uint8_t>(Access::Private) && memberOfSet(value, parm->domain, node);
    if (stored) replaceMat(parm->value, value);
    releasePins(first_pin);
    return stored ? value : theEmptyMat();
}

// ---- Pointers

namespace {

// The store stays open, for the domains on the path to the pointer.
void storeThroughAddress(const VarAddr *address, Matrix *value, PcNode *node) {
    if (!(*address->cell & 1)) error_ptr_asgn_pointer_gone(node);
    Variable *var = address->var;
    if (var->domain && !memberOfSet(value, var->domain, node)) error_asgn_justify(node);
    openStore(&var->value, var->value);
    updateVariable(var, value);
}

// A variable that holds no pointer gets one.
void makePointer(Variable *var, Matrix *value, PcNode *node) {
    Matrix *pointer = newReferenceMat(L2::PTR, value);
    if (var->domain && !memberOfSet(pointer, var->domain, node)) error_asgn_justify(node);
    updateVariable(var, pointer);
}

}  // namespace

Matrix *doPtrAsgn(PcNode *node) {
    PcNode *lvalue = node->child(0)->child(0);
    Target target = openTarget(lvalue);
    Matrix *value = pinMat(node->eval(1));
    Matrix *m = uniquelize(target);
    if (m->l2type == L2::PTR)
        replaceMat(*reinterpret_cast<Matrix **>(&m->vdata), value);
    else if (m->l2type == L2::VARADDR)
        storeThroughAddress(static_cast<VarAddr *>(m->vdata), value, node);
    else if (lvalue->kind == NodeKind::Variable)
        makePointer(getVar(lvalue->value), value, node);
    else if (lvalue->kind == NodeKind::GlobalVar)
        makePointer(getGlobalVariable(lvalue->value), value, node);
    else
        error_ptr_asgn_non_pointer(node);
    return closeTarget(target, value, node);
}

}  // namespace vesko
