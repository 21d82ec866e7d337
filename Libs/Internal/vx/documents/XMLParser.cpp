// One pass over the bytes, an explicit stack of open elements, and no entity that could grow.
//
// Names are looked up among those met before, so that equal names share one block: a document has few
// of them, and comparing two is comparing pointers. A name remembers the element that had it last as an
// attribute, so that a second one shows without a search. Blanks between tags become nodes only when
// their element turns out to hold text.

#include "vx/XMLParser.h"

#include "Bytes.h"
#include "XMLCells.h"

#include <libteskTools/HashTable.h>
#include <libteskTools/Unicode.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vx/DataBuffer.h"
#include "vx/Error.h"
#include "vx/FileHelper.h"
#include "vx/PathName.h"
#include "vx/XML.h"

/// Links nodes at places that the reader knows already.
class vxXMLReaderLinks {
public:
    /// Makes a detached node and takes its content over.
    static vxXMLNode* Make(vxXMLArena& anArena, vxXMLNodeType aType, const vxCString& aName,
                           vxCString& aContent) {
        vxXMLNode* theNode = anArena.New<vxXMLNode>(aType, aName, vxCString());
        theNode->mContent.Swap(aContent);
        return theNode;
    }

    /// Makes an attribute and takes its value over.
    static vxXMLProperty* MakeProperty(vxXMLArena& anArena, const vxCString& aName,
                                       vxCString& aValue) {
        vxXMLProperty* theProperty = anArena.New<vxXMLProperty>(aName, vxCString());
        theProperty->mValue.Swap(aValue);
        return theProperty;
    }

    /// Puts a node behind a child; a null one stands for the place in front of the first.
    static void InsertBehind(vxXMLNode* aParent, vxXMLNode* aChild, vxXMLNode* aNode) {
        vxXMLNode*& theLink = aChild == NULL ? aParent->mChildren : aChild->mNext;
        aNode->mParent = aParent;
        aNode->mNext = theLink;
        theLink = aNode;
    }

    /// Deletes the text nodes that hold blanks only.
    static void DropBlankTexts(vxXMLNode* aParent, bool (*aIsBlank)(const vxCString&)) {
        for (vxXMLNode** theLink = &aParent->mChildren; *theLink != NULL;) {
            vxXMLNode* theNode = *theLink;
            if (theNode->mType == vxXMLNodeType_Text && aIsBlank(theNode->mContent)) {
                *theLink = theNode->mNext;
                theNode->mNext = NULL;
                delete theNode;
            } else {
                theLink = &theNode->mNext;
            }
        }
    }
};

namespace {

bool vxIsBlank(char aChar) {
    return aChar == ' ' || aChar == '\t' || aChar == '\n' || aChar == '\r';
}

/// Returns where a run of text must be looked at: at markup, a reference, a line end or a ">".
const char* vxEndOfPlainText(const char* aText, const char* anEnd) {
    return vxFindAnyOf(aText, anEnd, '<', '&', '>', '\r');
}

struct vxRange {
    uint32_t mFirst;
    uint32_t mLast;
};

/// The characters that a name may begin with, in rising order.
constexpr vxRange kvxXML_NameStarts[] = {
    {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

/// Those that it may go on with besides.
constexpr vxRange kvxXML_NameOthers[] = {
    {'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040},
};

template <size_t Count>
bool vxIsIn(const vxRange (&aRanges)[Count], uint32_t aCode) {
    for (const vxRange& theRange : aRanges) {
        if (aCode <= theRange.mLast) {
            return aCode >= theRange.mFirst;
        }
    }
    return false;
}

/// Decodes the character at the start of valid UTF-8 and stores its number of bytes.
uint32_t vxCharacterAt(const char* aText, size_t* aSize) {
    const unsigned char theLead = static_cast<unsigned char>(*aText);
    *aSize = theLead < 0x80 ? 1 : theLead < 0xE0 ? 2 : theLead < 0xF0 ? 3 : 4;
    uint32_t theCode = *aSize == 1 ? theLead : theLead & (0x7FU >> *aSize);
    for (size_t i = 1; i < *aSize; ++i) {
        theCode = theCode << 6 | (static_cast<unsigned char>(aText[i]) & 0x3F);
    }
    return theCode;
}

/// What a byte may be.
enum vxByteKind : uint8_t {
    kvxXML_NameStart = 1,  // ASCII that a name may begin with
    kvxXML_Name = 2,       // ASCII that it may go on with
    kvxXML_Blank = 4,
    kvxXML_NotInDouble = 8,  // does not stand for itself in a value between these quotes
    kvxXML_NotInSingle = 16
};

class vxByteKinds {
public:
    constexpr vxByteKinds() : mKinds() {
        for (const vxRange& theRange : kvxXML_NameStarts) {
            Add(theRange, kvxXML_NameStart | kvxXML_Name);
        }
        for (const vxRange& theRange : kvxXML_NameOthers) {
            Add(theRange, kvxXML_Name);
        }
        constexpr unsigned kvxNotInValues = kvxXML_NotInDouble | kvxXML_NotInSingle;
        Add({0, 0x1F}, kvxNotInValues);
        Add({'<', '<'}, kvxNotInValues);
        Add({'&', '&'}, kvxNotInValues);
        Add({'"', '"'}, kvxXML_NotInDouble);
        Add({'\'', '\''}, kvxXML_NotInSingle);
        Add({'\t', '\n'}, kvxXML_Blank);
        Add({'\r', '\r'}, kvxXML_Blank);
        Add({' ', ' '}, kvxXML_Blank);
    }

    bool Is(char aByte, unsigned aKinds) const {
        return (mKinds[static_cast<unsigned char>(aByte)] & aKinds) != 0;
    }

    /// Passes over bytes of these kinds.
    const char* SkipAll(const char* aText, const char* anEnd, unsigned aKinds) const {
        while (aText != anEnd && Is(*aText, aKinds)) {
            ++aText;
        }
        return aText;
    }

    /// Passes over bytes of other kinds.
    const char* SkipOthers(const char* aText, const char* anEnd, unsigned aKinds) const {
        while (aText != anEnd && !Is(*aText, aKinds)) {
            ++aText;
        }
        return aText;
    }

private:
    constexpr void Add(const vxRange& aRange, unsigned aKinds) {
        for (uint32_t i = aRange.mFirst; i <= aRange.mLast && i < 0x80; ++i) {
            mKinds[i] = static_cast<uint8_t>(mKinds[i] | aKinds);
        }
    }

    uint8_t mKinds[256];
};
constexpr vxByteKinds kvxXML_Bytes;

bool vxIsBlankRun(const char* aText, const char* anEnd) {
    return kvxXML_Bytes.SkipAll(aText, anEnd, kvxXML_Blank) == anEnd;
}

bool vxIsBlankText(const vxCString& aText) {
    return vxIsBlankRun(aText.c_str(), aText.c_str() + aText.length());
}

/// Goes on with a name of which `aPos` is not ASCII.
const char* vxEndOfLongName(const char* aText, const char* aPos, const char* anEnd) {
    while (aPos != anEnd) {
        size_t theSize = 0;
        const uint32_t theCode = vxCharacterAt(aPos, &theSize);
        if (!vxIsIn(kvxXML_NameStarts, theCode) &&
            (aPos == aText || !vxIsIn(kvxXML_NameOthers, theCode))) {
            break;
        }
        aPos += theSize;
    }
    return aPos;
}

/// Returns the end of the name at the start of valid UTF-8; that start where no name is.
inline const char* vxEndOfName(const char* aText, const char* anEnd) {
    const char* thePos = aText;
    if (thePos != anEnd && kvxXML_Bytes.Is(*thePos, kvxXML_NameStart)) {
        thePos = kvxXML_Bytes.SkipAll(thePos + 1, anEnd, kvxXML_Name);
    }
    const bool theIsASCII = thePos == anEnd || static_cast<unsigned char>(*thePos) < 0x80;
    return theIsASCII ? thePos : vxEndOfLongName(aText, thePos, anEnd);
}

/// May this character stand in the public name of a document type?
bool vxIsPublic(char aChar) {
    return (aChar >= 'a' && aChar <= 'z') || (aChar >= 'A' && aChar <= 'Z') ||
           (aChar != '\0' && strchr("0123456789 \r\n-'()+,./:=?;!*#@$_%", aChar) != NULL);
}

/// Is this a version of XML 1, whose documents may all be read as version 1.0?
bool vxIsVersion1(std::string_view aText) {
    return aText.size() > 2 && aText.substr(0, 2) == "1." &&
           aText.find_first_not_of("0123456789", 2) == std::string_view::npos;
}

/// May this code point stand in a document at all?
bool vxIsCharacter(uint32_t aCode) {
    return aCode == '\t' || aCode == '\n' || aCode == '\r' || (aCode >= 0x20 && aCode <= 0xD7FF) ||
           (aCode >= 0xE000 && aCode <= 0xFFFD) || (aCode >= 0x10000 && aCode <= 0x10FFFF);
}

void vxAppendUTF8(std::string& aText, uint32_t aCode) {
    const auto theByte = [&aText](uint32_t aValue) { aText += static_cast<char>(aValue); };
    if (aCode < 0x80) {
        theByte(aCode);
    } else if (aCode < 0x800) {
        theByte(0xC0 | aCode >> 6);
        theByte(0x80 | (aCode & 0x3F));
    } else if (aCode < 0x10000) {
        theByte(0xE0 | aCode >> 12);
        theByte(0x80 | (aCode >> 6 & 0x3F));
        theByte(0x80 | (aCode & 0x3F));
    } else {
        theByte(0xF0 | aCode >> 18);
        theByte(0x80 | (aCode >> 12 & 0x3F));
        theByte(0x80 | (aCode >> 6 & 0x3F));
        theByte(0x80 | (aCode & 0x3F));
    }
}

struct vxNamedEntity {
    std::string_view mName;
    char mChar;
};

constexpr vxNamedEntity kvxXML_Entities[] = {
    {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''},
};

/// A name met.
struct vxName {
    vxCString mText;
    size_t mElement;  // the number of the last one that had it as an attribute; 0: none
};

/// The names met so far; equal ones share one block.
///
/// A small table by place, which knows nothing of all but the last name of each, stands before one
/// whose hash nobody can foresee.
class vxNames {
public:
    vxNames() : mNames(vxHashTable_New([](void* aName) { delete static_cast<vxName*>(aName); })) {}
    ~vxNames() { vxHashTable_Delete(mNames); }
    vxNames(const vxNames&) = delete;
    vxNames& operator=(const vxNames&) = delete;

    /// Returns the name of some bytes, at least one.
    vxName& Get(const char* aText, size_t aLength) {
        const auto theByte = [aText](size_t anIndex) {
            return static_cast<size_t>(static_cast<unsigned char>(aText[anIndex]));
        };
        const size_t thePlace =
            theByte(0) * 5 + theByte(aLength / 2) * 3 + theByte(aLength - 1) + aLength;
        vxName*& theRecent = mRecent[thePlace % kvxRecent];
        if (theRecent == NULL || theRecent->mText.length() != aLength ||
            !vxAreSame(theRecent->mText.c_str(), aText, aLength)) {
            theRecent = &Find(aText, aLength);
        }
        return *theRecent;
    }

private:
    static constexpr size_t kvxRecent = 128;

    vxName& Find(const char* aText, size_t aLength) {
        void* theName = vxHashTable_GetEntry(mNames, aText, aLength);
        if (theName == NULL) {
            theName = new vxName{vxCString(aText, aLength), 0};
            vxHashTable_AddEntry(mNames, aText, aLength, theName);
        }
        return *static_cast<vxName*>(theName);
    }

    vxHashTable* mNames;              // owned, as are its names
    vxName* mRecent[kvxRecent] = {};  // the last one of those that share a place
};

class vxXMLReader {
public:
    vxXMLReader(const char* aText, size_t aSize, const vxXMLParserLimits& aLimits)
        : mStart(aText), mPos(aText), mEnd(aText + aSize), mLimits(aLimits), mArena(aSize) {}

    bool Read();

    vxXMLNode* TakeRoot() { return mRoot.release(); }
    const vxCString& Version() const { return mVersion; }
    vxError Error() const;

private:
    struct Element {
        vxXMLNode* mNode;
        vxXMLNode* mLast;  // child
        bool mfHasText;    // a child text that is not blank
        bool mfHasBlanks;  // a child text that is
        size_t mBlanks;    // how many were put off in the elements around it
    };

    /// Blanks that are no node yet.
    struct Blanks {
        vxXMLNode* mBehind;  // the child in front of them, or null
        const char* mStart;
        const char* mEnd;
    };

    bool Fail(const char* aExpected, int aCode = kvxXMLParserError_Syntax) {
        // The first failure is the one to report.
        if (mExpected == NULL) {
            mExpected = aExpected;
            mCode = aCode;
        }
        return false;
    }

    bool AtEnd() const { return mPos == mEnd; }
    bool Looks(std::string_view aText) const {
        return static_cast<size_t>(mEnd - mPos) >= aText.size() &&
               memcmp(mPos, aText.data(), aText.size()) == 0;
    }
    bool LooksAt(char aChar) const { return mPos != mEnd && *mPos == aChar; }
    bool Skip(char aChar) {
        const bool theFound = LooksAt(aChar);
        mPos += theFound ? 1 : 0;
        return theFound;
    }
    bool Skip(std::string_view aText) {
        const bool theFound = Looks(aText);
        mPos += theFound ? aText.size() : 0;
        return theFound;
    }
    bool SkipBlanks() {
        const char* theStart = mPos;
        mPos = kvxXML_Bytes.SkipAll(mPos, mEnd, kvxXML_Blank);
        return mPos != theStart;
    }

    bool CheckEncoding();
    bool CheckCharacters();
    bool CheckASCII();
    bool ReadDeclaration();
    bool ReadPseudoAttribute(std::string_view aName, std::string_view* aValue);
    bool ReadProlog();
    bool ReadDoctype();
    bool ReadLiteral(std::string_view* aText);
    bool ReadInstruction();
    bool FindCommentEnd(const char** anEnd);
    bool SkipName(std::string_view* aName);
    bool SkipUntil(std::string_view anEnd, const char* aExpected);
    vxName* ReadName();
    bool ReadContent();
    bool ReadMarkup();
    bool ReadStartTag();
    bool ReadAttributes(vxXMLNode* aNode, bool* afHasContent);
    bool ReadAttribute(vxXMLNode* aNode, vxXMLProperty** aLast);
    bool ReadAttributeValue(vxCString* aValue);
    bool ReadEndTag();
    bool ReadText();
    bool ReadCData();
    bool ReadComment();
    bool ReadReference(std::string* aText);
    bool ReadCharacterReference(std::string* aText);
    bool AppendCharacters(const char* anEnd, std::string* aText);
    bool BeginsTag(const char* aText) const;
    void FlushText();
    void AddText();
    void AddPlainText(const char* anEnd, bool afIsBlank);
    void MakeBlanks();
    void AppendChild(vxXMLNode* aNode);
    void CloseElement();

    const char* const mStart;
    const char* mPos;
    const char* const mEnd;
    const vxXMLParserLimits& mLimits;

    vxXMLArena mArena;
    std::unique_ptr<vxXMLNode> mRoot;
    std::vector<Element> mOpen;
    std::vector<Blanks> mBlanks;  // of open elements without text, outermost first
    std::string mText;            // of the text node that is being read
    bool mfInText = false;        // there is one
    bool mfHasCData = false;  // it came in part from a CDATA section, and is text even when blank
    bool mfHasDoctype = false;
    vxCString mVersion = "1.0";
    const vxCString mTextName = "text";
    const vxCString mCommentName = "comment";
    vxNames mNames;
    size_t mElements = 0;  // met so far

    const char* mExpected = NULL;
    int mCode = 0;
};

bool vxXMLReader::Read() {
    return CheckEncoding() && CheckCharacters() && ReadDeclaration() && ReadProlog() &&
           ReadStartTag() && ReadContent() && ReadProlog() &&
           (AtEnd() || Fail("the end of the document"));
}

vxError vxXMLReader::Error() const {
    unsigned long theLine = 1;
    unsigned long theColumn = 1;
    for (const char* i = mStart; i != mPos; ++i) {
        if (*i == '\n') {
            ++theLine;
            theColumn = 1;
        } else if ((static_cast<unsigned char>(*i) & 0xC0) != 0x80) {
            ++theColumn;
        }
    }
    vxError theError(mCode, vxCString::Format("line %lu, column %lu: expected %s", theLine,
                                              theColumn, mExpected));
    theError.SetModule("XMLParser");
    return theError;
}

bool vxXMLReader::CheckEncoding() {
    size_t theCount = 0;
    const size_t theSize = static_cast<size_t>(mEnd - mStart);
    if (vxUnicode_UTF8ToWide(mStart, theSize, NULL, 0, &theCount) != 0) {
        while (theCount != 0) {
            ++mPos;
            while (mPos != mEnd && (static_cast<unsigned char>(*mPos) & 0xC0) == 0x80) {
                ++mPos;
            }
            --theCount;
        }
        return Fail("valid UTF-8");
    }
    Skip("\xEF\xBB\xBF");
    return true;
}

// Looks for control characters, and for the last two code points of the first plane. Nothing else that
// is valid UTF-8 is forbidden.
bool vxXMLReader::CheckCharacters() {
    for (const char* i = mPos; i != mEnd;) {
        const ptrdiff_t theCount = std::min(mEnd - i, kvxBytes_Count);
        if (theCount == kvxBytes_Count) {
            const vxBytes theBytes = vxLoadBytes(i);
            if (vxIsPrintingASCII(theBytes) ||
                (!vxHasControlButLineFeed(theBytes) && vxMarkAnyOf(theBytes, 0xEF) == 0)) {
                i += theCount;
                continue;
            }
        }
        for (const char* const theEnd = i + theCount; i != theEnd; ++i) {
            const unsigned char theByte = static_cast<unsigned char>(*i);
            if ((theByte < 0x20 && !vxIsBlank(*i)) ||
                (theByte == 0xEF && i[1] == '\xBF' && static_cast<unsigned char>(i[2]) >= 0xBE)) {
                mPos = i;
                return Fail("a character that XML allows");
            }
        }
    }
    return true;
}

bool vxXMLReader::CheckASCII() {
    for (const char* i = mPos; i != mEnd; ++i) {
        if (static_cast<unsigned char>(*i) >= 0x80) {
            mPos = i;
            return Fail("a character of us-ascii");
        }
    }
    return true;
}

bool vxXMLReader::ReadDeclaration() {
    if (!Looks("<?xml") || mEnd - mPos < 6 || !vxIsBlank(mPos[5])) {
        return true;
    }
    mPos += 5;
    std::string_view theValue;
    if (!SkipBlanks() || !ReadPseudoAttribute("version", &theValue)) {
        return Fail("version=\"1.0\"");
    }
    if (!vxIsVersion1(theValue)) {
        return Fail("version 1.0", kvxXMLParserError_Unsupported);
    }
    mVersion = vxCString(theValue.data(), theValue.size());
    bool theHasBlank = SkipBlanks();
    if (theHasBlank && ReadPseudoAttribute("encoding", &theValue)) {
        const vxCString theEncoding(theValue.data(), theValue.size());
        const bool theIsASCII = theEncoding.CompareNoCase("us-ascii") == 0;
        if (!theIsASCII && theEncoding.CompareNoCase("utf-8") != 0) {
            return Fail("the encoding UTF-8", kvxXMLParserError_Unsupported);
        }
        if (theIsASCII && !CheckASCII()) {
            return false;
        }
        theHasBlank = SkipBlanks();
    }
    if (theHasBlank && ReadPseudoAttribute("standalone", &theValue)) {
        if (theValue != "yes" && theValue != "no") {
            return Fail("standalone=\"yes\" or \"no\"");
        }
        SkipBlanks();
    }
    return Skip("?>") || Fail("\"?>\"");
}

bool vxXMLReader::ReadPseudoAttribute(std::string_view aName, std::string_view* aValue) {
    const char* theStart = mPos;
    if (Skip(aName)) {
        SkipBlanks();
        if (Skip('=')) {
            SkipBlanks();
            const char theQuote = AtEnd() ? '\0' : *mPos;
            const void* theClosing =
                theQuote == '"' || theQuote == '\''
                    ? memchr(mPos + 1, theQuote, static_cast<size_t>(mEnd - mPos - 1))
                    : NULL;
            if (theClosing != NULL) {
                const char* theEnd = static_cast<const char*>(theClosing);
                *aValue = std::string_view(mPos + 1, static_cast<size_t>(theEnd - mPos - 1));
                mPos = theEnd + 1;
                return true;
            }
        }
    }
    mPos = theStart;
    return false;
}

// Passes over what may stand around the root, up to the root or the end.
bool vxXMLReader::ReadProlog() {
    for (;;) {
        SkipBlanks();
        if (Skip("<!--")) {
            const char* theEnd = NULL;
            if (!FindCommentEnd(&theEnd)) {
                return false;
            }
            mPos = theEnd + 3;
        } else if (Skip("<?")) {
            if (!ReadInstruction()) {
                return false;
            }
        } else if (mRoot == NULL && !mfHasDoctype && Skip("<!DOCTYPE")) {
            if (!ReadDoctype()) {
                return false;
            }
        } else {
            return mRoot != NULL || (!AtEnd() && *mPos == '<') || Fail("the root element");
        }
    }
}

bool vxXMLReader::ReadDoctype() {
    mfHasDoctype = true;
    std::string_view theText;
    if (!SkipBlanks()) {
        return Fail("a blank");
    }
    if (!SkipName(&theText)) {
        return false;
    }
    const bool theHasBlank = SkipBlanks();
    const bool theIsPublic = theHasBlank && Skip("PUBLIC");
    if (theIsPublic) {
        if (!ReadLiteral(&theText)) {
            return false;
        }
        for (const char theChar : theText) {
            if (!vxIsPublic(theChar)) {
                return Fail("a public name of characters that XML allows there");
            }
        }
    }
    if ((theIsPublic || (theHasBlank && Skip("SYSTEM"))) && !ReadLiteral(&theText)) {
        return false;
    }
    SkipBlanks();
    if (LooksAt('[')) {
        return Fail("a DOCTYPE without an internal subset", kvxXMLParserError_Unsupported);
    }
    return Skip('>') || Fail("\">\"");
}

// Reads a quoted text behind blanks.
bool vxXMLReader::ReadLiteral(std::string_view* aText) {
    if (!SkipBlanks()) {
        return Fail("a blank");
    }
    const char theQuote = AtEnd() ? '\0' : *mPos;
    if (theQuote != '"' && theQuote != '\'') {
        return Fail("a quoted text");
    }
    const char* theStart = ++mPos;
    if (!SkipUntil(std::string_view(&theQuote, 1), "the closing quote")) {
        return false;
    }
    *aText = std::string_view(theStart, static_cast<size_t>(mPos - theStart - 1));
    return true;
}

// Passes over the rest of a processing instruction.
bool vxXMLReader::ReadInstruction() {
    const char* theStart = mPos;
    std::string_view theName;
    if (!SkipName(&theName)) {
        return false;
    }
    if (vxCString(theName.data(), theName.size()).CompareNoCase("xml") == 0) {
        mPos = theStart;
        return Fail("a name other than \"xml\"");
    }
    if (!Looks("?>") && !SkipBlanks()) {
        return Fail("a blank or \"?>\"");
    }
    return SkipUntil("?>", "\"?>\"");
}

// Finds the "-->" of the comment that has begun.
bool vxXMLReader::FindCommentEnd(const char** anEnd) {
    const std::string_view theRest(mPos, static_cast<size_t>(mEnd - mPos));
    const size_t theLength = theRest.find("--");
    *anEnd = mPos + (theLength == std::string_view::npos ? theRest.size() : theLength);
    if (*anEnd == mEnd || mEnd - *anEnd < 3 || (*anEnd)[2] != '>') {
        mPos = *anEnd;
        return Fail("\"-->\"");
    }
    return true;
}

bool vxXMLReader::SkipName(std::string_view* aName) {
    const char* theStart = mPos;
    mPos = vxEndOfName(mPos, mEnd);
    *aName = std::string_view(theStart, static_cast<size_t>(mPos - theStart));
    return !aName->empty() || Fail("a name");
}

bool vxXMLReader::SkipUntil(std::string_view anEnd, const char* aExpected) {
    const std::string_view theRest(mPos, static_cast<size_t>(mEnd - mPos));
    const size_t thePos = theRest.find(anEnd);
    if (thePos == std::string_view::npos) {
        mPos = mEnd;
        return Fail(aExpected);
    }
    mPos += thePos + anEnd.size();
    return true;
}

// Returns null after a failure.
vxName* vxXMLReader::ReadName() {
    const char* const theStart = mPos;
    mPos = vxEndOfName(mPos, mEnd);
    const size_t theLength = static_cast<size_t>(mPos - theStart);
    if (theLength == 0) {
        Fail("a name");
        return NULL;
    }
    if (theLength > mLimits.mMaxTextSize) {
        Fail("a shorter name", kvxXMLParserError_Limit);
        return NULL;
    }
    return &mNames.Get(theStart, theLength);
}

bool vxXMLReader::ReadContent() {
    while (!mOpen.empty()) {
        if (AtEnd()) {
            return Fail("an end tag");
        }
        if (!(*mPos == '<' ? ReadMarkup() : ReadText())) {
            return false;
        }
    }
    return true;
}

bool vxXMLReader::ReadMarkup() {
    switch (mEnd - mPos < 2 ? '\0' : mPos[1]) {
        case '/':
            FlushText();
            return ReadEndTag();
        case '!':
            if (Skip("<![CDATA[")) {
                return ReadCData();
            }
            if (Skip("<!--")) {
                FlushText();
                return ReadComment();
            }
            break;
        case '?':
            mPos += 2;
            return ReadInstruction();
        default:
            break;
    }
    FlushText();
    return ReadStartTag();
}

bool vxXMLReader::ReadStartTag() {
    if (!Skip('<')) {
        return Fail("\"<\"");
    }
    const vxName* theName = ReadName();
    if (theName == NULL) {
        return false;
    }
    if (mOpen.size() >= mLimits.mMaxDepth) {
        return Fail("fewer elements within each other", kvxXMLParserError_Limit);
    }
    vxXMLNode* theNode = mArena.New<vxXMLNode>(vxXMLNodeType_Element, theName->mText, vxCString());
    if (mOpen.empty()) {
        mRoot.reset(theNode);
    } else {
        AppendChild(theNode);
    }
    ++mElements;
    bool theHasContent = false;
    if (!ReadAttributes(theNode, &theHasContent)) {
        return false;
    }
    if (theHasContent) {
        mOpen.push_back({theNode, NULL, false, false, mBlanks.size()});
    }
    return true;
}

bool vxXMLReader::ReadAttributes(vxXMLNode* aNode, bool* afHasContent) {
    vxXMLProperty* theLast = NULL;
    for (size_t theCount = 0;; ++theCount) {
        const bool theHasBlank = SkipBlanks();
        if (Skip('>')) {
            *afHasContent = true;
            return true;
        }
        if (LooksAt('/') && Skip("/>")) {
            return true;
        }
        if (!theHasBlank) {
            return Fail("a blank, \">\" or \"/>\"");
        }
        if (theCount >= mLimits.mMaxAttributes) {
            return Fail("fewer attributes", kvxXMLParserError_Limit);
        }
        if (!ReadAttribute(aNode, &theLast)) {
            return false;
        }
    }
}

bool vxXMLReader::ReadAttribute(vxXMLNode* aNode, vxXMLProperty** aLast) {
    const char* theStart = mPos;
    vxName* theName = ReadName();
    if (theName == NULL) {
        return false;
    }
    if (theName->mElement == mElements) {
        mPos = theStart;
        return Fail("an attribute that the element does not have yet");
    }
    theName->mElement = mElements;
    SkipBlanks();
    if (!Skip('=')) {
        return Fail("\"=\"");
    }
    SkipBlanks();
    vxCString theValue;
    if (!ReadAttributeValue(&theValue)) {
        return false;
    }
    vxXMLProperty* theProperty = vxXMLReaderLinks::MakeProperty(mArena, theName->mText, theValue);
    if (*aLast == NULL) {
        aNode->AddProperty(theProperty);
    } else {
        (*aLast)->SetNext(theProperty);
    }
    *aLast = theProperty;
    return true;
}

bool vxXMLReader::ReadAttributeValue(vxCString* aValue) {
    const char theQuote = AtEnd() ? '\0' : *mPos;
    if (theQuote != '"' && theQuote != '\'') {
        return Fail("a quoted value");
    }
    ++mPos;
    const char* thePlainEnd = kvxXML_Bytes.SkipOthers(
        mPos, mEnd, theQuote == '"' ? kvxXML_NotInDouble : kvxXML_NotInSingle);
    const size_t theLength = static_cast<size_t>(thePlainEnd - mPos);
    if (thePlainEnd != mEnd && *thePlainEnd == theQuote && theLength <= mLimits.mMaxTextSize) {
        vxCString(mPos, theLength).Swap(*aValue);
        mPos = thePlainEnd + 1;
        return true;
    }
    mText.clear();
    while (!AtEnd() && *mPos != theQuote) {
        if (*mPos == '<') {
            return Fail("\"&lt;\" in place of \"<\"");
        }
        if (*mPos == '&') {
            if (!ReadReference(&mText)) {
                return false;
            }
            continue;
        }
        // A line end of two bytes is one blank.
        if (*mPos != '\r' || mPos + 1 == mEnd || mPos[1] != '\n') {
            mText += vxIsBlank(*mPos) ? ' ' : *mPos;
        }
        ++mPos;
        if (mText.size() > mLimits.mMaxTextSize) {
            return Fail("a shorter value", kvxXMLParserError_Limit);
        }
    }
    if (AtEnd()) {
        return Fail("the closing quote");
    }
    ++mPos;
    *aValue = vxCString(mText.data(), mText.size());
    mText.clear();
    return true;
}

bool vxXMLReader::ReadEndTag() {
    const vxCString& theOpenName = mOpen.back().mNode->GetName();
    const size_t theLength = theOpenName.length();
    const char* theStart = mPos;
    mPos += 2;
    if (static_cast<size_t>(mEnd - mPos) > theLength && mPos[theLength] == '>' &&
        vxAreSame(mPos, theOpenName.c_str(), theLength)) {
        mPos += theLength + 1;
        CloseElement();
        return true;
    }
    const vxName* theName = ReadName();
    if (theName == NULL) {
        return false;
    }
    // Equal names share their block.
    if (theName->mText.c_str() != theOpenName.c_str()) {
        mPos = theStart;
        return Fail("the end tag of the innermost element");
    }
    SkipBlanks();
    if (!Skip('>')) {
        return Fail("\">\"");
    }
    CloseElement();
    return true;
}

// Copies what lies before `anEnd`, with line ends made uniform.
bool vxXMLReader::AppendCharacters(const char* anEnd, std::string* aText) {
    while (mPos != anEnd) {
        const char* theRun = mPos;
        const void* theReturn = memchr(mPos, '\r', static_cast<size_t>(anEnd - mPos));
        mPos = theReturn == NULL ? anEnd : static_cast<const char*>(theReturn);
        aText->append(theRun, mPos);
        if (aText->size() > mLimits.mMaxTextSize) {
            return Fail("a shorter text", kvxXMLParserError_Limit);
        }
        if (mPos == anEnd) {
            return true;
        }
        ++mPos;
        if (mPos == mEnd || *mPos != '\n') {
            *aText += '\n';
        }
    }
    return true;
}

// Behind "<!" and "<?" the same text may go on.
bool vxXMLReader::BeginsTag(const char* aText) const {
    return mEnd - aText >= 2 && *aText == '<' && aText[1] != '!' && aText[1] != '?';
}

bool vxXMLReader::ReadText() {
    if (*mPos == '&') {
        mfInText = true;
        return ReadReference(&mText);
    }
    if (*mPos == '\n' && !mfInText) {
        const char* theEnd = mPos + 1;
        while (theEnd != mEnd && (*theEnd == ' ' || *theEnd == '\t')) {
            ++theEnd;
        }
        if (BeginsTag(theEnd) && static_cast<size_t>(theEnd - mPos) <= mLimits.mMaxTextSize) {
            AddPlainText(theEnd, true);
            return true;
        }
    }
    bool theHasReturn = false;
    const char* theEnd = vxEndOfPlainText(mPos, mEnd);
    while (theEnd != mEnd && *theEnd != '<' && *theEnd != '&') {
        if (*theEnd == '>' && theEnd - mPos >= 2 && theEnd[-1] == ']' && theEnd[-2] == ']') {
            mPos = theEnd - 2;
            return Fail("\"]]&gt;\" in place of \"]]>\"");
        }
        theHasReturn |= *theEnd == '\r';
        theEnd = vxEndOfPlainText(theEnd + 1, mEnd);
    }
    const bool theIsWhole = BeginsTag(theEnd) && !mfInText && !theHasReturn;
    if (!theIsWhole || static_cast<size_t>(theEnd - mPos) > mLimits.mMaxTextSize) {
        mfInText = true;
        return AppendCharacters(theEnd, &mText);
    }
    AddPlainText(theEnd, vxIsBlankRun(mPos, theEnd));
    return true;
}

// Makes a node of a text that stands in the input as it is, or puts blanks off.
void vxXMLReader::AddPlainText(const char* anEnd, bool afIsBlank) {
    Element& theParent = mOpen.back();
    if (afIsBlank && !theParent.mfHasText) {
        mBlanks.push_back({theParent.mLast, mPos, anEnd});
    } else {
        MakeBlanks();
        theParent.mfHasText |= !afIsBlank;
        vxCString theText(mPos, static_cast<size_t>(anEnd - mPos));
        AppendChild(vxXMLReaderLinks::Make(mArena, vxXMLNodeType_Text, mTextName, theText));
    }
    mPos = anEnd;
}

// Makes nodes of the blanks that were put off in the innermost element. Behind each a child has come
// since, or the element ends: none of them is the place where the next node goes.
void vxXMLReader::MakeBlanks() {
    Element& theParent = mOpen.back();
    for (; mBlanks.size() > theParent.mBlanks; mBlanks.pop_back()) {
        const Blanks& theBlanks = mBlanks.back();
        vxCString theText(theBlanks.mStart, static_cast<size_t>(theBlanks.mEnd - theBlanks.mStart));
        vxXMLNode* theNode = vxXMLReaderLinks::Make(mArena, vxXMLNodeType_Text, mTextName, theText);
        vxXMLReaderLinks::InsertBehind(theParent.mNode, theBlanks.mBehind, theNode);
    }
}

bool vxXMLReader::ReadCData() {
    const std::string_view theRest(mPos, static_cast<size_t>(mEnd - mPos));
    const size_t theLength = theRest.find("]]>");
    if (theLength == std::string_view::npos) {
        mPos = mEnd;
        return Fail("\"]]>\"");
    }
    mfInText = true;
    mfHasCData = true;
    if (!AppendCharacters(mPos + theLength, &mText)) {
        return false;
    }
    mPos += 3;
    return true;
}

bool vxXMLReader::ReadComment() {
    const char* theEnd = NULL;
    std::string theText;
    if (!FindCommentEnd(&theEnd) || !AppendCharacters(theEnd, &theText)) {
        return false;
    }
    mPos += 3;
    AppendChild(mArena.New<vxXMLNode>(vxXMLNodeType_Comment, mCommentName,
                                      vxCString(theText.data(), theText.size())));
    return true;
}

bool vxXMLReader::ReadReference(std::string* aText) {
    const char* theStart = mPos;
    ++mPos;
    if (Skip('#')) {
        if (ReadCharacterReference(aText)) {
            return aText->size() <= mLimits.mMaxTextSize ||
                   Fail("a shorter text", kvxXMLParserError_Limit);
        }
        mPos = theStart;
        return Fail("a reference to a character that XML allows");
    }
    for (const vxNamedEntity& theEntity : kvxXML_Entities) {
        if (LooksAt(theEntity.mName[0]) && Looks(theEntity.mName) &&
            mPos + theEntity.mName.size() != mEnd && mPos[theEntity.mName.size()] == ';') {
            mPos += theEntity.mName.size() + 1;
            *aText += theEntity.mChar;
            return aText->size() <= mLimits.mMaxTextSize ||
                   Fail("a shorter text", kvxXMLParserError_Limit);
        }
    }
    mPos = theStart;
    return Fail("&amp;, &lt;, &gt;, &quot;, &apos; or a character reference");
}

bool vxXMLReader::ReadCharacterReference(std::string* aText) {
    const bool theIsHexadecimal = Skip('x');
    const uint32_t theBase = theIsHexadecimal ? 16 : 10;
    uint32_t theCode = 0;
    const char* theFirst = mPos;
    for (; !AtEnd() && *mPos != ';'; ++mPos) {
        uint32_t theDigit = 16;
        if (*mPos >= '0' && *mPos <= '9') {
            theDigit = static_cast<uint32_t>(*mPos - '0');
        } else if (*mPos >= 'a' && *mPos <= 'f') {
            theDigit = static_cast<uint32_t>(*mPos - 'a' + 10);
        } else if (*mPos >= 'A' && *mPos <= 'F') {
            theDigit = static_cast<uint32_t>(*mPos - 'A' + 10);
        }
        if (theDigit >= theBase) {
            return false;
        }
        theCode = theCode * theBase + theDigit;
        if (theCode > 0x10FFFF) {
            return false;
        }
    }
    if (mPos == theFirst || !Skip(';') || !vxIsCharacter(theCode)) {
        return false;
    }
    vxAppendUTF8(*aText, theCode);
    return true;
}

inline void vxXMLReader::FlushText() {
    if (mfInText) {
        AddText();
    }
}

// Makes a node of the text read so far.
void vxXMLReader::AddText() {
    vxCString theText(mText.data(), mText.size());
    Element& theParent = mOpen.back();
    const bool theIsBlank = !mfHasCData && vxIsBlankText(theText);
    theParent.mfHasBlanks |= theIsBlank;
    if (!theIsBlank) {
        MakeBlanks();
        theParent.mfHasText = true;
    }
    if (!theText.IsEmpty()) {
        AppendChild(vxXMLReaderLinks::Make(mArena, vxXMLNodeType_Text, mTextName, theText));
    }
    mText.clear();
    mfInText = false;
    mfHasCData = false;
}

void vxXMLReader::AppendChild(vxXMLNode* aNode) {
    Element& theParent = mOpen.back();
    vxXMLReaderLinks::InsertBehind(theParent.mNode, theParent.mLast, aNode);
    theParent.mLast = aNode;
}

// An element that holds other elements and only blanks beside them loses the blanks.
void vxXMLReader::CloseElement() {
    const Element& theElement = mOpen.back();
    const vxXMLNode* const theFirst = theElement.mNode->GetChildren();
    if (theFirst == NULL) {
        MakeBlanks();
    } else if (!theElement.mfHasText) {
        const bool theHasOthers =
            theFirst != theElement.mLast || mBlanks.size() > theElement.mBlanks;
        if (theElement.mfHasBlanks && theHasOthers) {
            vxXMLReaderLinks::DropBlankTexts(theElement.mNode, vxIsBlankText);
        }
        mBlanks.resize(theElement.mBlanks);
    }
    mOpen.pop_back();
}

}  // namespace

bool vxXMLParser::Parse(const vxCString& aText, vxXMLDocument& aDocument, vxError& anError) const {
    return Parse(aText.c_str(), aText.length(), aDocument, anError);
}

bool vxXMLParser::Parse(const void* aBytes, size_t aSize, vxXMLDocument& aDocument,
                        vxError& anError) const {
    vxXMLReader theReader(aBytes == NULL ? "" : static_cast<const char*>(aBytes),
                          aBytes == NULL ? 0 : aSize, mLimits);
    if (!theReader.Read()) {
        anError = theReader.Error();
        return false;
    }
    aDocument.SetRoot(theReader.TakeRoot());
    aDocument.SetVersion(theReader.Version());
    return true;
}

bool vxXMLParser::ParseFile(const vxPathName& aPath, vxXMLDocument& aDocument,
                            vxError& anError) const {
    const unsigned int theMaxSize = mLimits.mMaxFileSize < kvxFileLoad_MaxSize
                                        ? static_cast<unsigned int>(mLimits.mMaxFileSize)
                                        : kvxFileLoad_MaxSize;
    vxDataBuffer theBuffer;
    const vxError theError =
        vxFileHelper::LoadInBuffer(aPath, theBuffer, kvxFileLoadOption_None, theMaxSize);
    if (theError != 0) {
        anError = theError;
        return false;
    }
    return Parse(theBuffer.data(), theBuffer.size(), aDocument, anError);
}
