#pragma once

// A directory for the files of one test.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vxtest {

/// An empty directory of its own that goes, with everything in it, when the object goes.
class TempDir {
public:
    TempDir() : TempDir(std::filesystem::temp_directory_path()) {}
    explicit TempDir(const std::filesystem::path& aParent) {
        std::string thePattern = (aParent / "vxXXXXXX").string();
        if (mkdtemp(thePattern.data()) == nullptr) {
            perror(thePattern.c_str());
            abort();
        }
        mPath = thePattern;
    }
    ~TempDir() {
        std::error_code theIgnored;
        std::filesystem::remove_all(mPath, theIgnored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The directory, without separator at its end.
    const std::string& Path() const { return mPath; }

    /// The path of a name inside the directory.
    std::string operator/(const std::string& aName) const { return mPath + "/" + aName; }

    /// Writes a file and returns its path.
    std::string Write(const std::string& aName, const std::string& aContents = "") const {
        std::ofstream(*this / aName, std::ios::binary) << aContents;
        return *this / aName;
    }

    /// Makes a directory, with those above it, and returns its path.
    std::string MakeDir(const std::string& aName) const {
        std::filesystem::create_directories(*this / aName);
        return *this / aName;
    }

    /// Makes a symbolic link and returns its path.
    std::string Link(const std::string& aName, const std::string& aTarget) const {
        std::filesystem::create_symlink(aTarget, *this / aName);
        return *this / aName;
    }

    /// The contents of a file.
    std::string Read(const std::string& aName) const {
        std::ifstream theFile(*this / aName, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(theFile), {});
    }

    bool Has(const std::string& aName) const {
        return std::filesystem::symlink_status(*this / aName).type() !=
               std::filesystem::file_type::not_found;
    }

private:
    std::string mPath;
};

}  // namespace vxtest
