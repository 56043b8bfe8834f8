// The stacks of pins.
#include "engine/pins.h"

#include <cassert>

#include "engine/frame.h"
#include "engine/interrupt.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

Matrix **pinned;
uint32_t npinned, pincap;

static FuncRec **held;
static uint32_t nheld, heldcap;

struct OpenStore {
    TakeBack take_back;
    void *place;
    uint32_t pin;  // the old value
};
static OpenStore *stores;
static uint32_t nstores, storecap;

template <class T>
static void doubleStack(T *&stack, uint32_t &cap) {
    holdInterrupt();
    stack = static_cast<T *>(m_realloc(stack, cap * sizeof(T), 2 * size_t{cap} * sizeof(T)));
    cap *= 2;
    freeInterrupt();
}

void initPins() {
    pincap = heldcap = storecap = 1024;
    stores = static_cast<OpenStore *>(i_malloc(storecap * sizeof(OpenStore)));
    pinned = static_cast<Matrix **>(i_malloc(pincap * sizeof(Matrix *)));
    held = static_cast<FuncRec **>(i_malloc(heldcap * sizeof(FuncRec *)));
    addHolderWalk("pin", [] {
        for (uint32_t k = 0; k < npinned; k++) auditLink(pinned[k]);
    });
}

void growPins() { doubleStack(pinned, pincap); }

void holdFunc(FuncRec *f) {
    if (nheld == heldcap) doubleStack(held, heldcap);
    f->nholds++;
    held[nheld++] = f;
}

void releaseFunc() {
    FuncRec *f = held[--nheld];
    if (--f->nholds == 0 && f->dropped) freeFuncRec(f);
}

void openStore(TakeBack take_back, void *place, Matrix *old) {
    if (nstores == storecap) doubleStack(stores, storecap);
    pinMat(old);
    stores[nstores] = {take_back, place, npinned - 1};
    orderStores();
    nstores++;
}

static void putBack(void *slot, Matrix *old) { replaceMat(*static_cast<Matrix **>(slot), old); }

void openStore(Matrix **slot, Matrix *old) { openStore(putBack, slot, old); }

static bool isStoreOpen(uint32_t pin) { return nstores && stores[nstores - 1].pin >= pin; }

void closeStore(bool keep) {
    assert(isStoreOpen(npinned - 1));
    const OpenStore &store = stores[nstores - 1];
    if (!keep) store.take_back(store.place, pinned[npinned - 1]);
    nstores--;
    orderStores();
    releaseMat(unpinMat());
}

void releasePins(uint32_t n) {
    assert(npinned >= n);
    while (isStoreOpen(n)) nstores--;
    orderStores();
    while (npinned > n) releaseMat(unpinMat());
}

// A value that nobody else holds becomes a temporary, for the sweep.
void unpinTo(uint32_t n) {
    while (npinned > n) {
        if (isStoreOpen(npinned - 1))
            closeStore(false);
        else
            unpinMat();
    }
}

uint32_t heldFuncCount() { return nheld; }

void releaseFuncsTo(uint32_t n) {
    while (nheld > n) releaseFunc();
}

}  // namespace vesko
