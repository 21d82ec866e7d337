// Two-word arithmetic through the compiler's own 64-bit integers.

#include <libteskTools/ULongLong.h>

#include <charconv>
#include <cstring>

namespace {

uint64_t vxJoined(const vxULongLong& aValue) {
    return static_cast<uint64_t>(aValue.mHigh) << 32 | aValue.mLow;
}

void vxStore(vxULongLong& aTarget, uint64_t aValue) {
    aTarget.mLow = static_cast<uint32_t>(aValue);
    aTarget.mHigh = static_cast<uint32_t>(aValue >> 32);
}

}  // namespace

void vxULongLong_Set(vxULongLong* aValue, uint32_t aHigh, uint32_t aLow) {
    aValue->mLow = aLow;
    aValue->mHigh = aHigh;
}

bool vxULongLong_SetFromString(vxULongLong* aValue, const char* aText) {
    if (aText == NULL) {
        return false;
    }
    const char* theDigits = *aText == '+' ? aText + 1 : aText;
    const char* theEnd = theDigits + strlen(theDigits);
    uint64_t theValue = 0;
    const std::from_chars_result theResult = std::from_chars(theDigits, theEnd, theValue);
    if (theResult.ec != std::errc() || theResult.ptr != theEnd) {
        return false;
    }
    vxStore(*aValue, theValue);
    return true;
}

void vxULongLong_AddUInt32(vxULongLong* aValue, uint32_t anAddend) {
    vxStore(*aValue, vxJoined(*aValue) + anAddend);
}

void vxULongLong_Sub(vxULongLong* aValue, const vxULongLong* aSubtrahend) {
    vxStore(*aValue, vxJoined(*aValue) - vxJoined(*aSubtrahend));
}

bool vxULongLong_Less(const vxULongLong* aLeft, const vxULongLong* aRight) {
    return vxJoined(*aLeft) < vxJoined(*aRight);
}

bool vxULongLong_LessOrEqual(const vxULongLong* aLeft, const vxULongLong* aRight) {
    return vxJoined(*aLeft) <= vxJoined(*aRight);
}
