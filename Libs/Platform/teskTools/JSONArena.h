#pragma once

// Where the nodes of one reading, decoding or cloning come from.
//
// Cells are cut one behind the other from slabs of at most 16 KB, in the order of the walk, so a
// tree that was read is walked along memory. Nodes that a program makes one by one are heap blocks
// instead, so a tree that is edited for long does not hold on to slabs.

#include "JSONCells.h"

constexpr size_t kvxSlabMin = 128;
constexpr size_t kvxSlabMax = 16384 - 16;  // with malloc's own words a round block
constexpr size_t kvxSlabLargestCell = 4096;

static_assert((kvxSlabMax >> 3) <= kvxOffsetMask, "each cell's offset fits its bits");

class vxJSONArena {
public:
    /// `aFirstSize` is the size of the first slab in bytes; each is twice the one before. Where the
    /// nodes will surely take no more than `aLimit` in all, the slabs do not either.
    explicit vxJSONArena(size_t aFirstSize, size_t aLimit = SIZE_MAX)
        : mPos(nullptr),
          mLeft(0),
          mSlab(nullptr),
          mLive(0),
          mNextSize(vxClamp(aFirstSize)),
          mLimit(aLimit) {}
    ~vxJSONArena() { Seal(); }
    vxJSONArena(const vxJSONArena&) = delete;
    vxJSONArena& operator=(const vxJSONArena&) = delete;

    /// Returns an unlinked node of value 0 with `anExtra` bytes behind its two words; null when
    /// memory is out.
    vxJSON_t* NewNode(vxJSONKind aKind, vxJSONPlace aPlace, size_t anExtra) {
        const size_t theSize = (sizeof(vxJSON_t) + anExtra + 7) & ~size_t{7};
        if (theSize > mLeft && !NextSlab(theSize)) {
            return NewBlock(aKind, aPlace, theSize);
        }
        vxJSON_t* theNode = reinterpret_cast<vxJSON_t*>(mPos);
        const uint64_t theOffset =
            static_cast<uint64_t>(mPos - reinterpret_cast<char*>(mSlab)) >> 3;
        theNode->mHead = vxHead(aKind, aPlace) | (theOffset << kvxOffsetShift);
        theNode->mValue = 0;
        mPos += theSize;
        mLeft -= theSize;
        ++mLive;
        return theNode;
    }

    /// Lets the nodes made so far be freed; more can still be made.
    void Seal() {
        if (mSlab == nullptr) {
            return;
        }
        __atomic_store_n(&mSlab->mLive, mLive, __ATOMIC_RELAXED);
        if (mLive == 0) {
            free(mSlab);
        }
        mSlab = nullptr;
        mLeft = 0;
        mLive = 0;
    }

private:
    static size_t vxClamp(size_t aSize) {
        return aSize < kvxSlabMin ? kvxSlabMin : aSize > kvxSlabMax ? kvxSlabMax : aSize;
    }

    static uint64_t vxHead(vxJSONKind aKind, vxJSONPlace aPlace) {
        return static_cast<uint64_t>(aKind) | (static_cast<uint64_t>(aPlace) << kvxPlaceShift);
    }

    __attribute__((noinline)) bool NextSlab(size_t aSize) {
#ifdef VX_JSON_PLAIN_CELLS
        static_cast<void>(aSize);
        return false;
#else
        if (aSize > kvxSlabLargestCell) {
            return false;
        }
        Seal();
        const size_t theNeed = aSize + sizeof(vxJSONSlab);
        const size_t theWish = mNextSize < mLimit ? mNextSize : mLimit;
        const size_t theSize = theWish < theNeed ? theNeed : theWish;
        mSlab = static_cast<vxJSONSlab*>(vxMalloc(theSize));
        if (mSlab == nullptr) {
            return false;
        }
        mPos = reinterpret_cast<char*>(mSlab + 1);
        mLeft = theSize - sizeof(vxJSONSlab);
        mNextSize = vxClamp(2 * mNextSize);
        mLimit -= theSize < mLimit ? theSize : mLimit;
        return true;
#endif
    }

    __attribute__((noinline)) vxJSON_t* NewBlock(vxJSONKind aKind, vxJSONPlace aPlace,
                                                 size_t aSize) {
        vxJSON_t* theNode = static_cast<vxJSON_t*>(vxMalloc(aSize));
        if (theNode != nullptr) {
            theNode->mHead = vxHead(aKind, aPlace);
            theNode->mValue = 0;
        }
        return theNode;
    }

    char* mPos;                      // next cell
    size_t mLeft;                    // bytes from there to the slab's end
    vxJSONSlab* mSlab;               // null: none is open
    uint32_t mLive;                  // cells cut from it
    size_t mNextSize;                // of the next slab
    [[maybe_unused]] size_t mLimit;  // bytes that slabs may still take
};

/// Collects the children of the container that is being filled.
struct vxJSONRing {
    vxJSON_t* mContainer;
    vxJSON_t* mFirst;
    vxJSON_t* mLast;
    uint32_t mCount;

    void Append(vxJSON_t* aNode) {
        if (mLast == nullptr) {
            mFirst = aNode;
        } else {
            vxSetNext(mLast, aNode);
        }
        mLast = aNode;
        ++mCount;
    }

    /// Closes the ring and gives it to its container.
    void Close() const {
        if (mLast != nullptr) {
            vxSetNext(mLast, mFirst);
            vxSetChildren(mContainer, mLast, mCount);
        }
    }
};
