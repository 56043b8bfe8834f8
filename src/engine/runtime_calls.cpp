// Calls of functions from the runtime: predicates, members, comparators, and calls with named arguments. They
// share the frame protocol and differ in where the arguments come from.
#include "builtins/bfunc.h"
#include "engine/call_frame.h"
#include "engine/calls.h"
#include "engine/handlers.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

namespace {

[[noreturn]] void refuseCount(PcNode *node, uint32_t given, uint32_t expected) {
    error_nargs(node, static_cast<int32_t>(given), static_cast<int32_t>(expected));
}

// The values belong to the caller, who goes on to use them: the pins keep them over the emptying of the
// slots.
Matrix *callWithValues(FuncRec *f, Matrix *const *values, uint32_t n, Matrix *parent) {
    const FuncRecData *data = f->data;
    holdFunc(f);
    for (uint32_t k = 0; k < n; k++) pinMat(values[k]);
    FuncFrame *frame = openFrame(data);
    for (uint32_t k = 0; k < n; k++) giveSlot(frame, k + 1, values[k]);
    giveDefaults(frame, data, n + 1);
    Matrix *result = runAnyCall(f, frame, parent);
    for (uint32_t k = 0; k < n; k++) unpinMat();
    releaseFunc();
    return result;
}

// The parent, which the caller pins once. A function that changes it gets a copy if others hold the
// object too.
Matrix *ownParent(const FuncRec *f, Matrix *parent) {
    constexpr uint32_t sole = 2;
    const bool shared = parent && parent->l2type == L2::OBJ && parent->nlinks() > sole;
    return shared && f->data->isMutator() ? cloneMatrix(parent) : parent;
}

// A member that is no function is multiplied with the value, or with the list of several.
Matrix *callMember(Matrix *f, Matrix *const *values, uint32_t n, Matrix *parent, PcNode *node) {
    if (f->l2type == L2::UF) {
        if (n > f->func()->data->nargs) refuseCount(node, n, f->func()->data->nargs);
        Matrix *own = ownParent(f->func(), parent);
        Matrix *result = callWithValues(f->func(), values, n, own);
        if (own == parent) return result;
        keepResult(result);
        releaseMat(own);
        return passResult(result);
    }
    if (n == 1) return getMatProduct(f, values[0], node);
    Matrix *list =
        n == 2 ? makeBiMatVec(values[0], values[1]) : makeTriMatVec(values[0], values[1], values[2]);
    Matrix *result = keepResult(getMatProduct(f, list, node));
    releaseMat(list);
    return passResult(result);
}

}  // namespace

Matrix *callUfByMat(FuncRec *f, Matrix *m, PcNode *node) {
    if (f->data->nargs != 1) refuseCount(node, 1, f->data->nargs);
    return callWithValues(f, &m, 1, nullptr);
}

Matrix *callUfByList(FuncRec *f, Matrix *list, PcNode *node) {
    const FuncRecData *data = f->data;
    if (data->nargs == 1) return callWithValues(f, &list, 1, nullptr);
    if (data->nargs == 0) {
        if (list->l2type != L2::NUL) refuseCount(node, list->length, 0);
        return callWithValues(f, nullptr, 0, nullptr);
    }
    if (!isList(list->l2type)) return callWithValues(f, &list, 1, nullptr);
    if (list->length > data->nargs) refuseCount(node, list->length, data->nargs);
    return callWithValues(f, list->entries(), list->length, nullptr);
}

Matrix *callMbUfByMat(FuncRec *f, Matrix *m, Matrix *parent, PcNode *node) {
    uint32_t given = m ? 1 : 0;
    if (f->data->nargs != given) refuseCount(node, 1, f->data->nargs);
    return callWithValues(f, &m, given, parent);
}

Matrix *callMemberFunc(Matrix *f, Matrix *m, Matrix *parent, PcNode *node) {
    return callMember(f, &m, 1, parent, node);
}

Matrix *callMemberFunc2(Matrix *f, Matrix *a, Matrix *b, Matrix *parent, PcNode *node) {
    Matrix *values[] = {a, b};
    return callMember(f, values, 2, parent, node);
}

sfield *findParm(const FuncRec *f, uint32_t field) {
    for (uint32_t k = 0; k < countFields(f->parms); k++)
        if (sfield *parm = f->parms->at<sfield>(k); parm->index == field) return parm;
    return nullptr;
}

// ---- Comparators

int32_t compare_mats_by_uf(FuncRec *f, Matrix *a, Matrix *b, PcNode *node) {
    if (f->data->nargs != 2) refuseCount(node, 2, f->data->nargs);
    FuncFrame *frame = openFrame(f->data);
    giveSlot(frame, 1, a);
    giveSlot(frame, 2, b);
    Matrix *result = runAnyCall(f, frame, nullptr);
    int32_t order = 0;
    switch (result->l2type) {
        case L2::RS: order = truncToInt(result->rdata[0]); break;
        case L2::IS: order = result->ints()[0]; break;
        case L2::BY:
        case L2::BI:
            if (result->length == 1) {
                order = result->bytes()[0];
                break;
            }
            [[fallthrough]];
        default: error_domain_check(node, 0);
    }
    releaseMat(result);
    return order;
}

// ---- Named arguments. `list` has a node for each: its value is the symbol, its first child the argument.

namespace {

constexpr uint32_t not_named = no_value;

uint32_t findNamed(const PcNode *list, uint32_t symbol) {
    for (uint32_t k = 0; k < list->ncub; k++)
        if (static_cast<uint32_t>(list->child(k)->value) == symbol) return k;
    return not_named;
}

void giveNamedOrDefault(FuncFrame *frame, uint32_t slot, const CtVar *var, const PcNode *list,
                        const Matrix *values) {
    uint32_t k = findNamed(list, var->symbol);
    giveSlot(frame, slot, k == not_named ? var->value : values->entries()[k]);
}

}  // namespace

Matrix *callUfByNp(FuncRec *f, PcNode *list, Matrix *parent, PcNode *node) {
    const FuncRecData *data = f->data;
    if (list->ncub > data->nargs) refuseCount(node, list->ncub, data->nargs);
    holdFunc(f);
    Matrix *values = evalNpArgVec(list);
    uint32_t matched = 0;
    for (uint32_t k = 1; k <= data->nargs; k++)
        if (findNamed(list, data->ctvars->at<CtVar>(k)->symbol) != not_named) matched++;
    if (matched != list->ncub) error_np_ufcall_extra_args(node, static_cast<int32_t>(list->ncub - matched));
    FuncFrame *frame = openFrame(data);
    giveSlot(frame, 0, data->ctvars->at<CtVar>(0)->value);
    for (uint32_t k = 1; k <= data->nargs; k++)
        giveNamedOrDefault(frame, k, data->ctvars->at<CtVar>(k), list, values);
    releaseMat(values);
    Matrix *result = runAnyCall(f, frame, parent);
    releaseFunc();
    return result;
}

Matrix *doNpFCall(PcNode *node) {
    Matrix *m = node->eval(0);
    if (!isFunction(m->l2type)) error_undef_opr(node, m, node->kind);
    pinMat(m);
    PcNode *list = node->child(1);
    Matrix *result =
        m->l2type == L2::UF ? callUfByNp(m->func(), list, nullptr, node) : callBfbyNp(m, list, node);
    keepResult(result);
    releaseMat(unpinMat());
    return passResult(result);
}

}  // namespace vesko
