// Drawing the worksheet's lines on the screen.
#include "console/window.h"

#include <curses.h>

#include <algorithm>
#include <cwchar>
#include <new>
#include <string>

#include "console/colours.h"
#include "console/worksheet.h"

namespace vesko {
namespace {

// ---- How classes look

constexpr short pair_colours[n_text_classes] = {
    COLOR_WHITE,   COLOR_BLUE,    COLOR_MAGENTA, COLOR_GREEN, COLOR_BLUE,    COLOR_BLUE,    COLOR_BLUE,
    COLOR_CYAN,    COLOR_MAGENTA, COLOR_RED,     COLOR_RED,   COLOR_RED,     COLOR_RED,     COLOR_GREEN,
    COLOR_WHITE,   COLOR_RED,     COLOR_WHITE,   COLOR_RED,   COLOR_MAGENTA, COLOR_MAGENTA, COLOR_MAGENTA,
    COLOR_MAGENTA, COLOR_MAGENTA, COLOR_GREEN,   COLOR_GREEN, COLOR_GREEN,
};

attr_t syntax_attrs[n_text_classes];

bool isBold(int pair) { return (pair >= 1 && pair <= 5) || (pair >= 7 && pair <= 13); }

// ---- Characters

// The next character of a text: its bytes and its columns. What cannot be shown takes one column.
struct Glyph {
    uint32_t bytes, columns;
    wchar_t code;
};

Glyph glyphAt(const char *text, uint32_t length) {
    const auto byte = static_cast<unsigned char>(*text);
    if (byte >= ' ' && byte < 127) return {1, 1, static_cast<wchar_t>(byte)};
    if (byte < 128) return {1, 1, byte == '\t' ? L' ' : L'?'};
    wchar_t code;
    std::mbstate_t state = {};
    const size_t bytes = std::mbrtowc(&code, text, length, &state);
    if (bytes == 0 || bytes > length) return {1, 1, L'?'};
    const int width = wcwidth(code);
    if (width < 0) return {static_cast<uint32_t>(bytes), 1, L'?'};
    return {static_cast<uint32_t>(bytes), static_cast<uint32_t>(width), code};
}

uint32_t columnOf(const Vsline *line, uint32_t position) {
    uint32_t column = 0;
    for (uint32_t i = 0; i < position;) {
        const Glyph g = glyphAt(line->text + i, line->length - i);
        column += g.columns;
        i += g.bytes;
    }
    return column;
}

// ---- Lines

// Columns by which a line is shifted so that the cursor is seen in it.
uint32_t shiftOf(const Vsline *line) {
    if (line != vscr.current) return 0;
    const uint32_t column = columnOf(line, vscr.cursorx), width = std::max(1u, vscr.columns);
    return column < width ? 0 : column - width + 1;
}

// Bytes from..to in one look; `column` goes on behind them.
void drawBytes(int row, uint32_t &column, const Vsline *line, uint32_t from, uint32_t to, attr_t look,
               uint32_t shift) {
    for (uint32_t i = from; i < to;) {
        const Glyph g = glyphAt(line->text + i, line->length - i);
        if (column >= shift && column - shift + g.columns <= vscr.columns) {
            const wchar_t code[2] = {g.code, 0};
            cchar_t cell;
            setcchar(&cell, code, look & ~A_COLOR, static_cast<short>(PAIR_NUMBER(look)), nullptr);
            mvadd_wch(row, static_cast<int>(column - shift), &cell);
        }
        column += g.columns;
        i += g.bytes;
    }
}

attr_t lookOf(TextClass c) { return syntax_attrs[static_cast<int>(c)]; }

// The first words of a message stand out.
uint32_t errorWords(const Vsline *line) {
    constexpr std::string_view words = "   Error ";
    return std::string_view(line->text, line->length).starts_with(words) ? static_cast<uint32_t>(words.size())
                                                                         : 0;
}

// `classes` has one entry for each byte behind the prompt; null: no colours.
void drawLine(int row, const Vsline *line, const TextClass *classes) {
    const uint32_t shift = shiftOf(line);
    uint32_t column = 0;
    uint32_t i = line->isCommand() ? std::min(prompt_width, line->length) : errorWords(line);
    drawBytes(row, column, line, 0, i, line->isCommand() ? A_NORMAL : lookOf(TextClass::Error), shift);
    if (!classes) return drawBytes(row, column, line, i, line->length, A_NORMAL, shift);
    while (i < line->length) {
        const TextClass kind = classes[i - prompt_width];
        uint32_t end = i + 1;
        while (end < line->length && classes[end - prompt_width] == kind) ++end;
        drawBytes(row, column, line, i, end, lookOf(kind), shift);
        i = end;
    }
}

// Draws the rows of a command from `line` on; answers the line behind it.
const Vsline *displayMLText(int &row, const Vsline *line) {
    static std::string text;
    text.clear();
    const Vsline *first = line;
    while (first->kind == LineKind::Continuation && first->prev) first = first->prev;
    uint32_t at = 0;  // of `line` in the text
    const Vsline *end = first;
    do {
        if (end == line) at = static_cast<uint32_t>(text.size());
        text.append(end->text + prompt_width, end->length - prompt_width).push_back('\n');
        end = end->next;
    } while (end && end->kind == LineKind::Continuation);
    const TextClass *classes = syntaxOn() ? classesOf(text) : nullptr;
    for (; line != end && row < static_cast<int>(vscr.rows); line = line->next, ++row) {
        drawLine(row, line, classes ? classes + at : nullptr);
        at += line->length - prompt_width + 1;
    }
    return line;
}

// True if going down from the cursor leads to the line within a screen or two: the cursor left the window
// upwards.
bool isBelowCursor(const Vsline *line) {
    const Vsline *l = vscr.current;
    for (uint32_t n = 0; l && n < 2 * vscr.rows; l = l->next, ++n)
        if (l == line) return true;
    return false;
}

}  // namespace

void initColours() {
    if (has_colors()) {
        start_color();
        for (short n = 1; n < n_text_classes; ++n) init_pair(n, pair_colours[n], COLOR_BLACK);
        bkgd(static_cast<chtype>(COLOR_PAIR(static_cast<int>(TextClass::Blank))));
    }
    for (int n = 0; n < n_text_classes; ++n)
        syntax_attrs[n] = (has_colors() ? COLOR_PAIR(n) : 0) | (isBold(n) ? A_BOLD : 0);
}

void placeWindow() {
    const uint32_t rows = std::max(1u, vscr.rows);
    uint32_t y = 0;
    const Vsline *line = vscr.top;
    for (; line && line != vscr.current && y < rows; line = line->next) ++y;
    if (!line || y >= rows) {
        const bool upwards = vscr.top && isBelowCursor(vscr.top);
        vscr.top = vscr.current;
        for (y = 0; !upwards && y + 1 < rows && vscr.top->prev; ++y) vscr.top = vscr.top->prev;
    }
    vscr.cursory = y;
}

void drawWorksheet() {
    erase();
    int row = 0;
    for (const Vsline *line = vscr.top; line && row < static_cast<int>(vscr.rows);) {
        if (line->isCommand()) {
            line = displayMLText(row, line);
        } else {
            drawLine(row++, line, nullptr);
            line = line->next;
        }
    }
    const uint32_t column = columnOf(vscr.current, vscr.cursorx) - shiftOf(vscr.current);
    move(static_cast<int>(vscr.cursory), static_cast<int>(column));
}

}  // namespace vesko
