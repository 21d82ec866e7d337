// Whether more tokens follow depends on the next byte that is no delimiter. Its place is known at all
// times: it is looked for once, when a token has been taken, so that a long run of delimiters costs
// no more than its length, token by token.

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

// Returns the first place from `aPos` on whose byte is a delimiter, or is none; or the length.
template <bool Delimiter>
size_t vxFindPlace(const vxCString& aText, size_t aPos, const bool* afIsDelimiter) {
    const char* theText = aText.c_str();
    const size_t theLength = aText.length();
    while (aPos < theLength &&
           afIsDelimiter[static_cast<unsigned char>(theText[aPos])] != Delimiter) {
        ++aPos;
    }
    return aPos;
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
    // Only a tokenizer that is set up has a text: HasMoreTokens() counts on it.
    mString = VXCHECK(IsOk()) ? aString : vxCString();
    mPos = 0;
    mfHasMore = !mString.IsEmpty();
    mNextText = vxFindPlace<false>(mString, 0, mfIsDelimiter);
}

vxCString vxCStringTokenizer::GetNextToken() {
    if (!HasMoreTokens()) {
        return vxCString();
    }
    const size_t theStart = mMode == kTokenizerMode_Strtok ? mNextText : mPos;
    size_t theEnd = vxFindPlace<true>(mString, theStart, mfIsDelimiter);
    if (theEnd == mString.length()) {
        mPos = theEnd;
        mfHasMore = false;
    } else {
        mPos = theEnd + 1;
        theEnd += mMode == kTokenizerMode_ReturnDelimiters;
    }
    if (mNextText < mPos) {
        mNextText = vxFindPlace<false>(mString, mPos, mfIsDelimiter);
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
