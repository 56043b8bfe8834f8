// Nested targets: the walk along a path of lists, hash tables, objects, functions and pointers to the slot
// that a store changes, and the test of the domains on the path behind the store.
#include <cassert>

#include "builtins/bfunc.h"
#include "engine/assign.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "operators/index.h"
#include "values/convert.h"
#include "values/memory.h"

namespace vesko {

// An automaton has identity: its holders share it even when one of them writes.
Matrix *cloneSlot(Matrix *&slot) {
    if (slot->l2type == L2::AUTOMATON) return slot;
    return replaceMat(slot, cloneMatrix(slot));
}

// ---- The values that a path names

// A pointer is the base of its path, whatever expression yields it.
static void pinPath(PcNode *lvalue) {
    guardStack();
    switch (lvalue->kind) {
        case NodeKind::ListEntry:
        case NodeKind::HashEntry:
        case NodeKind::ForcedType:
            pinPath(lvalue->child(0));
            pinMat(lvalue->eval(1));
            break;
        case NodeKind::Field:
        case NodeKind::ForcedField:
        case NodeKind::DfltHashEntry: pinPath(lvalue->child(0)); break;
        case NodeKind::Deref: pinMat(lvalue->eval(0)); break;
        default: break;
    }
}

bool isTarget(const PcNode *node) {
    switch (node->kind) {
        case NodeKind::Variable:
        case NodeKind::GlobalVar:
        case NodeKind::Parameter:
        case NodeKind::Parent:
        case NodeKind::Deref: return true;
        case NodeKind::ListEntry:
        case NodeKind::HashEntry:
        case NodeKind::DfltHashEntry:
        case NodeKind::Field:
        case NodeKind::ForcedField:
        case NodeKind::ForcedType: return isTarget(node->child(0));
        case NodeKind::ParField: return true;
        default: return false;
    }
}

Target openTarget(PcNode *lvalue) {
    Target target{lvalue, pinCount(), nullptr, nullptr, nullptr, nullptr};
    pinPath(lvalue);
    return target;
}

Matrix **plainSlot(const Target &target) {
    if (target.lvalue->kind != NodeKind::Variable) return nullptr;
    Variable *var = getVar(static_cast<uint32_t>(target.lvalue->value));
    return var->domain ? nullptr : &var->value;
}

Matrix *storedQuickly(const Target &target, Matrix *result) {
    releasePins(target.first_pin);
    return result;
}

// ---- The walk

namespace {

bool isFree(const Matrix *domain) { return !domain || domain == theCompleteMat(); }

// One walk from the base of a path outward. In a walk for a store the containers on the way lose their other
// holders, innermost name first, so that exactly the shared ones are copied.
struct PathWalk {
    Target &target;
    bool for_store;
    uint32_t next_pin = target.first_pin;
    bool needjust = false;     // a domain on the path must accept the new state
    Matrix *holder = nullptr;  // what the slot is a part of; null for a variable

    Matrix *nextValue() { return pinned[next_pin++]; }
    void mindDomain(const Matrix *domain) { needjust |= !isFree(domain); }

    Matrix **slotOf(PcNode *lvalue);
    Matrix **container(PcNode *lvalue);
    Matrix **variable(Variable *var);
    Matrix **pointee(PcNode *lvalue);
    Matrix **listEntry(PcNode *lvalue);
    Matrix **hashEntry(PcNode *lvalue);
    Matrix **newHashEntry(Matrix *hash, Matrix *key);
    Matrix **dfltHashEntry(PcNode *lvalue);
    Matrix **field(PcNode *lvalue);
    Matrix **forcedField(PcNode *lvalue);
    Matrix **parentField(PcNode *lvalue);
    Matrix **objectField(Matrix *object, PcNode *lvalue);
    Matrix **functionField(Matrix *f, PcNode *lvalue);
};

[[noreturn]] void refuseField(PcNode *lvalue, const Matrix *container) {
    error_field_asgn_dne(lvalue, getFieldName(lvalue->value), getdatatypestr(container->l2type));
}

Matrix **PathWalk::slotOf(PcNode *lvalue) {
    guardStack();
    switch (lvalue->kind) {
        case NodeKind::Variable: return variable(getVar(lvalue->value));
        case NodeKind::GlobalVar: return variable(getGlobalVariable(lvalue->value));
        case NodeKind::Parameter: return &getParameter(lvalue->value)->value;
        case NodeKind::Parent:
            if (!top->parent) error_par_dne(lvalue);
            return getParentP();
        case NodeKind::Deref: return pointee(lvalue);
        case NodeKind::ListEntry: return listEntry(lvalue);
        case NodeKind::HashEntry: return hashEntry(lvalue);
        case NodeKind::DfltHashEntry: return dfltHashEntry(lvalue);
        case NodeKind::Field: return field(lvalue);
        case NodeKind::ForcedField: return forcedField(lvalue);
        case NodeKind::ParField: return parentField(lvalue);
        default: error_invalid_lvalue(lvalue);
    }
}

// The parent of a call is held by the caller, who has un-shared it for a function that changes it.
Matrix **PathWalk::container(PcNode *lvalue) {
    Matrix **slot = slotOf(lvalue);
    if (for_store && lvalue->kind != NodeKind::Parent) unshare(*slot);
    holder = *slot;
    return slot;
}

Matrix **PathWalk::variable(Variable *var) {
    mindDomain(var->domain);
    return &var->value;
}

Matrix **PathWalk::pointee(PcNode *lvalue) {
    Matrix *pointer = nextValue();
    if (pointer->l2type == L2::PTR) return reinterpret_cast<Matrix **>(&pointer->vdata);
    if (pointer->l2type != L2::VARADDR) error_ptr_asgn_non_pointer(lvalue);
    const auto *address = static_cast<VarAddr *>(pointer->vdata);
    if (!(*address->cell & 1)) error_ptr_asgn_pointer_gone(lvalue);
    return variable(address->var);
}

// A value that is no list counts as a list of itself.
Matrix **PathWalk::listEntry(PcNode *lvalue) {
    Matrix **list = container(lvalue->child(0));
    const uint32_t i = singleIndex(nextValue(), lvalue->child(1));
    if (!isList((*list)->l2type)) {
        if (i != 1) error_list_asgn_index_nolist(lvalue, getdatatypestr((*list)->l2type));
        return list;
    }
    if (i > (*list)->length) error_list_asgn_index_out_bound(lvalue, static_cast<int32_t>(i));
    return &(*list)->entries()[i - 1];
}

Matrix *demandHash(Matrix **slot, PcNode *lvalue) {
    if ((*slot)->l2type != L2::HASH) error_hash_asgn_index_nohash(lvalue, getdatatypestr((*slot)->l2type));
    return *slot;
}

Matrix **PathWalk::hashEntry(PcNode *lvalue) {
    Matrix *hash = demandHash(container(lvalue->child(0)), lvalue);
    Matrix *key = nextValue();
    hashnode *entry = findHashNode(hash->table(), key);
    return entry ? &entry->data : newHashEntry(hash, key);
}

// The entry lies in a list of its own until the store is done.
Matrix **PathWalk::newHashEntry(Matrix *hash, Matrix *key) {
    Matrix *scratch = pinMat(newListMat(1));
    addListEntry(scratch, theEmptyMat());
    target.hash = pinMat(hash);
    target.new_key = key;
    return scratch->entries();
}

Matrix **PathWalk::dfltHashEntry(PcNode *lvalue) {
    return findDfltHashDataAddr(demandHash(container(lvalue->child(0)), lvalue)->table());
}

// ---- Fields

bool inMemberFunction() { return top->func && top->func->is_member; }

bool isWritable(const ClassField *field) {
    if (field->attr == Access::Public) return true;
    return (field->attr == Access::Readonly || field->attr == Access::Private) && inMemberFunction();
}

Matrix **PathWalk::field(PcNode *lvalue) {
    if (lvalue->child(0)->kind == NodeKind::ForcedType) return forcedField(lvalue);
    Matrix *owner = *container(lvalue->child(0));
    switch (owner->l2type) {
        case L2::OBJ: return objectField(owner, lvalue);
        case L2::UF:
        case L2::BF: return functionField(owner, lvalue);
        default: error_invalid_lvalue(lvalue);
    }
}

Matrix **PathWalk::objectField(Matrix *object, PcNode *lvalue) {
    const uint32_t name = lvalue->value;
    xfield *slot = findObjSlot(objectOf(object), name);
    if (slot && isWritable(slot->cv)) {
        mindDomain(slot->cv->domain);
        return &slot->value;
    }
    sfield *acquired = findAcquiredField(objectOf(object), name);
    if (!acquired) refuseField(lvalue, object);
    return &acquired->value;
}

Matrix **PathWalk::functionField(Matrix *f, PcNode *lvalue) {
    const uint32_t name = lvalue->value;
    if (f->l2type == L2::BF) {
        const uint32_t k = findBfParm(f->builtin(), name);
        if (k == not_found) error_invalid_lvalue(lvalue);
        return &f->builtin()->parms()[k];
    }
    for (int32_t k = 0; k < f->func()->npublic; k++) {
        sfield *parm = f->func()->parms->at<sfield>(k);
        if (parm->index != name) continue;
        mindDomain(parm->domain);
        return &parm->value;
    }
    refuseField(lvalue, f);
}

Matrix **PathWalk::forcedField(PcNode *lvalue) {
    PcNode *forced = lvalue->child(0);
    if (forced->kind != NodeKind::ForcedType) error_invalid_lvalue(lvalue);
    Matrix *object = *container(forced->child(0));
    Matrix *type = nextValue();
    if (object->l2type != L2::OBJ || type->l2type != L2::CLASS) error_invalid_lvalue(lvalue);
    xfield *slot = findForcedObjField(objectOf(object), lvalue->value, classOf(type));
    if (!slot || !isWritable(slot->cv)) error_invalid_lvalue(lvalue);
    mindDomain(slot->cv->domain);
    return &slot->value;
}

Matrix **PathWalk::parentField(PcNode *lvalue) {
    Matrix *parent = top->parent;
    if (!parent || parent->l2type != L2::OBJ) error_invalid_lvalue(lvalue);
    xfield *slot = findObjSlot(objectOf(parent), lvalue->value);
    if (slot && slot->cv->attr != Access::Common && slot->cv->attr != Access::Auto) {
        mindDomain(slot->cv->domain);
        return &slot->value;
    }
    sfield *acquired = findAcquiredField(objectOf(parent), lvalue->value);
    if (!acquired) refuseField(lvalue, parent);
    return &acquired->value;
}

}  // namespace

Matrix *peekTarget(Target &target, bool &judged) {
    const uint32_t n = pinCount();
    PathWalk walk{target, false};
    target.slot = walk.slotOf(target.lvalue);
    Matrix *value = *target.slot;
    judged = walk.needjust;
    if (target.hash) value = getDfltHashVal(target.hash->table());
    releasePins(n);
    target.hash = nullptr;
    return value;
}

Matrix *uniquelize(Target &target) {
    PathWalk walk{target, true};
    target.slot = walk.slotOf(target.lvalue);
    if (target.lvalue->kind == NodeKind::Parent) return *target.slot;
    if (walk.needjust) {
        if (walk.holder) pinMat(walk.holder);
        target.backup = pinMat(*target.slot);
    }
    return unshare(*target.slot);
}

// ---- The domains on the path

namespace {

bool accepts(const Variable *var, PcNode *node) {
    return !var->domain || memberOfSet(var->value, var->domain, node);
}

bool fieldAccepts(const Matrix *owner, uint32_t name, PcNode *node) {
    if (owner->l2type == L2::OBJ) {
        const xfield *slot = findObjSlot(objectOf(owner), name);
        return !slot || memberOfSet(slot->value, slot->cv->domain, node);
    }
    if (owner->l2type != L2::UF || !owner->func()->parms) return true;
    const Vector *parms = owner->func()->parms;
    for (uint32_t k = 0; k < parms->size; k++) {
        const auto *parm = parms->at<sfield>(k);
        if (parm->index == name && !memberOfSet(parm->value, parm->domain, node)) return false;
    }
    return true;
}

// From the target toward the base. A forced field and a field of the parent end the way, and a global is not
// asked, though each lets the store keep a backup.
bool justify(Target &target, PcNode *lvalue, PcNode *node) {
    guardStack();
    switch (lvalue->kind) {
        case NodeKind::Variable: return accepts(getVar(lvalue->value), node);
        case NodeKind::Deref: {
            const Matrix *pointer = pinned[target.first_pin];
            if (pointer->l2type != L2::VARADDR) return true;
            return accepts(static_cast<VarAddr *>(pointer->vdata)->var, node);
        }
        case NodeKind::Field: {
            PcNode *owner = lvalue->child(0);
            if (owner->kind == NodeKind::ForcedType) return justify(target, owner, node);
            PathWalk walk{target, false};
            return fieldAccepts(*walk.slotOf(owner), lvalue->value, node) && justify(target, owner, node);
        }
        case NodeKind::ListEntry:
        case NodeKind::HashEntry:
        case NodeKind::DfltHashEntry:
        case NodeKind::ForcedType: return justify(target, lvalue->child(0), node);
        default: return true;
    }
}

// The slot is looked up again: a predicate may have changed what lies on the path.
void undo(Target &target) {
    if (target.hash) {
        removeHashKey(target.hash->table(), target.new_key);
        return;
    }
    PathWalk walk{target, false};
    replaceMat(*walk.slotOf(target.lvalue), target.backup);
}

void takeKeyOut(void *table, Matrix *key) { removeHashKey(static_cast<hashtable *>(table), key); }

// A predicate that fails leaves the old value. The holder of the slot is pinned, so the slot stays where it
// is.
bool isJustified(Target &target, PcNode *node) {
    if (target.hash)
        openStore(takeKeyOut, target.hash->table(), target.new_key);
    else
        openStore(target.slot, target.backup);
    const bool accepted = justify(target, target.lvalue, node);
    closeStore(true);
    return accepted;
}

}  // namespace

Matrix *closeTarget(Target &target, Matrix *result, PcNode *node) {
    if (target.hash) addHashData(target.hash->table(), target.new_key, *target.slot);
    if (target.backup) {
        pinMat(result);
        if (!isJustified(target, node)) {
            undo(target);
            error_asgn_justify(node);
        }
        unpinMat();
    }
    keepResult(result);
    releasePins(target.first_pin);
    return passResult(result);
}

}  // namespace vesko
