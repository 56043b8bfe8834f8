// Screen mode on curses.
#include "console/canvas.h"

#include <curses.h>

#include <algorithm>
#include <climits>
#include <cwchar>

#include "console/editor.h"
#include "console/terminal.h"
#include "console/window.h"
#include "console/worksheet.h"
#include "engine/interrupt.h"

namespace vesko {

static int mode_before = command_mode;
static CanvasSize size = {};

// ---- The mode

bool inScreenMode() { return cwmode_nodisplay(); }

bool openCanvas() {
    if (terminal == &plain_terminal) return false;
    constexpr short colours[] = {1, 4, 5, 2, 3, 6, 7, 7, 5};
    holdInterrupt();
    if (!inScreenMode()) mode_before = getcwmode();
    reset_cwmode(no_display);
    size = {LINES, COLS};
    nodelay(stdscr, TRUE);
    curs_set(0);
    erase();
    if (has_colors())
        for (short k = 0; k < 9; ++k) init_pair(static_cast<short>(k + 1), colours[k], 0);
    refresh();
    freeInterrupt();
    return true;
}

void closeCanvas() {
    if (!inScreenMode()) return;
    holdInterrupt();
    attrset(A_NORMAL);
    curs_set(1);
    initColours();
    reset_cwmode(mode_before);
    vscr.drawn = false;
    freeInterrupt();
}

CanvasSize canvasSize() { return size; }

void resizeCanvas(CanvasSize wanted) {
    size = {std::clamp(wanted.rows, 1, LINES), std::clamp(wanted.columns, 1, COLS)};
}

// ---- Drawing

static bool isInside(CanvasPlace at) {
    return at.y >= 0 && at.x >= 0 && at.y < size.rows && at.x < size.columns;
}

CanvasPlace canvasCursor() { return {getcury(stdscr), getcurx(stdscr)}; }

void moveCanvasCursor(CanvasPlace at) {
    if (isInside(at)) move(at.y, at.x);
}

bool setCanvasColour(int pair) {
    if (pair < 0 || pair > 9) return false;
    attrset(has_colors() ? COLOR_PAIR(pair) : A_NORMAL);
    return true;
}

void putCell(CanvasPlace at, uint32_t code) {
    const auto c = static_cast<wchar_t>(code);
    if (!isInside(at) || code < ' ' || wcwidth(c) < 1) return;
    holdInterrupt();
    mvaddnwstr(at.y, at.x, &c, 1);
    freeInterrupt();
}

// The bytes of the character at the head of the text; 0 if they are none.
static size_t decode(const char *text, uint32_t length, wchar_t &code) {
    std::mbstate_t state = {};
    const size_t bytes = std::mbrtowc(&code, text, length, &state);
    return bytes <= length ? bytes : 0;
}

bool firstCharacter(const char *text, uint32_t length, uint32_t &code) {
    wchar_t c;
    if (decode(text, length, c) == 0) return false;
    code = static_cast<uint32_t>(c);
    return true;
}

void drawText(CanvasPlace at, const char *text, uint32_t length) {
    for (uint32_t i = 0; i < length;) {
        wchar_t code = L'?';
        const size_t bytes = decode(text + i, length - i, code);
        putCell(at, bytes ? static_cast<uint32_t>(code) : '?');
        at.x += bytes ? std::max(1, wcwidth(code)) : 1;
        i += bytes ? static_cast<uint32_t>(bytes) : 1;
    }
}

static void putLineCell(CanvasPlace at, uint32_t code, chtype line) {
    if (code) return putCell(at, code);
    if (isInside(at)) mvaddch(at.y, at.x, line);
}

void drawFrame(CanvasPlace first, CanvasPlace last, const FrameStyle &style) {
    const int top = std::min(first.y, last.y), bottom = std::max(first.y, last.y);
    const int left = std::min(first.x, last.x), right = std::max(first.x, last.x);
    holdInterrupt();
    for (int x = std::max(left, 0); x <= std::min(right, size.columns); ++x) {
        putLineCell({top, x}, style.horizontal, ACS_HLINE);
        putLineCell({bottom, x}, style.horizontal, ACS_HLINE);
    }
    for (int y = std::max(top, 0); y <= std::min(bottom, size.rows); ++y) {
        putLineCell({y, left}, style.vertical, ACS_VLINE);
        putLineCell({y, right}, style.vertical, ACS_VLINE);
    }
    putLineCell({top, left}, style.corner, ACS_ULCORNER);
    putLineCell({top, right}, style.corner, ACS_URCORNER);
    putLineCell({bottom, left}, style.corner, ACS_LLCORNER);
    putLineCell({bottom, right}, style.corner, ACS_LRCORNER);
    freeInterrupt();
}

void refreshCanvas() {
    holdInterrupt();
    refresh();
    freeInterrupt();
}

// ---- Keys

static const char *keyName(int key) {
    switch (key) {
        case key_up: return "up";
        case key_down: return "down";
        case key_left: return "left";
        case key_right: return "right";
        case key_home: return "home";
        case key_end: return "end";
        case key_delete: return "delete";
        case key_backspace: return "backspace";
        case KEY_PPAGE: return "pageup";
        case KEY_NPAGE: return "pagedown";
        default: return "";
    }
}

const char *canvasKey() {
    static char text[MB_LEN_MAX + 1];
    wint_t key;
    holdInterrupt();
    const int kind = get_wch(&key);
    freeInterrupt();
    if (kind == ERR || key == 0) return "";
    if (kind != KEY_CODE_YES) {
        std::mbstate_t state = {};
        const size_t n = std::wcrtomb(text, static_cast<wchar_t>(key), &state);
        text[n <= MB_LEN_MAX ? n : 0] = 0;
        return text;
    }
    if (key == key_resize) {
        vscr.rows = static_cast<uint32_t>(LINES);
        vscr.columns = static_cast<uint32_t>(COLS);
        size = {LINES, COLS};
    }
    return keyName(static_cast<int>(key));
}

}  // namespace vesko
