// The table of the lexer's automaton, unfolded once from a compact description of its rows.
#include <cassert>

#include "frontend/lexer.h"

namespace vesko {

int32_t lex_machine[n_lex_states * n_lex_columns];
bool need_record_ch[n_lex_states];

namespace {

using enum TokenKind;

// A state, a token, or an error.
struct Target {
    int32_t number;
    constexpr Target() : number(lex_error) {}
    constexpr Target(LexState state) : number(state) {}
    constexpr Target(TokenKind kind) : number(static_cast<int32_t>(kind)) {}
};

// Characters stand for themselves; x-y between letters or digits is a range.
struct Arc {
    const char *chars;
    Target to;
};

constexpr Target error;
constexpr bool record = true, silent = false;

struct Row {
    int32_t state;
    bool recorded;  // entering the state appends the character to the text
    Target rest;    // for the characters that no arc names
    Arc arcs[26];
};

// The three start rows have most of their entries in common.
constexpr Row start_row = {
    0, silent, error, {{"A-Za-z_`", InWord}, {"1-9", InDigits},      {"0", AfterZero},    {"\n", Newline},
                       {"!", AfterBang},     {"\"", AfterQuote},     {"#", Hash},         {"$", Dollar},
                       {"&", AfterAmp},      {"(", AfterParen},      {")", ParenClose},   {"*", AfterStar},
                       {"+", AfterPlus},     {",", Comma},           {"-", AfterMinus},   {".", AfterDot},
                       {"/", AfterSlash},    {":", AfterColon},      {";", Semicolon},    {">", AfterGreater},
                       {"[", BracketOpen},   {"\\", AfterBackslash}, {"]", BracketClose}, {"{", BraceOpen},
                       {"}", BraceClose},    {"~", AfterTilde}}};

constexpr Row rows[] = {
    {AtStatement, silent, error, {{"%", InLineComment}, {"'", AfterSingleQuote}, {"^", InWord}}},
    {AfterValue,
     silent,
     error,
     {{"%", AfterPercent},
      {"'", Quote},
      {"<", AfterLess},
      {"=", AfterEquals},
      {"@", At},
      {"^", AfterCaret},
      {"|", AfterBar}}},
    {AfterOperator,
     silent,
     error,
     {{"%", InLineComment},
      {"'", AfterSingleQuote},
      {"<", AfterLess},
      {"=", AfterEquals},
      {"@", At},
      {"^", AfterCaret},
      {"|", AfterBar}}},

    // Words and numbers
    {InWord, record, Word, {{"0-9A-Z_a-z", InWord}}},
    {InDigits,
     record,
     Number,
     {{"0-9", InDigits},
      {".", AfterPoint},
      {"Ee", AfterExponentMark},
      {"IJij", Imaginary},
      {"Zz", Integer},
      {"B", Byte},
      {"L", BigInt},
      {"M", Mpf}}},
    {AfterPoint,
     record,
     Number,
     {{"0-9", InFraction}, {"Ee", AfterExponentMark}, {"IJij", Imaginary}, {".", NumberDots2}}},
    {InFraction,
     record,
     Number,
     {{"0-9", InFraction}, {"Ee", AfterExponentMark}, {"IJij", Imaginary}, {"M", Mpf}}},
    {AfterExponentMark, record, error, {{"0-9", InExponent}, {"+-", AfterExponentSign}}},
    {AfterExponentSign, record, error, {{"0-9", InExponent}}},
    {InExponent, record, Number, {{"0-9", InExponent}, {"M", Mpf}, {"i", Imaginary}}},
    {NumberDots2, silent, error, {{".", NumberDots3}}},
    {NumberDots3, silent, error, {{"\n", NumberJoin}}},
    {AfterZero,
     record,
     Number,
     {{"0-7", InOctal},
      {"Xx", InHex},
      {"b", InBinary},
      {".", AfterPoint},
      {"Zz", Integer},
      {"B", Byte},
      {"L", BigInt},
      {"M", Mpf}}},
    {InBinary,
     record,
     Number,
     {{"01", InBinary},
      {".", InBinaryFraction},
      {"Zz", Integer},
      {"B", Byte},
      {"L", BigInt},
      {"M", Mpf},
      {"i", Imaginary}}},
    {InOctal,
     record,
     Number,
     {{"0-7", InOctal},
      {".", InOctalFraction},
      {"Zz", Integer},
      {"B", Byte},
      {"L", BigInt},
      {"M", Mpf},
      {"i", Imaginary}}},
    {InHex,  // B ends the number, so it is no digit here
     record,
     Number,
     {{"0-9AC-Fa-f", InHex},
      {".", InHexFraction},
      {"Zz", Integer},
      {"B", Byte},
      {"L", BigInt},
      {"M", Mpf},
      {"i", Imaginary}}},
    {InBinaryFraction, record, Number, {{"01", InBinaryFraction}, {"M", Mpf}, {"i", Imaginary}}},
    {InOctalFraction, record, Number, {{"0-7", InOctalFraction}, {"M", Mpf}, {"i", Imaginary}}},
    {InHexFraction, record, Number, {{"0-9A-Fa-f", InHexFraction}, {"M", Mpf}, {"i", Imaginary}}},

    // Operators
    {AfterPlus, silent, Plus, {{"+", PlusPlus}, {"=", PlusAssign}}},
    {AfterMinus,
     silent,
     Minus,
     {{")", Contains},
      {"-", MinusMinus},
      {"<", BranchTail},
      {"=", MinusAssign},
      {">", RightArrow},
      {"|", MinusBar}}},
    {AfterStar, silent, Star, {{"=", StarAssign}}},
    {AfterSlash,
     silent,
     Slash,
     {{"*", InComment1}, {"/", InLineComment}, {"=", SlashAssign}, {"\\", Intersection}}},
    {AfterBackslash, silent, Backslash, {{"/", Union}, {"=", BackslashAssign}}},
    {AfterPercent, silent, Percent, {{"=", PercentAssign}}},
    {AfterBang, silent, Bang, {{"=", NotEqual}}},
    {AfterLess, silent, Less, {{"-", AfterLeftArrow}, {"=", LessEqual}, {">", Diamond}}},
    {AfterGreater,
     silent,
     Greater,
     {{")", StrictSuperset}, {"-", AfterRightTail}, {"=", GreaterEqual}, {">", Deref}}},
    {AfterEquals, silent, Assign, {{")", Superset}, {"=", Equal}, {">", AfterArrow}}},
    {AfterCaret, silent, Caret, {{"=", CaretAssign}}},
    {AfterAmp, silent, error, {{"&", AndAnd}, {"*", FuncMul}, {"/", FuncDiv}}},
    {AfterDotCaret, silent, DotCaret, {{"=", DotCaretAssign}}},
    {AfterDot,
     record,
     Dot,
     {{"0-9", InFraction},
      {"*", AfterDotStar},
      {"/", AfterDotSlash},
      {"^", AfterDotCaret},
      {".", AfterDots2}}},
    {AfterDotStar, silent, DotStar, {{"=", DotStarAssign}}},
    {AfterDotSlash, silent, DotSlash, {{"=", DotSlashAssign}}},
    {AfterBar, silent, error, {{"-", BarMinus}, {"|", OrOr}}},
    {AfterDots2, silent, error, {{".", AfterDots3}}},
    {AfterDots3, silent, error, {{"\n", AtStatement}}},
    {AfterColon, silent, Colon, {{":", ForcedType}}},
    {AfterArrow, silent, Arrow, {{">", LinkAssign}}},
    {AfterLeftArrow, silent, LeftArrowHead, {{"<", ConnectBack}, {">", Connect2Way}}},
    {AfterRightTail, silent, RightArrowTail, {{"<", ListJoin}, {">", Connect}}},
    {AfterParen, silent, ParenOpen, {{"-", AfterParenMinus}, {"<", StrictSubset}, {"=", Subset}}},
    {AfterParenMinus, silent, ParenMinus, {{" ", MemberOf}}},

    // Strings
    {AfterQuote, silent, InString, {{"\"", String}, {"\\", InStringEscape}}},
    {InString, record, InString, {{"\"", String}, {"\\", InStringEscape}}},
    {InStringEscape, record, InString, {}},
    {AfterSingleQuote, silent, InSingleQuoted, {{"'", SingleQuoted}, {"\\", InSingleQuotedEscape}}},
    {InSingleQuoted, record, InSingleQuoted, {{"'", SingleQuoted}, {"\\", InSingleQuotedEscape}}},
    {InSingleQuotedEscape, record, InSingleQuoted, {}},

    // ~/pattern/flags, ~s/pattern/text/flags, ~tr/from/to/flags: kept whole, with the inner slashes
    {AfterTilde, silent, Tilde, {{"/", InRegexp}, {"Ss", AfterTildeS}, {"Tt", AfterTildeT}}},
    {InRegexp, record, InRegexp, {{"/", RegexpEnd}, {"\\", InRegexpEscape}}},
    {InRegexpEscape, record, InRegexp, {}},
    {RegexpEnd, record, Regexp, {{"a-z", RegexpFlags}}},
    {RegexpFlags, record, Regexp, {{"a-z", RegexpFlags}}},
    {AfterTildeS, silent, error, {{"/", InRegsubPattern}}},
    {InRegsubPattern, record, InRegsubPattern, {{"/", InRegsubText}, {"\\", InRegsubPatternEscape}}},
    {InRegsubPatternEscape, record, InRegsubPattern, {}},
    {InRegsubText, record, InRegsubText, {{"/", RegsubEnd}, {"\\", InRegsubTextEscape}}},
    {InRegsubTextEscape, record, InRegsubText, {}},
    {RegsubEnd, record, Regsub, {{"a-z", RegsubFlags}}},
    {RegsubFlags, record, Regsub, {{"a-z", RegsubFlags}}},
    {AfterTildeT, silent, error, {{"Rr", AfterTildeTr}}},
    {AfterTildeTr, silent, error, {{"/", InTranslitFrom}}},
    {InTranslitFrom, record, InTranslitFrom, {{"/", InTranslitTo}, {"\\", InTranslitFromEscape}}},
    {InTranslitFromEscape, record, InTranslitFrom, {}},
    {InTranslitTo, record, InTranslitTo, {{"/", TranslitEnd}, {"\\", InTranslitToEscape}}},
    {InTranslitToEscape, record, InTranslitTo, {}},
    {TranslitEnd, record, Translit, {{"a-z", TranslitFlags}}},
    {TranslitFlags, record, Translit, {{"a-z", TranslitFlags}}},

    // Comments. A second star behind a star is text, so only a lone */ closes; programs rely on it.
    {InLineComment, silent, InLineComment, {{"\n", Newline}}},
    {InComment1, silent, InComment1, {{"*", Comment1Star}, {"/", Comment1Slash}}},
    {Comment1Star, silent, InComment1, {{"/", AtStatement}}},
    {Comment1Slash, silent, InComment1, {{"*", InComment2}}},
    {InComment2, silent, InComment2, {{"*", Comment2Star}, {"/", Comment2Slash}}},
    {Comment2Star, silent, InComment2, {{"/", InComment1}}},
    {Comment2Slash, silent, InComment2, {{"*", InComment3}}},
    {InComment3, silent, InComment3, {{"*", Comment3Star}, {"/", Comment3Slash}}},
    {Comment3Star, silent, InComment3, {{"/", InComment2}}},
    {Comment3Slash, silent, InComment3, {{"*", InComment4}}},
    {InComment4, silent, InComment4, {{"*", Comment4Star}, {"/", Comment4Slash}}},
    {Comment4Star, silent, InComment4, {{"/", InComment3}}},
    {Comment4Slash, silent, InComment4, {{"*", InComment5}}},
    {InComment5, silent, InComment5, {{"*", Comment5Star}}},
    {Comment5Star, silent, InComment5, {{"/", InComment4}}},
};

bool isAlnum(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

void setArcs(int32_t state, const Row &row) {
    int32_t *entries = lex_machine + state * n_lex_columns;
    for (const Arc &arc : row.arcs) {
        for (const char *p = arc.chars; p && *p; ++p) {
            char last = p[1] == '-' && isAlnum(p[0]) && isAlnum(p[2]) ? p[2] : p[0];
            for (int c = p[0]; c <= last; ++c) entries[c] = arc.to.number;
            if (last != p[0]) p += 2;
        }
    }
}

void setRow(const Row &row) {
    assert(row.state > last_token && row.state < n_lex_states);
    int32_t *entries = lex_machine + row.state * n_lex_columns;
    for (int c = 0; c < n_lex_columns; ++c) entries[c] = row.rest.number;
    need_record_ch[row.state] = row.recorded;
    if (isLexStart(row.state)) {
        setArcs(row.state, start_row);
        entries[' '] = entries['\t'] = row.state;
        entries['\0'] = Target(Newline).number;
    }
    setArcs(row.state, row);
}

}  // namespace

void startLexMachine() {
    for (int32_t &entry : lex_machine) entry = lex_error;
    need_record_ch[UnusedRecorded105] = need_record_ch[UnusedRecorded172] = true;
    for (const Row &row : rows) setRow(row);
}

}  // namespace vesko
