// Small blocks, liveness cells, pods.
#include <cstring>
#include <set>

#include "house.h"
#include "values/memory.h"

namespace vesko {
namespace {

class Blocks : public House {};

TEST_F(Blocks, BlockGivenBackIsNextOfItsStock) {
    void *p = newMemBlock(17);
    recycleMemBlock(p, 17);
    EXPECT_NE(newMemBlock(16), p);
    EXPECT_EQ(newMemBlock(32), p);
    recycleMemBlock(p, 32);
}

TEST_F(Blocks, BlocksOfAStockDoNotOverlap) {
    std::set<char *> blocks;
    for (int i = 0; i < 200; i++) blocks.insert(static_cast<char *>(newMemBlock(72)));
    const char *last = nullptr;
    for (char *p : blocks) {
        if (last) {
            EXPECT_GE(p - last, 72);
        }
        last = p;
    }
    for (char *p : blocks) recycleMemBlock(p, 72);
}

TEST_F(Blocks, LargerBlockEndsTheCommand) {
    recycleMemBlock(newMemBlock(128), 128);
    EXPECT_ABORT(newMemBlock(129));
}

TEST_F(Blocks, CounterFollowsWhatIsGivenOut) {
    const int32_t before = get_total_mem_allocated();
    void *p = m_malloc(1000);
    p = m_realloc(p, 1000, 3000);
    EXPECT_EQ(get_total_mem_allocated(), before + 3000);
    m_free(p, 3000);
    EXPECT_EQ(get_total_mem_allocated(), before);
}

TEST_F(Blocks, RefusedRequestEndsTheCommand) { EXPECT_ABORT(m_malloc(size_t{1} << 50)); }

TEST_F(Blocks, CellsOfDeadFramesAreHandedOutAgain) {
    std::set<uint32_t *> alive;
    for (int i = 0; i < 5000; i++) {
        uint32_t *cell = newStatus_p();
        ASSERT_EQ(*cell, 0u);
        ASSERT_EQ(alive.count(cell), 0u);
        if (i % 50 == 0) {
            *cell = 3;
            alive.insert(cell);
        } else {
            *cell = 0;
        }
    }
    for (uint32_t *cell : alive) {
        EXPECT_EQ(*cell, 3u);
        *cell = 0;
    }
}

// ---- Pods

Pod *podOf(size_t size, Pod *list) {
    Pod *pod = static_cast<Pod *>(m_malloc(sizeof(Pod)));
    *pod = {size, m_malloc(size), nullptr};
    return addPodToList(pod, list);
}

TEST_F(Blocks, PodsStayInOrderOfSize) {
    Pod *a = podOf(10, podOf(30, podOf(20, nullptr))), *b = podOf(20, podOf(5, nullptr));
    Pod *second = a->next;
    a = mergeMemPods(a, b);
    const size_t sizes[] = {5, 10, 20, 20, 30};
    for (size_t size : sizes) {
        EXPECT_EQ(a->size, size);
        if (a->size == 20 && a->next->size == 20) {
            EXPECT_EQ(a, second);  // of equals the first list's comes first
        }
        a = a->next;
    }
    EXPECT_EQ(a, nullptr);
}

TEST_F(Blocks, FirstPodThatIsLargeEnoughServes) {
    Pod *free = podOf(10, podOf(40, podOf(80, nullptr))), *used = nullptr;
    Pod *middle = free->next;
    void *p = newMem(30, nullptr, free, used);
    EXPECT_EQ(used, middle);
    EXPECT_EQ(used->buffer, p);
    EXPECT_EQ(used->size, 30u);
    EXPECT_EQ(free->next->size, 80u);
}

TEST_F(Blocks, LargestPodGrowsAndTakesTheOldBytes) {
    Pod *free = podOf(4, podOf(8, nullptr)), *used = nullptr;
    Pod *old = podOf(5, nullptr);
    std::memcpy(old->buffer, "abcd", 5);
    void *p = newMem(100, old, free, used);
    EXPECT_STREQ(static_cast<char *>(p), "abcd");
    EXPECT_EQ(used->size, 100u);
    EXPECT_EQ(free->next, nullptr);
}

TEST_F(Blocks, PodsThatCannotBeMeantEndTheCommand) {
    Pod *none = nullptr, *used = nullptr, *old = podOf(8, nullptr);
    EXPECT_ABORT(newMem(100, old, none, used));  // code a
    Pod *one = podOf(4, nullptr);
    EXPECT_ABORT(newMem(100, old, one, used));  // code b
    EXPECT_ABORT(newMem(8, old, one, used));    // code d
}

}  // namespace
}  // namespace vesko
