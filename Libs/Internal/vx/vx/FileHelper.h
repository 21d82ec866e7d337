#pragma once

#include "vx/Api.h"

class vxDataBuffer;
class vxError;
class vxPathName;

/// How a file is loaded; to be combined.
enum {
    kvxFileLoadOption_None = 0,
    kvxFileLoadOption_AppendZero = 1  // add a NUL, which the size counts, behind the contents
};

/// Loads whatever memory can hold.
constexpr unsigned int kvxFileLoad_MaxSize = 0xFFFFFFFE;

/// Whole files.
class VX_EXPORT vxFileHelper {
public:
    /// Replaces the buffer's block by the contents of a file of at most `aMaxSize` bytes.
    ///
    /// Fails:    the file's error code, or -1 where it has none, with "Unable to open file '%s'" or
    ///           "Unable to read requested size from file '%s'"; -1 with "File '%s' is too large to
    ///           be loaded", which is also said of what has no size, such as a pipe. The buffer is
    ///           left alone. When memory does not suffice the result is no error, yet the buffer
    ///           is left alone, too: programs depend on it; look at the buffer to be sure.
    /// Cost:     the memory of the contents; they are read in place.
    static vxError LoadInBuffer(const vxPathName& aPath, vxDataBuffer& aBuffer,
                                int anOptions = kvxFileLoadOption_None,
                                unsigned int aMaxSize = kvxFileLoad_MaxSize);
};
