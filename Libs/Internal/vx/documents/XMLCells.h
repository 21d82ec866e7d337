#pragma once

// Where the nodes and attributes of one reading or copying come from.
//
// Cells are cut one behind the other from slabs, so that a tree is made, walked and freed along memory.
// A cell begins with the address of its slab. What it holds follows, and so stands at an address that
// no allocation gives, for that would be aligned for every type: by this whoever frees a node tells
// cells from the blocks of nodes that a program makes one by one. A slab goes with the last of its
// cells, in whichever thread.

#include <libteskTools/Memory.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

// Under a sanitizer each cell is a heap block, so that leaks and overruns show.
#if defined(__SANITIZE_ADDRESS__)
#define VX_XML_PLAIN_CELLS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VX_XML_PLAIN_CELLS 1
#endif
#endif

constexpr size_t kvxXMLCell_Alignment = alignof(std::max_align_t);
static_assert(sizeof(void*) % kvxXMLCell_Alignment != 0, "a cell can be told from a block");

struct vxXMLSlab {
    std::atomic<uint32_t> mLive;  // cells in use, and kOpen while more are cut from it

    static constexpr uint32_t kOpen = 0x80000000U;

    /// Takes so many off the count.
    void Drop(uint32_t aCount) {
        if (mLive.fetch_sub(aCount, std::memory_order_acq_rel) == aCount) {
            free(this);
        }
    }
};

/// Makes objects in cells.
class vxXMLArena {
public:
    /// The first slab has about `aFirstSize` bytes, each further one twice those of the one before.
    explicit vxXMLArena(size_t aFirstSize) : mNextSize(std::clamp(aFirstSize, kMin, kMax)) {}
    ~vxXMLArena() { Close(); }
    vxXMLArena(const vxXMLArena&) = delete;
    vxXMLArena& operator=(const vxXMLArena&) = delete;

    template <typename T, typename... Args>
    T* New(Args&&... anArgs) {
        static_assert(alignof(T) <= sizeof(void*), "a cell is aligned for a pointer");
        return ::new (Cell(sizeof(T))) T(std::forward<Args>(anArgs)...);
    }

private:
    static constexpr size_t kMin = 256;
    static constexpr size_t kMax = 16384 - 2 * kvxXMLCell_Alignment;

    void* Cell(size_t aSize) {
        const size_t theSize =
            (sizeof(vxXMLSlab*) + aSize + kvxXMLCell_Alignment - 1) & ~(kvxXMLCell_Alignment - 1);
        if (theSize > mLeft && !Open()) {
            return ::operator new(aSize);
        }
        vxXMLSlab** const theCell = reinterpret_cast<vxXMLSlab**>(mPos);
        *theCell = mSlab;
        mPos += theSize;
        mLeft -= theSize;
        ++mMade;
        return theCell + 1;
    }

    __attribute__((noinline)) bool Open() {
#ifdef VX_XML_PLAIN_CELLS
        return false;
#else
        Close();
        void* const theBlock = vxMalloc(mNextSize);
        if (theBlock == NULL) {
            return false;
        }
        mSlab = ::new (theBlock) vxXMLSlab{{vxXMLSlab::kOpen}};
        constexpr size_t kHead = std::max(sizeof(vxXMLSlab), kvxXMLCell_Alignment);
        mPos = static_cast<char*>(theBlock) + kHead;
        mLeft = mNextSize - kHead;
        mNextSize = std::min(2 * mNextSize, kMax);
        return true;
#endif
    }

    void Close() {
        if (mSlab != NULL) {
            std::exchange(mSlab, nullptr)->Drop(vxXMLSlab::kOpen - std::exchange(mMade, 0));
            mLeft = 0;
        }
    }

    vxXMLSlab* mSlab = NULL;            // null: none is open
    char* mPos = NULL;                  // the next cell
    size_t mLeft = 0;                   // bytes from there to the slab's end
    uint32_t mMade = 0;                 // cells cut from it
    [[maybe_unused]] size_t mNextSize;  // of the next slab
};

/// Frees memory of objects, whose destructors have run: cells or blocks of their own. Cells of one slab
/// are counted together.
class vxXMLFreeing {
public:
    vxXMLFreeing() = default;
    ~vxXMLFreeing() { Flush(); }
    vxXMLFreeing(const vxXMLFreeing&) = delete;
    vxXMLFreeing& operator=(const vxXMLFreeing&) = delete;

    void Free(void* anObject) {
        if (reinterpret_cast<uintptr_t>(anObject) % kvxXMLCell_Alignment == 0) {
            ::operator delete(anObject);
            return;
        }
        vxXMLSlab* const theSlab = static_cast<vxXMLSlab**>(anObject)[-1];
        if (theSlab != mSlab) {
            Flush();
            mSlab = theSlab;
        }
        ++mCount;
    }

private:
    void Flush() {
        if (mSlab != NULL) {
            mSlab->Drop(std::exchange(mCount, 0));
        }
    }

    vxXMLSlab* mSlab = NULL;  // of the last cell; null before the first
    uint32_t mCount = 0;      // its cells that are to be taken off, at least one
};
