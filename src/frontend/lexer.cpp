// The lexer: characters to tokens, groups and definition blocks to single tokens.
#include "frontend/lexer.h"

#include <cassert>
#include <cstring>

#include "frontend/inst.h"
#include "frontend/parser.h"
#include "frontend/pool.h"
#include "frontend/source.h"
#include "frontend/symbols.h"
#include "frontend/token_text.h"
#include "values/memory.h"

namespace vesko {

static ParsePool<Token> token_pool;
static uint32_t tokencount;          // tokens of this command but separators
static uint32_t charcount;           // characters taken from the console in this command
static int32_t token_reading_depth;  // composite tokens being read: the end of input is an error in them

// ---- State that the command cycle and the console see

Token *newToken(TokenKind kind) {
    Token *token = token_pool.take();
    token->kind = kind;
    token->first = nullptr;
    token->line = getCurrLineNum();
    token->next = nullptr;
    return token;
}

void recycleTokLib() { token_pool.recycleAll(); }
void countConsoleChar() { ++charcount; }
uint32_t getCurrentTokenCount() { return tokencount; }
bool parsingInProgress() { return charcount > 0; }
void resetTokenCounts() { tokencount = charcount = 0; }
void resetTokenReadingDepth() { token_reading_depth = 0; }
void raiseTokenReadingDepth(int by) { token_reading_depth += by; }

// ---- The text of the token being read

static char *tokbuff;
static uint32_t tokbufflen, toklen;

static void growTokenBuffer() {
    uint32_t wanted = tokbufflen ? tokbufflen * 2 : 32;
    auto *grown = static_cast<char *>(m_malloc(wanted));
    if (toklen) std::memcpy(grown, tokbuff, toklen);
    char *old = tokbuff;
    uint32_t oldlen = tokbufflen;
    tokbuff = grown;
    tokbufflen = wanted;
    if (old) m_free(old, oldlen);
}

static void recordCh(int c) {
    if (toklen + 1 >= tokbufflen) [[unlikely]]
        growTokenBuffer();
    tokbuff[toklen++] = static_cast<char>(c);
}

static const char *tokenText() {
    if (!tokbuff) growTokenBuffer();
    tokbuff[toklen] = '\0';
    return tokbuff;
}

// ---- Scanning

// The end of input acts as a line end. The end of the console's lines is a token of its own.
static int32_t stateAtEnd(int32_t state) {
    if (token_reading_depth > 0) {
        charcount = 0;
        resetFileList();
        tokenError("unexpected EOF while reading token");
    }
    if (isLexStart(state) && consoleEnded()) return static_cast<int32_t>(TokenKind::Eof);
    changeCurrentFileBack();
    int32_t next = lexMachine(state, '\n');
    if (next > last_token) {
        resetFileList();
        tokenError("unexpected EOF");
    }
    return next;
}

// `>-` and `<-` that go on to none of the arrows are two tokens, and their `-` is read again.
static int32_t giveBack(int32_t token, int c) {
    if (token == static_cast<int32_t>(TokenKind::Eof)) return token;
    setExtraCh(c);
    if (token == static_cast<int32_t>(TokenKind::RightArrowTail)) {
        setExtraCh('-');
        return static_cast<int32_t>(TokenKind::Greater);
    }
    if (token == static_cast<int32_t>(TokenKind::LeftArrowHead)) {
        setExtraCh('-');
        return static_cast<int32_t>(TokenKind::Less);
    }
    return token;
}

// One step of the automaton.
static inline void updateState(int32_t &state) {
    if (isLexStart(state)) toklen = 0;
    int c = nextChar();
    state = c == end_of_input ? stateAtEnd(state) : lexMachine(state, c);
    if (state <= last_pushback_token) {
        state = giveBack(state, c);
    } else if (state == lex_error) {
        tokenError("unrecognized token");
    } else if (need_record_ch[state]) {
        recordCh(c);
    }
}

// Runs the automaton from a start state to a token; the text is left in the buffer.
static TokenKind scanToken(int32_t state) {
    do updateState(state);
    while (state > last_token);
    return static_cast<TokenKind>(state);
}

// ---- Making tokens

static Token *makeWord(const char *word, KeywordId keyword) {
    if (keyword == KeywordId::NotFound) {
        Token *token = newToken(TokenKind::Identifier);
        token->symbol = findSymbolIndex(word);
        return token;
    }
    Token *token = newToken(keywordKind(keyword));
    token->keyword = keyword;
    return token;
}

static Token *makeNumber(TokenKind kind) {
    Token *token = newToken(kind);
    token->number = retrieveNum(tokenText());
    return token;
}

static Token *makeText(TokenKind kind, char *text) {
    Token *token = newToken(kind);
    token->text = text;
    return token;
}

static Token *makeToken(TokenKind kind) {
    switch (kind) {
        case TokenKind::Number:
        case TokenKind::NumberJoin: return makeNumber(TokenKind::Number);
        case TokenKind::Imaginary:
        case TokenKind::Integer:
        case TokenKind::Byte: return makeNumber(kind);
        case TokenKind::Regexp:
        case TokenKind::Regsub:
        case TokenKind::Translit:
            return makeText(kind, xstringCopy(tokenText() + 1));  // behind the first slash
        case TokenKind::SingleQuoted: return makeText(TokenKind::String, xstringSQScan(tokenText()));
        case TokenKind::BigInt:
        case TokenKind::Mpf:
        case TokenKind::String: return makeText(kind, xstringScan(tokenText()));
        default: return newToken(kind);
    }
}

// ---- Definition blocks

struct BlockWord {
    KeywordId keyword;
    TokenKind kind;
    const char *refusal;
    InstNode *(*read)();
};

static const BlockWord block_words[] = {
    {KeywordId::Function, TokenKind::FunctionBlock, "function defined inside block",
     [] { return getInstBlock(InstId::Function); }},
    {KeywordId::Class, TokenKind::ClassBlock, "class defined inside block", getClassBlock},
    {KeywordId::Conditional, TokenKind::ConditionalBlock, "class defined inside block", getClubBlock},
    {KeywordId::Automaton, TokenKind::AutomatonBlock, "automaton definition inside block",
     [] { return getProcBlock(InstId::Automaton); }},
};

static Token *readBlock(const BlockWord &word) {
    if (getLoopDepth() != 0) tokenError("%s", word.refusal);
    ++token_reading_depth;
    InstNode *inst = word.read();
    --token_reading_depth;
    Token *token = newToken(word.kind);
    token->inst = inst;
    return token;
}

static Token *readWord() {
    const char *word = tokenText();
    KeywordId keyword = isKeyword(word);
    if (keyword != KeywordId::NotFound)
        for (const BlockWord &block : block_words)
            if (block.keyword == keyword) return readBlock(block);
    return makeWord(word, keyword);
}

// ---- Groups

struct GroupForm {
    TokenKind closer, group;
};

static GroupForm groupForm(TokenKind opener) {
    switch (opener) {
        case TokenKind::ParenOpen:
        case TokenKind::ParenMinus: return {TokenKind::ParenClose, TokenKind::ParenGroup};
        case TokenKind::BracketOpen: return {TokenKind::BracketClose, TokenKind::BracketGroup};
        case TokenKind::BraceOpen: return {TokenKind::BraceClose, TokenKind::BraceGroup};
        default: tokenError("Bug in getCompToken");
    }
}

// A () group that holds nothing but a () group is that group.
static Token *newCompToken(TokenKind group, Token *first) {
    if (group == TokenKind::ParenGroup && first && first->is(group) && !first->next) return first;
    Token *token = newToken(group);
    token->first = first;
    return token;
}

// Separators stay in the list of a group; line ends do not.
static Token *getCompToken(TokenKind opener) {
    guardParse();
    GroupForm form = groupForm(opener);
    Token *first = nullptr, **end = &first;
    LexStart category = LexStart::Statement;
    if (opener == TokenKind::ParenMinus) {
        first = newToken(TokenKind::Minus);
        end = &first->next;
        category = LexStart::Operator;
    }
    for (;;) {
        Token *token = getToken(category);
        if (token->is(form.closer)) return newCompToken(form.group, first);
        if (token->is(TokenKind::Eof)) syntaxErrorColon(getCurrLineNum(), "end of file when reading token");
        category = getTokCat(token->kind);
        if (token->is(TokenKind::Newline)) continue;
        *end = token;
        end = &token->next;
    }
}

// ---- The next token

static bool opensGroup(TokenKind kind) {
    return kind == TokenKind::ParenOpen || kind == TokenKind::ParenMinus || kind == TokenKind::BracketOpen ||
           kind == TokenKind::BraceOpen;
}

static Token *readToken(TokenKind kind) {
    if (kind == TokenKind::Word) return readWord();
    if (!opensGroup(kind)) return makeToken(kind);
    ++token_reading_depth;
    Token *token = getCompToken(kind);
    --token_reading_depth;
    return token;
}

Token *getToken(LexStart category) {
    Token *token = readToken(scanToken(static_cast<int32_t>(category)));
    if (!token->isSeparator()) ++tokencount;
    return token;
}

Token *getToken_skip_blanks() {
    for (;;) {
        Token *token = getToken(LexStart::Statement);
        if (!token->is(TokenKind::Newline)) return token;
    }
}

Token *stripPars(Token *token) {
    while (token && token->is(TokenKind::ParenGroup) && !token->next) token = token->first;
    return token;
}

}  // namespace vesko
