// Function values: making closures, the running function as a value, and the defaults of arguments and
// outputs.
#include <initializer_list>

#include "builtins/bfunc.h"
#include "console/message.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"

namespace vesko {

// ---- Closures: children are parameters, outputs, inputs, and the function.

namespace {

constexpr uint32_t n_attributes = 5;

// A parameter item's value tells the field and the attribute.
Access attributeOf(const PcNode *item) {
    return static_cast<Access>(static_cast<uint32_t>(item->value) % n_attributes);
}

const char *fieldNameOf(const PcNode *item) {
    return getFieldName(static_cast<uint32_t>(item->value) / n_attributes);
}

// p = v, or p = v in D.
void setParm(sfield *parm, const PcNode *item, PcNode *node, const char *complaint) {
    PcNode *source = item->child(0);
    bool declared = source->kind == NodeKind::In;
    Matrix *domain = pinMat(declared ? source->eval(1) : theCompleteMat());
    Matrix *value = declared ? source->eval(0) : source->exec(source);
    pinMat(value);
    demandFieldFunction(value, attributeOf(item), fieldNameOf(item), node);
    if (memberOfSet(value, domain, node)) {
        replaceMat(parm->domain, domain);
        replaceMat(parm->value, value);
    } else if (complaint) {
        xMesg("%s", complaint);
    }
    releaseMat(unpinMat());
    releaseMat(unpinMat());
}

}  // namespace

void setParms(Vector *parms, const PcNode *items, PcNode *node, const char *complaint) {
    uint32_t k = 0;
    for (bool is_public : {true, false})
        for (uint32_t i = 0; i < items->ncub; i++)
            if ((attributeOf(items->child(i)) == Access::Public) == is_public)
                setParm(parms->at<sfield>(k++), items->child(i), node, complaint);
}

Matrix *setFuncParms(PcNode *node) {
    Matrix *m = node->child(3)->constant;
    // Handed out before: another function object of the same code.
    if (m->nlinks() > 1) m = copyUf(m);
    pinMat(m);
    FuncRec *f = m->func();
    setCtVarVector(f->data->ctvars, node->child(1), node->child(2));
    setFuncExe(f->data);
    setParms(f->parms, node->child(0), node, "probelm in setfuncparms");
    return unpinMat();
}

Matrix *copyThisFunc(PcNode *node) {
    if (!top->func) error_this_dne(node);
    return newUfMat(copyFuncRec(top->func));
}

// ---- Defaults

namespace {

// The function that a call would call: a field is read without running what it computes.
Matrix *evalFunctionNode(PcNode *node) {
    switch (node->kind) {
        case NodeKind::Field: return getStructFieldFunc(node);
        case NodeKind::ForcedField: return getForcedFieldFunc(node);
        case NodeKind::ParField: return getParFieldFunc(node);
        default: return node->exec(node);
    }
}

// The default of argument k, counted from 1; null if the value has none.
Matrix *findDefault(const Matrix *function, uint32_t k) {
    if (function->l2type == L2::UF) {
        const Vector *vars = function->func()->data->ctvars;
        return k < vars->size ? vars->at<CtVar>(k)->value : nullptr;
    }
    if (function->l2type != L2::BF) return nullptr;
    const BfInput *input = function->builtin()->inputs;
    for (; input && k > 1; k--) input = input->next;
    return input ? input->dflt : nullptr;
}

}  // namespace

Matrix *getDfltArgVal(PcNode *node) {
    Matrix *function = evalFunctionNode(node->child(0));
    Matrix *value = findDefault(function, static_cast<uint32_t>(node->value));
    if (!value) error_undef_opr(node, function, node->kind);
    keepResult(value);
    releaseMat(function);
    return passResult(value);
}

// The first statement of a function whose outputs have defaults.
Matrix *setDefaultReturnValue(PcNode *) {
    const FuncRecData *data = top->func->data;
    uint32_t first = data->nret() == 1 ? 0 : data->nargs + 1;
    for (uint32_t k = first; k < first + data->nret(); k++) updVar(k, data->ctvars->at<CtVar>(k)->value);
    return theEmptyMat();
}

}  // namespace vesko
