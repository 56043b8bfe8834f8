// Pods for carving.
#include "frontend/arena.h"

#include <bit>

namespace vesko {

void *carveFresh(size_t size, Carver &carver, Pod *&free_list, Pod *&used_list) {
    constexpr size_t pod_size = 1024;
    if (!used_list) carver = {};  // its pod was handed over
    if (size > pod_size / 4) return newMem(std::bit_ceil(size), nullptr, free_list, used_list);
    auto *pod = static_cast<char *>(newMem(pod_size, nullptr, free_list, used_list));
    carver = {pod + size, pod_size - size};
    return pod;
}

}  // namespace vesko
