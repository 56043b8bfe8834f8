// Making values whose payload is a record of its own.
#pragma once

#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {

// A value of the kind, with the payload that make() gives. The value owns it at once, also over an interrupt.
template <class Make>
Matrix *newPayloadMat(L2 kind, Make make) {
    Matrix *m = newPfMat();
    holdInterrupt();
    m->vdata = make();
    m->l2type = kind;
    freeInterrupt();
    return m;
}

inline Matrix *newHashMat(uint32_t n) {
    return newPayloadMat(L2::HASH, [n] { return newHashTable(n); });
}
// A pointer, or a set of pointers: holds a link on its target.
inline Matrix *newReferenceMat(L2 kind, Matrix *target) {
    return newPayloadMat(kind, [target] {
        linkMat(target);
        return target;
    });
}
inline Matrix *newSetMat() { return newPayloadMat(L2::FSET, newXSet); }

}  // namespace vesko
