// Argument lists of calls and index lists, with holes, defaults, and the limit that `$` stands for.
#include "engine/handlers.h"
#include "frontend/builders.h"
#include "frontend/parser.h"
#include "frontend/symbols.h"
#include "values/matrix.h"

namespace vesko {

// ---- The limits of the indices being parsed, innermost on top ------------------------------------

static const int refstack_size = 128;
static PcNode *refstack[refstack_size];
static int refstackptr = -1;

PcNode *topReference() { return refstackptr < 0 ? nullptr : refstack[refstackptr]; }
void resetRefStackPtr() { refstackptr = -1; }

static PcNode *parseWithLimit(Token *list, Opr limit_kind, PcNode *base) {
    if (refstackptr + 1 == refstack_size) syntaxError(list->line, "indices nested too deep");
    PcNode *limit = newPcNode(limit_kind, no_value, 1, list->line);
    setPcCub(limit, 0, base);
    refstack[++refstackptr] = limit;
    PcNode *node = parseTokenList(list);
    refstackptr--;
    return node;
}

// ---- Positional arguments ------------------------------------------------------------------------

static bool isLone(const Token *list, TokenKind kind) { return isSingle(list) && list->is(kind); }

static PcNode *newHole(uint32_t line) { return newPcNode(Opr::Atom, no_value, 0, line); }

// The k-th argument, from 1. A lone `*` is the callee's default for it.
static PcNode *parseArgument(PcNode *base, Token *item, uint32_t k) {
    if (isLone(item, TokenKind::Dot)) return newHole(item->line);
    if (!isLone(item, TokenKind::Star)) return copyIfProtected(parseTokenList(item));
    PcNode *node = newPcNode(Opr::DfltArg, static_cast<int32_t>(k), 1, item->line);
    setPcCub(node, 0, base);
    return node;
}

// A `~` that begins the last item makes the list one of variable length; it has a child of its own, a hole,
// only where it is the whole list.
static PcNode *parsePcSeq(PcNode *base, uint32_t n, Token *list) {
    PcNode *node = newPcNode(Opr::Sequence, 1, n, list->line);
    for (uint32_t k = 0; k < n; k++) {
        Token *item = readHead(list, TokenKind::Comma);
        if (k + 1 < n || !item->is(TokenKind::Tilde)) {
            setPcCub(node, k, parseArgument(base, item, k + 1));
            continue;
        }
        setOpr(node, Opr::VList);
        if (n == 1) {
            setPcCub(node, 0, newHole(item->line));
        } else {
            node->ncub--;
        }
    }
    return node;
}

PcNode *parseArgList(PcNode *base, Token *list) {
    uint32_t n = countParts(list, TokenKind::Comma);
    return n ? parsePcSeq(base, n, list) : newPcNode(Opr::Sequence, 1, 0, base->line);
}

// ---- Index lists ---------------------------------------------------------------------------------

namespace {

// The items of an index and the limits that stand for `$` in them.
struct IndexParser {
    PcNode *base;
    IndexMode mode;
    Opr total;  // limit of a single index

    PcNode *parseItem(Token *item, Opr limit) const {
        if (mode == IndexMode::Read && isLone(item, TokenKind::Dot)) return newHole(item->line);
        return parseWithLimit(item, limit, base);
    }
    // A lone backslash stands for the diagonal.
    PcNode *parseFirst(Token *item, Opr limit) const {
        if (mode != IndexMode::Entry && isLone(item, TokenKind::Backslash)) {
            return newPcNode(Opr::None, no_value, 0, item->line);
        }
        return parseItem(item, limit);
    }
    void parsePair(PcNode *node, Token *list, TokenKind separator) const {
        Token *item = readHead(list, separator);
        bool by_block = separator == TokenKind::Semicolon;
        PcNode *first = by_block ? parseWithLimit(item, Opr::MaxRow, base) : parseFirst(item, Opr::MaxRow);
        setPcCub(node, 0, first);
        Opr limit = first->kind == Opr::None ? Opr::MaxDiag : Opr::MaxCol;
        setPcCub(node, 1, by_block ? parseWithLimit(list, limit, base) : parseItem(list, limit));
    }
};

}  // namespace

static PcNode *newIndexNode(int32_t value, uint32_t n, uint32_t line) {
    return newPcNode(Opr::Sequence, value, n, line);
}

// Its value is 2 for `i;j`, 3 for three items and more, 1 otherwise.
static PcNode *parseRefArg(const IndexParser &parser, Token *list, uint32_t line) {
    uint32_t blocks = countParts(list, TokenKind::Semicolon);
    if (blocks == 0) syntaxError(line, "empty index expression");
    if (blocks > 2) syntaxError(line, "indexing expression has too many items");
    if (blocks == 2) {
        PcNode *node = newIndexNode(2, 2, line);
        parser.parsePair(node, list, TokenKind::Semicolon);
        return node;
    }
    uint32_t n = countParts(list, TokenKind::Comma);
    PcNode *node = newIndexNode(n < 3 ? 1 : 3, n, line);
    if (n == 1) setPcCub(node, 0, parser.parseFirst(list, parser.total));
    if (n == 2) parser.parsePair(node, list, TokenKind::Comma);
    for (uint32_t k = 0; n > 2 && k < n; k++)
        setPcCub(node, k, parseTokenList(readHead(list, TokenKind::Comma)));
    return node;
}

// ---- Index nodes ---------------------------------------------------------------------------------

static PcNode *newRefNode(Opr kind, PcNode *base, PcNode *index) {
    PcNode *node = newPcNode(kind, no_value, 2, base->line);
    setPcCub(node, 0, base);
    setPcCub(node, 1, index);
    return node;
}

static bool isHole(const PcNode *node) { return node->kind == Opr::Atom; }
static bool isDiagonal(const PcNode *node) { return node->kind == Opr::None; }

static PcNode *makeRef1Node(PcNode *base, PcNode *index) {
    if (isDiagonal(index)) return newRefNode(Opr::Diag, base, index);
    if (isHole(index)) return newRefNode(Opr::EntryFun1, base, index);
    PcNode *node = newRefNode(Opr::Ref, base, index);
    if (base->kind == Opr::Variable && is_ds_node(index)) node->exec = getMatRef_v_vrs;
    return node;
}

// Holes become the whole range.
static void fillHoles(PcNode *indices) {
    for (uint32_t k = 0; k < indices->ncub; k++) {
        PcNode *index = indices->child(k);
        if (isHole(index)) setPcCub(indices, k, newMatPcNode(theRng0Mat(), index->line));
    }
}

static Opr ref2Kind(const PcNode *row, const PcNode *column) {
    if (isDiagonal(row)) return Opr::DiagM;
    if (isHole(row)) return isHole(column) ? Opr::EntryFun2 : Opr::EntryFunRows;
    return isHole(column) ? Opr::EntryFunCols : Opr::Ref2;
}

static PcNode *makeRef2Node(PcNode *base, PcNode *indices) {
    PcNode *row = indices->child(0), *column = indices->child(1);
    if (isDiagonal(row) && isHole(column)) syntaxError(base->line, "invalid indexing expression");
    PcNode *node = newRefNode(ref2Kind(row, column), base, indices);
    fillHoles(indices);
    bool scalars = node->kind == Opr::Ref2 && is_ds_node(row) && is_ds_node(column);
    if (scalars && base->kind == Opr::Variable) node->exec = getMatRef2_v_vrs;
    return node;
}

PcNode *makeMatRefNode(PcNode *base, Token *group, IndexMode mode) {
    PcNode *indices = parseRefArg({base, mode, Opr::MaxIndex}, group->first, group->line);
    if (indices->value == 2) return newRefNode(Opr::RefM, base, indices);
    switch (indices->ncub) {
        case 1: return makeRef1Node(base, indices->child(0));
        case 2: return makeRef2Node(base, indices);
        case 3: return newRefNode(Opr::Ref3, base, indices);
        default: return newRefNode(Opr::RefMd, base, indices);
    }
}

// ---- Entries of lists and hash tables ------------------------------------------------------------

static Token *openBracket(Token *tokens) {
    return isLone(tokens, TokenKind::BracketGroup) ? tokens->first : tokens;
}

PcNode *makeListEntryNode(PcNode *base, Token *tokens) {
    uint32_t line = tokens->line;
    PcNode *indices = parseRefArg({base, IndexMode::Entry, Opr::MaxListIndex}, openBracket(tokens), line);
    if (indices->ncub != 1) syntaxError(line, "too many items in list indexing expression");
    return newRefNode(Opr::ListEntry, base, indices->child(0));
}

PcNode *makeHashEntryNode(PcNode *base, Token *tokens) {
    uint32_t line = tokens->line;
    if (tokens->isKeyword(KeywordId::Default)) {
        if (tokens->next) syntaxError(line, "unexpected token2 '%s'", tok2str(tokens->next));
        PcNode *node = newPcNode(Opr::DfltHashEntry, no_value, 1, line);
        setPcCub(node, 0, base);
        return node;
    }
    PcNode *indices = parseRefArg({base, IndexMode::Entry, Opr::MaxListIndex}, openBracket(tokens), line);
    if (indices->ncub != 1) syntaxError(line, "comma unexpected");
    return newRefNode(Opr::HashEntry, base, copyIfProtected(indices->child(0)));  // a new key is kept
}

}  // namespace vesko
