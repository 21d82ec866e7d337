#pragma once

#include <libteskTools/Types.h>
#include <wchar.h>

#include "vx/Api.h"
#include "vx/CString.h"

struct vxData;
struct vxProperty;
struct vxPropertyList;

/// How many levels of arrays and objects, a value inside them included, the reader holds.
enum { JSON_MAX_DEPTH = 20 };

/// What vxJSONFormatter::Parse() found; other results are the sink's.
enum {
    kvxJSONParse_Success = 0,
    kvxJSONParse_Ended = 1,          ///< the input ended before a value
    kvxJSONParse_TooDeep = 2,        ///< more than 19 arrays and objects in each other
    kvxJSONParse_EndedInValue = 3,   ///< the input ended inside a value, or in a comment behind it
    kvxJSONParse_Unexpected = 4,     ///< no value begins so, or text behind the value
    kvxJSONParse_BadNull = 5,        ///< other letters than "null"
    kvxJSONParse_BadBoolean = 6,     ///< other letters than "true" or "false"
    kvxJSONParse_BadNumber = 7,      ///< no number, or one that 64 bits or a double cannot hold
    kvxJSONParse_BadArray = 8,       ///< neither ',' nor ']', or ',' before ']'
    kvxJSONParse_BadKey = 9,         ///< a key without a quote
    kvxJSONParse_MissingColon = 10,  ///< no ':' behind a key
    kvxJSONParse_BadObject = 11,     ///< neither ',' nor '}' behind a value
    kvxJSONParse_BadString = 12,     ///< an unknown escape
    kvxJSONParse_BadComment = 13     ///< neither '*' nor '/' behind '/'
};

/// Status of vxPropertyListFormatter for a value that has no property to go to.
enum { kvxSerialize_NoProperty = -1 };

/// Receives a structure, piece by piece, in the order of its text.
///
/// Every operation returns 0 to go on; anything else stops whoever sends, and is passed back.
class VX_EXPORT vxISerialize {
public:
    virtual ~vxISerialize();

    /// A map begins; its keys follow, each with what belongs to it.
    virtual int MapBegin() = 0;
    /// The key of what follows; `afQuote` asks for a key without quotes, the reverse of its name,
    /// which programs depend on.
    virtual int MapKey(const char* aKey, bool afQuote) = 0;
    /// The innermost map ends.
    virtual int MapEnd() = 0;
    /// An array begins; its values follow.
    virtual int ArrayBegin() = 0;
    /// Another value of the array follows.
    virtual int ArrayItemSeparator() = 0;
    /// The innermost array ends.
    virtual int ArrayEnd() = 0;
    /// A name; a String() in quotes unless overridden.
    virtual int Identifier(const char* anIdentifier);
    /// A text; `afQuote` asks for one without quotes, as for MapKey().
    /// @{
    virtual int String(const char* aText, bool afQuote) = 0;
    virtual int String(const wchar_t* aText, bool afQuote) = 0;
    /// @}
    /// A truth value.
    virtual int Boolean(bool aValue) = 0;
    /// A number of 32 bits.
    /// @{
    virtual int U32(uint32_t aValue) = 0;
    virtual int S32(int32_t aValue) = 0;
    /// @}
    /// A number of 64 bits.
    /// @{
    virtual int U64(uint64_t aValue) = 0;
    virtual int S64(int64_t aValue) = 0;
    /// @}
    /// A real number.
    virtual int Float(double aValue) = 0;
    /// No value.
    virtual int Null() = 0;
};

/// Writes JSON text, and reads it.
///
///     vxJSONFormatter theFormatter;
///     vxPropertyListFormatter::Serialize(theList, theFormatter);
///     vxCString theText = theFormatter.Result();         // {"a":5,}
///
/// What is written is what is sent: there are no commas between the values of an array but those of
/// ArrayItemSeparator(). Every map ends with a comma before its brace; programs depend on it, and
/// Parse() accepts it. Null texts count as "". No operation stops the sender.
///
/// Threads:  one at a time.
/// Cost:     linear in what is written.
class VX_EXPORT vxJSONFormatter : public vxISerialize {
public:
    /// An empty text; strict and compact.
    vxJSONFormatter();
    ~vxJSONFormatter() override;
    vxJSONFormatter(const vxJSONFormatter&) = delete;
    vxJSONFormatter& operator=(const vxJSONFormatter&) = delete;

    /// Starts over with an empty text; the layout stays as chosen.
    void Reset();

    /// Shall the slash be escaped, too? It is unless told otherwise.
    void SetStrict(bool afStrict) { mfStrict = afStrict; }

    /// Shall the text be laid out in lines for people? It is not unless told otherwise.
    void SetHuman(bool afHuman) { mfHuman = afHuman; }

    /// Replaces what one level is indented by, four blanks at first.
    void SetIndent(const vxCString& anIndent) { mIndentStr = anIndent; }

    /// Returns the text produced so far, until the next event.
    const vxCString& Result() const;

    /// Makes `aResult` the text with JSON's escapes and returns whether there are any.
    ///
    /// Bytes from 0x80 up stay.
    bool Escape(const char* aText, vxCString& aResult) const;

    /// Reads JSON text and sends it to a sink; quote flags are false.
    ///
    /// White space and comments, `/*` to `*/` or `//` to the end of the line, may stand between all
    /// parts. Either quote character encloses texts and keys, letters of `null`, `true` and `false`
    /// may have either case, an object may end with a comma, and `{,}` is empty. A number is what is
    /// valid at the beginning of a run of "0123456789.+-e"; 'E' behind it makes it a bad one. A text
    /// ends for the sink at an escaped NUL. What was sent before a failure stays sent.
    ///
    /// Fails:    a kvxJSONParse_*, or the status with which the sink stopped. Null text is empty.
    /// Cost:     linear; no recursion.
    static int Parse(const char* aText, vxISerialize& aSink);

    /// As above; `aLine` and `aColumn`, in bytes, both from 1, say where reading stopped: at the byte
    /// that does not fit, behind what the sink refused, or at the end.
    static int Parse(const char* aText, vxISerialize& aSink, int& aLine, int& aColumn);

    int MapBegin() override;
    int MapKey(const char* aKey, bool afQuote) override;
    /// Asserts:  mIndent >= 0, where lines are laid out, when no map is open; go on with Reset().
    int MapEnd() override;
    int ArrayBegin() override;
    int ArrayItemSeparator() override;
    int ArrayEnd() override;
    int String(const char* aText, bool afQuote) override;
    int String(const wchar_t* aText, bool afQuote) override;
    int Boolean(bool aValue) override;
    int U32(uint32_t aValue) override;
    int S32(int32_t aValue) override;
    int U64(uint64_t aValue) override;
    int S64(int64_t aValue) override;
    /// Six decimals.
    int Float(double aValue) override;
    int Null() override;

private:
    char* Room(size_t aLength) {
        return aLength <= static_cast<size_t>(mEnd - mPos) ? mPos : MakeRoom(aLength);
    }
    char* MakeRoom(size_t aLength);
    bool Reopen();
    bool Enlarge(size_t aLength);
    void Add(const char* aText, size_t aLength);
    void AddByte(char aByte);
    vxCString Keep(const char* aText) const;
    void AddText(const char* aText, bool afQuote, bool afComma, bool afColon);
    char* WriteEscaped(const char* aText, const char* anEnd, char* aTarget);
    template <typename Integer>
    int AddInteger(Integer aValue);
    void NewLine();

    mutable vxCString mDoc;  // the text produced; its write buffer is out while mPos is not null
    vxCString mTmp;          // a wide text on its way to mDoc
    bool mfNeedComma;        // cleared by Reset(), not used otherwise
    bool mfStrict;           // escape slashes
    bool mfHuman;            // lay out lines
    int mIndent;             // maps that are open
    vxCString mIndentStr;    // one level of indentation
    bool mfMapBegin;         // the next key is the first of its map
    mutable char* mPos;      // the end of the text in the write buffer; null: none is out
    mutable char* mEnd;      // the end of that buffer, or null
    size_t mRoom;            // its bytes, also when it is not out
};

/// Builds a property list from what it is sent.
///
/// A map becomes a list, a key a property. Its values become the property's: all that is sent until
/// the next key, arrays or not. A key that comes again replaces the property's values.
///
/// | Sent | Type of the value |
/// |---|---|
/// | U32, Boolean (0 or 1) | uint32 |
/// | U64; S32 and S64, sign-extended | uint64 |
/// | Float | double |
/// | String, Identifier | charPtr, UTF-8 |
/// | Null | Unknown |
/// | a map inside a map | propertyList |
///
/// Fails:    a value, key or end outside a map returns kvxSerialize_NoProperty.
/// Threads:  one at a time.
class VX_EXPORT vxPropertyListFormatter : public vxISerialize {
public:
    vxPropertyListFormatter();
    ~vxPropertyListFormatter() override;
    vxPropertyListFormatter(const vxPropertyListFormatter&) = delete;
    vxPropertyListFormatter& operator=(const vxPropertyListFormatter&) = delete;

    /// Sends a list to a sink; packed data become text, escaped as for property lists with '%'.
    ///
    /// As vxPropertyListSerializer otherwise.
    static int Serialize(vxPropertyList* aList, vxISerialize& aSink);

    /// Drops what was built and starts over.
    void Reset();

    /// Hands out the list, as far as it is built, and starts over.
    ///
    /// Owner:    the caller, who lets go of it with vxPropertyList_Delete(); null when no map began.
    vxPropertyList* TakePropertyList();

    int MapBegin() override;
    int MapKey(const char* aKey, bool afQuote) override;
    int MapEnd() override;
    int ArrayBegin() override;
    int ArrayItemSeparator() override;
    int ArrayEnd() override;
    int String(const char* aText, bool afQuote) override;
    int String(const wchar_t* aText, bool afQuote) override;
    int Boolean(bool aValue) override;
    int U32(uint32_t aValue) override;
    int S32(int32_t aValue) override;
    int U64(uint64_t aValue) override;
    int S64(int64_t aValue) override;
    int Float(double aValue) override;
    int Null() override;

protected:
    /// Tells of a value that was to be put at mDataIndex: moves on when it was.
    int Advance(bool afDone);

    vxProperty* mProp;         ///< the property being filled, or null
    vxPropertyList* mCurrent;  ///< the list being filled: owned outside all others, else borrowed
    uint32_t mDataIndex;       ///< position of the property's next value

private:
    bool Push();
    void Pop();

    vxPropertyList** mStack;  // the enclosing lists, outermost, which is owned, first
    uint32_t mStackSize;      // number of them
    uint32_t mStackCapacity;  // how many the stacks have room for
    vxProperty** mPropStack;  // the property being filled in each
};

/// Sends property lists to sinks; programs override how.
///
/// A list is a map, each property a key and its value; two values or more are an array, whose values
/// are sent without ArrayItemSeparator(): programs depend on it. A property without values is Null.
///
/// | Type of the value | Sent |
/// |---|---|
/// | uint32 | U32 |
/// | double | Float |
/// | uint64 | U64 |
/// | charPtr, wcharPtr | String |
/// | every other | Null |
///
/// Threads:  one at a time.
class VX_EXPORT vxPropertyListSerializer {
public:
    virtual ~vxPropertyListSerializer();

    /// Sends a list, and holds a reference meanwhile. A null list is an empty map.
    ///
    /// Fails:    the first status other than 0, which ends it.
    virtual int Serialize(vxPropertyList* aList, vxISerialize& aSink);

    /// Sends a property.
    virtual int SerializeProperty(vxProperty* aProperty, vxISerialize& aSink);

    /// Sends a value.
    ///
    /// Asserts:  kvxDataType_propertyList, for a list as a value; Null is sent for it.
    virtual int SerializeData(vxData* aData, vxISerialize& aSink);
};
