// The message layer: all output of the language, of value display and of errors goes through here into the
// worksheet's lines. Formatted text is cut at opbufflen; xPutText shows a text of any length.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace vesko {

constexpr uint32_t opbufflen = 510;
extern bool has_error_msg;  // a saved message waits

#define VESKO_PRINTF(f, a) __attribute__((format(printf, f, a)))
void xOpenLine(uint32_t level, const char *format, ...) VESKO_PRINTF(2, 3);
void xContinueLine(const char *format, ...) VESKO_PRINTF(1, 2);
void xCloseLine(uint32_t level, const char *format, ...) VESKO_PRINTF(2, 3);
void xFinishLine(uint32_t level, const char *format, ...) VESKO_PRINTF(2, 3);
void xPrint(const char *format, ...) VESKO_PRINTF(1, 2);
void xMesg(const char *format, ...) VESKO_PRINTF(1, 2);
void saveErrorMesg(const char *format, ...) VESKO_PRINTF(1, 2);
void vsaveErrorMesg(const char *format, va_list args);
void printErrorMesg();
void xPrintLineBrk(bool redraw, int kind);
void xPutText(const char *text, uint32_t length);  // appends the bytes to the current line, uncut
uint32_t getScreenWidth();                         // columns for laying out values

}  // namespace vesko
