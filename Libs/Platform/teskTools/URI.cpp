// Parts of a query are decoded into one block and pointed at from one array: two allocations,
// whatever their number.

#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libteskTools/URI.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

int vxHexDigit(char aChar) {
    if (aChar >= '0' && aChar <= '9') {
        return aChar - '0';
    }
    const char theLower = static_cast<char>(aChar | 0x20);
    return theLower >= 'a' && theLower <= 'f' ? theLower - 'a' + 10 : -1;
}

/// Decodes a run to a place that is not behind it, and returns the end of what was written.
char* vxDecode(const char* aStart, const char* anEnd, char* aTarget, bool afDecodePlus) {
    while (aStart != anEnd) {
        char theChar = *aStart++;
        if (theChar == '+' && afDecodePlus) {
            theChar = ' ';
        } else if (theChar == '%' && anEnd - aStart >= 2) {
            const int theHigh = vxHexDigit(aStart[0]);
            const int theLow = vxHexDigit(aStart[1]);
            if (theHigh >= 0 && theLow >= 0 && (theHigh | theLow) != 0) {
                theChar = static_cast<char>(theHigh << 4 | theLow);
                aStart += 2;
            }
        }
        *aTarget++ = theChar;
    }
    return aTarget;
}

char* vxCopyRun(const char* aStart, const char* anEnd) {
    const size_t theLength = static_cast<size_t>(anEnd - aStart);
    char* theCopy = static_cast<char*>(vxMalloc(theLength + 1));
    if (theCopy != NULL) {
        memcpy(theCopy, aStart, theLength);
        theCopy[theLength] = '\0';
    }
    return theCopy;
}

void vxDropParts(vxURI* anURI) {
    free(anURI->mQueryParts);
    free(anURI->mQueryTexts);
    anURI->mQueryParts = NULL;
    anURI->mQueryTexts = NULL;
    anURI->mQueryPartCount = 0;
}

/// Decodes one part and returns the place behind its texts.
char* vxReadPart(const char* aStart, const char* anEnd, char* aTarget, bool afDecodePlus,
                 vxURIQueryPart* aPart) {
    const char* theEqual = std::find(aStart, anEnd, '=');
    aPart->mName = aTarget;
    aTarget = vxDecode(aStart, theEqual, aTarget, afDecodePlus);
    *aTarget++ = '\0';
    aPart->mValue = aTarget;
    aTarget = vxDecode(theEqual == anEnd ? anEnd : theEqual + 1, anEnd, aTarget, afDecodePlus);
    *aTarget++ = '\0';
    return aTarget;
}

/// Reads the parts of a text into an empty list; parts without a byte are none.
void vxReadParts(vxURI* anURI, const char* aText, bool afDecodePlus) {
    const size_t theLength = strlen(aText);
    const size_t theMaxCount = static_cast<size_t>(std::count(aText, aText + theLength, '&')) + 1;
    // Each part needs at most two NULs in place of its separators.
    anURI->mQueryTexts = static_cast<char*>(vxMalloc(theLength + 2 * theMaxCount));
    anURI->mQueryParts =
        static_cast<vxURIQueryPart*>(vxMalloc(theMaxCount * sizeof(vxURIQueryPart)));
    if (anURI->mQueryTexts == NULL || anURI->mQueryParts == NULL) {
        vxDropParts(anURI);
        return;
    }
    char* theTarget = anURI->mQueryTexts;
    const char* const theEnd = aText + theLength;
    for (const char* theStart = aText; theStart < theEnd;) {
        const char* theStop = std::find(theStart, theEnd, '&');
        if (theStop != theStart) {
            theTarget = vxReadPart(theStart, theStop, theTarget, afDecodePlus,
                                   &anURI->mQueryParts[anURI->mQueryPartCount++]);
        }
        theStart = theStop + 1;
    }
}

/// Writes the parts of a record so that they can be read again.
char* vxWriteParts(const vxURI* anURI) {
    size_t theSize = 1;
    for (size_t i = 0; i < anURI->mQueryPartCount; ++i) {
        theSize +=
            3 * (strlen(anURI->mQueryParts[i].mName) + strlen(anURI->mQueryParts[i].mValue)) + 2;
    }
    char* theText = static_cast<char*>(vxMalloc(theSize));
    if (theText == NULL) {
        return NULL;
    }
    char* theTarget = theText;
    const auto theWrite = [&theTarget](const char* aText) {
        constexpr char kDigits[] = "0123456789ABCDEF";
        for (; *aText != '\0'; ++aText) {
            const unsigned char theByte = static_cast<unsigned char>(*aText);
            *theTarget++ = '%';
            *theTarget++ = kDigits[theByte >> 4];
            *theTarget++ = kDigits[theByte & 15];
        }
    };
    for (size_t i = 0; i < anURI->mQueryPartCount; ++i) {
        theWrite(anURI->mQueryParts[i].mName);
        *theTarget++ = '=';
        theWrite(anURI->mQueryParts[i].mValue);
        *theTarget++ = '&';
    }
    *theTarget = '\0';
    return theText;
}

/// Reads path, query and fragment from `aText` on.
void vxReadPath(vxURI* anURI, const char* aText, bool afDecode) {
    const char* thePathEnd = aText + strcspn(aText, "?#");
    anURI->mPath = vxCopyRun(aText, thePathEnd);
    if (afDecode && anURI->mPath != NULL) {
        char* const theEnd = anURI->mPath + (thePathEnd - aText);
        *vxDecode(anURI->mPath, theEnd, anURI->mPath, false) = '\0';
    }
    const char* theRest = thePathEnd;
    if (*theRest == '?') {
        const char* theQueryEnd = theRest + strcspn(theRest, "#");
        anURI->mQuery = vxCopyRun(theRest + 1, theQueryEnd);
        if (anURI->mQuery != NULL) {
            vxReadParts(anURI, anURI->mQuery, true);
        }
        theRest = theQueryEnd;
    }
    if (*theRest == '#') {
        anURI->mFragment = vxStrdup(theRest + 1);
    }
}

/// Reads "user@host:port" and the like.
void vxReadAuthority(vxURI* anURI, const char* aStart, const char* anEnd) {
    const char* theAt = std::find(aStart, anEnd, '@');
    if (theAt != anEnd) {
        anURI->mUserInfo = vxCopyRun(aStart, theAt);
        aStart = theAt + 1;
    }
    // A colon inside the brackets of an address is none of the port's.
    const char* theBracket = std::find(aStart, anEnd, ']');
    const char* theColon = std::find(theBracket == anEnd ? aStart : theBracket, anEnd, ':');
    anURI->mHostName = vxCopyRun(aStart, theColon);
    if (theColon != anEnd) {
        char* thePort = vxCopyRun(theColon + 1, anEnd);
        if (thePort != NULL && vxConvert_strtouint16(thePort, &anURI->mPort) != 0) {
            anURI->mPort = 0;
        }
        free(thePort);
    }
}

/// Returns the length of the scheme that a text begins with, or 0.
size_t vxSchemeLength(const char* aText) {
    const char* thePos = aText;
    while ((*thePos >= 'a' && *thePos <= 'z') || (*thePos >= 'A' && *thePos <= 'Z') ||
           (thePos != aText && ((*thePos >= '0' && *thePos <= '9') || *thePos == '+' ||
                                *thePos == '-' || *thePos == '.'))) {
        ++thePos;
    }
    return strncmp(thePos, "://", 3) == 0 ? static_cast<size_t>(thePos - aText) : 0;
}

}  // namespace

vxURI* vxURI_NewFromPath(const char* aPath, bool afDecode) {
    vxURI* theURI = static_cast<vxURI*>(vxCalloc(sizeof(vxURI)));
    if (theURI != NULL && aPath != NULL) {
        vxReadPath(theURI, aPath, afDecode);
    }
    return theURI;
}

vxURI* vxURI_New(const char* aText, bool afDecode) {
    const size_t theLength = aText == NULL ? 0 : vxSchemeLength(aText);
    if (theLength == 0) {
        return vxURI_NewFromPath(aText, afDecode);
    }
    const char* theAuthority = aText + theLength + 3;
    const char* thePath = theAuthority + strcspn(theAuthority, "/?#");
    vxURI* theURI = vxURI_NewFromPath(thePath, afDecode);
    if (theURI != NULL) {
        theURI->mScheme = vxCopyRun(aText, aText + theLength);
        vxReadAuthority(theURI, theAuthority, thePath);
    }
    return theURI;
}

void vxURI_Delete(vxURI* anURI) {
    if (anURI == NULL) {
        return;
    }
    vxDropParts(anURI);
    for (char* theText : {anURI->mScheme, anURI->mUserInfo, anURI->mHostName, anURI->mPath,
                          anURI->mQuery, anURI->mFragment}) {
        free(theText);
    }
    free(anURI);
}

vxURI* vxURI_Clone(const vxURI* anURI) {
    vxURI* theCopy = anURI == NULL ? NULL : static_cast<vxURI*>(vxCalloc(sizeof(vxURI)));
    if (theCopy == NULL) {
        return NULL;
    }
    theCopy->mScheme = vxStrdup(anURI->mScheme);
    theCopy->mUserInfo = vxStrdup(anURI->mUserInfo);
    theCopy->mHostName = vxStrdup(anURI->mHostName);
    theCopy->mPort = anURI->mPort;
    theCopy->mPath = vxStrdup(anURI->mPath);
    theCopy->mQuery = vxStrdup(anURI->mQuery);
    theCopy->mFragment = vxStrdup(anURI->mFragment);
    char* theParts = vxWriteParts(anURI);
    if (theParts != NULL) {
        vxReadParts(theCopy, theParts, false);
    }
    free(theParts);
    return theCopy;
}

void vxURI_TruncatePathBegin(vxURI* anURI, size_t aCount) {
    if (anURI != NULL && anURI->mPath != NULL) {
        const size_t theLength = strlen(anURI->mPath);
        const size_t theCount = std::min(aCount, theLength);
        memmove(anURI->mPath, anURI->mPath + theCount, theLength - theCount + 1);
    }
}

void vxURI_SetQueryFromPost(vxURI* anURI, const char* aText, bool afReplace, bool afDecodePlus) {
    if (anURI == NULL) {
        return;
    }
    const char* theText = aText == NULL ? "" : aText;
    if (afReplace || anURI->mQueryPartCount == 0) {
        vxDropParts(anURI);
        vxReadParts(anURI, theText, afDecodePlus);
        return;
    }
    // The parts that stay are written in front, with the blanks of the new ones made unmistakable.
    char* theOld = vxWriteParts(anURI);
    const size_t theOldLength = theOld == NULL ? 0 : strlen(theOld);
    const size_t theLength = strlen(theText);
    char* theBoth = static_cast<char*>(vxMalloc(theOldLength + theLength + 1));
    if (theOld != NULL && theBoth != NULL) {
        memcpy(theBoth, theOld, theOldLength);
        memcpy(theBoth + theOldLength, theText, theLength + 1);
        vxDropParts(anURI);
        vxReadParts(anURI, theBoth, afDecodePlus);
    }
    free(theBoth);
    free(theOld);
}

bool vxURI_HasQueryPart(const vxURI* anURI, const char* aName) {
    for (size_t i = 0; i < vxURI_GetQueryPartCount(anURI); ++i) {
        if (strcmp(anURI->mQueryParts[i].mName, aName) == 0) {
            return true;
        }
    }
    return false;
}

char* vxURI_GetQueryPart(const vxURI* anURI, const char* aName) {
    for (size_t i = 0; i < vxURI_GetQueryPartCount(anURI); ++i) {
        if (strcmp(anURI->mQueryParts[i].mName, aName) == 0) {
            return vxStrdup(anURI->mQueryParts[i].mValue);
        }
    }
    return NULL;
}

size_t vxURI_GetQueryPartCount(const vxURI* anURI) {
    return anURI == NULL ? 0 : anURI->mQueryPartCount;
}

bool vxURI_GetQueryPartAt(const vxURI* anURI, size_t anIndex, char** aName, char** aValue) {
    if (anIndex >= vxURI_GetQueryPartCount(anURI)) {
        return false;
    }
    *aName = vxStrdup(anURI->mQueryParts[anIndex].mName);
    *aValue = vxStrdup(anURI->mQueryParts[anIndex].mValue);
    return true;
}
