// Writes a tree as JSON text.
//
// Room for a number, or for a string that needs no escapes, is made before it is written, so that
// writing itself never checks.

#include "JSONNode.h"
#include "JSONNumber.h"
#include "JSONText.h"

namespace {

class vxJSONPrinter {
public:
    explicit vxJSONPrinter(bool afFormatted)
        : mText(nullptr), mPos(nullptr), mEnd(nullptr), mfFormatted(afFormatted), mfFailed(false) {}

    /// Returns the text, whose owner is the caller; null when memory is out.
    char* Print(const vxJSON_t* aNode) {
        WriteTree(aNode);
        if (!Reserve(1)) {
            free(mText);
            return nullptr;
        }
        *mPos = '\0';
        const size_t theSize = static_cast<size_t>(mPos - mText) + 1;
        char* theText = static_cast<char*>(vxRealloc(mText, theSize));
        return theText == nullptr ? mText : theText;
    }

private:
    struct Frame {
        const vxJSON_t* mContainer;
        const vxJSON_t* mLast;
    };

    void WriteTree(const vxJSON_t* aNode) {
        while (aNode != nullptr && !mfFailed) {
            if (vxIsContainer(aNode) && vxChildren(aNode).mCount != 0) {
                aNode = Open(aNode);
            } else {
                WriteLeaf(aNode);
                aNode = StepOn(aNode);
            }
            if (aNode != nullptr && vxKind(mFrames.Top().mContainer) == vxJSONKind::kObject) {
                WriteName(aNode);
            }
        }
    }

    const vxJSON_t* Open(const vxJSON_t* aNode) {
        const vxJSON_t* theLast = vxChildren(aNode).mLast;
        mfFailed = !mFrames.Push({aNode, theLast}) || mfFailed;
        Put(vxKind(aNode) == vxJSONKind::kObject ? '{' : '[');
        NewLine();
        return vxNext(theLast);
    }

    /// Behind a node: closes containers until another node follows; null behind the last.
    const vxJSON_t* StepOn(const vxJSON_t* aNode) {
        while (!mFrames.IsEmpty()) {
            if (aNode != mFrames.Top().mLast) {
                Put(',');
                NewLine();
                return vxNext(aNode);
            }
            aNode = mFrames.Pop().mContainer;
            NewLine();
            Put(vxKind(aNode) == vxJSONKind::kObject ? '}' : ']');
        }
        return nullptr;
    }

    void NewLine() {
        if (!mfFormatted) {
            return;
        }
        const size_t theBlanks = 4 * mFrames.Count();
        if (Reserve(theBlanks + 1)) {
            *mPos++ = '\n';
            memset(mPos, ' ', theBlanks);
            mPos += theBlanks;
        }
    }

    void WriteName(const vxJSON_t* aNode) {
        WriteString(vxNameText(aNode), (aNode->mHead & kvxNameIsBad) != 0);
        Put(':');
        if (mfFormatted) {
            Put(' ');
        }
    }

    void WriteLeaf(const vxJSON_t* aNode) {
        switch (vxKind(aNode)) {
            case vxJSONKind::kString:
                WriteString(vxStringText(aNode), (aNode->mHead & kvxTextIsBad) != 0);
                break;
            case vxJSONKind::kObject:
                Append("{}", 2);
                break;
            case vxJSONKind::kArray:
                Append("[]", 2);
                break;
            case vxJSONKind::kNull:
                Append("null", 4);
                break;
            case vxJSONKind::kBool:
                vxValue(aNode) != 0 ? Append("true", 4) : Append("false", 5);
                break;
            default:
                WriteNumber(aNode);
                break;
        }
    }

    void WriteNumber(const vxJSON_t* aNode) {
        if (!Reserve(kvxMaxNumberLength)) {
            return;
        }
        const uint64_t theValue = vxValue(aNode);
        switch (vxKind(aNode)) {
            case vxJSONKind::kUInt:
                mPos = vxWriteUInt(mPos, theValue);
                break;
            case vxJSONKind::kInt:
                mPos = vxWriteInt(mPos, static_cast<int64_t>(theValue));
                break;
            default:
                mPos = vxWriteDouble(mPos, vxFromBits(theValue));
                break;
        }
    }

    void WriteString(const vxJSONText& aText, bool afBad) {
        if (afBad) {
            const std::string theGood = vxWithoutBadUTF8(aText.mData, aText.mLength);
            WriteString({theGood.data(), theGood.size()}, false);
            return;
        }
        if (!Reserve(aText.mLength + 2)) {
            return;
        }
        *mPos++ = '"';
        const char* theEnd = aText.mData + aText.mLength;
        for (const char* p = aText.mData; p != theEnd;) {
            const char* theSpecial = vxFindEscape(p, theEnd);
            const size_t thePlain = static_cast<size_t>(theSpecial - p);
            vxCopyText(mPos, p, thePlain);
            mPos += thePlain;
            p = theSpecial;
            if (p != theEnd) {
                ++p;
                if (!WriteEscape(*theSpecial, static_cast<size_t>(theEnd - p) + 1)) {
                    return;
                }
            }
        }
        *mPos++ = '"';
    }

    /// Writes one escaped byte and makes room for those behind it.
    bool WriteEscape(char aChar, size_t aRest) {
        static constexpr char kvxHexDigits[] = "0123456789abcdef";
        static constexpr char kvxShort[] = "\"\\\b\f\n\r\t";
        static constexpr char kvxLetters[] = "\"\\bfnrt";
        if (!Reserve(6 + aRest)) {
            return false;
        }
        *mPos++ = '\\';
        const char* theShort = static_cast<const char*>(memchr(kvxShort, aChar, 7));
        if (theShort != nullptr) {
            *mPos++ = kvxLetters[theShort - kvxShort];
            return true;
        }
        memcpy(mPos, "u00", 3);
        mPos[3] = kvxHexDigits[(aChar >> 4) & 15];
        mPos[4] = kvxHexDigits[aChar & 15];
        mPos += 5;
        return true;
    }

    // ---- Text written so far

    bool Reserve(size_t aSize) { return static_cast<size_t>(mEnd - mPos) >= aSize || Grow(aSize); }

    __attribute__((noinline)) bool Grow(size_t aSize) {
        const size_t theUsed = static_cast<size_t>(mPos - mText);
        const size_t theRoom = 2 * static_cast<size_t>(mEnd - mText) + 256;
        if (mfFailed || aSize > SIZE_MAX / 4 || theRoom > SIZE_MAX / 4) {
            mfFailed = true;
            return false;
        }
        char* theText = static_cast<char*>(vxRealloc(mText, theRoom + aSize));
        if (theText == nullptr) {
            mfFailed = true;
            mEnd = mPos;
            return false;
        }
        mText = theText;
        mPos = theText + theUsed;
        mEnd = theText + theRoom + aSize;
        return true;
    }

    void Put(char aChar) {
        if (Reserve(1)) {
            *mPos++ = aChar;
        }
    }

    void Append(const char* aText, size_t aLength) {
        if (Reserve(aLength)) {
            memcpy(mPos, aText, aLength);
            mPos += aLength;
        }
    }

    char* mText;
    char* mPos;
    char* mEnd;
    bool mfFormatted;
    bool mfFailed;  // memory is out
    vxJSONStack<Frame> mFrames;
};

}  // namespace

char* vxJSON_Print(const vxJSON_t* aNode) {
    return aNode == nullptr ? nullptr : vxJSONPrinter(true).Print(aNode);
}

char* vxJSON_PrintUnformatted(const vxJSON_t* aNode) {
    return aNode == nullptr ? nullptr : vxJSONPrinter(false).Print(aNode);
}

char* vxJSON_GetRawValue(const vxJSON_t* aNode) {
    const char* theText = vxJSON_GetValueString(aNode);
    return theText != nullptr ? vxStrdup(theText) : vxJSON_PrintUnformatted(aNode);
}
