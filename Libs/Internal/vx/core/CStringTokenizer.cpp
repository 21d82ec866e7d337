// Whether more tokens follow depends on the next byte that is no delimiter. Its place is looked up
// once for each run of delimiters and kept, so that a long run costs no more than its length, token
// by token.

#include "vx/CStringTokenizer.h"

#include <libteskTools/Convert.h>

#include <algorithm>
#include <iterator>

namespace {

bool vxAreBlanks(const vxCString& aText) {
    const char* theText = aText.c_str();
    return std::all_of(theText, theText + aText.length(), [](char aChar) {
        return vxConvert_isspace(static_cast<unsigned char>(aChar)) != 0;
    });
}

}  // namespace

vxCStringTokenizer::vxCStringTokenizer(const vxCString& aString, const vxCString& aDelimiters,
                                       vxCStringTokenizerMode aMode) {
    SetString(aString, aDelimiters, aMode);
}

void vxCStringTokenizer::SetString(const vxCString& aString, const vxCString& aDelimiters,
                                   vxCStringTokenizerMode aMode) {
    mDelimiters = aDelimiters;
    mMode = aMode;
    if (aMode == kTokenizerMode_Default) {
        mMode =
            vxAreBlanks(aDelimiters) ? kTokenizerMode_Strtok : kTokenizerMode_ReturnEmptyMiddleOnly;
    }
    std::fill(std::begin(mfIsDelimiter), std::end(mfIsDelimiter), false);
    for (size_t i = 0; i < mDelimiters.length(); ++i) {
        mfIsDelimiter[static_cast<unsigned char>(mDelimiters.c_str()[i])] = true;
    }
    Reinit(aString);
}

void vxCStringTokenizer::Reinit(const vxCString& aString) {
    if (!VXCHECK(IsOk())) {
        return;
    }
    mString = aString;
    mPos = 0;
    mfHasMore = !mString.IsEmpty();
    mNextText = FindPlace(mPos, false);
}

bool vxCStringTokenizer::HasMoreTokens() const {
    if (!VXCHECK(IsOk())) {
        return false;
    }
    if (mNextText < mPos) {
        mNextText = FindPlace(mPos, false);
    }
    if (mNextText < mString.length()) {
        return true;
    }
    return mfHasMore && (mMode == kTokenizerMode_ReturnEmptyAll ||
                         (mMode == kTokenizerMode_ReturnEmptyMiddleOnly && mPos == 0));
}

vxCString vxCStringTokenizer::GetNextToken() {
    if (!HasMoreTokens()) {
        return vxCString();
    }
    const size_t theStart = mMode == kTokenizerMode_Strtok ? mNextText : mPos;
    size_t theEnd = FindPlace(theStart, true);
    if (theEnd == mString.length()) {
        mPos = theEnd;
        mfHasMore = false;
    } else {
        mPos = theEnd + 1;
        theEnd += mMode == kTokenizerMode_ReturnDelimiters;
    }
    return vxCString(mString.c_str() + theStart, theEnd - theStart);
}

size_t vxCStringTokenizer::CountTokens() {
    if (!VXCHECK(IsOk())) {
        return 0;
    }
    Reinit(GetString());
    vxCStringTokenizer theCopy(*this);
    size_t theCount = 0;
    for (; theCopy.HasMoreTokens(); ++theCount) {
        theCopy.GetNextToken();
    }
    return theCount;
}

// Returns the place of the first byte from `aPos` on that is a delimiter, or is none; or the length.
size_t vxCStringTokenizer::FindPlace(size_t aPos, bool afDelimiter) const {
    const char* theText = mString.c_str();
    const size_t theLength = mString.length();
    while (aPos < theLength &&
           mfIsDelimiter[static_cast<unsigned char>(theText[aPos])] != afDelimiter) {
        ++aPos;
    }
    return aPos;
}
