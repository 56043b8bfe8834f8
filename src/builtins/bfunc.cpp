// Records of built-ins: made from their rows, copied with other parameter values, called.
#include "builtins/bfunc.h"

#include <cassert>
#include <cstring>

#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/node.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "values/audit.h"
#include "values/memory.h"

namespace vesko {

// ---- Making records

static BfInput *newInput(const char *name, size_t length) {
    constexpr size_t longest = 32;
    char text[longest];
    assert(length < longest);
    std::memcpy(text, name, length);
    text[length] = 0;
    BfInput *input = newBlock<BfInput>();
    *input = {findSymbolIndex(text), theEmptyMat(), nullptr};
    linkMat(input->dflt);
    return input;
}

static void addInputs(Bfunc *bf, const char *names) {
    BfInput **tail = &bf->inputs;
    while (*names) {
        const size_t length = std::strcspn(names, " ");
        *tail = newInput(names, length);
        tail = &(*tail)->next;
        bf->nargs++;
        names += length;
        names += *names == ' ';
    }
}

Bfunc *make_Ni0p_bf(const char *name, const char *inputs, BfWorker worker, BfMaintainer maintainer) {
    Bfunc *bf = newBlock<Bfunc>();
    *bf = {};
    bf->name = findSymbolIndex(name);
    bf->func = worker;
    bf->maintainer = maintainer;
    addInputs(bf, inputs);
    return bf;
}

static void addParms(Bfunc *bf, const BfParmList &parms) {
    if (parms.count == 0) return;
    bf->nparms = parms.count;
    bf->parmNames = newVector(parms.count);
    bf->parmValues = newVector(parms.count);
    for (uint32_t i = 0; i < parms.count; i++) {
        addElement(bf->parmNames, asEntry(findFieldIndexByStr(parms.first[i].name)));
        appendMatVecEntry(bf->parmValues, parms.first[i].dflt());
    }
}

static Bfunc *make_parms_bf(const BfRow &row) {
    Bfunc *bf = make_Ni0p_bf(row.name, row.inputs, row.worker, parms_bf_maintainer);
    addParms(bf, row.parms);
    return bf;
}

Bfunc *make_bf(const BfRow &row) {
    Bfunc *bf = row.maintainer ? row.maintainer(BfOperation::Create, nullptr, nullptr, nullptr, 0)
                               : make_parms_bf(row);
    bf->noFold |= row.noFold;
    bf->row = &row;
    return bf;
}

// ---- Copies

void COPY_BF_COMMON(Bfunc *dest, const Bfunc *src) {
    *dest = *src;
    dest->parmValues = nullptr;
}

Bfunc *copy_bf(const Bfunc *src, Vector *parmValues) {
    Bfunc *bf = newBlock<Bfunc>();
    COPY_BF_COMMON(bf, src);
    bf->parmValues = parmValues;
    return bf;
}

static Vector *copyValues(const Vector *values) {
    if (!values) return nullptr;
    Vector *copy = newVector(values->size);
    copyMatVec(copy, values);
    return copy;
}

Matrix *newBfCopy(const Bfunc *src, uint32_t nvalues) {
    Matrix *copy = newBfMat(copy_bf(src, nullptr));
    copy->builtin()->parmValues = newVector(nvalues);
    return copy;
}

Bfunc *cloneBfunc(const Bfunc *bf) {
    holdInterrupt();
    Bfunc *copy = copy_bf(bf, copyValues(bf->parmValues));
    freeInterrupt();
    return copy;
}

void freeBfunc(Bfunc *bf) {
    holdInterrupt();
    freeVector(bf->parmValues, releaseEntry);
    recycleBlock(bf);
    freeInterrupt();
}

// ---- Parameters

uint32_t findBfParm(const Bfunc *bf, uint32_t field) {
    const uint32_t n = bf->parmNames ? bf->parmNames->size : 0;
    for (uint32_t i = 0; i < n; i++)
        if (bf->parmNames->numberAt(i) == field) return i;
    return not_found;
}

Matrix *getBfParm(const Bfunc *bf, uint32_t field) {
    const uint32_t i = findBfParm(bf, field);
    return i == not_found ? nullptr : bf->parmValues->matAt(i);
}

static Bfunc *spawnByRow(const Bfunc *bf, Vector *values) {
    const BfParmList &parms = bf->row->parms;
    for (uint32_t i = 0; i < values->size; i++)
        if (!parms.first[i].accepts(values->matAt(i))) return nullptr;
    for (uint32_t i = values->size; i < parms.count; i++) appendMatVecEntry(values, bf->parmValues->matAt(i));
    return copy_bf(bf, values);
}

static Bfunc *resetByRow(Bfunc *bf, Matrix *value, uint32_t field) {
    const uint32_t i = findBfParm(bf, field);
    if (i == not_found) return nullptr;
    const BfParm &parm = bf->row->parms.first[i];
    if (!(parm.accepts_reset ? parm.accepts_reset : parm.accepts)(value)) return nullptr;
    updateMatVecEntry(bf->parmValues, i, value);
    return bf;
}

Bfunc *parms_bf_maintainer(BfOperation op, Bfunc *bf, Vector *parmVector, Matrix *value, uint32_t field) {
    switch (op) {
        case BfOperation::Spawn: return spawnByRow(bf, parmVector);
        case BfOperation::Reset: return resetByRow(bf, value, field);
        default: return nullptr;  // a row is made by make_bf
    }
}

static bool fitsSpawn(const Bfunc *bf, uint32_t given) {
    const uint32_t least = bf->row && bf->row->leastSpawn ? bf->row->leastSpawn : bf->nparms;
    return given >= least && given <= bf->nparms;
}

// The copy that is to be holds the values until the maintainer has taken them over, so that they are not lost
// if memory runs out.
static Matrix *spawned(Bfunc *src, const Matrix *values) {
    Matrix *copy = newBfCopy(src, values->length);
    Bfunc *held = copy->builtin();
    for (uint32_t k = 0; k < values->length; k++) appendMatVecEntry(held->parmValues, values->entries()[k]);
    Bfunc *made = src->maintainer(BfOperation::Spawn, src, held->parmValues, nullptr, 0);
    if (!made) return nullptr;
    holdInterrupt();
    copy->vdata = made;
    recycleBlock(held);
    freeInterrupt();
    return copy;
}

Matrix *spawnBf(Matrix *bf, const Matrix *values, PcNode *node) {
    Bfunc *src = bf->builtin();
    if (src->row && src->row->later) src->func(theEmptyMat(), nullptr, node);
    if (src->maintainer && src->nparms && fitsSpawn(src, values->length))
        if (Matrix *copy = spawned(src, values)) return copy;
    if (src->nparms == 0 && values->length == 1) error_undef_opr(node, bf, Opr::Ref);
    error_bf_spawn(node, getSymbolName(src->name));
}

void resetBfParm(Bfunc *bf, uint32_t field, Matrix *value, PcNode *node) {
    const char *name = getSymbolName(bf->name), *parm = getFieldName(field);
    if (!bf->maintainer) error_field_asgn_dne(node, parm, name);
    if (!bf->maintainer(BfOperation::Reset, bf, nullptr, value, field)) error_bf_set(node, name, parm);
}

// ---- Calls

Matrix *callBf(Bfunc *bf, Matrix *args, PcNode *node) { return bf->func(args, bf->parms(), node); }

// Evaluates the arguments, calls, and releases them; the result may be one of them. What is no built-in is
// multiplied with them.
static Matrix *applyToArgs(Matrix *callee, PcNode *node) {
    Matrix *args = evalArgList(node);
    Matrix *result =
        callee->l2type == L2::BF ? callBf(callee->builtin(), args, node) : getMatProduct(callee, args, node);
    keepResult(result);
    releaseMat(args);
    return passResult(result);
}

// A call through a global. A program may have given the name another value since it was compiled, and may do
// so in the call.
Matrix *doBFCall(PcNode *node) {
    Matrix *callee = pinMat(getGv(static_cast<uint32_t>(node->value)));
    Matrix *result = keepResult(applyToArgs(callee, node));
    releaseMat(unpinMat());
    return passResult(result);
}

// A call of an entry of the table.
Matrix *doBuiltFCall(PcNode *node) { return applyToArgs(getBuiltinF(node), node); }

// Place of the named argument among those written, or not_found.
static uint32_t findNamed(const PcNode *list, uint32_t symbol) {
    for (uint32_t i = 0; i < list->ncub; i++)
        if (static_cast<uint32_t>(list->child(i)->value) == symbol) return i;
    return not_found;
}

// The values of all inputs, the written ones or their defaults, in the order of declaration.
static Matrix *gatherInputs(const Bfunc *bf, const PcNode *list, const Matrix *written, PcNode *node) {
    Matrix *inputs = newListMat(bf->nargs);
    uint32_t matched = 0;
    for (const BfInput *input = bf->inputs; input; input = input->next) {
        const uint32_t k = findNamed(list, input->symbol);
        addListEntry(inputs, k == not_found ? input->dflt : written->entries()[k]);
        matched += k != not_found;
    }
    if (matched < list->ncub) error_bf_nargs(node, getSymbolName(bf->name), list->ncub, matched);
    return inputs;
}

// A built-in of one input gets the value itself.
Matrix *callBfbyNp(Matrix *f, PcNode *list, PcNode *node) {
    Bfunc *bf = f->builtin();
    if (list->ncub > bf->nargs) error_bf_nargs(node, getSymbolName(bf->name), list->ncub, bf->nargs);
    Matrix *written = evalNpArgVec(list);
    Matrix *inputs = gatherInputs(bf, list, written, node);
    releaseMat(written);
    Matrix *args = bf->nargs == 1 ? inputs->entries()[0] : inputs;
    Matrix *result = keepResult(callBf(bf, args, node));
    releaseMat(inputs);
    return passResult(result);
}

}  // namespace vesko
