// The parser of program arguments.
//
// Arguments are walked once. What remains of glued switches (`-vq`) is not copied: it waits in a queue
// of pointers into the arguments and gets its switch character back only where somebody wants the
// text. Options are found through their first byte; a name is never read further than it can match,
// so that an argument of a megabyte of switches stays linear.

#include "vx/CommandLineParser.h"

#include <libteskTools/Convert.h>
#include <libteskTools/Memory.h>
#include <libteskTools/PtrList.h>
#include <libvxLog/Console.h>
#include <libvxLog/Log.h>
#include <libvxOS/Path.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

// A declared positional parameter.
struct vxCommandLineParameter {
    vxCString mDescription;
    vxCommandLineParameterType mType;
    int mFlags;

    bool HasFlag(vxCommandLineFlag aFlag) const { return (mFlags & aFlag) != 0; }
};

bool vxIsNameChar(char aChar) {
    return (aChar >= 'a' && aChar <= 'z') || (aChar >= 'A' && aChar <= 'Z') ||
           (aChar >= '0' && aChar <= '9') || aChar == '_' || aChar == '?';
}

size_t vxIndexOf(char aChar) {
    return static_cast<unsigned char>(aChar) & 63;
}

bool vxIsBlank(char aChar) {
    return aChar == ' ' || aChar == '\t';
}

void vxDeleteOption(void* anOption) {
    delete static_cast<vxCommandLineOption*>(anOption);
}

void vxDeleteParameter(void* aParameter) {
    delete static_cast<vxCommandLineParameter*>(aParameter);
}

vxPtrList* vxNewOwningList(vxPtrList_FreeFunc aFreeFunc) {
    vxPtrList* theList = vxPtrList_New();
    vxPtrList_SetFreeFunc(theList, aFreeFunc);
    return theList;
}

void vxAppendOwned(vxPtrList* aList, char* aText) {
    if (aText != NULL && vxPtrList_Append(aList, aText) == NULL) {
        free(aText);
    }
}

// Where the argument that begins at aText ends.
const char* vxFindArgumentEnd(const char* aText) {
    bool theIsQuoted = false;
    const char* thePos = aText;
    for (; *thePos != '\0' && (theIsQuoted || !vxIsBlank(*thePos)); ++thePos) {
        theIsQuoted ^= *thePos == '"' && (thePos == aText || thePos[-1] != '\\');
    }
    return thePos;
}

// Copies an argument without its quotes.
char* vxCopyArgument(const char* aFirst, const char* aLast) {
    char* const theCopy = static_cast<char*>(vxMalloc(static_cast<size_t>(aLast - aFirst) + 1));
    if (theCopy == NULL) {
        return NULL;
    }
    char* theEnd = theCopy;
    for (const char* i = aFirst; i != aLast; ++i) {
        if (*i != '"' || (i != aFirst && i[-1] == '\\')) {
            *theEnd++ = *i;
        }
    }
    *theEnd = '\0';
    return theCopy;
}

vxCString vxTakeText(char* aText) {
    return vxCString::FromAllocatedString(aText);
}

// The type of an option's value in angle brackets; nothing for a switch.
vxCString vxValueUsage(const vxCommandLineOption& anOption) {
    return anOption.GetKind() == vxCommandLineEntryType_Option
               ? '<' + vxCommandLineParser::GetTypeName(anOption.GetType()) + '>'
               : vxCString();
}

vxCString vxParameterUsage(const vxCommandLineParameter& aParameter) {
    const bool theIsOptional = aParameter.HasFlag(vxCommandLineFlag_ParameterOptional);
    return vxCString::Format(" %s%s%s%s", theIsOptional ? "[" : "", aParameter.mDescription.c_str(),
                             aParameter.HasFlag(vxCommandLineFlag_ParameterMultiple) ? "..." : "",
                             theIsOptional ? "]" : "");
}

}  // namespace

struct vxCommandLineParserData {
    // An argument, or what remains of glued switches, which lacks its switch character.
    struct Argument {
        const char* mText;
        bool mfQueued;
    };

    vxCommandLineParserData()
        : mSwitchChars("-"),
          mArguments(vxNewOwningList(free)),
          mOptions(vxNewOwningList(vxDeleteOption)),
          mParametersDesc(vxNewOwningList(vxDeleteParameter)),
          mParameters(vxNewOwningList(free)),
          mQueue(vxPtrList_New()) {}
    ~vxCommandLineParserData() {
        vxPtrList_Delete(mQueue);
        vxPtrList_Delete(mParameters);
        vxPtrList_Delete(mParametersDesc);
        vxPtrList_Delete(mOptions);
        vxPtrList_Delete(mArguments);
    }

    int FindOption(const char* aName) const;
    vxCommandLineOption* GetOption(const char* aName) const;
    vxCommandLineOption* FindLongestOption(const char* aText) const;
    void IndexOption(vxCommandLineOption* anOption);
    vxCString OptionUsage(const vxCommandLineOption& anOption) const;
    vxCString OptionDetail(const vxCommandLineOption& anOption) const;

    bool Next(Argument& anArgument);
    vxCString TextOf(const Argument& anArgument) const;
    bool IsOption(const Argument& anArgument) const;
    int Walk();
    int ParseOption(const Argument& anArgument);
    bool ParseValue(vxCommandLineOption* anOption, const char* aText);
    bool StoreValue(vxCommandLineOption* anOption, const char* aValue);
    bool ParseParameter(const Argument& anArgument);
    bool CheckOptions();
    bool CheckParameters();

    vxCString mSwitchChars;      // the characters that begin an option
    vxPtrList* mArguments;       // owned texts; the first is the program's name
    vxPtrList* mOptions;         // owned vxCommandLineOption
    vxPtrList* mParametersDesc;  // owned vxCommandLineParameter
    vxPtrList* mParameters;      // owned texts: the positional arguments found

    // Heads of chains of the options whose names begin with bytes that are equal modulo 64.
    vxCommandLineOption* mIndex[64] = {};

    // The parse under way.
    vxPtrListNode* mNext = NULL;       // next argument
    vxPtrList* mQueue;                 // what remains of glued switches: into mArguments
    vxPtrListNode* mParameter = NULL;  // next positional parameter
    bool mfIsCollecting = false;       // it takes all the rest and has got something
    bool mfOptionsAllowed = true;      // no `--` yet
    vxCString mError;

    // Where GetParameter() looked last, so that reading one after the other is linear.
    vxPtrListNode* mLastParameter = NULL;
    unsigned mLastIndex = 0;
};

// The option

vxCommandLineOption::vxCommandLineOption(vxCommandLineEntryType aKind, const vxCString& anOption,
                                         const vxCString& aDescription,
                                         vxCommandLineParameterType aType, int aFlags)
    : mKind(aKind),
      mOptionName(anOption),
      mDescription(aDescription),
      mType(aType),
      mFlags(aFlags),
      mfHasValue(false),
      mInt32Value(0),
      mNextSimilar(NULL) {
    VXASSERT(!anOption.IsEmpty());
    VXASSERT(GetOptionName(anOption).length() == anOption.length());
}

vxCString vxCommandLineOption::GetOptionName(const char* aText) {
    const char* theEnd = aText;
    while (vxIsNameChar(*theEnd)) {
        ++theEnd;
    }
    return vxCString(aText, static_cast<size_t>(theEnd - aText));
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

void vxCommandLineOption::SetStringValue(const vxCString& aValue) {
    VXASSERT(mType == vxCommandLineParameter_String);
    mStringValue = aValue;
    mfHasValue = true;
}

// Finding options

int vxCommandLineParserData::FindOption(const char* aName) const {
    int theIndex = 0;
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mOptions); i != NULL;
         i = vxPtrListNode_GetNext(i), ++theIndex) {
        if (static_cast<vxCommandLineOption*>(vxPtrListNode_GetPtr(i))->GetName() == aName) {
            return theIndex;
        }
    }
    return -1;
}

vxCommandLineOption* vxCommandLineParserData::GetOption(const char* aName) const {
    vxCommandLineOption* theOption = mIndex[vxIndexOf(*aName)];
    while (theOption != NULL && theOption->mOptionName != aName) {
        theOption = theOption->mNextSimilar;
    }
    return theOption;
}

// The option with the longest name that aText begins with, or null.
vxCommandLineOption* vxCommandLineParserData::FindLongestOption(const char* aText) const {
    vxCommandLineOption* theLongest = NULL;
    size_t theLongestLength = 0;
    for (vxCommandLineOption* i = mIndex[vxIndexOf(*aText)]; i != NULL; i = i->mNextSimilar) {
        const size_t theLength = i->mOptionName.length();
        if (theLength > theLongestLength && strncmp(i->mOptionName, aText, theLength) == 0) {
            theLongest = i;
            theLongestLength = theLength;
        }
    }
    return theLongest;
}

void vxCommandLineParserData::IndexOption(vxCommandLineOption* anOption) {
    vxCommandLineOption*& theHead = mIndex[vxIndexOf(anOption->mOptionName.First())];
    anOption->mNextSimilar = theHead;
    theHead = anOption;
}

vxCString vxCommandLineParserData::OptionUsage(const vxCommandLineOption& anOption) const {
    const bool theIsMandatory = anOption.HasFlag(vxCommandLineFlag_MandatoryOption);
    return vxCString::Format(" %s%c%s%s%s", theIsMandatory ? "" : "[", mSwitchChars.First(),
                             anOption.mOptionName.c_str(), vxValueUsage(anOption).c_str(),
                             theIsMandatory ? "" : "]");
}

vxCString vxCommandLineParserData::OptionDetail(const vxCommandLineOption& anOption) const {
    const vxCString theValue = vxValueUsage(anOption);
    return vxCString::Format("  %c%s%s%s", mSwitchChars.First(), anOption.mOptionName.c_str(),
                             theValue.IsEmpty() ? "" : " ", theValue.c_str());
}

// Walking the arguments

bool vxCommandLineParserData::Next(Argument& anArgument) {
    if (mNext != NULL) {
        anArgument = {static_cast<char*>(vxPtrListNode_GetPtr(mNext)), false};
        mNext = vxPtrListNode_GetNext(mNext);
        return true;
    }
    vxPtrListNode* theNode = vxPtrList_GetFirstNode(mQueue);
    if (theNode == NULL) {
        return false;
    }
    anArgument = {static_cast<char*>(vxPtrList_TakeNode(mQueue, theNode)), true};
    return true;
}

vxCString vxCommandLineParserData::TextOf(const Argument& anArgument) const {
    return anArgument.mfQueued ? vxCString::Format("%c%s", mSwitchChars.First(), anArgument.mText)
                               : vxCString(anArgument.mText);
}

bool vxCommandLineParserData::IsOption(const Argument& anArgument) const {
    const char* theText = anArgument.mText;
    return mfOptionsAllowed && (anArgument.mfQueued || (theText[0] != '\0' && theText[1] != '\0' &&
                                                        strchr(mSwitchChars, theText[0]) != NULL));
}

int vxCommandLineParserData::Walk() {
    mError.clear();
    mfIsCollecting = false;
    mfOptionsAllowed = true;
    mLastParameter = NULL;
    vxPtrList_Clear(mQueue);
    vxPtrList_Clear(mParameters);
    mParameter = vxPtrList_GetFirstNode(mParametersDesc);
    mNext = vxPtrList_GetNodeAt(mArguments, 1);
    Argument theArgument;
    while (Next(theArgument)) {
        if (mfOptionsAllowed && !theArgument.mfQueued && strcmp(theArgument.mText, "--") == 0) {
            mfOptionsAllowed = false;
            continue;
        }
        const int theResult =
            IsOption(theArgument) ? ParseOption(theArgument) : !ParseParameter(theArgument);
        if (theResult != 0) {
            return theResult;
        }
    }
    return CheckOptions() && CheckParameters() ? 0 : 1;
}

int vxCommandLineParserData::ParseOption(const Argument& anArgument) {
    const char* const theText = anArgument.mText + (anArgument.mfQueued ? 0 : 1);
    vxCommandLineOption* theOption = *theText == '-' ? NULL : FindLongestOption(theText);
    if (theOption == NULL) {
        const bool theIsLong = *theText == '-';
        mError = vxCString::Format(
            "Unknown option '%s%s'\n", theIsLong ? "--" : "",
            vxCommandLineOption::GetOptionName(theText + (theIsLong ? 1 : 0)).c_str());
        return 1;
    }
    const char* const theRest = theText + theOption->GetName().length();
    if (theOption->GetKind() == vxCommandLineEntryType_Option) {
        return ParseValue(theOption, theRest) ? 0 : 1;
    }
    if (vxIsNameChar(*theRest)) {
        vxPtrList_Append(mQueue, const_cast<char*>(theRest));
    }
    theOption->SetHasValue();
    return theOption->HasFlag(vxCommandLineFlag_HelpOption) ? -1 : 0;
}

// aText is what stands behind the name of the option.
bool vxCommandLineParserData::ParseValue(vxCommandLineOption* anOption, const char* aText) {
    if (*aText == ':' || *aText == '=') {
        return StoreValue(anOption, aText + 1);
    }
    if (*aText == '\0') {
        Argument theArgument;
        if (Next(theArgument)) {
            return StoreValue(anOption, TextOf(theArgument));
        }
        mError = vxCString::Format("Option '%s' requires a value\n", anOption->GetName().c_str());
        return false;
    }
    if (anOption->HasFlag(vxCommandLineFlag_NeedSeparator)) {
        mError = vxCString::Format("Separator expected after the option '%s'\n",
                                   anOption->GetName().c_str());
        return false;
    }
    return StoreValue(anOption, aText);
}

bool vxCommandLineParserData::StoreValue(vxCommandLineOption* anOption, const char* aValue) {
    if (anOption->GetType() != vxCommandLineParameter_Number) {
        anOption->SetStringValue(aValue);
        return true;
    }
    int32_t theNumber;
    if (vxConvert_strtoint32(aValue, &theNumber) != 0) {
        mError = vxCString::Format("'%s' is not a correct numeric value for option '%s'\n", aValue,
                                   anOption->GetName().c_str());
        return false;
    }
    anOption->SetInt32Value(theNumber);
    return true;
}

bool vxCommandLineParserData::ParseParameter(const Argument& anArgument) {
    const vxCString theText = TextOf(anArgument);
    if (mParameter == NULL) {
        mError = vxCString::Format("Unexpected parameter '%s'\n", theText.c_str());
        return false;
    }
    vxAppendOwned(mParameters, vxStrdup(theText));
    mfIsCollecting = static_cast<vxCommandLineParameter*>(vxPtrListNode_GetPtr(mParameter))
                         ->HasFlag(vxCommandLineFlag_ParameterMultiple);
    VXASSERT_TEXT(!mfIsCollecting || vxPtrListNode_GetNext(mParameter) == NULL,
                  "theCurrentParam == theParamCount - 1");
    if (!mfIsCollecting) {
        mParameter = vxPtrListNode_GetNext(mParameter);
    }
    return true;
}

bool vxCommandLineParserData::CheckOptions() {
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mOptions); i != NULL;
         i = vxPtrListNode_GetNext(i)) {
        const auto* theOption = static_cast<vxCommandLineOption*>(vxPtrListNode_GetPtr(i));
        if (theOption->HasFlag(vxCommandLineFlag_MandatoryOption) && !theOption->HasValue()) {
            mError = vxCString::Format("The value for the option '%s' must be specified\n",
                                       theOption->GetName().c_str());
            return false;
        }
    }
    return true;
}

bool vxCommandLineParserData::CheckParameters() {
    vxPtrListNode* theMissing = mfIsCollecting ? vxPtrListNode_GetNext(mParameter) : mParameter;
    for (vxPtrListNode* i = theMissing; i != NULL; i = vxPtrListNode_GetNext(i)) {
        const auto* theParam = static_cast<vxCommandLineParameter*>(vxPtrListNode_GetPtr(i));
        if (!theParam->HasFlag(vxCommandLineFlag_ParameterOptional)) {
            mError = vxCString::Format("The required parameter '%s' was not specified\n",
                                       theParam->mDescription.c_str());
            return false;
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
    vxPtrList_Clear(mParserData->mQueue);
    vxPtrList_Clear(mParserData->mArguments);
    for (int i = 0; anArgv != NULL && i < anArgc && anArgv[i] != NULL; ++i) {
        vxAppendOwned(mParserData->mArguments, vxStrdup(anArgv[i]));
    }
}

void vxCommandLineParser::SetCommandLine(const vxCString& aCommandLine, bool afHasProgramName) {
    vxCString theLine = aCommandLine;
    if (!afHasProgramName) {
        const vxCString thePath = vxTakeText(vxPath_GetApplicationFullPath());
        theLine = vxCString::Format("\"%s\" %s", thePath.IsEmpty() ? "unknown" : thePath.c_str(),
                                    aCommandLine.c_str());
    }
    vxPtrList_Clear(mParserData->mQueue);
    vxPtrList_Clear(mParserData->mArguments);
    for (const char* i = theLine;;) {
        while (vxIsBlank(*i)) {
            ++i;
        }
        if (*i == '\0') {
            return;
        }
        const char* const theEnd = vxFindArgumentEnd(i);
        vxAppendOwned(mParserData->mArguments, vxCopyArgument(i, theEnd));
        i = theEnd;
    }
}

void vxCommandLineParser::SetDescription(const vxCommandLineDescription* aTable) {
    for (const vxCommandLineDescription* i = aTable;
         i != NULL && i->mKind != vxCommandLineEntryType_None; ++i) {
        switch (i->mKind) {
            case vxCommandLineEntryType_Switch:
                AddSwitch(i->mOptionName, i->mDescription, i->mFlags);
                break;
            case vxCommandLineEntryType_Option:
                AddOption(i->mOptionName, i->mDescription, i->mType, i->mFlags);
                break;
            case vxCommandLineEntryType_Parameter:
                AddParam(i->mDescription, i->mType, i->mFlags);
                break;
            default:
                VXASSERT_TEXT(false, "Unknown command line entry type");
        }
    }
}

void vxCommandLineParser::AddSwitch(const vxCString& aName, const vxCString& aDescription,
                                    int aFlags) {
    AddEntry(vxCommandLineEntryType_Switch, aName, aDescription, vxCommandLineParameter_None,
             aFlags);
}

void vxCommandLineParser::AddOption(const vxCString& aName, const vxCString& aDescription,
                                    vxCommandLineParameterType aType, int aFlags) {
    AddEntry(vxCommandLineEntryType_Option, aName, aDescription, aType, aFlags);
}

void vxCommandLineParser::AddEntry(vxCommandLineEntryType aKind, const vxCString& aName,
                                   const vxCString& aDescription, vxCommandLineParameterType aType,
                                   int aFlags) {
    const bool theIsNew = mParserData->FindOption(aName) == -1;
    VXASSERT_TEXT(theIsNew, "mParserData->FindOption(aName) == -1");
    auto theOption =
        std::make_unique<vxCommandLineOption>(aKind, aName, aDescription, aType, aFlags);
    const bool theIsName =
        !aName.IsEmpty() && vxCommandLineOption::GetOptionName(aName).length() == aName.length();
    if (theIsNew && theIsName && vxPtrList_Append(mParserData->mOptions, theOption.get()) != NULL) {
        mParserData->IndexOption(theOption.release());
    }
}

void vxCommandLineParser::AddParam(const vxCString& aDescription, vxCommandLineParameterType aType,
                                   int aFlags) {
    const vxPtrListNode* theLast = vxPtrList_GetLastNode(mParserData->mParametersDesc);
    if (theLast != NULL) {
        const auto* theParam = static_cast<vxCommandLineParameter*>(vxPtrListNode_GetPtr(theLast));
        VXASSERT(!(theParam->mFlags & vxCommandLineFlag_ParameterMultiple));
        if ((aFlags & vxCommandLineFlag_ParameterOptional) == 0) {
            VXASSERT(!(theParam->mFlags & vxCommandLineFlag_ParameterOptional));
        }
    }
    auto theParam = std::make_unique<vxCommandLineParameter>(
        vxCommandLineParameter{aDescription, aType, aFlags});
    if (vxPtrList_Append(mParserData->mParametersDesc, theParam.get()) != NULL) {
        theParam.release();
    }
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
    const vxCommandLineOption* theOption = mParserData->GetOption(aName);
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Testing presence of an unknown option '%s'\n",
              aName);
    }
    return theOption != NULL && theOption->HasValue();
}

bool vxCommandLineParser::Found(const char* aName, vxCString* aValue) const {
    aValue->clear();
    const vxCommandLineOption* theOption = mParserData->GetOption(aName);
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Getting value of an unknown string option '%s'\n",
              aName);
    }
    if (theOption == NULL || !theOption->HasValue()) {
        return false;
    }
    *aValue = theOption->GetStringValue();
    return true;
}

bool vxCommandLineParser::Found(const char* aName, int* aValue) const {
    *aValue = 0;
    const vxCommandLineOption* theOption = mParserData->GetOption(aName);
    if (theOption == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Getting value of an unknown number option '%s'\n",
              aName);
    }
    if (theOption == NULL || !theOption->HasValue()) {
        return false;
    }
    *aValue = theOption->GetInt32Value();
    return true;
}

unsigned vxCommandLineParser::GetParameterCount() const {
    return static_cast<unsigned>(vxPtrList_GetCount(mParserData->mParameters));
}

vxCString vxCommandLineParser::GetParameter(unsigned anIndex) const {
    VXASSERT(anIndex < GetParameterCount());
    if (anIndex >= GetParameterCount()) {
        return "";
    }
    vxCommandLineParserData& theData = *mParserData;
    const bool theIsNext = theData.mLastParameter != NULL && anIndex == theData.mLastIndex + 1;
    theData.mLastParameter = theIsNext ? vxPtrListNode_GetNext(theData.mLastParameter)
                                       : vxPtrList_GetNodeAt(theData.mParameters, anIndex);
    theData.mLastIndex = anIndex;
    return static_cast<char*>(vxPtrListNode_GetPtr(theData.mLastParameter));
}

void vxCommandLineParser::Reset() {
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mParserData->mOptions); i != NULL;
         i = vxPtrListNode_GetNext(i)) {
        static_cast<vxCommandLineOption*>(vxPtrListNode_GetPtr(i))->Reset();
    }
}

vxCString vxCommandLineParser::GetUsageString() const {
    const vxCString theProgram = vxTakeText(vxPath_GetApplicationName());
    vxCString theUsage = vxCString::Format("Usage: %s", theProgram.c_str());
    size_t theWidth = 0;
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mParserData->mOptions); i != NULL;
         i = vxPtrListNode_GetNext(i)) {
        const auto& theOption = *static_cast<vxCommandLineOption*>(vxPtrListNode_GetPtr(i));
        theUsage += mParserData->OptionUsage(theOption);
        theWidth = std::max(theWidth, mParserData->OptionDetail(theOption).length());
    }
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mParserData->mParametersDesc); i != NULL;
         i = vxPtrListNode_GetNext(i)) {
        theUsage +=
            vxParameterUsage(*static_cast<vxCommandLineParameter*>(vxPtrListNode_GetPtr(i)));
    }
    theUsage += '\n';
    for (vxPtrListNode* i = vxPtrList_GetFirstNode(mParserData->mOptions); i != NULL;
         i = vxPtrListNode_GetNext(i)) {
        const auto& theOption = *static_cast<vxCommandLineOption*>(vxPtrListNode_GetPtr(i));
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
