// `try` and `throw`.
//
// A try covers the rest of the statement list it stands in: its body and its catch body lead on to the
// statement behind it, so the walk that it starts ends with the function or command. A try that is met within
// that walk is entered in the same walk. So there is one jump buffer a walk, while the open tries are a list
// beside the machine stack, which a try in a long loop must not fill.
#include "engine/exceptions.h"

#include <csetjmp>

#include "console/command.h"
#include "engine/automatons.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/containers.h"
#include "values/memory.h"

namespace vesko {

namespace {

struct Xex {
    uint32_t name;  // symbol
    Matrix *value;  // of the last throw; linked
};

// A walk that catches, on the machine stack of execTryBlock.
struct TryWalk {
    sigjmp_buf jmp;
    int32_t depth;          // of the frame whose statements it walks
    uint32_t npins, nheld;  // values and functions that were held when it began
    uint32_t base;          // its tries are the open ones from here on
    TryWalk *outer;
};

// Tries that were entered and are not over, innermost last. The same try entered again is counted. Automatons
// that yield to each other share a walk.
struct OpenTry {
    PcNode *node;
    TryWalk *walk;
    uint32_t times;
    FuncFrame *frame;

    uint32_t exception() const { return static_cast<uint32_t>(node->value); }
};

Vector *xexvec;
OpenTry *opentries;
uint32_t nopentries, opencap;
TryWalk *innermost;

Xex *xexAt(uint32_t id) { return xexvec->at<Xex>(id); }

Xex *newXex(uint32_t symbol) {
    Xex *exception = newBlock<Xex>();
    *exception = {symbol, theEmptyMat()};
    linkMat(exception->value);
    return exception;
}

void growOpenTries() {
    uint32_t cap = opencap ? 2 * opencap : 16;
    opentries =
        static_cast<OpenTry *>(m_realloc(opentries, opencap * sizeof(OpenTry), cap * sizeof(OpenTry)));
    opencap = cap;
}

void openTry(PcNode *node, TryWalk *walk) {
    OpenTry *last = nopentries > walk->base ? &opentries[nopentries - 1] : nullptr;
    if (last && last->node == node) {
        last->times++;
    } else {
        if (nopentries == opencap) growOpenTries();
        opentries[nopentries] = {node, walk, 1, top};
        nopentries++;
    }
    top->pc = node->child(0);
}

// The innermost open try of the exception, or null.
OpenTry *findOpenTry(uint32_t exception) {
    for (uint32_t k = nopentries; k-- > 0;)
        if (opentries[k].exception() == exception) return &opentries[k];
    return nullptr;
}

// What the jump leaves for its landing.
PcNode *catch_body;
FuncFrame *catch_frame;

// The try is over once its catch body begins, and so are those opened within it.
[[noreturn]] void leaveFor(OpenTry *open) {
    catch_body = open->node->child(1);
    catch_frame = open->frame;
    innermost = open->walk;
    nopentries = static_cast<uint32_t>(open - opentries) + 1;
    if (--open->times == 0) nopentries--;
    siglongjmp(innermost->jmp, 1);
}

void makeXexvec() {
    xexvec = newVector(8);
    addHolderWalk("exception", [] {
        for (uint32_t k = 0; k < xexvec->size; k++) auditLink(xexAt(k)->value);
    });
}

}  // namespace

uint32_t findXexId(uint32_t symbol) {
    if (!xexvec) makeXexvec();
    for (uint32_t k = 0; k < xexvec->size; k++)
        if (xexAt(k)->name == symbol) return k;
    return addElement(xexvec, newXex(symbol));
}

bool anythingIsCaught() { return findOpenTry(0) != nullptr; }

void jumpToCatch() { leaveFor(findOpenTry(0)); }

void resetExceptions() {
    nopentries = 0;
    innermost = nullptr;
}

// Kind Try is a statement: children are the two bodies, whose ends lead to the statement behind.
Matrix *execTryBlock(PcNode *node) {
    if (innermost && innermost->depth == depth) {
        openTry(node, innermost);
        return theEmptyMat();
    }
    guardStack();
    TryWalk walk;
    walk.depth = depth;
    walk.npins = pinCount();
    walk.nheld = heldFuncCount();
    walk.base = nopentries;
    walk.outer = innermost;
    if (sigsetjmp(walk.jmp, 1) == 0) {
        openTry(node, &walk);
        innermost = &walk;
    } else {
        resetInterruptHold();
        unpinTo(walk.npins);
        releaseFuncsTo(walk.nheld);
        dumpFuncStackTo(walk.depth);
        if (catch_frame->proc) enterAutomaton(catch_frame);
        top->pc = catch_body;
    }
    exec_func();
    nopentries = walk.base;
    innermost = walk.outer;
    return theEmptyMat();
}

Matrix *throwXex(PcNode *node) {
    uint32_t id = static_cast<uint32_t>(node->value);
    replaceMat(xexAt(id)->value, node->eval(0));
    if (OpenTry *open = findOpenTry(id)) leaveFor(open);
    returnToTopLevel();
}

}  // namespace vesko
