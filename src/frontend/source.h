// The source stack: where characters come from. A running file stands above the source that ran it; the
// bottom is the console.
#pragma once

#include <cstdint>
#include <cstdio>

namespace vesko {

struct Matrix;

struct VSFileList {
    Matrix *name;     // linked: a string, or the empty value for the console
    std::FILE *file;  // null for the console
    uint32_t line;    // lines taken so far
    char extra[4];    // characters pushed back, last pushed first
    bool after_cr;    // the last character was a CR: a following LF is skipped
    VSFileList *next;
};

extern VSFileList *filelist;  // the top

constexpr int end_of_input = -1;

void initSourceStack();
void updateCurrentFile(Matrix *name, std::FILE *stream);  // pushes; links the name, takes the stream
void changeCurrentFileBack();                             // pops; the console stays
void resetFileList();                                     // back to the console
const char *getCurrentFileName();
uint32_t getCurrLineNum();  // counted from 1
int readch();
int getExtraCh();
void setExtraCh(int c);

}  // namespace vesko
