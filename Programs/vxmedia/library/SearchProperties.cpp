// Media servers name properties after the metadata of their lists; here those names lead to the keys of
// media infos, or to values made of several.
//
// A literal stands for all values from one to another: a date "2015" for the whole year, a number only
// for itself. One comparison does for all kinds then.

#include "library/SearchProperties.h"

#include <libteskTools/Convert.h>

#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "ItemFacts.h"
#include "vx/SearchExpression.h"

namespace vxmedia {

namespace {

// Other names of keys.
struct Alias {
    const char* mName;
    const char* mKey;
};

constexpr Alias kAliases[] = {
    {"dc:title", kvxInfo_Title},
    {"dc:creator", kvxInfo_Creator},
    {"dc:date", kvxInfo_MediaReleasedDateTime},
    {"dc:language", kvxInfo_AudioLanguage},
    {"upnp:class", kvxInfo_ClassName},
    {"upnp:artist", kvxInfo_Creator},
    {"upnp:album", kvxInfo_Album},
    {"upnp:genre", kvxInfo_Genre},
    {"upnp:originalDiscNumber", "disc"},
    {"upnp:originalTrackNumber", "track"},
    {"res@size", kvxInfo_FileSize},
    {"res@duration", kvxInfo_Duration},
    {"res@sampleFrequency", kvxInfo_AudioSamplingRate},
    {"res@bitsPerSample", kvxInfo_AudioBitsPerSample},
    {"res@nrAudioChannels", kvxInfo_AudioChannelCount},
    {"res@colorDepth", kvxInfo_ColorDepth},
    {"res@protection", kvxInfo_Protection},
};

// Values that stand under no key.

vxCString NumberOf(SearchedItem& anItem) {
    return NumberText(anItem.GetItem().GetID());
}

// Every item has its file, and refers to no other.
vxCString FileOf(SearchedItem& anItem) {
    return anItem.GetItem().GetPath();
}

vxCString Nothing(SearchedItem&) {
    return vxCString();
}

vxCString CoverOf(SearchedItem& anItem) {
    return anItem.GetItem().GetTags().mCoverArt.mMimeType;
}

vxCString ResolutionOf(SearchedItem& anItem) {
    const char* theWidth = anItem.GetInfo().Peek(kvxInfo_Width);
    const char* theHeight = anItem.GetInfo().Peek(kvxInfo_Height);
    return theWidth == NULL || theHeight == NULL ? vxCString()
                                                 : vxCString::Format("%sx%s", theWidth, theHeight);
}

// Media servers count bytes here.
vxCString ByteRateOf(SearchedItem& anItem) {
    uint64_t theBitRate = 0;
    return vxConvert_strtouint64(anItem.GetInfo().Peek(kvxInfo_BitRate), &theBitRate) == 0
               ? NumberText(theBitRate / 8)
               : vxCString();
}

vxCString ProtocolOf(SearchedItem& anItem) {
    const char* theProfile = anItem.GetInfo().GetStr(kvxInfo_DLNA, "");
    return vxCString::Format("http-get:*:%s:%s%s", anItem.GetInfo().GetStr(kvxInfo_MimeType, "*"),
                             *theProfile == '\0' ? "*" : "DLNA.ORG_PN=", theProfile);
}

struct MadeValue {
    const char* mName;
    SearchProperty mProperty;
};

constexpr MadeValue kMadeValues[] = {
    {"@id", {SearchKind::Number, NULL, NumberOf}},
    {"@refID", {SearchKind::Presence, NULL, Nothing}},
    {"res", {SearchKind::Presence, NULL, FileOf}},
    {"res@resolution", {SearchKind::Text, NULL, ResolutionOf}},
    {"res@bitrate", {SearchKind::Number, NULL, ByteRateOf}},
    {"res@protocolInfo", {SearchKind::Text, NULL, ProtocolOf}},
    {"upnp:albumArtURI", {SearchKind::Presence, NULL, CoverOf}},
};

SearchKind KindOf(const ItemKey& aRow) {
    switch (aRow.mKind) {
        case ValueKind::Number:
        case ValueKind::Size:
        case ValueKind::Ordinal:
            return SearchKind::Number;
        case ValueKind::Decimal:
            return SearchKind::Decimal;
        case ValueKind::Truth:
            return SearchKind::Truth;
        case ValueKind::Duration:
            return SearchKind::Duration;
        case ValueKind::Text:
            break;
    }
    return strcmp(aRow.mKey, kvxInfo_MediaReleasedDateTime) == 0 ? SearchKind::Date
                                                                 : SearchKind::Text;
}

// All properties, and their numbers by name.
struct PropertyTable {
    PropertyTable() {
        for (const ItemKey* theRow = kItemKeys; theRow->mKey != NULL; ++theRow) {
            const int theNumber = Add({KindOf(*theRow), theRow, NULL});
            mNumbers.emplace(EditNameOf(*theRow), theNumber);
            mNumbers.emplace(theRow->mName, theNumber);
        }
        for (const Alias& theAlias : kAliases) {
            mNumbers.emplace(theAlias.mName, mNumbers.at(theAlias.mKey));
        }
        for (const MadeValue& theValue : kMadeValues) {
            mNumbers.emplace(theValue.mName, Add(theValue.mProperty));
        }
    }

    int Add(const SearchProperty& aProperty) {
        mProperties.push_back(aProperty);
        return static_cast<int>(mProperties.size()) - 1;
    }

    std::vector<SearchProperty> mProperties;
    std::unordered_map<std::string, int> mNumbers;
};

constexpr size_t kProperty_MaxName = 32;  // bytes; the longest has fewer

const PropertyTable& Properties() {
    static const PropertyTable sTable;
    return sTable;
}

// Sets of operators, bit by bit.

constexpr uint32_t Operators(std::initializer_list<int> aList) {
    uint32_t theSet = 0;
    for (const int theID : aList) {
        theSet |= 1u << theID;
    }
    return theSet;
}

constexpr uint32_t kPresence = Operators({kvxExpressionOperandID_Exists});
constexpr uint32_t kEquality =
    Operators({kvxExpressionOperandID_Equal, kvxExpressionOperandID_NotEqual});
constexpr uint32_t kOrder =
    Operators({kvxExpressionOperandID_Smaller, kvxExpressionOperandID_SmallerOrEqual,
               kvxExpressionOperandID_Greater, kvxExpressionOperandID_GreaterOrEqual});
constexpr uint32_t kTextual =
    Operators({kvxExpressionOperandID_Contains, kvxExpressionOperandID_DoesNotContain,
               kvxExpressionOperandID_DerivedFrom, kvxExpressionOperandID_Like});

uint32_t OperatorsOf(SearchKind aKind) {
    switch (aKind) {
        case SearchKind::Text:
            return kPresence | kEquality | kTextual;
        case SearchKind::Date:
            return kPresence | kEquality | kOrder | kTextual;
        case SearchKind::Truth:
            return kPresence | kEquality;
        case SearchKind::Presence:
            return kPresence;
        default:
            return kPresence | kEquality | kOrder;
    }
}

bool IsIn(int anOperandID, uint32_t aSet) {
    return (aSet >> anOperandID & 1u) != 0;
}

// What a literal stands for.
template <typename T>
struct Span {
    T mFirst, mLast;
};

template <typename T>
bool Matches(T aValue, int anOperandID, const Span<T>& aSpan) {
    switch (anOperandID) {
        case kvxExpressionOperandID_Equal:
            return aSpan.mFirst <= aValue && aValue <= aSpan.mLast;
        case kvxExpressionOperandID_NotEqual:
            return aValue < aSpan.mFirst || aSpan.mLast < aValue;
        case kvxExpressionOperandID_Smaller:
            return aValue < aSpan.mFirst;
        case kvxExpressionOperandID_SmallerOrEqual:
            return aValue <= aSpan.mLast;
        case kvxExpressionOperandID_Greater:
            return aSpan.mLast < aValue;
        default:
            return aSpan.mFirst <= aValue;
    }
}

bool Read(const char* aText, Span<uint64_t>& aSpan) {
    const bool theIsNumber = vxConvert_strtouint64(aText, &aSpan.mFirst) == 0;
    aSpan.mLast = aSpan.mFirst;
    return theIsNumber;
}

bool Read(const char* aText, Span<double>& aSpan) {
    const bool theIsNumber = vxConvert_strtod(aText, &aSpan.mFirst) == 0;
    aSpan.mLast = aSpan.mFirst;
    return theIsNumber;
}

// Days since 1970 by the Gregorian rule; month 13 is the next January.
int64_t DayNumber(int64_t aYear, int64_t aMonth, int64_t aDay) {
    // Years begin in March here, so that the day that some years lack is their last. They count from
    // 400 years before year 0, where none is negative.
    const int64_t theYear = aYear + (aMonth > 2 ? 400 : 399);
    const int64_t theMonth = aMonth > 2 ? aMonth - 3 : aMonth + 9;
    const int64_t theLeapDays = theYear / 4 - theYear / 100 + theYear / 400;
    return theYear * 365 + theLeapDays + (theMonth * 153 + 2) / 5 + aDay - 865566;
}

constexpr int64_t kDay = 86400000;  // milliseconds

// Returns the last millisecond of a date whose text has `aLength` bytes.
int64_t LastOf(const vxDLNADate& aDate, int64_t aFirst, size_t aLength, bool afHasFraction) {
    switch (aLength) {
        case 4:
            return DayNumber(aDate.mYear + 1, 1, 1) * kDay - 1;
        case 7:
            return DayNumber(aDate.mYear, aDate.mMonth + 1, 1) * kDay - 1;
        case 10:
            return aFirst + kDay - 1;
        case 16:
            return aFirst + 59999;
        default:
            return afHasFraction ? aFirst : aFirst + 999;
    }
}

// Milliseconds since 1970. The length tells how much of a date is given: the year, the month, the day,
// the minute, or all.
bool Read(const char* aText, Span<int64_t>& aSpan) {
    const size_t theLength = strnlen(aText, 64);
    std::string theText(aText, theLength);
    theText += theLength == 4 ? "-01-01" : theLength == 7 ? "-01" : theLength == 16 ? ":00" : "";
    if (theLength > 10 && theText[10] == ' ') {
        theText[10] = 'T';
    }
    vxDLNADate theDate;
    if (vxConvert_dlnadatestrtodate(theText.c_str(), &theDate) != 0) {
        return false;
    }
    const int64_t theDays = DayNumber(theDate.mYear, theDate.mMonth, theDate.mDay);
    const int64_t theMinutes = theDate.mHour * 60 + theDate.mMinute - theDate.mZoneOffset;
    aSpan.mFirst =
        theDays * kDay + (theMinutes * 60 + theDate.mSecond) * 1000 + theDate.mMillisecond;
    aSpan.mLast = LastOf(theDate, aSpan.mFirst, theLength, theText.find('.') != std::string::npos);
    return true;
}

template <typename T>
bool CompareAs(const char* aValue, int anOperandID, const char* aLiteral) {
    Span<T> theValue;
    Span<T> theLiteral;
    return Read(aValue, theValue) && Read(aLiteral, theLiteral) &&
           Matches(theValue.mFirst, anOperandID, theLiteral);
}

template <typename T>
bool CanRead(const char* aLiteral) {
    Span<T> theSpan;
    return Read(aLiteral, theSpan);
}

}  // namespace

const char* SearchProperty::ReadValue(SearchedItem& anItem, vxCString& aBuffer) const {
    if (mMakeValue != NULL) {
        aBuffer = mMakeValue(anItem);
    } else if (mRow->mKind == ValueKind::Ordinal) {
        aBuffer = GetValue(anItem.GetInfo(), *mRow);
    } else {
        return anItem.GetInfo().GetStr(mRow->mKey, "");
    }
    return aBuffer;
}

bool SearchProperty::Supports(int anOperandID) const {
    return IsIn(anOperandID, OperatorsOf(mKind));
}

const char* SearchProperty::GetExpectedLiteral(const vxCString& aLiteral) const {
    vxCString theLiteral = aLiteral;
    switch (mKind) {
        case SearchKind::Number:
            return CanRead<uint64_t>(aLiteral) ? NULL : "a number";
        case SearchKind::Decimal:
            return CanRead<double>(aLiteral) ? NULL : "a number, with or without decimals";
        case SearchKind::Truth:
            return NormalizeValue(*mRow, theLiteral).IsEmpty() ? NULL : "true or false";
        case SearchKind::Duration:
            return NormalizeValue(*mRow, theLiteral).IsEmpty()
                       ? NULL
                       : "milliseconds, or a duration as 1:02:03 or 1:02:03.456";
        case SearchKind::Date:
            return CanRead<int64_t>(aLiteral)
                       ? NULL
                       : "a date as 2015, 2015-06, 2015-06-30 or 2015-06-30T18:00:00";
        default:
            return NULL;
    }
}

bool SearchProperty::Compare(const char* aValue, int anOperandID, const vxCString& aLiteral) const {
    if (mKind == SearchKind::Decimal) {
        return CompareAs<double>(aValue, anOperandID, aLiteral);
    }
    if (mKind == SearchKind::Date) {
        return CompareAs<int64_t>(aValue, anOperandID, aLiteral);
    }
    if (mKind == SearchKind::Number) {
        return CompareAs<uint64_t>(aValue, anOperandID, aLiteral);
    }
    vxCString theLiteral = aLiteral;
    NormalizeValue(*mRow, theLiteral);
    return CompareAs<uint64_t>(aValue, anOperandID, theLiteral);
}

int FindSearchProperty(const vxCString& aName) {
    if (aName.length() > kProperty_MaxName) {
        return -1;
    }
    const auto& theNumbers = Properties().mNumbers;
    const auto theNumber = theNumbers.find(aName.c_str());
    return theNumber == theNumbers.end() ? -1 : theNumber->second;
}

const SearchProperty& GetSearchProperty(int aNumber) {
    return Properties().mProperties[static_cast<size_t>(aNumber)];
}

}  // namespace vxmedia
