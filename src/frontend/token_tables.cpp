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

// ---- Texts for messages

constexpr auto token_texts = [] {
    std::array<const char *, n_token_kinds> table;
    table.fill("???");
#define TOK(number, name, text, opr) table[number] = text;
#include "frontend/tokens.def"
#undef TOK
    return table;
}();

constexpr auto labels = [] {
    std::array<const char *, n_node_kinds> table = {};
#define OP(number, name, handler, label, priority) table[number] = label;
#include "engine/node_kinds.def"
#undef OP
    return table;
}();

// A value, or what ends like one.
constexpr TokenKind value_tokens[] = {
    TokenKind::Number,
    TokenKind::Regexp,
    TokenKind::Regsub,
    TokenKind::Translit,
    TokenKind::Imaginary,
    TokenKind::Integer,
    TokenKind::SingleQuoted,
    TokenKind::PlusPlus,
    TokenKind::MinusMinus,
    TokenKind::Dollar,
    TokenKind::Quote,
    TokenKind::Byte,
    TokenKind::BigInt,
    TokenKind::Mpf,
    TokenKind::String,
    TokenKind::Identifier,
    TokenKind::Keyword,
    TokenKind::ParenGroup,
    TokenKind::BracketGroup,
    TokenKind::BraceGroup,
    TokenKind::ClassBlock,
    TokenKind::FunctionBlock,
    TokenKind::ConditionalBlock,
    TokenKind::Global,
    TokenKind::Builtin,
    TokenKind::Parent,
    TokenKind::This,
};
constexpr TokenKind stop_tokens[] = {TokenKind::Eof, TokenKind::Comma, TokenKind::Semicolon,
                                     TokenKind::Newline};

}  // namespace

// ---- Tables

constinit const std::array<Opr, n_token_kinds> tok2opr = [] {
    std::array<Opr, n_token_kinds> table;
    table.fill(Opr::None);
#define TOK(number, name, text, opr) table[number] = Opr::opr;
#include "frontend/tokens.def"
#undef TOK
    return table;
}();

constinit const std::array<int8_t, n_node_kinds> opr_priority = [] {
    std::array<int8_t, n_node_kinds> table = {};
#define OP(number, name, handler, label, priority) table[number] = priority;
#include "engine/node_kinds.def"
#undef OP
    return table;
}();

constinit const std::array<LexStart, n_token_kinds> token_categories = [] {
    std::array<LexStart, n_token_kinds> table;
    table.fill(LexStart::Operator);
    for (TokenKind kind : value_tokens) table[index(kind)] = LexStart::Value;
    for (TokenKind kind : stop_tokens) table[index(kind)] = LexStart::Statement;
    return table;
}();

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
        default: return index(token->kind) < n_token_kinds ? token_texts[index(token->kind)] : "???";
    }
}

const char *opr2str(Opr op) {
    const char *label = index(op) < n_node_kinds ? labels[index(op)] : nullptr;
    return label ? label : "undefined";
}

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
