#pragma once

// Files that are read and replaced as a whole.

#include <string>

enum class vxWholeFileResult { Read, Missing, Failed };

/// Reads a regular file of up to 16 MiB.
vxWholeFileResult vxWholeFile_Read(const std::string& aPath, std::string* aText);

/// Replaces a file by a text: whoever opens it, at any moment, finds the old text or the new one, also
/// after a power cut. A symbolic link stays, and the file that it leads to is replaced. Mode and, where
/// the process may, owner stay. Returns 0, or the system's error number; the file is the old one then.
int vxWholeFile_Replace(const std::string& aPath, const std::string& aText);

/// Makes a directory and those above it; true when it exists afterwards.
bool vxWholeFile_MakeDirectory(const std::string& aPath);
