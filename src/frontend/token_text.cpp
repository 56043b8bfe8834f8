// Values of tokens: numbers from their texts, strings with their escapes, and the errors of the parse.
#include "frontend/token_text.h"

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "console/command.h"
#include "console/message.h"
#include "frontend/arena.h"
#include "frontend/parser.h"
#include "frontend/source.h"

namespace vesko {

// ---- Parse errors

[[noreturn]] static void vsyntaxError(const char *lead, uint32_t line, const char *format, va_list args) {
    static char text[opbufflen + 2];
    std::vsnprintf(text, sizeof text, format, args);
    xMesg("%s %s %u: %s", lead, getCurrentFileName(), line, text);
    parseError(nullptr);
}

void syntaxError(uint32_t line, const char *format, ...) {
    va_list args;
    va_start(args, format);
    vsyntaxError("Error", line, format, args);
}

void syntaxErrorColon(uint32_t line, const char *format, ...) {
    va_list args;
    va_start(args, format);
    vsyntaxError("Error:", line, format, args);
}

void tokenError(const char *format, ...) {
    va_list args;
    va_start(args, format);
    vsyntaxError("Error", getCurrLineNum(), format, args);
}

void syntaxTooDeep() { parseError("Error: recursion depth is too deep"); }

// ---- Texts live until the next command.

static Arena text_arena;

static char *newText(size_t size) { return static_cast<char *>(text_arena.take(size)); }
void recycleTexts() { text_arena.recycleAll(); }

char *xstringCopy(const char *text) {
    size_t size = std::strlen(text) + 1;
    return static_cast<char *>(std::memcpy(newText(size), text, size));
}

// ---- Escapes

static bool isOctal(char c) { return c >= '0' && c <= '7'; }
static bool isHex(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

constexpr int escape_bias = '0';  // added to the value of every numeric escape; programs rely on it

static const char *scanOctal(const char *p, char *&out) {
    int value = 0;
    for (int k = 0; k < 3 && isOctal(*p); ++k) value = value * 8 + (*p++ - '0');
    *out++ = static_cast<char>(value + escape_bias);
    return p;
}

// A digit counts as its character code less that of '0', letters too.
static const char *scanHex(const char *p, char *&out) {
    int value = 0, k = 0;
    for (; k < 2 && isHex(*p); ++k) value = value * 16 + (*p++ - '0');
    if (k > 0) *out++ = static_cast<char>(value + escape_bias);
    return p;
}

// `p` stands behind the backslash. An unknown escape yields nothing.
static const char *scanEscape(const char *p, char *&out) {
    static const char plain[] = "\"'?\\abfnrtv", meant[] = "\"'?\\\a\b\f\n\r\t\v";
    if (*p == '\0') return p;
    if (isOctal(*p)) return scanOctal(p, out);
    if (*p == 'x') return scanHex(p + 1, out);
    if (const char *found = std::strchr(plain, *p)) *out++ = meant[found - plain];
    return p + 1;
}

char *xstringScan(const char *text) {
    char *result = newText(std::strlen(text) + 1), *out = result;
    while (*text) {
        if (*text == '\\') {
            text = scanEscape(text + 1, out);
        } else {
            *out++ = *text++;
        }
    }
    *out = '\0';
    return result;
}

char *xstringSQScan(const char *text) {
    char *result = newText(std::strlen(text) + 1), *out = result;
    while (*text) {
        if (text[0] == '\\' && text[1] == '\'') ++text;
        *out++ = *text++;
    }
    *out = '\0';
    return result;
}

// ---- Numbers

static unsigned digitValue(char c) {
    if (c <= '9') return c - '0';
    return (c | 0x20) - 'a' + 10;
}

// Accumulators wrap at 32 bits. A fraction of too many digits divides by 0.
static double basedNum(const char *digits, uint32_t base) {
    if (*digits == '\0') tokenError("cannot convert token to number");
    uint32_t whole = 0, fraction = 0, denominator = 1;
    for (; *digits && *digits != '.'; ++digits) whole = whole * base + digitValue(*digits);
    if (*digits == '.') ++digits;
    for (; *digits; ++digits) {
        fraction = fraction * base + digitValue(*digits);
        denominator *= base;
    }
    return whole + static_cast<double>(fraction) / static_cast<double>(denominator);
}

static double decimalNum(const char *text) {
    double value = 0.0;
    auto read = std::from_chars(text, text + std::strlen(text), value);
    return read.ec == std::errc() ? value : std::strtod(text, nullptr);
}

double retrieveNum(const char *text) {
    if (text[0] != '0') return decimalNum(text);
    switch (text[1]) {
        case 'b': return basedNum(text + 2, 2);
        case 'x':
        case 'X': return basedNum(text + 2, 16);
        default: return isOctal(text[1]) ? basedNum(text + 1, 8) : decimalNum(text);
    }
}

}  // namespace vesko
