// Exceptions: their names, and the way from an error or a `throw` to the `try` that catches it.
#pragma once

#include <cstdint>

namespace vesko {

// Names of exceptions are kept for as long as the program runs. Id 0 is "anything": every run-time error.
uint32_t findXexId(uint32_t symbol);  // adds a new name

// ---- For the end of every error and for the top level.
bool anythingIsCaught();          // an open try catches run-time errors
[[noreturn]] void jumpToCatch();  // to the innermost such try
void resetExceptions();           // at the top level: no try is open any more

}  // namespace vesko
