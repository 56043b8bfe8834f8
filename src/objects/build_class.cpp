// What a class definition and a constructor do when they run.
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "objects/object.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- The class: children are bases, fields, constructor, title. What fails leaves a class that nobody
// holds.

static void enterConstructor(Xclass *type, PcNode *node) {
    Matrix *constructor = node->eval(2);
    if (constructor->l2type != L2::UF) error_class_constructor_not_uf(node);
    appendMatVecEntry(type->head, constructor);
}

// The bases are entered before their fields, so that distances can be measured.
static void enterBases(Xclass *type, PcNode *node) {
    Matrix *bases = node->eval(0);
    const bool one = bases->l2type == L2::CLASS;
    if (!one && !isList(bases->l2type) && bases->l2type != L2::NUL) error_super_not_class(node);
    Matrix **base = one ? &bases : bases->entries();
    const uint32_t n = one ? 1 : isList(bases->l2type) ? bases->length : 0;
    for (uint32_t k = 0; k < n; k++)
        if (base[k]->l2type != L2::CLASS) error_super_not_class(node);
    appendMatVecEntry(type->head, bases);
    for (uint32_t k = 0; k < n; k++) inherit(type, classOf(base[k]));
}

static void enterTitle(Xclass *type, PcNode *node) {
    Matrix *title = node->eval(3);
    if (title->l2type != L2::TX) error_class_title(node);
    appendMatVecEntry(type->head, title);
}

// A function belongs to one class: one that others hold too serves as a copy.
static Matrix *ownFunction(Matrix *value, const Xclass *type) {
    if (value->l2type != L2::UF) return value;
    constexpr uint32_t own_pins = 1;
    if (value->nlinks() > own_pins) value = copyUf(value);
    value->func()->owner = type->serial;
    return value;
}

void enterField(Xclass *type, PcNode *item, bool owns_functions, PcNode *node) {
    const auto name = static_cast<uint32_t>(item->value);
    const auto attr = static_cast<Access>(item->child(0)->value);
    Matrix *value = pinMat(item->eval(1));
    Matrix *domain = pinMat(item->eval(2));
    if (owns_functions) demandFieldFunction(value, attr, getFieldName(name), node);
    if (!memberOfSet(value, domain, node)) error_domain(node);
    Matrix *entered = owns_functions ? ownFunction(value, type) : value;
    addClassField(name, type, makeClassField(name, attr, type, entered, domain));
    unpinMat();
    releaseMat(unpinMat());
}

Matrix *buildClass(PcNode *node) {
    const PcNode *fields = node->child(1);
    Matrix *classmat = pinMat(makeXclass(L2::CLASS, fields->ncub, static_cast<uint32_t>(node->value)));
    Xclass *type = classOf(classmat);
    enterConstructor(type, node);
    enterBases(type, node);
    enterTitle(type, node);
    for (uint32_t k = 0; k < fields->ncub; k++) enterField(type, fields->child(k), true, node);
    type->validate = findClassFieldIndex(FIELD_INDEX_VALIDATE, type);
    return unpinMat();
}

// ---- The object: the last statement of a constructor. Inputs and locals of the constructor that are named
// as a field give its value, whatever its attribute.

static void takeLocal(Xobject *obj, const CtVar *var, Matrix *value, PcNode *node) {
    const uint32_t name = findFieldIndex(var->symbol);
    xfield *slot = findObjSlot(obj, name);
    if (!slot || value->l2type == L2::NUL) return;
    pinMat(value);
    if (!memberOfSet(value, slot->cv->domain, node)) error_obj_field_domain(node, getFieldName(name));
    replaceMat(slot->value, value);
    unpinMat();
}

Matrix *struct2obj(PcNode *node) {
    Matrix *classmat = getParent(node);
    if (classmat->l2type != L2::CLASS) error_par_dne(node);
    Matrix *object = pinMat(newObject(classmat));
    updVar(0, object);
    const Vector *vars = top->func->data->ctvars;
    for (uint32_t k = 1; k < vars->size; k++)
        takeLocal(objectOf(object), vars->at<CtVar>(k), getVarMat(k), node);
    if (!validate_class_member(object, node)) error_obj_create(node);
    return unpinMat();
}

}  // namespace vesko
