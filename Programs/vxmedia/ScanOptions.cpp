#include "ScanOptions.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "vx/StringList.h"

namespace vxmedia {

namespace {

std::string LowerCase(const char* aText) {
    std::string theText = aText;
    std::transform(theText.begin(), theText.end(), theText.begin(), [](char aByte) {
        return static_cast<char>(tolower(static_cast<unsigned char>(aByte)));
    });
    return theText;
}

}  // namespace

NameEndings::NameEndings(const vxCSVStringList& aList) {
    for (size_t i = 0; i < aList.GetCount(); ++i) {
        vxCString theEnding = aList.GetAt(i);
        theEnding.TrimLeftRight();
        if (!theEnding.IsEmpty()) {
            mEndings.push_back(LowerCase(vxCString(".") + theEnding));
        }
    }
}

bool NameEndings::Match(const char* aPath) const {
    if (mEndings.empty()) {
        return false;
    }
    const char* theSlash = strrchr(aPath, '/');
    const std::string theName = LowerCase(theSlash == NULL ? aPath : theSlash + 1);
    return std::any_of(mEndings.begin(), mEndings.end(), [&theName](const std::string& anEnding) {
        return theName.size() >= anEnding.size() &&
               theName.compare(theName.size() - anEnding.size(), anEnding.size(), anEnding) == 0;
    });
}

}  // namespace vxmedia
