// The worksheet: the list of lines that holds commands, their continuations, output and messages. The lexer
// reads its characters from the lines of the current command.
#pragma once

#include <cstdint>

namespace vesko {

enum class LineKind : int {
    Head = 0,  // first line of a command, with the prompt
    Continuation = 1,
    Free = 2,
    FirstOutput = 3,  // first line of an output or a message
    Output = 4,
    BecomingContinuation = 5,
    Input = 6,  // keyboard input asked for by a program
};

constexpr uint32_t prompt_width = 3;
constexpr int command_mode = 0, worksheet_mode = 1, no_display = 2;

struct Vsline {
    char *text;  // no terminator; a command line begins with prompt_width columns of prompt
    uint32_t capacity;
    LineKind kind;
    uint32_t length;
    Vsline *prev, *next;

    bool isCommand() const { return kind == LineKind::Head || kind == LineKind::Continuation; }
    bool isBlankCommand() const { return isCommand() && length <= prompt_width; }
};

struct Worksheet {
    uint32_t rows, columns;
    Vsline *head, *tail;
    Vsline *freelines;
    Vsline *current;             // with the cursor
    Vsline *top;                 // at the screen's top row
    Vsline *cmdfirst, *cmdlast;  // the command being entered
    Vsline *readline;            // where getChar reads
    uint32_t readpos;
    bool ready;  // a complete command line has been entered and is being read
    bool edited;
    uint32_t cursorx, cursory;
    uint32_t nlines;
    bool drawn;
    bool histdone;
    long lastdraw;
};
extern Worksheet vscr;
extern bool cmdbuffstat;  // false: the command lines stay for the next cycle and are read again

// ---- Lines
void setScreenAttr();  // makes the first line
Vsline *createVsline();
void insertAfter(Vsline *before, Vsline *line);
void saveVsLine(Vsline *first, Vsline *last);     // takes a run of lines out of the list, for new use
void reserveText(Vsline *line, uint32_t length);  // room for a text of that length
void addlnbrk(bool redraw, LineKind kind, bool force);
void printStr(const char *text, uint32_t length, bool redraw);
void freshScr();
void showAll();               // what has been printed can be seen: before a program waits
void clearWindow();           // forgets every line above the current one
void reset_cwmode(int mode);  // 0 command mode, 1 worksheet mode, 2 no display; -1 toggles the first two
int getcwmode();
inline bool cwmode_nodisplay() { return getcwmode() == no_display; }

// ---- The command
int getChar();        // next character of the command, or end_of_input
bool grabLine();      // lets the user complete a line of the command; false at the end of the input
void initVideoBuf();  // starts a new command
[[noreturn]] void abandonParse();  // the lines stand as they are for the next parse
void startReading();               // the command is read from its first line
void rereadCommand();  // startReading; a parse that has begun is abandoned, and the lines stand for the next
                       // one
void setCmdBuffStat();
// Collects a line of input for a program behind a prompt, on the worksheet's current line: its text stands
// from `start` to `end`. False at the end of the input.
bool getLine(const char *prompt, uint32_t &start, uint32_t &end);
void dropCommand();  // what is unread of the command is not read any more: an interrupt abandons it

}  // namespace vesko
