// The frame protocol that every call of a user function follows.
//
// 0. The caller sees to it that the function object stays: a value in flight is pinned, a record is held.
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

namespace vesko {

// The frame for a call, with room for the function's slots. Frames of up to n_ready_slots need no test.
template <bool may_grow = true>
inline FuncFrame *openFrame(const FuncRecData *data) {
    FuncFrame *frame = getNextFunc();
    if (may_grow && frame->vars.cap < data->nslots) growVarList(frame->vars, data->nslots);
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

inline void runStatements() {
    while (PcNode *pc = top->pc) {
        countNode();
        pc->exec(pc);
    }
}

// Empties the slots from `first` on, as clearSlot does each.
inline void clearSlots(Variable *first, const Variable *end) {
    uint32_t emptied = 0;
    for (Variable *var = first; var < end; var++) {
        if (Matrix *value = var->value; value != theEmptyMat()) {
            var->value = theEmptyMat();
            emptied++;
            orderStores();
            ucReleaseMat(value);
        }
        if (var->domain) [[unlikely]]
            clearSlot(var);
    }
    theEmptyMat()->status += 2 * emptied;
}

// Takes the value out of a slot, which is left empty.
inline Matrix *takeSlot(Variable *var) {
    Matrix *value = var->value;
    linkMat(theEmptyMat());
    var->value = theEmptyMat();
    if (var->domain) [[unlikely]]
        clearSlot(var);
    orderStores();
    return detachMat(value);
}

template <bool has_outputs>
inline Matrix *runCall(FuncRec *f, FuncFrame *frame, Matrix *parent) {
    guardStack();
    const FuncRecData *data = f->data;
    FuncFrame *caller = top;
    if (parent) [[unlikely]]
        linkMat(parent);
    frame->func = f;
    frame->pc = data->entry;
    frame->parent = parent;
    orderStores();
    enterFrame(frame, depth + 1);
    runStatements();

    Variable *slots = frame->vars.slots;
    clearSlots(slots + 1, slots + data->nslots);
    Matrix *result = has_outputs ? takeSlot(slots) : theEmptyMat();
    if (frame->status) [[unlikely]]
        retireFrame(frame);
    if (Matrix *held = frame->parent) [[unlikely]] {
        frame->parent = nullptr;
        orderStores();
        detachMat(held);
    }
    orderStores();
    enterFrame(caller, depth - 1);
    return result;
}

inline Matrix *runAnyCall(FuncRec *f, FuncFrame *frame, Matrix *parent) {
    return f->data->hasOutputs() ? runCall<true>(f, frame, parent) : runCall<false>(f, frame, parent);
}

// The entries of a list go to the inputs in order, the other inputs take their defaults.
void spreadList(FuncFrame *frame, const FuncRecData *data, const Matrix *list);

}  // namespace vesko
