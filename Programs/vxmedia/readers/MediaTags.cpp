// What the readers of tags share: pieces of a file, texts in other encodings, pictures.

#include "MediaTags.h"

#include <libteskTools/Base64.h>

#include <algorithm>
#include <cstring>

namespace vxmedia {

namespace {

void AppendUTF8(uint32_t aCharacter, vxCString& aText) {
    if (aCharacter < 0x80) {
        aText += static_cast<char>(aCharacter);
        return;
    }
    const int theFollowers = aCharacter < 0x800 ? 1 : aCharacter < 0x10000 ? 2 : 3;
    constexpr uint32_t kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    aText += static_cast<char>(kLeads[theFollowers] | aCharacter >> (6 * theFollowers));
    for (int i = theFollowers - 1; i >= 0; --i) {
        aText += static_cast<char>(0x80 | (aCharacter >> (6 * i) & 0x3F));
    }
}

bool DecodeBase64(std::vector<uint8_t>& aBytes) {
    const std::vector<char> theText(aBytes.begin(), aBytes.end());
    size_t theSize;
    if (!vxBase64_DecodeSized(theText.data(), theText.size(), aBytes.data(), &theSize)) {
        return false;
    }
    aBytes.resize(theSize);
    return true;
}

}  // namespace

void MediaBytes::Add(uint64_t aPos, uint64_t aSize) {
    if (aSize == 0) {
        return;
    }
    if (!mPieces.empty() && mPieces.back().mPos + mPieces.back().mSize == aPos) {
        mPieces.back().mSize += aSize;
    } else {
        mPieces.push_back({aPos, aSize});
    }
    mSize += aSize;
}

bool MediaBytes::ReadExactly(MediaSource& aSource, uint64_t aPos, uint8_t* aBuffer,
                             size_t aCount) const {
    if (aPos > mSize || aCount > mSize - aPos) {
        return false;
    }
    for (const Piece& thePiece : mPieces) {
        if (aPos < thePiece.mSize && aCount > 0) {
            const size_t theCount =
                static_cast<size_t>(std::min<uint64_t>(aCount, thePiece.mSize - aPos));
            if (!aSource.ReadExactly(thePiece.mPos + aPos, aBuffer, theCount)) {
                return false;
            }
            aBuffer += theCount;
            aCount -= theCount;
            aPos = thePiece.mSize;
        }
        aPos -= thePiece.mSize;
    }
    return true;
}

MediaBytes MediaBytes::Part(uint64_t aPos, uint64_t aCount) const {
    MediaBytes thePart;
    for (const Piece& thePiece : mPieces) {
        if (aPos < thePiece.mSize && aCount > 0) {
            const uint64_t theCount = std::min(aCount, thePiece.mSize - aPos);
            thePart.Add(thePiece.mPos + aPos, theCount);
            aCount -= theCount;
            aPos = thePiece.mSize;
        }
        aPos -= thePiece.mSize;
    }
    return thePart;
}

void MediaTags::Offer(const CoverArt& aCoverArt) {
    if (!mCoverArt.IsThere() || (aCoverArt.mfIsFront && !mCoverArt.mfIsFront)) {
        mCoverArt = aCoverArt;
    }
}

void SetTag(vxCString& aField, const vxCString& aText) {
    if (aField.IsEmpty()) {
        aField = aText;
    }
}

void SetTag(uint16_t& aField, const vxCString& aText) {
    if (aField == 0) {
        aText.BeforeFirst('/').TrimLeftRight().ToUInt16(&aField);
    }
}

vxCString TextOfLatin1(const uint8_t* aBytes, size_t aCount) {
    vxCString theText;
    for (size_t i = 0; i < aCount && aBytes[i] != 0; ++i) {
        AppendUTF8(aBytes[i], theText);
    }
    return theText;
}

vxCString TextOfUTF8(const uint8_t* aBytes, size_t aCount) {
    const char* theBytes = reinterpret_cast<const char*>(aBytes);
    vxCString theText(theBytes, strnlen(theBytes, aCount));
    theText.ValidateUTF8(vxCString::kvxKeepValid);
    return theText;
}

// A text that is too long may have been cut inside a character.
vxCString TextOfUTF8OrLatin1(const uint8_t* aBytes, size_t aCount) {
    const vxCString theText = TextOfUTF8(aBytes, aCount);
    const size_t theLength = strnlen(reinterpret_cast<const char*>(aBytes), aCount);
    const bool theIsCut = aCount == kTag_MaxText && theLength - theText.length() < 4;
    return theText.length() == theLength || theIsCut ? theText : TextOfLatin1(aBytes, aCount);
}

vxCString TextOfUTF16(const uint8_t* aBytes, size_t aCount, bool afBigEndian) {
    vxCString theText;
    uint32_t theHigh = 0;  // a surrogate that waits for its other half
    for (size_t i = 0; i + 1 < aCount; i += 2) {
        const uint32_t theUnit = afBigEndian ? uint32_t(aBytes[i]) << 8 | aBytes[i + 1]
                                             : uint32_t(aBytes[i + 1]) << 8 | aBytes[i];
        if (theUnit == 0) {
            break;
        }
        if (theUnit >= 0xD800 && theUnit < 0xDC00) {
            theHigh = theUnit;
            continue;
        }
        if (theUnit < 0xDC00 || theUnit > 0xDFFF) {
            AppendUTF8(theUnit, theText);
        } else if (theHigh != 0) {
            AppendUTF8(0x10000 + ((theHigh - 0xD800) << 10) + (theUnit - 0xDC00), theText);
        }
        theHigh = 0;
    }
    return theText;
}

void Resynchronise(std::vector<uint8_t>& aBytes) {
    size_t theCount = 0;
    bool theIsMarked = false;  // 0xFF in front
    for (const uint8_t theByte : aBytes) {
        if (theByte != 0 || !theIsMarked) {
            aBytes[theCount++] = theByte;
        }
        theIsMarked = theByte == 0xFF;
    }
    aBytes.resize(theCount);
}

bool ReadCoverArt(MediaSource& aSource, const CoverArt& aCoverArt, size_t aLimit,
                  std::vector<uint8_t>& aPicture) {
    aPicture.clear();
    if (!aCoverArt.IsThere() || aCoverArt.mBytes.Size() > aLimit) {
        return false;
    }
    aPicture.resize(static_cast<size_t>(aCoverArt.mBytes.Size()));
    aSource.Allow(aCoverArt.mBytes.Size());
    if (!aCoverArt.mBytes.ReadExactly(aSource, 0, aPicture.data(), aPicture.size())) {
        aPicture.clear();
        return false;
    }
    if (aCoverArt.mEncoding == CoverArt::Unsynchronisation) {
        Resynchronise(aPicture);
    } else if (aCoverArt.mEncoding == CoverArt::Base64 && !DecodeBase64(aPicture)) {
        aPicture.clear();
        return false;
    }
    const size_t theOffset =
        static_cast<size_t>(std::min<uint64_t>(aCoverArt.mEncodedOffset, aPicture.size()));
    aPicture.erase(aPicture.begin(), aPicture.begin() + static_cast<ptrdiff_t>(theOffset));
    return !aPicture.empty();
}

}  // namespace vxmedia
