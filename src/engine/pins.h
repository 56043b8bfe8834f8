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

// A store that code of the user has still to judge. What it takes to take the store back is pinned, as a rule
// the slot's old value: closeStore(false) does it, or a jump. The place lives at least as long as the pins
// below. Stores close in reverse order, as pins go.
using TakeBack = void (*)(void *place, Matrix *old);
void openStore(TakeBack take_back, void *place, Matrix *old);
void openStore(Matrix **slot, Matrix *old);
void closeStore(bool keep);

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

// Takes off the pins from the n-th on, and releases what nobody else holds. The stores among them stand.
void releasePins(uint32_t n);

// Takes the last pin off: the value is borrowed again, a temporary if nobody else holds it.
inline Matrix *unpinMat() { return detachMat(pinned[--npinned]); }

}  // namespace vesko
