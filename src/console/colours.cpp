// Syntax colouring. The text is cut into tokens; brackets and block keywords are paired over the whole
// command; what has no partner, or stands where it can't, is an error.
#include "console/colours.h"

#include <vector>

#include "console/worksheet.h"
#include "frontend/lexer.h"
#include "frontend/token.h"

namespace vesko {
namespace {

bool syntax_highlight = true;

constexpr uint32_t unmatched = ~0u;

struct Piece {
    uint32_t from, length;
    TextClass kind;
    KeywordId keyword;
    uint32_t line;
    uint32_t partner;  // closer of an opener
};

// ---- Tokens

struct Scanned {
    uint32_t length;
    TextClass kind;
    TokenKind token;
};

bool isBlockComment(int32_t state) { return state >= InComment1 && state < AfterZero; }

// The start of a fragment gives no error.
int32_t step(int32_t state, int c) {
    if (state == AtStatement && c == '=') return AfterEquals;
    if (state == AtStatement && c == '@') return static_cast<int32_t>(TokenKind::At);
    return lexMachine(state, c);
}

TextClass classOfToken(TokenKind kind) {
    switch (kind) {
        case TokenKind::Number: return TextClass::Number;
        case TokenKind::Imaginary:
        case TokenKind::Integer:
        case TokenKind::Byte:
        case TokenKind::BigInt:
        case TokenKind::Mpf: return TextClass::SuffixedNumber;
        case TokenKind::NumberJoin:
        case TokenKind::Regexp:
        case TokenKind::Regsub:
        case TokenKind::Translit: return TextClass::Regexp;
        case TokenKind::String:
        case TokenKind::SingleQuoted: return TextClass::String;
        case TokenKind::BracketClose: return TextClass::BracketClose;
        case TokenKind::BraceClose: return TextClass::BraceClose;
        case TokenKind::ParenClose: return TextClass::ParenClose;
        case TokenKind::BracketOpen: return TextClass::BracketOpen;
        case TokenKind::BraceOpen: return TextClass::BraceOpen;
        case TokenKind::ParenOpen:
        case TokenKind::ParenMinus: return TextClass::ParenOpen;
        case TokenKind::Semicolon: return TextClass::Semicolon;
        default: return TextClass::Other;
    }
}

// Characters that an accepted token has taken from what follows it.
uint32_t takenTooMany(TokenKind kind) {
    const bool two = kind == TokenKind::LeftArrowHead || kind == TokenKind::RightArrowTail ||
                     kind == TokenKind::ParenMinus;
    return (static_cast<int32_t>(kind) <= last_pushback_token ? 1 : 0) + (two ? 1 : 0);
}

uint32_t blankRun(std::string_view text) {
    size_t n = text.find_first_not_of(" \t\r\n");
    return static_cast<uint32_t>(n == text.npos ? text.size() : n);
}

// The token at the head of the text. The position behind the text counts as a blank.
Scanned readSingleToken(std::string_view text, LexStart start) {
    if (const uint32_t n = blankRun(text)) return {n, TextClass::Blank, TokenKind::Newline};
    const auto size = static_cast<uint32_t>(text.size());
    int32_t state = static_cast<int32_t>(start);
    for (uint32_t i = 0; i <= size; ++i) {
        const int c = i < size ? static_cast<unsigned char>(text[i]) : ' ';
        if (state == InLineComment && (c == '\n' || i == size))
            return {i, TextClass::Comment, TokenKind::Newline};
        const int32_t next = step(state, c);
        if (isBlockComment(state) && !isBlockComment(next))
            return {i < size ? i + 1 : size, TextClass::Comment, TokenKind::Newline};
        if (next == lex_error) return {i > 0 ? i : 1, TextClass::Error, TokenKind::Newline};
        state = next;
        if (state > last_token) continue;
        const auto kind = static_cast<TokenKind>(state);
        const uint32_t taken = i + 1 - takenTooMany(kind);
        return {taken > 0 && taken <= size ? taken : 1, classOfToken(kind), kind};
    }
    return {size, isBlockComment(state) ? TextClass::Comment : TextClass::Error, TokenKind::Newline};
}

TextClass classOfWord(KeywordId keyword) {
    switch (keyword) {
        case KeywordId::NotFound: return TextClass::Identifier;
        case KeywordId::End: return TextClass::End;
        case KeywordId::While: return TextClass::While;
        case KeywordId::Until: return TextClass::Until;
        case KeywordId::Break:
        case KeywordId::Continue:
        case KeywordId::Return: return TextClass::Leave;
        case KeywordId::Else: return TextClass::Else;
        case KeywordId::Elseif: return TextClass::Elseif;
        default: return TextClass::Keyword;
    }
}

// Cuts the text into pieces; each is read in the state that the one before leaves behind.
void readPieces(std::string_view text, std::vector<Piece> &pieces) {
    LexStart start = LexStart::Statement;
    uint32_t line = 0;
    for (uint32_t from = 0; from < text.size();) {
        const std::string_view rest = text.substr(from);
        const Scanned s = readSingleToken(rest, start);
        Piece piece = {from, s.length, s.kind, KeywordId::NotFound, line, unmatched};
        if (s.token == TokenKind::Word && s.kind == TextClass::Other) {
            piece.keyword = isKeywordH(rest.data(), s.length);
            piece.kind = classOfWord(piece.keyword);
        }
        for (char c : rest.substr(0, s.length)) line += c == '\n';
        if (s.kind == TextClass::Blank || s.kind == TextClass::Comment) {
            if (line != piece.line) start = getTokCat(TokenKind::Newline);
        } else {
            TokenKind kind = s.token;
            if (kind == TokenKind::Word)
                kind = piece.keyword == KeywordId::NotFound ? TokenKind::Identifier : TokenKind::Keyword;
            start = s.kind == TextClass::Error ? LexStart::Statement : getTokCat(kind);
        }
        pieces.push_back(piece);
        from += s.length;
    }
}

// ---- Pairs

bool opensBlock(KeywordId keyword) {
    switch (keyword) {
        case KeywordId::If:
        case KeywordId::For:
        case KeywordId::While:
        case KeywordId::Until:
        case KeywordId::Unless:
        case KeywordId::Do:
        case KeywordId::Switch:
        case KeywordId::Try:
        case KeywordId::Function:
        case KeywordId::Class:
        case KeywordId::Conditional:
        case KeywordId::Automaton: return true;
        default: return false;
    }
}

bool isTailWord(const Piece &p) { return p.kind == TextClass::While || p.kind == TextClass::Until; }

bool closes(const Piece &opener, const Piece &p) {
    switch (opener.kind) {
        case TextClass::BracketOpen: return p.kind == TextClass::BracketClose;
        case TextClass::BraceOpen: return p.kind == TextClass::BraceClose;
        case TextClass::ParenOpen: return p.kind == TextClass::ParenClose;
        default: return opener.keyword == KeywordId::Do ? isTailWord(p) : p.kind == TextClass::End;
    }
}

bool isOpener(const Piece &p) {
    return p.kind == TextClass::BracketOpen || p.kind == TextClass::BraceOpen ||
           p.kind == TextClass::ParenOpen || opensBlock(p.keyword);
}

// The closer of an opener: pairs inside are passed as units. A `while` or `until` with a `;` on its line is
// the tail of a loop and has none.
uint32_t findPartner(const std::vector<Piece> &pieces, uint32_t k) {
    const Piece &opener = pieces[k];
    for (uint32_t i = k + 1; i < pieces.size(); ++i) {
        const Piece &p = pieces[i];
        if (closes(opener, p)) return i;
        if (isTailWord(opener) && p.kind == TextClass::Semicolon && p.line == opener.line) return unmatched;
        if (isOpener(p) && p.partner != unmatched) i = p.partner;
    }
    return unmatched;
}

void pairPieces(std::vector<Piece> &pieces) {
    for (auto k = static_cast<uint32_t>(pieces.size()); k-- > 0;)
        if (isOpener(pieces[k])) pieces[k].partner = findPartner(pieces, k);
}

bool cbt_is_loop(KeywordId block) {
    return block == KeywordId::For || block == KeywordId::While || block == KeywordId::Until ||
           block == KeywordId::Do;
}
bool cbt_is_if(KeywordId block) { return block == KeywordId::If; }

// Gives paired and misplaced pieces their classes, in the order of the text.
void classifyPieces(std::vector<Piece> &pieces) {
    static std::vector<KeywordId> block_type_vec;
    static std::vector<uint32_t> closers;  // of the pairs that are open
    block_type_vec.clear();
    closers.clear();
    for (uint32_t k = 0; k < pieces.size(); ++k) {
        Piece &p = pieces[k];
        const KeywordId block = block_type_vec.empty() ? KeywordId::NotFound : block_type_vec.back();
        if (!closers.empty() && closers.back() == k) {
            closers.pop_back();
            if (p.kind == TextClass::MatchedBlock) block_type_vec.pop_back();
        } else if (isOpener(p) && p.partner != unmatched) {
            const bool is_block = opensBlock(p.keyword);
            p.kind = pieces[p.partner].kind = is_block ? TextClass::MatchedBlock : TextClass::Matched;
            closers.push_back(p.partner);
            if (is_block) block_type_vec.push_back(p.keyword);
        } else if (isOpener(p) && !isTailWord(p)) {
            p.kind = TextClass::Error;
        } else if (p.kind == TextClass::Leave && !cbt_is_loop(block)) {
            p.kind = TextClass::Error;
        } else if ((p.kind == TextClass::Else || p.kind == TextClass::Elseif) && !cbt_is_if(block)) {
            // An `elseif` in the body of a loop makes the loop a `for`.
            if (p.kind == TextClass::Elseif && cbt_is_loop(block)) block_type_vec.back() = KeywordId::For;
            p.kind = TextClass::Error;
        }
    }
}

}  // namespace

bool syntaxOn() { return syntax_highlight; }

void syntaxSw() {
    syntax_highlight = !syntax_highlight;
    vscr.drawn = false;
    freshScr();
}

const TextClass *classesOf(std::string_view text) {
    static std::vector<Piece> pieces;
    static std::vector<TextClass> classes;
    pieces.clear();
    readPieces(text, pieces);
    pairPieces(pieces);
    classifyPieces(pieces);
    classes.clear();
    for (const Piece &p : pieces) classes.insert(classes.end(), p.length, p.kind);
    return classes.data();
}

}  // namespace vesko
