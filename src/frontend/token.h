// Tokens: kinds, keywords, and the way from source text to token lists.
//
// Parser code owns nothing that a jump would leak: tokens come from a pool that is recycled as a whole at the
// head of each command, texts from pods.
#pragma once

#include <array>
#include <cstdint>

#include "engine/interrupt.h"
#include "engine/node.h"

namespace vesko {

struct InstNode;

enum class TokenKind : uint32_t {
#define TOK(number, name, text, opr) name = number,
#include "frontend/tokens.def"
#undef TOK
};
constexpr unsigned n_token_kinds = 205;
constexpr unsigned index(TokenKind k) { return static_cast<unsigned>(k); }

enum class KeywordId : int32_t {
#define KEY(id, name, text, kind) name = id,
#include "frontend/keywords.def"
#undef KEY
    NotFound = no_value,
};

struct Token {
    TokenKind kind;
    union {
        double number;      // Number, Imaginary, Integer, NumberJoin, Byte
        uint32_t symbol;    // Identifier
        KeywordId keyword;  // Keyword
        char *text;         // Regexp, Regsub, Translit, BigInt, Mpf, String
        Token *first;       // ParenGroup, BracketGroup, BraceGroup: first token inside, or null
        InstNode *inst;     // FunctionBlock, ClassBlock, ConditionalBlock, AutomatonBlock
    };
    uint32_t line;
    Token *next;
    Token *poolnext;

    bool is(TokenKind k) const { return kind == k; }
    bool isKeyword(KeywordId id) const { return kind == TokenKind::Keyword && keyword == id; }
    bool isSeparator() const {
        return kind == TokenKind::Comma || kind == TokenKind::Semicolon || kind == TokenKind::Newline;
    }
    bool isStop() const { return kind == TokenKind::Eof || isSeparator(); }
};

// ---- Tokens from the source stack.
enum class LexStart : uint32_t {
    Statement = 95,  // start of a statement, or after a separator
    Value = 96,      // after a value
    Operator = 97,   // after an operator
};
void startLexMachine();
Token *getToken(LexStart category);
Token *getToken_skip_blanks();
extern const std::array<LexStart, n_token_kinds> token_categories;
inline LexStart getTokCat(TokenKind kind) { return token_categories[index(kind)]; }
Token *newToken(TokenKind kind);
Token *stripPars(Token *token);
double retrieveNum(const char *text);
void recycleTokLib();
uint32_t getCurrentTokenCount();
bool parsingInProgress();
void resetTokenCounts();
void resetTokenReadingDepth();
void raiseTokenReadingDepth(int by);

// ---- Tables.
void setTokOpr();
void setOprPriority();
extern const std::array<Opr, n_token_kinds> tok2opr;  // None: cannot stand in an expression
inline Opr getTokOpr(TokenKind kind) {
    return index(kind) < n_token_kinds ? tok2opr[index(kind)] : Opr::None;
}
KeywordId isKeyword(const char *text);
KeywordId isKeywordH(const char *text, uint32_t length);  // text need not end behind the word
const char *getKeywordName(KeywordId id);
const char *tok2str(const Token *token);  // text for messages, in a shared buffer

// ---- Parse errors: the message is shown and the command abandoned. The text is the part behind the number.
[[noreturn]] void tokenError(const char *format, ...)  // "Error <file> <current line>: <text>"
    __attribute__((format(printf, 1, 2)));
[[noreturn]] void syntaxError(uint32_t line, const char *format, ...)  // "Error <file> <line>: <text>"
    __attribute__((format(printf, 2, 3)));
[[noreturn]] void syntaxErrorColon(uint32_t line, const char *format, ...)  // "Error: <file> <line>: <text>"
    __attribute__((format(printf, 2, 3)));
[[noreturn]] void syntaxTooDeep();
inline void guardParse() {  // at every recursive entry of the parsers
    if (stackLow()) [[unlikely]]
        syntaxTooDeep();
}

}  // namespace vesko
