// Call frames, variable slots, and the records of user functions.
//
// Frames are made once and reused. Between calls every slot of a frame holds theEmptyMat and no domain: the
// state the next call relies on. The slots of a frame lie side by side, so that reading a variable is one
// indexed load, and while the frame is in use they never move.
#pragma once

#include <cstdint>

#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {

struct PcNode;
struct Pod;
struct Xproc;
struct FuncFrame;

struct Variable {
    int32_t name;    // symbol index; no_value for a slot of a function's frame
    Matrix *value;   // linked; never null
    Matrix *domain;  // null, or linked: every assignment to the slot must satisfy it
};

// Entry point of a call: function, call node, parent (may be null).
using CallFn = Matrix *(*)(FuncRec *, PcNode *, Matrix *);

// The code of a user function, shared by all its copies.
struct FuncRecData {
    uint32_t nshares;
    Matrix *srcfile;  // linked
    uint32_t nargs;
    uint32_t nret_flags;  // outputs, plus mutator_flag if the text assigns to a field of parent
    uint32_t nslots;      // set by setFuncExe
    Vector *ctvars;       // CtVar of each slot
    PcNode *entry;
    CallFn call0, call1, call2, call3, call7;  // by the number of arguments at the call site
    PcNode *pclib, *smpclib;
    Pod *mempod;

    static constexpr uint32_t mutator_flag = 10000;
    bool isMutator() const { return nret_flags >= mutator_flag; }
    uint32_t nret() const { return nret_flags % mutator_flag; }
    bool hasOutputs() const { return nret() != 0; }
};

// A function object: the payload of a UF value.
struct FuncRec {
    FuncRecData *data;
    int32_t npublic;    // public parameters come first in parms
    Vector *parms;      // sfields; may be null
    uint8_t is_member;  // grants access to private and readonly fields of its class
    bool dropped;       // its value is gone, and the runtime still calls it: the last hold frees it
    uint32_t nholds;    // see holdFunc
    uint64_t owner;     // serial number of the class it belongs to, or 0
};

// A list of slots: all `cap` of them are sound Variables, `size` are in use.
struct VarList {
    Variable *slots;
    uint32_t size, cap;
};

struct FuncFrame {
    FuncRec *func;  // null at top level and in an automaton's frame
    Xproc *proc;    // null, or the automaton
    PcNode *pc;     // next statement
    VarList vars;
    Matrix *parent;    // object, class or function that the call is a member of, linked; or null
    uint32_t *status;  // liveness cell, once an address of a local was taken

    Variable *var(uint32_t k) const { return &vars.slots[k]; }
};

// ---- The stack.
extern FuncFrame **funcvec;
extern int32_t fvcap;        // frames that are ready
extern int32_t depth;        // 0 is the top level
extern FuncFrame *top;       // funcvec[depth]
extern Variable *topvarvec;  // slots of top

constexpr uint32_t n_ready_slots = 16;  // slots that every frame has
constexpr int32_t max_frames = 2048;
constexpr int32_t max_idle_frames = 512;  // kept after a failed command

void initFuncStack();
FuncFrame *newFunction(uint32_t n);
void destroyFunction(FuncFrame *frame);
void growFuncVec();  // recursion error at the limit
// The frame above the running one, not entered.
inline FuncFrame *getNextFunc() {
    if (depth + 1 == fvcap) [[unlikely]]
        growFuncVec();
    return funcvec[depth + 1];
}
void retireFrame(FuncFrame *frame);  // addresses of its locals die
// Unwinding: what an error skipped is emptied, but an automaton keeps its variables and its place.
void dumpFuncStack();  // everything, after a failed command
void dumpFuncStackTo(int32_t d);
inline bool inTopLevel() { return depth == 0; }
inline int32_t getStackDepth() { return depth; }
FuncRec *getTopFuncRec();
inline void enterFrame(FuncFrame *frame, int32_t at) {
    depth = at;
    top = frame;
    topvarvec = frame->vars.slots;
}

// Empties a slot, as a call finds it: the empty value, no domain. Stores before it releases.
inline void clearSlot(Variable *var) {
    Matrix *value = var->value;
    if (value != theEmptyMat()) {
        linkMat(theEmptyMat());
        var->value = theEmptyMat();
        ucReleaseMat(value);
    }
    if (Matrix *domain = var->domain) [[unlikely]] {
        var->domain = nullptr;
        ucReleaseMat(domain);
    }
}

// ---- Variables of the running frame.
inline Variable *getVar(uint32_t k) { return &topvarvec[k]; }
inline Matrix *getVarMat(uint32_t k) { return topvarvec[k].value; }
uint32_t getVarNum();
const char *getVarName(uint32_t k);
Matrix *updVar(uint32_t k, Matrix *m);    // links m, drops the old value; no domain check
void quickUpdVar(uint32_t k, Matrix *m);  // the old value was detached already
Matrix *updateVariable(Variable *var, Matrix *m);
Matrix *updLoopCounter(uint32_t k, Matrix *m);  // gives the variable the domain Class_D if it has none
void addVar(uint32_t symbol, Matrix *domain);   // new slot of the top frame; domain may be null
VarList newVarList(uint32_t n);
VarList newTopVarList();                      // grows in place
void growVarList(VarList &list, uint32_t n);  // of a frame that is not in use: the slots move
void addToVarList(VarList &list, uint32_t symbol, Matrix *value, Matrix *domain);  // of the top level
void freeVarList(VarList &list);
Variable *newVar(uint32_t symbol, Matrix *m);
Variable *newLocalVar(Matrix *m);
void freeVar(void *var);
void disp_top_varvec_info();
void auditFrame(const FuncFrame *frame);  // for the audit of links: its slots
void auditVariable(const Variable *var);  // for the audit of links: value and domain

// ---- Function records.
void setFuncExe(FuncRecData *data);      // chooses call0 to call7
FuncRec *newFuncRec(FuncRecData *data);  // takes one share of data over
void freeFuncRec(FuncRec *f);            // put off while it is held
void auditFuncRec(const FuncRec *f);     // for the audit of links: parameters and code
FuncRec *copyFuncRec(const FuncRec *f);
Matrix *copyUf(Matrix *f);         // own parameters, shared code
sfield *getParameter(uint32_t k);  // of the running function or automaton
// Evaluates the items of a parameter node into the list, public ones first. A value out of its domain leaves
// the parameter as it was; `complaint`, if any, is shown.
void setParms(Vector *parms, const PcNode *items, PcNode *node, const char *complaint);
Matrix **getParentP();

}  // namespace vesko
