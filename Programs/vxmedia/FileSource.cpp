#include "FileSource.h"

namespace vxmedia {

size_t FileSource::Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
    if (!mFile.IsOpened() && !mFile.Open(mPath, vxFileOpenMode_Read, 0)) {
        return 0;
    }
    if (aPos != mPos && mFile.Seek(static_cast<vxFileOffset>(aPos), vxFileSeekMode_Begin) < 0) {
        return 0;
    }
    size_t theTotal = 0;
    while (theTotal < aCount) {
        const auto theCount = mFile.Read(aBuffer + theTotal, aCount - theTotal);
        if (theCount <= 0) {
            break;
        }
        theTotal += static_cast<size_t>(theCount);
    }
    mPos = aPos + theTotal;
    return theTotal;
}

}  // namespace vxmedia
