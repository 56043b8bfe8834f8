// Automaton definitions: a block becomes an automaton with a frame of its own, compiled in a scope of its
// own.
#include "engine/automatons.h"

#include "engine/interrupt.h"
#include "frontend/builders.h"
#include "frontend/definition.h"
#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/payload.h"

namespace vesko {

// The header is empty, or one group of parameters.
static PcNode *parseHeader(const InstNode *header, uint32_t line) {
    Token *group = nullptr;
    if (header->id != InstId::EmptyHeader) {
        group = header->token->next;
        if (!isSingle(group) || !group->is(TokenKind::BracketGroup))
            syntaxError(group->line, "automaton definition header invalid");
        line = group->line;
    }
    PcNode *parameters = parseParameters(group ? group->first : nullptr, line);
    for (uint32_t k = 0; k < parameters->ncub; k++) {
        const PcNode *item = parameters->child(k);
        if (parmAttr(item) != ParmAttr::Public && parmAttr(item) != ParmAttr::Private)
            syntaxError(item->line, "automaton parameter type can only be public or private");
    }
    return parameters;
}

// The frame's variables have their names from the scope; no compile-time record of them is kept.
static void nameSlots(FuncFrame *frame, const Vector *vars) {
    for (uint32_t k = 0; k < vars->size; k++)
        frame->var(k)->name = static_cast<int32_t>(vars->at<CtVar>(k)->symbol);
    frame->vars.size = vars->size;
}

// Moves what was compiled out of the scope into an automaton, and leaves the scope. Nothing can fail once the
// frame is there.
static Matrix *closeAutomaton(PcNode *entry) {
    return newPayloadMat(L2::AUTOMATON, [entry] {
        FuncFrame *frame = newAutomatonFrame(ctscope->vars->size);
        nameSlots(frame, ctscope->vars);
        freeVector(ctscope->vars, freeCtVar);
        Xproc *proc = frame->proc;
        proc->entry = frame->pc = entry;
        proc->parms = ctscope->parms;
        proc->pclib = ctscope->pclib;
        proc->smpclib = ctscope->smpclib;
        proc->mempod = ctscope->mempod;
        ctscope->vars = ctscope->parms = nullptr;
        ctscope->pclib = ctscope->smpclib = nullptr;
        ctscope->mempod = nullptr;
        leaveScope();
        return frame;
    });
}

PcNode *readproc(InstNode *inst) {
    const uint32_t line = inst->token->line;
    PcNode *parameters = parseHeader(inst->cub[0], line);
    int32_t npublic;
    openScope('P', makeParmVector(parameters, npublic), 15);
    Matrix *automaton = closeAutomaton(buildFuncCodeTree(inst->cub[1]));
    PcNode *node = newPcNode(Opr::ProcClosure, no_value, 2, line);
    setPcCub(node, 0, parameters);
    setPcCub(node, 1, newMatPcNode(automaton, line));
    return node;
}

}  // namespace vesko
