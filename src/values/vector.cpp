// Growable vectors of words. The records and their buffers go round in free lists by capacity and never back
// to the heap.
#include <bit>
#include <cassert>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "console/message.h"
#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/matrix.h"
#include "values/memory.h"
#include "values/poison.h"
#include "values/pools.h"

namespace vesko {

constexpr uint32_t n_vector_classes = 16;
constexpr uint32_t big_vector = n_vector_classes - 1;  // each with a capacity of its own
static Vector *veclib[n_vector_classes];
static uint32_t nvecs;  // vectors ever made

void initVecLib() {
    for (Vector *&list : veclib) list = nullptr;
}

// Capacity of a class below the big one.
static uint32_t classCap(uint32_t c) { return 2u << c; }

static uint32_t classFor(uint32_t n) {
    if (n <= 2) return 0;
    const uint32_t log = std::bit_width(n) - 1;
    if (log > big_vector - 1) return big_vector;
    return std::has_single_bit(n) ? log - 1 : log;
}

// ---- Making and freeing

static Vector *makeVector(uint32_t libclass, uint32_t cap) {
    holdInterrupt();
    Vector *v = static_cast<Vector *>(m_malloc(sizeof(Vector)));
    *v = {0, libclass, cap, mallocArray<void *>(cap), nullptr};
    nvecs++;
    freeInterrupt();
    return v;
}

static void widenBuffer(Vector *v, uint32_t cap) {
    holdInterrupt();
    v->data = static_cast<void **>(m_realloc(v->data, v->cap * sizeof(void *), cap * sizeof(void *)));
    v->cap = cap;
    freeInterrupt();
}

static void poisonVector(Vector *v) {
    poison(v->data, v->cap * sizeof(void *));
    poisonKeepingBytes(v, sizeof(Vector));
}

static void unpoisonVector(Vector *v) {
    unpoison(v, sizeof(Vector));
    unpoison(v->data, v->cap * sizeof(void *));
}

Vector *newVector(uint32_t n) {
    const uint32_t c = classFor(n);
    Vector *v = veclib[c];
    if (!v) return makeVector(c, c == big_vector ? n : classCap(c));
    unpoisonVector(v);
    veclib[c] = v->next;
    v->next = nullptr;
    v->size = 0;
    if (v->cap < n) widenBuffer(v, n);
    return v;
}

static void recycleVector(Vector *v) {
    Vector *&list = veclib[v->libclass];
    v->next = list;
    orderStores();
    list = v;
    poisonVector(v);
}

void emptyVector(Vector *v, FreeEntryFn f) {
    const uint32_t n = v->size;
    v->size = 0;
    if (f)
        for (uint32_t i = 0; i < n; i++) f(v->data[i]);
}

void freeVector(Vector *v, FreeEntryFn f) {
    if (!v) return;
    holdInterrupt();
    emptyVector(v, f);
    recycleVector(v);
    freeInterrupt();
}

void releaseEntry(void *mat) { ucReleaseMat(static_cast<Matrix *>(mat)); }

// ---- Growth: the record keeps its address and changes contents with a larger one.

static void moveToLarger(Vector *v, uint32_t n, uint32_t used) {
    Vector *larger = newVector(n);
    std::memcpy(larger->data, v->data, used * sizeof(void *));
    holdInterrupt();
    larger->size = v->size;
    std::swap(*v, *larger);
    recycleVector(larger);
    freeInterrupt();
}

void reserveElement(Vector *v) {
    if (v->size == v->cap) moveToLarger(v, 2 * v->cap, v->size);
}

uint32_t addElement(Vector *v, void *e) {
    reserveElement(v);
    v->data[v->size] = e;
    return v->size++;
}

void extendVectorBuffer(Vector *v, uint32_t n, uint32_t used) {
    if (v->libclass == big_vector) {
        if (n > v->cap) widenBuffer(v, n);
    } else if (classFor(n) > v->libclass) {
        moveToLarger(v, n, used);
    }
}

// ---- Entries

void removeElementAt(Vector *v, uint32_t i) {
    assert(i < v->size);
    v->data[i] = v->data[v->size - 1];
    v->size--;
}

bool removeElement(Vector *v, void *e) {
    for (uint32_t i = 0; i < v->size; i++) {
        if (v->data[i] != e) continue;
        removeElementAt(v, i);
        return true;
    }
    return false;
}

void removeElement_order_preserved(Vector *v, uint32_t i) {
    assert(i < v->size);
    std::memmove(v->data + i, v->data + i + 1, (v->size - i - 1) * sizeof(void *));
    v->size--;
}

void *getTail(const Vector *v) { return v->size ? v->data[v->size - 1] : nullptr; }

void vector_swap(Vector *v, uint32_t i, uint32_t j) { std::swap(v->data[i], v->data[j]); }

// ---- Vectors of values

uint32_t appendMatVecEntry(Vector *v, Matrix *m) {
    reserveElement(v);
    linkMat(m);
    return addElement(v, m);
}

void updateMatVecEntry(Vector *v, uint32_t i, Matrix *m) {
    assert(i < v->size);
    Matrix *old = v->matAt(i);
    linkMat(m);
    v->data[i] = m;
    ucReleaseMat(old);
}

void copyMatVec(Vector *dst, const Vector *src) {
    for (uint32_t i = 0; i < src->size; i++) appendMatVecEntry(dst, src->matAt(i));
}

static Matrix *newListOf(std::initializer_list<Matrix *> values) {
    Matrix *list = newVListMat(static_cast<uint32_t>(values.size()));
    for (Matrix *m : values) addListEntry(list, m);
    return list;
}

Matrix *makeBiMatVec(Matrix *a, Matrix *b) { return newListOf({a, b}); }
Matrix *makeTriMatVec(Matrix *a, Matrix *b, Matrix *c) { return newListOf({a, b, c}); }
Matrix *makeQuadMatVec(Matrix *a, Matrix *b, Matrix *c, Matrix *d) { return newListOf({a, b, c, d}); }

void addListEntry(Matrix *list, Matrix *m) {
    assert(isList(list->l2type) && list->length < list->ncols);
    linkMat(m);
    list->entries()[list->length] = m;
    orderStores();
    list->length++;
}

// ---- The report of the free lists

static uint32_t countFree(const Vector *v) {
    uint32_t n = 0;
    while (v) {
        unpoison(const_cast<Vector *>(v), sizeof(Vector));
        const Vector *next = v->next;
        poisonKeepingBytes(const_cast<Vector *>(v), sizeof(Vector));
        v = next;
        n++;
    }
    return n;
}

void print_vector_list_sizes() {
    xOpenLine(0, "vectors: total = %u", nvecs);
    for (uint32_t c = 0; c < n_vector_classes; c++)
        xCloseLine(0, "veclib %u: free = %u", c, countFree(veclib[c]));
}

}  // namespace vesko
