// What the assignment handlers share: holding values over code that may jump, and un-sharing a slot.
#pragma once

#include "engine/node.h"
#include "values/matrix.h"

namespace vesko {

// A temporary list with a link on each value: keeps them alive, and shared, over code that may free or change
// them. releaseMat gives the links back; after a jump the sweep does.
Matrix *holdMats(Matrix *a, Matrix *b = nullptr);

// Makes the slot the only holder of its value: a shared value is replaced by a clone. Returns the slot's
// value.
Matrix *cloneSlot(Matrix *&slot);
inline Matrix *unshare(Matrix *&slot) {
    return slot->nlinks() < 2 ? slot : cloneSlot(slot);
}

}  // namespace vesko
