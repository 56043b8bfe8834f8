// The record pools: free stacks, slabs, and the log that the sweep walks. Hot paths take and give scalars
// here without a call.
//
// An interrupt may jump out between any two stores. The order of the stores makes a record that is caught
// half-way lost for the pool, but never free and in use at once.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "engine/frame.h"
#include "values/matrix.h"
#include "values/poison.h"

namespace vesko {

// A stretch of memory that holds records, each with its buffer behind it.
struct Slab {
    Slab *next;
    uint32_t carved;  // records made
    uint32_t room;    // records that fit
};
constexpr size_t slab_header = 64;

struct PoolClass {
    Matrix **free_stack;
    uint32_t nfree;     // entries of the stack
    uint32_t uncarved;  // free records that no slab holds yet
    uint32_t total;     // all records of the class, carved or not
    uint32_t capacity;  // of each buffer, in units; 0: the buffer is apart and grows to fit
    uint32_t unit;      // bytes of a unit
    uint32_t offset;    // of the buffer in the cell
    size_t cell;        // bytes of a record with its buffer
    Slab *slabs;        // newest first
    Matrix blank;       // what a new record looks like

    uint32_t freeCount() const { return nfree + uncarved; }
    bool isBig() const { return capacity == 0 && unit != 0; }
    size_t bufferBytes() const { return size_t{capacity} * unit; }
    Matrix *recordAt(Slab *slab, uint32_t i) const {
        return reinterpret_cast<Matrix *>(reinterpret_cast<char *>(slab) + slab_header + i * cell);
    }
};

constexpr unsigned n_pool_classes = 11;
constexpr unsigned big_class = n_pool_classes - 1;
extern PoolClass real_pool[n_pool_classes];
extern PoolClass general_pool[n_pool_classes];
extern PoolClass plain_pool;  // records without a buffer: the pf pool

// Class of a real record of n elements, n > 0, and of a general record of n bytes.
inline unsigned realClassOf(uint32_t n) {
    unsigned k = (std::bit_width(n - 1) + 1u) / 2;
    return k < big_class ? k : big_class;
}
inline unsigned generalClassOf(size_t n) {
    unsigned bits = n ? std::bit_width(n - 1) : 0;
    if (bits <= 4) return 0;
    return bits - 4 < big_class ? bits - 4 : big_class;
}

// ---- The log of records that were handed out, or became temporaries, since the last sweep. A record stands
// in it once an epoch; it has room for every record of the pools.
extern Matrix **sweep_log;
extern uint32_t sweep_log_size;

inline void noteForSweep(Matrix *m) {
    if (m->epoch == sweep_epoch) return;
    sweep_log[sweep_log_size] = m;
    orderStores();
    sweep_log_size++;
    orderStores();
    m->epoch = sweep_epoch;
}
// Room for n more records. May end the command.
void reserveSweepLog(uint32_t n);

// ---- Taking and giving.
void refillPool(PoolClass &pool);  // puts at least one record on the free stack; may end the command
void reportActiveRecord(const PoolClass &pool, Matrix *m);

#ifdef VESKO_CHECK
void poisonRecord(const PoolClass &pool, Matrix *m);
void unpoisonRecord(const PoolClass &pool, Matrix *m);
#else
inline void poisonRecord(const PoolClass &, Matrix *) {}
inline void unpoisonRecord(const PoolClass &, Matrix *) {}
#endif

inline void markInUse(Matrix *m) {
    m->status |= status_temporary;
    m->depth = depth;
    noteForSweep(m);
}

inline Matrix *takeRecord(PoolClass &pool) {
    if (pool.nfree == 0) [[unlikely]]
        refillPool(pool);
    uint32_t n = pool.nfree - 1;
    Matrix *m = pool.free_stack[n];
    pool.nfree = n;
    orderStores();
    unpoisonRecord(pool, m);
    if (m->status != status_free) [[unlikely]]
        reportActiveRecord(pool, m);
    markInUse(m);
    return m;
}

inline void giveRecord(PoolClass &pool, Matrix *m) {
    m->status = status_free;
    orderStores();
    pool.free_stack[pool.nfree] = m;
    orderStores();
    pool.nfree++;
    poisonRecord(pool, m);
}

// ---- Scalars without a call: the inline bodies of newRealScalarMat, newIntScalarMat, and of releasing the
// former.
inline Matrix *makeRealScalar(double x) {
    Matrix *m = takeRecord(real_pool[0]);
    *m->rdata = x;
    return m;
}
inline Matrix *makeIntScalar(int32_t x) {
    Matrix *m = takeRecord(general_pool[0]);
    m->l1type = L1::IS;
    m->l2type = L2::IS;
    m->nrows = m->ncols = m->length = 1;
    *m->ints() = x;
    return m;
}
// Finished with m, which is a real scalar.
inline void releaseRealScalar(Matrix *m) {
    if (m->status == status_temporary) giveRecord(real_pool[0], m);
}

// Calls f on each record that was ever made, free or not.
template <class F>
void forEachRecord(const PoolClass &pool, F f) {
    for (Slab *s = pool.slabs; s; s = s->next)
        for (uint32_t i = 0; i < s->carved; i++) f(pool.recordAt(s, i));
}
template <class F>
void forEachPool(F f) {
    for (PoolClass &pool : real_pool) f(pool);
    for (PoolClass &pool : general_pool) f(pool);
    f(plain_pool);
}

}  // namespace vesko
