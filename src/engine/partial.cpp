// Partial functions.
#include "engine/partial.h"

#include "builtins/bfunc.h"
#include "builtins/function_algebra.h"
#include "engine/call_frame.h"
#include "engine/handlers.h"

namespace vesko {

namespace {

// Positions of a value in the parameters of a partial function: the names are op1, op2, op3.
enum PartialParm { parm_function, parm_args, parm_holes };

// The symbol of argument k, from 0.
uint32_t argumentName(const Matrix *f, uint32_t k) {
    if (f->l2type == L2::UF) return f->func()->data->ctvars->at<CtVar>(k + 1)->symbol;
    const BfInput *input = f->builtin()->inputs;
    for (; input && k > 0; k--) input = input->next;
    return input ? input->symbol : findSymbolIndex("");
}

uint32_t argumentCount(const Matrix *f) {
    if (f->l2type == L2::UF) return f->func()->data->nargs;
    uint32_t n = 0;
    for (const BfInput *input = f->builtin()->inputs; input; input = input->next) n++;
    return n;
}

BfInput *holeInputs(const Matrix *f, const Matrix *holes) {
    BfInput *first = nullptr;
    for (uint32_t k = holes->length; k-- > 0;)
        first = sharedInput(argumentName(f, static_cast<uint32_t>(holes->ints()[k])), first);
    return first;
}

// The value for hole k: with one hole x itself, else the k-th entry.
Matrix *valueForHole(Matrix *x, const Matrix *holes, uint32_t k) {
    return holes->length == 1 ? x : x->entries()[k];
}

void checkHoleValues(const Matrix *x, const Matrix *holes, PcNode *node) {
    if (holes->length == 1) return;
    uint32_t given = isList(x->l2type) ? x->length : 1;
    if (given != holes->length)
        error_partial_uf_nargs(node, static_cast<int32_t>(given), static_cast<int32_t>(holes->length));
}

Matrix *partial_uf_bf(Matrix *x, Matrix **parms, PcNode *node) {
    FuncRec *f = parms[parm_function]->func();
    const Matrix *holes = parms[parm_holes];
    checkHoleValues(x, holes, node);
    holdFunc(f);
    pinMat(x);
    FuncFrame *frame = openFrame(f->data);
    spreadList(frame, f->data, parms[parm_args]);
    for (uint32_t k = 0; k < holes->length; k++) {
        uint32_t slot = static_cast<uint32_t>(holes->ints()[k]) + 1;
        replaceMat(frame->var(slot)->value, valueForHole(x, holes, k));
    }
    Matrix *result = runAnyCall(f, frame, nullptr);
    unpinMat();
    releaseFunc();
    return result;
}

Matrix *partial_bf_bf(Matrix *x, Matrix **parms, PcNode *node) {
    const Matrix *holes = parms[parm_holes];
    const Matrix *fixed = parms[parm_args];
    checkHoleValues(x, holes, node);
    Matrix *args = newVListMat(fixed->length);
    for (uint32_t k = 0; k < fixed->length; k++) addListEntry(args, fixed->entries()[k]);
    for (uint32_t k = 0; k < holes->length; k++)
        replaceMat(args->entries()[holes->ints()[k]], valueForHole(x, holes, k));
    pinMat(args);
    Matrix *result = keepResult(callBf(parms[parm_function]->builtin(), args, node));
    releaseMat(unpinMat());
    return passResult(result);
}

}  // namespace

Matrix *newUfPartialMat(Matrix *f, Matrix *args, Matrix *holes) {
    return newGeneratedBf("funcpartial", partial_uf_bf, holeInputs(f, holes), {f, args, holes});
}

Matrix *newBfPartialMat(Matrix *f, Matrix *args, Matrix *holes) {
    return newGeneratedBf("partial", partial_bf_bf, holeInputs(f, holes), {f, args, holes});
}

// Children: function, arguments with holes, positions of the holes.
Matrix *makePartialFunc(PcNode *node) {
    Matrix *f = node->eval(0);
    if (!isFunction(f->l2type)) error_undef_opr(node, f, node->kind);
    uint32_t given = node->child(1)->ncub;
    if (argumentCount(f) != given) error_match_nargs(node, given, argumentCount(f));
    pinMat(f);
    Matrix *args = evalArgVec(node->child(1));
    Matrix *holes = node->child(2)->constant;
    Matrix *partial = f->l2type == L2::UF ? newUfPartialMat(f, args, holes) : newBfPartialMat(f, args, holes);
    unpinMat();
    return partial;
}

}  // namespace vesko
