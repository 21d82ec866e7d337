#pragma once

#include <cstdint>

namespace vxmedia {

/// What a path names.
enum class FileKind { Missing, Regular, Directory, Link, Special };

/// Finds out what the path names without opening it: opening a pipe could wait for ever.
///
/// A symbolic link is looked through only with `afFollow`. `aSize`, unless null, receives the bytes
/// of a regular file, else 0. What cannot be examined counts as missing.
FileKind GetFileKind(const char* aPath, bool afFollow, uint64_t* aSize);

}  // namespace vxmedia
