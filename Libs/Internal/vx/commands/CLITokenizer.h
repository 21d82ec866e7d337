#pragma once

#include <libteskTools/Convert.h>

#include "vx/CString.h"

/// Walks the words of a text without copying the rest after each: a line of a megabyte stays linear.
///
/// The rules of words are those of BeforeNextSpace(). The text must outlive the walk.
class vxCLITokenizer {
public:
    vxCLITokenizer(const vxCString& aText, bool afUnquoteSingle)
        : mPos(aText.c_str()), mEnd(mPos + aText.length()), mfUnquoteSingle(afUnquoteSingle) {}

    /// Takes the next word into `aToken`; false, with an empty word, when none is left.
    bool Next(vxCString& aToken) {
        Trim();
        const char* theFirst = mPos;
        mPos = FindEnd();
        const char* theLast = mPos;
        const bool theFound = theFirst != theLast;
        if (IsQuoted(theFirst, theLast)) {
            ++theFirst;
            --theLast;
        }
        aToken = vxCString(theFirst, static_cast<size_t>(theLast - theFirst));
        Trim();
        return theFound;
    }

    /// Returns what has not been taken.
    vxCString Rest() const { return vxCString(mPos, static_cast<size_t>(mEnd - mPos)); }

private:
    static bool IsSpace(char aChar) {
        return vxConvert_isspace(static_cast<unsigned char>(aChar)) != 0;
    }

    void Trim() {
        while (mPos < mEnd && IsSpace(*mPos)) {
            ++mPos;
        }
        while (mPos < mEnd && IsSpace(mEnd[-1])) {
            --mEnd;
        }
    }

    const char* FindEnd() const {
        char theQuote = '\0';
        const char* thePos = mPos;
        for (; thePos < mEnd && *thePos != '\0'; ++thePos) {
            if (theQuote != '\0') {
                theQuote = *thePos == theQuote ? '\0' : theQuote;
            } else if (*thePos == '"' || *thePos == '\'') {
                theQuote = *thePos;
            } else if (*thePos == ' ' || *thePos == '\t') {
                break;
            }
        }
        return thePos;
    }

    bool IsQuoted(const char* aFirst, const char* aLast) const {
        return aLast - aFirst >= 2 && *aFirst == aLast[-1] &&
               (*aFirst == '"' || (*aFirst == '\'' && mfUnquoteSingle));
    }

    const char* mPos;  // what has not been taken, up to mEnd
    const char* mEnd;
    bool mfUnquoteSingle;
};
