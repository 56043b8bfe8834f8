// Object records: making, copying, freeing, and look-up of fields.
#include "objects/object.h"

#include <initializer_list>

#include "engine/frame.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/memory.h"
#include "values/payload.h"

namespace vesko {

// ---- The class of plain structures: no fields, never freed

static Vector nothing;
static Xclass struct_class = {&nothing, &nothing, &nothing, not_found, 0, 0, 0};
static constinit Matrix struct_class_value = [] {
    Matrix m = {};
    m.l1type = L1::PF;
    m.l2type = L2::CLASS;
    m.status = status_singleton;
    m.ncols = 1;
    m.vdata = &struct_class;
    return m;
}();
Matrix *const Class_ST = &struct_class_value;

// ---- Making and freeing

static Matrix *newObjectMat(Matrix *classmat, uint32_t n_fields, uint32_t n_acquired) {
    return newPayloadMat(L2::OBJ, [=] {
        auto *obj = newBlock<Xobject>();
        *obj = {newVector(n_fields), classmat, newVector(n_acquired), classOf(classmat)};
        if (classmat != Class_ST) linkMat(classmat);
        return obj;
    });
}

Matrix *newClassLessObject(uint32_t n) { return newObjectMat(Class_ST, 0, n); }

static xfield *newXfield(ClassField *cv, Matrix *value) {
    auto *slot = newBlock<xfield>();
    *slot = {cv, value, nullptr};
    linkMat(value);
    return slot;
}

static void freeXfieldChain(void *first) {
    for (auto *slot = static_cast<xfield *>(first); slot;) {
        xfield *next = slot->next;
        ucReleaseMat(slot->value);
        recycleBlock(slot);
        slot = next;
    }
}

static ClassField *definitionOf(ClassField *cv) { return cv; }
static ClassField *definitionOf(const xfield *slot) { return slot->cv; }

// A slot for each definition of a chain, be it that of a class or of another object. The vector has room.
template <class Definition>
static void addSlots(Vector *slots, Definition *first) {
    xfield *tail = newXfield(definitionOf(first), first->value);
    addElement(slots, tail);
    for (Definition *next = first->next; next; next = next->next)
        tail = tail->next = newXfield(definitionOf(next), next->value);
}

Matrix *newObject(Matrix *classmat) {
    const Xclass *type = classOf(classmat);
    Matrix *object = newObjectMat(classmat, type->fields->size, 0);
    holdInterrupt();
    for (uint32_t k = 0; k < type->fields->size; k++) addSlots(objectOf(object)->xfields, type->field(k));
    freeInterrupt();
    return object;
}

Matrix *cloneObject(const Matrix *m) {
    const Xobject *obj = objectOf(m);
    Matrix *clone = newObjectMat(obj->classmat, obj->xfields->size, obj->vlfields->size);
    Xobject *copy = objectOf(clone);
    holdInterrupt();
    for (uint32_t k = 0; k < obj->xfields->size; k++) addSlots(copy->xfields, obj->xfields->at<xfield>(k));
    for (uint32_t k = 0; k < obj->vlfields->size; k++) {
        const auto *field = obj->vlfields->at<sfield>(k);
        addStructField(copy->vlfields, field->index, field->value, field->domain);
    }
    freeInterrupt();
    return clone;
}

static void freeObject(Matrix *m) {
    Xobject *obj = objectOf(m);
    if (obj->classmat != Class_ST) ucReleaseMat(obj->classmat);
    freeVector(obj->vlfields, freeSfield);
    freeVector(obj->xfields, freeXfieldChain);
    recycleBlock(obj);
}

static void auditObject(const Matrix *m) {
    const Xobject *obj = objectOf(m);
    if (obj->classmat != Class_ST) auditLink(obj->classmat);
    auditFields(obj->vlfields);
    for (uint32_t k = 0; k < obj->xfields->size; k++)
        for (const auto *slot = obj->xfields->at<xfield>(k); slot; slot = slot->next) auditLink(slot->value);
}

void initObjects() {
    setPayloadFree(L2::OBJ, freeObject);
    setPayloadWalk(L2::OBJ, auditObject);
    for (L2 kind : {L2::CLASS, L2::COND}) {
        setPayloadFree(kind, freeXclass);
        setPayloadWalk(kind, auditXclass);
    }
}

// ---- Look-up

Matrix *findObjField(const Xobject *obj, uint32_t name) {
    const xfield *slot = findObjSlot(obj, name);
    return slot ? slot->value : nullptr;
}

xfield *findForcedObjField(const Xobject *obj, uint32_t name, const Xclass *type) {
    xfield *slot = findObjSlot(obj, name);
    while (slot && slot->cv->owner != type) slot = slot->next;
    return slot;
}

sfield *findAcquiredField(const Xobject *obj, uint32_t name) {
    for (uint32_t k = 0; k < obj->vlfields->size; k++) {
        auto *field = obj->vlfields->at<sfield>(k);
        if (field->index == name) return field;
    }
    return nullptr;
}

Matrix *findObjAcquiredField(const Matrix *object, uint32_t name) {
    const sfield *field = findAcquiredField(objectOf(object), name);
    return field ? field->value : theDneMat();
}

bool isMemberOf(const ClassField *field) {
    const FuncRec *running = getTopFuncRec();
    return running && running->is_member && running->owner == field->owner->serial;
}

}  // namespace vesko
