// What each thread keeps: a count of cells that it freed, and a few single nodes.

#include "JSONCells.h"

#include <cstdlib>

namespace {

[[maybe_unused]] constexpr uint32_t kvxMaxKept = 32;
constexpr size_t kvxSingleSize = sizeof(vxJSON_t) + sizeof(const char*);

enum vxThreadState : uint32_t { kUnused, kInUse, kEnded };

/// What a thread keeps; plain, so that reaching it costs no call.
struct vxThreadCells {
    vxJSONSlab* mSlab;  // null: no cells are counted
    uint32_t mFreed;    // cells of mSlab that are gone but still counted as live
    vxThreadState mState;
    vxJSON_t* mKept;  // linked by their first words
    uint32_t mKeptCount;
};

#ifdef __linux__
__attribute__((tls_model("initial-exec")))
#endif
thread_local vxThreadCells sCells = {};

void vxTakeOff(vxJSONSlab* aSlab, uint32_t aCount) {
    if (__atomic_fetch_sub(&aSlab->mLive, aCount, __ATOMIC_ACQ_REL) == aCount) {
        free(aSlab);
    }
}

void vxFlush() {
    if (sCells.mSlab != nullptr) {
        vxTakeOff(sCells.mSlab, sCells.mFreed);
    }
    sCells.mSlab = nullptr;
    sCells.mFreed = 0;
}

/// Gives back what a thread kept when it ends.
struct vxThreadEnd {
    ~vxThreadEnd() {
        sCells.mState = kEnded;
        vxFlush();
        while (sCells.mKept != nullptr) {
            vxJSON_t* theNode = sCells.mKept;
            sCells.mKept = vxNext(theNode);
            free(theNode);
        }
    }
};

/// Tells whether this thread may keep anything: until its end.
bool vxMayKeep() {
    if (sCells.mState == kUnused) {
        static thread_local vxThreadEnd sEnd;
        static_cast<void>(&sEnd);
        sCells.mState = kInUse;
    }
    return sCells.mState == kInUse;
}

/// Single nodes that hold no text all have the room that another one needs.
bool vxIsKept(const vxJSON_t* aNode) {
#ifdef VX_JSON_PLAIN_CELLS
    static_cast<void>(aNode);
    return false;
#else
    return vxPlace(aNode) == vxJSONPlace::kSlot && vxKind(aNode) != vxJSONKind::kString &&
           sCells.mKeptCount < kvxMaxKept && vxMayKeep();
#endif
}

void vxFreeBlock(vxJSON_t* aNode) {
    if (!vxIsKept(aNode)) {
        free(aNode);
        return;
    }
    aNode->mHead = vxWord(sCells.mKept);
    sCells.mKept = aNode;
    ++sCells.mKeptCount;
}

}  // namespace

void vxFreeCell(vxJSON_t* aNode) {
    const uint64_t theOffset = (aNode->mHead >> kvxOffsetShift) & kvxOffsetMask;
    if (theOffset == 0) {
        vxFreeBlock(aNode);
        return;
    }
    vxJSONSlab* theSlab = reinterpret_cast<vxJSONSlab*>(reinterpret_cast<char*>(aNode) -
                                                        (static_cast<size_t>(theOffset) << 3));
    if (theSlab != sCells.mSlab) {
        vxFlush();
        if (!vxMayKeep()) {
            vxTakeOff(theSlab, 1);
            return;
        }
        sCells.mSlab = theSlab;
    }
    ++sCells.mFreed;
    // Who has freed every cell that still counts is alone with the slab.
    if (__atomic_load_n(&theSlab->mLive, __ATOMIC_ACQUIRE) == sCells.mFreed) {
        free(theSlab);
        sCells.mSlab = nullptr;
        sCells.mFreed = 0;
    }
}

vxJSON_t* vxNewSingleCell() {
    vxJSON_t* theNode = sCells.mKept;
    if (theNode == nullptr) {
        return static_cast<vxJSON_t*>(vxMalloc(kvxSingleSize));
    }
    sCells.mKept = vxNext(theNode);
    --sCells.mKeptCount;
    return theNode;
}
