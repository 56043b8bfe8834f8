// Keyboard interrupts and the guard of the machine stack.
//
// SIGINT jumps to the top level at once from pure computing. Code whose state must not be abandoned half-way
// (the heap, pool growth, container updates, the terminal, other libraries) holds the interrupt; a pending
// one fires when the counter returns to 0. Every recovery point resets the counter.
#pragma once

#include <csignal>
#include <cstdint>

namespace vesko {

extern volatile std::sig_atomic_t interrupt_hold;
extern volatile std::sig_atomic_t interrupt_pending;

void fireInterrupt();  // jumps to the top level
void intHandler(int signal);
void installIntHandler();

inline void holdInterrupt() {
    interrupt_hold = interrupt_hold + 1;
    __atomic_signal_fence(__ATOMIC_SEQ_CST);
}
inline void freeInterrupt() {
    __atomic_signal_fence(__ATOMIC_SEQ_CST);
    interrupt_hold = interrupt_hold - 1;
    if (interrupt_hold == 0 && interrupt_pending) fireInterrupt();
}
inline void resetInterruptHold() {
    interrupt_hold = 0;
    interrupt_pending = 0;
}

// ---- Stack guard. Recursive entry points (evaluation, parsing, cloning, comparing, display) test the
// distance to the end of the machine stack.
extern char *stack_limit;
void growMachineStack();  // at start
inline bool stackLow() {
#ifdef __x86_64__
    // Asking for the frame address would make every guarded function keep a frame pointer.
    char *here;
    asm("mov %%rsp, %0" : "=r"(here));
#else
    char *here = static_cast<char *>(__builtin_frame_address(0));
#endif
    return here < stack_limit;
}
[[noreturn]] void error_recursion_too_deep();
inline void guardStack() {
    if (stackLow()) [[unlikely]]
        error_recursion_too_deep();
}

}  // namespace vesko
