#pragma once

#include "readers/MediaSource.h"
#include "vx/CString.h"
#include "vx/File.h"

namespace vxmedia {

/// The bytes of a file on disk. It is opened at the first read, so an empty one never is.
class FileSource : public MediaSource {
public:
    FileSource(const vxCString& aPath, uint64_t aSize) : MediaSource(aSize), mPath(aPath) {}

private:
    size_t Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) override;

    const vxCString mPath;
    vxFile mFile;
    uint64_t mPos = 0;  // of the open file
};

}  // namespace vxmedia
