// Parts of a query are decoded into one block and pointed at from one array: two allocations,
// whatever their number.

#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libteskTools/URI.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "Escapes.h"

namespace {

/// Decodes a run to a place that is not behind it, and returns the end of what was written.
char* vxDecode(const char* aStart, const char* anEnd, char* aTarget, bool afDecodePlus) {
    while (aStart != anEnd) {
        char theChar = *aStart++;
        if (theChar == '+' && afDecodePlus) {
            theChar = ' ';
        } else if (theChar == '%' && anEnd - aStart >= 2) {
            const int theHigh = vxHexValue(aStart[0]);
            const int theLow = vxHexValue(aStart[1]);
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

/// Parts without a byte are none.
size_t vxCountParts(const char* aText, const char* anEnd) {
    size_t theCount = 0;
    char theLast = '&';
    for (; aText != anEnd; ++aText) {
        theCount += theLast == '&' && *aText != '&' ? 1 : 0;
        theLast = *aText;
    }
    return theCount;
}

/// Gives a record without parts room for some; false when there is no memory.
bool vxMakeRoom(vxURI* anURI, size_t aTextsSize, size_t aPartCount) {
    anURI->mQueryTexts = static_cast<char*>(vxMalloc(aTextsSize));
    anURI->mQueryParts =
        static_cast<vxURIQueryPart*>(vxMalloc(aPartCount * sizeof(vxURIQueryPart)));
    if (anURI->mQueryTexts == NULL || anURI->mQueryParts == NULL) {
        vxDropParts(anURI);
        return false;
    }
    return true;
}

/// Reads the parts of a text into a record that has none.
void vxReadParts(vxURI* anURI, const char* aText, bool afDecodePlus) {
    const size_t theLength = strlen(aText);
    const char* const theEnd = aText + theLength;
    const size_t theCount = vxCountParts(aText, theEnd);
    // Each part needs at most two NULs in place of its separators.
    if (theCount == 0 || !vxMakeRoom(anURI, theLength + 2 * theCount, theCount)) {
        return;
    }
    char* theTarget = anURI->mQueryTexts;
    while (anURI->mQueryPartCount < theCount) {
        const char* theStop = std::find(aText, theEnd, '&');
        if (theStop != aText) {
            theTarget = vxReadPart(aText, theStop, theTarget, afDecodePlus,
                                   &anURI->mQueryParts[anURI->mQueryPartCount++]);
        }
        aText = theStop + 1;
    }
}

size_t vxTextsSize(const vxURI* anURI) {
    if (anURI->mQueryPartCount == 0) {
        return 0;
    }
    const char* theLast = anURI->mQueryParts[anURI->mQueryPartCount - 1].mValue;
    return static_cast<size_t>(theLast - anURI->mQueryTexts) + strlen(theLast) + 1;
}

/// Copies the parts of another record behind those of a record that has room for them.
void vxCopyParts(const vxURI* aSource, vxURI* aTarget) {
    char* const theTexts = aTarget->mQueryTexts + vxTextsSize(aTarget);
    std::copy_n(aSource->mQueryTexts, vxTextsSize(aSource), theTexts);
    for (size_t i = 0; i < aSource->mQueryPartCount; ++i) {
        const vxURIQueryPart& thePart = aSource->mQueryParts[i];
        aTarget->mQueryParts[aTarget->mQueryPartCount++] = {
            theTexts + (thePart.mName - aSource->mQueryTexts),
            theTexts + (thePart.mValue - aSource->mQueryTexts)};
    }
}

/// Makes the parts of a record those of two others; its own are not freed.
void vxJoinParts(const vxURI* aFirst, const vxURI* aSecond, vxURI* aTarget) {
    const size_t theCount = aFirst->mQueryPartCount + aSecond->mQueryPartCount;
    aTarget->mQueryPartCount = 0;
    if (theCount != 0 &&
        vxMakeRoom(aTarget, vxTextsSize(aFirst) + vxTextsSize(aSecond), theCount)) {
        vxCopyParts(aFirst, aTarget);
        vxCopyParts(aSecond, aTarget);
    }
}

/// Moves the parts of a record to one that has none.
void vxTakeParts(vxURI* aSource, vxURI* aTarget) {
    aTarget->mQueryParts = aSource->mQueryParts;
    aTarget->mQueryPartCount = aSource->mQueryPartCount;
    aTarget->mQueryTexts = aSource->mQueryTexts;
}

const vxURIQueryPart* vxFindPart(const vxURI* anURI, const char* aName) {
    const size_t theCount = aName == NULL ? 0 : vxURI_GetQueryPartCount(anURI);
    for (size_t i = 0; i < theCount; ++i) {
        if (strcmp(anURI->mQueryParts[i].mName, aName) == 0) {
            return &anURI->mQueryParts[i];
        }
    }
    return NULL;
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
    const vxURI theNone = {};
    vxJoinParts(anURI, &theNone, theCopy);
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
    // The text may be a part of the record, so that the old parts go last.
    vxURI theNew = {};
    vxReadParts(&theNew, aText == NULL ? "" : aText, afDecodePlus);
    vxURI theBoth = {};
    if (!afReplace) {
        vxJoinParts(anURI, &theNew, &theBoth);
        vxDropParts(&theNew);
    }
    vxDropParts(anURI);
    vxTakeParts(afReplace ? &theNew : &theBoth, anURI);
}

bool vxURI_HasQueryPart(const vxURI* anURI, const char* aName) {
    return vxFindPart(anURI, aName) != NULL;
}

char* vxURI_GetQueryPart(const vxURI* anURI, const char* aName) {
    const vxURIQueryPart* thePart = vxFindPart(anURI, aName);
    return thePart == NULL ? NULL : vxStrdup(thePart->mValue);
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
