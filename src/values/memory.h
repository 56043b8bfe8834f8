// Memory of the interpreter: the counting heap layer, the stocks of small blocks, the liveness cells of
// frames, the pods of parse-time memory, and the care of the record pools.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vesko {

struct Matrix;
struct Variable;
enum class L2 : uint8_t;

// ---- Heap layer. The caller remembers sizes; get_total_mem_allocated counts what is given out. A caller of
// m_realloc or m_free whose pointer outlives the call holds the interrupt until the pointer is stored.
void *i_malloc(size_t size);  // start-up only: a refusal ends the process
void *m_malloc(size_t size);  // a refusal ends the command
void *m_realloc(void *p, size_t old_size, size_t new_size);
void m_free(void *p, size_t size);
char *strClone(const char *s);  // plain malloc, not counted
int32_t get_total_mem_allocated();
[[noreturn]] void refuseMemory(uint64_t size);  // what a request that cannot be met ends in

template <class T>
T *mallocArray(size_t n) {
    return static_cast<T *>(m_malloc(n * sizeof(T)));
}

// ---- Small blocks: four stocks; larger requests end the command. Give the same size back.
void *newMemBlock(size_t size);
void recycleMemBlock(void *p, size_t size);
template <class T>
T *newBlock() {
    return static_cast<T *>(newMemBlock(sizeof(T)));
}
template <class T>
void recycleBlock(T *p) {
    recycleMemBlock(p, sizeof(T));
}
void initmbvec();

// ---- Liveness cells. A cell with value 0 is free; see takeVarAddr.
uint32_t *newStatus_p();

// Payload of a VARADDR value: a block. The cell counts 2 for each address; bit 0 says that the frame lives.
struct VarAddr {
    Variable *var;
    uint32_t *cell;
};

// ---- Pods: parse-time memory, recycled as whole lists sorted by size.
struct Pod {
    size_t size;
    void *buffer;
    Pod *next;
};
// Memory of `size` bytes from the free list, moved to the used list. `old`, when given, is the pod that the
// new one replaces: its bytes are copied.
void *newMem(size_t size, Pod *old, Pod *&free_list, Pod *&used_list);
Pod *addPodToList(Pod *pod, Pod *list);
Pod *mergeMemPods(Pod *a, Pod *b);

// ---- Record pools.
void initMatLib();  // pools and singletons; once, at start
// Releases every temporary that was handed out, or became one, since the last sweep.
void cleanTempMats();
void clearStackTempMats(int32_t depth);
// What else is freed with a value of the kind, told by the room that owns its payload. The record itself and,
// in the real pool, its tags are looked after by the pools.
using PayloadFreeFn = void (*)(Matrix *);
void setPayloadFree(L2 kind, PayloadFreeFn free_payload);
void printMatBuffInfo();
// More room for a general record that is being extended to n bytes: m itself, or a kept bigger record into
// which the caller copies. Doubles, so that repeated extension is linear.
Matrix *realloc_big_gmat(Matrix *m, size_t n);
Matrix *realloc_big_real_mat(Matrix *m, size_t n);

}  // namespace vesko
