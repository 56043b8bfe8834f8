// Indexed write into a slot.
#pragma once

#include "operators/index_walk.h"

namespace vesko {

struct PcNode;

// Stores the value into the places, one element for each or a single one for all. The slot's value has no
// other holder; it grows to the largest place, new elements are 0 (blanks in a string), and another record
// stands for it when it grows or changes its kind. The kind of the target decides: numbers are converted to
// it; only a complex value makes a real-like target complex, and an empty target takes the kind of the value.
// Sizes are checked before anything is written. Returns the slot's value; nothing is released.
using StoreFn = Matrix *(*)(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node);
extern const StoreFn refAsgnFun[];  // by the l1type of the target

inline Matrix *refAsgn(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node) {
    return refAsgnFun[index(slot->l1type)](slot, where, value, node);
}

// Stores a real or integer scalar in one place of a real or integer matrix, by scalar indices; a vector may
// grow by its flat index. False, with nothing done, for all else: the general store is to be asked.
bool quickStore(Matrix *&slot, const Matrix *index, const Matrix *value);
bool quickStore2(Matrix *&slot, const Matrix *row, const Matrix *col, const Matrix *value);

}  // namespace vesko
