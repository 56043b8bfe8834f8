// The stack of call frames: growth, limits, and what is left after an error.
#include "engine/frame.h"

#include <cassert>

#include "console/message.h"
#include "engine/automatons.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

FuncFrame **funcvec;
int32_t fvcap;
int32_t depth;
FuncFrame *top;
Variable *topvarvec;

static int32_t funcvec_room;  // entries that funcvec has memory for; the first fvcap are frames

static void resizeFuncVec(int32_t room) {
    holdInterrupt();
    funcvec =
        static_cast<FuncFrame **>(m_realloc(funcvec, static_cast<size_t>(funcvec_room) * sizeof(FuncFrame *),
                                            static_cast<size_t>(room) * sizeof(FuncFrame *)));
    funcvec_room = room;
    freeInterrupt();
}

void auditFrame(const FuncFrame *frame) {
    for (uint32_t k = 0; k < frame->vars.cap; k++) auditVariable(frame->var(k));
    auditLink(frame->parent);
}

static void walkFrames() {
    for (int32_t k = 0; k < fvcap; k++) auditFrame(funcvec[k]);
}

void initFuncStack() {
    initPins();
    initAutomatons();
    setPayloadFree(L2::UF, [](Matrix *m) { freeFuncRec(m->func()); });
    setPayloadWalk(L2::UF, [](const Matrix *m) { auditFuncRec(m->func()); });
    addHolderWalk("frame", walkFrames);
    resizeFuncVec(16);
    while (fvcap < funcvec_room) {
        funcvec[fvcap] = newFunction(0);
        fvcap++;
    }
    freeVarList(funcvec[0]->vars);
    funcvec[0]->vars = newTopVarList();
    enterFrame(funcvec[0], 0);
}

FuncFrame *newFunction(uint32_t n) {
    FuncFrame *frame = mallocArray<FuncFrame>(1);
    *frame = {};
    frame->vars = newVarList(n ? n : n_ready_slots);
    return frame;
}

void destroyFunction(FuncFrame *frame) {
    freeVarList(frame->vars);
    m_free(frame, sizeof(FuncFrame));
}

void growFuncVec() {
    if (fvcap == funcvec_room) {
        if (2 * fvcap > max_frames) error_recursion_too_deep();
        resizeFuncVec(2 * fvcap);
    }
    // More frames than one at a time, and each counts as soon as it is there.
    int32_t wanted = funcvec_room;
    while (fvcap < wanted) {
        funcvec[fvcap] = newFunction(0);
        fvcap++;
    }
}

void retireFrame(FuncFrame *frame) {
    if (!frame->status) return;
    *frame->status -= 1;
    frame->status = nullptr;
}

FuncRec *getTopFuncRec() { return top ? top->func : nullptr; }

// Empties a frame that an error skipped. Slots beyond those in use are empty already, unless the error came
// between the storing of the arguments and the entry of the function.
static void abandonFrame(FuncFrame *frame) {
    retireFrame(frame);
    for (uint32_t k = 0; k < frame->vars.cap; k++) clearSlot(frame->var(k));
    frame->vars.size = 0;
    if (Matrix *parent = frame->parent) {
        frame->parent = nullptr;
        detachMat(parent);
    }
}

// Unwinds the frames above d. The frame next to the deepest one may hold arguments of a call that was not
// entered.
static void abandonFramesAbove(int32_t d) {
    int32_t last = depth + 1 < fvcap ? depth + 1 : depth;
    for (int32_t k = last; k > d; k--) {
        if (funcvec[k]->proc)
            funcvec[k] = takeFunc();
        else
            abandonFrame(funcvec[k]);
    }
    enterFrame(funcvec[d], d);
    freeDroppedAutomatons();
}

void dumpFuncStack() {
    unpinTo(0);
    releaseFuncsTo(0);
    bool in_call = depth != 0;
    if (in_call) xMesg("Call stack:");
    abandonFramesAbove(0);
    if (in_call) {
        xMesg("   depth 0: user command");
        xPrintLineBrk(true, 1);
    }
    if (fvcap <= max_idle_frames) return;
    while (fvcap > max_idle_frames) {
        fvcap--;
        destroyFunction(funcvec[fvcap]);
    }
    resizeFuncVec(max_idle_frames);
}

void dumpFuncStackTo(int32_t d) {
    assert(d <= depth);
    bool in_call = depth != d;
    if (in_call) xMesg("Call stack:");
    abandonFramesAbove(d);
    if (in_call) xMesg("   depth %d", d);
}

}  // namespace vesko
