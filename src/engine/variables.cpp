// Variable slots: their lists, the stores that keep the law of links, addresses of locals, and the listing of
// the top level.
#include <sys/mman.h>

#include <cstdio>
#include <cstring>

#include "builtins/bfunc.h"
#include "console/command.h"
#include "console/message.h"
#include "engine/automatons.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "frontend/symbols.h"
#include "values/audit.h"
#include "values/convert.h"
#include "values/memory.h"
#include "values/pools.h"

namespace vesko {

// ---- Variables and their lists

Variable *newVar(uint32_t symbol, Matrix *m) {
    Variable *var = newBlock<Variable>();
    linkMat(m);
    *var = {static_cast<int32_t>(symbol), m, nullptr};
    return var;
}

Variable *newLocalVar(Matrix *m) { return newVar(static_cast<uint32_t>(no_value), m); }

void freeVar(void *entry) {
    Variable *var = static_cast<Variable *>(entry);
    ucReleaseMat(var->value);
    if (var->domain) ucReleaseMat(var->domain);
    recycleBlock(var);
}

void auditVariable(const Variable *var) {
    auditLink(var->value);
    auditLink(var->domain);
}

// The slots of the top level lie in address space of their own, of which only what is used takes memory:
// there may be addresses of them.
constexpr uint32_t max_top_slots = 1u << 20;

static void fillSlots(VarList &list, uint32_t cap) {
    for (; list.cap < cap; list.cap++) {
        linkMat(theEmptyMat());
        list.slots[list.cap] = {no_value, theEmptyMat(), nullptr};
    }
}

VarList newVarList(uint32_t n) {
    VarList list = {mallocArray<Variable>(n), 0, 0};
    fillSlots(list, n);
    return list;
}

VarList newTopVarList() {
    void *space = mmap(nullptr, max_top_slots * sizeof(Variable), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (space == MAP_FAILED) space = i_malloc(max_top_slots * sizeof(Variable));
    return {static_cast<Variable *>(space), 0, 0};
}

void growVarList(VarList &list, uint32_t n) {
    if (n <= list.cap) return;
    holdInterrupt();
    list.slots =
        static_cast<Variable *>(m_realloc(list.slots, list.cap * sizeof(Variable), n * sizeof(Variable)));
    fillSlots(list, n);
    freeInterrupt();
}

void freeVarList(VarList &list) {
    for (uint32_t k = 0; k < list.cap; k++) {
        clearSlot(&list.slots[k]);
        theEmptyMat()->status -= 2;
    }
    m_free(list.slots, list.cap * sizeof(Variable));
    list = {};
}

void addToVarList(VarList &list, uint32_t symbol, Matrix *value, Matrix *domain) {
    if (list.size == max_top_slots) {
        saveErrorMesg("Error: too many variables");
        xAbort(nullptr);
    }
    if (list.size == list.cap) fillSlots(list, list.cap + 1);
    Variable *var = &list.slots[list.size];
    linkMat(value);
    if (domain) linkMat(domain);
    ucReleaseMat(var->value);
    *var = {static_cast<int32_t>(symbol), value, domain};
    list.size++;
}

void addVar(uint32_t symbol, Matrix *domain) { addToVarList(top->vars, symbol, theEmptyMat(), domain); }

uint32_t getVarNum() { return top->vars.size; }

const char *getVarName(uint32_t k) {
    if (top->func) return getSymbolName(top->func->data->ctvars->at<CtVar>(k)->symbol);
    return getSymbolName(static_cast<uint32_t>(top->var(k)->name));
}

// ---- Stores

Matrix *updateVariable(Variable *var, Matrix *m) { return replaceMat(var->value, m); }

Matrix *updVar(uint32_t k, Matrix *m) { return replaceMat(topvarvec[k].value, m); }

void quickUpdVar(uint32_t k, Matrix *m) {
    linkMat(m);
    topvarvec[k].value = m;
}

Matrix *updLoopCounter(uint32_t k, Matrix *m) {
    Variable *var = &topvarvec[k];
    if (!var->domain) {
        linkMat(Class_D);
        var->domain = Class_D;
    }
    return replaceMat(var->value, m);
}

// ---- Reading

Matrix *getTreeVariable(PcNode *node) { return getVarMat(static_cast<uint32_t>(node->value)); }

// A running loop counter is a real scalar.
Matrix *copyTreeVariable(PcNode *node) {
    Matrix *m = getVarMat(static_cast<uint32_t>(node->value));
    return m->l1type == L1::RS ? makeRealScalar(*m->rdata) : cloneMatrix(m);
}

sfield *getParameter(uint32_t k) {
    const Vector *parms = top->proc ? top->proc->parms : top->func->parms;
    return parms->at<sfield>(k);
}

Matrix *getTreeParameter(PcNode *node) { return getParameter(static_cast<uint32_t>(node->value))->value; }

Matrix *getParent(PcNode *node) {
    if (!top->parent && node) error_par_dne(node);
    return top->parent;
}

Matrix **getParentP() { return &top->parent; }

// ---- Addresses of locals

Matrix *takeVarAddr(PcNode *node) {
    VarAddr *address = newBlock<VarAddr>();
    Matrix *m = newPfMat();
    m->l2type = L2::VARADDR;
    if (top->status) {
        *top->status += 2;
    } else {
        uint32_t *cell = newStatus_p();
        *cell = 3;
        top->status = cell;
    }
    *address = {getVar(static_cast<uint32_t>(node->value)), top->status};
    m->vdata = address;
    return m;
}

// The value outlives its pointer: a pointer that is a temporary may be the only holder of what it points to.
static Matrix *dropPointer(Matrix *pointer, Matrix *value) {
    keepResult(value);
    releaseMat(pointer);
    return passResult(value);
}

Matrix *derefVarAddr(PcNode *node) {
    Matrix *m = node->eval(0);
    if (m->l2type == L2::PTR) return dropPointer(m, m->target());
    if (m->l2type == L2::VARADDR) {
        const VarAddr *address = static_cast<VarAddr *>(m->vdata);
        if (*address->cell & 1) return dropPointer(m, address->var->value);
    }
    error_undef_opr(node, m, NodeKind::Deref);
}

// ---- The listing of the top level: name, kind, size

static void sizeText(const Matrix *m, char *text, size_t room) {
    text[0] = '\0';
    if (isNumeric(m->l2type))
        std::snprintf(text, room, "%u by %u", m->nrows, m->ncols);
    else if (isList(m->l2type) || m->l2type == L2::TX)
        std::snprintf(text, room, "%u", m->length);
}

static const char *kindText(const Matrix *m) {
    switch (m->l2type) {
        case L2::VL: return "list";
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::BAND:
        case L2::PM: return getdatatypestr(L2::RM);
        default: return getdatatypestr(m->l2type);
    }
}

// Hidden variables have names that no source can give.
static bool isNamed(const char *name) { return name[0] != '\0' && name[0] != '*'; }

void disp_top_varvec_info() {
    const VarList &vars = funcvec[0]->vars;
    int width = 0;
    for (uint32_t k = 0; k < vars.size; k++) {
        const char *name = getSymbolName(static_cast<uint32_t>(vars.slots[k].name));
        if (isNamed(name) && static_cast<int>(std::strlen(name)) > width)
            width = static_cast<int>(std::strlen(name));
    }
    for (uint32_t k = 0; k < vars.size; k++) {
        const Variable *var = &vars.slots[k];
        const char *name = getSymbolName(static_cast<uint32_t>(var->name));
        if (!isNamed(name)) continue;
        char size[32];
        sizeText(var->value, size, sizeof size);
        xMesg("%-*s   %-24s   %s", width, name, kindText(var->value), size);
    }
}

}  // namespace vesko
