// Start-up and the command cycle.
#pragma once

#include <cstdint>
#include <cstdio>

namespace vesko {

struct PcNode;
struct Matrix;

void initialize();
[[noreturn]] void service();
void processCmd();

// Every way out of a command jumps: back to the head of the cycle, or to the innermost try.
[[noreturn]] void xAbort(const char *message);      // run-time errors; message may be null
[[noreturn]] void parseError(const char *message);  // message may be null: shown already
[[noreturn]] void parseRestart();
[[noreturn]] void leaveProgram(int status);         // ends the screen and the process

std::FILE *openXFile(const char *name);  // through libpaths; null if not found
std::FILE *openHFile(const char *name);  // a help text
// One text line into a growing buffer, an LF and a NUL behind it; its length, 0 at the end of the file.
uint32_t xgetline(char *&buffer, uint32_t &capacity, std::FILE *stream, char &last_end);

// ---- System commands
uint32_t countSyscmds();

}  // namespace vesko
