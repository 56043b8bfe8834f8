// The counting heap layer. The heap's own state must not be left half-way, so interrupts wait while it works.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "console/command.h"
#include "console/message.h"
#include "engine/interrupt.h"
#include "values/fault.h"
#include "values/memory.h"

namespace vesko {

static uint32_t total_mem_allocated;  // wraps, and is shown as a signed number

int32_t get_total_mem_allocated() { return static_cast<int32_t>(total_mem_allocated); }

void refuseMemory(uint64_t size) {
    xMesg("Attempt to allocate %llu bytes memory failed", static_cast<unsigned long long>(size));
    xAbort(nullptr);
}

// What the kernel could still give without ending a process, in bytes.
static size_t availableMemory() {
    char text[256];
    ssize_t length = 0;
    const int file = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
        length = read(file, text, sizeof text - 1);
        close(file);
    }
    text[std::max<ssize_t>(length, 0)] = '\0';
    const char *line = std::strstr(text, "MemAvailable:");
    unsigned long kilobytes;
    if (line && std::sscanf(line, "MemAvailable: %lu", &kilobytes) == 1) return size_t{kilobytes} << 10;
    return size_t(sysconf(_SC_PHYS_PAGES)) * size_t(sysconf(_SC_PAGESIZE));
}

// The kernel grants more than the machine has and ends a process at first use: such requests are refused
// here. The machine is asked now and then, and for what is large by itself.
static bool isBeyondMachine(size_t size) {
    constexpr size_t asking_step = size_t{1} << 26, kept_free = size_t{1} << 26;
    static size_t granted;
    granted += std::min(size, asking_step);
    if (granted < asking_step) return false;
    granted = 0;
    holdInterrupt();
    const size_t available = availableMemory();
    freeInterrupt();
    return size > available || available - size < kept_free;
}

static void *resize(void *p, size_t old_size, size_t new_size) {
    if (isBeyondMachine(new_size > old_size ? new_size - old_size : 0) || refuseInjected())
        refuseMemory(new_size);
    holdInterrupt();
    void *q = std::realloc(p, new_size ? new_size : 1);
    if (q) total_mem_allocated += static_cast<uint32_t>(new_size - old_size);
    freeInterrupt();
    if (!q) refuseMemory(new_size);
    return q;
}

void *m_malloc(size_t size) { return resize(nullptr, 0, size); }

void *m_realloc(void *p, size_t old_size, size_t new_size) { return resize(p, old_size, new_size); }

void m_free(void *p, size_t size) {
    holdInterrupt();
    std::free(p);
    total_mem_allocated -= static_cast<uint32_t>(size);
    freeInterrupt();
}

void *i_malloc(size_t size) {
    void *p = std::malloc(size ? size : 1);
    if (!p) {
        std::puts("Insufficient memory -- program initialization failed.");
        std::exit(-1);
    }
    total_mem_allocated += static_cast<uint32_t>(size);
    return p;
}

char *strClone(const char *s) {
    size_t n = std::strlen(s);
    holdInterrupt();
    char *copy = static_cast<char *>(std::malloc(n + 2));
    freeInterrupt();
    if (!copy) refuseMemory(n + 2);
    return static_cast<char *>(std::memcpy(copy, s, n + 1));
}

}  // namespace vesko
