// The second pass over a command: instructions to statement nodes. Every jump becomes a link from node to
// node, so that a compiled block is a graph and the run time keeps no record of blocks.
#include "engine/exceptions.h"
#include "engine/handlers.h"
#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "frontend/token.h"
#include "values/matrix.h"

namespace vesko {

namespace {

// Where control goes from a statement: behind it, and out of the loop around it. All may be null.
struct Targets {
    PcNode *after, *continue_to, *break_to;

    Targets endingAt(PcNode *node) const { return {node, continue_to, break_to}; }
};

void build(InstNode *inst, PcNode *node, Targets to);

// ---- Small pieces

PcNode *newStatement(uint32_t line) { return newPcNode(NodeKind::CmdList1, no_value, 0, line); }

PcNode *parseSimple(InstNode *inst) { return parseTokenList(inst->token->next); }

void become(PcNode *node, NodeKind kind, int32_t value, PcNode *next) {
    setPcNode(node, kind, value, 0);
    node->next = next;
}

void become(PcNode *node, NodeKind kind, int32_t value, PcNode *first, PcNode *second, PcNode *next) {
    setPcNode(node, kind, value, second ? 2 : 1);
    setPcCub(node, 0, first);
    if (second) setPcCub(node, 1, second);
    node->next = next;
}

PcNode *buildList(InstNode *list, PcNode *head, Targets to) {
    if (!head) head = newStatement(list ? instLine(list) : 0);
    PcNode *node = head;
    for (; list && list->next; list = list->next) {
        PcNode *following = newStatement(instLine(list->next));
        build(list, node, to.endingAt(following));
        node = following;
    }
    build(list, node, to);
    return head;
}

void buildEmpty(PcNode *node, Targets to) {
    become(node, NodeKind::CmdList1, no_value, newPcNode(NodeKind::Atom, no_value, 0, node->line), nullptr,
           to.after);
}

// ---- Conditions

// A head and a body that is entered when the head gives what `jump` waits for.
void buildBranch(InstNode *inst, PcNode *node, NodeKind jump, Targets to) {
    PcNode *condition = parseSimple(inst->cub[0]);
    PcNode *body = buildList(inst->cub[1], nullptr, to);
    become(node, jump, no_value, condition, body, to.after);
}

void buildIfElse(InstNode *inst, PcNode *node, Targets to) {
    buildBranch(inst->cub[0], node, NodeKind::TrueGoto, to);
    node->next = buildList(inst->cub[1], nullptr, to);
}

// A chain of tests, each of which leads on to the next; the last leads to the else list, if there is one.
void buildIfChain(InstNode *inst, PcNode *node, Targets to) {
    bool has_else = inst->id == InstId::IfChainElse;
    uint32_t nparts = inst->ncub - has_else;
    for (uint32_t k = 0; k < nparts; ++k) {
        buildBranch(inst->cub[k], node, NodeKind::TrueGoto, to);
        if (k + 1 < nparts) node = node->next = newStatement(instLine(inst->cub[k + 1]));
    }
    if (has_else) node->next = buildList(inst->cub[nparts], nullptr, to);
}

// ---- Loops

void buildWhile(InstNode *inst, PcNode *node, NodeKind jump, Targets to) {
    PcNode *condition = parseSimple(inst->cub[0]);
    PcNode *body = buildList(inst->cub[1], nullptr, {node, node, to.after});
    become(node, jump, no_value, condition, body, to.after);
}

void buildDo(InstNode *inst, PcNode *node, NodeKind jump, Targets to) {
    PcNode *test = newStatement(instLine(inst->cub[1]));
    buildList(inst->cub[0], node, {test, test, to.after});
    PcNode *condition = parseSimple(inst->cub[1]);
    become(test, jump, no_value, condition, node, to.after);
}

PcNode *parseRange(Token *tokens, uint32_t line) {
    if (!tokens->next) syntaxError(line, "loop counter range invalid");
    Token *left, *right;
    if (splitTokenList(tokens, left, right) != Opr::Colon)
        syntaxError(line, "loop counter expression missing ':'");
    return makeNode(Opr::Colon, left, right);
}

bool isRange(const PcNode *node) { return node->kind == NodeKind::Colon1 || node->kind == NodeKind::Colon2; }

// An assignment of a range to the counter, or an expression that gives the number of turns.
PcNode *parseForLoopHead(Token *tokens) {
    if (!tokens->next) return processTokenAtom(tokens);
    uint32_t line = tokens->line;
    Token *left, *right;
    Opr op = splitTokenList(tokens, left, right);
    if (!left || !right) syntaxError(line, "loop header not starting with identifier");
    if (op != Opr::VarAsgn) syntaxError(line, "loop counter expression missing '='");
    if (!left->is(TokenKind::Identifier)) syntaxError(line, "loop counter not a variable");
    uint32_t counter = getLoopCounterIndex(left->symbol, line);
    PcNode *head = newPcNode(NodeKind::VarAsgn, static_cast<int32_t>(counter), 1, line);
    setPcCub(head, 0, parseRange(right, line));
    return head;
}

void buildCountFor(InstNode *inst, PcNode *node, PcNode *head, Targets to) {
    auto hidden = static_cast<int32_t>(newVarIndex());
    PcNode *step = newStatement(node->line);
    PcNode *body = buildList(inst->cub[1], nullptr, {step, step, to.after});
    become(node, NodeKind::PrepFor3, hidden, head, nullptr, step);
    become(step, NodeKind::For3, hidden, body, nullptr, to.after);
}

void buildRangeFor(InstNode *inst, PcNode *node, PcNode *head, Targets to) {
    PcNode *range = head->child(0);
    if (!isRange(range)) syntaxError(head->line, "loop counter expression missing ':'");
    bool steps = range->kind == NodeKind::Colon2;
    auto counter = static_cast<uint32_t>(head->value);
    PcNode *hidden = newPcNode(NodeKind::Variable, static_cast<int32_t>(newVarIndex()), 0, node->line);
    PcNode *step = newStatement(node->line);
    protectvar(counter);
    PcNode *body = buildList(inst->cub[1], nullptr, {step, step, to.after});
    unprotectvar(counter);
    become(node, steps ? NodeKind::PrepFor1b : NodeKind::PrepFor1a, head->value, hidden, range, step);
    become(step, steps ? NodeKind::For1b : NodeKind::For1a, head->value, hidden, body, to.after);
}

void buildFor(InstNode *inst, PcNode *node, Targets to) {
    if (!inst->cub[0]) syntaxError(node->line, "expression expected after 'for'");
    incLoopDepth();
    PcNode *head = parseForLoopHead(inst->cub[0]->token->next);
    if (head->kind == NodeKind::VarAsgn) {
        buildRangeFor(inst, node, head, to);
    } else {
        buildCountFor(inst, node, head, to);
    }
    decLoopDepth();
}

// ---- Jumps

void buildBreak(InstNode *inst, PcNode *node, Targets to) {
    if (!to.continue_to) syntaxError(instLine(inst), "keyword 'break' unexpected");
    become(node, NodeKind::Goto, no_value, to.break_to);
}

void buildReturn(InstNode *inst, PcNode *node) {
    if (progstkdepth == 0) syntaxError(instLine(inst), "keyword 'return' unexpected");
    become(node, NodeKind::Goto, no_value, ctscope->returnnode);
}

// ---- switch, try, throw

PcNode *buildCase(InstNode *part, Targets to) {
    PcNode *node =
        newPcNode(NodeKind::TrueGoto, static_cast<int32_t>(part->token->keyword), 2, part->token->line);
    setPcCub(node, 0, parseSimple(part->cub[0]));
    setPcCub(node, 1, buildList(part->cub[1], nullptr, to));
    return node;
}

void buildSwitch(InstNode *inst, PcNode *node, Targets to) {
    bool has_default = inst->id == InstId::SwitchDefault;
    InstNode *cases = inst->cub[1];
    uint32_t ncases = cases->ncub - has_default;
    PcNode *subject = parseSimple(inst->cub[0]);
    PcNode *list = newPcNode(NodeKind::List, no_value, ncases, node->line);
    for (uint32_t k = 0; k < ncases; ++k) setPcCub(list, k, buildCase(cases->cub[k], to));
    PcNode *otherwise = has_default ? buildList(cases->cub[ncases], nullptr, to) : to.after;
    become(node, NodeKind::Switch, no_value, subject, list, otherwise);
}

void buildTry(InstNode *inst, PcNode *node, Targets to) {
    const Token *name = inst->cub[0]->token->next;
    PcNode *body = buildList(inst->cub[1], nullptr, to);
    PcNode *handler = buildList(inst->cub[2], nullptr, to);
    become(node, NodeKind::Try, static_cast<int32_t>(findXexId(name->symbol)), body, handler, to.after);
}

void buildThrow(InstNode *inst, PcNode *node, Targets to) {
    auto id = static_cast<int32_t>(findXexId(inst->token->symbol));
    become(node, NodeKind::Throw, id, newMatPcNode(theEmptyMat(), instLine(inst)), nullptr, to.after);
}

// ---- Automatons

void buildYield(InstNode *inst, PcNode *node, Targets to) {
    PcNode *value = parseSimple(inst->cub[0]);
    setPcNode(node, NodeKind::Yield, no_value, 2);
    setPcCub(node, 0, value);
    setPcCub(node, 1, to.after);
}

void buildStop(InstNode *inst, PcNode *node, Targets to) {
    if (inst->ncub) syntaxError(instLine(inst), "unexpected token after keyword 'return'");
    setPcNode(node, NodeKind::Stop, no_value, 1);
    setPcCub(node, 0, to.after);
}

// ---- Simple statements

NodeKind cmdListKind(uint32_t n) {
    return static_cast<NodeKind>(index(NodeKind::CmdList1) + (n < 9 ? n : 9) - 1);
}

void buildGroup(InstNode *inst, PcNode *node, Targets to) {
    setPcNode(node, cmdListKind(inst->ncub), no_value, inst->ncub);
    for (uint32_t k = 0; k < inst->ncub; ++k) setPcCub(node, k, makeTopPcNode(inst->cub[k]));
    node->next = to.after;
}

void buildSimple(InstNode *inst, PcNode *node, Targets to) {
    become(node, NodeKind::CmdList1, no_value, makeTopPcNode(inst), nullptr, to.after);
}

void build(InstNode *inst, PcNode *node, Targets to) {
    guardParse();
    if (!inst) return buildEmpty(node, to);
    switch (inst->id) {
        case InstId::If: return buildBranch(inst, node, NodeKind::TrueGoto, to);
        case InstId::Unless: return buildBranch(inst, node, NodeKind::FalseGoto, to);
        case InstId::IfElse: return buildIfElse(inst, node, to);
        case InstId::IfChain:
        case InstId::IfChainElse: return buildIfChain(inst, node, to);
        case InstId::While: return buildWhile(inst, node, NodeKind::TrueGoto, to);
        case InstId::Until: return buildWhile(inst, node, NodeKind::FalseGoto, to);
        case InstId::DoWhile: return buildDo(inst, node, NodeKind::TrueGoto, to);
        case InstId::DoUntil: return buildDo(inst, node, NodeKind::FalseGoto, to);
        case InstId::For: return buildFor(inst, node, to);
        case InstId::Break: return buildBreak(inst, node, to);
        case InstId::Continue: return become(node, NodeKind::Goto, no_value, to.continue_to);
        case InstId::Return: return buildReturn(inst, node);
        case InstId::Switch:
        case InstId::SwitchDefault: return buildSwitch(inst, node, to);
        case InstId::Try: return buildTry(inst, node, to);
        case InstId::Throw: return buildThrow(inst, node, to);
        case InstId::Yield: return buildYield(inst, node, to);
        case InstId::Stop: return buildStop(inst, node, to);
        case InstId::Group: return buildGroup(inst, node, to);
        case InstId::Simple:
        case InstId::InputDomains:
        case InstId::OutputDomains:
        case InstId::GatherResults:
        case InstId::DefaultReturn:
        case InstId::MakeObject: return buildSimple(inst, node, to);
        default:
            syntaxError(instLine(inst), "unexpected keyword '%s'",
                        getKeywordName(static_cast<KeywordId>(inst->id)));
    }
}

// ---- One simple instruction

constexpr int32_t ans_index = 0;

PcNode *wrap(NodeKind kind, PcNode *root) {
    PcNode *node = newPcNode(kind, ans_index, 1, root->line);
    setPcCub(node, 0, root);
    return node;
}

// A step of an element that stands alone needs no value of its own.
void dropStepOutput(PcNode *root) {
    if (root->exec == doMatRefPreIncOutput) root->exec = doMatRefPreIncNoOutput;
    if (root->exec == doMatRefPreDecOutput) root->exec = doMatRefPreDecNoOutput;
}

bool isMemberCall(const PcNode *node) {
    return node->kind >= NodeKind::MemberCall0 && node->kind <= NodeKind::MemberCall7;
}

// What becomes of the value: assignments and leaves show it, expressions store it in `ans` at top level.
PcNode *makeShowNode(PcNode *root, bool quiet) {
    bool in_function = progstkdepth > 0;
    if (root->kind > NodeKind::ListJoin) return root;
    dropStepOutput(root);
    if (root->kind < NodeKind::Link) return quiet ? root : wrap(NodeKind::ShowValue, root);
    if (!in_function && isMemberCall(root)) root->value = ans_index;
    if (in_function) return wrap(quiet ? NodeKind::ThrowValue : NodeKind::ThrowShow, root);
    return wrap(quiet ? NodeKind::SetAns : NodeKind::SetAnsShow, root);
}

// Kinds of four follow each other: for one, two, three and more values.
PcNode *makeDomainCheck(NodeKind first, uint32_t count, uint32_t line) {
    uint32_t k = count > 3 ? 3 : count - 1;
    return newPcNode(static_cast<NodeKind>(index(first) + k), static_cast<int32_t>(count), 0, line);
}

// The outputs become a list, the child of the assignment to variable 0 in the return node.
PcNode *makeGatherNode(uint32_t line) {
    PcNode *list = newPcNode(NodeKind::List, no_value, ctscope->nout, line);
    for (uint32_t k = 0; k < ctscope->nout; ++k)
        setPcCub(list, k, newPcNode(NodeKind::Variable, static_cast<int32_t>(ctscope->nin + 1 + k), 0, line));
    PcNode *assignment = ctscope->returnnode->child(0);
    setPcCub(assignment, 0, list);
    return assignment;
}

}  // namespace

PcNode *makeTopPcNode(InstNode *inst) {
    uint32_t line = instLine(inst);
    switch (inst->id) {
        case InstId::Simple: return makeShowNode(parseSimple(inst), inst->token->is(TokenKind::Semicolon));
        case InstId::InputDomains: return makeDomainCheck(NodeKind::InDomain1, ctscope->nin, line);
        case InstId::OutputDomains: return makeDomainCheck(NodeKind::OutDomain1, ctscope->nout, line);
        case InstId::GatherResults: return makeGatherNode(line);
        case InstId::DefaultReturn: return newPcNode(NodeKind::DfltReturn, no_value, 0, line);
        case InstId::MakeObject: return newPcNode(NodeKind::MakeObject, no_value, 0, line);
        default:
            syntaxError(line, "Parse Error ... cannot make level 1 pseudo code, must be a bug, inst id = %d",
                        static_cast<int>(inst->id));
    }
}

void buildPcNode(InstNode *inst, PcNode *node, PcNode *after, PcNode *continue_to, PcNode *break_to) {
    build(inst, node, {after, continue_to, break_to});
}

PcNode *buildPcList(InstNode *list, PcNode *head, PcNode *after, PcNode *continue_to, PcNode *break_to) {
    return buildList(list, head, {after, continue_to, break_to});
}

PcNode *buildFuncCodeTree(InstNode *list) { return list ? buildList(list, nullptr, {}) : nullptr; }

PcNode *buildPcTree() {
    resetTokenCounts();
    InstNode *inst = getInstNode();
    PcNode *root = newStatement(instLine(inst));
    build(inst, root, {});
    return root;
}

}  // namespace vesko
