#pragma once

#include <cstdint>
#include <vector>

#include "MediaItem.h"
#include "vx/CString.h"

namespace vxmedia {

/// One fact about a media file: the same wherever it is shown or exported.
struct ItemFact {
    enum class Kind { Text, Number, Seconds, Unknown };

    const char* mName;     // a literal: letters only
    Kind mKind;            // Unknown: the file has it, but nobody knows how much
    vxCString mText;       // as it is shown, safe for a terminal
    uint64_t mNumber = 0;  // of Number; milliseconds of Seconds
};

/// Returns all that is known about a file, in the order in which it is shown; the number comes first.
std::vector<ItemFact> GetItemFacts(const MediaItem& anItem);

/// Returns a number in decimal.
vxCString NumberText(uint64_t aNumber);

/// Returns seconds with three decimals.
vxCString SecondsText(uint64_t aDurationMS);

}  // namespace vxmedia
