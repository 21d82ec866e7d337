// Deep copies and comparison.

#include <cmath>

#include <algorithm>
#include <utility>
#include <vector>

#include "JSONArena.h"

namespace {

// ---- Copying

class vxJSONCloner {
public:
    vxJSONCloner() : mArena(512), mRing{nullptr, nullptr, nullptr, 0} {}

    /// Returns the copy, or null when memory is out.
    vxJSON_t* Clone(const vxJSON_t* aNode) {
        vxJSON_t* theRoot = CopyRoot(aNode);
        const vxJSON_t* theSource = theRoot == nullptr ? nullptr : Descend(aNode, theRoot);
        while (theSource != nullptr) {
            vxJSON_t* theCopy = CopyNode(theSource);
            if (theCopy == nullptr) {
                Discard(theRoot);
                return nullptr;
            }
            mRing.Append(theCopy);
            const vxJSON_t* theFirst = Descend(theSource, theCopy);
            theSource = theFirst != nullptr ? theFirst : StepOn(theSource);
        }
        return theRoot;
    }

private:
    struct Frame {
        vxJSONRing mRing;
        const vxJSON_t* mContainer;  // of the source
        const vxJSON_t* mLast;       // its last child
    };

    /// Goes into a container that has children and returns its first; else null.
    const vxJSON_t* Descend(const vxJSON_t* aSource, vxJSON_t* aCopy) {
        if (!vxIsContainer(aSource)) {
            return nullptr;
        }
        const vxJSON_t* theLast = vxChildren(aSource).mLast;
        if (theLast == nullptr || !mFrames.Push({mRing, aSource, theLast})) {
            return nullptr;
        }
        mRing = {aCopy, nullptr, nullptr, 0};
        return vxNext(theLast);
    }

    /// Behind a node: closes containers until another node follows; null behind the last.
    const vxJSON_t* StepOn(const vxJSON_t* aSource) {
        while (!mFrames.IsEmpty()) {
            if (aSource != mFrames.Top().mLast) {
                return vxNext(aSource);
            }
            aSource = mFrames.Top().mContainer;
            Close();
        }
        return nullptr;
    }

    void Close() {
        mRing.Close();
        mRing = mFrames.Pop().mRing;
    }

    void Discard(vxJSON_t* aRoot) {
        while (!mFrames.IsEmpty()) {
            Close();
        }
        mArena.Seal();
        vxJSON_Delete(aRoot);
    }

    /// The copied root can be named like any node that a program makes.
    vxJSON_t* CopyRoot(const vxJSON_t* aNode) {
        const vxJSONText theText = TextOf(aNode);
        vxJSON_t* theCopy = vxNewNode(vxKind(aNode), vxStoredSize(theText.mLength));
        if (theCopy == nullptr) {
            return nullptr;
        }
        SetValue(theCopy, vxTextCell(theCopy), aNode, theText);
        const char* theName = vxName(aNode);
        if (theName != nullptr) {
            vxRename(theCopy, theName, vxLength(theName));
        }
        return theCopy;
    }

    vxJSON_t* CopyNode(const vxJSON_t* aNode) {
        const char* theName = vxName(aNode);
        const vxJSONText theText = TextOf(aNode);
        const size_t theNameSize = theName == nullptr ? 0 : vxStoredSize(vxLength(theName));
        const size_t theTextSize = theText.mLength == 0 ? 0 : vxStoredSize(theText.mLength);
        vxJSON_t* theCopy = mArena.NewNode(
            vxKind(aNode), theName == nullptr ? vxJSONPlace::kNone : vxJSONPlace::kInline,
            theNameSize + theTextSize);
        if (theCopy == nullptr) {
            return nullptr;
        }
        char* theCell = reinterpret_cast<char*>(theCopy + 1);
        if (theName != nullptr) {
            vxStoreText(theCell, theName, vxLength(theName));
        }
        theCopy->mHead |= aNode->mHead & kvxNameIsBad;
        SetValue(theCopy, theCell + theNameSize, aNode, theText);
        return theCopy;
    }

    static vxJSONText TextOf(const vxJSON_t* aNode) {
        return vxKind(aNode) == vxJSONKind::kString ? vxStringText(aNode) : vxJSONText{"", 0};
    }

    static void SetValue(vxJSON_t* aCopy, char* aTextCell, const vxJSON_t* aNode,
                         const vxJSONText& aText) {
        if (vxIsContainer(aNode)) {
            return;
        }
        if (vxKind(aNode) != vxJSONKind::kString) {
            aCopy->mValue = vxValue(aNode);
            return;
        }
        const char* theText = aText.mLength == 0
                                  ? kvxEmptyText.mText
                                  : vxStoreText(aTextCell, aText.mData, aText.mLength);
        aCopy->mValue = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(theText));
        aCopy->mHead |= aNode->mHead & kvxTextIsBad;
    }

    vxJSONArena mArena;
    vxJSONRing mRing;            // the container that is being filled
    vxJSONStack<Frame> mFrames;  // the containers on the way down
};

// ---- Comparing numbers

bool vxIsNumber(vxJSONKind aKind) {
    return aKind == vxJSONKind::kUInt || aKind == vxJSONKind::kInt || aKind == vxJSONKind::kDouble;
}

bool vxIsNegative(const vxJSON_t* aInteger) {
    return vxKind(aInteger) == vxJSONKind::kInt && static_cast<int64_t>(vxValue(aInteger)) < 0;
}

/// Exact: a double that an integer rounds to is not yet equal to it.
bool vxEqualsDouble(const vxJSON_t* aInteger, double aDouble) {
    const uint64_t theValue = vxValue(aInteger);
    if (vxIsNegative(aInteger)) {
        return aDouble >= -9223372036854775808.0 && aDouble < 0 &&
               static_cast<int64_t>(aDouble) == static_cast<int64_t>(theValue) &&
               std::trunc(aDouble) == aDouble;
    }
    return aDouble >= 0 && aDouble < 18446744073709551616.0 &&
           static_cast<uint64_t>(aDouble) == theValue && std::trunc(aDouble) == aDouble;
}

bool vxSameNumber(const vxJSON_t* aNode, const vxJSON_t* anOther) {
    const bool fDouble = vxKind(aNode) == vxJSONKind::kDouble;
    const bool fOtherDouble = vxKind(anOther) == vxJSONKind::kDouble;
    if (fDouble && fOtherDouble) {
        const double theValue = vxFromBits(vxValue(aNode));
        const double theOther = vxFromBits(vxValue(anOther));
        return theValue == theOther || (std::isnan(theValue) && std::isnan(theOther));
    }
    if (fDouble) {
        return vxEqualsDouble(anOther, vxFromBits(vxValue(aNode)));
    }
    if (fOtherDouble) {
        return vxEqualsDouble(aNode, vxFromBits(vxValue(anOther)));
    }
    return vxValue(aNode) == vxValue(anOther) && vxIsNegative(aNode) == vxIsNegative(anOther);
}

// ---- Comparing trees

/// Same kind and same values: equal, whatever the values mean.
bool vxAreAlike(const vxJSON_t* aNode, const vxJSON_t* anOther) {
    return ((aNode->mHead ^ anOther->mHead) & kvxKindMask) == 0 &&
           vxValue(aNode) == vxValue(anOther);
}

bool vxSameText(const vxJSONText& aText, const vxJSONText& anOther) {
    return aText.mLength == anOther.mLength &&
           memcmp(aText.mData, anOther.mData, aText.mLength) == 0;
}

int vxOrderNames(const vxJSON_t* aNode, const vxJSON_t* anOther) {
    const vxJSONText theName = vxNameText(aNode);
    const vxJSONText theOther = vxNameText(anOther);
    const size_t theLength = std::min(theName.mLength, theOther.mLength);
    const int theOrder = memcmp(theName.mData, theOther.mData, theLength);
    if (theOrder != 0 || theName.mLength == theOther.mLength) {
        return theOrder;
    }
    return theName.mLength < theOther.mLength ? -1 : 1;
}

class vxJSONComparer {
public:
    bool Compare(const vxJSON_t* aNode, const vxJSON_t* anOther) {
        if (!ComparePair(aNode, anOther)) {
            return false;
        }
        while (!mRuns.IsEmpty()) {
            if (!CompareRun(mRuns.Pop())) {
                return false;
            }
        }
        return true;
    }

private:
    /// Siblings that are still to be compared, each with its counterpart.
    struct Run {
        const vxJSON_t* mNode;
        const vxJSON_t* mOther;
        uint32_t mCount;
        bool mfMembers;
    };

    /// Walks along both rings; goes down first where children are found.
    bool CompareRun(Run aRun) {
        while (aRun.mCount != 0) {
            if (aRun.mfMembers && !vxSameText(vxNameText(aRun.mNode), vxNameText(aRun.mOther))) {
                return CompareSorted(aRun);
            }
            const vxJSON_t* theNode = aRun.mNode;
            const vxJSON_t* theOther = aRun.mOther;
            aRun.mNode = vxNext(theNode);
            aRun.mOther = vxNext(theOther);
            --aRun.mCount;
            if (!vxIsContainer(theNode)) {
                if (!vxAreAlike(theNode, theOther) && !CompareLeaf(theNode, theOther)) {
                    return false;
                }
                continue;
            }
            if (vxKind(theNode) != vxKind(theOther)) {
                return false;
            }
            const vxJSONChildren theChildren = vxChildren(theNode);
            const vxJSONChildren theOthers = vxChildren(theOther);
            if (theChildren.mCount != theOthers.mCount) {
                return false;
            }
            if (theChildren.mCount != 0) {
                if (aRun.mCount != 0 && !mRuns.Push(aRun)) {
                    return false;
                }
                aRun = {vxNext(theChildren.mLast), vxNext(theOthers.mLast), theChildren.mCount,
                        vxKind(theNode) == vxJSONKind::kObject};
            }
        }
        return true;
    }

    /// Members that stand in another order are paired by name; the sort keeps those of one name in
    /// their order.
    bool CompareSorted(const Run& aRun) {
        const std::vector<const vxJSON_t*> theNodes = Sorted(aRun.mNode, aRun.mCount);
        const std::vector<const vxJSON_t*> theOthers = Sorted(aRun.mOther, aRun.mCount);
        for (uint32_t i = 0; i < aRun.mCount; ++i) {
            if (vxOrderNames(theNodes[i], theOthers[i]) != 0) {
                return false;
            }
        }
        for (uint32_t i = 0; i < aRun.mCount; ++i) {
            if (!ComparePair(theNodes[i], theOthers[i])) {
                return false;
            }
        }
        return true;
    }

    static std::vector<const vxJSON_t*> Sorted(const vxJSON_t* aNode, uint32_t aCount) {
        std::vector<const vxJSON_t*> theNodes;
        theNodes.reserve(aCount);
        for (uint32_t i = 0; i < aCount; ++i, aNode = vxNext(aNode)) {
            theNodes.push_back(aNode);
        }
        std::stable_sort(theNodes.begin(), theNodes.end(),
                         [](const vxJSON_t* aLeft, const vxJSON_t* aRight) {
                             return vxOrderNames(aLeft, aRight) < 0;
                         });
        return theNodes;
    }

    /// Compares two nodes and leaves their children for later.
    bool ComparePair(const vxJSON_t* aNode, const vxJSON_t* anOther) {
        if (!vxIsContainer(aNode)) {
            return CompareLeaf(aNode, anOther);
        }
        if (vxKind(aNode) != vxKind(anOther)) {
            return false;
        }
        const vxJSONChildren theChildren = vxChildren(aNode);
        const vxJSONChildren theOthers = vxChildren(anOther);
        if (theChildren.mCount != theOthers.mCount || theChildren.mCount == 0) {
            return theChildren.mCount == theOthers.mCount;
        }
        return mRuns.Push({vxNext(theChildren.mLast), vxNext(theOthers.mLast), theChildren.mCount,
                           vxKind(aNode) == vxJSONKind::kObject});
    }

    static bool CompareLeaf(const vxJSON_t* aNode, const vxJSON_t* anOther) {
        const vxJSONKind theKind = vxKind(aNode);
        if (vxIsNumber(theKind)) {
            return vxIsNumber(vxKind(anOther)) && vxSameNumber(aNode, anOther);
        }
        if (theKind != vxKind(anOther)) {
            return false;
        }
        if (theKind == vxJSONKind::kString) {
            return vxSameText(vxStringText(aNode), vxStringText(anOther));
        }
        return vxValue(aNode) == vxValue(anOther);
    }

    vxJSONStack<Run> mRuns;
};

}  // namespace

vxJSON_t* vxJSON_Clone(const vxJSON_t* aNode) {
    return aNode == nullptr ? nullptr : vxJSONCloner().Clone(aNode);
}

int vxJSON_Compare(const vxJSON_t* aNode, const vxJSON_t* anOther) {
    if (aNode == anOther) {
        return 0;
    }
    if (aNode == nullptr || anOther == nullptr) {
        return 1;
    }
    return vxJSONComparer().Compare(aNode, anOther) ? 0 : 1;
}
