// Exceptions: what the ways out of a command need to know of open `try` statements.
#pragma once

#include <cstdint>

namespace vesko {

bool anythingIsCaught();              // an open try catches run-time errors
[[noreturn]] void jumpToCatch();      // to the innermost such try
void resetExceptions();               // at the top level: no try is open any more
uint32_t findXexId(uint32_t symbol);  // number of the exception of that name; new names are added

}  // namespace vesko
