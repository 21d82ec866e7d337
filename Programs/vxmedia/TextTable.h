#pragma once

#include <vector>

#include "vx/CString.h"

namespace vxmedia {

/// Rows of cells that are printed in columns, two blanks apart.
///
/// Columns are as wide as their widest cell. The last one is not padded, so no line ends with
/// blanks, and a cell that has blanks itself belongs there.
class TextTable {
public:
    /// `anAlignment` has one letter per column: l for left, r for right.
    explicit TextTable(const char* anAlignment) : mAlignment(anAlignment) {}

    /// Adds a row with a cell for each column.
    void AddRow(std::vector<vxCString> aRow) { mRows.push_back(std::move(aRow)); }

    /// Returns all rows, each ended by a line feed.
    vxCString GetText() const;

private:
    std::vector<size_t> ColumnWidths() const;

    const char* mAlignment;  // borrowed, static
    std::vector<std::vector<vxCString>> mRows;
};

}  // namespace vxmedia
