// The message layer: formats into one shared buffer and appends to the worksheet's current line.
#include "console/message.h"

#include <cstdio>
#include <cstring>

#include "console/worksheet.h"

namespace vesko {

static char opbuff[opbufflen + 2];
bool has_error_msg = false;

static constexpr const char *indentation_unit = "   ";

// Formats into opbuff; the length of what stands there, cut at opbufflen.
static uint32_t formatMesg(const char *format, va_list args) {
    int length = std::vsnprintf(opbuff, opbufflen + 1, format, args);
    if (length < 0) return 0;
    return static_cast<uint32_t>(length) > opbufflen ? opbufflen : static_cast<uint32_t>(length);
}

static void indent(uint32_t level) {
    for (uint32_t i = 0; i <= level; ++i) printStr(indentation_unit, prompt_width, false);
}

static void printFormatted(const char *format, va_list args, bool redraw) {
    uint32_t length = formatMesg(format, args);
    has_error_msg = false;
    printStr(opbuff, length, redraw);
}

void xPrintLineBrk(bool redraw, int kind) {
    addlnbrk(redraw, static_cast<LineKind>(kind), false);
    has_error_msg = false;
}

void xOpenLine(uint32_t level, const char *format, ...) {
    if (!format) return;
    addlnbrk(false, LineKind::FirstOutput, false);
    indent(level);
    va_list args;
    va_start(args, format);
    printFormatted(format, args, true);
    va_end(args);
}

void xContinueLine(const char *format, ...) {
    va_list args;
    va_start(args, format);
    printFormatted(format, args, false);
    va_end(args);
}

void xCloseLine(uint32_t level, const char *format, ...) {
    addlnbrk(level == 0, LineKind::Output, false);
    indent(level);
    va_list args;
    va_start(args, format);
    printFormatted(format, args, false);
    va_end(args);
}

void xFinishLine(uint32_t level, const char *format, ...) {
    va_list args;
    va_start(args, format);
    printFormatted(format, args, false);
    va_end(args);
    addlnbrk(level == 0, LineKind::Output, false);
}

void xPrint(const char *format, ...) {
    va_list args;
    va_start(args, format);
    uint32_t length = formatMesg(format, args);
    va_end(args);
    has_error_msg = false;
    bool ends_line = length > 0 && opbuff[length - 1] == '\n';
    printStr(opbuff, ends_line ? length - 1 : length, !ends_line);
    if (ends_line) addlnbrk(true, LineKind::Output, false);
}

void xMesg(const char *format, ...) {
    addlnbrk(true, LineKind::FirstOutput, false);
    indent(0);
    va_list args;
    va_start(args, format);
    printFormatted(format, args, true);
    va_end(args);
}

void xPutText(const char *text, uint32_t length) {
    has_error_msg = false;
    printStr(text, length, false);
}

void vsaveErrorMesg(const char *format, va_list args) {
    formatMesg(format, args);
    has_error_msg = true;
}

void saveErrorMesg(const char *format, ...) {
    va_list args;
    va_start(args, format);
    vsaveErrorMesg(format, args);
    va_end(args);
}

void printErrorMesg() {
    if (!has_error_msg) return;
    has_error_msg = false;
    addlnbrk(false, LineKind::FirstOutput, false);
    indent(0);
    printStr(opbuff, static_cast<uint32_t>(std::strlen(opbuff)), true);
}

uint32_t getScreenWidth() { return vscr.columns > prompt_width ? vscr.columns - prompt_width : 0; }

}  // namespace vesko
