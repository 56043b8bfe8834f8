// Filling a buffer element by element, at the speed of the machine: for several instruction sets, and past
// the caches when the buffer is larger than they are. The results are the same on all.
#pragma once

#include <cstdint>
#include <type_traits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace vesko {

#ifdef __x86_64__
#define VESKO_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VESKO_CLONES
#endif

// z[i] = f(i). What f reads may lie exactly on z, element by element.
template <class C, class F>
VESKO_CLONES void fillInCache(C *z, uint32_t n, F f) {
#pragma GCC ivdep
    for (uint32_t i = 0; i < n; i++) z[i] = f(i);
}

// Buffers of this many doubles leave the caches before they are read again.
constexpr uint32_t smallest_streamed = 1u << 19;

// The same without reading z into the caches first.
template <class F>
VESKO_CLONES void fillPastCache(double *z, uint32_t n, F f) {
#ifdef __SSE2__
    uint32_t i = 0;
    if (reinterpret_cast<uintptr_t>(z) % sizeof(__m128d)) z[i++] = f(0);
    for (; i + 1 < n; i += 2) _mm_stream_pd(z + i, _mm_set_pd(f(i + 1), f(i)));
    if (i < n) z[i] = f(i);
    _mm_sfence();
#else
    fillInCache(z, n, f);
#endif
}

// `fresh` says that f does not read z.
template <class C, class F>
inline void fillElements(C *z, uint32_t n, bool fresh, F f) {
    if constexpr (std::is_same_v<C, double>)
        if (fresh && n >= smallest_streamed) return fillPastCache(z, n, f);
    fillInCache(z, n, f);
}

}  // namespace vesko
