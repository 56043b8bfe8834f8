// Parse-time memory that is given back as a whole: small pieces are carved from pods of one size, so that the
// sorted lists of pods stay short and their searches end at once.
#pragma once

#include <cstddef>

#include "engine/interrupt.h"
#include "values/memory.h"

namespace vesko {

struct Carver {
    char *pos;  // rest of the pod that is being carved; void once the used list was handed over
    size_t left;
};

void *carveFresh(size_t size, Carver &carver, Pod *&free_list, Pod *&used_list);

inline void *carve(size_t size, Carver &carver, Pod *&free_list, Pod *&used_list) {
    size = (size + alignof(void *) - 1) & ~(alignof(void *) - 1);
    if (size > carver.left || !used_list) [[unlikely]]
        return carveFresh(size, carver, free_list, used_list);
    carver.left -= size;
    char *piece = carver.pos;
    carver.pos += size;
    return piece;
}

// The memory of one kind of records, recycled at every command.
class Arena {
public:
    void *take(size_t size) { return carve(size, carver, free_pods, used_pods); }
    void recycleAll() {
        if (!used_pods) return;
        holdInterrupt();
        free_pods = mergeMemPods(used_pods, free_pods);
        used_pods = nullptr;
        freeInterrupt();
    }

private:
    Carver carver;
    Pod *free_pods, *used_pods;
};

}  // namespace vesko
