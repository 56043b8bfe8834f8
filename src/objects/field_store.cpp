// Stores into the fields of an object.
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- The slot that takes the value. Null: the name is new, and becomes an acquired field.

static void demandDomain(Matrix *value, Matrix *domain, uint32_t name, PcNode *node) {
    if (domain != theCompleteMat() && !memberOfSet(value, domain, node))
        error_obj_field_reset(node, FieldReset::OutOfDomain, getFieldName(name));
}

static Matrix **acquiredSlot(const Xobject *obj, uint32_t name, Matrix *value, PcNode *node) {
    sfield *field = findAcquiredField(obj, name);
    if (!field) return nullptr;
    demandDomain(value, field->domain, name, node);
    return &field->value;
}

static Matrix **publicSlot(const Xobject *obj, uint32_t name, Matrix *value, PcNode *node) {
    xfield *slot = findObjSlot(obj, name);
    if (!slot) return acquiredSlot(obj, name, value, node);
    if (slot->cv->attr != Access::Public)
        error_obj_field_reset(node, FieldReset::NotPublic, getFieldName(name));
    demandDomain(value, slot->cv->domain, name, node);
    return &slot->value;
}

// What a function may store into its own parent: a member function changes the private and readonly fields of
// its class too.
static Matrix **parentSlot(const Xobject *obj, uint32_t name, Matrix *value, PcNode *node) {
    xfield *slot = findObjSlot(obj, name);
    if (!slot || slot->cv->attr == Access::Common || slot->cv->attr == Access::Auto)
        return acquiredSlot(obj, name, value, node);
    if (slot->cv->attr != Access::Public && !isMemberOf(slot->cv)) error_dne(node, getFieldName(name));
    demandDomain(value, slot->cv->domain, name, node);
    return &slot->value;
}

// ---- Stores

static void addField(Xobject *obj, uint32_t name, Matrix *value) {
    addStructField(obj->vlfields, name, value, theCompleteMat());
}

static void takeFieldOut(void *field, Matrix *object) {
    if (removeElement(objectOf(object)->vlfields, field)) freeSfield(field);
}

static void putOpen(Matrix *object, Matrix **slot, uint32_t name, Matrix *value) {
    if (slot) {
        openStore(slot, *slot);
        replaceMat(*slot, value);
    } else {
        addField(objectOf(object), name, value);
        openStore(takeFieldOut, getTail(objectOf(object)->vlfields), object);
    }
}

void resetObjField(Matrix *object, uint32_t name, Matrix *value, PcNode *node) {
    putOpen(object, publicSlot(objectOf(object), name, value, node), name, value);
}

void resetParField(Matrix *object, uint32_t name, Matrix *value, PcNode *node) {
    putOpen(object, parentSlot(objectOf(object), name, value, node), name, value);
}

bool quickStore(Matrix *object, uint32_t name, Matrix *value) {
    xfield *slot = findObjSlot(objectOf(object), name);
    if (!slot || slot->cv->attr != Access::Public || slot->cv->domain != theCompleteMat()) return false;
    if (objectOf(object)->type->validate != not_found || value == object) return false;
    replaceMat(slot->value, value);
    return true;
}

// ---- Stores that the class validates

bool validate_class_member(Matrix *object, PcNode *node) {
    const Xclass *type = objectOf(object)->type;
    if (type->validate == not_found) return true;
    Matrix *answer = callMbUfByMat(type->field(type->validate)->value->func(), nullptr, object, node);
    const bool valid = getMatLogVal(answer);
    releaseMat(answer);
    return valid;
}

// A field that the object has just acquired is not validated.
static void putValidated(Matrix *object, Matrix **slot, uint32_t name, Matrix *value, PcNode *node) {
    Xobject *obj = objectOf(object);
    if (!slot) return addField(obj, name, value);
    if (obj->type->validate == not_found) {
        replaceMat(*slot, value);
        return;
    }
    openStore(slot, *slot);
    replaceMat(*slot, value);
    closeStore(validate_class_member(object, node));
}

void resetObjFieldWithValidation(Matrix *object, uint32_t name, Matrix *value, PcNode *node) {
    putValidated(object, publicSlot(objectOf(object), name, value, node), name, value, node);
}

void resetParFieldWithValidation(Matrix *object, uint32_t name, Matrix *value, PcNode *node) {
    putValidated(object, parentSlot(objectOf(object), name, value, node), name, value, node);
}

// ---- Others

ForcedStore resetForcedObjField(Xobject *obj, uint32_t name, const Xclass *type, Matrix *value,
                                PcNode *node) {
    xfield *slot = findForcedObjField(obj, name, type);
    if (!slot) return ForcedStore::NoEntry;
    if (slot->cv->attr != Access::Public || !memberOfSet(value, slot->cv->domain, node))
        return ForcedStore::Refused;
    replaceMat(slot->value, value);
    return ForcedStore::Done;
}

void initObjVLField(Xobject *obj, uint32_t name, Matrix *value, Matrix *domain, PcNode *node) {
    if (findObjSlot(obj, name) || findAcquiredField(obj, name))
        error_obj_vlfield_init(node, getFieldName(name));
    addStructField(obj->vlfields, name, value, domain);
}

}  // namespace vesko
