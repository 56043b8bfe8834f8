// SIGINT and the guard of the machine stack.
#include "engine/interrupt.h"

#include <sys/resource.h>

#include <algorithm>

#include "console/command.h"
#include "console/worksheet.h"
#include "frontend/source.h"
#include "values/audit.h"

namespace vesko {

volatile std::sig_atomic_t interrupt_hold = 0;
volatile std::sig_atomic_t interrupt_pending = 0;
char *stack_limit = nullptr;

// The rest of the line that is being read belongs to the command that is abandoned.
static void dropConsoleInput() {
    if (filelist->next) return;
    while (filelist->extra[0]) getExtraCh();
    dropCommand();
}

void fireInterrupt() {
    interrupt_pending = 0;
    tolerateExtraLinks();
    dropConsoleInput();
    returnToTopLevel();
}

void intHandler(int) {
    if (interrupt_hold > 0) {
        interrupt_pending = 1;
        return;
    }
    fireInterrupt();
}

static void setHandler(int signal, void (*handler)(int), int flags) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

// A pipe that nobody reads any more is a failed write, not the end of the process. Programs that are started
// get the signal as usual, which they would not if it were ignored here.
void installIntHandler() {
    setHandler(SIGINT, intHandler, 0);
    setHandler(
        SIGPIPE, [](int) {}, SA_RESTART);
}

void growMachineStack() {
    // The kernel keeps at least 128 MB of address space free below the main stack and tests the soft limit at
    // each growth, so raising the limit here is enough.
    constexpr rlim_t wanted = 112u << 20;
    constexpr rlim_t reserve = 1u << 20;  // for libraries and signal handlers at the deepest point
    rlimit limit;
    rlim_t size = 8u << 20;
    if (getrlimit(RLIMIT_STACK, &limit) == 0) {
        limit.rlim_cur = std::min(wanted, limit.rlim_max);
        if (setrlimit(RLIMIT_STACK, &limit) == 0 || getrlimit(RLIMIT_STACK, &limit) == 0)
            size = std::min(wanted, limit.rlim_cur);
    }
    stack_limit = static_cast<char *>(__builtin_frame_address(0)) - size + std::min(reserve, size / 2);
}

}  // namespace vesko
