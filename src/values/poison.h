// Poisoning of memory that lies free, in the checking build: a use after release is reported at once, and
// what is handed out again holds a pattern. Nothing in other builds.
#pragma once

#include <cstddef>

#ifdef VESKO_CHECK
#include <sanitizer/asan_interface.h>

#include <cstring>
#endif

namespace vesko {

#ifdef VESKO_CHECK
constexpr int free_pattern = 0xFB;
constexpr size_t pattern_limit = 4096;  // bytes of a long buffer that get the pattern

inline void poison(void *p, size_t size) {
    std::memset(p, free_pattern, size < pattern_limit ? size : pattern_limit);
    ASAN_POISON_MEMORY_REGION(p, size);
}
inline void poisonKeepingBytes(void *p, size_t size) { ASAN_POISON_MEMORY_REGION(p, size); }
inline void unpoison(void *p, size_t size) { ASAN_UNPOISON_MEMORY_REGION(p, size); }
inline bool isPoisoned(const void *p) { return __asan_address_is_poisoned(p) != 0; }
#else
inline void poison(void *, size_t) {}
inline void poisonKeepingBytes(void *, size_t) {}
inline void unpoison(void *, size_t) {}
inline bool isPoisoned(const void *) { return false; }
#endif

}  // namespace vesko
