// What a thread keeps of the items that it frees. Every block of this program is counted.

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include "vx/List.h"

namespace {

std::atomic<size_t> sAllocations(0);
std::atomic<size_t> sBlocks(0);  // alive

void Fill(vxList<void*>& aList, size_t aCount) {
    for (size_t i = 0; i < aCount; ++i) {
        aList.push_back(NULL);
    }
}

// Runs in a thread of its own, which keeps nothing yet.
template <typename Body>
void RunAlone(Body aBody) {
    std::thread theThread(aBody);
    theThread.join();
}

// Larger than any block that is kept.
struct Large {
    char mBytes[100] = {};
};

}  // namespace

void* operator new(size_t aSize) {
    ++sAllocations;
    ++sBlocks;
    void* theBlock = malloc(aSize);
    return theBlock != NULL ? theBlock : (abort(), theBlock);
}

void operator delete(void* aBlock) noexcept {
    sBlocks -= aBlock != NULL;
    free(aBlock);
}

void operator delete(void* aBlock, size_t) noexcept {
    operator delete(aBlock);
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kKeeps = false;  // the sanitizer sees every block freed
#else
constexpr bool kKeeps = true;
#endif

TEST(ListMemoryTest, FreedItemsBecomeTheNextOnesOfTheirThread) {
    RunAlone([] {
        vxList<void*> theList;
        Fill(theList, 100);
        theList.erase();
        const size_t theAllocations = sAllocations;
        Fill(theList, 100);
        EXPECT_EQ(sAllocations - theAllocations, kKeeps ? 0u : 100u);
        Fill(theList, 1);
        EXPECT_EQ(sAllocations - theAllocations, kKeeps ? 1u : 101u);
    });
}

TEST(ListMemoryTest, ThreadKeepsAtMost32KBOfOneSize) {
    RunAlone([] {
        vxList<void*> theList;
        const size_t theBlocks = sBlocks;
        Fill(theList, 5000);
        EXPECT_EQ(sBlocks - theBlocks, 5000u);
        theList.erase();
        const size_t theItemSize = sizeof(vxListItem<void*>);  // 32 bytes, on 32-bit systems 16
        EXPECT_EQ(sBlocks - theBlocks, kKeeps ? 32 * 1024 / theItemSize : 0u);
    });
}

TEST(ListMemoryTest, ThreadGivesEverythingBackWhenItEnds) {
    RunAlone([] {});
    const size_t theBlocks = sBlocks;
    RunAlone([] {
        vxList<void*> theList;
        Fill(theList, 100);
    });
    EXPECT_EQ(sBlocks, theBlocks);
}

TEST(ListMemoryTest, ItemsMayBeFreedByAnotherThread) {
    vxList<void*> theList;
    RunAlone([&theList] { Fill(theList, 100); });
    EXPECT_EQ(theList.size(), 100u);
    RunAlone([&theList] { theList.erase(); });
    Fill(theList, 3);
    EXPECT_EQ(theList.size(), 3u);
}

TEST(ListMemoryTest, LargeItemsAreNotKept) {
    RunAlone([] {
        vxList<Large> theList;
        const size_t theBlocks = sBlocks;
        theList.push_back(Large());
        EXPECT_EQ(sBlocks - theBlocks, 1u);
        theList.erase();
        EXPECT_EQ(sBlocks, theBlocks);
    });
}

TEST(ListMemoryTest, ListsThatOutliveTheKeeperOfTheirThreadAreFreed) {
    RunAlone([] {});
    const size_t theBlocks = sBlocks;
    RunAlone([] {
        static thread_local vxList<void*> sList;  // made first, so destroyed after the keeper
        Fill(sList, 10);
        sList.pop_front();
    });
    EXPECT_EQ(sBlocks, theBlocks);
}
