// Reading of fields: x.f, parent.f and x::C.f.
#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "members/auto_fields.h"
#include "objects/object.h"

namespace vesko {

namespace {

// What is read of a field that is a function: the value of an auto field is what its function computes.
enum class Wanted { Value, Function };

// ---- Where a field is found; null when there is none. The owner of the field is pinned by the caller.

Matrix *runAuto(Matrix *function, Matrix *parent, PcNode *node) {
    return callMbUfByMat(function->func(), nullptr, parent, node);
}

Matrix *parameterOf(Matrix *function, uint32_t name, Wanted wanted, PcNode *node) {
    const sfield *parm = findParm(function->func(), name);
    if (!parm) return nullptr;
    const bool computed = parm->flag == static_cast<uint8_t>(Access::Auto) && wanted == Wanted::Value;
    return computed ? runAuto(parm->value, function, node) : parm->value;
}

// The value of a common or auto field stands in the class, so that all objects share it.
Matrix *sharedMember(const ClassField *field, Matrix *object, Wanted wanted, PcNode *node) {
    if (field->attr == Access::Auto && wanted == Wanted::Value) return runAuto(field->value, object, node);
    return copyUf(field->value);
}

Matrix *acquired(const Xobject *obj, uint32_t name) {
    const sfield *field = findAcquiredField(obj, name);
    return field ? field->value : nullptr;
}

// An object can answer any name by a member `_field`.
Matrix *answeredByMember(Matrix *object, uint32_t name, PcNode *node) {
    Matrix *member = findObjField(objectOf(object), FIELD_INDEX__FIELD);
    if (!member) return nullptr;
    Matrix *text = newStrMatCopy(getFieldName(name));
    Matrix *value = keepResult(callMemberFunc(member, text, object, node));
    releaseMat(text);
    return passResult(value);
}

Matrix *memberOf(Matrix *object, uint32_t name, Wanted wanted, PcNode *node) {
    if (const xfield *slot = findObjSlot(objectOf(object), name)) {
        const bool through_parent = node->ncub && node->child(0)->kind == NodeKind::Parent;
        switch (slot->cv->attr) {
            case Access::Public:
            case Access::Readonly: return slot->value;
            case Access::Common:
            case Access::Auto:
                if (through_parent) return slot->value;
                return sharedMember(slot->cv, object, wanted, node);
            case Access::Private:
                if (through_parent) return slot->value;
                error_field_access(node, getFieldName(name));
        }
    }
    if (Matrix *value = acquired(objectOf(object), name)) return value;
    return answeredByMember(object, name, node);
}

// What a function reads of its own parent.
Matrix *parentMember(Matrix *object, uint32_t name, Wanted wanted, PcNode *node) {
    const xfield *slot = findObjSlot(objectOf(object), name);
    if (!slot) return acquired(objectOf(object), name);
    switch (slot->cv->attr) {
        case Access::Public: return slot->value;
        case Access::Common:
        case Access::Auto: return sharedMember(slot->cv, object, wanted, node);
        case Access::Readonly:
        case Access::Private: break;
    }
    if (!isMemberOf(slot->cv)) error_dne(node, getFieldName(name));
    return slot->value->l2type == L2::UF ? copyUf(slot->value) : slot->value;
}

Matrix *forcedMember(const xfield *slot, Matrix *object, Wanted wanted, PcNode *node) {
    switch (slot->cv->attr) {
        case Access::Public:
        case Access::Readonly: return slot->value;
        case Access::Common:
        case Access::Auto: return sharedMember(slot->cv, object, wanted, node);
        case Access::Private: break;
    }
    const bool through_parent = node->child(0)->child(0)->kind == NodeKind::Parent;
    return through_parent && isMemberOf(slot->cv) ? slot->value : nullptr;
}

Matrix *memberOfClass(const Xclass *type, uint32_t name) {
    return name == FIELD_INDEX_SUPER ? type->bases() : nullptr;
}

// ---- The three forms

Matrix *fieldOf(Matrix *x, uint32_t name, Wanted wanted, PcNode *node) {
    switch (x->l2type) {
        case L2::UF: return parameterOf(x, name, wanted, node);
        case L2::BF: return getBfParm(x->builtin(), name);
        case L2::OBJ: return memberOf(x, name, wanted, node);
        case L2::CLASS: return memberOfClass(classOf(x), name);
        case L2::COND: return name == FIELD_INDEX_DATABASE ? readDatabase(x, node) : nullptr;
        default: return nullptr;
    }
}

// Gives the value on after the last pin, its owner, is taken off.
Matrix *passFromOwner(Matrix *value) {
    linkMat(value);
    releaseMat(unpinMat());
    return detachMat(value);
}

// A value that an object which somebody holds shows to everybody; null for all else, which takes the long
// way.
Matrix *plainMember(const Matrix *owner, uint32_t name) {
    if (owner->l2type != L2::OBJ || owner->isTemp()) return nullptr;
    const xfield *slot = findObjSlot(objectOf(owner), name);
    return slot && slot->cv->attr <= Access::Readonly ? slot->value : nullptr;
}

// The function of an auto field that changes its object; or null.
Matrix *changingAuto(const Matrix *owner, uint32_t name) {
    const xfield *slot = owner->l2type == L2::OBJ ? findObjSlot(objectOf(owner), name) : nullptr;
    const bool changes = slot && slot->cv->attr == Access::Auto && slot->cv->value->func()->data->isMutator();
    return changes ? slot->cv->value : nullptr;
}

Matrix *readField(PcNode *node, Wanted wanted) {
    const uint32_t name = node->value;
    PcNode *place = node->child(0);
    Matrix *owner = node->eval(0);
    if (Matrix *value = plainMember(owner, name)) return value;
    Matrix *function = wanted == Wanted::Value ? changingAuto(owner, name) : nullptr;
    if (function && isTarget(place))
        return changeTarget(place, node, [=](Matrix *object) { return runAuto(function, object, node); });
    pinMat(owner);
    Matrix *value = fieldOf(owner, name, wanted, node);
    if (!value) value = readAutoField(owner, name, node);
    if (!value) error_dne(node, getFieldName(name));
    return passFromOwner(value);
}

// The frame holds the parent.
Matrix *readParentField(PcNode *node, Wanted wanted) {
    const uint32_t name = node->value;
    Matrix *parent = getParent(node);
    Matrix *value = nullptr;
    switch (parent->l2type) {
        case L2::OBJ: value = parentMember(parent, name, wanted, node); break;
        case L2::UF: value = parameterOf(parent, name, wanted, node); break;
        case L2::CLASS: value = memberOfClass(classOf(parent), name); break;
        default: break;
    }
    if (!value) error_dne(node, getFieldName(name));
    return value;
}

Matrix *readForcedField(PcNode *node, Wanted wanted) {
    const PcNode *forced = node->child(0);
    Matrix *object = pinMat(forced->eval(0));
    if (object->l2type != L2::OBJ) error_forcing_no_obj(node, pcnode2str(forced->child(0))->text());
    Matrix *type = pinMat(forced->eval(1));
    const xfield *slot = nullptr;
    if (type->l2type == L2::CLASS) slot = findForcedObjField(objectOf(object), node->value, classOf(type));
    Matrix *value = slot ? forcedMember(slot, object, wanted, node) : nullptr;
    if (!value) error_dne(node, getFieldName(node->value));
    releaseMat(unpinMat());
    return passFromOwner(value);
}

}  // namespace

Matrix *readObjField(Matrix *object, uint32_t name, PcNode *node) {
    return memberOf(object, name, Wanted::Value, node);
}

Matrix *getStructField(PcNode *node) { return readField(node, Wanted::Value); }
Matrix *getStructFieldFunc(PcNode *node) { return readField(node, Wanted::Function); }
Matrix *getParField(PcNode *node) { return readParentField(node, Wanted::Value); }
Matrix *getParFieldFunc(PcNode *node) { return readParentField(node, Wanted::Function); }
Matrix *getForcedField(PcNode *node) { return readForcedField(node, Wanted::Value); }
Matrix *getForcedFieldFunc(PcNode *node) { return readForcedField(node, Wanted::Function); }

}  // namespace vesko
