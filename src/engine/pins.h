// Pins: operands that a handler holds while it evaluates something else.
//
// A value that a handler got may belong to a variable, and evaluating the next operand may change that
// variable: in x + (x = 5) the left operand would be freed. So a handler that needs a value across another
// evaluation pins it, and takes the pin off afterwards, in reverse order. A jump out of the handler takes the
// pins off.
#pragma once

#include <cstdint>

#include "values/matrix.h"

namespace vesko {

extern Matrix **pinned;  // the pinned values, each linked
extern uint32_t npinned, pincap;

void initPins();
void growPins();
inline uint32_t pinCount() { return npinned; }
void unpinTo(uint32_t n);

// A store that code of the user has still to judge: openStore pins the old value of the slot, and
// closeStore(false), or a jump, puts it back. The slot lives at least as long as the pins below. Stores close
// in reverse order, as pins go.
void openStore(Matrix **slot, Matrix *old);
void closeStore(bool keep);
uint32_t openStoreCount();

// A function object that the runtime calls by its record: held until releaseFunc, or until a jump.
void holdFunc(FuncRec *f);
void releaseFunc();
uint32_t heldFuncCount();
void releaseFuncsTo(uint32_t n);

inline Matrix *pinMat(Matrix *m) {
    if (npinned == pincap) [[unlikely]]
        growPins();
    linkMat(m);
    pinned[npinned] = m;
    orderStores();
    npinned++;
    return m;
}

// Takes the last pin off: the value is borrowed again, a temporary if nobody else holds it.
inline Matrix *unpinMat() { return detachMat(pinned[--npinned]); }

}  // namespace vesko
