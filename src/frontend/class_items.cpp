// Items of class bodies: what definitions of classes and of conditional classes read alike.
#include "frontend/builders.h"
#include "frontend/definition.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/matrix.h"

namespace vesko {

// ---- Words in front of a name

static bool attributeOf(KeywordId word, Access &attr) {
    switch (word) {
        case KeywordId::Public: attr = Access::Public; return true;
        case KeywordId::Readonly: attr = Access::Readonly; return true;
        case KeywordId::Common: attr = Access::Common; return true;
        case KeywordId::Auto: attr = Access::Auto; return true;
        case KeywordId::Private: attr = Access::Private; return true;
        default: return false;
    }
}

Access takeFieldWord(Token *&tokens, bool only_common) {
    if (!tokens->is(TokenKind::Keyword)) return Access::Public;
    const Token *word = tokens;
    Access attr;
    if (!attributeOf(word->keyword, attr) || (only_common && attr != Access::Common))
        syntaxError(word->line, "invalid class field access type -- unexpected keyword '%s'",
                    getKeywordName(word->keyword));
    tokens = word->next;
    if (!tokens || !tokens->is(TokenKind::Identifier))
        syntaxError(word->line, "class field declaration not starting with identifier");
    return attr;
}

// ---- Values

Token *fieldValueTokens(Token *name) {
    const char *field = tok2str(name);
    Token *sign = name->next, *value = sign->next;
    if (!value) syntaxError(name->line, "class field '%s' declaration unfinished", field);
    if (sign->is(TokenKind::Assign)) return value;
    if (sign->is(TokenKind::In)) syntaxError(name->line, "default value not specified for field '%s'", field);
    syntaxError(name->line, "unexpected token '%s' while declaring class field '%s'", tok2str(sign),
                getSymbolName(name->symbol));
}

ItemValue parseItemValue(Token *tokens) {
    PcNode *node = parseTokenList(tokens);
    if (node->kind == Opr::In) return {node->child(0), node->child(1)};
    return {node, nullptr};
}

PcNode *parseSetting(Token *name, const char *refusal) {
    const Token *sign = name->next;
    const bool has_value = sign && sign->is(TokenKind::Assign) && sign->next;
    if (!has_value || (isSingle(sign->next) && sign->next->is(TokenKind::FunctionBlock)))
        syntaxError(name->line, "%s", refusal);
    return parseTokenList(sign->next);
}

// ---- Items

static PcNode *nodeOr(PcNode *node, Matrix *constant, uint32_t line) {
    return node ? node : newMatPcNode(constant, line);
}

PcNode *newFieldItem(const Token *name, Access attr, PcNode *value, PcNode *domain) {
    const uint32_t line = name->line;
    PcNode *item = newPcNode(Opr::List, static_cast<int32_t>(findFieldIndex(name->symbol)), 3, line);
    setPcCub(item, 0, newPcNode(Opr::Atom, static_cast<int32_t>(attr), 0, line));
    setPcCub(item, 1, nodeOr(value, theEmptyMat(), line));
    setPcCub(item, 2, nodeOr(domain, theCompleteMat(), line));
    return item;
}

void setOnce(PcNode *&part, PcNode *item, const char *refusal) {
    if (part) syntaxError(item->line, "%s", refusal);
    part = item;
}

void addFieldItem(PcNode *fields, PcNode *item) {
    for (uint32_t k = 0; k < fields->ncub; k++)
        if (fields->child(k)->value == item->value)
            syntaxError(item->line, "duplicate field '%s'", getFieldName(static_cast<uint32_t>(item->value)));
    addPcCub(fields, item);
}

// Entries of the table from field to position: up to the largest field.
int32_t indexSize(const PcNode *fields, uint32_t n_items) {
    int32_t size = static_cast<int32_t>(n_items) + 1;
    for (uint32_t k = 0; k < fields->ncub; k++)
        if (fields->child(k)->value >= size) size = fields->child(k)->value + 1;
    return size;
}

}  // namespace vesko
