// What is typed, scanned or parsed reaches the terminal only through here.

#include "TerminalText.h"

#include <cstdint>

#include "vx/GrowingBuffer.h"

namespace vxmedia {

namespace {

// Returns the length of the UTF-8 character at `aText`, which has `aRest` bytes, and its code; 0 when
// there is none: overlong forms, surrogates and codes beyond U+10FFFF are no characters.
size_t DecodeCharacter(const unsigned char* aText, size_t aRest, uint32_t& aCode) {
    static constexpr uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned char theFirst = aText[0];
    const size_t theLength = theFirst < 0x80                        ? 1
                             : theFirst >= 0xC2 && theFirst <= 0xDF ? 2
                             : theFirst >= 0xE0 && theFirst <= 0xEF ? 3
                             : theFirst >= 0xF0 && theFirst <= 0xF4 ? 4
                                                                    : 0;
    if (theLength == 0 || theLength > aRest) {
        return 0;
    }
    aCode = theLength == 1 ? theFirst : theFirst & (0x7Fu >> theLength);
    for (size_t i = 1; i < theLength; ++i) {
        if ((aText[i] & 0xC0) != 0x80) {
            return 0;
        }
        aCode = aCode << 6 | (aText[i] & 0x3Fu);
    }
    const bool theIsSurrogate = aCode >= 0xD800 && aCode <= 0xDFFF;
    return aCode < kSmallest[theLength] || aCode > 0x10FFFF || theIsSurrogate ? 0 : theLength;
}

// Control characters, line and paragraph separators, marks that reverse the direction of text, and
// the two codes that are no characters, which XML does not allow.
bool SteersTerminal(uint32_t aCode) {
    return aCode < 0x20 || (aCode >= 0x7F && aCode <= 0x9F) || aCode == 0x061C ||
           (aCode >= 0x200E && aCode <= 0x200F) || (aCode >= 0x2028 && aCode <= 0x202E) ||
           (aCode >= 0x2066 && aCode <= 0x2069) || aCode == 0xFEFF || aCode == 0xFFFE ||
           aCode == 0xFFFF;
}

void AppendEscapedBytes(vxGrowingBuffer& aResult, const unsigned char* aBytes, size_t aCount) {
    static const char kDigits[] = "0123456789ABCDEF";
    for (size_t i = 0; i < aCount; ++i) {
        const char theEscape[] = {'\\', 'x', kDigits[aBytes[i] >> 4], kDigits[aBytes[i] & 15]};
        aResult.Append(theEscape, sizeof(theEscape));
    }
}

// The codes that steer a terminal take no more than four digits.
void AppendEscapedCode(vxGrowingBuffer& aResult, uint32_t aCode) {
    const vxCString theEscape = vxCString::Format("\\u%04x", aCode);
    aResult.Append(theEscape.c_str(), theEscape.length());
}

}  // namespace

vxCString EscapeForTerminal(const vxCString& aText, EscapeMode aMode) {
    const unsigned char* theText = reinterpret_cast<const unsigned char*>(aText.c_str());
    const size_t theLength = aText.length();
    vxGrowingBuffer theResult(0);
    for (size_t i = 0; i < theLength;) {
        uint32_t theCode = 0;
        const size_t theCount = DecodeCharacter(theText + i, theLength - i, theCode);
        const bool theIsKeptFeed =
            (aMode == EscapeMode::Lines || aMode == EscapeMode::JSON) && theCode == '\n';
        if (theCount == 1 && theCode == '\\' && aMode == EscapeMode::Name) {
            theResult.Append("\\\\", 2);
        } else if (aMode == EscapeMode::JSON && theCount != 0 && SteersTerminal(theCode) &&
                   !theIsKeptFeed) {
            AppendEscapedCode(theResult, theCode);
        } else if (theCount == 0 || (SteersTerminal(theCode) && !theIsKeptFeed)) {
            AppendEscapedBytes(theResult, theText + i, theCount == 0 ? 1 : theCount);
        } else {
            theResult.Append(aText.c_str() + i, theCount);
        }
        i += theCount == 0 ? 1 : theCount;
    }
    theResult.Append("", 1);
    return vxCString::FromAllocatedString(theResult.TakeOwnership(false, NULL));
}

}  // namespace vxmedia
