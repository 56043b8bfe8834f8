// Heads of function definitions: where parameters, inputs and outputs stand, and what each item says.
#include "console/command.h"
#include "console/message.h"
#include "frontend/builders.h"
#include "frontend/definition.h"
#include "frontend/parser.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "values/matrix.h"

namespace vesko {

// ---- Splitting a head ----------------------------------------------------------------------------

static void expectIdentifier(const Token *token, uint32_t line) {
    if (!token || !token->is(TokenKind::Identifier)) {
        syntaxError(line, "function formal argument not an identifier");
    }
}

// Cuts the list at the arrow: gives what follows it.
static Token *cutAtArrow(Token *head) {
    for (Token *before = head; before->next; before = before->next) {
        if (!before->next->is(TokenKind::RightArrow)) continue;
        Token *outputs = before->next->next;
        before->next = nullptr;
        return outputs;
    }
    syntaxError(head->line, "'->' expected in argument list");
}

// Parameters in front of the inputs, and the inputs in or without brackets. `only_name` refuses what follows
// a name without brackets.
static FuncHead readInputs(Token *head, const char *behind_group, bool only_name) {
    FuncHead parts{};
    Token *inputs = head;
    if (head->is(TokenKind::BracketGroup)) {
        parts.parms = head->first;
        inputs = head->next;
        if (!inputs) syntaxError(head->line, "function formal argument list missing");
    }
    bool in_group = inputs->is(TokenKind::ParenGroup);
    if (!in_group) expectIdentifier(inputs, inputs->line);
    if (inputs->next && (in_group || only_name)) {
        syntaxError(inputs->line, behind_group, tok2str(inputs->next));
    }
    parts.inputs = in_group ? inputs->first : inputs;
    return parts;
}

FuncHead getMapIOargs(Token *head, uint32_t line) {
    if (!head || head->is(TokenKind::RightArrow)) expectIdentifier(nullptr, line);
    Token *outputs = stripPars(cutAtArrow(head));
    if (outputs) expectIdentifier(outputs, line);
    FuncHead parts = readInputs(head, "token '%s' unexpected after bracket", false);
    parts.outputs = outputs;
    return parts;
}

FuncHead getOneLineMapIOargs(Token *head) {
    return readInputs(head, "token following the bracket unexpected", true);
}

// ---- Parameters ----------------------------------------------------------------------------------

static ParmAttr keywordAttr(const Token *token) {
    switch (token->keyword) {
        case KeywordId::Public: return ParmAttr::Public;
        case KeywordId::Readonly: return ParmAttr::Readonly;
        case KeywordId::Common: return ParmAttr::Common;
        case KeywordId::Auto: return ParmAttr::Auto;
        case KeywordId::Private: return ParmAttr::Private;
        default: syntaxError(token->line, "unexpected keyword '%s'", getKeywordName(token->keyword));
    }
}

static ParmAttr takeAttr(Token *&list) {
    if (!list->is(TokenKind::Keyword)) return ParmAttr::Public;
    ParmAttr attr = keywordAttr(list);
    uint32_t line = list->line;
    list = list->next;
    if (!list) {
        xMesg("Error: %s %u token expected when parsing parameter", getCurrentFileName(), line);
        parseError(nullptr);
    }
    if (!list->is(TokenKind::Identifier)) syntaxError(line, "identifier expected as parameter name");
    return attr;
}

static PcNode *newParameterItem(uint32_t symbol, ParmAttr attr, PcNode *value) {
    int32_t number = static_cast<int32_t>(findFieldIndex(symbol)) * n_parm_attrs + static_cast<int32_t>(attr);
    PcNode *node = newPcNode(Opr::FieldItem, number, 1, value->line);
    setPcCub(node, 0, copyIfProtected(value));
    return node;
}

static PcNode *parseParameterItem(Token *list) {
    ParmAttr attr = takeAttr(list);
    if (!list->is(TokenKind::Identifier)) {
        syntaxError(list->line, "unexpected token '%s' in function parameter definition", tok2str(list));
    }
    if (isSingle(list)) {
        if (attr == ParmAttr::Common || attr == ParmAttr::Auto) {
            syntaxError(list->line, "parameter '%s' has no value given", tok2str(list));
        }
        return newParameterItem(list->symbol, attr, newMatPcNode(theEmptyMat(), list->line));
    }
    Token *left, *right;
    Opr op = splitTokenList(list, left, right);
    if (op != Opr::VarAsgn || !right) syntaxError(list->line, "parameter declaration missing '='");
    if (!isSingleIdentifier(left)) syntaxError(list->line, "invalid lvalue'%s'", tok2str(list));
    return newParameterItem(left->symbol, attr, parseTokenList(right));
}

PcNode *parseParameters(Token *list, uint32_t line) {
    uint32_t n = countParts(list, TokenKind::Comma);
    PcNode *node = newPcNode(Opr::Struct, static_cast<int32_t>(n), n, line);
    for (uint32_t k = 0; k < n; k++) {
        PcNode *item = parseParameterItem(readHead(list, TokenKind::Comma));
        setPcCub(node, k, item);
        for (uint32_t i = 0; i < k; i++) {
            if (parmField(node->child(i)) != parmField(item)) continue;
            syntaxError(item->line, "duplicate parameter '%s'", getFieldName(parmField(item)));
        }
    }
    return node;
}

static void addParms(Vector *parms, const PcNode *parameters, bool publics) {
    for (uint32_t k = 0; k < parameters->ncub; k++) {
        const PcNode *item = parameters->child(k);
        if ((parmAttr(item) == ParmAttr::Public) != publics) continue;
        sfield *parm = newSfield(parmField(item), theEmptyMat(), theCompleteMat());
        parm->flag = static_cast<uint8_t>(parmAttr(item));
        addElement(parms, parm);
    }
}

Vector *makeParmVector(const PcNode *parameters, int32_t &npublic) {
    npublic = 0;
    if (parameters->ncub == 0) return nullptr;
    Vector *parms = newVector(parameters->ncub);
    addParms(parms, parameters, true);
    npublic = static_cast<int32_t>(parms->size);
    addParms(parms, parameters, false);
    return parms;
}

// ---- Looking parameters up in the scope ----------------------------------------------------------

uint32_t findAnyParameter(uint32_t symbol) {
    uint32_t field = findFieldIndex(symbol);
    const Vector *parms = ctscope->parms;
    for (uint32_t k = 0; parms && k < parms->size; k++) {
        if (parms->at<sfield>(k)->index == field) return k;
    }
    return not_found;
}

static uint32_t findParameterOf(uint32_t symbol, ParmAttr attr) {
    uint32_t k = findAnyParameter(symbol);
    if (k == not_found) return not_found;
    return ctscope->parms->at<sfield>(k)->flag == static_cast<uint8_t>(attr) ? k : not_found;
}

uint32_t findParameter(uint32_t symbol) { return findParameterOf(symbol, ParmAttr::Public); }
uint32_t findIntParameter(uint32_t symbol) { return findParameterOf(symbol, ParmAttr::Private); }

// ---- Formal arguments ----------------------------------------------------------------------------

// A default of the empty value and a domain of everything mark what is not given.
static PcNode *newFormalNode(const Token *name, PcNode *dflt, PcNode *domain) {
    PcNode *node = newPcNode(Opr::FormalArg, static_cast<int32_t>(name->symbol), 2, name->line);
    setPcCub(node, 0, dflt ? copyIfProtected(dflt) : newMatPcNode(theEmptyMat(), name->line));
    setPcCub(node, 1, domain ? domain : newMatPcNode(theCompleteMat(), name->line));
    return node;
}

// `x`, `x in D`, `x = v`, `x = v in D`
static PcNode *parseFormalArg(Token *list, FormalFlags &flags) {
    if (!list->is(TokenKind::Identifier)) {
        syntaxError(list->line, "function formal argument doesnot start with an identifier");
    }
    if (isSingle(list)) return newFormalNode(list, nullptr, nullptr);
    Cut cut = findCut(list);
    if (cut.op == Opr::In && cut.lacksRight()) {
        syntaxError(list->line, "tokens expected on both sides of 'in' keyword");
    }
    if ((cut.op != Opr::In && cut.op != Opr::VarAsgn) || cut.lacksRight()) {
        syntaxError(list->line, "unexpected token '%s' in function formal argument list", tok2str(cut.at));
    }
    if (cut.before != list) syntaxError(list->line, "unexpected token4 '%s'", tok2str(list->next));
    PcNode *value = parseTokenList(cut.at->next);
    flags.dflt |= cut.op == Opr::VarAsgn;
    flags.domain |= cut.op == Opr::In || value->kind == Opr::In;
    if (cut.op == Opr::In) return newFormalNode(list, nullptr, value);
    if (value->kind == Opr::In) return newFormalNode(list, value->child(0), value->child(1));
    return newFormalNode(list, value, nullptr);
}

PcNode *procFormalArgList(Token *list, uint32_t line, FormalFlags &flags) {
    flags = {};
    uint32_t n = countParts(list, TokenKind::Comma);
    PcNode *node = newPcNode(Opr::List, static_cast<int32_t>(n), n, line);
    for (uint32_t k = 0; k < n; k++)
        setPcCub(node, k, parseFormalArg(readHead(list, TokenKind::Comma), flags));
    return node;
}

static void registerFormals(const PcNode *formals, const char *what) {
    for (uint32_t k = 0; k < formals->ncub; k++) {
        PcNode *formal = formals->child(k);
        uint32_t symbol = static_cast<uint32_t>(formal->value);
        if (registerVar(symbol, formal) == not_found) {
            syntaxError(formal->line, "duplicate %s argument '%s'", what, getSymbolName(symbol));
        }
    }
}

void procIOArgs(const PcNode *outputs, const PcNode *inputs) {
    bool one_output = outputs->ncub == 1;
    if (one_output) {
        registerFormals(outputs, "output");
    } else {
        registerVar(findSymbolIndex(""), nullptr);
    }
    registerFormals(inputs, "input");
    if (!one_output) registerFormals(outputs, "output");
    ctscope->nin = inputs->ncub;
    ctscope->nout = outputs->ncub;
}

}  // namespace vesko
