#pragma once

#include <cstddef>

#include "vx/CString.h"

class vxDataBuffer;

namespace vxmedia {

/// Reads a file of at most `aMaxSize` bytes into the buffer.
///
/// Fails:    with an error text, which is empty on success; the buffer is left alone. Pipes and
///           devices are refused: reading one could wait for ever.
vxCString ReadWholeFile(const vxCString& aPath, vxDataBuffer& aBuffer, unsigned int aMaxSize);

/// Makes these bytes the contents of a file: at any moment it holds the old contents or the new ones.
///
/// A symbolic link is replaced by the file. What is no file is left alone.
///
/// Fails:    with an error text, which is empty on success; the file is the old one then.
vxCString WriteWholeFile(const vxCString& aPath, const void* aBytes, size_t aSize);

/// As above; the new contents are prepared under that other path, in the same directory.
vxCString WriteWholeFile(const vxCString& aPath, const vxCString& aNewPath, const void* aBytes,
                         size_t aSize);

}  // namespace vxmedia
