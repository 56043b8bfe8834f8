// The record pools: carving of slabs, growth, and the report of their state.
//
// A class counts its records from the start, but makes them only when they are first asked for, a few at a
// time: start-up and short programs touch little memory.
#include "values/pools.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstdio>

#include "console/message.h"
#include "engine/interrupt.h"
#include "values/memory.h"

namespace vesko {

PoolClass real_pool[n_pool_classes];
PoolClass general_pool[n_pool_classes];
PoolClass plain_pool;

constexpr size_t slab_bytes = 64 * 1024;
constexpr size_t large_slab_bytes = 512 * 1024;
constexpr size_t large_pool_bytes = 2 << 20;  // a pool beyond it grows by large slabs
constexpr uint32_t carving_batch = 32;
constexpr size_t cache_line = 64;
constexpr size_t aligned_from = 1024;  // longer buffers begin at a cache line

// ---- Setting up

static void setUpClass(PoolClass &pool, uint32_t total, uint32_t capacity, uint32_t unit) {
    pool.total = pool.uncarved = total;
    pool.capacity = capacity;
    pool.unit = unit;
    size_t bytes = pool.bufferBytes();
    pool.offset = bytes >= aligned_from ? cache_line : sizeof(Matrix);
    pool.cell = bytes ? (pool.offset + bytes + cache_line - 1) / cache_line * cache_line : sizeof(Matrix);
    pool.free_stack = static_cast<Matrix **>(i_malloc(total * sizeof(Matrix *)));
}

static Matrix blankRecord(L1 l1, L2 l2, unsigned k, uint32_t capacity) {
    Matrix m = {};
    m.l1type = l1;
    m.l2type = l2;
    m.libidx = static_cast<uint8_t>(k);
    m.cap = capacity;
    return m;
}

void initMatLib() {
    constexpr uint32_t real_total[n_pool_classes] = {28192, 1024, 1024, 1024, 32, 16, 8, 4, 2, 2, 8};
    constexpr uint32_t general_total[n_pool_classes] = {1024, 1024, 1024, 1024, 32, 16, 8, 4, 2, 2, 2};
    constexpr uint32_t plain_total = 4096;
    uint32_t records = plain_total;
    for (unsigned k = 0; k < n_pool_classes; k++) {
        const bool big = k == big_class;
        records += real_total[k] + general_total[k];
        setUpClass(real_pool[k], real_total[k], big ? 0 : 1u << 2 * k, sizeof(double));
        setUpClass(general_pool[k], general_total[k], big ? 0 : 16u << k, 1);
        real_pool[k].blank =
            k ? blankRecord(L1::RM, L2::RM, k, real_pool[k].capacity) : blankRecord(L1::RS, L2::RS, 0, 1);
        general_pool[k].blank = blankRecord(L1::PF, L2::BY, k, general_pool[k].capacity);
    }
    Matrix &scalar = real_pool[0].blank;
    scalar.nrows = scalar.ncols = scalar.length = 1;
    setUpClass(plain_pool, plain_total, 0, 0);
    plain_pool.blank = blankRecord(L1::PF, L2::GV, 0, 0);
    plain_pool.blank.ncols = 1;
    reserveSweepLog(records);
}

// ---- Growth

// Half as many records again; the big real class gets 8 more.
static void growPool(PoolClass &pool) {
    uint32_t n = pool.total / 2 + (&pool == &real_pool[big_class] ? 8 : 0);
    reserveSweepLog(n);
    const size_t old_bytes = pool.total * sizeof(Matrix *);
    pool.free_stack =
        static_cast<Matrix **>(m_realloc(pool.free_stack, old_bytes, old_bytes + n * sizeof(Matrix *)));
    pool.total += n;
    pool.uncarved = n;
}

// The records of a large slab are all used soon: its pages come at once, in place of a fault each.
static void populate(char *begin, size_t size) {
#ifdef MADV_POPULATE_WRITE
    const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t first = (reinterpret_cast<uintptr_t>(begin) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(begin) + size) / page * page;
    if (first < end) madvise(reinterpret_cast<void *>(first), end - first, MADV_POPULATE_WRITE);
#endif
}

static void addSlab(PoolClass &pool) {
    const bool large = pool.total * pool.cell > large_pool_bytes;
    const size_t bytes = large ? large_slab_bytes : slab_bytes;
    uint32_t room = static_cast<uint32_t>(std::max(size_t{1}, bytes / pool.cell));
    room = std::min(room, pool.uncarved);
    char *raw = static_cast<char *>(m_malloc(slab_header + cache_line + room * pool.cell));
    if (large) populate(raw, slab_header + cache_line + room * pool.cell);
    size_t misplaced = reinterpret_cast<uintptr_t>(raw) % cache_line;
    Slab *slab = reinterpret_cast<Slab *>(raw + (misplaced ? cache_line - misplaced : 0));
    *slab = {pool.slabs, 0, room};
    poisonKeepingBytes(reinterpret_cast<char *>(slab) + slab_header, room * pool.cell);
    pool.slabs = slab;
}

static Matrix *carveRecord(PoolClass &pool) {
    Slab *slab = pool.slabs;
    Matrix *m = pool.recordAt(slab, slab->carved);
    unpoison(m, pool.cell);
    *m = pool.blank;
    if (pool.capacity) {
        char *buffer = reinterpret_cast<char *>(m) + pool.offset;
        if (pool.unit == sizeof(double))
            m->rdata = reinterpret_cast<double *>(buffer);
        else
            m->vdata = buffer;
    }
    slab->carved++;
    return m;
}

void refillPool(PoolClass &pool) {
    assert(pool.nfree == 0);
    holdInterrupt();
    if (pool.uncarved == 0) growPool(pool);
    if (!pool.slabs || pool.slabs->carved == pool.slabs->room) addSlab(pool);
    uint32_t n = std::min(carving_batch, pool.slabs->room - pool.slabs->carved);
    for (uint32_t i = n; i-- > 0;) {  // the first record of the slab is the top of the stack
        Matrix *m = carveRecord(pool);
        pool.free_stack[i] = m;
        poisonRecord(pool, m);
    }
    pool.nfree = n;
    pool.uncarved -= n;
    freeInterrupt();
}

#ifdef VESKO_CHECK
static void *bufferOf(const PoolClass &pool, const Matrix *m) {
    return pool.unit == sizeof(double) ? m->rdata : m->vdata;
}

void poisonRecord(const PoolClass &pool, Matrix *m) {
    if (pool.unit && m->cap) poison(bufferOf(pool, m), size_t{m->cap} * pool.unit);
    poisonKeepingBytes(m, pool.cell);
}

void unpoisonRecord(const PoolClass &pool, Matrix *m) {
    unpoison(m, pool.cell);
    if (pool.isBig() && m->cap) unpoison(bufferOf(pool, m), size_t{m->cap} * pool.unit);
}
#endif

// ---- A record on a free stack that is in use: the pool is broken. Says so, and the work goes on.
void reportActiveRecord(const PoolClass &pool, Matrix *m) {
    const void *p = m;
    if (&pool == &plain_pool)
        m->status = status_free;  // such records are cleared without a word
    else if (&pool == &real_pool[0])
        xMesg("error in allocrealmat 6: mat %p is active", p);
    else if (pool.unit == sizeof(double))
        xMesg("error in allocrealmat 5: mat %p is active, row=%u, col=%u", p, m->nrows, m->ncols);
    else
        xMesg("error in allocrealmat 1: mat %p is active, length=%u,l2type=%u, status=%u, nlinks=%u", p,
              m->length, index(m->l2type), m->status, m->nlinks());
}

// ---- The report

namespace {

struct PoolState {
    uint32_t free = 0;      // records with status 0
    uint32_t non_free = 0;  // entries of the free stack with another status
};

PoolState stateOf(const PoolClass &pool) {
    PoolState state;
    state.free = pool.uncarved;
    forEachRecord(pool, [&](Matrix *m) {
        if (isPoisoned(m) || m->status == status_free) state.free++;
    });
    for (uint32_t i = 0; i < pool.nfree; i++) {
        Matrix *m = pool.free_stack[i];
        if (!isPoisoned(m) && m->status != status_free) state.non_free++;
    }
    return state;
}

void printPool(const PoolClass &pool, const char *name, const char *number) {
    PoolState state = stateOf(pool);
    const auto show = &pool == real_pool ? xOpenLine : xCloseLine;
    show(0, "%slib%s:  total = %u,  free = %u; free%slib%s: total = %u, non-free = %u", name, number,
         pool.total, state.free, name, number, pool.freeCount(), state.non_free);
}

}  // namespace

void printMatBuffInfo() {
    char number[8];
    for (unsigned k = 0; k < 2 * n_pool_classes; k++) {
        const bool real = k < n_pool_classes;
        snprintf(number, sizeof number, " %u", k % n_pool_classes);
        printPool((real ? real_pool : general_pool)[k % n_pool_classes], real ? "mat" : "gmat", number);
    }
    printPool(plain_pool, "pmat", "");
}

}  // namespace vesko
