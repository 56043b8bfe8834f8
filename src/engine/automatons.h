// Automatons: coroutines with mailboxes.
//
// An automaton owns a frame, which keeps its variables and its place in the text between runs. A run puts
// that frame on the stack of calls; `yield` puts another automaton's frame in its stead. So a transfer
// switches frames and needs no stack of its own, and control leaves a run only by `stop`, `return` or the end
// of a text.
#pragma once

#include "engine/frame.h"
#include "engine/node.h"

namespace vesko {

// What an automaton sends goes to `out`, what it gets comes from `in`. Connected ports share a queue.
struct Xport {
    xqueue *out, *in;
};

struct Xproc {
    PcNode *entry;   // first statement
    PcNode *resume;  // where the next activation goes on; null: where the frame stands
    Vector *parms;   // sfields; may be null
    Vector *ports;   // Xport; at least one
    PcNode *pclib, *smpclib;
    Pod *mempod;
    FuncFrame *next_dropped;
};

inline FuncFrame *frameOf(const Matrix *m) { return static_cast<FuncFrame *>(m->vdata); }
inline Xproc *procOf(const Matrix *m) { return frameOf(m)->proc; }

// ---- Making and running
void initAutomatons();                      // at start: tells how automatons are freed
FuncFrame *newAutomatonFrame(uint32_t n);   // with n slots, a port, and no text
void runAutoMaton(Matrix *a);               // until the automaton that is current then has no next statement
void enterAutomaton(FuncFrame *automaton);  // takes the place of the one that runs
FuncFrame *takeFunc();                      // a frame for the place of an automaton's on the stack
void freeDroppedAutomatons();               // those that lost their last holder in a call that is over

// ---- Ports, numbered from 1
Xport *newXport();
void freeXport(void *port);
void auditXport(const Xport *port);
Xport *growPorts(const Xproc *proc, uint32_t k);
// Missing ones up to the k-th are made.
inline Xport *portAt(const Xproc *proc, uint32_t k) {
    return k <= proc->ports->size ? proc->ports->at<Xport>(k - 1) : growPorts(proc, k);
}
uint32_t portNumber(Matrix *value, PcNode *node);  // or the error of the index node

}  // namespace vesko
