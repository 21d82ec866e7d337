#pragma once

#include "MediaItem.h"
#include "TextTable.h"
#include "vx/CString.h"

namespace vxmedia {

/// The table in which media files are listed: its heading, and a row for each file.
class ItemTable {
public:
    ItemTable();

    void Add(const MediaItem& anItem);

    uint32_t GetCount() const { return mCount; }

    /// Returns the table, and below it how many of `aTotal` media files it has.
    vxCString GetText(size_t aTotal) const;

private:
    TextTable mTable;
    uint32_t mCount = 0;
};

}  // namespace vxmedia
