// Control flow: the statement handlers. Each leaves the next statement in top->pc and returns null. Loops
// keep their state in variables of the frame: the counter, and a hidden one for the limit.
#include <cmath>

#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/token.h"
#include "operators/dispatch.h"
#include "values/convert.h"

namespace vesko {

// ---- Command lists

template <uint32_t n>
static inline Matrix *execCmdList(PcNode *node) {
    PcNode **cub = node->cub;
    for (uint32_t k = 0; k < n; ++k) cub[k]->exec(cub[k]);
    top->pc = node->next;
    return nullptr;
}

Matrix *execCmdList_1(PcNode *node) { return execCmdList<1>(node); }
Matrix *execCmdList_2(PcNode *node) { return execCmdList<2>(node); }
Matrix *execCmdList_3(PcNode *node) { return execCmdList<3>(node); }
Matrix *execCmdList_4(PcNode *node) { return execCmdList<4>(node); }
Matrix *execCmdList_5(PcNode *node) { return execCmdList<5>(node); }
Matrix *execCmdList_6(PcNode *node) { return execCmdList<6>(node); }
Matrix *execCmdList_7(PcNode *node) { return execCmdList<7>(node); }
Matrix *execCmdList_8(PcNode *node) { return execCmdList<8>(node); }

Matrix *execCmdList_9(PcNode *node) {
    for (uint32_t k = 0; k < node->ncub; ++k) node->eval(k);
    top->pc = node->next;
    return nullptr;
}

// ---- Jumps

Matrix *execTGoto(PcNode *node) {
    top->pc = getPcLogVal(node->child(0)) ? node->child(1) : node->next;
    return nullptr;
}

Matrix *execFGoto(PcNode *node) {
    top->pc = getPcLogVal(node->child(0)) ? node->next : node->child(1);
    return nullptr;
}

Matrix *execUGoto(PcNode *node) {
    top->pc = node->next;
    return nullptr;
}

// ---- for i = first:last and for i = first:step:last

// Children of a loop node: the hidden variable's node; the range, or the body.
static uint32_t hiddenVar(const PcNode *node) { return static_cast<uint32_t>(node->child(0)->value); }

// The counter stands one step before the first value: the loop is entered through its step.
static void startRange(PcNode *node, double before_first, Matrix *limit) {
    updLoopCounter(static_cast<uint32_t>(node->value), newRealScalarMat(before_first));
    updVar(hiddenVar(node), limit);
    top->pc = node->next;
}

static bool finiteScalar(const Matrix *m, double &x) { return extract_RS(m, x) && !std::isinf(x); }

Matrix *prepFor1aBlock(PcNode *node) {
    PcNode *range = node->child(1);
    Matrix *first = pinMat(range->eval(0));
    Matrix *last = range->eval(1);
    unpinMat();
    double a, b;
    if (!finiteScalar(first, a) || !finiteScalar(last, b)) error_colon1(range, first, last);
    releaseMat(first);
    releaseMat(last);
    startRange(node, a - 1.0, newRealScalarMat(b));
    return nullptr;
}

Matrix *prepFor1bBlock(PcNode *node) {
    PcNode *range = node->child(1);
    Matrix *first = pinMat(range->eval(0));
    Matrix *last = pinMat(range->eval(2));
    Matrix *step = range->eval(1);
    unpinMat();
    unpinMat();
    double a, b, s;
    if (!finiteScalar(first, a) || !finiteScalar(last, b) || !finiteScalar(step, s) || s == 0.0)
        error_colon2(range, first, last, step);
    releaseMat(first);
    releaseMat(last);
    releaseMat(step);
    Matrix *limit = allocRealMat(2, 1, 2);
    limit->rdata[0] = s;
    limit->rdata[1] = b;
    startRange(node, a - s, limit);
    return nullptr;
}

// The counter's record is changed in place. The parser protects it from other holders; a record that got one
// all the same is left to it.
static double *counterOf(const PcNode *node) {
    Variable *var = getVar(static_cast<uint32_t>(node->value));
    if (var->value->nlinks() > 1) [[unlikely]]
        updateVariable(var, newRealScalarMat(*var->value->rdata));
    return var->value->rdata;
}

Matrix *execFor1aBlock(PcNode *node) {
    double *counter = counterOf(node);
    double last = *getVarMat(hiddenVar(node))->rdata;
    top->pc = last >= (*counter += 1.0) ? node->child(1) : node->next;
    return nullptr;
}

Matrix *execFor1bBlock(PcNode *node) {
    double *counter = counterOf(node);
    const double *limit = getVarMat(hiddenVar(node))->rdata;
    double step = limit[0], last = limit[1];
    *counter += step;
    top->pc = (step > 0 ? last >= *counter : *counter >= last) ? node->child(1) : node->next;
    return nullptr;
}

// ---- for n

// An integer scalar is refused: a literal count is a real scalar, and programs see it so.
static bool extractCount(const Matrix *m, int32_t &n) {
    switch (m->l2type) {
        case L2::RS: n = truncToInt(*m->rdata); return true;
        case L2::IM: n = m->ints()[0]; return m->length == 1;
        case L2::BY: n = m->bytes()[0]; return m->length == 1;
        default: return false;
    }
}

Matrix *prepFor3Block(PcNode *node) {
    Matrix *count = node->eval(0);
    int32_t n;
    if (!extractCount(count, n) || n < 1) error_for_loop_counter(node->child(0), count);
    releaseMat(count);
    Matrix *turns = newIntMat(1, 2);
    turns->ints()[0] = -1;
    turns->ints()[1] = n;
    updVar(static_cast<uint32_t>(node->value), turns);
    top->pc = node->next;
    return nullptr;
}

// An automaton that runs itself in the loop may have ended it already.
Matrix *execFor3Block(PcNode *node) {
    const Matrix *hidden = getVarMat(static_cast<uint32_t>(node->value));
    int32_t *turns = hidden->ints();
    if (hidden != theTrueMat() && ++turns[0] < turns[1]) {
        top->pc = node->child(0);
    } else {
        updVar(static_cast<uint32_t>(node->value), theTrueMat());
        top->pc = node->next;
    }
    return nullptr;
}

// ---- switch

// Children of a case: the expression, the body. Its value tells `case` from `cases`.
static bool matchesCase(Matrix *subject, PcNode *part, PcNode *node) {
    Matrix *value = pinMat(part->eval(0));
    bool matches = part->value == static_cast<int32_t>(KeywordId::Case)
                       ? are_equal(subject, value)
                       : memberOfSet(subject, value, node) != 0;
    releaseMat(unpinMat());
    return matches;
}

Matrix *execSwitchBlock(PcNode *node) {
    Matrix *subject = pinMat(node->eval(0));
    PcNode *cases = node->child(1), *target = node->next;
    for (uint32_t k = 0; k < cases->ncub; ++k) {
        if (!matchesCase(subject, cases->child(k), node)) continue;
        target = cases->child(k)->child(1);
        break;
    }
    releaseMat(unpinMat());
    top->pc = target;
    return nullptr;
}

}  // namespace vesko
