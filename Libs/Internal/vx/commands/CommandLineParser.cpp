// The parser of program arguments.
//
// All arguments are copied into one block, and options and parameters are plain records in arrays that
// borrow the texts of the description table: a program pays for its arguments once, at its start,
// with a handful of allocations. Options are found through their first two bytes, and a name is never
// read further than it can match.
//
// What remains of glued switches (`-vq`) is not copied. It waits, without its switch character, for
// the next round over the arguments; a round ends when all its arguments are processed.

#include "vx/CommandLineParser.h"

#include <libteskTools/Convert.h>
#include <libvxLog/Console.h>
#include <libvxLog/Log.h>
#include <libvxOS/Path.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "vx/CharBuffer.h"

namespace {

// A declared positional parameter.
struct vxCommandLineParameter {
    const char* mDescription;  // borrowed
    vxCommandLineParameterType mType;
    int mFlags;

    bool HasFlag(vxCommandLineFlag aFlag) const { return (mFlags & aFlag) != 0; }
};

// An argument, or what remains of glued switches, which lacks its switch character.
struct vxArgument {
    vxArgument(const char* aText, size_t aSize, bool afQueued)
        : mText(aText), mSize(static_cast<uint32_t>(aSize)), mfQueued(afQueued) {}

    const char* mText;  // in the block of arguments
    uint32_t mSize;     // bytes to copy while the block is made; meaningless afterwards
    bool mfQueued;
};

constexpr uint32_t kvxNoOption = 0xFFFFFFFF;
constexpr size_t kvxOptionIndex_Size = 64;

struct vxNameChars {
    constexpr vxNameChars() : mIs() {
        for (const char* i = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_?";
             *i != '\0'; ++i) {
            mIs[static_cast<unsigned char>(*i)] = true;
        }
    }
    bool mIs[256];
};

bool vxIsNameChar(char aChar) {
    static constexpr vxNameChars kNameChars;
    return kNameChars.mIs[static_cast<unsigned char>(aChar)];
}

// Names whose first two bytes have one value here share a chain of the index.
size_t vxIndexOf(char aFirst, char aSecond) {
    return (static_cast<unsigned char>(aFirst) * 7u + static_cast<unsigned char>(aSecond)) %
           kvxOptionIndex_Size;
}

bool vxIsBlank(char aChar) {
    return aChar == ' ' || aChar == '\t';
}

const char* vxNotNull(const char* aText) {
    return aText == NULL ? "" : aText;
}

size_t vxNameLength(const char* aText) {
    size_t theLength = 0;
    while (vxIsNameChar(aText[theLength])) {
        ++theLength;
    }
    return theLength;
}

// Names are short: comparing byte by byte beats a call.
bool vxStartsWith(const char* aText, const char* aName) {
    while (*aName != '\0' && *aName == *aText) {
        ++aName;
        ++aText;
    }
    return *aName == '\0';
}

bool vxIsOneOf(char aChar, const char* aSet) {
    while (*aSet != '\0' && *aSet != aChar) {
        ++aSet;
    }
    return *aSet != '\0';
}

// Copies one argument without its quotes, and its NUL; aFrom moves behind it, the result behind the
// copy. The copy never overtakes: what ends an argument makes room for the NUL.
char* vxCopyArgument(const char*& aFrom, char* aTo) {
    bool theIsQuoted = false;
    for (char theLast = '\0'; *aFrom != '\0' && (theIsQuoted || !vxIsBlank(*aFrom));
         theLast = *aFrom++) {
        if (*aFrom == '"' && theLast != '\\') {
            theIsQuoted = !theIsQuoted;
        } else {
            *aTo++ = *aFrom;
        }
    }
    *aTo++ = '\0';
    return aTo;
}

// The type of an option's value in angle brackets; nothing for a switch.
vxCString vxValueUsage(const vxCommandLineOption& anOption) {
    return anOption.GetKind() == vxCommandLineEntryType_Option
               ? '<' + vxCommandLineParser::GetTypeName(anOption.GetType()) + '>'
               : vxCString();
}

vxCString vxParameterUsage(const vxCommandLineParameter& aParameter) {
    const bool theIsOptional = aParameter.HasFlag(vxCommandLineFlag_ParameterOptional);
    return vxCString::Format(" %s%s%s%s", theIsOptional ? "[" : "", aParameter.mDescription,
                             aParameter.HasFlag(vxCommandLineFlag_ParameterMultiple) ? "..." : "",
                             theIsOptional ? "]" : "");
}

}  // namespace

struct vxCommandLineParserData {
    vxCommandLineParserData() { std::fill(std::begin(mIndex), std::end(mIndex), kvxNoOption); }

    // Arguments
    void SetArguments(int anArgc, char** anArgv);
    void SplitArguments(const char* aLine, size_t aLength);

    // Options
    int FindOption(const char* aName) const;
    // The first option that may begin as the text does.
    uint32_t ChainOf(const char* aText) const {
        return *aText == '\0' ? kvxNoOption : mIndex[vxIndexOf(aText[0], aText[1])];
    }
    const vxCommandLineOption* GetOption(const char* aName) const;
    vxCommandLineOption* FindLongestOption(const char* aText);
    void IndexLastOption();
    const char* Keep(const vxCString& aText);
    vxCString OptionUsage(const vxCommandLineOption& anOption) const;
    vxCString OptionDetail(const vxCommandLineOption& anOption) const;

    // Parsing
    int Walk();
    bool Next(vxArgument& anArgument);
    vxCString TextOf(const vxArgument& anArgument) const;
    bool IsOption(const vxArgument& anArgument) const;
    int ParseOption(const vxArgument& anArgument);
    bool ParseValue(vxCommandLineOption& anOption, const char* aText);
    bool StoreValue(vxCommandLineOption& anOption, const char* aValue);
    bool ParseParameter(const vxArgument& anArgument);
    bool CheckOptions();
    bool CheckParameters();
    bool Fail(const vxCString& anError) {
        mError = anError;
        return false;
    }

    const char* mSwitchChars = "-";      // the characters that begin an option
    std::vector<vxArgument> mArguments;  // the first is the program's name
    std::vector<vxCommandLineOption> mOptions;
    std::vector<vxCommandLineParameter> mParametersDesc;
    std::vector<vxArgument> mParameters;   // the positional arguments found
    std::vector<vxCString> mKeptTexts;     // what options and parameters borrow, if not a table's
    uint32_t mIndex[kvxOptionIndex_Size];  // first options of the chains
    vxCharBuffer mText;                    // the texts of all arguments

    // The parse under way.
    std::vector<vxArgument> mRound;      // what remained of the arguments of the round before
    std::vector<vxArgument> mNextRound;  // what remains of those of this round
    const vxArgument* mPos = NULL;       // next argument of this round
    const vxArgument* mEnd = NULL;
    size_t mParameter = 0;         // next positional parameter
    bool mfIsCollecting = false;   // it takes all the rest and has got something
    bool mfOptionsAllowed = true;  // no `--` yet
    vxCString mError;
};

// The option

vxCommandLineOption::vxCommandLineOption(vxCommandLineEntryType aKind, const char* anOption,
                                         const char* aDescription, vxCommandLineParameterType aType,
                                         int aFlags)
    : mKind(aKind),
      mOptionName(vxNotNull(anOption)),
      mDescription(vxNotNull(aDescription)),
      mType(aType),
      mFlags(aFlags),
      mfHasValue(false),
      mInt32Value(0),
      mNameLength(static_cast<uint32_t>(vxNameLength(mOptionName))),
      mNextSimilar(kvxNoOption) {
    VXASSERT_TEXT(*mOptionName != '\0', "!anOption.IsEmpty()");
    VXASSERT_TEXT(mOptionName[mNameLength] == '\0',
                  "GetOptionName(anOption).length() == anOption.length()");
}

vxCString vxCommandLineOption::GetOptionName(const char* aText) {
    return aText == NULL ? vxCString() : vxCString(aText, vxNameLength(aText));
}

int32_t vxCommandLineOption::GetInt32Value() const {
    VXASSERT(mType == vxCommandLineParameter_Number);
    return mInt32Value;
}

const vxCString& vxCommandLineOption::GetStringValue() const {
    VXASSERT(mType == vxCommandLineParameter_String);
    return mStringValue;
}

void vxCommandLineOption::SetInt32Value(int32_t aValue) {
    VXASSERT(mType == vxCommandLineParameter_Number);
    mInt32Value = aValue;
    mfHasValue = true;
}

void vxCommandLineOption::SetStringValue(const char* aValue) {
    VXASSERT(mType == vxCommandLineParameter_String);
    mStringValue = aValue;
    mfHasValue = true;
}

// Arguments

void vxCommandLineParserData::SetArguments(int anArgc, char** anArgv) {
    mArguments.clear();
    mArguments.reserve(anArgc > 0 ? static_cast<size_t>(anArgc) : 0);
    size_t theSize = 0;
    for (int i = 0; anArgv != NULL && i < anArgc && anArgv[i] != NULL; ++i) {
        mArguments.emplace_back(anArgv[i], strlen(anArgv[i]) + 1, false);
        theSize += mArguments.back().mSize;
    }
    vxCharBuffer theText(theSize);
    char* theEnd = theText.data();
    if (theEnd == NULL) {
        mArguments.clear();
        return;
    }
    for (vxArgument& theArgument : mArguments) {
        memcpy(theEnd, theArgument.mText, theArgument.mSize);
        theArgument.mText = theEnd;
        theEnd += theArgument.mSize;
    }
    mText = theText;
}

void vxCommandLineParserData::SplitArguments(const char* aLine, size_t aLength) {
    mArguments.clear();
    vxCharBuffer theText(aLength);
    for (char* theEnd = theText.data(); theEnd != NULL;) {
        while (vxIsBlank(*aLine)) {
            ++aLine;
        }
        if (*aLine == '\0') {
            break;
        }
        mArguments.emplace_back(theEnd, 0, false);
        theEnd = vxCopyArgument(aLine, theEnd);
    }
    mText = theText;
}

// Options

int vxCommandLineParserData::FindOption(const char* aName) const {
    const vxCommandLineOption* theOption = GetOption(aName);
    return theOption == NULL ? -1 : static_cast<int>(theOption - mOptions.data());
}

const vxCommandLineOption* vxCommandLineParserData::GetOption(const char* aName) const {
    for (uint32_t i = ChainOf(aName); i != kvxNoOption; i = mOptions[i].mNextSimilar) {
        const vxCommandLineOption& theOption = mOptions[i];
        if (vxStartsWith(aName, theOption.mOptionName) && aName[theOption.mNameLength] == '\0') {
            return &theOption;
        }
    }
    return NULL;
}

// The option with the longest name that aText begins with, or null.
vxCommandLineOption* vxCommandLineParserData::FindLongestOption(const char* aText) {
    uint32_t theLongest = kvxNoOption;
    uint32_t theLength = 0;
    const char theFirst[] = {*aText, '\0'};
    for (const char* theStart : {aText, static_cast<const char*>(theFirst)}) {
        for (uint32_t i = ChainOf(theStart); i != kvxNoOption; i = mOptions[i].mNextSimilar) {
            if (mOptions[i].mNameLength > theLength &&
                vxStartsWith(aText, mOptions[i].mOptionName)) {
                theLongest = i;
                theLength = mOptions[i].mNameLength;
            }
        }
        if (theLongest != kvxNoOption) {
            return &mOptions[theLongest];
        }
    }
    return NULL;
}

void vxCommandLineParserData::IndexLastOption() {
    const char* theName = mOptions.back().mOptionName;
    uint32_t& theHead = mIndex[vxIndexOf(theName[0], theName[1])];
    mOptions.back().mNextSimilar = theHead;
    theHead = static_cast<uint32_t>(mOptions.size() - 1);
}

// Keeps a text of the caller for as long as the parser lives.
const char* vxCommandLineParserData::Keep(const vxCString& aText) {
    mKeptTexts.push_back(aText.c_str());
    return mKeptTexts.back().c_str();
}

vxCString vxCommandLineParserData::OptionUsage(const vxCommandLineOption& anOption) const {
    const bool theIsMandatory = anOption.HasFlag(vxCommandLineFlag_MandatoryOption);
    return vxCString::Format(" %s%c%s%s%s", theIsMandatory ? "" : "[", *mSwitchChars,
                             anOption.mOptionName, vxValueUsage(anOption).c_str(),
                             theIsMandatory ? "" : "]");
}

vxCString vxCommandLineParserData::OptionDetail(const vxCommandLineOption& anOption) const {
    const vxCString theValue = vxValueUsage(anOption);
    return vxCString::Format("  %c%s%s%s", *mSwitchChars, anOption.mOptionName,
                             theValue.IsEmpty() ? "" : " ", theValue.c_str());
}

// Parsing

int vxCommandLineParserData::Walk() {
    mError.clear();
    mNextRound.clear();
    mParameters.clear();
    mParameters.reserve(mArguments.size());
    mParameter = 0;
    mfIsCollecting = false;
    mfOptionsAllowed = true;
    mPos = mArguments.data() + (mArguments.empty() ? 0 : 1);
    mEnd = mArguments.data() + mArguments.size();
    vxArgument theArgument(NULL, 0, false);
    while (Next(theArgument)) {
        if (!IsOption(theArgument)) {
            if (!ParseParameter(theArgument)) {
                return 1;
            }
        } else if (!theArgument.mfQueued && strcmp(theArgument.mText, "--") == 0) {
            mfOptionsAllowed = false;
        } else if (const int theResult = ParseOption(theArgument); theResult != 0) {
            return theResult;
        }
    }
    return CheckOptions() && CheckParameters() ? 0 : 1;
}

bool vxCommandLineParserData::Next(vxArgument& anArgument) {
    if (mPos == mEnd) {
        mRound.swap(mNextRound);
        mNextRound.clear();
        mPos = mRound.data();
        mEnd = mPos + mRound.size();
        if (mPos == mEnd) {
            return false;
        }
    }
    anArgument = *mPos++;
    return true;
}

vxCString vxCommandLineParserData::TextOf(const vxArgument& anArgument) const {
    return anArgument.mfQueued ? vxCString::Format("%c%s", *mSwitchChars, anArgument.mText)
                               : vxCString(anArgument.mText);
}

bool vxCommandLineParserData::IsOption(const vxArgument& anArgument) const {
    const char* theText = anArgument.mText;
    return mfOptionsAllowed &&
           (anArgument.mfQueued || (vxIsOneOf(theText[0], mSwitchChars) && theText[1] != '\0'));
}

int vxCommandLineParserData::ParseOption(const vxArgument& anArgument) {
    const char* const theText = anArgument.mText + (anArgument.mfQueued ? 0 : 1);
    vxCommandLineOption* theOption = FindLongestOption(theText);
    if (theOption == NULL) {
        const vxCString theName = *theText == '-'
                                      ? "--" + vxCommandLineOption::GetOptionName(theText + 1)
                                      : vxCommandLineOption::GetOptionName(theText);
        Fail(vxCString::Format("Unknown option '%s'\n", theName.c_str()));
        return 1;
    }
    const char* const theRest = theText + theOption->mNameLength;
    if (theOption->mKind == vxCommandLineEntryType_Option) {
        return ParseValue(*theOption, theRest) ? 0 : 1;
    }
    if (vxIsNameChar(*theRest)) {
        mNextRound.emplace_back(theRest, 0, true);
    }
    theOption->SetHasValue();
    return theOption->HasFlag(vxCommandLineFlag_HelpOption) ? -1 : 0;
}

// aText is what stands behind the name of the option.
bool vxCommandLineParserData::ParseValue(vxCommandLineOption& anOption, const char* aText) {
    if (*aText == ':' || *aText == '=') {
        return StoreValue(anOption, aText + 1);
    }
    if (*aText == '\0') {
        vxArgument theArgument(NULL, 0, false);
        if (!Next(theArgument)) {
            return Fail(vxCString::Format("Option '%s' requires a value\n", anOption.mOptionName));
        }
        return StoreValue(anOption,
                          theArgument.mfQueued ? TextOf(theArgument).c_str() : theArgument.mText);
    }
    if (anOption.HasFlag(vxCommandLineFlag_NeedSeparator)) {
        return Fail(
            vxCString::Format("Separator expected after the option '%s'\n", anOption.mOptionName));
    }
    return StoreValue(anOption, aText);
}

bool vxCommandLineParserData::StoreValue(vxCommandLineOption& anOption, const char* aValue) {
    if (anOption.mType != vxCommandLineParameter_Number) {
        anOption.SetStringValue(aValue);
        return true;
    }
    int32_t theNumber;
    if (vxConvert_strtoint32(aValue, &theNumber) != 0) {
        return Fail(vxCString::Format("'%s' is not a correct numeric value for option '%s'\n",
                                      aValue, anOption.mOptionName));
    }
    anOption.SetInt32Value(theNumber);
    return true;
}

bool vxCommandLineParserData::ParseParameter(const vxArgument& anArgument) {
    if (mParameter == mParametersDesc.size()) {
        return Fail(vxCString::Format("Unexpected parameter '%s'\n", TextOf(anArgument).c_str()));
    }
    mParameters.push_back(anArgument);
    mfIsCollecting = mParametersDesc[mParameter].HasFlag(vxCommandLineFlag_ParameterMultiple);
    VXASSERT_TEXT(!mfIsCollecting || mParameter == mParametersDesc.size() - 1,
                  "theCurrentParam == theParamCount - 1");
    mParameter += mfIsCollecting ? 0 : 1;
    return true;
}

bool vxCommandLineParserData::CheckOptions() {
    for (const vxCommandLineOption& theOption : mOptions) {
        if (theOption.HasFlag(vxCommandLineFlag_MandatoryOption) && !theOption.HasValue()) {
            return Fail(vxCString::Format("The value for the option '%s' must be specified\n",
                                          theOption.mOptionName));
        }
    }
    return true;
}

bool vxCommandLineParserData::CheckParameters() {
    for (size_t i = mParameter + (mfIsCollecting ? 1 : 0); i < mParametersDesc.size(); ++i) {
        if (!mParametersDesc[i].HasFlag(vxCommandLineFlag_ParameterOptional)) {
            return Fail(vxCString::Format("The required parameter '%s' was not specified\n",
                                          mParametersDesc[i].mDescription));
        }
    }
    return true;
}

// The parser

vxCommandLineParser::vxCommandLineParser() : mParserData(new vxCommandLineParserData) {}

vxCommandLineParser::vxCommandLineParser(const vxCommandLineDescription* aTable, int anArgc,
                                         char** anArgv)
    : vxCommandLineParser() {
    SetCommandLine(anArgc, anArgv);
    SetDescription(aTable);
}

vxCommandLineParser::vxCommandLineParser(const vxCommandLineDescription* aTable,
                                         const vxCString& aCommandLine, bool afHasProgramName)
    : vxCommandLineParser() {
    SetCommandLine(aCommandLine, afHasProgramName);
    SetDescription(aTable);
}

vxCommandLineParser::~vxCommandLineParser() {
    delete mParserData;
}

void vxCommandLineParser::SetCommandLine(int anArgc, char** anArgv) {
    mParserData->mParameters.clear();
    mParserData->SetArguments(anArgc, anArgv);
}

void vxCommandLineParser::SetCommandLine(const vxCString& aCommandLine, bool afHasProgramName) {
    vxCString theLine = aCommandLine;
    if (!afHasProgramName) {
        const vxCString thePath = vxCString::FromAllocatedString(vxPath_GetApplicationFullPath());
        theLine = vxCString::Format("\"%s\" %s", thePath.IsEmpty() ? "unknown" : thePath.c_str(),
                                    aCommandLine.c_str());
    }
    mParserData->mParameters.clear();
    mParserData->SplitArguments(theLine, theLine.length());
}

void vxCommandLineParser::SetDescription(const vxCommandLineDescription* aTable) {
    size_t theCount = 0;
    while (aTable != NULL && aTable[theCount].mKind != vxCommandLineEntryType_None) {
        ++theCount;
    }
    mParserData->mOptions.reserve(mParserData->mOptions.size() + theCount);
    for (size_t i = 0; i < theCount; ++i) {
        const vxCommandLineDescription& theRow = aTable[i];
        switch (theRow.mKind) {
            case vxCommandLineEntryType_Switch:
                AddEntry(theRow.mKind, theRow.mOptionName, theRow.mDescription,
                         vxCommandLineParameter_None, theRow.mFlags);
                break;
            case vxCommandLineEntryType_Option:
                AddEntry(theRow.mKind, theRow.mOptionName, theRow.mDescription, theRow.mType,
                         theRow.mFlags);
                break;
            case vxCommandLineEntryType_Parameter:
                AddParamEntry(theRow.mDescription, theRow.mType, theRow.mFlags);
                break;
            default:
                VXASSERT_TEXT(false, "Unknown command line entry type");
        }
    }
}

void vxCommandLineParser::AddSwitch(const vxCString& aName, const vxCString& aDescription,
                                    int aFlags) {
    AddEntry(vxCommandLineEntryType_Switch, mParserData->Keep(aName),
             mParserData->Keep(aDescription), vxCommandLineParameter_None, aFlags);
}

void vxCommandLineParser::AddOption(const vxCString& aName, const vxCString& aDescription,
                                    vxCommandLineParameterType aType, int aFlags) {
    AddEntry(vxCommandLineEntryType_Option, mParserData->Keep(aName),
             mParserData->Keep(aDescription), aType, aFlags);
}

void vxCommandLineParser::AddParam(const vxCString& aDescription, vxCommandLineParameterType aType,
                                   int aFlags) {
    AddParamEntry(mParserData->Keep(aDescription), aType, aFlags);
}

// The texts are borrowed from here on.
void vxCommandLineParser::AddEntry(vxCommandLineEntryType aKind, const char* aName,
                                   const char* aDescription, vxCommandLineParameterType aType,
                                   int aFlags) {
    const char* const theName = vxNotNull(aName);
    const bool theIsNew = mParserData->FindOption(theName) == -1;
    VXASSERT_TEXT(theIsNew, "mParserData->FindOption(aName) == -1");
    mParserData->mOptions.emplace_back(aKind, theName, aDescription, aType, aFlags);
    if (theIsNew && mParserData->mOptions.back().HasValidName()) {
        mParserData->IndexLastOption();
    } else {
        mParserData->mOptions.pop_back();
    }
}

void vxCommandLineParser::AddParamEntry(const char* aDescription, vxCommandLineParameterType aType,
                                        int aFlags) {
    std::vector<vxCommandLineParameter>& theParams = mParserData->mParametersDesc;
    if (!theParams.empty()) {
        const vxCommandLineParameter* theParam = &theParams.back();
        VXASSERT(!(theParam->mFlags & vxCommandLineFlag_ParameterMultiple));
        if ((aFlags & vxCommandLineFlag_ParameterOptional) == 0) {
            VXASSERT(!(theParam->mFlags & vxCommandLineFlag_ParameterOptional));
        }
    }
    theParams.push_back({vxNotNull(aDescription), aType, aFlags});
}

int vxCommandLineParser::Parse(bool afDisplayUsage) {
    Reset();
    const int theResult = mParserData->Walk();
    if (theResult > 0 || (theResult < 0 && afDisplayUsage)) {
        const vxCString theUsage = afDisplayUsage ? GetUsageString() : vxCString();
        const int theLevel = theResult > 0 ? VXLOGLEVEL_ERROR : VXLOGLEVEL_INFO;
        VXLOG(theLevel, VXLOG_M_DEFAULT, "%s%s", theUsage.c_str(), mParserData->mError.c_str());
        vxConsole_Printf("%s%s", theUsage.c_str(), mParserData->mError.c_str());
    }
    return theResult;
}

bool vxCommandLineParser::Found(const char* aName) const {
    const vxCommandLineOption* theOption = mParserData->GetOption(vxNotNull(aName));
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Testing presence of an unknown option '%s'\n",
              vxNotNull(aName));
    }
    return theOption != NULL && theOption->HasValue();
}

bool vxCommandLineParser::Found(const char* aName, vxCString* aValue) const {
    aValue->clear();
    const vxCommandLineOption* theOption = mParserData->GetOption(vxNotNull(aName));
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Getting value of an unknown string option '%s'\n",
              vxNotNull(aName));
    }
    if (theOption == NULL || !theOption->HasValue()) {
        return false;
    }
    *aValue = theOption->GetStringValue();
    return true;
}

bool vxCommandLineParser::Found(const char* aName, int* aValue) const {
    *aValue = 0;
    const vxCommandLineOption* theOption = mParserData->GetOption(vxNotNull(aName));
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Getting value of an unknown number option '%s'\n",
              vxNotNull(aName));
    }
    if (theOption == NULL || !theOption->HasValue()) {
        return false;
    }
    *aValue = theOption->GetInt32Value();
    return true;
}

unsigned vxCommandLineParser::GetParameterCount() const {
    return static_cast<unsigned>(mParserData->mParameters.size());
}

vxCString vxCommandLineParser::GetParameter(unsigned anIndex) const {
    VXASSERT(anIndex < GetParameterCount());
    return anIndex < GetParameterCount() ? mParserData->TextOf(mParserData->mParameters[anIndex])
                                         : vxCString();
}

void vxCommandLineParser::Reset() {
    for (vxCommandLineOption& theOption : mParserData->mOptions) {
        theOption.Reset();
    }
}

vxCString vxCommandLineParser::GetUsageString() const {
    const vxCString theProgram = vxCString::FromAllocatedString(vxPath_GetApplicationName());
    vxCString theUsage = vxCString::Format("Usage: %s", theProgram.c_str());
    size_t theWidth = 0;
    for (const vxCommandLineOption& theOption : mParserData->mOptions) {
        theUsage += mParserData->OptionUsage(theOption);
        theWidth = std::max(theWidth, mParserData->OptionDetail(theOption).length());
    }
    for (const vxCommandLineParameter& theParameter : mParserData->mParametersDesc) {
        theUsage += vxParameterUsage(theParameter);
    }
    theUsage += '\n';
    for (const vxCommandLineOption& theOption : mParserData->mOptions) {
        vxCString theDetail = mParserData->OptionDetail(theOption);
        theDetail.Pad(theWidth - theDetail.length(), ' ', true);
        theUsage += theDetail + '\t' + theOption.GetDescription() + '\n';
    }
    return theUsage;
}

void vxCommandLineParser::Usage() const {
    vxConsole_Printf("%s", GetUsageString().c_str());
}

vxCString vxCommandLineParser::GetTypeName(vxCommandLineParameterType aType) {
    VXASSERT_TEXT(aType == vxCommandLineParameter_String || aType == vxCommandLineParameter_Number,
                  "Unknown option type");
    return aType == vxCommandLineParameter_Number ? "num" : "str";
}
