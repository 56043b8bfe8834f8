// Objects: the records of classes and objects, look-up of fields, and stores into them.
//
// An object has a slot for each field of its class, and acquired fields of its own. A plain structure is an
// object of the class without fields: all that it holds is acquired.
#pragma once

#include <cstdint>

#include "engine/node.h"
#include "frontend/symbols.h"
#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {

struct Xclass;

// A field as its class defines it. `next` is the definition of the same name in the next nearer base.
struct ClassField {
    uint32_t name;  // field index
    Access attr;
    Matrix *domain;  // linked
    Matrix *value;   // linked: the default, or the function of a common or auto field
    Xclass *owner;   // the class that defined it
    ClassField *next;
};

struct Xclass {
    Vector *head;       // Matrices: constructor, bases, title; of a conditional class its own row
    Vector *fields;     // ClassField: head of the chain of each name
    Vector *index;      // position in `fields` by field index, or not_found
    uint32_t validate;  // position of the field "validate", or not_found
    uint64_t serial;    // from 1, never used again: functions remember their class by it
    uint64_t asked;     // number of the search for a distance that knows the next entry
    uint32_t distance;

    static constexpr uint32_t constructor_entry = 0, bases_entry = 1, title_entry = 2;
    Matrix *bases() const { return head->matAt(bases_entry); }
    ClassField *field(uint32_t k) const { return fields->at<ClassField>(k); }
};

// Entries of the head of a conditional class.
enum CondEntry : uint32_t {
    cond_database,
    cond_title,
    cond_join,
    cond_validate,
    cond_withdraw,
    n_cond_entries
};

// The slot of one definition; the chain mirrors that of the class.
struct xfield {
    ClassField *cv;
    Matrix *value;  // linked
    xfield *next;
};

struct Xobject {
    Vector *xfields;   // xfield: parallel to the fields of the class
    Matrix *classmat;  // linked, but for Class_ST
    Vector *vlfields;  // sfield: acquired fields
    Xclass *type;      // the payload of classmat, read at every access to a field
};
inline Xobject *objectOf(const Matrix *m) { return static_cast<Xobject *>(m->vdata); }
inline Xclass *classOf(const Matrix *m) { return static_cast<Xclass *>(m->vdata); }

extern Matrix *const Class_ST;  // the class of a plain structure

void initObjects();  // at start: tells the pools how classes and objects are freed

// ---- Classes
// A value of the kind, CLASS or COND, without entries: room for n fields and for field indices below
// index_size.
Matrix *makeXclass(L2 kind, uint32_t n_fields, uint32_t index_size);
// A record for addClassField, which the class has room for; nothing may fail between the two.
ClassField *makeClassField(uint32_t name, Access attr, Xclass *type, Matrix *value, Matrix *domain);
void addClassField(uint32_t name, Xclass *type, ClassField *cv);  // in front of definitions of bases
// Evaluates a field item and adds the field. A class owns its functions and demands them for common and auto
// fields, a conditional class takes what it is given.
void enterField(Xclass *type, PcNode *item, bool owns_functions, PcNode *node);
void inherit(Xclass *type, const Xclass *base);  // takes over the nearest definition of each field
void freeXclass(Matrix *m);
void auditXclass(const Matrix *m);
uint32_t findClassDis(Xclass *type,
                      const Xclass *other);  // steps to a base, or no_kin; 0 for the class itself
constexpr uint32_t no_kin = not_found;
bool isDerivedType(Xclass *type, const Xclass *other);         // other is a base, near or far
bool isOfClass(const Matrix *object, const Matrix *classmat);  // of the class, or of one derived from it
// A common or auto field must be a function, an auto one without inputs and with one output.
void demandFieldFunction(const Matrix *value, Access attr, const char *field, PcNode *node);

// ---- Conditional classes. Objects and classes are held by the caller.
bool validate_membership(Matrix *object, Matrix *cond, PcNode *node);
Matrix *readDatabase(Matrix *cond, PcNode *node);  // for the running function; null if it has no access
// What a call x.name(C, ...) calls, where the class of x has no such field: an acquired field, or a member of
// the conditional class that the node yields; theDneMat if there is none, or x does not qualify.
Matrix *findObjVlField(Matrix *object, PcNode *condnode, uint32_t name);

// ---- Making. All return a value, temporary.
Matrix *newObject(Matrix *classmat);     // with the defaults of the class
Matrix *newClassLessObject(uint32_t n);  // room for n acquired fields
Matrix *cloneObject(const Matrix *m);    // the values of the fields stay shared

// ---- Look-up; null when there is none.
inline uint32_t findClassFieldIndex(uint32_t name, const Xclass *type) {  // position, or not_found
    return name < type->index->size ? static_cast<uint32_t>(type->index->numberAt(name)) : not_found;
}
inline xfield *findObjSlot(const Xobject *obj, uint32_t name) {  // of the nearest definition
    const uint32_t k = findClassFieldIndex(name, obj->type);
    return k == not_found ? nullptr : obj->xfields->at<xfield>(k);
}
Matrix *findObjField(const Xobject *obj, uint32_t name);  // its value
xfield *findForcedObjField(const Xobject *obj, uint32_t name, const Xclass *type);
sfield *findAcquiredField(const Xobject *obj, uint32_t name);
Matrix *findObjAcquiredField(const Matrix *object, uint32_t name);  // the value, or theDneMat
bool isMemberOf(const ClassField *field);  // the running function is a member of the field's class

// ---- Reading, besides the handlers. The caller holds the object; null when there is no such field.
Matrix *readObjField(Matrix *object, uint32_t name, PcNode *node);
// An auto or common function itself, not what it computes.
Matrix *getStructFieldFunc(PcNode *node);
Matrix *getForcedFieldFunc(PcNode *node);
Matrix *getParFieldFunc(PcNode *node);

// ---- Stores. The object must have no other holder, and stays pinned. The plain forms leave an open store
// (engine/pins.h). The forms with validation take a store back, silently, that the class's `validate`
// refuses.
void resetObjField(Matrix *object, uint32_t name, Matrix *value, PcNode *node);
void resetParField(Matrix *object, uint32_t name, Matrix *value, PcNode *node);
// Stores at once where nothing can refuse: a public field without domain of a class that does not validate.
bool quickStore(Matrix *object, uint32_t name, Matrix *value);
void resetObjFieldWithValidation(Matrix *object, uint32_t name, Matrix *value, PcNode *node);
void resetParFieldWithValidation(Matrix *object, uint32_t name, Matrix *value, PcNode *node);
enum class ForcedStore { NoEntry = 101, Refused = 102, Done = 115 };
ForcedStore resetForcedObjField(Xobject *obj, uint32_t name, const Xclass *type, Matrix *value, PcNode *node);
// A new acquired field, confined to a domain that the value is known to be in.
void initObjVLField(Xobject *obj, uint32_t name, Matrix *value, Matrix *domain, PcNode *node);
bool validate_class_member(Matrix *object, PcNode *node);  // true for a class without `validate`

}  // namespace vesko
