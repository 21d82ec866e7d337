// One object holds three lists: items, directories and refusals. Of an item it has what was read from
// the file and what was edited; everything else follows from that.
//
//     {"program":"vxmedia","format":1,"version":"1.0.0","last":7,
//      "items":[{"id":7,"path":"/music/Blue.mp3","size":2048,"time":1700000000123456789,
//                "type":"MP3","channels":2, ... ,"title":"Blue","edits":{"ge":"Jazz"}}],
//      "directories":[{"path":"/music","device":2049,"node":12,"others":3}],
//      "refusals":[{"path":"/music/Red.mp3","reason":"the file is empty"}]}
//
// What is 0 or empty is left out. Texts are UTF-8; a path that is not has its bytes in hexadecimal
// digits, under "bytes".

#include "library/LibraryFile.h"

#include <libteskTools/Unicode.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "FileStatus.h"
#include "TerminalText.h"
#include "WholeFile.h"
#include "library/ItemKeys.h"
#include "vx/DataBuffer.h"
#include "vx/File.h"
#include "vx/GrowingBuffer.h"
#include "vx/JSON.h"

namespace vxmedia {

namespace {

constexpr char kProgram[] = "vxmedia";
constexpr uint32_t kFormat = 1;
constexpr unsigned int kFile_MaxSize = 256 * 1024 * 1024;  // bytes
constexpr uint32_t kItem_MaxID = 0x7FFFFFFF;               // leaves numbers for new items
constexpr uint64_t kFile_MaxBytes = INT64_MAX;             // of any file
constexpr size_t kFile_MaxShownReasons = 5;                // in the report about a bad file

// Writing

void AddNumber(vxJSONObject& anObject, const char* aName, uint64_t aNumber) {
    if (aNumber != 0) {
        anObject.Add(vxJSONPair(aName, aNumber), false);
    }
}

void AddText(vxJSONObject& anObject, const char* aName, const vxCString& aText) {
    if (!aText.IsEmpty()) {
        anObject.Add(vxJSONPair(aName, aText.c_str()), false);
    }
}

vxCString HexText(const vxCString& aBytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    vxCString theText;
    for (const char* p = aBytes; *p != '\0'; ++p) {
        const unsigned char theByte = static_cast<unsigned char>(*p);
        theText += kDigits[theByte >> 4];
        theText += kDigits[theByte & 15];
    }
    return theText;
}

void AddPath(vxJSONObject& anObject, const vxCString& aPath) {
    if (vxUnicode_UTF8ToWide(aPath, aPath.length(), NULL, 0, NULL) == 0) {
        AddText(anObject, "path", aPath);
    } else {
        AddText(anObject, "bytes", HexText(aPath));
    }
}

void AddFacts(vxJSONObject& anObject, const MediaFacts& aFacts) {
    AddNumber(anObject, "width", aFacts.mWidth);
    AddNumber(anObject, "height", aFacts.mHeight);
    AddNumber(anObject, "channels", aFacts.mChannels);
    AddNumber(anObject, "rate", aFacts.mRate);
    AddNumber(anObject, "bits", aFacts.mBits);
    AddNumber(anObject, "bit-rate", aFacts.mBitRate);
    if (aFacts.mfDurationKnown) {
        anObject.Add(vxJSONPair("frames", aFacts.mFrames), false);
    }
    AddText(anObject, "detail", aFacts.mDetail);
}

void AddCoverArt(vxJSONObject& anObject, const CoverArt& aCoverArt) {
    if (!aCoverArt.IsThere()) {
        return;
    }
    vxJSONObject theCover = anObject.AddObject("cover");
    AddText(theCover, "mime", aCoverArt.mMimeType);
    AddNumber(theCover, "encoding", aCoverArt.mEncoding);
    AddNumber(theCover, "offset", aCoverArt.mEncodedOffset);
    AddNumber(theCover, "front", aCoverArt.mfIsFront ? 1 : 0);
    vxJSONArray thePieces = theCover.AddArray("pieces");
    for (const MediaBytes::Piece& thePiece : aCoverArt.mBytes.Pieces()) {
        thePieces.Insert(thePiece.mPos, kvxJSON_Append);
        thePieces.Insert(thePiece.mSize, kvxJSON_Append);
    }
}

void AddTags(vxJSONObject& anObject, const MediaTags& aTags) {
    AddText(anObject, "title", aTags.mTitle);
    AddText(anObject, "creator", aTags.mCreator);
    AddText(anObject, "album", aTags.mAlbum);
    AddText(anObject, "genre", aTags.mGenre);
    AddText(anObject, "date", aTags.mDate);
    AddText(anObject, "comment", aTags.mComment);
    AddNumber(anObject, "track", aTags.mTrack);
    AddNumber(anObject, "disc", aTags.mDisc);
    AddCoverArt(anObject, aTags.mCoverArt);
}

void AddEdits(vxJSONObject& anObject, const MediaItem::EditMap& anEdits) {
    if (anEdits.empty()) {
        return;
    }
    vxJSONObject theEdits = anObject.AddObject("edits");
    for (const auto& theEdit : anEdits) {
        theEdits.Add(vxJSONPair(theEdit.first, theEdit.second.c_str()), false);
    }
}

void AddItem(vxJSONObject& anObject, const MediaItem& anItem) {
    AddNumber(anObject, "id", anItem.GetID());
    AddPath(anObject, anItem.GetPath());
    AddNumber(anObject, "size", anItem.GetSize());
    anObject.Set("time", anItem.GetModified());
    AddText(anObject, "type", anItem.GetFormat().mName);
    AddFacts(anObject, anItem.GetFacts());
    AddTags(anObject, anItem.GetTags());
    AddEdits(anObject, anItem.GetEdits());
}

void AddDirectory(vxJSONObject& anObject, const vxCString& aPath,
                  const MediaLibrary::Directory& aDirectory) {
    AddPath(anObject, aPath);
    AddNumber(anObject, "device", aDirectory.mIdentity.mDevice);
    AddNumber(anObject, "node", aDirectory.mIdentity.mNode);
    AddNumber(anObject, "others", aDirectory.mCounts.mOtherFiles);
    AddNumber(anObject, "links", aDirectory.mCounts.mLinks);
    AddNumber(anObject, "specials", aDirectory.mCounts.mSpecialFiles);
}

// The text of a library. A tree of all of it would take several times as much memory as the library,
// so there is a tree of one record at a time.
class LibraryText {
public:
    LibraryText() : mText(0) {}

    // Adds what comes first.
    void AddHead(uint32_t aLastID) {
        vxJSONDocument theHead(kvxJSONDocumentRoot_Object);
        theHead.Set("program", kProgram);
        theHead.Set("format", static_cast<uint64_t>(kFormat));
        theHead.Set("version", VXMEDIA_VERSION);
        theHead.Set("last", static_cast<uint64_t>(aLastID));
        const vxCString theText = theHead.ToString(false);
        mText.Append(theText.c_str(), theText.length() - 1);
    }

    // Adds a list with a record for each entry of a map; aFill gets an object and the entry.
    template <typename Map, typename Fill>
    void AddList(const char* aName, const Map& aMap, Fill aFill) {
        mText += ",\"";
        mText += aName;
        mText += "\":[";
        const char* theSeparator = "";
        for (const auto& theEntry : aMap) {
            vxJSONDocument theRecord(kvxJSONDocumentRoot_Object);
            vxJSONObject theObject = theRecord.AsObject();
            aFill(theObject, theEntry);
            const vxCString theText = theRecord.ToString(false);
            mText += theSeparator;
            mText.Append(theText.c_str(), theText.length());
            theSeparator = ",";
        }
        mText += "]";
    }

    // Ends the text and returns it.
    const vxGrowingBuffer& End() {
        mText += "}";
        return mText;
    }

private:
    vxGrowingBuffer mText;
};

void WriteText(const MediaLibrary& aLibrary, LibraryText& aText) {
    aText.AddHead(aLibrary.GetLastID());
    aText.AddList("items", aLibrary.GetItems(),
                  [](vxJSONObject& anObject, const MediaLibrary::ItemMap::value_type& anEntry) {
                      AddItem(anObject, *anEntry.second.Get());
                  });
    aText.AddList(
        "directories", aLibrary.GetDirectories(),
        [](vxJSONObject& anObject, const MediaLibrary::DirectoryMap::value_type& anEntry) {
            AddDirectory(anObject, anEntry.first, anEntry.second);
        });
    aText.AddList("refusals", aLibrary.GetRefusals(),
                  [](vxJSONObject& anObject, const MediaLibrary::RefusalMap::value_type& anEntry) {
                      AddPath(anObject, anEntry.first);
                      AddText(anObject, "reason", anEntry.second.mReason);
                  });
}

// Reading

int HexValue(char aDigit) {
    static constexpr char kDigits[] = "0123456789abcdef";
    const char* theDigit = aDigit == '\0' ? NULL : strchr(kDigits, aDigit);
    return theDigit == NULL ? -1 : static_cast<int>(theDigit - kDigits);
}

// A NUL would end a text of the tree, and what stands behind it would be lost without a word. So its
// escapes become those of a code that is no character, which is then refused.
constexpr char kNULEscape[] = "\\u0000";
constexpr char kNULSign[] = "\\uFFFF";
constexpr char kNULText[] = "\xEF\xBF\xBF";
constexpr size_t kNULEscape_Size = sizeof(kNULEscape) - 1;

// Replaces the escapes of NUL, and puts them back at its end.
class HiddenNULs {
public:
    HiddenNULs(char* aText, size_t aSize) : mText(aText) {
        for (size_t i = 0; i + kNULEscape_Size <= aSize; ++i) {
            if (aText[i] != '\\') {
                continue;
            }
            if (memcmp(aText + i, kNULEscape, kNULEscape_Size) == 0) {
                memcpy(aText + i, kNULSign, kNULEscape_Size);
                mPositions.push_back(i);
            }
            ++i;  // what is escaped begins no escape
        }
    }
    ~HiddenNULs() {
        for (const size_t thePosition : mPositions) {
            memcpy(mText + thePosition, kNULEscape, kNULEscape_Size);
        }
    }
    HiddenNULs(const HiddenNULs&) = delete;
    HiddenNULs& operator=(const HiddenNULs&) = delete;

    bool IsNoText(const vxCString& aText) const {
        return !mPositions.empty() && aText.Contains(kNULText);
    }

private:
    char* const mText;
    std::vector<size_t> mPositions;
};

// What is wrong with the records of a file: each reason with the first record and their number.
class BadRecords {
public:
    void Add(const char* aList, uint32_t anIndex, const vxCString& aReason) {
        ++mCount;
        for (Finding& theFinding : mFindings) {
            if (strcmp(theFinding.mList, aList) == 0 && theFinding.mReason == aReason) {
                ++theFinding.mCount;
                return;
            }
        }
        mFindings.push_back({aList, anIndex, aReason, 1});
    }

    bool IsEmpty() const { return mCount == 0; }

    // Returns "has 3 bad entries, which are left out: items[4]: 'id' is taken (2 such); ...".
    vxCString GetText() const {
        vxCString theText = mCount == 1
                                ? vxCString("has a bad entry, which is left out: ")
                                : vxCString::Format("has %llu bad entries, which are left out: ",
                                                    static_cast<unsigned long long>(mCount));
        for (size_t i = 0; i < mFindings.size() && i < kFile_MaxShownReasons; ++i) {
            theText += vxCString(i == 0 ? "" : "; ") + mFindings[i].GetText();
        }
        return mFindings.size() <= kFile_MaxShownReasons ? theText : theText + "; ...";
    }

private:
    // Reasons name members and limits, never what a file says, so there are few.
    struct Finding {
        const char* mList;
        uint32_t mIndex;  // of the first one
        vxCString mReason;
        uint64_t mCount;

        vxCString GetText() const {
            vxCString theText = vxCString::Format(
                "%s[%lu]: %s", mList, static_cast<unsigned long>(mIndex), mReason.c_str());
            return mCount == 1
                       ? theText
                       : theText + vxCString::Format(" (%llu such)",
                                                     static_cast<unsigned long long>(mCount));
        }
    };

    std::vector<Finding> mFindings;
    uint64_t mCount = 0;
};

// What all records of one file are taken with.
struct Loading {
    MediaProbes& mProbes;
    MediaLibrary& mLibrary;
    const HiddenNULs& mNULs;
    bool mfIsAsRead;  // what it says about files holds
    BadRecords mBad;
};

// Takes the members of an object. One that is missing is 0 or empty; one of another kind than it
// should be makes the whole record bad.
class Record {
public:
    Record(const vxJSONEntry& anObject, const HiddenNULs& aNULs) : mObject(anObject), mNULs(aNULs) {
        if (!anObject.IsObject()) {
            Reject("is no object");
        }
    }

    bool IsGood() const { return mReason.IsEmpty(); }
    const vxCString& GetReason() const { return mReason; }
    vxJSONEntry Member(const char* aName) const { return mObject[aName]; }
    const HiddenNULs& GetNULs() const { return mNULs; }

    // The first reason counts.
    void Reject(const vxCString& aReason) {
        if (mReason.IsEmpty()) {
            mReason = aReason;
        }
    }

    uint64_t Number(const char* aName, uint64_t aMax) {
        const vxJSONEntry theMember = mObject[aName];
        uint64_t theNumber = 0;
        if (theMember.IsValid() && (!theMember.FetchUInt64(&theNumber) || theNumber > aMax)) {
            Reject(vxCString::Format("'%s' is no number from 0 to %llu", aName,
                                     static_cast<unsigned long long>(aMax)));
            return 0;
        }
        return theNumber;
    }
    uint32_t Number32(const char* aName) {
        return static_cast<uint32_t>(Number(aName, UINT32_MAX));
    }
    uint16_t Number16(const char* aName) {
        return static_cast<uint16_t>(Number(aName, UINT16_MAX));
    }

    int64_t Time(const char* aName) {
        int64_t theTime = 0;
        if (!mObject[aName].FetchInt64(&theTime)) {
            Reject(vxCString::Format("'%s' is no time", aName));
        }
        return theTime;
    }

    vxCString Text(const char* aName) {
        const vxJSONEntry theMember = mObject[aName];
        vxCString theText;
        if (theMember.IsValid() && !theMember.FetchString(theText)) {
            Reject(vxCString::Format("'%s' is no text", aName));
        }
        if (mNULs.IsNoText(theText)) {
            Reject(vxCString::Format("'%s' has a NUL in it", aName));
        }
        return theText;
    }

    vxCString Path() {
        const vxCString thePath = Text("path");
        const vxCString theHexText = Text("bytes");
        if (thePath.IsEmpty() && theHexText.IsEmpty()) {
            Reject("it has no path");
        }
        return thePath.IsEmpty() ? Bytes(theHexText) : thePath;
    }

private:
    vxCString Bytes(const vxCString& aHexText) {
        vxCString theBytes;
        for (const char* p = aHexText; *p != '\0'; p += 2) {
            const int theHigh = HexValue(p[0]);
            const int theLow = HexValue(p[1]);
            if (theHigh < 0 || theLow < 0 || (theHigh == 0 && theLow == 0)) {
                Reject("'bytes' are no hexadecimal digits of a path");
                return vxCString();
            }
            theBytes += static_cast<char>(theHigh * 16 + theLow);
        }
        return theBytes;
    }

    const vxJSONEntry mObject;
    const HiddenNULs& mNULs;
    vxCString mReason;  // empty: it is good so far
};

void TakeFacts(Record& aRecord, MediaFacts& aFacts) {
    aFacts.mWidth = aRecord.Number32("width");
    aFacts.mHeight = aRecord.Number32("height");
    aFacts.mChannels = aRecord.Number32("channels");
    aFacts.mRate = aRecord.Number32("rate");
    aFacts.mBits = aRecord.Number32("bits");
    aFacts.mBitRate = aRecord.Number32("bit-rate");
    aFacts.mfDurationKnown = aRecord.Member("frames").IsValid();
    aFacts.mFrames = aRecord.Number("frames", UINT64_MAX);
    aFacts.mDetail = aRecord.Text("detail");
}

bool TakePieces(const vxJSONEntry& aList, MediaBytes& aBytes) {
    const uint32_t theCount = aList.GetCount();
    for (uint32_t i = 0; i + 1 < theCount; i += 2) {
        uint64_t thePos = 0;
        uint64_t theSize = 0;
        if (!aList[static_cast<int>(i)].FetchUInt64(&thePos) ||
            !aList[static_cast<int>(i + 1)].FetchUInt64(&theSize) || thePos > kFile_MaxBytes ||
            theSize > kFile_MaxBytes - thePos || theSize > kFile_MaxBytes - aBytes.Size()) {
            return false;
        }
        aBytes.Add(thePos, theSize);
    }
    return aList.IsArray() && theCount % 2 == 0;
}

void TakeCoverArt(Record& aRecord, CoverArt& aCoverArt) {
    const vxJSONEntry theEntry = aRecord.Member("cover");
    if (!theEntry.IsValid()) {
        return;
    }
    Record theCover(theEntry, aRecord.GetNULs());
    aCoverArt.mMimeType = theCover.Text("mime");
    aCoverArt.mEncoding =
        static_cast<CoverArt::Encoding>(theCover.Number("encoding", CoverArt::Unsynchronisation));
    aCoverArt.mEncodedOffset = theCover.Number("offset", INT64_MAX);
    aCoverArt.mfIsFront = theCover.Number("front", 1) != 0;
    if (!TakePieces(theCover.Member("pieces"), aCoverArt.mBytes) || !theCover.IsGood()) {
        aRecord.Reject("'cover' is no cover");
    }
}

void TakeTags(Record& aRecord, MediaTags& aTags) {
    aTags.mTitle = aRecord.Text("title");
    aTags.mCreator = aRecord.Text("creator");
    aTags.mAlbum = aRecord.Text("album");
    aTags.mGenre = aRecord.Text("genre");
    aTags.mDate = aRecord.Text("date");
    aTags.mComment = aRecord.Text("comment");
    aTags.mTrack = aRecord.Number16("track");
    aTags.mDisc = aRecord.Number16("disc");
    TakeCoverArt(aRecord, aTags.mCoverArt);
}

// Texts may come from a merge, so what may not be typed is fine. What the program counts with is not.
bool CheckEdit(const ItemKey& aRow, vxCString& aValue) {
    return aRow.mKind == ValueKind::Text || aValue.IsEmpty() ||
           NormalizeValue(aRow, aValue).IsEmpty();
}

bool TakeEdit(const vxJSONEntry& anEntry, const HiddenNULs& aNULs, MediaItem::EditMap& anEdits) {
    const vxCString theName = anEntry.GetName();
    const ItemKey* theRow = FindItemKey(theName);
    vxCString theValue;
    if (theRow == NULL || !theRow->mfEditable || theName != EditNameOf(*theRow) ||
        !anEntry.FetchString(theValue) || aNULs.IsNoText(theValue) ||
        !CheckEdit(*theRow, theValue)) {
        return false;
    }
    anEdits[theName] = theValue;
    return true;
}

void TakeEdits(Record& aRecord, MediaItem::EditMap& anEdits) {
    const vxJSONEntry theObject = aRecord.Member("edits");
    bool theIsGood = !theObject.IsValid() || theObject.IsObject();
    const uint32_t theCount = theIsGood ? theObject.GetCount() : 0;
    for (uint32_t i = 0; theIsGood && i < theCount; ++i) {
        theIsGood = TakeEdit(theObject[static_cast<int>(i)], aRecord.GetNULs(), anEdits);
    }
    if (!theIsGood) {
        aRecord.Reject("'edits' has what cannot be edited so");
    }
}

// Returns why the numbers or the path of an item cannot be, or the empty text.
vxCString RefusalOf(const MediaLibrary& aLibrary, uint32_t anID, const vxCString& aPath) {
    if (anID == 0) {
        return "'id' is missing or 0";
    }
    if (aLibrary.FindItem(anID) != NULL) {
        return "'id' is that of another item";
    }
    return aLibrary.FindItemByPath(aPath) != NULL ? "'path' is that of another item" : vxCString();
}

vxCString TakeItem(const vxJSONEntry& anEntry, Loading& aLoading) {
    Record theRecord(anEntry, aLoading.mNULs);
    const uint32_t theID = static_cast<uint32_t>(theRecord.Number("id", kItem_MaxID));
    const vxCString thePath = theRecord.Path();
    const vxCString theType = theRecord.Text("type");
    if (theType.IsEmpty()) {
        theRecord.Reject("'type' is missing");
    }
    FileStatus theStatus;
    theStatus.mSize = theRecord.Number("size", kFile_MaxBytes);
    const int64_t theTime = theRecord.Time("time");
    // No file has this time, so the next scan takes it for a change.
    theStatus.mModified = aLoading.mfIsAsRead ? theTime : INT64_MIN;
    MediaReading theReading;
    TakeFacts(theRecord, theReading.mFacts);
    TakeTags(theRecord, theReading.mTags);
    MediaItem::EditMap theEdits;
    TakeEdits(theRecord, theEdits);
    theRecord.Reject(RefusalOf(aLoading.mLibrary, theID, thePath));
    if (theRecord.IsGood()) {
        theReading.mFormat = aLoading.mProbes.FormatOf(theType);
        const vxRef<MediaItem> theItem = new MediaItem(theID, thePath);
        theItem->Renew(theStatus, theReading);
        theItem->SetEdits(theEdits);
        aLoading.mLibrary.RestoreItem(theItem);
    }
    return theRecord.GetReason();
}

vxCString TakeDirectory(const vxJSONEntry& anEntry, Loading& aLoading) {
    Record theRecord(anEntry, aLoading.mNULs);
    FileIdentity theIdentity;
    theIdentity.mDevice = theRecord.Number("device", UINT64_MAX);
    theIdentity.mNode = theRecord.Number("node", UINT64_MAX);
    DirectoryCounts theCounts;
    theCounts.mOtherFiles = theRecord.Number("others", UINT64_MAX);
    theCounts.mLinks = theRecord.Number("links", UINT64_MAX);
    theCounts.mSpecialFiles = theRecord.Number("specials", UINT64_MAX);
    const vxCString thePath = theRecord.Path();
    if (aLoading.mLibrary.GetDirectories().count(thePath) != 0) {
        theRecord.Reject("'path' is that of another directory");
    }
    if (theRecord.IsGood()) {
        aLoading.mLibrary.RestoreDirectory(thePath, theIdentity, theCounts);
    }
    return theRecord.GetReason();
}

vxCString TakeRefusal(const vxJSONEntry& anEntry, Loading& aLoading) {
    Record theRecord(anEntry, aLoading.mNULs);
    const vxCString thePath = theRecord.Path();
    const vxCString theReason = theRecord.Text("reason");
    if (aLoading.mLibrary.GetRefusals().count(thePath) != 0) {
        theRecord.Reject("'path' is that of another refusal");
    }
    if (aLoading.mLibrary.FindItemByPath(thePath) != NULL) {
        theRecord.Reject("'path' is that of an item");
    }
    if (theRecord.IsGood()) {
        // The program's own reasons are safe to show.
        aLoading.mLibrary.RestoreRefusal(thePath, EscapeForTerminal(theReason, EscapeMode::Text));
    }
    return theRecord.GetReason();
}

// Takes all records of a list; those that are bad are left out.
bool TakeList(const vxJSONEntry& aRoot, const char* aName, Loading& aLoading,
              vxCString (*aTake)(const vxJSONEntry& anEntry, Loading& aLoading)) {
    const vxJSONEntry theList = aRoot[aName];
    if (!theList.IsArray()) {
        return false;
    }
    const uint32_t theCount = theList.GetCount();
    for (uint32_t i = 0; i < theCount; ++i) {
        const vxCString theReason = aTake(theList[static_cast<int>(i)], aLoading);
        if (!theReason.IsEmpty()) {
            aLoading.mBad.Add(aName, i, theReason);
        }
    }
    return true;
}

// Returns whether the file is a library at all.
bool TakeDocument(const vxJSONEntry& aRoot, Loading& aLoading) {
    Record theRoot(aRoot, aLoading.mNULs);
    const bool theIsOurs =
        theRoot.Text("program") == kProgram && theRoot.Number32("format") == kFormat;
    aLoading.mfIsAsRead = theRoot.Text("version") == VXMEDIA_VERSION;
    const uint32_t theLastID = static_cast<uint32_t>(theRoot.Number("last", kItem_MaxID));
    MediaLibrary& theLibrary = aLoading.mLibrary;
    if (!theIsOurs || !theRoot.IsGood() || !TakeList(aRoot, "items", aLoading, TakeItem) ||
        !TakeList(aRoot, "directories", aLoading, TakeDirectory) ||
        !TakeList(aRoot, "refusals", aLoading, TakeRefusal)) {
        return false;
    }
    theLibrary.RestoreLastID(std::max(theLastID, theLibrary.GetLastID()));
    return true;
}

// Returns what is wrong with a text that is no library, or the empty text.
vxCString TakeText(const char* aText, size_t aSize, Loading& aLoading) {
    const char* theErrorPosition = aText;
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    theDocument.SetEntry(vxJSON_ParseSize(aText, aSize, &theErrorPosition));
    if (!theDocument.IsValid()) {
        return vxCString::Format("is not JSON at byte %lu",
                                 static_cast<unsigned long>(theErrorPosition - aText + 1));
    }
    return TakeDocument(theDocument, aLoading) ? vxCString()
                                               : vxCString("is no library of this program");
}

// Takes what is good in a text; else returns what is wrong with it. Bad records are found besides.
vxCString TakeText(vxDataBuffer& aText, MediaProbes& aProbes, MediaLibrary& aLibrary,
                   BadRecords& aBad) {
    char* theText = static_cast<char*>(aText.data());
    const HiddenNULs theNULs(theText, aText.size());
    Loading theLoading{aProbes, aLibrary, theNULs, true, {}};
    vxCString theReason = TakeText(theText, aText.size(), theLoading);
    aBad = std::move(theLoading.mBad);
    return theReason;
}

// The file stays until the library is saved, so that there is one that loads at any moment.
LoadResult CopyAside(const vxCString& aPath, const vxDataBuffer& aText, const BadRecords& aBad,
                     vxCString& anError) {
    anError = vxCString("ERROR: '") + aPath + "' " + aBad.GetText();
    const vxCString theTrouble = WriteWholeFile(aPath + ".bad", aText.data(), aText.size());
    if (!theTrouble.IsEmpty()) {
        anError += "; it cannot be copied aside and is left alone";
        return LoadResult::Unreadable;
    }
    anError += vxCString("; all of it is kept as '") + aPath + ".bad'";
    return LoadResult::Damaged;
}

// Puts a file aside that does not load.
LoadResult PutAside(const vxCString& aPath, const vxCString& aReason, vxCString& anError) {
    anError = vxCString("ERROR: '") + aPath + "' " + aReason;
    if (!vxFile::Rename(aPath, aPath + ".bad")) {
        anError += "; it cannot be put aside and is left alone";
        return LoadResult::Unreadable;
    }
    anError += vxCString("; it is kept as '") + aPath + ".bad'";
    return LoadResult::Broken;
}

}  // namespace

vxCString SaveLibrary(const MediaLibrary& aLibrary, const vxCString& aPath) {
    LibraryText theLibrary;
    WriteText(aLibrary, theLibrary);
    const vxGrowingBuffer& theText = theLibrary.End();
    if (theText.GetPosition() > kFile_MaxSize) {
        return vxCString("ERROR: The library is too large for '") + aPath + "'";
    }
    return WriteWholeFile(aPath, aPath + ".new", theText.data(), theText.GetPosition());
}

LoadResult LoadLibrary(MediaLibrary& aLibrary, MediaProbes& aProbes, const vxCString& aPath,
                       vxCString& anError) {
    const FileStatus theStatus = GetFileStatus(aPath, true);
    if (theStatus.mKind == FileKind::Missing) {
        return LoadResult::Missing;
    }
    if (theStatus.mSize > kFile_MaxSize) {
        return PutAside(aPath, "is too large for a library", anError);
    }
    vxDataBuffer theText;
    anError = ReadWholeFile(aPath, theText, kFile_MaxSize);
    if (!anError.IsEmpty()) {
        return LoadResult::Unreadable;
    }
    MediaLibrary theLibrary;
    BadRecords theBad;
    const vxCString theReason = TakeText(theText, aProbes, theLibrary, theBad);
    if (!theReason.IsEmpty()) {
        return PutAside(aPath, theReason, anError);
    }
    aLibrary.Take(theLibrary);
    return theBad.IsEmpty() ? LoadResult::Loaded : CopyAside(aPath, theText, theBad, anError);
}

}  // namespace vxmedia
