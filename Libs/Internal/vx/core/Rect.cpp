// Rectangles are compared edge by edge; only sizes subtract, and they saturate.

#include "vx/Rect.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

int vxSaturatedDifference(int aMinuend, int aSubtrahend) {
    const int64_t theDifference = static_cast<int64_t>(aMinuend) - aSubtrahend;
    return static_cast<int>(std::clamp<int64_t>(theDifference, std::numeric_limits<int>::min(),
                                                std::numeric_limits<int>::max()));
}

// Cuts the band aBandNear..aBandFar off the range aNear..aFar.
void vxCutBand(int& aNear, int& aFar, int aBandNear, int aBandFar) {
    if (aBandNear >= aNear && aBandNear <= aFar) {
        aFar = aBandNear;
    }
    if (aBandFar >= aNear && aBandFar <= aFar) {
        aNear = aBandFar;
    }
}

}  // namespace

int vxRect::Width() const {
    return vxSaturatedDifference(lr.x, ul.x);
}

int vxRect::Height() const {
    return vxSaturatedDifference(lr.y, ul.y);
}

void vxRect::Empty() {
    *this = vxRect();
}

bool vxRect::Intersect(const vxRect& anOther) {
    ul = vxPoint(std::max(ul.x, anOther.ul.x), std::max(ul.y, anOther.ul.y));
    lr = vxPoint(std::min(lr.x, anOther.lr.x), std::min(lr.y, anOther.lr.y));
    if (lr.x > ul.x && lr.y > ul.y) {
        return true;
    }
    Empty();
    return false;
}

void vxRect::Union(const vxRect& anOther) {
    if (IsEmpty()) {
        *this = anOther;
        return;
    }
    ul = vxPoint(std::min(ul.x, anOther.ul.x), std::min(ul.y, anOther.ul.y));
    lr = vxPoint(std::max(lr.x, anOther.lr.x), std::max(lr.y, anOther.lr.y));
}

void vxRect::Subtract(const vxRect& anOther) {
    const vxRect theOther = anOther;  // may be this rectangle
    if (theOther.ul.x <= ul.x && theOther.lr.x >= lr.x) {
        vxCutBand(ul.y, lr.y, theOther.ul.y, theOther.lr.y);
    } else if (theOther.ul.y <= ul.y && theOther.lr.y >= lr.y) {
        vxCutBand(ul.x, lr.x, theOther.ul.x, theOther.lr.x);
    }
}

void vxRect::Log(int aLevel, vxLogModule aModule) const {
    VXLOG(aLevel, aModule, "(%d, %d)-(%d, %d)\n", ul.x, ul.y, lr.x, lr.y);
}
