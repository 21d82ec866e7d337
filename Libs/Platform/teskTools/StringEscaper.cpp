// Escaping in two passes: the first measures, so that the text is allocated once.

#include <libteskTools/Memory.h>
#include <libteskTools/StringEscaper.h>

#include <cstring>

#include "Escapes.h"

namespace {

constexpr char kvxEscaper_Digits[] = "0123456789ABCDEF";

bool vxIsEscaped(uint8_t aByte, const uint8_t* aTable, char anEscape) {
    return aByte == 0 || aTable[aByte] != 0 || aByte == static_cast<uint8_t>(anEscape);
}

/// The byte that two digits stand for, or -1; reads nothing behind a NUL.
int vxByteValue(const char* aText) {
    const int theHigh = vxHexValue(aText[0]);
    const int theLow = theHigh < 0 ? -1 : vxHexValue(aText[1]);
    return theLow < 0 ? -1 : theHigh * 16 + theLow;
}

}  // namespace

#define KEEP_16 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0
#define MARK_16 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1

// clang-format off
const uint8_t kvxPropertListConvTable[256] = {
    MARK_16, MARK_16,
    0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0,  // '"' and '\''
    KEEP_16, KEEP_16,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0,  // '\\'
    KEEP_16,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  // DEL
    MARK_16, MARK_16, MARK_16, MARK_16, MARK_16, MARK_16, MARK_16, MARK_16,
};
// clang-format on

char* vxStringEscaper_EscapeBuffer(const void* aBytes, size_t aSize, const uint8_t* aTable,
                                   char anEscape) {
    if (aBytes == NULL || aTable == NULL || aSize > (SIZE_MAX - 1) / 3) {
        return NULL;
    }
    const uint8_t* const theBytes = static_cast<const uint8_t*>(aBytes);
    size_t theLength = aSize;
    for (size_t i = 0; i < aSize; ++i) {
        theLength += vxIsEscaped(theBytes[i], aTable, anEscape) ? 2 : 0;
    }
    char* const theText = static_cast<char*>(vxMalloc(theLength + 1));
    if (theText == NULL) {
        return NULL;
    }
    char* theTarget = theText;
    for (size_t i = 0; i < aSize; ++i) {
        if (vxIsEscaped(theBytes[i], aTable, anEscape)) {
            *theTarget++ = anEscape;
            *theTarget++ = kvxEscaper_Digits[theBytes[i] >> 4];
            *theTarget++ = kvxEscaper_Digits[theBytes[i] & 15];
        } else {
            *theTarget++ = static_cast<char>(theBytes[i]);
        }
    }
    *theTarget = '\0';
    return theText;
}

void* vxStringEscaper_UnescapeBuffer(const char* aText, char anEscape, size_t* aSize) {
    *aSize = 0;
    char* const theBytes = aText == NULL ? NULL : static_cast<char*>(vxMalloc(strlen(aText) + 1));
    if (theBytes == NULL) {
        return NULL;
    }
    char* theTarget = theBytes;
    for (const char* thePos = aText; *thePos != '\0'; ++thePos) {
        const int theValue = *thePos == anEscape ? vxByteValue(thePos + 1) : -1;
        *theTarget++ = theValue < 0 ? *thePos : static_cast<char>(theValue);
        thePos += theValue < 0 ? 0 : 2;
    }
    *theTarget = '\0';
    *aSize = static_cast<size_t>(theTarget - theBytes);
    return theBytes;
}
