// Targets of assignment: token lists to the node that reads the place, which setAsgnOpr turns into the one
// that assigns. A plain target must exist; a creating one is created.
#include "console/command.h"
#include "console/message.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/source.h"
#include "frontend/symbols.h"

namespace vesko {

namespace {

// One of the four parsers: whether it makes what is missing, whether it parses a base, and the texts that
// tell which path refused.
struct TargetParser {
    bool creates;
    bool is_base;
    const char *no_left, *no_right, *other;
    PcNode *(*name)(const Token *token);              // a single identifier
    [[noreturn]] void (*refuse)(const Token *token);  // another single token
    [[noreturn]] void (*bad_field)(const Token *right);
    PcNode *(*base)(Token *tokens);  // of [], #, @ and >>
};

}  // namespace

// ---- Single tokens -------------------------------------------------------------------------------

static PcNode *newVarNode(uint32_t k, uint32_t line) {
    return newPcNode(Opr::Variable, static_cast<int32_t>(k), 0, line);
}

static uint32_t findOpenVar(uint32_t symbol) {
    uint32_t k = findVarIndex(symbol);
    return k == not_found || isprotected(k) ? not_found : k;
}

static PcNode *namedTarget(const Token *token) {
    uint32_t k = findOpenVar(token->symbol);
    if (k == not_found) syntaxError(token->line, "variable '%s' cannot be defined", tok2str(token));
    return newVarNode(k, token->line);
}

static PcNode *namedBase(const Token *token) {
    uint32_t k = findOpenVar(token->symbol);
    if (k == not_found) syntaxError(token->line, "variable not defined");
    return newVarNode(k, token->line);
}

static PcNode *createdTarget(const Token *token) {
    uint32_t k = cFindVarIndex(token->symbol);
    if (isprotected(k)) syntaxError(token->line, "attempt to change protected variable '%s'", tok2str(token));
    return newVarNode(k, token->line);
}

static void refuseTarget(const Token *token) {
    syntaxError(token->line, "lvalue '%s' is not identifier", tok2str(token));
}
static void refuseBase(const Token *token) {
    syntaxError(token->line, "invalid lvalue4 '%s'", tok2str(token));
}
static void refuseCreated(const Token *token) {
    syntaxError(token->line, "invalid lvalue8 '%s'", tok2str(token));
}
static void refuseCreatedBase(const Token *token) {
    syntaxError(token->line, "invalid lvalue12 '%s'", tok2str(token));
}

static void refuseField(const Token *right) {
    xMesg("parse Error %s %u: identifier expected", getCurrentFileName(), right->line);
    parseError(nullptr);
}
static void refuseBaseField(const Token *right) {
    syntaxError(right->line, "invalid lvalue -- identifier expected");
}
static void refuseCreatedField(const Token *right) {
    syntaxError(right->line, "invalid field name '%s'", tok2str(right));
}

// ---- The parsers ---------------------------------------------------------------------------------

static const TargetParser step_target = {false,
                                         false,
                                         "invalid lvalue1 '%s'",
                                         "invalid lvalue2 '%s'",
                                         "invalid lvalue3 '%s'",
                                         namedTarget,
                                         refuseTarget,
                                         refuseField,
                                         getLvPrim};
static const TargetParser step_base = {false,
                                       true,
                                       "invalid lvalue5 '%s'",
                                       "invalid lvalue6, '%s'",
                                       "invalid lvalue7 '%s'",
                                       namedBase,
                                       refuseBase,
                                       refuseBaseField,
                                       getLvPrim};
static const TargetParser target = {true,
                                    false,
                                    "invalid lvalue9 '%s'",
                                    "invalid lvalue10 '%s'",
                                    "invalid lvalue11 '%s'",
                                    createdTarget,
                                    refuseCreated,
                                    refuseCreatedField,
                                    cGetLvPrim};
static const TargetParser target_base = {true,
                                         true,
                                         "invalid lvalue13 '%s'",
                                         "invalid lvalue14 '%s'",
                                         "invalid lvalue15 '%s'",
                                         createdTarget,
                                         refuseCreatedBase,
                                         refuseCreatedField,
                                         cGetLvPrim};

static PcNode *parseSingle(const TargetParser &parser, const Token *token) {
    if (token->is(TokenKind::Identifier)) return parser.name(token);
    bool self = token->is(TokenKind::Parent) || token->is(TokenKind::This);
    if (!parser.is_base || !self) parser.refuse(token);
    return newPcNode(token->is(TokenKind::Parent) ? Opr::Parent : Opr::This, no_value, 0, token->line);
}

// `global.x`, or null where an unknown global is no error of its own.
static PcNode *parseGlobal(const TargetParser &parser, const Token *name) {
    uint32_t k = parser.creates ? cFindGv(name->symbol) : findGv(name->symbol);
    if (k != not_found) return newPcNode(Opr::GlobalVar, static_cast<int32_t>(k), 0, name->line);
    if (!parser.is_base) syntaxError(name->line, "\"%s\" not defined", tok2str(name));
    return nullptr;
}

static PcNode *parseOwnParameter(const Token *name) {
    uint32_t k = findIntParameter(name->symbol);
    if (k == not_found) syntaxError(name->line, "no internal parameter '%s'", tok2str(name));
    return newPcNode(Opr::Parameter, static_cast<int32_t>(k), 0, name->line);
}

// The owner of a field must exist, whichever the family.
static PcNode *parseField(const TargetParser &parser, Token *left, Token *right) {
    if (!isSingleIdentifier(right)) parser.bad_field(right);
    if (isSingle(left) && left->is(TokenKind::Global)) {
        if (PcNode *node = parseGlobal(parser, right)) return node;
    }
    if (isSingle(left) && left->is(TokenKind::This)) return parseOwnParameter(right);
    PcNode *base = getLvPrim(left);
    Opr kind = base->kind == Opr::ForcedType ? Opr::ForcedField : Opr::Field;
    PcNode *node = newPcNode(kind, static_cast<int32_t>(findFieldIndex(right->symbol)), 1, right->line);
    setPcCub(node, 0, base);
    return node;
}

static PcNode *parseForcedType(Token *left, Token *right) {
    PcNode *base = getLvPrim(left);
    PcNode *node = newPcNode(Opr::ForcedType, no_value, 2, right->line);
    setPcCub(node, 0, base);
    setPcCub(node, 1, parseTokenList(right));
    return node;
}

static PcNode *parsePointee(const TargetParser &parser, Token *left) {
    PcNode *node = newPcNode(Opr::Deref, no_value, 1, left->line);
    setPcCub(node, 0, parser.base(left));
    return node;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
[[noreturn]] static void refuse(const char *text, const Token *list) {
    syntaxError(list->line, text, tok2str(list));
}
#pragma GCC diagnostic pop

static PcNode *parseTarget(const TargetParser &parser, Token *tokens) {
    guardParse();
    Token *list = stripPars(tokens), *left, *right;
    if (!list) tokenError(parser.creates ? "invalid lvalue '()'" : "invalid lvalue");
    if (isSingle(list)) return parseSingle(parser, list);
    Opr op = splitTokenList(list, left, right);
    if (!left) refuse(parser.no_left, list);
    if (!right) {
        if (op != Opr::Link) refuse(parser.no_right, list);
        return parsePointee(parser, left);
    }
    switch (op) {
        case Opr::Field: return parseField(parser, left, right);
        case Opr::ForcedType: return parseForcedType(left, right);
        case Opr::ListEntry: return makeListEntryNode(parser.base(left), right);
        case Opr::HashEntry: return makeHashEntryNode(parser.base(left), right);
        case Opr::BracketGroup:
            if (!parser.is_base) return makeMatRefNode(parser.base(left), right, IndexMode::Assign);
            [[fallthrough]];
        default: refuse(parser.other, list);
    }
}

PcNode *getLValueNode(Token *tokens) { return parseTarget(step_target, tokens); }
PcNode *getLvPrim(Token *tokens) { return parseTarget(step_base, tokens); }
PcNode *cGetLValueNodeAtom(Token *tokens) { return parseTarget(target, tokens); }
PcNode *cGetLvPrim(Token *tokens) { return parseTarget(target_base, tokens); }

// ---- Several targets -----------------------------------------------------------------------------

static const int32_t fields_of_parent = no_value - 1;

// What a target of several must agree in: plain variables, fields of one variable, or fields of `parent`.
// Gives the number that marks the class in the list's node.
static int32_t targetClass(const PcNode *node) {
    if (node->kind == Opr::Variable) return no_value;
    if (node->kind == Opr::Field && node->child(0)->kind == Opr::Parent) return fields_of_parent;
    if (node->kind == Opr::Field && node->child(0)->kind == Opr::Variable) return node->child(0)->value;
    syntaxError(node->line, "lvalue item inside bracket not a variable");
}

static PcNode *parseTargets(Token *list, uint32_t n) {
    PcNode *node = newPcNode(Opr::Sequence, no_value, n, list->line);
    for (uint32_t k = 0; k < n; k++) {
        PcNode *item = cGetLValueNodeAtom(readHead(list, TokenKind::Comma));
        setPcCub(node, k, item);
        int32_t item_class = targetClass(item);
        if (k == 0) node->value = item_class;
        if (item_class != node->value) syntaxError(item->line, "lvalue item inside bracket not a variable");
    }
    setOpr(node, Opr::TargetList);
    return node;
}

PcNode *cGetLValueNode(Token *tokens) {
    guardParse();
    bool in_brackets = tokens->is(TokenKind::ParenGroup) || tokens->is(TokenKind::BracketGroup);
    if (!isSingle(tokens) || !in_brackets) return cGetLValueNodeAtom(tokens);
    uint32_t n = countParts(tokens->first, TokenKind::Comma);
    if (n == 0) syntaxError(tokens->line, "invalid lvalue '()'");
    return n == 1 ? cGetLValueNode(tokens->first) : parseTargets(tokens->first, n);
}

}  // namespace vesko
