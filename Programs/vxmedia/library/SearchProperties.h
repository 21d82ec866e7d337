#pragma once

#include <memory>

#include "MediaItem.h"
#include "library/ItemKeys.h"
#include "vx/CString.h"

namespace vxmedia {

/// A media file that criteria are asked about, and its media info from the first question on.
class SearchedItem {
public:
    /// The item must live for as long.
    explicit SearchedItem(const MediaItem& anItem) : mItem(anItem) {}

    const MediaItem& GetItem() const { return mItem; }
    const vxMediaInfo& GetInfo() {
        if (mInfo == nullptr) {
            mInfo = mItem.MakeInfo();
        }
        return *mInfo;
    }

private:
    const MediaItem& mItem;
    std::unique_ptr<vxMediaInfo> mInfo;
};

/// How the values of a property are compared.
enum class SearchKind {
    Text,
    Number,
    Decimal,   // a number with or without a fraction
    Truth,     // 1 or 0
    Duration,  // milliseconds
    Date,
    Presence,  // only whether there is one
};

/// One property that search criteria may name.
struct SearchProperty {
    SearchKind mKind;
    const ItemKey* mRow;                            // where infos have its value
    vxCString (*mMakeValue)(SearchedItem& anItem);  // unless null, used instead

    /// Returns the value of an item; empty when it is unknown.
    ///
    /// `aBuffer` may get the text, which stays until it or the item changes.
    const char* ReadValue(SearchedItem& anItem, vxCString& aBuffer) const;

    /// Does an operator, a kvxExpressionOperandID, make sense for the property?
    bool Supports(int anOperandID) const;

    /// Returns what a literal has to be, such as "a number", unless `aLiteral` is that.
    const char* GetExpectedLiteral(const vxCString& aLiteral) const;

    /// Compares the value of an item with a literal by its kind. Values that are unknown, or not what
    /// they should be, match nothing.
    bool Compare(const char* aValue, int anOperandID, const vxCString& aLiteral) const;
};

/// Returns the number of a property, or -1: by the names of media servers, by the keys of
/// vx/MediaInfoKeys.h and by the readable names of ItemKeys.h, in the case shown.
int FindSearchProperty(const vxCString& aName);

/// Returns the property of a number.
const SearchProperty& GetSearchProperty(int aNumber);

}  // namespace vxmedia
