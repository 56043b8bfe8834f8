// Syntax colouring: the class of each byte of a command, by the lexer's own table, and how classes look.
#pragma once

#include <cstdint>
#include <string_view>

namespace vesko {

enum class TextClass : uint8_t {
    Default = 0,
    Comment = 1,
    Keyword = 2,
    Identifier = 3,
    Regexp = 4,
    Number = 5,
    SuffixedNumber = 6,
    String = 7,
    Other = 8,
    Error = 9,
    BracketClose = 10,
    BraceClose = 11,
    ParenClose = 12,
    Matched = 13,
    Blank = 14,
    Until = 15,
    While = 16,
    End = 17,
    MatchedBlock = 18,
    BracketOpen = 19,
    BraceOpen = 20,
    ParenOpen = 21,
    Semicolon = 22,
    Leave = 23,  // break, continue, return
    Else = 24,
    Elseif = 25,
};
constexpr int n_text_classes = 26;

bool syntaxOn();
void syntaxSw();

// One class for each byte of a command's text, its lines parted by LF; valid until the next call.
const TextClass *classesOf(std::string_view text);

}  // namespace vesko
