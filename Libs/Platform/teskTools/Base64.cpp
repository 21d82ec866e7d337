// Base64 through tables that answer for several characters at once.
//
// Encoding looks up 12 bits and stores two characters. Decoding looks up each of the four
// characters of a group in a table of its own, which has the six bits where they belong in the
// three bytes, so that the entries need only be joined; a bit that no group uses marks characters
// outside the alphabet. Words are joined as little-endian numbers and turned where the machine is
// not.

#include <libteskTools/Base64.h>
#include <libteskTools/Memory.h>

#include <array>
#include <cstring>

namespace {

constexpr char kvxBase64_Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using vxCharPairs = std::array<char, 2 * 4096>;

constexpr vxCharPairs vxMakeCharPairs() {
    vxCharPairs thePairs{};
    for (size_t i = 0; i < 4096; ++i) {
        thePairs[2 * i] = kvxBase64_Alphabet[i >> 6];
        thePairs[2 * i + 1] = kvxBase64_Alphabet[i & 63];
    }
    return thePairs;
}

constexpr vxCharPairs kvxBase64_CharPairs = vxMakeCharPairs();

constexpr uint32_t kvxBase64_Bad = 0x80000000U;

struct vxDecodeTables {
    std::array<uint32_t, 256> mOf[4];  // by the character's place in its group
};

// Puts 24 bits of a group, first byte on top, into the order in which they lie in memory.
constexpr uint32_t vxInMemoryOrder(uint32_t aGroup) {
    return (aGroup >> 16 & 0xff) | (aGroup & 0xff00) | (aGroup & 0xff) << 16;
}

constexpr vxDecodeTables vxMakeDecodeTables() {
    vxDecodeTables theTables{};
    for (uint32_t thePlace = 0; thePlace < 4; ++thePlace) {
        for (uint32_t& theEntry : theTables.mOf[thePlace]) {
            theEntry = kvxBase64_Bad;
        }
        for (uint32_t i = 0; i < 64; ++i) {
            const unsigned char theChar = static_cast<unsigned char>(kvxBase64_Alphabet[i]);
            theTables.mOf[thePlace][theChar] = vxInMemoryOrder(i << (18 - 6 * thePlace));
        }
    }
    return theTables;
}

constexpr vxDecodeTables kvxBase64_Values = vxMakeDecodeTables();

void vxStorePair(char* aTarget, uint64_t aBits) {
    memcpy(aTarget, &kvxBase64_CharPairs[2 * (aBits & 4095)], 2);
}

// Eight characters from the six bytes at `aSource`, of which eight must be readable.
void vxEncodeSix(const uint8_t* aSource, char* aTarget) {
    uint64_t theBits;
    memcpy(&theBits, aSource, sizeof(theBits));
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    theBits = __builtin_bswap64(theBits);
#endif
    vxStorePair(aTarget, theBits >> 52);
    vxStorePair(aTarget + 2, theBits >> 40);
    vxStorePair(aTarget + 4, theBits >> 28);
    vxStorePair(aTarget + 6, theBits >> 16);
}

void vxEncodeThree(const uint8_t* aSource, char* aTarget) {
    const uint32_t theBits = static_cast<uint32_t>(aSource[0] << 16 | aSource[1] << 8 | aSource[2]);
    vxStorePair(aTarget, theBits >> 12);
    vxStorePair(aTarget + 2, theBits);
}

// The last one or two bytes and their padding.
void vxEncodeRest(const uint8_t* aSource, size_t aLength, char* aTarget) {
    const uint8_t theGroup[3] = {aSource[0], aLength == 2 ? aSource[1] : uint8_t{0}, 0};
    vxEncodeThree(theGroup, aTarget);
    aTarget[3] = '=';
    if (aLength == 1) {
        aTarget[2] = '=';
    }
}

void vxEncode(const uint8_t* aSource, size_t aLength, char* aTarget) {
    size_t theLength = aLength;
    for (; theLength >= 8; theLength -= 6, aSource += 6, aTarget += 8) {
        vxEncodeSix(aSource, aTarget);
    }
    for (; theLength >= 3; theLength -= 3, aSource += 3, aTarget += 4) {
        vxEncodeThree(aSource, aTarget);
    }
    if (theLength > 0) {
        vxEncodeRest(aSource, theLength, aTarget);
    }
}

// The three bytes of a group in the order of memory, or a word with the bad bit.
uint32_t vxDecodeGroup(const unsigned char* aText) {
    return kvxBase64_Values.mOf[0][aText[0]] | kvxBase64_Values.mOf[1][aText[1]] |
           kvxBase64_Values.mOf[2][aText[2]] | kvxBase64_Values.mOf[3][aText[3]];
}

void vxStoreBytes(uint32_t aGroup, uint8_t* aTarget, size_t aCount) {
    for (size_t i = 0; i < aCount; ++i) {
        aTarget[i] = static_cast<uint8_t>(aGroup >> 8 * i);
    }
}

// The last group, which may be padded; the number of its bytes, or 0 when it is malformed.
size_t vxDecodeLast(const unsigned char* aText, uint8_t* aTarget) {
    const size_t thePadding = aText[3] != '=' ? 0 : aText[2] != '=' ? 1 : 2;
    const size_t theCount = 3 - thePadding;
    unsigned char theText[4];
    memcpy(theText, aText, sizeof(theText));
    memset(theText + 4 - thePadding, 'A', thePadding);
    const uint32_t theGroup = vxDecodeGroup(theText);
    // Bits behind the last byte are 0 in the one accepted encoding; the bad bit lies there as well.
    if (theGroup >> 8 * theCount != 0) {
        return 0;
    }
    vxStoreBytes(theGroup, aTarget, theCount);
    return theCount;
}

}  // namespace

size_t vxBase64_Encode(const void* aBytes, size_t aLength, char** aResult) {
    const size_t theGroups = aLength / 3 + (aLength % 3 != 0);
    *aResult = NULL;
    if (theGroups > (SIZE_MAX - 1) / 4) {
        return 0;
    }
    char* theText = static_cast<char*>(vxTryMalloc(theGroups * 4 + 1));
    if (theText == NULL) {
        return 0;
    }
    vxEncode(static_cast<const uint8_t*>(aBytes), aLength, theText);
    theText[theGroups * 4] = '\0';
    *aResult = theText;
    return theGroups * 4;
}

size_t vxBase64_Decode(const char* aText, void* aBytes) {
    size_t theSize = 0;
    vxBase64_DecodeSized(aText, strlen(aText), aBytes, &theSize);
    return theSize;
}

bool vxBase64_DecodeSized(const char* aText, size_t aLength, void* aBytes, size_t* aSize) {
    *aSize = 0;
    if (aLength == 0 || aLength % 4 != 0) {
        return aLength == 0;
    }
    const unsigned char* theText = reinterpret_cast<const unsigned char*>(aText);
    const unsigned char* theLast = theText + aLength - 4;
    uint8_t* theTarget = static_cast<uint8_t*>(aBytes);
    uint32_t theSeen = 0;
    for (; theText < theLast; theText += 4, theTarget += 3) {
        const uint32_t theGroup = vxDecodeGroup(theText);
        theSeen |= theGroup;
        vxStoreBytes(theGroup, theTarget, 3);
    }
    const size_t theCount = vxDecodeLast(theLast, theTarget);
    if (theCount == 0 || (theSeen & kvxBase64_Bad) != 0) {
        return false;
    }
    *aSize = static_cast<size_t>(theTarget - static_cast<uint8_t*>(aBytes)) + theCount;
    return true;
}
