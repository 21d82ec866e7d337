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

#include <cstdlib>
#include <cstring>

#include "FileStatus.h"
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

// Takes the members of an object. One that is missing is 0 or empty; one of another kind than it
// should be makes the whole record bad.
class Record {
public:
    explicit Record(const vxJSONEntry& anObject) : mObject(anObject), mfGood(anObject.IsObject()) {}

    bool IsGood() const { return mfGood; }
    void Reject() { mfGood = false; }
    vxJSONEntry Member(const char* aName) const { return mObject[aName]; }

    uint64_t Number(const char* aName, uint64_t aMax) {
        const vxJSONEntry theMember = mObject[aName];
        uint64_t theNumber = 0;
        if (theMember.IsValid() && (!theMember.FetchUInt64(&theNumber) || theNumber > aMax)) {
            mfGood = false;
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
            mfGood = false;
        }
        return theTime;
    }

    vxCString Text(const char* aName) {
        const vxJSONEntry theMember = mObject[aName];
        vxCString theText;
        if (theMember.IsValid() && !theMember.FetchString(theText)) {
            mfGood = false;
        }
        return theText;
    }

    vxCString Path() {
        vxCString thePath = Text("path");
        if (thePath.IsEmpty()) {
            thePath = Bytes(Text("bytes"));
        }
        mfGood = mfGood && !thePath.IsEmpty();
        return thePath;
    }

private:
    vxCString Bytes(const vxCString& aHexText) {
        vxCString theBytes;
        for (const char* p = aHexText; *p != '\0'; p += 2) {
            const int theHigh = HexValue(p[0]);
            const int theLow = HexValue(p[1]);
            if (theHigh < 0 || theLow < 0 || (theHigh == 0 && theLow == 0)) {
                return vxCString();
            }
            theBytes += static_cast<char>(theHigh * 16 + theLow);
        }
        return theBytes;
    }

    const vxJSONEntry mObject;
    bool mfGood;
};

// Calls aTake for each item of a list, which ends with the first one that is refused.
template <typename Take>
bool ForEach(const vxJSONEntry& aList, Take aTake) {
    const uint32_t theCount = aList.GetCount();
    for (uint32_t i = 0; i < theCount; ++i) {
        if (!aTake(aList[static_cast<int>(i)])) {
            return false;
        }
    }
    return aList.IsArray();
}

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
    uint64_t thePos = 0;
    bool theHasPos = false;
    const bool theIsGood = ForEach(aList, [&](const vxJSONEntry& anEntry) {
        uint64_t theNumber = 0;
        if (!anEntry.FetchUInt64(&theNumber) || theNumber > INT64_MAX) {
            return false;
        }
        if (theHasPos) {
            aBytes.Add(thePos, theNumber);
        }
        thePos = theNumber;
        theHasPos = !theHasPos;
        return true;
    });
    return theIsGood && !theHasPos;
}

void TakeCoverArt(Record& aRecord, CoverArt& aCoverArt) {
    const vxJSONEntry theEntry = aRecord.Member("cover");
    if (!theEntry.IsValid()) {
        return;
    }
    Record theCover(theEntry);
    aCoverArt.mMimeType = theCover.Text("mime");
    aCoverArt.mEncoding =
        static_cast<CoverArt::Encoding>(theCover.Number("encoding", CoverArt::Unsynchronisation));
    aCoverArt.mEncodedOffset = theCover.Number("offset", INT64_MAX);
    aCoverArt.mfIsFront = theCover.Number("front", 1) != 0;
    if (!TakePieces(theCover.Member("pieces"), aCoverArt.mBytes) || !theCover.IsGood()) {
        aRecord.Reject();
    }
}

void TakeTags(Record& aRecord, MediaTags& aTags) {
    aTags.mTitle = aRecord.Text("title");
    aTags.mCreator = aRecord.Text("creator");
    aTags.mAlbum = aRecord.Text("album");
    aTags.mGenre = aRecord.Text("genre");
    aTags.mDate = aRecord.Text("date");
    aTags.mTrack = aRecord.Number16("track");
    aTags.mDisc = aRecord.Number16("disc");
    TakeCoverArt(aRecord, aTags.mCoverArt);
}

// Texts may come from a merge, so what may not be typed is fine. What the program counts with is not.
bool CheckEdit(const ItemKey& aRow, vxCString& aValue) {
    return aRow.mKind == ValueKind::Text || aValue.IsEmpty() ||
           NormalizeValue(aRow, aValue).IsEmpty();
}

bool TakeEdits(const vxJSONEntry& anObject, MediaItem::EditMap& anEdits) {
    const uint32_t theCount = anObject.GetCount();
    for (uint32_t i = 0; i < theCount; ++i) {
        const vxJSONEntry theEntry = anObject[static_cast<int>(i)];
        const vxCString theName = theEntry.GetName();
        const ItemKey* theRow = FindItemKey(theName);
        vxCString theValue;
        if (theRow == NULL || !theRow->mfEditable || theName != EditNameOf(*theRow) ||
            !theEntry.FetchString(theValue)) {
            return false;
        }
        if (!CheckEdit(*theRow, theValue)) {
            return false;
        }
        anEdits[theName] = theValue;
    }
    return !anObject.IsValid() || anObject.IsObject();
}

bool TakeItem(const vxJSONEntry& anEntry, bool afAsRead, MediaProbes& aProbes,
              MediaLibrary& aLibrary) {
    Record theRecord(anEntry);
    const uint32_t theID = static_cast<uint32_t>(theRecord.Number("id", kItem_MaxID));
    const vxCString thePath = theRecord.Path();
    const vxCString theType = theRecord.Text("type");
    FileStatus theStatus;
    theStatus.mSize = theRecord.Number("size", INT64_MAX);
    const int64_t theTime = theRecord.Time("time");
    // No file has this time, so the next scan takes it for a change.
    theStatus.mModified = afAsRead ? theTime : INT64_MIN;
    MediaReading theReading;
    TakeFacts(theRecord, theReading.mFacts);
    TakeTags(theRecord, theReading.mTags);
    MediaItem::EditMap theEdits;
    if (!TakeEdits(theRecord.Member("edits"), theEdits) || !theRecord.IsGood() ||
        theType.IsEmpty()) {
        return false;
    }
    theReading.mFormat = aProbes.FormatOf(theType);
    const vxRef<MediaItem> theItem = new MediaItem(theID, thePath);
    theItem->Renew(theStatus, theReading);
    if (!theEdits.empty()) {
        theItem->SetEdits(theEdits);
    }
    return aLibrary.RestoreItem(theItem);
}

bool TakeDirectory(const vxJSONEntry& anEntry, MediaLibrary& aLibrary) {
    Record theRecord(anEntry);
    FileIdentity theIdentity;
    theIdentity.mDevice = theRecord.Number("device", UINT64_MAX);
    theIdentity.mNode = theRecord.Number("node", UINT64_MAX);
    DirectoryCounts theCounts;
    theCounts.mOtherFiles = theRecord.Number("others", UINT64_MAX);
    theCounts.mLinks = theRecord.Number("links", UINT64_MAX);
    theCounts.mSpecialFiles = theRecord.Number("specials", UINT64_MAX);
    const vxCString thePath = theRecord.Path();
    if (theRecord.IsGood()) {
        aLibrary.RestoreDirectory(thePath, theIdentity, theCounts);
    }
    return theRecord.IsGood();
}

bool TakeRefusal(const vxJSONEntry& anEntry, MediaLibrary& aLibrary) {
    Record theRecord(anEntry);
    const vxCString thePath = theRecord.Path();
    const vxCString theReason = theRecord.Text("reason");
    if (theRecord.IsGood()) {
        aLibrary.RestoreRefusal(thePath, theReason);
    }
    return theRecord.IsGood();
}

bool TakeDocument(const vxJSONEntry& aRoot, MediaProbes& aProbes, MediaLibrary& aLibrary) {
    Record theRoot(aRoot);
    const bool theIsOurs =
        theRoot.Text("program") == kProgram && theRoot.Number32("format") == kFormat;
    const bool theIsAsRead = theRoot.Text("version") == VXMEDIA_VERSION;
    const uint64_t theLastID = theRoot.Number("last", kItem_MaxID);
    if (!theIsOurs || !theRoot.IsGood()) {
        return false;
    }
    const bool theIsGood =
        ForEach(aRoot["items"],
                [&](const vxJSONEntry& anEntry) {
                    return TakeItem(anEntry, theIsAsRead, aProbes, aLibrary);
                }) &&
        ForEach(aRoot["directories"],
                [&](const vxJSONEntry& anEntry) { return TakeDirectory(anEntry, aLibrary); }) &&
        ForEach(aRoot["refusals"],
                [&](const vxJSONEntry& anEntry) { return TakeRefusal(anEntry, aLibrary); });
    if (!theIsGood || aLibrary.GetLastID() > theLastID) {
        return false;
    }
    aLibrary.RestoreLastID(static_cast<uint32_t>(theLastID));
    return true;
}

// Returns what is wrong with the text of a file, or the empty text.
vxCString TakeText(const vxDataBuffer& aText, MediaProbes& aProbes, MediaLibrary& aLibrary) {
    const char* theText = static_cast<const char*>(aText.data());
    const char* theErrorPosition = theText;
    vxJSONDocument theDocument(kvxJSONDocumentRoot_None);
    theDocument.SetEntry(vxJSON_ParseSize(theText, aText.size(), &theErrorPosition));
    if (!theDocument.IsValid()) {
        return vxCString::Format("is not JSON at byte %lu",
                                 static_cast<unsigned long>(theErrorPosition - theText + 1));
    }
    return TakeDocument(theDocument, aProbes, aLibrary)
               ? vxCString()
               : vxCString("is no library of this program");
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
    const vxCString theReason = TakeText(theText, aProbes, theLibrary);
    if (!theReason.IsEmpty()) {
        return PutAside(aPath, theReason, anError);
    }
    aLibrary.Take(theLibrary);
    return LoadResult::Loaded;
}

}  // namespace vxmedia
