// The worksheet's lines: making, recycling and filling them, and reading the current command's characters.
#include "console/worksheet.h"

#include <cstring>

#include "console/canvas.h"
#include "console/command.h"
#include "console/editor.h"
#include "console/terminal.h"
#include "engine/interrupt.h"
#include "frontend/source.h"
#include "frontend/token.h"
#include "values/memory.h"

namespace vesko {

Worksheet vscr = {};
bool cmdbuffstat = true;

static constexpr uint32_t line_capacity = 512;
static constexpr uint32_t kept_lines = 2048;  // lines above the screen before the oldest is recycled

// ---- The list of lines

static void unlinkLine(Vsline *line) {
    (line->prev ? line->prev->next : vscr.head) = line->next;
    (line->next ? line->next->prev : vscr.tail) = line->prev;
    --vscr.nlines;
}

void insertAfter(Vsline *before, Vsline *line) {
    line->prev = before;
    line->next = before ? before->next : nullptr;
    (line->prev ? line->prev->next : vscr.head) = line;
    (line->next ? line->next->prev : vscr.tail) = line;
    ++vscr.nlines;
}

static Vsline *allocLine() {
    auto *line = static_cast<Vsline *>(m_malloc(sizeof(Vsline)));
    line->text = mallocArray<char>(line_capacity);
    line->capacity = line_capacity;
    return line;
}

void saveVsLine(Vsline *first, Vsline *last) {
    for (Vsline *line = first, *end = last->next; line != end;) {
        Vsline *next = line->next;
        unlinkLine(line);
        if (line == vscr.top) vscr.top = nullptr;
        line->next = vscr.freelines;
        vscr.freelines = line;
        line = next;
    }
}

void reserveText(Vsline *line, uint32_t length) {
    if (length <= line->capacity) return;
    uint32_t capacity = length + line->capacity / 2 + 16;
    line->text = static_cast<char *>(m_realloc(line->text, line->capacity, capacity));
    line->capacity = capacity;
}

// A line whose head was recycled takes its part.
static void promoteFollower(Vsline *line, LineKind recycled) {
    if (!line) return;
    if (recycled == LineKind::Head && line->kind == LineKind::Continuation) {
        line->kind = LineKind::Head;
        std::memcpy(line->text, ">> ", prompt_width);
    } else if (recycled == LineKind::FirstOutput && line->kind == LineKind::Output) {
        line->kind = LineKind::FirstOutput;
    }
}

// The oldest line above the command that nothing refers to, taken out of the list; null if there is none.
static Vsline *recycleOldest() {
    for (Vsline *line = vscr.head; line && line != vscr.cmdfirst; line = line->next) {
        if (line == vscr.tail || line == vscr.top || line == vscr.current) continue;
        promoteFollower(line->next, line->kind);
        unlinkLine(line);
        return line;
    }
    return nullptr;
}

Vsline *createVsline() {
    Vsline *line = vscr.freelines;
    if (line) {
        vscr.freelines = line->next;
    } else {
        if (vscr.nlines >= vscr.rows + kept_lines) line = recycleOldest();
        if (!line) line = allocLine();
    }
    line->length = 0;
    line->kind = LineKind::Free;
    line->prev = line->next = nullptr;
    return line;
}

// Moves the command's limits off a line that becomes something else.
static void leaveCommand(const Vsline *line) {
    if (vscr.readline == line) vscr.readline = nullptr;
    if (line == vscr.cmdfirst) {
        vscr.cmdfirst = vscr.cmdlast = nullptr;
    } else if (line == vscr.cmdlast) {
        vscr.cmdlast = line->prev;
    }
}

void addlnbrk(bool redraw, LineKind kind, bool) {
    holdInterrupt();
    Vsline *line = vscr.current;
    if (line && (line->isBlankCommand() || line->kind == LineKind::Free)) {
        leaveCommand(line);
    } else {
        if (line) terminal->lineFinished(*line);
        line = createVsline();
        insertAfter(vscr.current, line);
    }
    line->length = 0;
    line->kind = kind;
    vscr.current = line;
    vscr.cursorx = 0;
    vscr.drawn = false;
    if (redraw) terminal->redraw();
    freeInterrupt();
}

void printStr(const char *text, uint32_t length, bool redraw) {
    holdInterrupt();
    Vsline *line = vscr.current;
    reserveText(line, line->length + length);
    std::memcpy(line->text + line->length, text, length);
    line->length += length;
    vscr.cursorx = line->length;
    vscr.drawn = false;
    if (redraw) terminal->redraw();
    freeInterrupt();
}

void setScreenAttr() {
    Vsline *line = createVsline();
    insertAfter(vscr.current, line);
    vscr.current = vscr.top = line;
}

void freshScr() {
    if (!vscr.drawn) terminal->redraw();
}

// The next output takes the free line's place.
void showAll() {
    addlnbrk(false, LineKind::Free, false);
    vscr.lastdraw = 0;  // the last draw is never too recent
    freshScr();
}

void clearWindow() {
    holdInterrupt();
    while (Vsline *line = vscr.current->prev) {
        leaveCommand(line);
        saveVsLine(line, line);
    }
    terminal->redraw();
    freeInterrupt();
}

static int cwmode = command_mode;

int getcwmode() { return cwmode; }

// Back in command mode the next prompt stands at the end of the list.
void reset_cwmode(int mode) {
    const int before = cwmode;
    cwmode = mode >= 0 ? mode : command_mode + worksheet_mode - cwmode;
    if (before != worksheet_mode || cwmode != command_mode) return;
    if (Vsline *line = vscr.current; line != vscr.tail && line->isBlankCommand()) {
        leaveCommand(line);
        saveVsLine(line, line);
    }
    vscr.current = vscr.tail;
    vscr.cursorx = vscr.tail->length;
}

// ---- The current command

// Lines of the console that were taken before the command began.
static uint32_t lines_before_command = 0;

// In worksheet mode an empty prompt below the cursor serves again.
static bool stepToFreePrompt() {
    Vsline *line = vscr.current, *below = line->next;
    if (getcwmode() != worksheet_mode || !below || below->kind != LineKind::Head || !below->isBlankCommand())
        return false;
    if (line->isBlankCommand()) saveVsLine(line, line);
    vscr.current = below;
    vscr.cursorx = prompt_width;
    return true;
}

void initVideoBuf() {
    if (!stepToFreePrompt()) {
        addlnbrk(false, LineKind::Head, false);
        printStr(">> ", prompt_width, false);
    }
    vscr.cmdfirst = vscr.cmdlast = vscr.readline = vscr.current;
    vscr.readpos = prompt_width;
    vscr.ready = vscr.edited = vscr.histdone = false;
    lines_before_command = consoleLine();
    terminal->redraw();
}

static bool allBlank(const Vsline *line, uint32_t from) {
    for (uint32_t i = from; i < line->length; ++i)
        if (line->text[i] != ' ') return false;
    return true;
}

static bool hasUnreadText() {
    if (!vscr.ready || !vscr.readline) return false;
    if (!allBlank(vscr.readline, vscr.readpos)) return true;
    for (const Vsline *line = vscr.readline; line != vscr.cmdlast && line->next; line = line->next)
        if (!allBlank(line->next, prompt_width)) return true;
    return false;
}

// Line ends of the command that were not read: blank text is left behind, its lines count all the same.
static uint32_t countUnreadLineEnds() {
    uint32_t n = 0;
    if (vscr.ready)
        for (const Vsline *line = vscr.readline; line && !line->isBlankCommand(); line = line->next) {
            n++;
            if (line == vscr.cmdlast) break;
        }
    return n;
}

void dropCommand() {
    countConsoleLines(countUnreadLineEnds());
    vscr.ready = false;
}

void setCmdBuffStat() {
    if (!cmdbuffstat) {
        cmdbuffstat = true;
    } else if (!hasUnreadText()) {
        countConsoleLines(countUnreadLineEnds());
        initVideoBuf();
    }
}

// No character waits to be read again while a line is edited: the lexer takes those before it asks for a
// line.
void abandonParse() {
    cmdbuffstat = false;
    parseRestart();
}

void startReading() {
    vscr.readline = vscr.cmdfirst;
    vscr.readpos = prompt_width;
    vscr.edited = false;
    setConsoleLine(lines_before_command);
}

void rereadCommand() {
    startReading();
    if (parsingInProgress()) abandonParse();
}

// In worksheet mode the cursor may stand on any line of the list.
bool grabLine() {
    closeCanvas();
    const bool away = !vscr.cmdlast || vscr.current != vscr.cmdlast;
    if (away && getcwmode() != worksheet_mode) initVideoBuf();
    return terminal->editLine();
}

bool getLine(const char *prompt, uint32_t &start, uint32_t &end) {
    addlnbrk(false, LineKind::Input, false);
    printStr("   ", prompt_width, false);
    printStr(prompt, static_cast<uint32_t>(std::strlen(prompt)), false);
    closeCanvas();
    start = vscr.current->length;
    beginInput(start);
    const bool got = terminal->editLine();
    endInput();
    countConsoleLines(1);
    end = vscr.current->length;
    return got;
}

int getChar() {
    for (;;) {
        Vsline *line = vscr.readline;
        if (!vscr.ready || !line) {
            if (!grabLine()) return end_of_input;
        } else if (vscr.readpos < line->length) {
            return static_cast<unsigned char>(line->text[vscr.readpos++]);
        } else if (line == vscr.cmdlast && line->isBlankCommand()) {
            if (parsingInProgress() && getCurrentTokenCount() == 0) initVideoBuf();
            if (!grabLine()) return end_of_input;
        } else {
            if (line == vscr.cmdlast) {
                vscr.ready = false;
            } else {
                vscr.readline = line->next;
                vscr.readpos = prompt_width;
            }
            return '\n';
        }
    }
}

}  // namespace vesko
