// The line editor.
#include "console/editor.h"

#include <cstring>

#include "console/history.h"
#include "console/worksheet.h"
#include "frontend/token.h"
#include "values/containers.h"

namespace vesko {

// ---- Input for a program

static bool READING_INPUT = false;
static bool input_complete = false;
static uint32_t input_column = 0;

void beginInput(uint32_t first_column) {
    READING_INPUT = true;
    input_complete = false;
    input_column = first_column;
}

void endInput() { READING_INPUT = false; }

// ---- Places

static bool isEditable(const Vsline *line) { return line->isCommand() || line->kind == LineKind::Input; }
static uint32_t firstColumn() { return READING_INPUT ? input_column : prompt_width; }

static void moveTo(Vsline *line, uint32_t column) {
    vscr.current = line;
    vscr.cursorx = column;
    vscr.drawn = false;
}

static void moveToEnd(Vsline *line) { moveTo(line, line->length); }

static void markEdited() {
    vscr.edited = true;
    vscr.drawn = false;
}

// Whoever reads in the line goes on at the end of the one that takes its part.
static void dropLastLine(Vsline *line, Vsline *heir) {
    if (vscr.readline == line) {
        vscr.readline = heir;
        vscr.readpos = heir->length;
    }
    if (vscr.cmdlast == line) vscr.cmdlast = heir;
    saveVsLine(line, line);
    markEdited();
}

// A blank last line of a command goes away when the cursor leaves it upwards.
static void leaveBlankLast(Vsline *line) {
    if (line == vscr.cmdlast && line != vscr.cmdfirst && line->isBlankCommand())
        dropLastLine(line, line->prev);
}

// ---- Characters

void insertVc(char c) {
    Vsline *line = vscr.current;
    if (!isEditable(line)) return;
    reserveText(line, line->length + 1);
    char *at = line->text + vscr.cursorx;
    std::memmove(at + 1, at, line->length - vscr.cursorx);
    *at = c;
    if (vscr.cursorx < line->length || line != vscr.cmdlast) vscr.edited = true;
    ++line->length;
    moveTo(line, vscr.cursorx + 1);
}

static void removeAt(Vsline *line, uint32_t column) {
    char *at = line->text + column;
    std::memmove(at, at + 1, line->length - column - 1);
    --line->length;
    markEdited();
}

// The line is appended to the one before, and the cursor stands at the joint.
static void joinWithPrevious(Vsline *line) {
    Vsline *before = line->prev;
    const uint32_t joint = before->length, added = line->length - prompt_width;
    reserveText(before, joint + added);
    std::memcpy(before->text + joint, line->text + prompt_width, added);
    before->length += added;
    dropLastLine(line, before);
    moveTo(before, joint);
}

static void rmPrevVc() {
    Vsline *line = vscr.current;
    if (!isEditable(line)) return;
    if (vscr.cursorx > firstColumn()) {
        removeAt(line, --vscr.cursorx);
    } else if (line->isCommand() && line != vscr.cmdfirst) {
        joinWithPrevious(line);
    }
}

static void rmThisVc() {
    Vsline *line = vscr.current;
    if (!isEditable(line)) return;
    if (vscr.cursorx < line->length) {
        removeAt(line, vscr.cursorx);
    } else if (line->isCommand() && line != vscr.cmdlast) {
        joinWithPrevious(line->next);
    }
}

// Cuts the line at the cursor: what stands behind it becomes a continuation, with the cursor.
static void brkVbLine() {
    Vsline *line = vscr.current;
    if (vscr.cursorx < line->length || line != vscr.cmdlast) markEdited();
    const uint32_t moved = line->length - vscr.cursorx;
    Vsline *rest = createVsline();
    reserveText(rest, prompt_width + moved);
    std::memcpy(rest->text, "   ", prompt_width);
    std::memcpy(rest->text + prompt_width, line->text + vscr.cursorx, moved);
    rest->length = prompt_width + moved;
    rest->kind = LineKind::Continuation;
    line->length = vscr.cursorx;
    insertAfter(line, rest);
    if (line == vscr.cmdlast) vscr.cmdlast = rest;
    moveTo(rest, prompt_width);
}

// ---- Moves

static void vbBackward() {
    Vsline *line = vscr.current;
    if (vscr.cursorx > prompt_width) {
        moveTo(line, vscr.cursorx - 1);
    } else if (line != vscr.cmdfirst && line->prev) {
        moveToEnd(line->prev);
        leaveBlankLast(line);
    }
}

static void vbForward() {
    Vsline *line = vscr.current;
    if (vscr.cursorx < line->length) {
        moveTo(line, vscr.cursorx + 1);
    } else if (line != vscr.cmdlast && line->next) {
        moveTo(line->next, prompt_width);
    }
}

static void vbUpward() {
    Vsline *line = vscr.current;
    moveToEnd(line->prev);
    leaveBlankLast(line);
}

static void vbDownward() { moveToEnd(vscr.current->next); }

static void cmd_end() {
    if (vscr.cmdlast) moveToEnd(vscr.cmdlast);
}

// In worksheet mode a command that the cursor steps on becomes the current one; on output there is none.
static void makeCurrentCommand(Vsline *line) {
    vscr.cmdfirst = vscr.cmdlast = vscr.readline = nullptr;
    vscr.ready = false;
    if (!line->isCommand()) return;
    Vsline *first = line, *last = line;
    while (first->kind == LineKind::Continuation && first->prev) first = first->prev;
    while (last->next && last->next->kind == LineKind::Continuation) last = last->next;
    vscr.cmdfirst = first;
    vscr.cmdlast = last;
    vscr.histdone = false;
}

static bool isInCommand(const Vsline *line) {
    for (const Vsline *l = vscr.cmdfirst; l; l = l == vscr.cmdlast ? nullptr : l->next)
        if (l == line) return true;
    return false;
}

static void stepInWorksheet(Vsline *line) {
    if (!line) return;
    moveToEnd(line);
    if (isInCommand(line)) return;
    makeCurrentCommand(line);
    rereadCommand();
}

// ---- History

static Vsline *setCommandLine(Vsline *line, const char *text) {
    const uint32_t length = static_cast<uint32_t>(std::strlen(text));
    reserveText(line, prompt_width + length);
    std::memcpy(line->text + prompt_width, text, length);
    line->length = prompt_width + length;
    return line;
}

void updateVB(const HistoryEntry *entry) {
    if (vscr.cmdfirst != vscr.cmdlast) saveVsLine(vscr.cmdfirst->next, vscr.cmdlast);
    Vsline *line = vscr.cmdlast = vscr.current = vscr.cmdfirst;
    line->length = prompt_width;
    for (uint32_t k = 0; entry && k < entry->lines->size; ++k) {
        if (k > 0) {
            vscr.cursorx = line->length;
            brkVbLine();
            line = vscr.current;
        }
        setCommandLine(line, entry->lines->at<char>(k));
    }
    moveToEnd(line);
    vscr.ready = false;
    rereadCommand();
}

static void cmd_up() {
    Vsline *line = vscr.current;
    if (getcwmode() == worksheet_mode && (line == vscr.cmdfirst || !line->isCommand()))
        return stepInWorksheet(line->prev);
    if (line != vscr.cmdfirst && line->prev) return vbUpward();
    const HistoryEntry *shown = cmdhist.cursor;
    if (!shown || shown == cmdhist.head) return;
    cmdhist.cursor = shown->prev;
    updateVB(shown);
}

// The entry shown is the one behind the history's cursor; below the newest one stands an empty command.
static void cmd_down() {
    Vsline *line = vscr.current;
    if (getcwmode() == worksheet_mode && (line == vscr.cmdlast || !line->isCommand()))
        return stepInWorksheet(line->next);
    if (line != vscr.cmdlast && line->next) return vbDownward();
    HistoryEntry *shown = cmdhist.cursor ? cmdhist.cursor->next : nullptr;
    if (!shown || shown == cmdhist.tail) return;
    cmdhist.cursor = shown;
    updateVB(shown->next == cmdhist.tail ? nullptr : shown->next);
}

// ---- Enter and its kin

// A command that runs again replaces its output.
static void dropOutputBelow(Vsline *line) {
    while (line->next && !line->next->isCommand()) saveVsLine(line->next, line->next);
}

void cmd_enter() {
    Vsline *line = vscr.current;
    if (line->kind == LineKind::Input) input_complete = true;
    if (!line->isCommand()) return;
    if (line != vscr.cmdlast) {
        vscr.ready = false;
        vscr.edited = true;
        return brkVbLine();
    }
    moveToEnd(line);
    if (getcwmode() == worksheet_mode) dropOutputBelow(line);
    brkVbLine();
    vscr.ready = true;
    if (vscr.edited) rereadCommand();
}

// The entry is given up: a new prompt stands below it.
static void cmd_ctrla() {
    cmd_end();
    const bool parsing = parsingInProgress();
    dropCommand();
    initVideoBuf();
    if (parsing) abandonParse();
}

static bool enter() {
    cmd_enter();
    return READING_INPUT ? input_complete : vscr.ready;
}

// The command is read from its first line, wherever the cursor stands.
static bool readFromStart() {
    if (!vscr.cmdlast) return false;
    cmd_end();
    vscr.edited = true;
    return enter();
}

bool editKey(int key) {
    static bool after_cr = false;
    const bool lf_of_crlf = key == key_lf && after_cr;
    after_cr = key == key_cr;
    switch (key) {
        case key_lf: return !lf_of_crlf && enter();
        case key_cr: return enter();
        case key_ctrl_h:
        case key_rubout:
        case key_backspace: rmPrevVc(); return false;
        case key_delete: rmThisVc(); return false;
        case key_tab: insertVc(' '); return false;
        default: break;
    }
    if (key >= ' ' && key < key_rubout) insertVc(static_cast<char>(key));
    if (READING_INPUT) return false;
    switch (key) {
        case key_ctrl_a: cmd_ctrla(); break;
        case key_ctrl_s: return readFromStart();
        case key_up: cmd_up(); break;
        case key_down: cmd_down(); break;
        case key_left: vbBackward(); break;
        case key_right: vbForward(); break;
        case key_home: moveTo(vscr.current, prompt_width); break;
        case key_end: moveToEnd(vscr.current); break;
        default: break;
    }
    return false;
}

}  // namespace vesko
