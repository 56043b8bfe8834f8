// Compile-time variables: what the parser knows of the variables of a scope, and the protection of counters.
#include "builtins/bfunc.h"
#include "engine/frame.h"
#include "engine/pins.h"
#include "frontend/names.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "frontend/token.h"
#include "operators/dispatch.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

static bool atTopLevel() { return progstkdepth == 0; }

// ---- Records

CtVar *newCtVar(uint32_t symbol, Matrix *value, Matrix *domain) {
    CtVar *var = newBlock<CtVar>();
    linkMat(value);
    linkMat(domain);
    *var = {symbol, DomainMode::RunFree, domain, value, 0, nullptr};
    return var;
}

void updateCtVar(CtVar *var, Matrix *value, Matrix *domain) {
    replaceMat(var->value, value);
    replaceMat(var->domain, domain);
}

void auditCtVars(const Vector *vars) {
    const uint32_t n = vars ? vars->size : 0;
    for (uint32_t k = 0; k < n; k++) {
        const auto *var = vars->at<CtVar>(k);
        auditLink(var->value);
        auditLink(var->domain);
    }
}

void freeCtVar(void *entry) {
    auto *var = static_cast<CtVar *>(entry);
    ucReleaseMat(var->value);
    ucReleaseMat(var->domain);
    recycleBlock(var);
}

static uint32_t addCtVar(uint32_t symbol, Matrix *value, Matrix *domain, DomainMode mode) {
    CtVar *var = newCtVar(symbol, value, domain);
    var->attr = mode;
    uint32_t k = addElement(ctscope->vars, var);
    if (atTopLevel()) nameOf(symbol)->topvar = k;
    return k;
}

// ---- Look-up

CtVar *getCtVar(uint32_t k) { return ctscope->vars->at<CtVar>(k); }

uint32_t findVarIndex(uint32_t symbol) {
    if (atTopLevel()) return nameOf(symbol)->topvar;
    const Vector *vars = ctscope->vars;
    for (uint32_t k = 0; k < vars->size; ++k)
        if (vars->at<CtVar>(k)->symbol == symbol) return k;
    return not_found;
}

uint32_t cFindVarIndex(uint32_t symbol) {
    uint32_t k = findVarIndex(symbol);
    if (k != not_found) return k;
    if (atTopLevel()) addVar(symbol, nullptr);
    return addCtVar(symbol, theEmptyMat(), theCompleteMat(), DomainMode::RunFree);
}

// The value of a constant, global or built-in; null for what is known at run time only.
static Matrix *knownValue(PcNode *node) {
    switch (node->kind) {
        case NodeKind::Constant:
        case NodeKind::GlobalVar:
        case NodeKind::Builtin: return node->exec(node);
        default: return nullptr;
    }
}

static DomainMode domainMode(bool value_known, const Matrix *domain) {
    if (!domain) return value_known ? DomainMode::KnownRun : DomainMode::RunRun;
    if (domain == theCompleteMat()) return value_known ? DomainMode::KnownFree : DomainMode::RunFree;
    return value_known ? DomainMode::KnownKnown : DomainMode::RunKnown;
}

uint32_t cFindVarIndexWithDomain(uint32_t symbol, PcNode *in_node) {
    if (findVarIndex(symbol) != not_found)
        syntaxError(in_node->line, "resetting domain of '%s'", getSymbolName(symbol));
    Matrix *value = knownValue(in_node->child(0));
    Matrix *domain = knownValue(in_node->child(1));
    DomainMode mode = domainMode(value, domain);
    if (mode == DomainMode::KnownKnown && !memberOfSet(value, domain, in_node))
        syntaxError(in_node->line, "default of variable is not in domain");
    if (atTopLevel()) addVar(symbol, domain ? domain : in_node->eval(1));
    return addCtVar(symbol, value ? value : theEmptyMat(), domain ? domain : theCompleteMat(), mode);
}

uint32_t registerVar(uint32_t symbol, PcNode *formal) {
    if (findVarIndex(symbol) != not_found) return not_found;
    if (!formal) return addCtVar(symbol, theEmptyMat(), theCompleteMat(), DomainMode::KnownFree);
    PcNode *dflt = formal->child(0), *domain = formal->child(1);
    Matrix *value = dflt->isConstant() ? dflt->constant : nullptr;
    Matrix *set = domain->isConstant() ? domain->constant : nullptr;
    return addCtVar(symbol, value ? value : theEmptyMat(), set ? set : theCompleteMat(),
                    domainMode(value, set));
}

// ---- Loop counters

// A variable that was free becomes one of real scalars.
static void makeCounter(CtVar *var, uint32_t line) {
    switch (var->attr) {
        case DomainMode::KnownKnown:
        case DomainMode::RunKnown:
            if (var->domain == Class_D) return;
            break;
        case DomainMode::KnownFree:
        case DomainMode::RunFree:
            var->attr = var->attr == DomainMode::KnownFree ? DomainMode::KnownKnown : DomainMode::RunKnown;
            replaceMat(var->domain, Class_D);
            return;
        default: break;
    }
    syntaxError(line, "cannot use '%s' as loop counter", getSymbolName(var->symbol));
}

uint32_t getLoopCounterIndex(uint32_t symbol, uint32_t line) {
    uint32_t k = findVarIndex(symbol);
    if (k == not_found) {
        if (atTopLevel()) addVar(symbol, Class_D);
        return addCtVar(symbol, theEmptyMat(), Class_D, DomainMode::RunKnown);
    }
    if (isprotected(k)) syntaxError(line, "loop counter reused");
    makeCounter(getCtVar(k), line);
    return k;
}

// Hidden variables are named by as many stars as loops are open: loops of one depth share theirs.
uint32_t newVarIndex() {
    constexpr uint32_t max_depth = 4096;
    static char stars[max_depth + 1];
    uint32_t n = ctscope->loopdepth;
    if (n > max_depth) syntaxTooDeep();
    for (uint32_t k = 0; k < n; ++k) stars[k] = '*';
    stars[n] = '\0';
    return cFindVarIndex(findSymbolIndex(stars));
}

static uint32_t findProtected(uint32_t k) {
    const Vector *counters = ctscope->protect;
    for (uint32_t i = 0; i < counters->size; ++i)
        if (counters->numberAt(i) == k) return i;
    return not_found;
}

bool isprotected(uint32_t k) { return findProtected(k) != not_found; }

void protectvar(uint32_t k) {
    if (isprotected(k)) tokenError("loop counter reused");
    addElement(ctscope->protect, asEntry(k));
}

void unprotectvar(uint32_t k) {
    uint32_t at = findProtected(k);
    if (at == not_found) tokenError("variable not protected");
    removeElementAt(ctscope->protect, at);
}

// ---- Defaults and domains of formal arguments

static void setFormal(CtVar *var, PcNode *formal) {
    Matrix *value = pinMat(formal->eval(0));
    Matrix *domain = pinMat(formal->eval(1));
    if (value != theEmptyMat() && domain != theCompleteMat() && !memberOfSet(value, domain, formal))
        syntaxError(formal->line, "default value of argument '%s' outside domain",
                    getSymbolName(var->symbol));
    updateCtVar(var, value, domain);
    unpinMat();
    unpinMat();
}

void setCtVarVector(Vector *vars, PcNode *outputs, PcNode *inputs) {
    if (outputs->ncub == 1) setFormal(vars->at<CtVar>(0), outputs->child(0));
    for (uint32_t k = 0; k < inputs->ncub; ++k) setFormal(vars->at<CtVar>(k + 1), inputs->child(k));
}

static bool isTrivial(const PcNode *formal) {
    const PcNode *value = formal->child(0), *domain = formal->child(1);
    return value->isConstant() && value->constant == theEmptyMat() && domain->isConstant() &&
           domain->constant == theCompleteMat();
}

bool non_trivial_io_args(PcNode *outputs, PcNode *inputs) {
    if (outputs->ncub == 1 && !isTrivial(outputs->child(0))) return true;
    for (uint32_t k = 0; k < inputs->ncub; ++k)
        if (!isTrivial(inputs->child(k))) return true;
    return false;
}

}  // namespace vesko
