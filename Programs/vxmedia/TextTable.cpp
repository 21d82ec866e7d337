// Widths count characters of UTF-8, not bytes; names in columns were made printable before.

#include "TextTable.h"

#include <algorithm>
#include <string>

#include "vx/GrowingBuffer.h"

namespace vxmedia {

namespace {

size_t WidthOf(const vxCString& aText) {
    const char* theText = aText.c_str();
    return static_cast<size_t>(std::count_if(theText, theText + aText.length(), [](char aByte) {
        return (static_cast<unsigned char>(aByte) & 0xC0) != 0x80;
    }));
}

}  // namespace

std::vector<size_t> TextTable::ColumnWidths() const {
    std::vector<size_t> theWidths;
    for (const std::vector<vxCString>& theRow : mRows) {
        theWidths.resize(std::max(theWidths.size(), theRow.size()));
        for (size_t i = 0; i < theRow.size(); ++i) {
            theWidths[i] = std::max(theWidths[i], WidthOf(theRow[i]));
        }
    }
    return theWidths;
}

vxCString TextTable::GetText() const {
    const std::vector<size_t> theWidths = ColumnWidths();
    vxGrowingBuffer theText(0);
    for (const std::vector<vxCString>& theRow : mRows) {
        for (size_t i = 0; i < theRow.size(); ++i) {
            const bool theIsLast = i + 1 == theRow.size();
            const bool theIsRight = mAlignment[i] == 'r';
            const std::string thePadding(theWidths[i] - WidthOf(theRow[i]), ' ');
            if (theIsRight) {
                theText += thePadding.c_str();
            }
            theText.Append(theRow[i].c_str(), theRow[i].length());
            if (!theIsLast) {
                theText += theIsRight ? "" : thePadding.c_str();
                theText += "  ";
            }
        }
        theText += "\n";
    }
    theText.Append("", 1);
    return vxCString::FromAllocatedString(theText.TakeOwnership(false, NULL));
}

}  // namespace vxmedia
