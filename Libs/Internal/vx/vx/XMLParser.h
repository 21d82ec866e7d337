#pragma once

#include <cstddef>

#include "vx/Api.h"
#include "vx/CString.h"

class vxError;
class vxPathName;
class vxXMLDocument;

/// What a parser refuses to go beyond; texts come from outside.
struct vxXMLParserLimits {
    size_t mMaxDepth = 1000;                  ///< elements within each other
    size_t mMaxAttributes = 256;              ///< of one element
    size_t mMaxTextSize = 16 * 1024 * 1024;   ///< bytes of one text, attribute value or name
    size_t mMaxFileSize = 256 * 1024 * 1024;  ///< bytes of a file
};

/// Codes of the errors that a parser gives; a file that cannot be read gives the code of the file.
enum {
    kvxXMLParserError_Syntax = 1,      ///< no well-formed XML
    kvxXMLParserError_Limit = 2,       ///< well-formed so far, but beyond a limit
    kvxXMLParserError_Unsupported = 3  ///< an internal subset, another encoding or version
};

/// Reads XML 1.0 text in UTF-8 into a tree.
///
/// Elements, attributes, text, CDATA sections (as text) and comments inside the root are read; the
/// declaration's version is kept, processing instructions and what stands around the root are passed
/// over. The five named entities and character references are known, no others: there is no DTD, and
/// no external entity is ever looked at. A DOCTYPE is passed over; one with an internal subset is
/// refused.
///
/// Blanks between elements are dropped where an element holds nothing but elements and comments; they
/// stay beside text. Line ends become "\n", and blanks in attribute values spaces, unless they were
/// written as character references.
///
/// What was read can be written again, and is the same XML, with these exceptions, for which the
/// writer is the reason: a text that holds "&amp;" literally loses it to "&", line ends and tabs in
/// attribute values become blanks when they are read again, and a carriage return in a text a line
/// end; elements and comments beside text get line breaks around them; a section of blanks beside
/// elements is dropped when it is read again.
///
///     vxXMLDocument theDocument;
///     vxError theError;
///     vxXMLParser theParser;
///     if (!theParser.Parse("<a><b/></a>", theDocument, theError)) {
///         puts(theError.GetErrorStr().c_str());   // "line 1, column 4: expected ..."
///     }
///
/// Threads:  one at a time.
/// Cost:     linear in the text.
class VX_EXPORT vxXMLParser {
public:
    /// A parser with the limits that vxXMLParserLimits begins with.
    vxXMLParser() = default;

    /// A parser with limits of its own.
    explicit vxXMLParser(const vxXMLParserLimits& aLimits) : mLimits(aLimits) {}

    /// The limits of the parses to come.
    /// @{
    void SetLimits(const vxXMLParserLimits& aLimits) { mLimits = aLimits; }
    const vxXMLParserLimits& GetLimits() const { return mLimits; }
    /// @}

    /// Replaces the document by the tree of a text.
    ///
    /// Fails:    false, with the line and column (in characters, from 1) and what was expected there
    ///           in the error, whose module is "XMLParser"; the document is left alone.
    bool Parse(const vxCString& aText, vxXMLDocument& aDocument, vxError& anError) const;

    /// As above, for `aSize` bytes, which need no NUL behind them.
    bool Parse(const void* aBytes, size_t aSize, vxXMLDocument& aDocument, vxError& anError) const;

    /// As above, for a file.
    bool ParseFile(const vxPathName& aPath, vxXMLDocument& aDocument, vxError& anError) const;

private:
    vxXMLParserLimits mLimits;
};
