#pragma once

#include <cstdint>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/GrowingBuffer.h"

/// Writes XML text from front to back, without a tree.
///
/// Text and attribute values are escaped by the five entities that XML has by name. Escaping twice is
/// for XML that travels inside XML text.
///
///     vxXMLBuilder theBuilder(1024);
///     theBuilder.StartTag("item");
///     theBuilder.AddAttribute("id", "7");
///     theBuilder.AddTag("title", "Rock & Roll", 0, false);
///     theBuilder.EndTag();
///     vxCString theXML = theBuilder.TakeXML();
///     // <item id="7"><title>Rock &amp; Roll</title></item>
///
/// Null texts count as empty. Nothing checks names, raw text, or whether every element is closed.
///
/// Threads:  one at a time.
class VX_EXPORT vxXMLBuilder {
public:
    /// Reserves `anInitialSize` bytes; 0 allocates nothing until the first byte comes.
    explicit vxXMLBuilder(uint32_t anInitialSize);
    ~vxXMLBuilder();
    vxXMLBuilder(const vxXMLBuilder&) = delete;
    vxXMLBuilder& operator=(const vxXMLBuilder&) = delete;

    /// Opens an element, to which attributes may be added until something else is written.
    void StartTag(const char* aName);

    /// Writes an attribute into the start tag that is open.
    ///
    /// Asserts:  mfTagStarted; nothing is written then.
    /// @{
    void AddAttribute(const char* aName, const char* aValue);
    void AddUInt32Attribute(const char* aName, uint32_t aValue);
    /// @}

    /// Closes the innermost element of StartTag(), as an empty one when nothing was written into it.
    ///
    /// Asserts:  mTagArray != NULL, and theCount > 0; nothing is written then.
    void EndTag();

    /// Opens an element that EndTag() knows nothing of; `afClose` ends its start tag at once.
    void AddStartTag(const char* aName, bool afClose);

    /// Closes an element: "/>" while its start tag is open, else its end tag.
    void AddEndTag(const char* aName);

    /// Ends an open start tag.
    void CloseStartTag();

    /// Writes a whole element around a text, of which at most `aMaxLength` bytes of output are
    /// written; 0 is no limit. An empty text gives an empty element.
    void AddTag(const char* aName, const char* aText, uint32_t aMaxLength, bool afDoubleEscape);

    /// Writes a whole element around a number in decimal.
    void AddUInt32Tag(const char* aName, uint32_t aValue);

    /// Writes a whole element around bytes as they are.
    void AddRawTag(const char* aName, const void* aData, uint32_t aSize);

    /// Writes a whole element without content.
    void AddEmptyTag(const char* aName);

    /// Writes an escaped text.
    /// @{
    void AddText(const char* aText);
    void AddText(const vxCString& aText);
    /// @}

    /// Writes a text as it is.
    void AddRaw(const char* aText);

    /// Hands the text out and leaves the builder's buffer empty; elements still open are not closed.
    vxCString TakeXML();

    /// Returns `aLength` bytes of a text, escaped; the result has at most `aMaxLength` bytes, unless
    /// that is 0, and never ends inside an entity.
    static vxCString Escape(const char* aText, uint32_t aLength, uint32_t aMaxLength,
                            bool afDoubleEscape);

    /// As Escape(), into the buffer; an open start tag stays open.
    void EscapeAndAdd(const char* aText, uint32_t aLength, uint32_t aMaxLength,
                      bool afDoubleEscape);

private:
    void AddOpening(const char* aName, size_t aLength);
    void AddClosing(const char* aName, size_t aLength);
    void AddEnd(const char* aName, size_t aLength);

    vxGrowingBuffer mBuffer;
    vxGrowingBuffer*
        mTagArray;      // owned: names of open elements, innermost last; null until StartTag()
    bool mfTagStarted;  // a start tag waits for its '>'
};
