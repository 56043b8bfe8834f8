// Definitions of conditional classes: the items of the body become the parts of a node that builds the class
// when it runs.
#include "frontend/builders.h"
#include "frontend/definition.h"
#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/matrix.h"

namespace vesko {

namespace {

// What stands once in a class, in the order of the node's children.
struct SingleItem {
    FieldIndex name;
    const char *twice;
};
constexpr SingleItem single_items[] = {
    {FIELD_INDEX_DATABASE, "class has two databases"},
    {FIELD_INDEX_TITLE, "class has two titles"},
    {FIELD_INDEX_APPLY, "class has two join attributes"},
    {FIELD_INDEX_VALIDATE, "class has two validate attributes"},
    {FIELD_INDEX_WITHDRAW, "class has two withdraw attributes"},
};
constexpr uint32_t n_single_items = sizeof single_items / sizeof *single_items;

// Database and title are settings; all else is a common field.
bool isSetting(uint32_t field) { return field == FIELD_INDEX_DATABASE || field == FIELD_INDEX_TITLE; }

[[noreturn]] void refuseName(const Token *name) {
    syntaxError(name->line, "class attribute name not allowed");
}

PcNode *parseCondSetting(Token *name, uint32_t &special) {
    special = findFieldIndex(name->symbol);
    switch (special) {
        case FIELD_INDEX_DATABASE:
            return parseSetting(name, "'database' should be assigned a value, or a list of values");
        case FIELD_INDEX_TITLE: return parseSetting(name, "title should be assigned a string");
        default: refuseName(name);
    }
}

// `special` becomes the field of a setting, or 0.
PcNode *parseCondItem(Token *tokens, uint32_t &special) {
    if (tokens->is(TokenKind::Identifier)) return parseCondSetting(tokens, special);
    if (!tokens->is(TokenKind::Keyword))
        syntaxError(tokens->line, "unexpected token '%s' in class definition ", tok2str(tokens));
    special = 0;
    Access attr = takeFieldWord(tokens, true);
    if (isSetting(findFieldIndex(tokens->symbol))) refuseName(tokens);
    if (isSingle(tokens)) return newFieldItem(tokens, attr, nullptr, nullptr);
    ItemValue v = parseItemValue(fieldValueTokens(tokens));
    return newFieldItem(tokens, attr, v.value, v.domain);
}

struct CondParts {
    PcNode *single[n_single_items];
    PcNode *fields;  // a list node with a child an item
};

void addCondItem(CondParts &parts, const InstNode *inst) {
    uint32_t special;
    PcNode *item = parseCondItem(inst->token->next, special);
    const uint32_t name = special ? special : static_cast<uint32_t>(item->value);
    for (uint32_t k = 0; k < n_single_items; k++)
        if (single_items[k].name == name) return setOnce(parts.single[k], item, single_items[k].twice);
    addFieldItem(parts.fields, item);
}

PcNode *defaultOf(const SingleItem &item, uint32_t line) {
    if (item.name == FIELD_INDEX_TITLE) return newMatPcNode(newStrMatCopy(""), line);
    return newPcNode(Opr::List, no_value, 0, line);
}

}  // namespace

PcNode *readConditional(InstNode *block) {
    const InstNode *items = block->cub[0];
    const uint32_t line = items ? instLine(items) : block->token->line;
    CondParts parts{{}, newPcNode(Opr::List, no_value, 0, line)};
    uint32_t n_items = 0;
    for (const InstNode *inst = items; inst; inst = inst->next, n_items++) addCondItem(parts, inst);
    PcNode *node = newPcNode(Opr::CondDef, indexSize(parts.fields, n_items), n_single_items + 1, line);
    for (uint32_t k = 0; k < n_single_items; k++)
        setPcCub(node, k, parts.single[k] ? parts.single[k] : defaultOf(single_items[k], line));
    setPcCub(node, n_single_items, parts.fields);
    return node;
}

}  // namespace vesko
