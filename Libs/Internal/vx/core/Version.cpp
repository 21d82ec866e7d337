// Three numbers; one of the two comparisons is no order, see the header.

#include "vx/Version.h"

#include <libteskTools/Convert.h>

#include <tuple>

namespace {

// Reads the text before the first dot and leaves what follows the dot in `aText`.
uint32_t vxTakePart(vxCString& aText) {
    uint32_t thePart = 0;
    vxConvert_strtouint32(aText.BeforeFirst('.'), &thePart);
    aText = aText.AfterFirst('.');
    return thePart;
}

}  // namespace

vxVersion::vxVersion(const vxCString& aText) {
    vxCString theText = aText;
    mMajor = vxTakePart(theText);
    mMinor = vxTakePart(theText);
    mRevision = vxTakePart(theText);
}

bool vxVersion::IsGreater(uint32_t aMajor, uint32_t aMinor, uint32_t aRevision) const {
    return std::tie(mMajor, mMinor, mRevision) > std::tie(aMajor, aMinor, aRevision);
}

bool vxVersion::IsGreaterOrEqual(uint32_t aMajor, uint32_t aMinor, uint32_t aRevision) const {
    return mMajor >= aMajor && mMinor >= aMinor && mRevision >= aRevision;
}

vxCString vxVersion::ToString(int aMaxPart) const {
    VXASSERT((aMaxPart <= 3) && (aMaxPart > 0));
    const unsigned long theMajor = mMajor;
    const unsigned long theMinor = mMinor;
    const unsigned long theRevision = mRevision;
    vxCString theText;
    switch (aMaxPart) {
        case 1:
            theText.Printf("%lu", theMajor);
            break;
        case 2:
            theText.Printf("%lu.%lu", theMajor, theMinor);
            break;
        case 3:
            theText.Printf("%lu.%lu.%lu", theMajor, theMinor, theRevision);
            break;
        default:
            break;
    }
    return theText;
}
