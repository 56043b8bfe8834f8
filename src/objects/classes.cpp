// Class records: making and freeing them, their table of fields, inheritance, and kinship.
#include <algorithm>

#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "objects/object.h"
#include "values/audit.h"
#include "values/memory.h"
#include "values/payload.h"

namespace vesko {

// ---- Making and freeing

static uint64_t last_serial;

Matrix *makeXclass(L2 kind, uint32_t n_fields, uint32_t index_size) {
    Matrix *m = newPayloadMat(kind, [=] {
        auto *type = newBlock<Xclass>();
        *type = {newVector(4), newVector(n_fields), newVector(index_size), not_found, ++last_serial, 0, 0};
        return type;
    });
    Vector *index = classOf(m)->index;
    while (index->size < index_size) addElement(index, asEntry(not_found));
    return m;
}

static void freeClassFieldChain(void *first) {
    for (auto *cv = static_cast<ClassField *>(first); cv;) {
        ClassField *next = cv->next;
        ucReleaseMat(cv->value);
        ucReleaseMat(cv->domain);
        recycleBlock(cv);
        cv = next;
    }
}

void freeXclass(Matrix *m) {
    Xclass *type = classOf(m);
    freeVector(type->fields, freeClassFieldChain);
    freeVector(type->head, releaseEntry);
    freeVector(type->index, nullptr);
    recycleBlock(type);
}

void auditXclass(const Matrix *m) {
    const Xclass *type = classOf(m);
    for (uint32_t k = 0; k < type->head->size; k++) auditLink(type->head->matAt(k));
    for (uint32_t k = 0; k < type->fields->size; k++)
        for (const ClassField *cv = type->field(k); cv; cv = cv->next) {
            auditLink(cv->value);
            auditLink(cv->domain);
        }
}

// ---- The table of fields

static void reserveField(Xclass *type, uint32_t name) {
    while (type->index->size <= name) addElement(type->index, asEntry(not_found));
    reserveElement(type->fields);
}

static void setIndexTable(Xclass *type, uint32_t name, uint32_t k) { type->index->data[name] = asEntry(k); }

ClassField *makeClassField(uint32_t name, Access attr, Xclass *type, Matrix *value, Matrix *domain) {
    reserveField(type, name);
    auto *cv = newBlock<ClassField>();
    linkMat(value);
    linkMat(domain);
    *cv = {name, attr, domain, value, type, nullptr};
    return cv;
}

static void appendField(Xclass *type, ClassField *cv) {
    setIndexTable(type, cv->name, addElement(type->fields, cv));
}

static ClassField **chainOf(uint32_t name, const Xclass *type) {
    const uint32_t k = findClassFieldIndex(name, type);
    return k == not_found ? nullptr : reinterpret_cast<ClassField **>(&type->fields->data[k]);
}

void addClassField(uint32_t name, Xclass *type, ClassField *cv) {
    ClassField **chain = chainOf(name, type);
    if (!chain) return appendField(type, cv);
    cv->next = *chain;
    *chain = cv;
}

// ---- Kinship

// Bases may be reached on many ways: each class is asked once in a search.
static uint64_t search;

static uint32_t distanceTo(Xclass *type, const Xclass *other) {
    guardStack();
    if (type == other) return 0;
    if (type->asked == search) return type->distance;
    uint32_t least = no_kin;
    auto ask = [&](const Matrix *base) { least = std::min(least, distanceTo(classOf(base), other)); };
    const Matrix *bases = type->head->size > Xclass::bases_entry ? type->bases() : theEmptyMat();
    if (bases->l2type == L2::CLASS) ask(bases);
    if (isList(bases->l2type))
        for (uint32_t k = 0; k < bases->length; k++) ask(bases->entries()[k]);
    type->asked = search;
    type->distance = least == no_kin ? no_kin : least + 1;
    return type->distance;
}

uint32_t findClassDis(Xclass *type, const Xclass *other) {
    search++;
    return distanceTo(type, other);
}

bool isDerivedType(Xclass *type, const Xclass *other) {
    return type != other && findClassDis(type, other) != no_kin;
}

bool isOfClass(const Matrix *object, const Matrix *classmat) {
    const Matrix *type = objectOf(object)->classmat;
    return type == classmat || isDerivedType(classOf(type), classOf(classmat));
}

// ---- Inheritance

// Definitions stand in order of distance, and those of the same distance in the order of the bases. A base
// that is reached on two ways hands its definition on once.
static void inheritClassField(Xclass *type, const ClassField *cv) {
    ClassField **place = chainOf(cv->name, type);
    for (const ClassField *known = place ? *place : nullptr; known; known = known->next)
        if (known->owner == cv->owner) return;
    ClassField *copy = makeClassField(cv->name, cv->attr, type, cv->value, cv->domain);
    copy->owner = cv->owner;
    if (!place) return appendField(type, copy);
    place = chainOf(cv->name, type);
    const uint32_t distance = findClassDis(type, cv->owner);
    while (*place && findClassDis(type, (*place)->owner) <= distance) place = &(*place)->next;
    copy->next = *place;
    *place = copy;
}

void inherit(Xclass *type, const Xclass *base) {
    for (uint32_t k = 0; k < base->fields->size; k++) inheritClassField(type, base->field(k));
}

// ---- What a field demands of its value

void demandFieldFunction(const Matrix *value, Access attr, const char *field, PcNode *node) {
    if (attr == Access::Common && value->l2type != L2::UF) error_common_no_uf(node, field);
    if (attr != Access::Auto) return;
    if (value->l2type != L2::UF) error_auto_no_uf(node, field);
    const FuncRecData *data = value->func()->data;
    if (data->nargs != 0 || data->nret() != 1) error_auto_nargs(node, field, data->nargs, data->nret());
}

}  // namespace vesko
