// Injected faults of the checking build.
#include "values/fault.h"

#ifdef VESKO_CHECK
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace vesko {

// Events still to pass before the fault; 0: none is wanted.
static unsigned long refuse_at, interrupt_at;

static unsigned long wantedAt(const char *name) {
    const char *text = std::getenv(name);
    return text ? std::strtoul(text, nullptr, 10) : 0;
}

void startFaults() {
    refuse_at = wantedAt("VESKO_REFUSE");
    interrupt_at = wantedAt("VESKO_INTERRUPT");
}

// Tells a driver that the fault came to pass.
static bool isDue(unsigned long &events) {
    const bool due = events && --events == 0;
    if (due) std::fputs("fault: injected\n", stderr);
    return due;
}

bool refuseInjected() { return isDue(refuse_at); }

void countNode() {
    if (isDue(interrupt_at)) std::raise(SIGINT);
}

}  // namespace vesko
#endif
