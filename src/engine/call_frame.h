// The frame protocol that every call of a user function follows.
//
// 1. The arguments are evaluated in the caller's frame.
// 2. openFrame readies the frame above, and giveSlot stores the arguments in its slots 1, 2, ...: the values
//    themselves, uncopied. Each slot takes a link over; what the callee stores un-shares.
// 3. runCall enters the frame, runs the function, empties the slots, and answers what slot 0 held.
//
// An error within leaves the frame as it is: unwinding empties it. That holds for step 2 as well.
#pragma once

#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "values/pools.h"

namespace vesko {

// The frame for a call, with room for the function's slots. Frames of up to n_ready_slots need no test.
template <bool may_grow = true>
inline FuncFrame *openFrame(const FuncRecData *data) {
    FuncFrame *frame = getNextFunc();
    if constexpr (may_grow) {
        if (frame->vars->cap < data->ctvars->size) growVarList(frame->vars, data->ctvars->size);
    }
    return frame;
}

// An empty slot of a frame that is not entered takes a link on m.
inline void giveSlot(FuncFrame *frame, uint32_t k, Matrix *m) {
    linkMat(m);
    frame->var(k)->value = m;
    theEmptyMat()->status -= 2;
}

// Inputs from slot k on take their defaults.
inline void giveDefaults(FuncFrame *frame, const FuncRecData *data, uint32_t k) {
    for (; k <= data->nargs; k++) giveSlot(frame, k, data->ctvars->at<CtVar>(k)->value);
}

// Gives the link of a holder back: the value is a temporary if nobody else holds it.
inline Matrix *takeOut(Matrix *m) {
    m->status -= 2;
    if (m->isTemp()) noteForSweep(m);
    return m;
}

inline void runStatements() {
    while (PcNode *pc = top->pc) pc->exec(pc);
}

template <bool has_outputs>
inline Matrix *runCall(FuncRec *f, FuncFrame *frame, Matrix *parent) {
    guardStack();
    const FuncRecData *data = f->data;
    if (parent) linkMat(parent);
    f->running++;
    frame->func = f;
    frame->pc = data->entry;
    frame->parent = parent;
    orderStores();
    enterFrame(frame, depth + 1);
    runStatements();

    for (uint32_t k = 1, n = data->ctvars->size; k < n; k++) clearSlot(frame->var(k));
    Matrix *result = theEmptyMat();
    if constexpr (has_outputs) {
        Variable *out = frame->var(0);
        result = out->value;
        linkMat(theEmptyMat());
        out->value = theEmptyMat();
        if (Matrix *domain = out->domain) [[unlikely]] {
            out->domain = nullptr;
            ucReleaseMat(domain);
        }
        orderStores();
        takeOut(result);
    }
    if (frame->status) [[unlikely]]
        retireFrame(frame);
    if (parent) {
        frame->parent = nullptr;
        orderStores();
        takeOut(parent);
    }
    orderStores();
    enterFrame(funcvec[depth - 1], depth - 1);
    orderStores();
    leaveFuncRec(f);
    return result;
}

inline Matrix *runAnyCall(FuncRec *f, FuncFrame *frame, Matrix *parent) {
    return f->data->hasOutputs() ? runCall<true>(f, frame, parent) : runCall<false>(f, frame, parent);
}

// The entries of a list go to the inputs in order, the other inputs take their defaults.
void spreadList(FuncFrame *frame, const FuncRecData *data, const Matrix *list);

}  // namespace vesko
