// Sorting of arrays: of plain elements, and of anything that a function compares.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace vesko {

// Elements of the dense kinds in place. NaN has no order: it goes behind everything.
template <class T>
void quick_sort(T *a, size_t n, bool increasing) {
    T *end = a + n;
    if constexpr (std::is_same_v<T, double>) end = std::partition(a, end, [](T x) { return !std::isnan(x); });
    if (increasing)
        std::sort(a, end);
    else
        std::sort(a, end, std::greater<T>());
}

// One step of merge_sort: the runs [lo, mid) and [mid, hi) of `from` become one run of `to`.
template <class T, class Precedes>
void mergeRuns(const T *from, T *to, size_t lo, size_t mid, size_t hi, Precedes precedes) {
    size_t i = lo, j = mid, k = lo;
    const bool in_order = mid == hi || !precedes(from[mid], from[mid - 1]);
    while (!in_order && i < mid && j < hi) to[k++] = precedes(from[j], from[i]) ? from[j++] : from[i++];
    k = static_cast<size_t>(std::copy(from + i, from + mid, to + k) - to);
    std::copy(from + j, from + hi, to + k);
}

// Sorts a, with n items of scratch at b, and returns which of the two arrays holds the result. Items that do
// not precede each other stay in their order. It asks about as seldom as can be, nothing that `precedes`
// answers makes it leave the arrays or go on for ever, and it does not recurse. When `precedes` jumps out,
// the arrays hold anything.
template <class T, class Precedes>
T *merge_sort(T *a, T *b, size_t n, Precedes precedes) {
    for (size_t width = 1; width < n; width *= 2) {
        for (size_t lo = 0; lo < n; lo += 2 * width)
            mergeRuns(a, b, lo, std::min(lo + width, n), std::min(lo + 2 * width, n), precedes);
        std::swap(a, b);
    }
    return a;
}

}  // namespace vesko
