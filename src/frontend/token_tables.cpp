// Tables of the language's words and operators: keywords, token kinds, operators and their priorities.
#include <cstdio>
#include <cstring>
#include <iterator>

#include "frontend/symbols.h"
#include "frontend/token.h"
#include "frontend/token_text.h"

namespace vesko {
namespace {

// ---- Keywords

struct Keyword {
    KeywordId id;
    const char *text;
    TokenKind kind;
};

constexpr Keyword keywords[] = {
#define KEY(id, name, text, kind) {KeywordId::name, text, TokenKind::kind},
#include "frontend/keywords.def"
#undef KEY
};

// Keywords are chained by their first letter.
struct KeywordIndex {
    int8_t first[26], next[std::size(keywords)];

    constexpr KeywordIndex() : first{}, next{} {
        for (int8_t &k : first) k = -1;
        for (int8_t k = std::size(keywords) - 1; k >= 0; --k) {
            int8_t &head = first[keywords[k].text[0] - 'a'];
            next[k] = head;
            head = k;
        }
    }
};
constexpr KeywordIndex keyword_index;

const Keyword *findKeyword(const char *text, size_t length) {
    if (length == 0 || text[0] < 'a' || text[0] > 'z') return nullptr;
    for (int k = keyword_index.first[text[0] - 'a']; k >= 0; k = keyword_index.next[k])
        if (!std::strncmp(keywords[k].text, text, length) && keywords[k].text[length] == '\0')
            return &keywords[k];
    return nullptr;
}

const Keyword *keywordOf(KeywordId id) {
    for (const Keyword &k : keywords)
        if (k.id == id) return &k;
    return nullptr;
}

// ---- Token kinds

struct TokenTable {
    const char *text[n_token_kinds];
    Opr opr[n_token_kinds];
};

constexpr TokenTable tokens = [] {
    TokenTable table = {};
    for (const char *&text : table.text) text = "???";
    for (Opr &opr : table.opr) opr = Opr::None;
#define TOK(number, name, show, op) \
    table.text[number] = show;      \
    table.opr[number] = Opr::op;
#include "frontend/tokens.def"
#undef TOK
    return table;
}();

// ---- Operators

struct OperatorTable {
    const char *label[n_node_kinds];
    int8_t priority[n_node_kinds];
};

constexpr OperatorTable operators = [] {
    OperatorTable table = {};
#define OP(number, name, handler, show, binds) \
    table.label[number] = show;                \
    table.priority[number] = binds;
#include "engine/node_kinds.def"
#undef OP
    return table;
}();

}  // namespace

KeywordId isKeyword(const char *text) {
    const Keyword *word = findKeyword(text, std::strlen(text));
    return word ? word->id : KeywordId::NotFound;
}

KeywordId isKeywordH(const char *text, uint32_t length) {
    uint32_t n = 0;
    while (n < length && text[n] >= 'a' && text[n] <= 'z') ++n;
    bool goes_on = n < length && ((text[n] >= 'A' && text[n] <= 'Z') || (text[n] >= '0' && text[n] <= '9'));
    const Keyword *word = goes_on ? nullptr : findKeyword(text, n);
    return word ? word->id : KeywordId::NotFound;
}

// `readonly` shows as nothing in messages, and programs see it so.
const char *getKeywordName(KeywordId id) {
    const Keyword *word = id == KeywordId::Readonly ? nullptr : keywordOf(id);
    return word ? word->text : "";
}

TokenKind keywordKind(KeywordId id) { return keywordOf(id)->kind; }

const char *tok2str(const Token *token) {
    static char number[400];
    if (!token) return "EOF";
    switch (token->kind) {
        case TokenKind::Number: std::snprintf(number, sizeof number, "%f", token->number); return number;
        case TokenKind::Regexp:
        case TokenKind::Regsub:
        case TokenKind::Translit:
        case TokenKind::SingleQuoted:
        case TokenKind::String: return token->text;
        case TokenKind::Identifier: return getSymbolName(token->symbol);
        case TokenKind::Keyword: return getKeywordName(token->keyword);
        default: return index(token->kind) < n_token_kinds ? tokens.text[index(token->kind)] : "???";
    }
}

Opr getTokOpr(TokenKind kind) { return index(kind) < n_token_kinds ? tokens.opr[index(kind)] : Opr::None; }

const char *opr2str(Opr op) {
    const char *label = index(op) < n_node_kinds ? operators.label[index(op)] : nullptr;
    return label ? label : "undefined";
}

int thePriorityOf(Opr op) { return operators.priority[index(op)]; }

bool isBinary(Opr op) {
    switch (op) {
        case Opr::PreInc:
        case Opr::PreDec:
        case Opr::Deref:
        case Opr::Link:
        case Opr::Not:
        case Opr::Arrow:
        case Opr::Atom: return false;
        default: return true;
    }
}

// Both tables are built by the compiler.
void setTokOpr() {}
void setOprPriority() {}

}  // namespace vesko
