// Compile scopes: opening, leaving, and the clean-up that every command begins with.
#include <cassert>

#include "engine/exceptions.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "frontend/inst.h"
#include "frontend/names.h"
#include "frontend/parser.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "frontend/token_text.h"
#include "operators/dispatch.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

CtScope *ctscope;
uint32_t progstkdepth;
Pod *freemempod;

static CtScope *newCtScope(CtScope *parent) {
    auto *scope = static_cast<CtScope *>(m_malloc(sizeof(CtScope)));
    *scope = {};
    scope->protect = newVector(5);
    scope->parent = parent;
    return scope;
}

static void clearScope(CtScope *scope) {
    scope->pclib = scope->smpclib = scope->returnnode = nullptr;
    scope->mempod = nullptr;
    scope->usesparent = false;
    scope->loopdepth = scope->blockdepth = scope->nin = scope->nout = 0;
    scope->protect->size = 0;
}

CtScope *openScope(char kind, Vector *parms, uint32_t nvars) {
    if (!ctscope->child) ctscope->child = newCtScope(ctscope);
    CtScope *scope = ctscope->child;
    clearScope(scope);
    scope->kind = kind;
    scope->parms = parms;
    scope->vars = nullptr;
    ctscope = scope;
    ++progstkdepth;
    scope->vars = newVector(nvars);
    return scope;
}

void leaveScope() {
    assert(progstkdepth > 0);
    ctscope = ctscope->parent;
    --progstkdepth;
}

// ---- Counters of loops and blocks

uint32_t getLoopDepth() { return ctscope->loopdepth; }
void incLoopDepth() { ++ctscope->loopdepth; }
void decLoopDepth() { --ctscope->loopdepth; }
void resetLoopDepth() { ctscope->loopdepth = 0; }
void incBlockDepth() { ++ctscope->blockdepth; }
void decBlockDepth() { --ctscope->blockdepth; }
void resetBlockDepth() { ctscope->blockdepth = 0; }

// ---- Clean-up

// Gives back the nodes of the scope. Each chain is taken out before it is recycled, so that an interrupt
// never recycles it twice.
static void dropNodes(CtScope *scope) {
    PcNode *nodes = scope->pclib, *constants = scope->smpclib;
    Pod *pods = scope->mempod;
    holdInterrupt();
    scope->pclib = scope->smpclib = scope->returnnode = nullptr;
    scope->mempod = nullptr;
    recyclePcLib(nodes);
    recycleSMPcLib(constants);
    if (pods) freemempod = mergeMemPods(pods, freemempod);
    freeInterrupt();
}

static void dropVars(CtScope *scope) {
    Vector *vars = scope->vars, *parms = scope->parms;
    holdInterrupt();
    scope->vars = scope->parms = nullptr;
    freeVector(vars, freeCtVar);
    freeVector(parms, freeSfield);
    freeInterrupt();
}

// A command that failed leaves scopes open.
static void closeScopes() {
    while (progstkdepth > 0) {
        dropVars(ctscope);
        dropNodes(ctscope);
        resetLoopDepth();
        resetBlockDepth();
        leaveScope();
    }
}

void throwVars() {
    recycleInstLib();
    recycleTokLib();
    recycleTexts();
    closeScopes();
    resetRefStackPtr();
    dropNodes(ctscope);
    clearScope(ctscope);
    resetTokenReadingDepth();
}

// ---- The audit of links. Scopes kept for reuse hold nothing.

static void auditScopes() {
    for (const CtScope *scope = ctscope; scope; scope = scope->parent) {
        auditCtVars(scope->vars);
        auditFields(scope->parms);
        auditNodes(scope->pclib);
        auditNodes(scope->smpclib);
    }
}

static void auditGlobals() {
    for (uint32_t k = 0; k < glbvarvec->size; k++) auditVariable(getGlobalVariable(k));
}

// ---- Start

void setTopVarList() {
    initNames();
    initSourceStack();
    glbvarvec = newVector(512);
    ctscope = newCtScope(nullptr);
    ctscope->kind = 'F';
    ctscope->vars = newVector(15);
    cFindVarIndex(findSymbolIndex("ans"));
    fillMatchCodes();
    addHolderWalk("scope", auditScopes);
    addHolderWalk("global", auditGlobals);
    findXexId(findSymbolIndex("anything"));
}

}  // namespace vesko
