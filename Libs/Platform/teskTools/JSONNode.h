#pragma once

// The layout of a JSON node.
//
// A node is two 64-bit words, so that a tree stays small enough for the caches, and yet every node
// is a cell of its own. The first word packs the next sibling, which fits 48 bits and is a
// multiple of 8, with everything else that must be known of a node:
//
//     bits 0-2     kind
//     bits 3-47    next sibling; the last child's is the first child: the siblings form a ring
//     bits 48-58   distance from the start of the slab in units of 8; 0: the cell is a heap block
//     bits 59-60   where the name is
//     bits 61, 62  name, text is not well-formed UTF-8 (the program's own)
//
// The second word is the value: 0 or 1, a number, the address of a text, or for containers
//
//     bits 0       the rest is the address of a vxJSONBody, which holds last child and count
//     bits 1-2     costly lookups so far
//     bits 3-47    last child
//     bits 48-63   number of children
//
// Behind the words of one cell stand the name and the text of a node that was read or cloned. Texts
// have their length in front: four bytes, then the bytes, then a NUL.
//
// Parents are not kept. Walks keep the way down on a stack of their own.

#include <libteskTools/JSON.h>
#include <libteskTools/Memory.h>

#include <cstring>

#include "JSONStack.h"
#include "JSONTable.h"

struct vxJSON_t {
    uint64_t mHead;
    uint64_t mValue;
};

enum class vxJSONKind : unsigned { kNull, kBool, kUInt, kInt, kDouble, kString, kArray, kObject };

enum class vxJSONPlace : unsigned {
    kNone,    // no name, and no room for one
    kInline,  // behind the two words
    kSlot,    // in a block of its own, whose address stands behind the two words; null: no name
    kExtra,   // the value's word holds the address of a vxJSONExtra instead of the value
};

constexpr uint64_t kvxPointerMask = 0x0000FFFFFFFFFFF8u;
constexpr uint64_t kvxKindMask = 7;
constexpr unsigned kvxOffsetShift = 48;
constexpr uint64_t kvxOffsetMask = 0x7FF;
constexpr unsigned kvxPlaceShift = 59;
constexpr uint64_t kvxPlaceMask = 3;
constexpr uint64_t kvxNameIsBad = uint64_t{1} << 61;
constexpr uint64_t kvxTextIsBad = uint64_t{1} << 62;

constexpr uint64_t kvxHasBody = 1;
constexpr unsigned kvxLookupShift = 1;
constexpr uint64_t kvxLookupMask = 3;
constexpr unsigned kvxCountShift = 48;
constexpr uint32_t kvxMaxPackedCount = 0xFFFF;

/// Last child, count and tables of a container that outgrew its word.
struct vxJSONBody {
    vxJSON_t* mLast;
    uint32_t mCount;
    vxJSONTable* mTables[2];  // by vxJSONOrder; null until a lookup wants one; readers set them too
};

/// What a node gets that had no room for the name it was given.
struct vxJSONExtra {
    uint64_t mValue;
    const char* mName;  // a name block
};

/// A name shared by nodes and dictionaries; the text follows.
struct vxJSONNameBlock {
    uint32_t mOwners;  // atomic
    uint32_t mLength;
};

/// A piece of text that need not end with NUL.
struct vxJSONText {
    const char* mData;
    size_t mLength;
};

template <typename T>
inline uint64_t vxWord(const T* aPtr) {
    return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(aPtr));
}

template <typename T>
inline T* vxPointer(uint64_t aWord) {
    return reinterpret_cast<T*>(static_cast<uintptr_t>(aWord & kvxPointerMask));
}

inline uint64_t vxBits(double aValue) {
    uint64_t theBits;
    memcpy(&theBits, &aValue, sizeof(theBits));
    return theBits;
}

inline double vxFromBits(uint64_t aBits) {
    double theValue;
    memcpy(&theValue, &aBits, sizeof(theValue));
    return theValue;
}

// ---- First word

inline vxJSONKind vxKind(const vxJSON_t* aNode) {
    return static_cast<vxJSONKind>(aNode->mHead & kvxKindMask);
}

inline bool vxIsContainer(const vxJSON_t* aNode) {
    return vxKind(aNode) >= vxJSONKind::kArray;
}

inline vxJSON_t* vxNext(const vxJSON_t* aNode) {
    return vxPointer<vxJSON_t>(aNode->mHead);
}

inline void vxSetNext(vxJSON_t* aNode, const vxJSON_t* aNext) {
    aNode->mHead = (aNode->mHead & ~kvxPointerMask) | vxWord(aNext);
}

inline bool vxIsLinked(const vxJSON_t* aNode) {
    return (aNode->mHead & kvxPointerMask) != 0;
}

inline vxJSONPlace vxPlace(const vxJSON_t* aNode) {
    return static_cast<vxJSONPlace>((aNode->mHead >> kvxPlaceShift) & kvxPlaceMask);
}

inline void vxSetPlace(vxJSON_t* aNode, vxJSONPlace aPlace) {
    aNode->mHead = (aNode->mHead & ~(kvxPlaceMask << kvxPlaceShift)) |
                   (static_cast<uint64_t>(aPlace) << kvxPlaceShift);
}

// ---- Second word

inline const uint64_t* vxValueWord(const vxJSON_t* aNode) {
    return vxPlace(aNode) == vxJSONPlace::kExtra ? &vxPointer<vxJSONExtra>(aNode->mValue)->mValue
                                                 : &aNode->mValue;
}

inline uint64_t* vxValueWord(vxJSON_t* aNode) {
    return const_cast<uint64_t*>(vxValueWord(const_cast<const vxJSON_t*>(aNode)));
}

inline uint64_t vxValue(const vxJSON_t* aNode) {
    return *vxValueWord(aNode);
}

/// A container's word, which readers of the same tree may replace when they build its index.
inline uint64_t vxContainerWord(const vxJSON_t* aNode) {
    return __atomic_load_n(vxValueWord(aNode), __ATOMIC_ACQUIRE);
}

struct vxJSONChildren {
    vxJSON_t* mLast;  // null when there are none
    uint32_t mCount;
};

inline vxJSONChildren vxChildren(const vxJSON_t* aNode) {
    const uint64_t theWord = vxContainerWord(aNode);
    if ((theWord & kvxHasBody) != 0) {
        const vxJSONBody* theBody = vxPointer<vxJSONBody>(theWord);
        return {theBody->mLast, theBody->mCount};
    }
    return {vxPointer<vxJSON_t>(theWord), static_cast<uint32_t>(theWord >> kvxCountShift)};
}

/// Sets what a container holds; the ring must be closed already.
void vxSetChildren(vxJSON_t* aNode, vxJSON_t* aLast, uint32_t aCount);

// ---- Texts

extern const struct vxJSONEmptyText {
    uint32_t mLength;
    char mText[4];
} kvxEmptyText;

inline uint32_t vxLength(const char* aText) {
    uint32_t theLength;
    memcpy(&theLength, aText - sizeof(theLength), sizeof(theLength));
    return theLength;
}

inline vxJSONText vxStringText(const vxJSON_t* aNode) {
    const char* theText = reinterpret_cast<const char*>(static_cast<uintptr_t>(vxValue(aNode)));
    return {theText, vxLength(theText)};
}

/// The name of a node that has no room for one behind its words, or null.
inline const char* vxOuterName(const vxJSON_t* aNode) {
    switch (vxPlace(aNode)) {
        case vxJSONPlace::kSlot:
            return *reinterpret_cast<const char* const*>(aNode + 1);
        case vxJSONPlace::kExtra:
            return vxPointer<vxJSONExtra>(aNode->mValue)->mName;
        default:
            return nullptr;
    }
}

/// Returns the name with its length in front, or null.
inline const char* vxName(const vxJSON_t* aNode) {
    return vxPlace(aNode) == vxJSONPlace::kInline
               ? reinterpret_cast<const char*>(aNode + 1) + sizeof(uint32_t)
               : vxOuterName(aNode);
}

inline vxJSONText vxNameText(const vxJSON_t* aNode) {
    const char* theName = vxName(aNode);
    return theName == nullptr ? vxJSONText{"", 0} : vxJSONText{theName, vxLength(theName)};
}

/// Copies short texts without a call; writes and reads exactly `aLength` bytes.
inline void vxCopyText(char* aTarget, const char* aSource, size_t aLength) {
    if (aLength > 32) {
        memcpy(aTarget, aSource, aLength);
    } else if (aLength >= 16) {
        char theTail[16];
        memcpy(theTail, aSource + aLength - 16, 16);
        memcpy(aTarget, aSource, 16);
        memcpy(aTarget + aLength - 16, theTail, 16);
    } else if (aLength >= 8) {
        uint64_t theTail;
        memcpy(&theTail, aSource + aLength - 8, 8);
        memcpy(aTarget, aSource, 8);
        memcpy(aTarget + aLength - 8, &theTail, 8);
    } else if (aLength >= 4) {
        uint32_t theTail;
        memcpy(&theTail, aSource + aLength - 4, 4);
        memcpy(aTarget, aSource, 4);
        memcpy(aTarget + aLength - 4, &theTail, 4);
    } else {
        for (size_t i = 0; i < aLength; ++i) {
            aTarget[i] = aSource[i];
        }
    }
}

/// Writes length, text and NUL at `aCell` and returns the address of the text.
inline char* vxStoreText(char* aCell, const char* aText, size_t aLength) {
    const uint32_t theLength = static_cast<uint32_t>(aLength);
    memcpy(aCell, &theLength, sizeof(theLength));
    vxCopyText(aCell + sizeof(theLength), aText, aLength);
    aCell[sizeof(theLength) + aLength] = '\0';
    return aCell + sizeof(theLength);
}

/// Bytes that a stored text takes: its length, itself, the NUL, and up to the next length.
constexpr size_t vxStoredSize(size_t aLength) {
    return (sizeof(uint32_t) + aLength + 1 + 3) & ~size_t{3};
}

/// Longest text that a node can hold.
constexpr size_t kvxMaxTextLength = 0x7FFFFFF0;

/// Makes a name block with one owner; null when memory is out.
char* vxNewNameBlock(const char* aName, size_t aLength);

inline vxJSONNameBlock* vxBlockOf(const char* aName) {
    return reinterpret_cast<vxJSONNameBlock*>(const_cast<char*>(aName)) - 1;
}

inline void vxRetainName(const char* aName) {
    __atomic_fetch_add(&vxBlockOf(aName)->mOwners, 1, __ATOMIC_RELAXED);
}

/// Drops an owner; null is allowed.
void vxReleaseName(const char* aName);

// ---- Nodes

/// A heap node of its own without name, with room for a name and `aTextSize` bytes of stored text.
vxJSON_t* vxNewNode(vxJSONKind aKind, size_t aTextSize);

/// Where the stored text of a node from vxNewNode() goes.
inline char* vxTextCell(vxJSON_t* aNode) {
    return reinterpret_cast<char*>(aNode + 1) + sizeof(const char*);
}

/// Gives a node without a name the name block of one that is to go. False where either has no slot
/// for one. The other is to forget its name before it goes.
bool vxLendName(vxJSON_t* aNode, const vxJSON_t* aOther);
void vxForgetName(vxJSON_t* aNode);

/// Names a node, linked or not. False when memory is out.
bool vxRename(vxJSON_t* aNode, const char* aName, size_t aLength);
