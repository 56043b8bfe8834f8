// Parse errors at a line of the source. Control leaves by parseError, so the caller owns nothing.
#pragma once

#include <cstdint>

namespace vesko {

// Shows "Error <file> <line>: <text>".
[[noreturn]] void complain(uint32_t line, const char *format, ...) __attribute__((format(printf, 2, 3)));
// Shows a text that places file (%s) and line (%u) on its own, in this order.
[[noreturn]] void complainPlaced(const char *format, uint32_t line);

}  // namespace vesko
