// Aggregates: what the contents of [...], (...) and {...} build.
#include <cassert>

#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/matrix.h"

namespace vesko {

// ---- Parts of a list -----------------------------------------------------------------------------

// The semicolon shows as a colon in these messages.
static char separatorChar(TokenKind separator) { return separator == TokenKind::Comma ? ',' : ':'; }

uint32_t countParts(Token *list, TokenKind separator) {
    if (!list) return 0;
    uint32_t n = 1;
    bool expected = true;  // a token of the part
    for (Token *token = list, *last = list; token; last = token, token = token->next) {
        bool at_separator = token->is(separator);
        if (at_separator && expected) {
            syntaxError(token->line, "token expected before '%c'", separatorChar(separator));
        }
        if (at_separator && !token->next) {
            syntaxError(last->line, "token expected after '%c'", separatorChar(separator));
        }
        n += at_separator;
        expected = at_separator;
    }
    return n;
}

static bool isLonePart(const Token *token, TokenKind kind, TokenKind separator) {
    return token->is(kind) && (!token->next || token->next->is(separator));
}

uint32_t countHoles(Token *list, TokenKind separator) {
    uint32_t n = 0;
    bool first = true;  // of its part
    for (Token *token = list; token; token = token->next) {
        n += first && isLonePart(token, TokenKind::Dot, separator);
        first = token->is(separator);
    }
    return n;
}

Token *readHead(Token *&list, TokenKind separator) {
    Token *head = list, *last = nullptr;
    while (list && !list->is(separator)) {
        last = list;
        list = list->next;
    }
    if (list) list = list->next;
    if (!last) return nullptr;
    last->next = nullptr;
    return head;
}

// ---- Matrices ------------------------------------------------------------------------------------

// A matrix of numbers that are all known is built now.
static PcNode *foldMatrix(PcNode *node) {
    return allNumericConstants(node) ? newMatPcNode(node->exec(node), node->line) : node;
}

static PcNode *parseMatRow(Token *list, uint32_t line) {
    uint32_t n = countParts(list, TokenKind::Comma);
    if (n == 0) return newMatPcNode(theEmptyMat(), line);
    if (n == 1) return parseTokenList(list);
    PcNode *row = newPcNode(Opr::MatRow, no_value, n, line);
    for (uint32_t k = 0; k < n; k++) setPcCub(row, k, parseTokenList(readHead(list, TokenKind::Comma)));
    return foldMatrix(row);
}

PcNode *parseMat(Token *list, uint32_t line) {
    uint32_t n = countParts(list, TokenKind::Semicolon);
    if (n < 2) return parseMatRow(list, line);
    PcNode *mat = newPcNode(Opr::MatRows, no_value, n, line);
    for (uint32_t k = 0; k < n; k++)
        setPcCub(mat, k, parseMatRow(readHead(list, TokenKind::Semicolon), line));
    return foldMatrix(mat);
}

// ---- Lists ---------------------------------------------------------------------------------------

static PcNode *parseItem(Token *list) { return copyIfProtected(parseTokenList(list)); }

// One row of a list. A `~` that begins the last item makes the list one of variable length.
static PcNode *parseListRow(Token *list, uint32_t n, uint32_t line) {
    PcNode *node = newPcNode(Opr::List, static_cast<int32_t>(n), n, line);
    for (uint32_t k = 0; k < n; k++) {
        Token *item = readHead(list, TokenKind::Comma);
        bool grows = k + 1 == n && item->is(TokenKind::Tilde);
        if (grows) setOpr(node, Opr::VList);
        setPcCub(node, k, grows ? newPcNode(Opr::Atom, no_value, 0, item->line) : parseItem(item));
    }
    return node;
}

static PcNode *parseListRows(Token *list, uint32_t rows, uint32_t line) {
    Token *row = readHead(list, TokenKind::Semicolon);
    uint32_t columns = countParts(row, TokenKind::Comma);
    PcNode *node = newPcNode(Opr::List, static_cast<int32_t>(columns), rows * columns, line);
    for (uint32_t i = 0; i < rows; i++) {
        if (countParts(row, TokenKind::Comma) != columns) syntaxError(line, "list with uneven rows");
        for (uint32_t j = 0; j < columns; j++) {
            setPcCub(node, i * columns + j, parseItem(readHead(row, TokenKind::Comma)));
        }
        row = readHead(list, TokenKind::Semicolon);
    }
    return node;
}

PcNode *parseList(Token *list, uint32_t line) {
    uint32_t rows = countParts(list, TokenKind::Semicolon);
    if (rows == 0) return newPcNode(Opr::List, no_value, 0, line);
    if (rows > 1) return parseListRows(list, rows, line);
    uint32_t n = countParts(list, TokenKind::Comma);
    bool plain_bracket = n == 1 && !list->is(TokenKind::Tilde);
    return plain_bracket ? parseTokenList(list) : parseListRow(list, n, line);
}

// ---- Braces --------------------------------------------------------------------------------------

enum class ItemForm { Field, Entry, Element };

static PcNode *newItemNode(Opr kind, int32_t value, PcNode *key, PcNode *data) {
    PcNode *node = newPcNode(kind, value, key ? 2 : 1, data->line);
    if (key) setPcCub(node, 0, copyIfProtected(key));
    setPcCub(node, key ? 1 : 0, copyIfProtected(data));
    return node;
}

static uint32_t itemName(const Token *left) {
    if (!isSingleIdentifier(left)) syntaxError(left->line, "invalid lvalue'%s'", tok2str(left));
    return left->symbol;
}

static PcNode *parseEntryItem(Token *left, Token *right) {
    if (isSingle(left) && left->isKeyword(KeywordId::Default)) {
        return newItemNode(Opr::DfltHashAsgn, no_value, nullptr, parseTokenList(right));
    }
    PcNode *key = parseTokenList(left);
    return newItemNode(Opr::HashItem, no_value, key, parseTokenList(right));
}

static PcNode *parseStructItem(Token *part, ItemForm &form) {
    assert(part);
    Cut cut = findCut(part);
    bool named = cut.op == Opr::VarAsgn && cut.before && !cut.lacksRight();
    bool keyed = cut.op == Opr::Arrow && cut.before && !cut.lacksRight();
    form = named ? ItemForm::Field : keyed ? ItemForm::Entry : ItemForm::Element;
    if (form == ItemForm::Element) return parseItem(part);
    Token *left, *right;
    cutAt(part, cut, left, right);
    if (keyed) return parseEntryItem(left, right);
    uint32_t field = findFieldIndex(itemName(left));
    return newItemNode(Opr::FieldItem, static_cast<int32_t>(field), nullptr, parseTokenList(right));
}

[[noreturn]] static void refuseItem(ItemForm expected, const Token *item) {
    switch (expected) {
        case ItemForm::Field: syntaxError(item->line, "struct field '%s' not initialized", tok2str(item));
        case ItemForm::Entry: syntaxError(item->line, "hash entry expected but got '%s'", tok2str(item));
        default: syntaxError(item->line, "when definting a set, field or hash entry unexpected");
    }
}

// Names are compared by the number in the node's value.
static void refuseDuplicate(const PcNode *node, uint32_t k, const Token *name) {
    for (uint32_t i = 0; i < k; i++) {
        if (node->child(i)->value == node->child(k)->value) {
            syntaxError(name->line, "duplicate field '%s'", tok2str(name));
        }
    }
}

static Opr aggregateKind(ItemForm form) {
    switch (form) {
        case ItemForm::Field: return Opr::Struct;
        case ItemForm::Entry: return Opr::HashTable;
        default: return Opr::Set;
    }
}

// The first item decides what the whole is.
PcNode *parseStruct(Token *list, uint32_t line) {
    uint32_t n = countParts(list, TokenKind::Comma);
    PcNode *node = newPcNode(Opr::Set, static_cast<int32_t>(n), n, line);
    ItemForm first = ItemForm::Element, form;
    for (uint32_t k = 0; k < n; k++) {
        Token *item = readHead(list, TokenKind::Comma);
        setPcCub(node, k, parseStructItem(item, form));
        if (k == 0) first = form;
        if (form != first) refuseItem(first, item);
        if (form == ItemForm::Field) refuseDuplicate(node, k, item);
    }
    setOpr(node, aggregateKind(first));
    return node;
}

// ---- Named arguments -----------------------------------------------------------------------------

static PcNode *parseNpItem(Token *part) {
    if (isSingleIdentifier(part)) syntaxError(part->line, "field '%s' not initialized", tok2str(part));
    if (isSingle(part))
        syntaxError(part->line, "'%s' is not valid field; identifier expected", tok2str(part));
    Token *left, *right;
    Opr op = splitTokenList(part, left, right);
    if (!left || !right) syntaxError(part->line, "invalid struct field '%s'", tok2str(part));
    if (op != Opr::VarAsgn)
        syntaxError(part->line, "'%s...' not a valid field or not initialized", tok2str(part));
    uint32_t symbol = itemName(left);
    return newItemNode(Opr::FieldItem, static_cast<int32_t>(symbol), nullptr, parseTokenList(right));
}

PcNode *parseNpArgs(Token *list, uint32_t line) {
    uint32_t n = countParts(list, TokenKind::Comma);
    if (n == 0) syntaxError(line, "empty argument list");
    PcNode *node = newPcNode(Opr::Struct, static_cast<int32_t>(n), n, line);
    for (uint32_t k = 0; k < n; k++) {
        Token *item = readHead(list, TokenKind::Comma);
        setPcCub(node, k, parseNpItem(item));
        refuseDuplicate(node, k, item);
    }
    return node;
}

}  // namespace vesko
