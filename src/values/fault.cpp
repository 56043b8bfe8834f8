// Injected faults of the checking build.
#include "values/fault.h"

#ifdef VESKO_CHECK
#include <csignal>
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

static bool isDue(unsigned long &events) { return events && --events == 0; }

bool refuseInjected() { return isDue(refuse_at); }

void countNode() {
    if (isDue(interrupt_at)) std::raise(SIGINT);
}

}  // namespace vesko
#endif
