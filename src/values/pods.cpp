// Pods: parse-time memory. An owner has a free and a used list, each sorted by size, and hands the whole used
// list over to the free one when it is done.
#include <cstring>

#include "console/command.h"
#include "engine/interrupt.h"
#include "values/memory.h"

namespace vesko {

Pod *addPodToList(Pod *pod, Pod *list) {
    Pod **place = &list;
    while (*place && (*place)->size < pod->size) place = &(*place)->next;
    pod->next = *place;
    *place = pod;
    return list;
}

Pod *mergeMemPods(Pod *a, Pod *b) {
    Pod *head = nullptr, **tail = &head;
    while (a && b) {
        Pod *&smaller = a->size <= b->size ? a : b;
        *tail = smaller;
        tail = &smaller->next;
        smaller = smaller->next;
    }
    *tail = a ? a : b;
    return head;
}

static void resizePod(Pod *pod, size_t size) {
    pod->buffer = m_realloc(pod->buffer, pod->size, size);
    pod->size = size;
}

static Pod *makePod(size_t size) {
    Pod *pod = static_cast<Pod *>(m_malloc(sizeof(Pod)));
    *pod = {size, m_malloc(size), nullptr};
    return pod;
}

// Takes out of the free list the first pod of `size` bytes, cut to that size, or the largest one, grown to
// it.
static Pod *takePod(size_t size, const Pod *old, Pod *&free_list) {
    Pod **place = &free_list;
    while ((*place)->size < size && (*place)->next) place = &(*place)->next;
    Pod *pod = *place;
    const bool fits = pod->size >= size;
    if (fits && pod == old) xAbort("Bug in newMem: code c");
    if (!fits && pod == free_list && old && pod != old) xAbort("Bug in newMem: code b");
    if (pod->size != size) resizePod(pod, size);
    *place = pod->next;
    return pod;
}

void *newMem(size_t size, Pod *old, Pod *&free_list, Pod *&used_list) {
    if (old && old->size >= size) xAbort("Bug in newMem: code d");
    if (!free_list && old) xAbort("Bug in newMem: code a");
    const size_t kept = old ? old->size : 0;
    holdInterrupt();
    Pod *pod = free_list ? takePod(size, old, free_list) : makePod(size);
    if (old && pod != old) std::memcpy(pod->buffer, old->buffer, kept);
    used_list = addPodToList(pod, used_list);
    freeInterrupt();
    return pod->buffer;
}

}  // namespace vesko
