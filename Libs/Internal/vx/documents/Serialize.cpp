// Property lists as a stream of events, the sinks of such a stream, and a JSON reader that sends one.
//
// JSON text is written in place: the write buffer of the text stays out from event to event, and is
// given back when somebody asks for the text.
//
// The reader walks a text that is whole in memory, so a token is one step and only the structure
// between tokens needs states. Each open array or object has one on a stack of fixed size; the value
// inside the innermost one is a level of its own.

#include "vx/Serialize.h"

#include "Bytes.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libteskTools/PropertyList.h>
#include <libteskTools/StringEscaper.h>
#include <libvxLog/Assert.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace {

const char* vxText(const char* aText) {
    return aText == NULL ? "" : aText;
}

bool vxLiesIn(const char* aPos, const vxCString& aText) {
    const std::less_equal<const char*> theOrder;
    return theOrder(aText.c_str(), aPos) && theOrder(aPos, aText.c_str() + aText.length());
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

constexpr size_t kvxEscape_MaxLength = 6;

/// What a text may have around it, a comma, quotes and a colon, and one escape.
constexpr size_t kvxText_Around = 4 + kvxEscape_MaxLength;

/// Writes a byte that must be escaped, and returns the end.
char* vxWriteEscape(char aChar, char anEscape, char* aTarget) {
    *aTarget++ = '\\';
    *aTarget++ = anEscape;
    if (anEscape == kvxEscape_Unicode) {
        *aTarget++ = '0';
        *aTarget++ = '0';
        *aTarget++ = "0123456789abcdef"[static_cast<unsigned char>(aChar) >> 4];
        *aTarget++ = "0123456789abcdef"[aChar & 15];
    }
    return aTarget;
}

void vxWriteEscaped(const char* aText, const vxEscapes& anEscapes, char* aTarget) {
    for (; *aText != '\0'; ++aText) {
        const char theEscape = anEscapes[static_cast<unsigned char>(*aText)];
        if (theEscape == '\0') {
            *aTarget++ = *aText;
        } else {
            aTarget = vxWriteEscape(*aText, theEscape, aTarget);
        }
    }
}

/// Copies a text up to the first byte that must be escaped, and returns that byte, or the end. The
/// target has room for all of it: more than what counts may be copied.
const char* vxCopyPlain(const char* aText, const char* anEnd, bool afStrict, char* aTarget) {
    if (anEnd - aText >= kvxBytes_Count) {
        const char theSlash = afStrict ? '/' : '"';
        return vxFindMarked(aText, anEnd, [=](const char* aPlace) {
            memcpy(aTarget + (aPlace - aText), aPlace, sizeof(vxBytes));
            const vxBytes theBytes = vxLoadBytes(aPlace);
            return vxMarkControls(theBytes) | vxMarkAnyOf(theBytes, '"', '\\', theSlash);
        });
    }
    const vxEscapes& theEscapes = afStrict ? kvxEscapes_Strict : kvxEscapes_Lax;
    while (aText != anEnd && theEscapes[static_cast<unsigned char>(*aText)] == '\0') {
        *aTarget++ = *aText++;
    }
    return aText;
}

// Reading

int vxHexValue(char aChar) {
    if (aChar >= '0' && aChar <= '9') {
        return aChar - '0';
    }
    const char theLower = static_cast<char>(aChar | 0x20);
    return theLower >= 'a' && theLower <= 'f' ? theLower - 'a' + 10 : -1;
}

bool vxIsDigit(char aChar) {
    return aChar >= '0' && aChar <= '9';
}

bool vxIsBlank(char aChar) {
    return aChar == ' ' || (aChar >= '\t' && aChar <= '\r');
}

/// May a run of characters that is read as a number hold this one?
bool vxIsOfNumber(char aChar) {
    return vxIsDigit(aChar) || aChar == '.' || aChar == '+' || aChar == '-' || aChar == 'e';
}

size_t vxDigits(const char* aText) {
    size_t theLength = 0;
    while (vxIsDigit(aText[theLength])) {
        ++theLength;
    }
    return theLength;
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

/// Returns what a letter behind a backslash stands for; 0 for those that stand for nothing.
char vxUnescaped(char aName) {
    switch (aName) {
        case '"':
        case '\\':
        case '/':
            return aName;
        case 'b':
            return '\b';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'f':
            return '\f';
        default:
            return '\0';
    }
}

/// Reads one text. Every step returns 0 to go on, and otherwise the result; it leaves mPos at the
/// first byte that is not consumed.
class vxJSONReader {
public:
    vxJSONReader(const char* aText, vxISerialize& aSink)
        : mPos(aText),
          mEnd(aText + strlen(aText)),
          mSink(aSink),
          mText(mShortText),
          mTextSize(sizeof(mShortText)),
          mLength(0),
          mDepth(0),
          mfBegun(false) {
        mStates[0] = vxState::Start;
    }
    ~vxJSONReader() {
        if (mText != mShortText) {
            free(mText);
        }
    }
    vxJSONReader(const vxJSONReader&) = delete;
    vxJSONReader& operator=(const vxJSONReader&) = delete;

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
    bool IsAtBlank() const { return vxIsBlank(*mPos) || *mPos == '/'; }
    int SkipBlanks();
    int SkipComment();
    int EndedEarly() const { return mfBegun ? kvxJSONParse_EndedInValue : kvxJSONParse_Ended; }

    int ReadValue();
    int ReadArray();
    int ReadObject();
    int ReadKey();
    int ReadString();
    int ReadText();
    void CopyRun(char aQuote);
    int ReadEscape();
    int ReadUnicode();
    int ReadBoolean();
    int ReadNull();
    int ReadWord(const char* aWord, int aFailure);
    int ReadNumber();
    int ReadLongNumber();
    int ReadMember();
    int SendReal(const char* aStart);
    int SendInteger(const char* aStart);
    int SendSigned(int64_t aValue);
    int SendUnsigned(uint64_t aValue);
    const char* Scratch(const char* aStart, size_t aLength);
    bool Enlarge(size_t aLength);

    /// Is there room for so many bytes behind the text in mText, and for a NUL?
    bool HasRoom(size_t aLength) { return aLength < mTextSize - mLength || Enlarge(aLength); }

    void AddByte(unsigned aByte) {
        if (HasRoom(1)) {
            mText[mLength++] = static_cast<char>(aByte);
        }
    }

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

    /// Consumes the ':' behind a key.
    int BeginMember() {
        ++mPos;
        return BeginInner(vxState::ObjectSeparator);
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
    const char* const mEnd;  // the NUL
    vxISerialize& mSink;
    char* mText;                      // the text or number being read; mShortText, or owned
    size_t mTextSize;                 // bytes that mText has
    size_t mLength;                   // bytes of it that are used
    char mShortText[256];             // enough for most
    vxState mStates[JSON_MAX_DEPTH];  // of the open arrays and objects, and of the value inside
    int mDepth;                       // index of the innermost state
    bool mfBegun;                     // a value has begun
};

int vxJSONReader::Read() {
    int theResult = 0;
    while (theResult == 0) {
        if (IsAtBlank()) {
            theResult = SkipBlanks();
        } else if (*mPos == '\0') {
            return mStates[mDepth] == vxState::Finish ? 0 : EndedEarly();
        } else {
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
            return *mPos == ':' ? BeginMember() : kvxJSONParse_MissingColon;
        case vxState::ObjectSeparator:
            if (*mPos == ',') {
                Consume(vxState::ObjectField);
                return *mPos == '"' ? ReadKey() : 0;
            }
            return *mPos == '}' ? EndObject() : kvxJSONParse_BadObject;
    }
    return kvxJSONParse_Unexpected;
}

int vxJSONReader::SkipBlanks() {
    int theResult = 0;
    while (theResult == 0) {
        while (vxIsBlank(*mPos)) {
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
    return *mPos == '-' || vxIsDigit(*mPos) ? ReadNumber() : kvxJSONParse_Unexpected;
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
    int theResult = ReadText();
    mStates[mDepth] = vxState::ObjectFieldEnd;
    if (theResult == 0) {
        theResult = mSink.MapKey(mText, false);
    }
    return theResult == 0 && *mPos == ':' ? ReadMember() : theResult;
}

/// Reads the ':' behind a key, and the value where it is a plain one that follows at once.
int vxJSONReader::ReadMember() {
    BeginMember();
    if (*mPos == '"') {
        return ReadString();
    }
    return vxIsDigit(*mPos) ? ReadNumber() : 0;
}

int vxJSONReader::ReadString() {
    const int theResult = ReadText();
    EndValue();
    return theResult != 0 ? theResult : mSink.String(mText, false);
}

/// Reads a text from its opening to its closing quote into mText.
int vxJSONReader::ReadText() {
    const char theQuote = *mPos++;
    mLength = 0;
    for (;;) {
        CopyRun(theQuote);
        if (*mPos == theQuote) {
            ++mPos;
            mText[mLength] = '\0';
            return 0;
        }
        const int theResult = *mPos == '\0' ? int{kvxJSONParse_EndedInValue} : ReadEscape();
        if (theResult != 0) {
            return theResult;
        }
    }
}

/// Copies what stands in front of the next quote or backslash, or of the end.
void vxJSONReader::CopyRun(char aQuote) {
    while (mEnd - mPos >= kvxBytes_Count && HasRoom(kvxBytes_Count)) {
        const char* const thePos = mPos;
        const vxBytes theMarks = vxMarkAnyOf(vxLoadBytes(thePos), aQuote, '\\');
        const size_t theLength = mLength;
        memcpy(mText + theLength, thePos, kvxBytes_Count);
        const size_t theCount = theMarks == 0 ? kvxBytes_Count : vxFirstMarked(theMarks);
        mPos = thePos + theCount;
        mLength = theLength + theCount;
        if (theMarks != 0) {
            return;
        }
    }
    while (*mPos != '\0' && *mPos != aQuote && *mPos != '\\') {
        AddByte(static_cast<unsigned char>(*mPos++));
    }
}

int vxJSONReader::ReadEscape() {
    ++mPos;
    if (*mPos == '\0') {
        return kvxJSONParse_EndedInValue;
    }
    if (*mPos == kvxEscape_Unicode) {
        return ReadUnicode();
    }
    const char theByte = vxUnescaped(*mPos);
    if (theByte == '\0') {
        return kvxJSONParse_BadString;
    }
    ++mPos;
    AddByte(static_cast<unsigned char>(theByte));
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
    if (theCode < 0x80) {
        AddByte(theCode);
        return 0;
    }
    if (theCode < 0x800) {
        AddByte(0xc0 | theCode >> 6);
    } else {
        AddByte(0xe0 | theCode >> 12);
        AddByte(0x80 | (theCode >> 6 & 0x3f));
    }
    AddByte(0x80 | (theCode & 0x3f));
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
    constexpr ptrdiff_t kvxSafeDigits = 18;  // 64 bits hold every number of so many
    const bool theIsNegative = *mPos == '-';
    const char* const theFirst = mPos + (theIsNegative ? 1 : 0);
    const char* thePos = theFirst;
    int64_t theValue = 0;
    while (vxIsDigit(*thePos) && thePos - theFirst < kvxSafeDigits) {
        theValue = theValue * 10 + (*thePos++ - '0');
    }
    if (thePos == theFirst || vxIsOfNumber(*thePos) || *thePos == 'E') {
        return ReadLongNumber();
    }
    mPos = thePos;
    EndValue();
    return theIsNegative ? SendSigned(-theValue) : SendUnsigned(static_cast<uint64_t>(theValue));
}

/// Reads a real number, one of many digits, or a bad one.
int vxJSONReader::ReadLongNumber() {
    const char* const theStart = mPos;
    bool theIsReal = false;
    while (vxIsOfNumber(*mPos)) {
        theIsReal |= *mPos == '.' || *mPos == 'e';
        ++mPos;
    }
    if (*mPos == 'E') {
        return kvxJSONParse_BadNumber;
    }
    EndValue();
    return theIsReal ? SendReal(theStart) : SendInteger(theStart);
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
        return vxConvert_strtoint64(theText, &theValue) == 0 ? SendSigned(theValue)
                                                             : kvxJSONParse_BadNumber;
    }
    uint64_t theValue = 0;
    return vxConvert_strtouint64(theText, &theValue) == 0 ? SendUnsigned(theValue)
                                                          : kvxJSONParse_BadNumber;
}

// Every value below 0 has bits up there: only "-0" goes out with 32 bits.
int vxJSONReader::SendSigned(int64_t aValue) {
    return static_cast<uint64_t>(aValue) >> 32 != 0 ? mSink.S64(aValue)
                                                    : mSink.S32(static_cast<int32_t>(aValue));
}

int vxJSONReader::SendUnsigned(uint64_t aValue) {
    return aValue > UINT32_MAX ? mSink.U64(aValue) : mSink.U32(static_cast<uint32_t>(aValue));
}

/// Copies a piece of the input into mText, with a NUL.
const char* vxJSONReader::Scratch(const char* aStart, size_t aLength) {
    mLength = 0;
    if (HasRoom(aLength)) {
        memcpy(mText, aStart, aLength);
        mLength = aLength;
    }
    mText[mLength] = '\0';
    return mText;
}

/// Gets room for so many bytes more and a NUL; false when there is no memory.
bool vxJSONReader::Enlarge(size_t aLength) {
    const size_t theRise = std::max(mTextSize, aLength + 1);
    char* theText =
        theRise > SIZE_MAX - mTextSize ? NULL : static_cast<char*>(vxMalloc(mTextSize + theRise));
    if (theText == NULL) {
        return false;
    }
    memcpy(theText, mText, mLength);
    if (mText != mShortText) {
        free(mText);
    }
    mText = theText;
    mTextSize += theRise;
    return true;
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
      mPos(NULL),
      mEnd(NULL),
      mRoom(0) {}

vxJSONFormatter::~vxJSONFormatter() = default;

void vxJSONFormatter::Reset() {
    Result();
    mDoc.Reinit();
    mRoom = 0;
    mIndent = 0;
    mfNeedComma = false;
    mfMapBegin = false;
}

const vxCString& vxJSONFormatter::Result() const {
    if (mPos != NULL) {
        mDoc.UngetWriteBuf(mRoom - static_cast<size_t>(mEnd - mPos));
        mPos = NULL;
        mEnd = NULL;
    }
    return mDoc;
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

/// Gets room for so many bytes behind the text, and returns its end; null when there is no memory.
char* vxJSONFormatter::MakeRoom(size_t aLength) {
    if (mPos == NULL && !Reopen()) {
        return NULL;
    }
    const bool theFits = aLength <= static_cast<size_t>(mEnd - mPos);
    return theFits || Enlarge(aLength) ? mPos : NULL;
}

/// Takes the write buffer out again, with the text in it.
bool vxJSONFormatter::Reopen() {
    const char* theText = mDoc.c_str();
    const size_t theLength = mDoc.length();
    mRoom = std::max<size_t>(mRoom, 512);
    char* theBuffer = mDoc.GetWriteBuf(mRoom);
    if (theBuffer == NULL) {
        return false;
    }
    // A new block: the old one is alive in other strings, and the text is still there.
    if (theBuffer != theText) {
        memcpy(theBuffer, theText, theLength);
    }
    mPos = theBuffer + theLength;
    mEnd = theBuffer + mRoom;
    return true;
}

/// Doubles the write buffer, and more where so many bytes need it.
bool vxJSONFormatter::Enlarge(size_t aLength) {
    const size_t theLength = mRoom - static_cast<size_t>(mEnd - mPos);
    const size_t theRise = std::max(mRoom, aLength);
    vxCString theDoc;
    char* theBuffer =
        theRise > vxCString::npos - mRoom ? NULL : theDoc.GetWriteBuf(mRoom + theRise);
    if (theBuffer == NULL) {
        return false;
    }
    memcpy(theBuffer, mEnd - mRoom, theLength);
    mDoc.Swap(theDoc);
    mRoom += theRise;
    mPos = theBuffer + theLength;
    mEnd = theBuffer + mRoom;
    return true;
}

void vxJSONFormatter::Add(const char* aText, size_t aLength) {
    char* theTarget = Room(aLength);
    if (theTarget != NULL) {
        memcpy(theTarget, aText, aLength);
        mPos += aLength;
    }
}

void vxJSONFormatter::AddByte(char aByte) {
    char* theTarget = Room(1);
    if (theTarget != NULL) {
        *theTarget = aByte;
        ++mPos;
    }
}

/// What Result() has just returned may be written, too: this copy shares its block and keeps it.
vxCString vxJSONFormatter::Keep(const char* aText) const {
    return mPos == NULL && vxLiesIn(aText, mDoc) ? mDoc : vxCString();
}

void vxJSONFormatter::AddText(const char* aText, bool afQuote, bool afComma, bool afColon) {
    const char* const theText = vxText(aText);
    const size_t theLength = strlen(theText);
    char* theTarget = Room(theLength + kvxText_Around);
    if (theTarget == NULL) {
        return;
    }
    // The end of the text goes back to mPos only once: what is written waits for no memory.
    if (afComma) {
        *theTarget++ = ',';
    }
    if (!afQuote) {
        *theTarget++ = '"';
    }
    theTarget = WriteEscaped(theText, theText + theLength, theTarget);
    if (theTarget == NULL) {
        return;
    }
    if (!afQuote) {
        *theTarget++ = '"';
    }
    if (afColon) {
        *theTarget++ = ':';
    }
    mPos = theTarget;
}

/// Writes a text where there is room for it and for what may be around, and returns its end; null
/// when there is no memory for the escapes.
char* vxJSONFormatter::WriteEscaped(const char* aText, const char* anEnd, char* aTarget) {
    const vxEscapes& theEscapes = mfStrict ? kvxEscapes_Strict : kvxEscapes_Lax;
    for (;;) {
        const char* theStop = vxCopyPlain(aText, anEnd, mfStrict, aTarget);
        aTarget += theStop - aText;
        if (theStop == anEnd) {
            return aTarget;
        }
        const char theEscape = theEscapes[static_cast<unsigned char>(*theStop)];
        mPos = vxWriteEscape(*theStop, theEscape, aTarget);
        aText = theStop + 1;
        aTarget = Room(static_cast<size_t>(anEnd - aText) + kvxText_Around);
        if (aTarget == NULL) {
            return NULL;
        }
    }
}

template <typename Integer>
int vxJSONFormatter::AddInteger(Integer aValue) {
    constexpr size_t kvxMaxDigits = 20;
    char* theTarget = Room(kvxMaxDigits);
    if (theTarget != NULL) {
        mPos = std::to_chars(theTarget, theTarget + kvxMaxDigits, aValue).ptr;
    }
    return 0;
}

void vxJSONFormatter::NewLine() {
    if (mfHuman) {
        VXASSERT(mIndent >= 0);
        AddByte('\n');
        for (int i = 0; i < mIndent; ++i) {
            Add(mIndentStr.c_str(), mIndentStr.length());
        }
    }
}

int vxJSONFormatter::MapBegin() {
    NewLine();
    ++mIndent;
    AddByte('{');
    mfMapBegin = true;
    return 0;
}

int vxJSONFormatter::MapKey(const char* aKey, bool afQuote) {
    const vxCString theOld = Keep(aKey);
    const bool theIsFirst = mfMapBegin;
    mfMapBegin = false;
    if (!mfHuman) {
        AddText(aKey, afQuote, !theIsFirst, true);
        return 0;
    }
    if (!theIsFirst) {
        AddByte(',');
    }
    NewLine();
    AddText(aKey, afQuote, false, true);
    AddByte(' ');
    return 0;
}

int vxJSONFormatter::MapEnd() {
    AddByte(',');
    --mIndent;
    NewLine();
    AddByte('}');
    mfMapBegin = false;
    return 0;
}

int vxJSONFormatter::ArrayBegin() {
    AddByte('[');
    return 0;
}

int vxJSONFormatter::ArrayItemSeparator() {
    AddByte(',');
    if (mfHuman) {
        AddByte(' ');
    }
    return 0;
}

int vxJSONFormatter::ArrayEnd() {
    AddByte(']');
    return 0;
}

int vxJSONFormatter::String(const char* aText, bool afQuote) {
    const vxCString theOld = Keep(aText);
    AddText(aText, afQuote, false, false);
    return 0;
}

int vxJSONFormatter::String(const wchar_t* aText, bool afQuote) {
    mTmp = vxCString::FromWideChar(aText);
    return String(mTmp.c_str(), afQuote);
}

int vxJSONFormatter::Boolean(bool aValue) {
    Add(aValue ? "true" : "false", aValue ? 4 : 5);
    return 0;
}

int vxJSONFormatter::U32(uint32_t aValue) {
    return AddInteger(aValue);
}

int vxJSONFormatter::S32(int32_t aValue) {
    return AddInteger(aValue);
}

int vxJSONFormatter::U64(uint64_t aValue) {
    return AddInteger(aValue);
}

int vxJSONFormatter::S64(int64_t aValue) {
    return AddInteger(aValue);
}

// As "%lf" does, whatever the locale.
int vxJSONFormatter::Float(double aValue) {
    constexpr int kvxDecimals = 6;
    constexpr size_t kvxMaxLength = 320;  // a sign, 309 digits, a point and the decimals
    char* theTarget = Room(kvxMaxLength);
    if (theTarget != NULL) {
        mPos = std::to_chars(theTarget, theTarget + kvxMaxLength, aValue, std::chars_format::fixed,
                             kvxDecimals)
                   .ptr;
    }
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
    vxProperty* theProperty = vxPropertyList_GetAt(aList, 0);
    for (size_t i = 1; theResult == 0 && theProperty != NULL; ++i) {
        theResult = SerializeProperty(theProperty, aSink);
        theProperty = vxPropertyList_GetAt(aList, i);
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
