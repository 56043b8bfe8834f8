// Automatons: their records, and control as it moves into them, between them and out of them.
#include "engine/automatons.h"

#include <cassert>

#include "console/message.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

// Frames whose place on the stack an automaton's frame has taken: as many as there are runs.
static Vector *savedfuncs;

// ---- Records

FuncFrame *newAutomatonFrame(uint32_t n) {
    Xproc *proc = newBlock<Xproc>();
    *proc = {};
    proc->ports = newVector(3);
    addElement(proc->ports, newXport());
    FuncFrame *frame = newFunction(n);
    frame->proc = proc;
    return frame;
}

static void freeXproc(FuncFrame *frame) {
    Xproc *proc = frame->proc;
    retireFrame(frame);
    freeVector(proc->parms, freeSfield);
    recyclePcLib(proc->pclib);
    recycleSMPcLib(proc->smpclib);
    freemempod = mergeMemPods(proc->mempod, freemempod);
    freeVector(proc->ports, freeXport);
    recycleBlock(proc);
    destroyFunction(frame);
}

static FuncFrame *dropped;

// A run may stand in the text, or come back to it, and a store below a call may work on a variable of the
// automaton. So it is kept until the top level is reached.
static bool mayBeInUse() { return depth > 0 || savedfuncs->size > 0; }

static void dropAutomaton(Matrix *m) {
    FuncFrame *frame = frameOf(m);
    if (!mayBeInUse()) return freeXproc(frame);
    frame->proc->next_dropped = dropped;
    dropped = frame;
}

void freeDroppedAutomatons() {
    if (mayBeInUse()) return;
    while (FuncFrame *frame = dropped) {
        holdInterrupt();
        dropped = frame->proc->next_dropped;
        freeXproc(frame);
        freeInterrupt();
    }
}

static void auditAutomaton(const Matrix *m) {
    const Xproc *proc = procOf(m);
    auditFrame(frameOf(m));
    auditFields(proc->parms);
    auditNodes(proc->pclib);
    auditNodes(proc->smpclib);
    for (uint32_t k = 0; k < proc->ports->size; k++) auditXport(proc->ports->at<Xport>(k));
}

void initAutomatons() {
    savedfuncs = newVector(8);
    setPayloadFree(L2::AUTOMATON, dropAutomaton);
    setPayloadWalk(L2::AUTOMATON, auditAutomaton);
}

// ---- Control

FuncFrame *takeFunc() {
    assert(savedfuncs->size > 0);
    return savedfuncs->at<FuncFrame>(--savedfuncs->size);
}

static void standIn(FuncFrame *automaton, int32_t at) {
    funcvec[at] = automaton;
    orderStores();
    enterFrame(automaton, at);
}

static void activate(FuncFrame *automaton) {
    Xproc *proc = automaton->proc;
    if (!proc->resume) return;
    automaton->pc = proc->resume;
    orderStores();
    proc->resume = nullptr;
}

void runAutoMaton(Matrix *a) {
    guardStack();
    FuncFrame *caller = top;
    const int32_t at = depth + 1;
    FuncFrame *spare = getNextFunc();
    reserveElement(savedfuncs);
    holdInterrupt();
    addElement(savedfuncs, spare);
    standIn(frameOf(a), at);
    freeInterrupt();
    activate(top);
    exec_func();
    holdInterrupt();
    funcvec[at] = takeFunc();
    enterFrame(caller, at - 1);
    freeInterrupt();
    freeDroppedAutomatons();
}

void enterAutomaton(FuncFrame *automaton) {
    standIn(automaton, depth);
    automaton->proc->resume = nullptr;
}

// Children are the target and the statement behind, which may be null: then the automaton's next activation
// yields again.
Matrix *procYield(PcNode *node) {
    FuncFrame *self = top;
    if (!self->proc) error_undef_opr(node, nullptr, NodeKind::Yield);
    Matrix *m = node->eval(0);
    if (m->l2type != L2::AUTOMATON) error_undef_opr(node, nullptr, NodeKind::Yield);
    FuncFrame *target = frameOf(m);
    if (target == self) {
        top->pc = node->child(1);
        return nullptr;
    }
    self->proc->resume = node->child(1);
    standIn(target, depth);
    activate(target);
    releaseMat(m);
    return nullptr;
}

// The child is the statement behind; in a function body the function ends.
Matrix *procStop(PcNode *node) {
    if (top->proc) top->proc->resume = node->child(0);
    top->pc = nullptr;
    return nullptr;
}

// ---- The definition. Children are parameters and the automaton: there is one of it, however often control
// passes.
Matrix *setProcStates(PcNode *node) {
    Matrix *m = node->child(1)->constant;
    if (m->nlinks() > 1) xMesg("fmat multi-linked");
    pinMat(m);
    setParms(procOf(m)->parms, node->child(0), node, nullptr);
    return unpinMat();
}

}  // namespace vesko
