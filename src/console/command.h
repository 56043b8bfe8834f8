// Start-up and the command cycle.
#pragma once

#include <csetjmp>
#include <cstdint>
#include <cstdio>

namespace vesko {

void initialize();
[[noreturn]] void service();
void processCmd();

// Every way out of a command jumps: back to the head of the cycle, or to the innermost try.
[[noreturn]] void xAbort(const char *message);      // run-time errors; message may be null
[[noreturn]] void parseError(const char *message);  // message may be null: shown already
[[noreturn]] void parseRestart();                   // no message, no entry in the history
[[noreturn]] void returnToTopLevel();               // passes every try
sigjmp_buf &topLevel();                             // the head of the cycle, for those who run without it
[[noreturn]] void leaveProgram(int status);         // ends the screen and the process

std::FILE *openGFile(const char *path);  // null if it is no file to read
std::FILE *openXFile(const char *name);  // through libpaths; null if not found
std::FILE *openHFile(const char *name);  // a help text, null if there is none
// Reads one text line into a growing buffer, puts an LF and a NUL behind it, and returns its length: 0 at the
// end of the file. CR LF counts as one line end. `last_end` is 0 at the first call and kept by the caller. A
// pending interrupt counts as the end of the file.
uint32_t xgetline(char *&buffer, uint32_t &capacity, std::FILE *stream, char &last_end);

}  // namespace vesko
