// Global variables: one numbering, in which the newest entry of a name wins, and their node handlers.
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/names.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

Vector *glbvarvec;  // Variable, by global index

uint32_t addGv(uint32_t symbol, Matrix *value) { return addGvWithDomain(symbol, value, nullptr); }

uint32_t addGvWithDomain(uint32_t symbol, Matrix *value, Matrix *domain) {
    Variable *var = newVar(symbol, value);
    if (domain) linkMat(domain);
    var->domain = domain;
    holdInterrupt();
    uint32_t k = addElement(glbvarvec, var);
    nameOf(symbol)->global = k;
    freeInterrupt();
    return k;
}

uint32_t findGv(uint32_t symbol) { return nameOf(symbol)->global; }
uint32_t findGvByStr(const char *text) { return findGv(findSymbolIndex(text)); }

uint32_t cFindGv(uint32_t symbol) {
    uint32_t k = findGv(symbol);
    return k != not_found ? k : addGv(symbol, newGvMat(glbvarvec->size));
}

Variable *getGlobalVariable(uint32_t k) { return glbvarvec->at<Variable>(k); }
Matrix *getGv(uint32_t k) { return getGlobalVariable(k)->value; }
void updGv(uint32_t k, Matrix *value) { replaceMat(getGlobalVariable(k)->value, value); }

Matrix *getGVForUpd(uint32_t k) {
    Matrix *value = getGv(k);
    return value->nlinks() > 1 ? replaceMat(getGlobalVariable(k)->value, cloneMatrix(value)) : value;
}

// ---- Node handlers

Matrix *getGvar(PcNode *node) { return getGv(node->value); }

static bool isFree(const Matrix *domain) { return !domain || domain == theCompleteMat(); }
static const char *globalName(PcNode *node) { return getSymbolName(getGlobalVariable(node->value)->name); }

// The first assignment to a global may give it a domain: global.x = v in D.
static Matrix *initGlobal(PcNode *node, PcNode *in_node) {
    Variable *var = getGlobalVariable(node->value);
    if (var->value->l2type != L2::GV || !isFree(var->domain)) error_gvar_assign(node, globalName(node), true);
    Matrix *value = pinMat(in_node->eval(0));
    Matrix *domain = pinMat(in_node->eval(1));
    if (!memberOfSet(value, domain, node)) error_gvar_assign(node, globalName(node), false);
    linkMat(domain);
    if (var->domain) ucReleaseMat(var->domain);
    var->domain = domain;
    replaceMat(var->value, value);
    unpinMat();
    return unpinMat();
}

// Children: the target, the value.
Matrix *doGVarAsgn(PcNode *node) {
    PcNode *right = node->child(1);
    if (right->kind == NodeKind::In) return initGlobal(node, right);
    Variable *var = getGlobalVariable(node->value);
    Matrix *value = pinMat(right->exec(right));
    if (!isFree(var->domain) && !memberOfSet(value, var->domain, node))
        error_gvar_assign(node, globalName(node), false);
    replaceMat(var->value, value);
    return unpinMat();
}

}  // namespace vesko
