#pragma once

#include "MediaItem.h"
#include "library/SearchProperties.h"
#include "vx/CString.h"
#include "vx/ExpressionParser.h"
#include "vx/SearchExpression.h"

namespace vxmedia {

/// Tells which properties a media file has, and compares each by its kind.
///
/// Texts are compared without their case, as texts, whatever they look like. Other kinds are compared
/// by value; where it is unknown, nothing matches but "exists false". An unknown text is an empty one.
class LibraryEvaluator : public vxSearchExpressionEvaluator {
public:
    /// Asks about this item from now on.
    ///
    /// Owner:    the caller, who keeps it until the next one is set.
    void SetItem(SearchedItem* anItem) { mItem = anItem; }

    bool Evaluate(vxRelExpression* anExpression) override;

private:
    SearchedItem* mItem = NULL;
};

/// Search criteria about media files, as they are typed.
///
///     LibraryCriteria theCriteria("upnp:artist = \"Björk\" and res@duration > \"0:05:00\"");
///     const vxCString theError = theCriteria.Read();
///     if (theError.IsEmpty() && theCriteria.Match(anItem)) { ... }
class LibraryCriteria : private vxExpressionParser {
public:
    explicit LibraryCriteria(const vxCString& aText) : vxExpressionParser(aText), mText(aText) {}

    /// Reads the criteria.
    ///
    /// Fails:    with an error text, which names the byte, counted from 1; it is empty on success.
    vxCString Read();

    /// Tells whether a media file matches; never before the criteria are read.
    bool Match(const MediaItem& anItem);

private:
    int GetPropertyID(const vxCString& aPropertyName) override;
    bool OperandSupportedForProperty(int anOperandID, int aPropertyID) override;

    vxCString DescribeGrammarError() const;
    vxCString CheckLiterals() const;

    const vxCString mText;  // reading consumes that of the parser
    LibraryEvaluator mEvaluator;
};

}  // namespace vxmedia
