// Function definitions: a block or an arrow expression becomes a function record, compiled in a scope of its
// own.
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "frontend/definition.h"
#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "values/memory.h"

namespace vesko {

namespace {

// What the enclosing code evaluates when the definition is reached: parameters, and defaults and domains.
struct Closure {
    PcNode *parameters, *outputs, *inputs;
    FormalFlags out_flags, in_flags;
};

}  // namespace

static Closure parseClosure(const FuncHead &head, uint32_t line) {
    Closure c;
    c.parameters = parseParameters(head.parms, line);
    c.inputs = procFormalArgList(head.inputs, line, c.in_flags);
    c.outputs = procFormalArgList(head.outputs, line, c.out_flags);
    return c;
}

static int32_t openFunction(const Closure &c, uint32_t nvars) {
    int32_t npublic;
    openScope('F', makeParmVector(c.parameters, npublic), nvars);
    procIOArgs(c.outputs, c.inputs);
    return npublic;
}

// Moves what was compiled out of the scope into a function value, and leaves the scope.
static Matrix *closeFunction(PcNode *entry, uint32_t nout, int32_t npublic) {
    auto *data = static_cast<FuncRecData *>(m_malloc(sizeof(FuncRecData)));
    holdInterrupt();
    *data = {};
    data->nshares = 1;
    data->srcfile = filelist->name;
    linkMat(data->srcfile);
    data->nargs = ctscope->nin;
    data->nret_flags = nout + (ctscope->usesparent ? FuncRecData::mutator_flag : 0);
    data->ctvars = ctscope->vars;
    data->entry = entry;
    data->pclib = ctscope->pclib;
    data->smpclib = ctscope->smpclib;
    data->mempod = ctscope->mempod;
    FuncRec *f = newFuncRec(data);
    f->npublic = npublic;
    f->parms = ctscope->parms;
    ctscope->vars = ctscope->parms = nullptr;
    ctscope->pclib = ctscope->smpclib = nullptr;
    ctscope->mempod = nullptr;
    leaveScope();
    setFuncExe(data);
    Matrix *value = newUfMat(f);
    freeInterrupt();
    return value;
}

static PcNode *newClosureNode(const Closure &c, Matrix *function, uint32_t line) {
    PcNode *node = newPcNode(Opr::FuncClosure, no_value, 4, line);
    setPcCub(node, 0, c.parameters);
    setPcCub(node, 1, c.outputs);
    setPcCub(node, 2, c.inputs);
    setPcCub(node, 3, newMatPcNode(function, line));
    return node;
}

// ---- Blocks --------------------------------------------------------------------------------------

static InstNode *prepend(InstId id, InstNode *inst, InstNode *body) {
    InstNode *first = newInstNode(id, inst->token, 0);
    first->next = body;
    return first;
}

static InstNode *append(InstNode *body, InstNode *last) {
    if (!body) return last;
    InstNode *tail = body;
    while (tail->next) tail = tail->next;
    tail->next = last;
    return body;
}

// At run time the order is: default results, checks of inputs, defaults of checked outputs, body, gathering.
static InstNode *completeBody(InstNode *inst, const Closure &c) {
    InstNode *body = inst->ncub > 1 ? inst->cub[1] : nullptr;
    if (c.out_flags.domain) body = prepend(InstId::OutputDomains, inst, body);
    if (c.in_flags.domain) body = prepend(InstId::InputDomains, inst, body);
    if (c.out_flags.dflt) body = prepend(InstId::DefaultReturn, inst, body);
    if (c.outputs->ncub > 1) body = append(body, newInstNode(InstId::GatherResults, inst->token, 0));
    return body;
}

// Where `return` leads when results are to be gathered: slot 0 gets a list, whose node the gathering
// instruction sets.
static PcNode *newReturnNode(uint32_t line) {
    PcNode *node = newPcNode(Opr::CmdList1, no_value, 1, line);
    setPcCub(node, 0, newPcNode(Opr::VarAsgn, 0, 1, line));
    return node;
}

static Token *headTokens(const InstNode *inst) {
    const InstNode *head = inst->ncub ? inst->cub[0] : nullptr;
    return head && head->token ? head->token->next : nullptr;
}

PcNode *makeFunctionNode(InstNode *inst, uint32_t line) {
    Token *head = headTokens(inst);
    if (head) line = head->line;  // the token of the block stands at its end
    Closure c = parseClosure(getMapIOargs(head, line), line);
    int32_t npublic = openFunction(c, 20);
    if (c.outputs->ncub > 1) ctscope->returnnode = newReturnNode(line);
    PcNode *entry = buildFuncCodeTree(transformInstructList(completeBody(inst, c)));
    return newClosureNode(c, closeFunction(entry, c.outputs->ncub, npublic), line);
}

// ---- One line ------------------------------------------------------------------------------------

static PcNode *newInputCheck(uint32_t nin, uint32_t line) {
    uint32_t nth = nin < 4 ? nin - 1 : 3;
    Opr kind = static_cast<Opr>(index(Opr::InDomain1) + nth);
    return newPcNode(kind, static_cast<int32_t>(nin), 0, line);
}

// The result is a hidden variable, which gets the value of the expression.
static PcNode *buildOneLineCode(Token *right, bool checks_inputs, uint32_t line) {
    PcNode *store = newPcNode(Opr::VarAsgn, 0, 1, line);
    setPcCub(store, 0, parseTokenList(right));
    PcNode *code =
        newPcNode(checks_inputs ? Opr::CmdList2 : Opr::CmdList1, no_value, checks_inputs ? 2 : 1, line);
    if (checks_inputs) setPcCub(code, 0, newInputCheck(ctscope->nin, line));
    setPcCub(code, code->ncub - 1, store);
    return code;
}

PcNode *makeOneLineFunctionNode(Token *left, Token *right, uint32_t line) {
    Closure c = parseClosure(getOneLineMapIOargs(left), line);
    int32_t npublic = openFunction(c, 5);
    PcNode *entry = buildOneLineCode(right, c.in_flags.domain, line);
    return newClosureNode(c, closeFunction(entry, 1, npublic), line);
}

// ---- Constructors --------------------------------------------------------------------------------

static Closure parseConstructor(const FuncHead &head, uint32_t line, const char *with_parameters,
                                const char *with_results) {
    Closure c = parseClosure(head, line);
    if (c.parameters->ncub) syntaxError(line, "%s", with_parameters);
    if (c.out_flags.domain) syntaxError(line, "constructor has output domain");
    if (c.outputs->ncub > 1) syntaxError(line, "%s", with_results);
    return c;
}

static PcNode *newMakingStatement(uint32_t line) {
    PcNode *node = newPcNode(Opr::CmdList1, no_value, 1, line);
    setPcCub(node, 0, newPcNode(Opr::MakeObject, no_value, 0, line));
    return node;
}

// A `return` leads to the making of the object too.
PcNode *readconstructor(InstNode *inst, uint32_t line) {
    Token *head = headTokens(inst);
    if (head) line = head->line;
    Closure c = parseConstructor(getMapIOargs(head, line), line, "class constructor has parameters",
                                 "constructor has mutiple output");
    openFunction(c, 20);
    ctscope->returnnode = newMakingStatement(line);
    InstNode *body = inst->ncub > 1 ? inst->cub[1] : nullptr;
    if (c.in_flags.domain) body = prepend(InstId::InputDomains, inst, body);
    body = append(body, newInstNode(InstId::MakeObject, inst->token, 0));
    return newClosureNode(c, closeFunction(buildFuncCodeTree(transformInstructList(body)), 1, 0), line);
}

// What stands behind the arrow is not read: the inputs say all.
PcNode *makeOneLineConstructor(Token *left, uint32_t line) {
    Closure c = parseConstructor(getOneLineMapIOargs(left), line, "constructor has parameters",
                                 "constructor has multiple returns");
    openFunction(c, 5);
    return newClosureNode(c, closeFunction(newMakingStatement(line), 1, 0), line);
}

PcNode *makeDfltConstructor(uint32_t line) {
    openScope('F', nullptr, 1);
    registerVar(findSymbolIndex(""), nullptr);
    return newMatPcNode(closeFunction(newMakingStatement(line), 1, 0), line);
}

}  // namespace vesko
