// The library finds its bootstrap file through the environment, so a directory that is named at the
// start goes there: settings, paths in them and records of measurements then agree.

#include "config/ConfigPlace.h"

#include <libteskTools/ConfigFile.h>
#include <libvxOS/Path.h>

#include <climits>
#include <cstdlib>

#include "LogCapture.h"
#include "vx/Config.h"
#include "vx/File.h"

namespace vxmedia {

namespace {

// The bootstrap file is written as a configuration is: whole or not at all, with quotes where the
// path needs them.
vxCString MakeBootstrapFile(const vxCString& aPath, const char* aDirectory) {
    const LogCapture theCapture(VXLOGLEVEL_ERROR);
    vxConfigFile* theFile = vxConfigFile_New(NULL, aPath, kBootstrapFileName);
    vxConfigFile_SetString(theFile, NULL, "ReadPath", aDirectory);
    vxConfigFile_SetString(theFile, NULL, "WritePath", aDirectory);
    const bool theIsSaved = vxConfigFile_Save(theFile);
    vxConfigFile_Delete(theFile);
    return theIsSaved ? vxCString()
                      : theCapture.GetError(vxCString("ERROR: Unable to write '") + aPath + "'");
}

}  // namespace

vxCString ChooseConfigDirectory(const vxCString& aDirectory) {
    char theDirectory[PATH_MAX];
    if (aDirectory.IsEmpty() || !vxConfigFile_CreatePaths(NULL, aDirectory, NULL) ||
        realpath(aDirectory, theDirectory) == NULL) {
        return vxCString("ERROR: Unable to use the configuration directory '") + aDirectory + "'";
    }
    setenv("VXCONFIGPATH", theDirectory, 1);
    const ConfigPlace thePlace = FindConfigPlace();
    return thePlace.mfExists ? vxCString()
                             : MakeBootstrapFile(thePlace.mBootstrapPath, theDirectory);
}

ConfigPlace FindConfigPlace() {
    ConfigPlace thePlace;
    thePlace.mDirectory =
        vxCString::FromAllocatedString(vxPath_GetDefaultConfigPath(kBootstrapFileName));
    thePlace.mBootstrapPath = vxConfig::GetValidPath(thePlace.mDirectory, kBootstrapFileName, "");
    thePlace.mfExists = vxFile::Exists(thePlace.mBootstrapPath);
    return thePlace;
}

vxCString FindWritableDirectory() {
    const LogCapture theCapture(VXLOGLEVEL_WARNING);
    vxCString theReadPath;
    vxCString theWritePath;
    vxConfigConfig(kBootstrapFileName).GetPaths(theReadPath, theWritePath);
    return theWritePath;
}

}  // namespace vxmedia
