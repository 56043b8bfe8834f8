// Calls and fields: what `f(...)`, `f{...}` and `a.b` build.
#include "builtins/bfunc.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"

namespace vesko {

static bool isSingleOf(const Token *list, TokenKind kind) { return isSingle(list) && list->is(kind); }

// ---- Fields --------------------------------------------------------------------------------------

static uint32_t fieldSymbol(const Token *right) {
    if (isSingleOf(right, TokenKind::ParenGroup)) {
        syntaxError(right->line, "field name %s is  par", tok2str(right));
    }
    if (!isSingleIdentifier(right))
        syntaxError(right->line, "field name %s not an identifier", tok2str(right));
    return right->symbol;
}

static PcNode *newGlobalNode(uint32_t symbol, uint32_t line) {
    uint32_t k = findGv(symbol);
    if (k == not_found) syntaxError(line, "global name '%s' undefined", getSymbolName(symbol));
    return newPcNode(Opr::GlobalVar, static_cast<int32_t>(k), 0, line);
}

static PcNode *newBuiltinNode(uint32_t symbol, uint32_t line) {
    uint32_t k = findBuiltin(symbol);
    if (k == not_found) syntaxError(line, "built-in name '%s' undefined", getSymbolName(symbol));
    return newPcNode(Opr::Builtin, static_cast<int32_t>(k), 0, line);
}

static PcNode *newParameterNode(uint32_t symbol, uint32_t line) {
    uint32_t k = findAnyParameter(symbol);
    if (k == not_found) syntaxError(line, "parameter not found");
    return newPcNode(Opr::Parameter, static_cast<int32_t>(k), 0, line);
}

static Opr fieldKind(const PcNode *base) {
    if (base->kind == Opr::ForcedType) return Opr::ForcedField;
    return base->kind == Opr::Parent ? Opr::ParField : Opr::Field;
}

PcNode *buildField(Opr, Token *left, Token *right) {
    uint32_t symbol = fieldSymbol(right), line = right->line;
    if (isSingleOf(left, TokenKind::Global)) return newGlobalNode(symbol, line);
    if (isSingleOf(left, TokenKind::Builtin)) return newBuiltinNode(symbol, line);
    PcNode *base = parseTokenList(left);
    if (base->kind == Opr::This) return newParameterNode(symbol, line);
    PcNode *node = newPcNode(fieldKind(base), static_cast<int32_t>(findFieldIndex(symbol)), 1, line);
    setPcCub(node, 0, base);
    return node;
}

static bool isFieldNode(const PcNode *node) {
    return node->kind == Opr::Field || node->kind == Opr::ForcedField || node->kind == Opr::ParField;
}

// ---- Calls ---------------------------------------------------------------------------------------

// The member of a family of call kinds for `n` arguments: none, one, two, three, or more.
static Opr callKind(Opr first, uint32_t n) { return static_cast<Opr>(index(first) + (n < 4 ? n : 4)); }

// A call through a slot is its argument list, which takes the callee's number.
static PcNode *callThrough(Opr family, int32_t callee, PcNode *args) {
    args->value = callee;
    setOpr(args, callKind(family, args->ncub));
    return args;
}

// What a member of `parent` changes is the parent of the function that calls it.
static PcNode *newMemberNode(Opr kind, PcNode *field, PcNode *args) {
    if (lv_has_par(field)) ctscope->usesparent = true;
    PcNode *node = newPcNode(kind, no_value, 2, field->line);
    setPcCub(node, 0, field);
    setPcCub(node, 1, args);
    return node;
}

// `this.get()` and `this.put(...)` of an automaton, or null.
static PcNode *buildPortCall(Token *left, Token *group) {
    const Token *name = left->is(TokenKind::This) && left->next ? left->next->next : nullptr;
    if (!isSingleIdentifier(name) || !left->next->is(TokenKind::Dot)) return nullptr;
    uint32_t n = countParts(group->first, TokenKind::Comma);
    bool get = name->symbol == SYMBOL_INDEX_GET && n <= 1;
    bool put = name->symbol == SYMBOL_INDEX_PUT && (n == 1 || n == 2);
    if (!get && !put) return nullptr;
    PcNode *self = newPcNode(Opr::This, no_value, 0, left->line);
    return newMemberNode(get ? Opr::ProcGet : Opr::ProcPut, self, parseArgList(self, group->first));
}

// Positions of the holes, from 0, as a column.
static Matrix *holePositions(const PcNode *args, uint32_t holes) {
    Matrix *positions = newIntMat(holes, 1);
    uint32_t n = 0;
    for (uint32_t k = 0; k < args->ncub; k++) {
        if (args->child(k)->kind == Opr::Atom) positions->ints()[n++] = static_cast<int32_t>(k);
    }
    return positions;
}

static PcNode *buildPartialCall(PcNode *callee, Token *list, uint32_t holes) {
    PcNode *args = parseArgList(callee, list);
    if (args->ncub == holes) return callee;
    PcNode *node = newPcNode(Opr::PartialCall, static_cast<int32_t>(holes), 3, callee->line);
    setPcCub(node, 0, callee);
    setPcCub(node, 1, args);
    setPcCub(node, 2, newMatPcNode(holePositions(args, holes), callee->line));
    return node;
}

static bool isKnownCallee(uint32_t symbol) {
    return findVarIndex(symbol) != not_found || findGv(symbol) != not_found ||
           findParameter(symbol) != not_found;
}

static PcNode *buildNameCall(Token *name, Token *group) {
    uint32_t symbol = name->symbol, holes = countHoles(group->first, TokenKind::Comma), k;
    if (holes) return buildPartialCall(processTokenAtom(name), group->first, holes);
    if (!isKnownCallee(symbol)) syntaxError(name->line, "name '%s' undefined", getSymbolName(symbol));
    PcNode *callee = processTokenAtom(name);
    if ((k = findVarIndex(symbol)) != not_found) {
        return callThrough(Opr::VarCall0, callee->value, parseArgList(callee, group->first));
    }
    if ((k = findBf(symbol)) != not_found)
        return getBFCallNode(k, parseArgList(callee, group->first), name->line);
    if ((k = findGv(symbol)) != not_found) {
        return callThrough(Opr::GlobalCall0, static_cast<int32_t>(k), parseArgList(callee, group->first));
    }
    return newProductNode(callee, parseList(group->first, group->line));  // a parameter is no function
}

// ---- Calls of the running function by `this` -----------------------------------------------------

static bool selfCallFits(uint32_t given, uint32_t inputs) {
    switch (given) {
        case 0: return false;
        case 1: return inputs > 0;
        case 2: return inputs == 1 || inputs == 2;
        case 3: return inputs == 1 || inputs == 3;
        default: return given == inputs;
    }
}

static PcNode *buildSelfCall(PcNode *self, Token *group) {
    if (progstkdepth == 0 || ctscope->kind != 'F')
        syntaxError(self->line, "using keyword 'this' outside function");
    PcNode *args = parseArgList(self, group->first);
    if (!selfCallFits(args->ncub, ctscope->nin))
        syntaxError(self->line, "wrong number of arguments calling 'this'");
    return callThrough(Opr::SelfCall0, no_value, args);
}

PcNode *buildCall(Opr, Token *left, Token *group) {
    if (PcNode *port = buildPortCall(left, group)) return port;
    if (isSingleIdentifier(left)) return buildNameCall(left, group);
    PcNode *callee = parseTokenList(left);
    if (isFieldNode(callee)) {
        setPcCub(callee, 0, copyIfProtected(callee->child(0)));  // a method changes its owner
        PcNode *args = parseArgList(callee, group->first);
        return newMemberNode(callKind(Opr::MemberCall0, args->ncub), callee, args);
    }
    if (callee->kind == Opr::This) return buildSelfCall(callee, group);
    return newProductNode(callee, parseList(group->first, group->line));
}

PcNode *buildNamedCall(Opr, Token *left, Token *group) {
    bool by_name = isSingleIdentifier(left);
    PcNode *callee = parseTokenList(left);
    if (!by_name && !isFieldNode(callee)) syntaxError(left->line, "unable to parse '%s{}'", tok2str(left));
    PcNode *args = parseNpArgs(group->first, group->line);
    return newMemberNode(by_name ? Opr::NamedCall : Opr::MemberCallNp, callee, args);
}

}  // namespace vesko
