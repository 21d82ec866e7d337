#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Names of the two files that a configuration directory holds.
constexpr char kBootstrapFileName[] = "ConfigPath.ini";
constexpr char kConfigFileName[] = "vxmedia.ini";

/// Where the configuration lies.
///
/// The bootstrap file names the directory of the file that is only read and that of its writable
/// copy. It lies in the directory that was named at the start, else where the library looks for it.
struct ConfigPlace {
    vxCString mDirectory;  // of the bootstrap file
    vxCString mBootstrapPath;
    bool mfExists = false;  // whether there is a bootstrap file
};

/// Makes the library look for the bootstrap file in this directory, from now on and everywhere in the
/// process. A directory that is missing is made, and so is its bootstrap file, which then names
/// the directory itself for both files.
///
/// Fails:    with an error text, which is empty on success.
vxCString ChooseConfigDirectory(const vxCString& aDirectory);

/// Finds out where the library looks.
ConfigPlace FindConfigPlace();

/// Returns the directory that takes what the program writes, as the bootstrap file has it.
vxCString FindWritableDirectory();

}  // namespace vxmedia
