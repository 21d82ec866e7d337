// New contents are written beside the file and take its name when the medium has them. A program that
// is killed meanwhile leaves the old file, and beside it the beginning of the new one, which a later
// write by a thread of the same number replaces: no two threads of the system have one number.

#include "WholeFile.h"

#include <unistd.h>

#include "FileStatus.h"
#include "vx/DataBuffer.h"
#include "vx/Error.h"
#include "vx/File.h"
#include "vx/FileHelper.h"
#include "vx/PathName.h"

namespace vxmedia {

namespace {

// A path without a directory is no file path of the library's.
vxCString WithDirectory(const vxCString& aPath) {
    return aPath.Contains("/") ? aPath : vxCString("./") + aPath;
}

const char* ReasonOf(int anErrorCode) {
    switch (anErrorCode) {
        case kvxFileErrorReadOnlyFileSystem:
            return "the file system is read-only";
        case kvxFileErrorNotFound:
            return "there is no such directory";
        case kvxFileErrorNoSpace:
            return "no space is left";
        default:
            return "it must not be written, or the device has failed";
    }
}

vxCString WriteError(const vxCString& aPath, const char* aReason) {
    return vxCString("ERROR: Unable to write '") + aPath + "': " + aReason;
}

// A device that is full takes a part first; asking again tells why it took no more.
bool WriteAll(vxFile& aFile, const void* aBytes, size_t aSize) {
    const char* theBytes = static_cast<const char*>(aBytes);
    for (size_t theDone = 0; theDone < aSize;) {
        const size_t theCount = aFile.Write(theBytes + theDone, aSize - theDone);
        if (theCount == 0) {
            return false;
        }
        theDone += theCount;
    }
    return true;
}

vxCString NewPathBeside(const vxCString& aPath) {
    return aPath.BeforeLast('/') +
           vxCString::Format("/.vxmedia-%ld.tmp", static_cast<long>(gettid()));
}

// Returns the reason of a failure, or null.
const char* WriteNewFile(const vxCString& aPath, const void* aBytes, size_t aSize) {
    vxFile theFile;
    if (!theFile.Create(aPath, false)) {
        return ReasonOf(theFile.GetErrorCode());
    }
    if (WriteAll(theFile, aBytes, aSize) && theFile.Flush() && theFile.Close()) {
        return NULL;
    }
    return ReasonOf(theFile.GetErrorCode());
}

}  // namespace

vxCString ReadWholeFile(const vxCString& aPath, vxDataBuffer& aBuffer, unsigned int aMaxSize) {
    if (GetFileStatus(aPath, true).mKind == FileKind::Special) {
        return vxCString("ERROR: Unable to read '") + aPath + "': it is no regular file";
    }
    const vxError theError = vxFileHelper::LoadInBuffer(
        vxPathName::MakeFilePath(WithDirectory(aPath)), aBuffer, kvxFileLoadOption_None, aMaxSize);
    return theError == 0 ? vxCString() : vxCString("ERROR: ") + theError.GetErrorStr();
}

vxCString WriteWholeFile(const vxCString& aPath, const void* aBytes, size_t aSize) {
    return WriteWholeFile(aPath, NewPathBeside(WithDirectory(aPath)), aBytes, aSize);
}

vxCString WriteWholeFile(const vxCString& aPath, const vxCString& aNewPath, const void* aBytes,
                         size_t aSize) {
    const FileKind theKind = GetFileStatus(aPath, true).mKind;
    if (theKind != FileKind::Missing && theKind != FileKind::Regular) {
        return WriteError(aPath, "it is no regular file");
    }
    const vxCString thePath = WithDirectory(aPath);
    if (thePath.Last() == '/') {
        return WriteError(aPath, "it is no file name");
    }
    const vxCString theNewPath = WithDirectory(aNewPath);
    vxFile::Remove(theNewPath);
    const char* theReason = WriteNewFile(theNewPath, aBytes, aSize);
    if (theReason == NULL && !vxFile::Rename(theNewPath, thePath)) {
        theReason = "it cannot be replaced";
    }
    if (theReason != NULL) {
        vxFile::Remove(theNewPath);
        return WriteError(aPath, theReason);
    }
    return vxCString();
}

}  // namespace vxmedia
