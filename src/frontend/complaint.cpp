// Parse errors: the message line, then the way out.
#include "frontend/complaint.h"

#include <cstdarg>
#include <cstdio>

#include "console/command.h"
#include "console/message.h"
#include "frontend/source.h"

namespace vesko {

void complain(uint32_t line, const char *format, ...) {
    char text[opbufflen];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    xMesg("Error %s %u: %s", getCurrentFileName(), line, text);
    parseError(nullptr);
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void complainPlaced(const char *format, uint32_t line) {
    xMesg(format, getCurrentFileName(), line);
    parseError(nullptr);
}
#pragma GCC diagnostic pop

}  // namespace vesko
