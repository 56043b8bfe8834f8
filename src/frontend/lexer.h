// The lexer's automaton: states, table, and its single step. Accepted tokens and states share one numbering:
// up to last_token a number is a token kind, above it a state that is still scanning.
#pragma once

#include <cstdint>

#include "frontend/token.h"

namespace vesko {

enum LexState : int32_t {
    AtStatement = 95,
    AfterValue = 96,
    AfterOperator = 97,
    InWord = 98,
    InDigits = 99,
    AfterPoint = 100,
    InFraction = 101,
    AfterExponentMark = 102,
    AfterExponentSign = 103,
    InExponent = 104,
    UnusedRecorded105 = 105,  // no path leads here
    AfterPlus = 106,
    AfterMinus = 107,
    AfterStar = 108,
    AfterSlash = 109,
    AfterBackslash = 110,
    AfterPercent = 111,
    AfterBang = 112,
    AfterLess = 113,
    AfterGreater = 114,
    AfterEquals = 115,
    AfterCaret = 116,
    AfterAmp = 117,
    AfterDotCaret = 118,
    AfterDot = 119,
    AfterDotStar = 122,
    AfterDotSlash = 123,
    AfterQuote = 125,
    AfterBar = 126,
    AfterDots2 = 127,
    AfterDots3 = 128,
    InString = 129,
    InStringEscape = 130,
    AfterTilde = 131,
    InRegexp = 132,
    InRegexpEscape = 133,
    RegexpEnd = 134,
    RegexpFlags = 135,
    AfterTildeS = 136,
    InRegsubPattern = 137,
    InRegsubPatternEscape = 138,
    InRegsubText = 139,
    InRegsubTextEscape = 140,
    RegsubEnd = 141,
    RegsubFlags = 142,
    AfterTildeT = 143,
    AfterTildeTr = 144,
    InTranslitFrom = 145,
    InTranslitFromEscape = 146,
    InTranslitTo = 147,
    InTranslitToEscape = 148,
    TranslitEnd = 149,
    TranslitFlags = 150,
    NumberDots2 = 151,
    NumberDots3 = 152,
    AfterColon = 153,
    AfterArrow = 154,
    AfterLeftArrow = 155,
    AfterRightTail = 156,
    InLineComment = 157,
    InComment1 = 158,  // the levels of a block comment take three states each: text, after *, after /
    Comment1Star = 159,
    Comment1Slash = 160,
    InComment2 = 161,
    Comment2Star = 162,
    Comment2Slash = 163,
    InComment3 = 164,
    Comment3Star = 165,
    Comment3Slash = 166,
    InComment4 = 167,
    Comment4Star = 168,
    Comment4Slash = 169,
    InComment5 = 170,
    Comment5Star = 171,
    UnusedRecorded172 = 172,  // no path leads here
    AfterZero = 173,
    InBinary = 174,
    InOctal = 175,
    InHex = 176,
    InBinaryFraction = 177,
    InOctalFraction = 178,
    InHexFraction = 179,
    InSingleQuoted = 180,
    InSingleQuotedEscape = 181,
    AfterSingleQuote = 182,
    AfterParen = 188,
    AfterParenMinus = 189,
};

constexpr int32_t n_lex_states = 205;
constexpr int32_t n_lex_columns = 128;
constexpr int32_t last_token = 94;
constexpr int32_t last_pushback_token = 29;  // tokens up to here have taken one character too many
constexpr int32_t lex_error = no_value;

extern int32_t lex_machine[n_lex_states * n_lex_columns];
extern bool need_record_ch[n_lex_states];

// The state or token that follows; bytes outside the table are errors.
inline int32_t lexMachine(int32_t state, int c) {
    return c >= 0 && c < n_lex_columns ? lex_machine[state * n_lex_columns + c] : lex_error;
}
inline bool isLexStart(int32_t state) { return state >= AtStatement && state <= AfterOperator; }

void countConsoleChar();

}  // namespace vesko
