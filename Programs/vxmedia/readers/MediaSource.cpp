// A window over a file, with an account of what has been fetched.
//
// Headers are read in pieces of a few bytes that lie close together, so one fetch serves many
// reads; a walk that leaps over chunks fetches one window for each leap.

#include "MediaSource.h"

#include <algorithm>
#include <cstring>

namespace vxmedia {

size_t MediaSource::Read(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
    if (aPos >= mSize || aCount == 0) {
        return 0;
    }
    const size_t theCount = static_cast<size_t>(std::min<uint64_t>(aCount, mSize - aPos));
    if (theCount > kWindow_Size) {
        return CountedFetch(aPos, aBuffer, theCount);
    }
    if (!IsInWindow(aPos, theCount) && !FillWindow(aPos)) {
        return 0;
    }
    const size_t theOffset = static_cast<size_t>(aPos - mWindowPos);
    const size_t theAvailable = std::min(theCount, mWindowLength - theOffset);
    memcpy(aBuffer, mWindow + theOffset, theAvailable);
    return theAvailable;
}

size_t MediaSource::CountedFetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
    if (mFetched + aCount > mFetchLimit) {
        mfExhausted = true;
    }
    if (mfExhausted || mfFailed) {
        return 0;
    }
    mFetched += aCount;
    const size_t theCount = Fetch(aPos, aBuffer, aCount);
    mfFailed = mfFailed || theCount < aCount;
    return theCount;
}

bool MediaSource::IsInWindow(uint64_t aPos, size_t aCount) const {
    return aPos >= mWindowPos && aPos + aCount <= mWindowPos + mWindowLength;
}

bool MediaSource::FillWindow(uint64_t aPos) {
    const uint64_t theCount = std::min<uint64_t>(kWindow_Size, mSize - aPos);
    mWindowPos = aPos;
    mWindowLength = CountedFetch(aPos, mWindow, static_cast<size_t>(theCount));
    return mWindowLength > 0;
}

}  // namespace vxmedia
