// The source stack: where characters come from. A running file stands above the source that ran it; the
// bottom is the console.
#pragma once

#include <cstdint>
#include <cstdio>

namespace vesko {

struct Matrix;

struct VSFileList {
    Matrix *name;     // linked: a string, or the empty value for the console
    std::FILE *file;  // null for the console; read through the buffer below only
    uint32_t line;    // lines taken so far
    char extra[4];    // characters pushed back, last pushed first
    bool after_cr;    // the last character was a CR: a following LF is skipped
    bool at_end;      // the last character taken was an LF: its line is still the current one
    VSFileList *next;
    const char *pos, *end;  // unread part of the buffer
    char buffer[8192];
};

extern VSFileList *filelist;  // the top

// A file that has no more characters answers this value, and so does its byte 0xFF.
constexpr int end_of_input = -1;
constexpr int no_character = 0;  // of getExtraCh: nothing was pushed back

void initSourceStack();
void updateCurrentFile(Matrix *name, std::FILE *stream);  // pushes; links the name, takes the stream
void changeCurrentFileBack();                             // pops; the console stays
void resetFileList();                                     // back to the console
const char *getCurrentFileName();
uint32_t getCurrLineNum();           // counted from 1
int readch();                        // from the file or the console: bytes of a file are signed
int getExtraCh();                    // takes the character pushed back last
void setExtraCh(int c);              // at most three wait; a NUL discards them
bool consoleEnded();                 // the console has no more lines
void countConsoleLines(uint32_t n);  // lines of the console that were left unread
uint32_t consoleLine();              // lines of the console taken so far
void setConsoleLine(uint32_t n);

// The next character: one that was pushed back, or else that of readch.
int nextCharSlowly();
inline int nextChar() {
    constexpr char last_special = '\r';  // plain characters need no count
    VSFileList *source = filelist;
    if (source->extra[0] || source->pos == source->end || *source->pos <= last_special)
        return nextCharSlowly();
    source->at_end = source->after_cr = false;
    return *source->pos++;
}

}  // namespace vesko
