#pragma once

#include <cstddef>
#include <string>
#include <vector>

class vxCSVStringList;

namespace vxmedia {

/// Endings of file names, without the dot and in any case: "jpg", "tar.gz".
class NameEndings {
public:
    NameEndings() = default;
    explicit NameEndings(const vxCSVStringList& aList);

    /// Returns whether the last part of the path ends with a dot and one of them.
    bool Match(const char* aPath) const;

private:
    std::vector<std::string> mEndings;  // with their dot, in lower case
};

/// How a scan works.
struct ScanOptions {
    bool mfHidden = true;          // look at what begins with a dot, too
    NameEndings mSkippedEndings;   // count as other files, unopened
    NameEndings mExpectedEndings;  // refuse what nobody recognizes
    size_t mShownRefusals = 10;    // in the report
};

}  // namespace vxmedia
