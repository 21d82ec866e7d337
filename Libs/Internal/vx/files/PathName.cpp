// Paths in parts.
//
// The platform normalizes, this file cuts: the text that comes back is taken apart where it lies and
// each part copied once. Every change ends in UpdatePathKind(), so that the kind follows from the
// parts and an invalid path has none.

#include "vx/PathName.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Assert.h>
#include <libvxOS/Dir.h>
#include <libvxOS/File.h>
#include <libvxOS/Path.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

struct vxFree {
    void operator()(char* aText) const { free(aText); }
};
using vxPlatformText = std::unique_ptr<char, vxFree>;

// Copies the bytes of a string and returns the end of the copy.
char* vxCopy(char* aTarget, const vxCString& aText) {
    memcpy(aTarget, aText.c_str(), aText.length());
    return aTarget + aText.length();
}

const char* vxTextOrEmpty(const char* aText) {
    return aText == NULL ? "" : aText;
}

bool vxEndsSegment(char aChar) {
    return aChar == '/' || aChar == '\0';
}

// Returns 1 for a segment `.`, 2 for `..` and 0 for any other.
size_t vxDots(const char* aSegment) {
    if (aSegment[0] != '.') {
        return 0;
    }
    if (vxEndsSegment(aSegment[1])) {
        return 1;
    }
    return aSegment[1] == '.' && vxEndsSegment(aSegment[2]) ? 2 : 0;
}

// Builds a simplified path segment by segment.
class vxPathSimplifier {
public:
    // `aTarget` has room for the path that is simplified and one byte.
    vxPathSimplifier(char* aTarget, bool afAbsolute)
        : mStart(aTarget), mEnd(aTarget), mfAbsolute(afAbsolute), mfBackAtRoot(false) {}

    // Adds the segment that a text begins with and returns what follows it.
    const char* Append(const char* aSegment) {
        if (mEnd != mStart || mfAbsolute) {
            *mEnd++ = '/';
        }
        while (!vxEndsSegment(*aSegment)) {
            *mEnd++ = *aSegment++;
        }
        mfBackAtRoot = false;
        return aSegment;
    }

    // Takes the last segment back; false where there is none to take.
    bool StepBack() {
        if (mEnd == mStart) {
            return false;
        }
        do {
            --mEnd;
        } while (mEnd != mStart && *mEnd != '/');
        if (mEnd == mStart) {
            if (!mfAbsolute || mfBackAtRoot) {
                return false;
            }
            mfBackAtRoot = true;
        }
        return true;
    }

    // Ends the path with a separator and returns its length.
    size_t Finish() {
        *mEnd++ = '/';
        return static_cast<size_t>(mEnd - mStart);
    }

private:
    char* mStart;
    char* mEnd;         // behind the last segment
    bool mfAbsolute;    // the path begins with a separator
    bool mfBackAtRoot;  // a step back has just led to the root
};

// Writes `aPath` simplified to `aTarget` and returns its length; 0 if it climbs too high.
size_t vxSimplify(const char* aPath, char* aTarget) {
    vxPathSimplifier theSimplifier(aTarget, *aPath == '/');
    for (;;) {
        while (*aPath == '/') {
            ++aPath;
        }
        if (*aPath == '\0') {
            return theSimplifier.Finish();
        }
        const size_t theDots = vxDots(aPath);
        if (theDots == 2 && !theSimplifier.StepBack()) {
            return 0;
        }
        aPath = theDots == 0 ? theSimplifier.Append(aPath) : aPath + theDots;
    }
}

}  // namespace

vxPathName::vxPathName(int aKind, const char* aPath) : mPathKind(kvxPathKind_Unknown) {
    SetFullPath(aPath, aKind);
}

vxPathName::vxPathName(const char* aDir, const char* aFileName, const char* anExtension)
    : mPathKind(kvxPathKind_Unknown) {
    SetFullPath(aDir, kvxPathKind_Dir);
    if (IsDirPath()) {
        mFileName = aFileName;
        mExtension = anExtension;
        UpdatePathKind();
    }
    if (!IsFilePath()) {
        Reset();
    }
}

vxPathName::vxPathName(const char* aDir, const char* aFullName) : mPathKind(kvxPathKind_Unknown) {
    SetFullPath(aDir, kvxPathKind_Dir);
    SetFullName(aFullName);
}

vxPathName::vxPathName(const vxPathName& aPath)
    : mPathKind(aPath.mPathKind),
      mPath(aPath.mPath),
      mFileName(aPath.mFileName),
      mExtension(aPath.mExtension) {}

vxPathName& vxPathName::operator=(const vxPathName& aPath) {
    mPathKind = aPath.mPathKind;
    mPath = aPath.mPath;
    mFileName = aPath.mFileName;
    mExtension = aPath.mExtension;
    mFullPath.Reinit();
    return *this;
}

vxPathName vxPathName::MakeFilePath(const char* aPath) {
    return vxPathName(kvxPathKind_File, aPath);
}

vxPathName vxPathName::MakeFilePath(const char* aDir, const char* aFullName) {
    return vxPathName(aDir, aFullName);
}

vxPathName vxPathName::MakeFilePath(const char* aDir, const char* aFileName,
                                    const char* anExtension) {
    return vxPathName(aDir, aFileName, anExtension);
}

vxPathName vxPathName::MakeDirPath(const char* aPath) {
    return vxPathName(kvxPathKind_Dir, aPath);
}

vxPathName vxPathName::MakeCombined(const vxPathName& anAnchorPath, const char* aRelative,
                                    int aKind) {
    VXASSERT(anAnchorPath.IsDirPath());
    vxPathName thePath;
    thePath.SetNormalized(aRelative, aKind, anAnchorPath.c_str());
    thePath.SimplifyPath();
    return thePath;
}

vxPathName vxPathName::MakeCombinedFilePath(const vxPathName& anAnchor, const char* aRelative) {
    return MakeCombined(anAnchor, aRelative, kvxPathKind_File);
}

vxPathName vxPathName::MakeCombinedDirPath(const vxPathName& anAnchor, const char* aRelative) {
    return MakeCombined(anAnchor, aRelative, kvxPathKind_Dir);
}

vxPathName vxPathName::MakeTempDirPath() {
    const vxPlatformText thePath(vxPath_GetTempDirPath());
    return MakeDirPath(thePath.get());
}

vxPathName vxPathName::MakeCacheDirPath() {
    const vxPlatformText thePath(vxPath_GetCacheDirPath());
    return MakeDirPath(thePath.get());
}

vxPathName vxPathName::MakeExistingPath(const char* aPath) {
    if (vxFile_Exists(aPath)) {
        return MakeFilePath(aPath);
    }
    return vxDir_Exists(aPath) ? MakeDirPath(aPath) : vxPathName();
}

bool vxPathName::IsAbsolute(const char* aPath) {
    return vxPath_IsAbsolute(aPath) != 0;
}

bool vxPathName::IsPathOnRemovableDrive(const char* aPath) {
    return vxPath_GetType(aPath) == kvxPathType_Removable;
}

bool vxPathName::DirExists(const vxCString& aPath) {
    return MakeDirPath(aPath).DirExists();
}

bool vxPathName::FileExists(const vxCString& aPath) {
    return MakeFilePath(aPath).FileExists();
}

vxCString vxPathName::NormalizePath(const char* aPath, bool afDir) {
    return NormalizePathWithAnchor(aPath, afDir, NULL);
}

vxCString vxPathName::NormalizePathWithAnchor(const char* aPath, bool afDir, const char* anAnchor) {
    vxCString theText = vxCString::FromAllocatedString(
        vxPath_Normalize(aPath, afDir ? 1 : 0, kvxPathNormalizeMode_Generic, anAnchor));
    if (afDir && !theText.IsEmpty() && theText.Last() != '/') {
        theText += '/';
    }
    return theText;
}

void vxPathName::SetFullPath(const char* aPath, int aKind) {
    SetNormalized(aPath, aKind, NULL);
}

void vxPathName::SetNormalized(const char* aPath, int aKind, const char* anAnchor) {
    const int theIsDir = aKind == kvxPathKind_Dir ? 1 : 0;
    const vxPlatformText theText(
        vxPath_Normalize(aPath, theIsDir, kvxPathNormalizeMode_Generic, anAnchor));
    Reset();
    if (theText != NULL) {
        ComputeFileNameExtensionAndPathKind(theText.get(), aKind);
    }
}

// Takes a normalized text apart. A file path needs a separator and something behind the last one.
void vxPathName::ComputeFileNameExtensionAndPathKind(const char* aText, int aKind) {
    if (aKind == kvxPathKind_File) {
        const char* theSlash = strrchr(aText, '/');
        if (theSlash == NULL || theSlash[1] == '\0') {
            return;
        }
        mPath = vxCString(aText, static_cast<size_t>(theSlash + 1 - aText));
        SplitFullName(theSlash + 1);
    } else {
        mPath = aText;
        if (!mPath.IsEmpty() && mPath.Last() != '/') {
            mPath += '/';
        }
    }
    UpdatePathKind();
    if (mPathKind != aKind) {
        Reset();
    }
}

void vxPathName::SplitFullName(const char* aName) {
    const char* theDot = strrchr(aName, '.');
    if (theDot == NULL) {
        mFileName = aName;
        mExtension.Reinit();
        return;
    }
    // Both copies are made before the first part changes: the name may be one of the parts.
    vxCString theFileName(aName, static_cast<size_t>(theDot - aName));
    vxCString theExtension(theDot + 1);
    mFileName.Swap(theFileName);
    mExtension.Swap(theExtension);
}

void vxPathName::UpdatePathKind() {
    if (mPath.IsEmpty()) {
        Reset();
    } else if (mFileName.IsEmpty() && mExtension.IsEmpty()) {
        mPathKind = kvxPathKind_Dir;
    } else {
        mPathKind = kvxPathKind_File;
    }
}

void vxPathName::SetPath(const char* aDir) {
    mPath = NormalizePath(aDir, true);
    UpdatePathKind();
}

void vxPathName::SetFullName(const char* aName) {
    SplitFullName(vxTextOrEmpty(aName));
    UpdatePathKind();
}

void vxPathName::SetFileName(const char* aName) {
    mFileName = aName;
    UpdatePathKind();
}

void vxPathName::SetExtension(const char* anExtension) {
    mExtension = anExtension;
    UpdatePathKind();
}

void vxPathName::ToDirPath() {
    mFileName.Reinit();
    mExtension.Reinit();
    UpdatePathKind();
}

void vxPathName::AppendPathPart(const char* aPart) {
    if (*vxTextOrEmpty(aPart) == '\0') {
        return;
    }
    if (mPath.IsEmpty()) {
        SetPath(aPart);
        return;
    }
    mPath += aPart;
    if (mPath.Last() != '/') {
        mPath += '/';
    }
    UpdatePathKind();
}

// What a walk over the directory `aDir` hands out. The blocks of this path are used again, so that
// a walk with one path allocates next to nothing.
void vxPathName::SetEntry(const vxPathName& aDir, const char* aName, bool afDir) {
    mPath = aDir.mPath;
    if (afDir) {
        mFileName.Reinit();
        mExtension.Reinit();
        AppendPathPart(aName);
        return;
    }
    const char* theDot = strrchr(aName, '.');
    const size_t theLength = theDot == NULL ? strlen(aName) : static_cast<size_t>(theDot - aName);
    const char* theExtension = theDot == NULL ? "" : theDot + 1;
    mFileName.InitWith(aName, 0, theLength);
    mExtension.InitWith(theExtension, 0, strlen(theExtension));
    UpdatePathKind();
}

void vxPathName::SimplifyPath() {
    if (!IsValid()) {
        return;
    }
    char theShort[256];
    const bool theIsShort = mPath.length() < sizeof(theShort);
    const vxPlatformText theLong(theIsShort ? NULL
                                            : static_cast<char*>(vxMalloc(mPath.length() + 1)));
    char* theText = theIsShort ? theShort : theLong.get();
    const size_t theLength = vxSimplify(mPath, theText);
    if (theLength == 0) {
        Reset();
    } else if (theLength != mPath.length()) {
        mPath.InitWith(theText, 0, theLength);
    }
}

void vxPathName::Reset() {
    mPathKind = kvxPathKind_Unknown;
    mPath.Reinit();
    mFileName.Reinit();
    mExtension.Reinit();
}

vxCString vxPathName::GetFullName() const {
    if (mExtension.IsEmpty()) {
        return mFileName;
    }
    vxCString theName;
    FillJoined(theName, vxCString());
    return theName;
}

vxCString vxPathName::GetFullPath() const {
    if (mFileName.IsEmpty() && mExtension.IsEmpty()) {
        return mPath;
    }
    vxCString thePath;
    FillJoined(thePath, mPath);
    return thePath;
}

const char* vxPathName::c_str() const {
    if (IsFilePath()) {
        FillJoined(mFullPath, mPath);
    } else {
        mFullPath = mPath;
    }
    return mFullPath.c_str();
}

// Writes directory and full name into one block. There is a name or an extension.
void vxPathName::FillJoined(vxCString& aTarget, const vxCString& aDir) const {
    const size_t theDot = mExtension.IsEmpty() ? 0 : 1;
    const size_t theLength = aDir.length() + mFileName.length() + theDot + mExtension.length();
    char* theEnd = aTarget.GetWriteBuf(theLength);
    theEnd = vxCopy(theEnd, aDir);
    theEnd = vxCopy(theEnd, mFileName);
    if (theDot != 0) {
        *theEnd++ = '.';
        vxCopy(theEnd, mExtension);
    }
    aTarget.UngetWriteBuf(theLength);
}

vxCString vxPathName::GetDirName() const {
    const size_t theCount = GetPathCount();
    return theCount == 0 ? vxCString() : GetPathPart(theCount - 1);
}

size_t vxPathName::GetPathCount() const {
    return mPath.Freq('/');
}

vxCString vxPathName::GetPathPart(size_t anIndex) const {
    const char* thePart = mPath;
    const char* theEnd = strchr(thePart, '/');
    for (; anIndex > 0 && theEnd != NULL; --anIndex) {
        thePart = theEnd + 1;
        theEnd = strchr(thePart, '/');
    }
    return theEnd == NULL ? vxCString() : vxCString(thePart, static_cast<size_t>(theEnd - thePart));
}

vxPathName vxPathName::GetParentPath() const {
    vxPathName theParent;
    vxCString theDir = mPath;
    if (IsDirPath()) {
        theDir = theDir.BeforeLast('/');
    }
    const size_t theSlash = theDir.Find('/', true);
    if (theSlash != vxCString::npos) {
        // What lies directly below the root has the root as its parent.
        theParent.SetPath(theSlash == 0 ? vxCString("/") : theDir.Left(theSlash));
    }
    return theParent;
}

vxCString vxPathName::GetVolume() const {
    return IsValid() ? GetPathPart(0) + '/' : vxCString();
}

bool vxPathName::DirExists() const {
    return IsDirPath() && vxDir_Exists(mPath);
}

bool vxPathName::FileExists() const {
    return IsFilePath() && vxFile_Exists(c_str());
}
