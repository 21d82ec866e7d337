#pragma once

#include <cstdint>

#include "vx/CString.h"
#include "vx/MediaInfo.h"

namespace vxmedia {

/// How the text of a value is to be understood.
enum class ValueKind {
    Text,
    Number,    // up to 4294967295
    Size,      // a number of bytes, up to 2^64 - 1
    Decimal,   // a number with or without a fraction
    Truth,     // 1 or 0
    Duration,  // milliseconds; shown as hours, minutes and seconds
    Ordinal,   // a number up to 65535 that is a field of the info, not a key
};

/// One thing that can be known about a media file.
struct ItemKey {
    const char* mKey;   // of vx/MediaInfoKeys.h; "-" for a field without one
    const char* mName;  // readable: letters, digits and hyphens
    ValueKind mKind;
    bool mfEditable;  // else the file system or the program has the last word
};

/// All of them in the order in which they are shown; ends with a null key.
extern const ItemKey kItemKeys[];

/// Returns the row of a key or of a readable name, or null.
const ItemKey* FindItemKey(const char* aKeyOrName);

/// Returns the name under which edits of this row are remembered: the key, if it has one.
inline const char* EditNameOf(const ItemKey& aRow) {
    return aRow.mKind == ValueKind::Ordinal ? aRow.mName : aRow.mKey;
}

/// Makes a typed value the text that the info has: "on" becomes "1", and "0:03:37" "217000".
///
/// Fails:    with an error text, which is empty on success; the value is left alone.
vxCString NormalizeValue(const ItemKey& aRow, vxCString& aValue);

/// Returns the value of a row as the info has it; empty when it is unknown.
vxCString GetValue(const vxMediaInfo& anInfo, const ItemKey& aRow);

/// Returns the value of a row as it is shown; empty when it is unknown.
vxCString GetShownValue(const vxMediaInfo& anInfo, const ItemKey& aRow);

/// Returns a duration as "0:03:37.000".
vxCString DurationText(uint64_t aDurationMS);

}  // namespace vxmedia
