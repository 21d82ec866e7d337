// Shell patterns on bytes.
//
// A star first stands for nothing and takes one byte more each time the rest does not fit. Only the
// last star met need be tried again: what stood between an earlier star and it has been found as
// far left as possible. That keeps patterns full of stars from trying every combination. Plain bytes
// between two stars are searched for at once.

#include <libteskTools/CStringParser.h>
#include <libteskTools/Search.h>

#include <cctype>
#include <cstring>

namespace {

struct vxCharacterClass {
    const char* mName;  // as written between the brackets and colons
    int (*mTest)(int);
};

constexpr vxCharacterClass kClasses[] = {
    {"[:alnum:]", isalnum}, {"[:alpha:]", isalpha}, {"[:blank:]", isblank},
    {"[:cntrl:]", iscntrl}, {"[:digit:]", isdigit}, {"[:graph:]", isgraph},
    {"[:lower:]", islower}, {"[:print:]", isprint}, {"[:punct:]", ispunct},
    {"[:space:]", isspace}, {"[:upper:]", isupper}, {"[:xdigit:]", isxdigit},
};

unsigned char vxByte(char aChar) {
    return static_cast<unsigned char>(aChar);
}

const vxCharacterClass* vxClassAt(const char* aPattern) {
    for (const vxCharacterClass& theClass : kClasses) {
        if (strncmp(aPattern, theClass.mName, strlen(theClass.mName)) == 0) {
            return &theClass;
        }
    }
    return nullptr;
}

// Only ASCII has classes, whatever the locale.
bool vxIsOfClass(const vxCharacterClass& aClass, unsigned char aByte) {
    return aByte < 0x80 && aClass.mTest(aByte) != 0;
}

// Takes one byte of a set, a backslash in front of it included; 0 at the end of the pattern.
unsigned char vxTakeSetByte(const char*& aPattern) {
    if (*aPattern == '\\' && aPattern[1] != '\0') {
        ++aPattern;
    }
    return *aPattern == '\0' ? 0 : vxByte(*aPattern++);
}

// Matches one byte with the set behind `[` and moves the pattern behind the closing bracket. A set
// that never closes is no set: the pattern stays and `afSet` is false.
bool vxMatchesSet(const char*& aPattern, unsigned char aByte, bool& afSet) {
    const char* thePos = aPattern;
    const bool theInverted = *thePos == '!' || *thePos == '^';
    thePos += theInverted ? 1 : 0;
    bool theFound = false;
    for (const char* theFirst = thePos; *thePos != ']' || thePos == theFirst;) {
        if (const vxCharacterClass* theClass = vxClassAt(thePos)) {
            theFound |= vxIsOfClass(*theClass, aByte);
            thePos += strlen(theClass->mName);
            continue;
        }
        const unsigned char theLow = vxTakeSetByte(thePos);
        unsigned char theHigh = theLow;
        if (*thePos == '-' && thePos[1] != ']' && thePos[1] != '\0') {
            ++thePos;
            theHigh = vxTakeSetByte(thePos);
        }
        if (theLow == 0 || theHigh == 0) {
            afSet = false;
            return false;
        }
        theFound |= theLow <= aByte && aByte <= theHigh;
    }
    afSet = true;
    aPattern = thePos + 1;
    return theFound != theInverted;
}

// Matches one byte of the name, which is not at its end, and moves the pattern behind what matched.
// `anUnclosed` is the first `[` that is known not to close, or null.
bool vxMatchesByte(const char*& aPattern, char aByte, const char*& anUnclosed) {
    switch (*aPattern) {
        case '\0':
            return false;
        case '?':
            ++aPattern;
            return true;
        case '[': {
            const char* theSet = aPattern + 1;
            bool theIsSet = anUnclosed == nullptr || aPattern < anUnclosed || vxClassAt(aPattern);
            const bool theMatches = theIsSet && vxMatchesSet(theSet, vxByte(aByte), theIsSet);
            if (theIsSet) {
                aPattern = theSet;
                return theMatches;
            }
            anUnclosed = anUnclosed == nullptr ? aPattern : anUnclosed;
            ++aPattern;
            return aByte == '[';
        }
        case '\\':
            if (aPattern[1] == '\0') {
                return false;
            }
            ++aPattern;
            break;
        default:
            break;
    }
    return *aPattern++ == aByte;
}

bool vxIsSpecial(char aChar) {
    return aChar == '*' || aChar == '?' || aChar == '[' || aChar == '\\';
}

// Returns how many bytes of the pattern stand for themselves.
size_t vxPlainLength(const char* aPattern) {
    size_t theLength = 0;
    while (aPattern[theLength] != '\0' && !vxIsSpecial(aPattern[theLength])) {
        ++theLength;
    }
    return theLength;
}

// A text without special bytes can stand behind the last star in one place only.
bool vxEndsWith(const char* aStr, size_t aLength, const char* aText, size_t aTextLength) {
    return aLength >= aTextLength && memcmp(aStr + aLength - aTextLength, aText, aTextLength) == 0;
}

}  // namespace

int vxCStringParser_Match(const char* aStr, const char* aPattern) {
    if (aStr == nullptr || aPattern == nullptr) {
        return 0;
    }
    const char* const theEnd = aStr + strlen(aStr);
    const char* theStar = nullptr;   // behind the last star met
    const char* theRetry = nullptr;  // where in the text the pattern behind it is tried
    const char* theUnclosed = nullptr;
    for (;;) {
        if (*aPattern == '*') {
            theStar = ++aPattern;
            theRetry = aStr;
            const size_t theRest = static_cast<size_t>(theEnd - aStr);
            const size_t thePlain = vxPlainLength(aPattern);
            if (aPattern[thePlain] == '\0') {
                return vxEndsWith(aStr, theRest, aPattern, thePlain);
            }
            if (aPattern[thePlain] == '*') {
                const char* thePlace = vxSearch_First(aStr, theRest, aPattern, thePlain);
                if (thePlace == nullptr) {
                    return 0;
                }
                aStr = thePlace + thePlain;
                aPattern += thePlain;
            }
            continue;
        }
        if (aStr == theEnd) {
            return *aPattern == '\0';
        }
        if (vxMatchesByte(aPattern, *aStr, theUnclosed)) {
            ++aStr;
            continue;
        }
        if (theStar == nullptr) {
            return 0;
        }
        aPattern = theStar;
        aStr = ++theRetry;
    }
}
