// Calls at call sites: the entry routines of user functions, chosen when the function is defined, and the
// handlers that find the callee.
#include "engine/calls.h"

#include "builtins/bfunc.h"
#include "engine/call_frame.h"
#include "engine/handlers.h"
#include "operators/dispatch.h"
#include "operators/operands.h"

namespace vesko {

void spreadList(FuncFrame *frame, const FuncRecData *data, const Matrix *list) {
    for (uint32_t k = 0; k < list->length; k++) giveSlot(frame, k + 1, list->entries()[k]);
    giveDefaults(frame, data, list->length + 1);
}

namespace {

// ---- The entry routines. callUf_<n>_<n><o><g> is callUf<n, o, g>: n the class of the written arguments, o
// whether the function has outputs, g whether its frame might have to grow. Classes 0 to 3 are calls with
// exactly as many arguments as the function has inputs; class 7 goes through a list and fills in defaults.

template <unsigned n, bool has_outputs, bool may_grow>
Matrix *callUf(FuncRec *f, PcNode *node, Matrix *parent) {
    if constexpr (n == 7) {
        const FuncRecData *data = f->data;
        if (node->ncub > data->nargs)
            error_nargs(node, static_cast<int32_t>(node->ncub), static_cast<int32_t>(data->nargs));
        Matrix *list = evalArgVec(node);
        FuncFrame *frame = openFrame<may_grow>(data);
        spreadList(frame, data, list);
        releaseMat(list);
        return runCall<has_outputs>(f, frame, parent);
    } else {
        // A later argument may change the variable that holds an earlier one.
        for (unsigned k = 0; k + 1 < n; k++) pinMat(evalOperand(node->child(k)));
        Matrix *last = n ? evalOperand(node->child(n - 1)) : nullptr;
        FuncFrame *frame = openFrame<may_grow>(f->data);
        if constexpr (n != 0) {
            linkMat(last);
            frame->var(n)->value = last;
            for (unsigned k = 1; k < n; k++) frame->var(k)->value = pinned[npinned - n + k];
            npinned -= n - 1;
            theEmptyMat()->status -= 2 * n;
        }
        return runCall<has_outputs>(f, frame, parent);
    }
}

// A function of one input was given several arguments: it gets them as one list.
Matrix *callUf_7_1xx(FuncRec *f, PcNode *node, Matrix *parent) {
    Matrix *list = evalArgList(node);
    FuncFrame *frame = openFrame(f->data);
    giveSlot(frame, 1, list);
    return runAnyCall(f, frame, parent);
}

// A function of several inputs was given one argument: a list spreads over the inputs.
Matrix *callUf_1_xxx(FuncRec *f, PcNode *node, Matrix *parent) {
    const FuncRecData *data = f->data;
    Matrix *m = node->eval(0);
    if (isList(m->l2type) && m->length > data->nargs)
        error_nargs(node, static_cast<int32_t>(m->length), static_cast<int32_t>(data->nargs));
    FuncFrame *frame = openFrame(data);
    if (isList(m->l2type)) {
        spreadList(frame, data, m);
        releaseMat(m);
    } else {
        giveSlot(frame, 1, m);
        giveDefaults(frame, data, 2);
    }
    return runAnyCall(f, frame, parent);
}

Matrix *callUfError(FuncRec *f, PcNode *node, Matrix *) {
    error_nargs(node, static_cast<int32_t>(node->ncub), static_cast<int32_t>(f->data->nargs));
}

// By has_outputs * 2 + may_grow.
#define CALL_FORMS(n)                                                                       \
    constexpr CallFn callUf_##n##_##n[] = {callUf<n, false, false>, callUf<n, false, true>, \
                                           callUf<n, true, false>, callUf<n, true, true>};
CALL_FORMS(0)
CALL_FORMS(1)
CALL_FORMS(2)
CALL_FORMS(3)
CALL_FORMS(7)
#undef CALL_FORMS

}  // namespace

void setFuncExe(FuncRecData *data) {
    data->nslots = data->ctvars->size;
    unsigned i = (data->nslots > n_ready_slots ? 1 : 0) + (data->hasOutputs() ? 2 : 0);
    CallFn exact1 = callUf_1_1[i], exact2 = callUf_2_2[i], exact3 = callUf_3_3[i], listed = callUf_7_7[i];
    CallFn none = callUfError;
    switch (data->nargs) {
        case 0:
            data->call0 = callUf_0_0[i];
            data->call1 = data->call2 = data->call3 = data->call7 = none;
            return;
        case 1:
            data->call1 = exact1;
            data->call2 = data->call3 = data->call7 = callUf_7_1xx;
            break;
        case 2:
            data->call1 = callUf_1_xxx;
            data->call2 = exact2;
            data->call3 = data->call7 = none;
            break;
        case 3:
            data->call1 = callUf_1_xxx;
            data->call2 = listed;
            data->call3 = exact3;
            data->call7 = none;
            break;
        default: data->call1 = callUf_1_xxx; data->call2 = data->call3 = data->call7 = listed;
    }
    data->call0 = listed;
}

// ---- Call sites

namespace {

// A callee that is no function multiplies; a built-in is applied.
template <unsigned n>
[[gnu::noinline]] Matrix *applyValue(Matrix *callee, PcNode *node) {
    pinMat(callee);
    Matrix *args = evalArgList(node);
    bool is_plain = callee->l2type < L2::LS;
    if (n == 1 && is_plain && callee->ncols != args->nrows) error_size_nomatch(node);
    if (n > 1 && is_plain && callee->length != 1) error_size_nomatch(node);
    Matrix *result =
        callee->l2type == L2::BF ? callBf(callee->builtin(), args, node) : getMatProduct(callee, args, node);
    keepResult(result);
    releaseMat(args);
    unpinMat();
    return passResult(result);
}

// The callee may lose its last holder while the arguments are evaluated, or while it runs.
template <CallFn FuncRecData::*entry, unsigned n>
inline Matrix *callValue(Matrix *callee, PcNode *node) {
    if (callee->l2type != L2::UF) [[unlikely]]
        return applyValue<n>(callee, node);
    pinMat(callee);
    FuncRec *f = callee->func();
    Matrix *result = (f->data->*entry)(f, node, nullptr);
    unpinMat();
    return result;
}

}  // namespace

#define CALL_SITES(n)                                                                                    \
    Matrix *evalFunc_##n(PcNode *node) {                                                                 \
        return callValue<&FuncRecData::call##n, n>(getVarMat(static_cast<uint32_t>(node->value)), node); \
    }                                                                                                    \
    Matrix *doUFCall_##n(PcNode *node) {                                                                 \
        return callValue<&FuncRecData::call##n, n>(getGv(static_cast<uint32_t>(node->value)), node);     \
    }                                                                                                    \
    Matrix *doSelfCall_##n(PcNode *node) { return top->func->data->call##n(top->func, node, nullptr); }
CALL_SITES(0)
CALL_SITES(1)
CALL_SITES(2)
CALL_SITES(3)
CALL_SITES(7)
#undef CALL_SITES

}  // namespace vesko
