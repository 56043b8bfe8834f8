// Stores into targets: un-sharing a slot, and the nested target `a.b#2.c[3]` from its evaluation to the test
// of the domains on its path.
#pragma once

#include "engine/node.h"
#include "engine/pins.h"
#include "values/matrix.h"

namespace vesko {

// Makes the slot the only holder of its value: a shared value is replaced by a clone. Returns the slot's
// value.
Matrix *cloneSlot(Matrix *&slot);
inline Matrix *unshare(Matrix *&slot) { return slot->nlinks() < 2 ? slot : cloneSlot(slot); }

// A target, while a store works on it. The order of a store:
//
//     Target target = openTarget(lvalue);     evaluates what the path names: indices, keys, pointers
//     Matrix *value = pinMat(node->eval(1));  the right side, then the last index
//     uniquelize(target);                     from here to the end no code of the user runs
//     ...                                     changes *target.slot, which may become another record
//     return closeTarget(target, result, node);
//
// The right side and the indices are pinned, hence shared: where the target, or something on its path, is one
// of them, un-sharing copies it, and the store reads it as it was. A store that fails leaves all as it was:
// what was un-shared has equal contents, and an entry of a hash table comes into being only at the end.
struct Target {
    PcNode *lvalue;
    uint32_t first_pin;  // the values of the path are pinned from here on, from the base outward
    Matrix **slot;       // holds the target, which has no other holder
    Matrix *backup;      // the value before, pinned; null if no domain is to be asked again
    Matrix *hash;        // the table that will get a new entry, pinned; null if the target is there
    Matrix *new_key;
};

bool isTarget(const PcNode *node);  // an expression that names a place
Target openTarget(PcNode *lvalue);
// The target's value as it stands, borrowed: that of an entry that is not there yet is the table's default.
// `judged` tells whether a domain on the path will be asked; target.slot is for comparing only.
Matrix *peekTarget(Target &target, bool &judged);
Matrix *uniquelize(Target &target);  // returns the target's value
// Asks the domains on the path again; a refused change is undone, and ends with error_asgn_justify. Takes off
// all pins since openTarget. Returns the result, borrowed.
Matrix *closeTarget(Target &target, Matrix *result, PcNode *node);

// What change(value) answers; it may change the value of the place, which has no other holder then.
template <class Change>
Matrix *changeTarget(PcNode *place, PcNode *node, Change change) {
    Target target = openTarget(place);
    Matrix *result = change(pinMat(uniquelize(target)));
    return closeTarget(target, result, node);
}

// ---- Stores at once, between openTarget and uniquelize: where the target is a plain variable without a
// domain there is nothing on the way that must be un-shared or asked.
Matrix **plainSlot(const Target &target);                     // the variable's slot, or null
Matrix *storedQuickly(const Target &target, Matrix *result);  // takes off all pins since openTarget

}  // namespace vesko
