// The stack of pins.
#include "engine/pins.h"

#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

Matrix **pinned;
uint32_t npinned, pincap;

void initPins() {
    pincap = 1024;
    pinned = static_cast<Matrix **>(i_malloc(pincap * sizeof(Matrix *)));
    addHolderWalk("pin", [] {
        for (uint32_t k = 0; k < npinned; k++) auditLink(pinned[k]);
    });
}

void growPins() {
    pinned =
        static_cast<Matrix **>(m_realloc(pinned, pincap * sizeof(Matrix *), 2 * pincap * sizeof(Matrix *)));
    pincap *= 2;
}

// A value that nobody else holds becomes a temporary, for the sweep.
void unpinTo(uint32_t n) {
    while (npinned > n) unpinMat();
}

}  // namespace vesko
