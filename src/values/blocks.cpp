// Small blocks, in four stocks that never go back to the heap, and the liveness cells of frames.
#include <algorithm>
#include <cassert>
#include <utility>

#include "console/command.h"
#include "console/message.h"
#include "engine/interrupt.h"
#include "values/memory.h"
#include "values/poison.h"
#include "values/pools.h"

namespace vesko {

namespace {

// A free block begins with the address of the next one.
struct FreeBlock {
    FreeBlock *next;
};

struct Stock {
    size_t size;
    FreeBlock *free;
};

Stock stocks[] = {{16, nullptr}, {32, nullptr}, {72, nullptr}, {128, nullptr}};
constexpr unsigned blocks_a_time = 32;

Stock &stockFor(size_t size) {
    for (Stock &s : stocks)
        if (size <= s.size) return s;
    xMesg("requested mem block size=%u", static_cast<unsigned>(size));
    xAbort("error: requested mem block size too big");
}

void pushBlock(Stock &stock, void *p) {
    FreeBlock *block = static_cast<FreeBlock *>(p);
    block->next = stock.free;
    orderStores();
    stock.free = block;
    poisonKeepingBytes(p, stock.size);
}

void refillStock(Stock &stock) {
    holdInterrupt();
    char *p = static_cast<char *>(m_malloc(blocks_a_time * stock.size));
    for (unsigned i = blocks_a_time; i-- > 0;) pushBlock(stock, p + i * stock.size);
    freeInterrupt();
}

}  // namespace

void *newMemBlock(size_t size) {
    Stock &stock = stockFor(size);
    if (!stock.free) refillStock(stock);
    FreeBlock *block = stock.free;
    unpoison(block, stock.size);
    stock.free = block->next;
    return block;
}

void recycleMemBlock(void *p, size_t size) {
    Stock &stock = stockFor(size);
    poison(p, stock.size);
    unpoison(p, sizeof(FreeBlock));
    pushBlock(stock, p);
}

// ---- Liveness cells: those in use stand before spvec_front, with some that have come free since.

static uint32_t **spvec;
static uint32_t spvec_cap, spvec_front;
constexpr uint32_t first_cells = 256;

static void addCells() {
    const uint32_t n = spvec_cap ? spvec_cap : first_cells;
    holdInterrupt();
    spvec = static_cast<uint32_t **>(
        m_realloc(spvec, spvec_cap * sizeof(uint32_t *), (spvec_cap + n) * sizeof(uint32_t *)));
    uint32_t *cells = mallocArray<uint32_t>(n);
    std::fill_n(cells, n, 0u);
    for (uint32_t i = 0; i < n; i++) spvec[spvec_cap + i] = cells + i;
    spvec_cap += n;
    freeInterrupt();
}

// Brings the cells in use to the front.
static void regenerate_spvec() {
    uint32_t low = 0, high = spvec_front;
    for (;;) {
        while (low < high && *spvec[low] != 0) low++;
        while (low < high && *spvec[high - 1] == 0) high--;
        if (low == high) break;
        std::swap(spvec[low], spvec[high - 1]);
    }
    spvec_front = low;
}

uint32_t *newStatus_p() {
    if (spvec_front == spvec_cap) {
        regenerate_spvec();
        if (spvec_front == spvec_cap) addCells();
    }
    return spvec[spvec_front++];
}

void initmbvec() {
    for (Stock &stock : stocks) refillStock(stock);
    addCells();
}

}  // namespace vesko
