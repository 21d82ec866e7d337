// A path is valid or wholly empty; a directory ends with a slash; combining never leaves "." or "..".

#include <vx/PathName.h>

#include "Input.h"

namespace {

void Check(const vxPathName& aPath) {
    const vxCString thePath = aPath.GetPath();
    if (!aPath.IsValid()) {
        vxfuzz::Expect(thePath.IsEmpty() && aPath.GetFullName().IsEmpty(),
                       "an invalid path is empty");
        return;
    }
    vxfuzz::Expect(thePath.Last() == '/', "the directory part ends with a slash");
    vxfuzz::Expect(aPath.IsDirPath() != aPath.IsFilePath(), "a path is of one kind");
    for (size_t i = 0; i < aPath.GetPathCount() && i < 8; ++i) {
        vxfuzz::Expect(!aPath.GetPathPart(i).Contains("/"), "a part has no slash");
    }
    aPath.GetParentPath();
    aPath.GetVolume();
    aPath.GetDirName();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const std::string theAnchor = "/" + theInput.Line();
    const std::string theText = theInput.Rest();
    Check(vxPathName::MakeFilePath(theText.c_str()));
    Check(vxPathName::MakeDirPath(theText.c_str()));
    const vxPathName theDir = vxPathName::MakeDirPath(theAnchor.c_str());
    if (theDir.IsDirPath()) {
        const vxPathName theCombined = vxPathName::MakeCombinedDirPath(theDir, theText.c_str());
        Check(theCombined);
        vxfuzz::Expect(
            !theCombined.GetPath().Contains("/../") && !theCombined.GetPath().Contains("/./"),
            "a combined path is simple");
        Check(vxPathName::MakeCombinedFilePath(theDir, theText.c_str()));
    }
    return 0;
}
