// Whole files, read into one block of their size.

#include "vx/FileHelper.h"

#include <libteskTools/Memory.h>

#include <cstdlib>

#include "vx/DataBuffer.h"
#include "vx/Error.h"
#include "vx/File.h"
#include "vx/PathName.h"

namespace {

int vxErrorCode(const vxFile& aFile) {
    return aFile.GetErrorCode() == 0 ? kvxFileErrorUnknown : aFile.GetErrorCode();
}

// Reads until everything is there, the file ends or reading fails.
bool vxReadAll(vxFile& aFile, char* aBuffer, size_t aSize) {
    while (aSize > 0) {
        const ssize_t theCount = aFile.Read(aBuffer, aSize);
        if (theCount <= 0) {
            return false;
        }
        aBuffer += theCount;
        aSize -= static_cast<size_t>(theCount);
    }
    return true;
}

}  // namespace

vxError vxFileHelper::LoadInBuffer(const vxPathName& aPath, vxDataBuffer& aBuffer, int anOptions,
                                   unsigned int aMaxSize) {
    const vxCString thePath = aPath.GetFullPath();
    vxFile theFile(thePath, vxFileOpenMode_Read);
    if (!theFile.IsOpened()) {
        return vxError(vxErrorCode(theFile),
                       vxCString::Format("Unable to open file '%s'", thePath.c_str()));
    }
    ssize_t theLength;
    if (vxFileOffset_to_ssize_t(theFile.Length(), &theLength) != 0 || theLength < 0 ||
        static_cast<size_t>(theLength) > aMaxSize) {
        return vxError(-1,
                       vxCString::Format("File '%s' is too large to be loaded", thePath.c_str()));
    }
    const size_t theSize = static_cast<size_t>(theLength);
    const size_t theZero = (anOptions & kvxFileLoadOption_AppendZero) != 0 ? 1 : 0;
    char* theBlock = static_cast<char*>(vxTryMalloc(theSize + theZero));
    if (theBlock == NULL) {
        return vxError();
    }
    if (!vxReadAll(theFile, theBlock, theSize)) {
        free(theBlock);
        return vxError(
            vxErrorCode(theFile),
            vxCString::Format("Unable to read requested size from file '%s'", thePath.c_str()));
    }
    if (theZero != 0) {
        theBlock[theSize] = '\0';
    }
    aBuffer.Set(theBlock, theSize + theZero);
    return vxError();
}
