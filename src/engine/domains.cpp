// Declarations with a domain, the tests at the head of functions, and the names of domains in messages.
#include "engine/domains.h"

#include <cassert>
#include <iterator>

#include "builtins/bfunc.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"

namespace vesko {

static void setDomain(Variable *var, Matrix *domain) {
    Matrix *old = var->domain;
    linkMat(domain);
    var->domain = domain;
    if (old) ucReleaseMat(old);
}

// ---- Declarations: the child is a node with the value and the domain as children. What is a constant was
// recorded at compile time, and when both are the test was made then.

static CtVar *ctVarOf(const PcNode *node) { return top->func->data->ctvars->at<CtVar>(node->value); }

// The value and the domain are pinned.
static Matrix *declare(PcNode *node, Matrix *value, Matrix *domain) {
    if (!memberOfSet(value, domain, node)) error_asgn_justify(node);
    Variable *var = getVar(node->value);
    setDomain(var, domain);
    replaceMat(var->value, value);
    unpinMat();
    unpinMat();
    return value;
}

Matrix *initVarDomain_CC(PcNode *node) {
    const CtVar *known = ctVarOf(node);
    Variable *var = getVar(node->value);
    setDomain(var, known->domain);
    return replaceMat(var->value, known->value);
}

Matrix *initVarDomain_CV(PcNode *node) {
    Matrix *value = pinMat(ctVarOf(node)->value);
    return declare(node, value, pinMat(node->child(0)->eval(1)));
}

Matrix *initVarDomain_VC(PcNode *node) {
    Matrix *value = pinMat(node->child(0)->eval(0));
    return declare(node, value, pinMat(ctVarOf(node)->domain));
}

Matrix *initVarDomain_VV(PcNode *node) {
    Matrix *value = pinMat(node->child(0)->eval(0));
    return declare(node, value, pinMat(node->child(0)->eval(1)));
}

Matrix *doVarAsgnChkDomain(PcNode *node) {
    Matrix *value = node->eval(0);
    Variable *var = getVar(node->value);
    if (value->l1type == L1::RS && var->domain && hasRealQuickly(var->domain, *value->rdata))
        return replaceMat(var->value, value);
    pinMat(value);
    if (var->domain && !memberOfSet(value, var->domain, node)) error_asgn_justify(node);
    replaceMat(var->value, value);
    unpinMat();
    return value;
}

// ---- At the head of a function: its inputs are tested, and its outputs get their defaults. From then on the
// slots have their domains.

static bool isFree(const Matrix *domain) { return domain == theCompleteMat(); }

static void checkInputs(PcNode *node, uint32_t n) {
    for (uint32_t k = 1; k <= n; k++) {
        Matrix *domain = top->func->data->ctvars->at<CtVar>(k)->domain;
        if (isFree(domain)) continue;
        pinMat(domain);
        if (!memberOfSet(getVarMat(k), domain, node)) error_domain_check(node, static_cast<int32_t>(k));
        setDomain(getVar(k), domain);
        unpinMat();
    }
}

static void prepareOutputs(uint32_t first, uint32_t n) {
    for (uint32_t k = first; k < first + n; k++) {
        const CtVar *output = top->func->data->ctvars->at<CtVar>(k);
        replaceMat(getVar(k)->value, output->value);
        if (!isFree(output->domain)) setDomain(getVar(k), output->domain);
    }
}

static uint32_t firstOutput() { return top->func->data->nargs + 1; }

#define INPUTS(suffix, n)                             \
    Matrix *checkInputDomain_##suffix(PcNode *node) { \
        checkInputs(node, n);                         \
        return theEmptyMat();                         \
    }
#define OUTPUTS(suffix, first, n)                                       \
    Matrix *checkOutputDomain_##suffix([[maybe_unused]] PcNode *node) { \
        prepareOutputs(first, n);                                       \
        return theEmptyMat();                                           \
    }
INPUTS(1, 1)
INPUTS(2, 2)
INPUTS(3, 3)
INPUTS(7, node->value)
OUTPUTS(1, 0, 1)
OUTPUTS(2, firstOutput(), 2)
OUTPUTS(3, firstOutput(), 3)
OUTPUTS(7, firstOutput(), node->value)
#undef INPUTS
#undef OUTPUTS

// ---- Names

const char *domain_name_to_str(unsigned number) {
    static constexpr const char *names[] = {
        "numerical",
        "vector of 2 reals numbers",
        "real scalar",
        "numerical list",
        "positive integer",
        "integer",
        "scalar",
        "vector of 3 real numbers",
        "real numerical",
        "real numerical",
        "matrix with rows no less than columns",
        "square matrix",
        "character string",
        "pointer",
        "vector of 2 reals numbers",
        "two real scalars",
        "probability",
        "positive scalar",
        "natural number",
        "vector of two natural numbers",
        "interval of integers",
        "file",
        "vector of real numbers",
    };
    assert(number < std::size(names));
    return names[number];
}

char get_mat_val_domain_type(const Bfunc *bf) {
    const char *name = getSymbolName(bf->name);
    if (name[0] != '_' || name[1] == '\0' || name[2] != '\0') return '0';
    for (const char *letter = "ZBMDLSCT"; *letter; letter++)
        if (name[1] == *letter) return *letter;
    return '0';
}

}  // namespace vesko
