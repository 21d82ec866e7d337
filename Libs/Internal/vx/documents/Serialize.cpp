// Property lists as a stream of events, the sinks of such a stream, and a JSON reader that sends one.
//
// The reader walks a text that is whole in memory, so a token is one step and only the structure
// between tokens needs states. Each open array or object has one on a stack of fixed size; the value
// inside the innermost one is a level of its own.

#include "vx/Serialize.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libteskTools/PropertyList.h>
#include <libteskTools/StringEscaper.h>
#include <libvxLog/Assert.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "vx/GrowingBuffer.h"

namespace {

const char* vxText(const char* aText) {
    return aText == NULL ? "" : aText;
}

// Escaping

using vxEscapes = std::array<char, 256>;

constexpr char kvxEscape_Unicode = 'u';

/// What follows the backslash for each byte; 0 for those that stay.
constexpr vxEscapes vxMakeEscapes(bool afStrict) {
    vxEscapes theEscapes{};
    for (size_t i = 0; i < 0x20; ++i) {
        theEscapes[i] = kvxEscape_Unicode;
    }
    theEscapes['\b'] = 'b';
    theEscapes['\n'] = 'n';
    theEscapes['\r'] = 'r';
    theEscapes['\t'] = 't';
    theEscapes['\f'] = 'f';
    theEscapes['"'] = '"';
    theEscapes['\\'] = '\\';
    theEscapes['/'] = afStrict ? '/' : '\0';
    return theEscapes;
}

constexpr vxEscapes kvxEscapes_Lax = vxMakeEscapes(false);
constexpr vxEscapes kvxEscapes_Strict = vxMakeEscapes(true);

size_t vxEscapedLength(const char* aText, const vxEscapes& anEscapes) {
    size_t theLength = 0;
    for (; *aText != '\0'; ++aText) {
        const char theEscape = anEscapes[static_cast<unsigned char>(*aText)];
        theLength += theEscape == '\0' ? 1 : theEscape == kvxEscape_Unicode ? 6 : 2;
    }
    return theLength;
}

void vxWriteEscaped(const char* aText, const vxEscapes& anEscapes, char* aTarget) {
    for (; *aText != '\0'; ++aText) {
        const unsigned char theByte = static_cast<unsigned char>(*aText);
        const char theEscape = anEscapes[theByte];
        if (theEscape == '\0') {
            *aTarget++ = *aText;
            continue;
        }
        *aTarget++ = '\\';
        *aTarget++ = theEscape;
        if (theEscape == kvxEscape_Unicode) {
            *aTarget++ = '0';
            *aTarget++ = '0';
            *aTarget++ = "0123456789abcdef"[theByte >> 4];
            *aTarget++ = "0123456789abcdef"[theByte & 15];
        }
    }
}

// Reading

int vxHexValue(char aChar) {
    if (aChar >= '0' && aChar <= '9') {
        return aChar - '0';
    }
    const char theLower = static_cast<char>(aChar | 0x20);
    return theLower >= 'a' && theLower <= 'f' ? theLower - 'a' + 10 : -1;
}

size_t vxDigits(const char* aText) {
    return strspn(aText, "0123456789");
}

/// Length of the integer at the beginning of a text.
size_t vxIntegerLength(const char* aText) {
    const size_t theSign = *aText == '-' ? 1 : 0;
    return theSign + vxDigits(aText + theSign);
}

/// Length of the real number at the beginning of a text. An exponent without digits counts, so that
/// the number is a bad one.
size_t vxRealLength(const char* aText) {
    size_t theLength = vxIntegerLength(aText);
    if (aText[theLength] == '.') {
        ++theLength;
        theLength += vxDigits(aText + theLength);
    }
    if (aText[theLength] == 'e') {
        ++theLength;
        theLength += aText[theLength] == '-' || aText[theLength] == '+' ? 1 : 0;
        theLength += vxDigits(aText + theLength);
    }
    return theLength;
}

/// Reads one text. Every step returns 0 to go on, and otherwise the result; it leaves mPos at the
/// first byte that is not consumed.
class vxJSONReader {
public:
    vxJSONReader(const char* aText, vxISerialize& aSink)
        : mPos(aText), mSink(aSink), mText(0), mDepth(0), mfBegun(false) {
        mStates[0] = vxState::Start;
    }

    int Read();
    const char* Position() const { return mPos; }

private:
    enum class vxState : uint8_t {
        Start,            // a value must begin
        Finish,           // the outermost value has ended
        Array,            // behind '['
        ArrayAdd,         // behind the ',' of an array
        ArraySeparator,   // behind a value of an array
        Object,           // behind '{'
        ObjectEmpty,      // behind "{,"
        ObjectField,      // behind the ',' of an object
        ObjectFieldEnd,   // behind a key
        ObjectSeparator,  // behind a value of an object
    };

    int Step();
    int SkipBlanks();
    int SkipComment();
    int EndedEarly() const { return mfBegun ? kvxJSONParse_EndedInValue : kvxJSONParse_Ended; }

    int ReadValue();
    int ReadArray();
    int ReadObject();
    int ReadKey();
    int ReadString();
    int ReadText();
    int ReadEscape();
    int ReadUnicode();
    int ReadBoolean();
    int ReadNull();
    int ReadWord(const char* aWord, int aFailure);
    int ReadNumber();
    int SendReal(const char* aStart);
    int SendInteger(const char* aStart);
    const char* Scratch(const char* aStart, size_t aLength);

    /// Consumes a byte and goes to another state.
    int Consume(vxState aState) {
        ++mPos;
        mStates[mDepth] = aState;
        return 0;
    }

    /// Lets a value begin inside the innermost level, which goes on with `aState` afterwards.
    int BeginInner(vxState aState) {
        mStates[mDepth] = aState;
        mStates[++mDepth] = vxState::Start;
        return 0;
    }

    /// The value of the innermost level has ended.
    void EndValue() {
        if (mDepth == 0) {
            mStates[0] = vxState::Finish;
        } else {
            --mDepth;
        }
    }

    int EndArray() {
        ++mPos;
        EndValue();
        return mSink.ArrayEnd();
    }

    int EndObject() {
        ++mPos;
        EndValue();
        return mSink.MapEnd();
    }

    const char* mPos;
    vxISerialize& mSink;
    vxGrowingBuffer mText;            // the text or number being read
    vxState mStates[JSON_MAX_DEPTH];  // of the open arrays and objects, and of the value inside
    int mDepth;                       // index of the innermost state
    bool mfBegun;                     // a value has begun
};

int vxJSONReader::Read() {
    int theResult = 0;
    while (theResult == 0) {
        theResult = SkipBlanks();
        if (theResult == 0 && *mPos == '\0') {
            return mStates[mDepth] == vxState::Finish ? 0 : EndedEarly();
        }
        if (theResult == 0) {
            theResult = Step();
        }
    }
    return theResult;
}

int vxJSONReader::Step() {
    switch (mStates[mDepth]) {
        case vxState::Start:
            return ReadValue();
        case vxState::Finish:
            return kvxJSONParse_Unexpected;
        case vxState::Array:
            return *mPos == ']' ? EndArray() : BeginInner(vxState::ArraySeparator);
        case vxState::ArrayAdd:
            return *mPos == ']' ? kvxJSONParse_BadArray : BeginInner(vxState::ArraySeparator);
        case vxState::ArraySeparator:
            if (*mPos == ',') {
                Consume(vxState::ArrayAdd);
                return mSink.ArrayItemSeparator();
            }
            return *mPos == ']' ? EndArray() : kvxJSONParse_BadArray;
        case vxState::Object:
            if (*mPos == ',') {
                return Consume(vxState::ObjectEmpty);
            }
            return *mPos == '}' ? EndObject() : ReadKey();
        case vxState::ObjectEmpty:
            return *mPos == '}' ? EndObject() : kvxJSONParse_BadKey;
        case vxState::ObjectField:
            return *mPos == '}' ? EndObject() : ReadKey();
        case vxState::ObjectFieldEnd:
            if (*mPos != ':') {
                return kvxJSONParse_MissingColon;
            }
            ++mPos;
            return BeginInner(vxState::ObjectSeparator);
        case vxState::ObjectSeparator:
            if (*mPos == ',') {
                return Consume(vxState::ObjectField);
            }
            return *mPos == '}' ? EndObject() : kvxJSONParse_BadObject;
    }
    return kvxJSONParse_Unexpected;
}

int vxJSONReader::SkipBlanks() {
    int theResult = 0;
    while (theResult == 0) {
        while (vxConvert_isspace(static_cast<unsigned char>(*mPos)) != 0) {
            ++mPos;
        }
        if (*mPos != '/') {
            break;
        }
        theResult = SkipComment();
    }
    return theResult;
}

int vxJSONReader::SkipComment() {
    ++mPos;
    if (*mPos == '/') {
        mPos += strcspn(mPos, "\n");
        return 0;
    }
    if (*mPos != '*') {
        return *mPos == '\0' ? EndedEarly() : kvxJSONParse_BadComment;
    }
    ++mPos;
    const char* theEnd = strstr(mPos, "*/");
    mPos = theEnd == NULL ? mPos + strlen(mPos) : theEnd + 2;
    return theEnd == NULL ? EndedEarly() : 0;
}

int vxJSONReader::ReadValue() {
    mfBegun = true;
    switch (*mPos) {
        case '"':
        case '\'':
            return ReadString();
        case '[':
            return ReadArray();
        case '{':
            return ReadObject();
        case 'T':
        case 't':
        case 'F':
        case 'f':
            return ReadBoolean();
        case 'N':
        case 'n':
            return ReadNull();
        default:
            break;
    }
    const bool theNumber = *mPos == '-' || (*mPos >= '0' && *mPos <= '9');
    return theNumber ? ReadNumber() : kvxJSONParse_Unexpected;
}

int vxJSONReader::ReadArray() {
    if (mDepth >= JSON_MAX_DEPTH - 1) {
        return kvxJSONParse_TooDeep;
    }
    Consume(vxState::Array);
    return mSink.ArrayBegin();
}

int vxJSONReader::ReadObject() {
    if (mDepth >= JSON_MAX_DEPTH - 1) {
        return kvxJSONParse_TooDeep;
    }
    Consume(vxState::Object);
    return mSink.MapBegin();
}

int vxJSONReader::ReadKey() {
    if (*mPos != '"' && *mPos != '\'') {
        return kvxJSONParse_BadKey;
    }
    const int theResult = ReadText();
    mStates[mDepth] = vxState::ObjectFieldEnd;
    return theResult != 0 ? theResult : mSink.MapKey(mText.data(), false);
}

int vxJSONReader::ReadString() {
    const int theResult = ReadText();
    EndValue();
    return theResult != 0 ? theResult : mSink.String(mText.data(), false);
}

/// Reads a text from its opening to its closing quote into mText.
int vxJSONReader::ReadText() {
    const char theQuote = *mPos++;
    mText.SetPosition(0);
    for (;;) {
        const char* theRun = mPos;
        while (*mPos != theQuote && *mPos != '\\' && *mPos != '\0') {
            ++mPos;
        }
        mText.Append(theRun, static_cast<size_t>(mPos - theRun));
        if (*mPos == '\0') {
            return kvxJSONParse_EndedInValue;
        }
        if (*mPos == theQuote) {
            ++mPos;
            mText.Append("", 1);
            return 0;
        }
        const int theResult = ReadEscape();
        if (theResult != 0) {
            return theResult;
        }
    }
}

int vxJSONReader::ReadEscape() {
    static constexpr char kvxNames[] = "\"\\/bnrtf";
    static constexpr char kvxBytes[] = "\"\\/\b\n\r\t\f";
    ++mPos;
    if (*mPos == '\0') {
        return kvxJSONParse_EndedInValue;
    }
    if (*mPos == kvxEscape_Unicode) {
        return ReadUnicode();
    }
    const char* theName = strchr(kvxNames, *mPos);
    if (theName == NULL) {
        return kvxJSONParse_BadString;
    }
    ++mPos;
    mText.Append(kvxBytes + (theName - kvxNames), 1);
    return 0;
}

/// Reads "u" and four digits. Halves of surrogate pairs are code points like any other.
int vxJSONReader::ReadUnicode() {
    unsigned theCode = 0;
    ++mPos;
    for (int i = 0; i < 4; ++i, ++mPos) {
        const int theDigit = vxHexValue(*mPos);
        if (theDigit < 0) {
            return *mPos == '\0' ? kvxJSONParse_EndedInValue : kvxJSONParse_BadString;
        }
        theCode = theCode * 16 + static_cast<unsigned>(theDigit);
    }
    const char theLast = static_cast<char>(0x80 | (theCode & 0x3f));
    if (theCode < 0x80) {
        const char theText[] = {static_cast<char>(theCode)};
        mText.Append(theText, sizeof(theText));
    } else if (theCode < 0x800) {
        const char theText[] = {static_cast<char>(0xc0 | theCode >> 6), theLast};
        mText.Append(theText, sizeof(theText));
    } else {
        const char theText[] = {static_cast<char>(0xe0 | theCode >> 12),
                                static_cast<char>(0x80 | (theCode >> 6 & 0x3f)), theLast};
        mText.Append(theText, sizeof(theText));
    }
    return 0;
}

int vxJSONReader::ReadBoolean() {
    const bool theValue = *mPos == 'T' || *mPos == 't';
    const int theResult = ReadWord(theValue ? "true" : "false", kvxJSONParse_BadBoolean);
    return theResult != 0 ? theResult : mSink.Boolean(theValue);
}

int vxJSONReader::ReadNull() {
    const int theResult = ReadWord("null", kvxJSONParse_BadNull);
    return theResult != 0 ? theResult : mSink.Null();
}

int vxJSONReader::ReadWord(const char* aWord, int aFailure) {
    for (; *aWord != '\0'; ++aWord, ++mPos) {
        if (*mPos == '\0') {
            return kvxJSONParse_EndedInValue;
        }
        if ((*mPos | 0x20) != *aWord) {
            return aFailure;
        }
    }
    EndValue();
    return 0;
}

int vxJSONReader::ReadNumber() {
    const char* theStart = mPos;
    mPos += strspn(mPos, "0123456789.+-e");
    if (*mPos == 'E') {
        return kvxJSONParse_BadNumber;
    }
    EndValue();
    const char* theReal = strpbrk(Scratch(theStart, static_cast<size_t>(mPos - theStart)), ".e");
    return theReal != NULL ? SendReal(theStart) : SendInteger(theStart);
}

int vxJSONReader::SendReal(const char* aStart) {
    double theValue = 0;
    if (vxConvert_strtod(Scratch(aStart, vxRealLength(aStart)), &theValue) != 0) {
        return kvxJSONParse_BadNumber;
    }
    return mSink.Float(theValue);
}

int vxJSONReader::SendInteger(const char* aStart) {
    const char* theText = Scratch(aStart, vxIntegerLength(aStart));
    if (*aStart == '-') {
        int64_t theValue = 0;
        if (vxConvert_strtoint64(theText, &theValue) != 0) {
            return kvxJSONParse_BadNumber;
        }
        // Every value below 0 has bits up there: only "-0" goes out with 32 bits.
        return static_cast<uint64_t>(theValue) >> 32 != 0
                   ? mSink.S64(theValue)
                   : mSink.S32(static_cast<int32_t>(theValue));
    }
    uint64_t theValue = 0;
    if (vxConvert_strtouint64(theText, &theValue) != 0) {
        return kvxJSONParse_BadNumber;
    }
    return theValue > UINT32_MAX ? mSink.U64(theValue) : mSink.U32(static_cast<uint32_t>(theValue));
}

/// Copies a piece of the input into mText, with a NUL.
const char* vxJSONReader::Scratch(const char* aStart, size_t aLength) {
    mText.SetPosition(0);
    mText.Append(aStart, aLength);
    mText.Append("", 1);
    return mText.data();
}

// Walking

/// Sends packed data as text.
class vxPackedTextSerializer : public vxPropertyListSerializer {
public:
    int SerializeData(vxData* aData, vxISerialize& aSink) override {
        if (vxData_GetType(aData) != kvxDataType_packedData) {
            return vxPropertyListSerializer::SerializeData(aData, aSink);
        }
        vxPackedData* thePacked = vxData_Get_packedData(aData);
        char* theText = vxStringEscaper_EscapeBuffer(vxPackedData_GetPtr(thePacked),
                                                     vxPackedData_GetSize(thePacked),
                                                     kvxPropertListConvTable, '%');
        const int theResult = aSink.String(vxText(theText), false);
        free(theText);
        return theResult;
    }
};

int vxClampToInt(size_t aValue) {
    return static_cast<int>(std::min<size_t>(aValue, INT_MAX));
}

}  // namespace

vxISerialize::~vxISerialize() = default;

int vxISerialize::Identifier(const char* anIdentifier) {
    return String(anIdentifier, false);
}

// Writing JSON

vxJSONFormatter::vxJSONFormatter()
    : mfNeedComma(false),
      mfStrict(true),
      mfHuman(false),
      mIndent(0),
      mIndentStr("    "),
      mfMapBegin(false),
      mRoom(0) {}

vxJSONFormatter::~vxJSONFormatter() = default;

void vxJSONFormatter::Reset() {
    mDoc.Reinit();
    mRoom = 0;
    mIndent = 0;
    mfNeedComma = false;
    mfMapBegin = false;
}

bool vxJSONFormatter::Escape(const char* aText, vxCString& aResult) const {
    const char* theText = vxText(aText);
    const vxEscapes& theEscapes = mfStrict ? kvxEscapes_Strict : kvxEscapes_Lax;
    const size_t theLength = vxEscapedLength(theText, theEscapes);
    if (theLength == strlen(theText)) {
        aResult = theText;
        return false;
    }
    vxCString theResult;
    char* theTarget = theResult.GetWriteBuf(theLength);
    if (theTarget != NULL) {
        vxWriteEscaped(theText, theEscapes, theTarget);
        theResult.UngetWriteBuf(theLength);
    }
    aResult.Swap(theResult);
    return true;
}

int vxJSONFormatter::Parse(const char* aText, vxISerialize& aSink) {
    return vxJSONReader(vxText(aText), aSink).Read();
}

int vxJSONFormatter::Parse(const char* aText, vxISerialize& aSink, int& aLine, int& aColumn) {
    const char* theLine = vxText(aText);
    vxJSONReader theReader(theLine, aSink);
    const int theResult = theReader.Read();
    size_t theLineNumber = 1;
    for (const char* thePos = theLine; thePos != theReader.Position(); ++thePos) {
        if (*thePos == '\n') {
            theLine = thePos + 1;
            ++theLineNumber;
        }
    }
    aLine = vxClampToInt(theLineNumber);
    aColumn = vxClampToInt(static_cast<size_t>(theReader.Position() - theLine) + 1);
    return theResult;
}

// Strings grow by a few bytes; a document doubles, so that writing it costs linear time.
void vxJSONFormatter::Add(const char* aText, size_t aLength) {
    const size_t theLength = mDoc.length();
    if (aLength > mRoom || theLength > mRoom - aLength) {
        const size_t theRoom = std::max<size_t>(theLength + std::max(aLength, theLength), 64);
        vxCString theDoc;
        char* theTarget = theRoom < theLength ? NULL : theDoc.GetWriteBuf(theRoom);
        if (theTarget != NULL) {
            memcpy(theTarget, mDoc.c_str(), theLength);
            theDoc.UngetWriteBuf(theLength);
            mDoc.Swap(theDoc);
            mRoom = theRoom;
        }
    }
    mDoc.ConcatSelf(aLength, aText, aLength);
}

void vxJSONFormatter::AddText(const char* aText, bool afQuote) {
    Escape(aText, mTmp);
    if (afQuote) {
        Add(mTmp);
        return;
    }
    Add("\"", 1);
    Add(mTmp);
    Add("\"", 1);
}

void vxJSONFormatter::NewLine() {
    if (mfHuman) {
        VXASSERT(mIndent >= 0);
        Add("\n", 1);
        for (int i = 0; i < mIndent; ++i) {
            Add(mIndentStr);
        }
    }
}

int vxJSONFormatter::MapBegin() {
    NewLine();
    ++mIndent;
    Add("{", 1);
    mfMapBegin = true;
    return 0;
}

int vxJSONFormatter::MapKey(const char* aKey, bool afQuote) {
    if (!mfMapBegin) {
        Add(",", 1);
    }
    mfMapBegin = false;
    NewLine();
    AddText(aKey, afQuote);
    Add(": ", mfHuman ? 2 : 1);
    return 0;
}

int vxJSONFormatter::MapEnd() {
    Add(",", 1);
    --mIndent;
    NewLine();
    Add("}", 1);
    mfMapBegin = false;
    return 0;
}

int vxJSONFormatter::ArrayBegin() {
    Add("[", 1);
    return 0;
}

int vxJSONFormatter::ArrayItemSeparator() {
    Add(", ", mfHuman ? 2 : 1);
    return 0;
}

int vxJSONFormatter::ArrayEnd() {
    Add("]", 1);
    return 0;
}

int vxJSONFormatter::String(const char* aText, bool afQuote) {
    AddText(aText, afQuote);
    return 0;
}

int vxJSONFormatter::String(const wchar_t* aText, bool afQuote) {
    return String(vxCString::FromWideChar(aText).c_str(), afQuote);
}

int vxJSONFormatter::Boolean(bool aValue) {
    Add(aValue ? "true" : "false", aValue ? 4 : 5);
    return 0;
}

int vxJSONFormatter::U32(uint32_t aValue) {
    mTmp.Printf("%lu", static_cast<unsigned long>(aValue));
    Add(mTmp);
    return 0;
}

int vxJSONFormatter::S32(int32_t aValue) {
    mTmp.Printf("%ld", static_cast<long>(aValue));
    Add(mTmp);
    return 0;
}

int vxJSONFormatter::U64(uint64_t aValue) {
    mTmp.Printf("%llu", static_cast<unsigned long long>(aValue));
    Add(mTmp);
    return 0;
}

int vxJSONFormatter::S64(int64_t aValue) {
    mTmp.Printf("%lld", static_cast<long long>(aValue));
    Add(mTmp);
    return 0;
}

int vxJSONFormatter::Float(double aValue) {
    mTmp.Printf("%lf", aValue);
    Add(mTmp);
    return 0;
}

int vxJSONFormatter::Null() {
    Add("null", 4);
    return 0;
}

// Building lists

vxPropertyListFormatter::vxPropertyListFormatter()
    : mProp(NULL),
      mCurrent(NULL),
      mDataIndex(0),
      mStack(NULL),
      mStackSize(0),
      mStackCapacity(0),
      mPropStack(NULL) {}

vxPropertyListFormatter::~vxPropertyListFormatter() {
    Reset();
    free(mStack);
    free(mPropStack);
}

int vxPropertyListFormatter::Serialize(vxPropertyList* aList, vxISerialize& aSink) {
    return vxPackedTextSerializer().Serialize(aList, aSink);
}

void vxPropertyListFormatter::Reset() {
    vxPropertyList_Delete(TakePropertyList());
}

vxPropertyList* vxPropertyListFormatter::TakePropertyList() {
    vxPropertyList* theList = mStackSize > 0 ? mStack[0] : mCurrent;
    mProp = NULL;
    mCurrent = NULL;
    mDataIndex = 0;
    mStackSize = 0;
    return theList;
}

int vxPropertyListFormatter::Advance(bool afDone) {
    if (!afDone) {
        return kvxSerialize_NoProperty;
    }
    ++mDataIndex;
    return 0;
}

/// Saves the list and the property being filled; false when there is no memory.
bool vxPropertyListFormatter::Push() {
    if (mStackSize == mStackCapacity) {
        const size_t theCapacity = mStackCapacity * size_t{2} + 16;
        void* theLists = vxRealloc(mStack, theCapacity * sizeof(*mStack));
        mStack = theLists == NULL ? mStack : static_cast<vxPropertyList**>(theLists);
        void* theProps = vxRealloc(mPropStack, theCapacity * sizeof(*mPropStack));
        mPropStack = theProps == NULL ? mPropStack : static_cast<vxProperty**>(theProps);
        if (theLists == NULL || theProps == NULL) {
            return false;
        }
        mStackCapacity = static_cast<uint32_t>(theCapacity);
    }
    mStack[mStackSize] = mCurrent;
    mPropStack[mStackSize] = mProp;
    ++mStackSize;
    return true;
}

void vxPropertyListFormatter::Pop() {
    --mStackSize;
    mCurrent = mStack[mStackSize];
    mProp = mPropStack[mStackSize];
    mDataIndex = static_cast<uint32_t>(vxProperty_GetCount(mProp));
}

int vxPropertyListFormatter::MapBegin() {
    if (mCurrent == NULL) {
        mCurrent = vxPropertyList_New();
        return 0;
    }
    vxPropertyList* theList = vxPropertyList_New();
    const bool theDone = vxProperty_Set_propertyList(mProp, mDataIndex, theList);
    vxPropertyList_Delete(theList);  // the value holds it now
    if (!theDone || !Push()) {
        return kvxSerialize_NoProperty;
    }
    mCurrent = theList;
    mProp = NULL;
    mDataIndex = 0;
    return 0;
}

int vxPropertyListFormatter::MapKey(const char* aKey, bool) {
    mProp = vxPropertyList_Add(mCurrent, vxText(aKey));
    vxProperty_Truncate(mProp, 0);
    mDataIndex = 0;
    return mProp == NULL ? kvxSerialize_NoProperty : 0;
}

int vxPropertyListFormatter::MapEnd() {
    if (mCurrent == NULL) {
        return kvxSerialize_NoProperty;
    }
    if (mStackSize > 0) {
        Pop();
    } else {
        mProp = NULL;
    }
    return 0;
}

int vxPropertyListFormatter::ArrayBegin() {
    return 0;
}

int vxPropertyListFormatter::ArrayItemSeparator() {
    return 0;
}

int vxPropertyListFormatter::ArrayEnd() {
    return 0;
}

int vxPropertyListFormatter::String(const char* aText, bool) {
    return Advance(vxProperty_Set_charPtr(mProp, mDataIndex, aText));
}

int vxPropertyListFormatter::String(const wchar_t* aText, bool afQuote) {
    return String(vxCString::FromWideChar(aText).c_str(), afQuote);
}

int vxPropertyListFormatter::Boolean(bool aValue) {
    return U32(aValue ? 1 : 0);
}

int vxPropertyListFormatter::U32(uint32_t aValue) {
    return Advance(vxProperty_Set_uint32(mProp, mDataIndex, aValue));
}

int vxPropertyListFormatter::S32(int32_t aValue) {
    return S64(aValue);
}

int vxPropertyListFormatter::U64(uint64_t aValue) {
    return Advance(vxProperty_Set_uint64(mProp, mDataIndex, aValue));
}

int vxPropertyListFormatter::S64(int64_t aValue) {
    return U64(static_cast<uint64_t>(aValue));
}

int vxPropertyListFormatter::Float(double aValue) {
    return Advance(vxProperty_Set_double(mProp, mDataIndex, aValue));
}

int vxPropertyListFormatter::Null() {
    return Advance(vxProperty_Set_Unknown(mProp, mDataIndex));
}

// Walking lists

vxPropertyListSerializer::~vxPropertyListSerializer() = default;

int vxPropertyListSerializer::Serialize(vxPropertyList* aList, vxISerialize& aSink) {
    vxPropertyList_Take(aList);
    int theResult = aSink.MapBegin();
    for (size_t i = 0; theResult == 0 && i < vxPropertyList_GetCount(aList); ++i) {
        theResult = SerializeProperty(vxPropertyList_GetAt(aList, i), aSink);
    }
    if (theResult == 0) {
        theResult = aSink.MapEnd();
    }
    vxPropertyList_Delete(aList);
    return theResult;
}

int vxPropertyListSerializer::SerializeProperty(vxProperty* aProperty, vxISerialize& aSink) {
    int theResult = aSink.MapKey(vxProperty_GetName(aProperty), false);
    const size_t theCount = vxProperty_GetCount(aProperty);
    if (theResult == 0 && theCount == 0) {
        return aSink.Null();
    }
    if (theResult == 0 && theCount >= 2) {
        theResult = aSink.ArrayBegin();
    }
    for (size_t i = 0; theResult == 0 && i < theCount; ++i) {
        theResult = SerializeData(const_cast<vxData*>(vxProperty_GetAt(aProperty, i)), aSink);
    }
    return theResult == 0 && theCount >= 2 ? aSink.ArrayEnd() : theResult;
}

int vxPropertyListSerializer::SerializeData(vxData* aData, vxISerialize& aSink) {
    switch (vxData_GetType(aData)) {
        case kvxDataType_uint32:
            return aSink.U32(vxData_Get_uint32(aData));
        case kvxDataType_double:
            return aSink.Float(vxData_Get_double(aData));
        case kvxDataType_uint64:
            return aSink.U64(vxData_Get_uint64(aData));
        case kvxDataType_charPtr:
            return aSink.String(vxData_Get_charPtr(aData), false);
        case kvxDataType_wcharPtr:
            return aSink.String(vxData_Get_wcharPtr(aData), false);
        case kvxDataType_propertyList:
            VXASSERT_TEXT(false, "kvxDataType_propertyList");
            return aSink.Null();
        default:
            return aSink.Null();
    }
}
