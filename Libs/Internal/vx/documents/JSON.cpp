// Handles on the nodes of a JSON tree, and paths into it.
//
// The rules of ownership live in destructors and in SetEntry() alone; everything else either gives
// views out or moves a node by clearing its giver. The tree refuses what would break it (a node in
// two places, a tree inside itself), so a handle that is used wrongly cannot do more than report.

#include "vx/JSON.h"

#include <libteskTools/Convert.h>
#include <libvxLog/Assert.h>
#include <libvxLog/Log.h>

#include <cstdlib>
#include <limits>
#include <vector>

#include "vx/StringList.h"
#include "vx/UInt64.h"

namespace {

/// Warnings about documents are for those who ask for more than warnings.
bool vxShowsWarnings() {
    return vxLog_GetLevel(VXLOG_M_JSON) > VXLOGLEVEL_WARNING;
}

vxCString vxAdopt(char* aText) {
    return aText == NULL ? vxCString() : vxCString::FromAllocatedString(aText);
}

template <typename T>
bool vxFetchUInt(const vxJSON_t* aNode, T* aValue) {
    uint64_t theValue = 0;
    if (!vxJSON_CheckUInt(aNode, std::numeric_limits<T>::max(), &theValue)) {
        return false;
    }
    *aValue = static_cast<T>(theValue);
    return true;
}

template <typename T>
bool vxFetchInt(const vxJSON_t* aNode, T* aValue) {
    int64_t theValue = 0;
    if (!vxJSON_CheckInt(aNode, std::numeric_limits<T>::min(), std::numeric_limits<T>::max(),
                         &theValue)) {
        return false;
    }
    *aValue = static_cast<T>(theValue);
    return true;
}

}  // namespace

// ---- vxJSONEntry

vxJSONEntry::~vxJSONEntry() = default;

void vxJSONEntry::SetEntry(vxJSON_t* anEntry, bool afIsOrphan) {
    if (mfIsOrphan && mEntry != anEntry) {
        vxJSON_Delete(mEntry);
    }
    mEntry = anEntry;
    mfIsOrphan = afIsOrphan;
}

bool vxJSONEntry::FetchBool(bool* aValue) const {
    if (!IsBool()) {
        return false;
    }
    *aValue = !IsFalse();
    return true;
}

bool vxJSONEntry::FetchUInt8(uint8_t* aValue) const {
    return vxFetchUInt(mEntry, aValue);
}

bool vxJSONEntry::FetchUInt16(uint16_t* aValue) const {
    return vxFetchUInt(mEntry, aValue);
}

bool vxJSONEntry::FetchUInt32(uint32_t* aValue) const {
    return vxFetchUInt(mEntry, aValue);
}

bool vxJSONEntry::FetchUInt64(uint64_t* aValue) const {
    return vxFetchUInt(mEntry, aValue);
}

bool vxJSONEntry::FetchInt8(int8_t* aValue) const {
    return vxFetchInt(mEntry, aValue);
}

bool vxJSONEntry::FetchInt16(int16_t* aValue) const {
    return vxFetchInt(mEntry, aValue);
}

bool vxJSONEntry::FetchInt32(int32_t* aValue) const {
    return vxFetchInt(mEntry, aValue);
}

bool vxJSONEntry::FetchInt64(int64_t* aValue) const {
    return vxFetchInt(mEntry, aValue);
}

bool vxJSONEntry::FetchDouble(double* aValue) const {
    if (IsNumber()) {
        *aValue = vxJSON_GetValueDouble(mEntry);
    }
    return true;
}

bool vxJSONEntry::FetchString(vxCString& aValue) const {
    if (!IsString()) {
        return false;
    }
    aValue = vxJSON_GetValueString(mEntry);
    return true;
}

bool vxJSONEntry::FetchObject(vxJSONObject& anObject) const {
    if (!IsObject()) {
        return false;
    }
    anObject.SetEntry(mEntry, false);
    return true;
}

bool vxJSONEntry::FetchArray(vxJSONArray& anArray) const {
    if (!IsArray()) {
        return false;
    }
    anArray.SetEntry(mEntry, false);
    return true;
}

bool vxJSONEntry::FetchDocument(vxJSONDocument& aDocument) const {
    if (!IsObject() && !IsArray()) {
        return false;
    }
    const vxCString theText = ToString(false);
    return aDocument.SetDocument(theText.c_str());
}

vxJSONObject vxJSONEntry::AsObject() const {
    vxJSONObject theObject;
    if (!FetchObject(theObject) && vxShowsWarnings()) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "Cannot access a JSONDocument as an object\n");
    }
    return theObject;
}

vxJSONArray vxJSONEntry::AsArray() const {
    vxJSONArray theArray;
    if (!FetchArray(theArray) && vxShowsWarnings()) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "Cannot access a JSONDocument as an array\n");
    }
    return theArray;
}

/// Takes the node over, also where it cannot be set.
void vxJSONEntry::SetMember(const char* aName, vxJSON_t* aNode) {
    VXASSERT(vxJSON_Is(mEntry, kvxJSON_Object));
    if (!IsObject() || aNode == NULL || !vxJSON_ReplaceItemInObject(mEntry, aName, aNode, 1)) {
        vxJSON_Delete(aNode);
    }
}

void vxJSONEntry::SetNull(const char* aName) {
    SetMember(aName, vxJSON_CreateNull());
}

void vxJSONEntry::Set(const char* aName, bool afValue) {
    SetMember(aName, vxJSON_CreateBool(afValue));
}

void vxJSONEntry::Set(const char* aName, const char* aValue) {
    SetMember(aName, vxJSON_CreateString(aValue));
}

void vxJSONEntry::Set(const char* aName, double aValue) {
    SetMember(aName, vxJSON_CreateDouble(aValue));
}

void vxJSONEntry::Set(const char* aName, uint64_t aValue) {
    SetMember(aName, vxJSON_CreateUInt64(aValue));
}

void vxJSONEntry::Set(const char* aName, int64_t aValue) {
    SetMember(aName, vxJSON_CreateInt64(aValue));
}

void vxJSONEntry::Set(const char* aName, const vxJSONEntry& anEntry) {
    SetMember(aName, vxJSON_Clone(anEntry.mEntry));
}

vxJSONEntry vxJSONEntry::operator[](int anIndex) const {
    VXASSERT(anIndex >= 0);
    return vxJSONEntry(anIndex < 0 ? NULL
                                   : vxJSON_GetArrayItem(mEntry, static_cast<uint32_t>(anIndex)));
}

vxJSONEntry vxJSONEntry::operator[](const char* aName) const {
    return vxJSONEntry(vxJSON_GetObjectItem(mEntry, aName));
}

vxCString vxJSONEntry::GetRawValue() const {
    return vxAdopt(vxJSON_GetRawValue(mEntry));
}

void vxJSONEntry::CloneTo(vxJSONEntry& aTarget) const {
    aTarget.SetEntry(vxJSON_Clone(mEntry), true);
}

vxCString vxJSONEntry::ToString(bool afFormatted) const {
    return vxAdopt(ToCharPtr(afFormatted));
}

char* vxJSONEntry::ToCharPtr(bool afFormatted) const {
    return afFormatted ? vxJSON_Print(mEntry) : vxJSON_PrintUnformatted(mEntry);
}

namespace {

const vxJSONMPackDictionary_t* vxWordsOf(const vxRef<vxMPackDictionary>& aDictionary) {
    return aDictionary.IsNull() ? NULL : aDictionary->GetJSONMPackDictionary();
}

}  // namespace

uint8_t* vxJSONEntry::ToMPackBuffer(uint32_t* aSize,
                                    const vxRef<vxMPackDictionary>& aDictionary) const {
    return vxJSON_ToMPack(mEntry, aSize, vxWordsOf(aDictionary));
}

bool vxJSONEntry::FromMPackBuffer(const uint8_t* aBuffer,
                                  const vxRef<vxMPackDictionary>& aDictionary) {
    vxJSON_t* theTree = vxJSON_FromMPack(aBuffer, vxWordsOf(aDictionary));
    SetEntry(theTree, true);
    return theTree != NULL;
}

// ---- vxJSONPair

vxJSONPair::vxJSONPair(const char* aName, vxJSON_t* aNode) {
    mEntry = aNode;
    mfIsOrphan = true;
    if (mEntry != NULL) {
        vxJSON_SetName(mEntry, aName);
    }
}

vxJSONPair::vxJSONPair(const char* aName) : vxJSONPair(aName, vxJSON_CreateNull()) {}

vxJSONPair::vxJSONPair(const char* aName, bool afValue)
    : vxJSONPair(aName, vxJSON_CreateBool(afValue)) {}

vxJSONPair::vxJSONPair(const char* aName, uint32_t aValue)
    : vxJSONPair(aName, vxJSON_CreateUInt64(aValue)) {}

vxJSONPair::vxJSONPair(const char* aName, uint64_t aValue)
    : vxJSONPair(aName, vxJSON_CreateUInt64(aValue)) {}

vxJSONPair::vxJSONPair(const char* aName, int32_t aValue)
    : vxJSONPair(aName, vxJSON_CreateInt64(aValue)) {}

vxJSONPair::vxJSONPair(const char* aName, double aValue)
    : vxJSONPair(aName, vxJSON_CreateDouble(aValue)) {}

vxJSONPair::vxJSONPair(const char* aName, const char* aValue)
    : vxJSONPair(aName, vxJSON_CreateString(aValue)) {}

vxJSONPair::vxJSONPair(const char* aName, vxJSONObject& anObject)
    : vxJSONPair(aName, anObject.mEntry) {
    VXASSERT(anObject.mEntry != NULL);
    anObject.mEntry = NULL;
}

vxJSONPair::vxJSONPair(const char* aName, vxJSONArray& anArray)
    : vxJSONPair(aName, anArray.mEntry) {
    VXASSERT(anArray.mEntry != NULL);
    anArray.mEntry = NULL;
}

vxJSONPair::vxJSONPair(const char* aName, const vxJSONDocument& aDocument)
    : vxJSONPair(aName, vxJSON_Clone(aDocument.mEntry)) {
    VXASSERT(aDocument.mEntry != NULL);
}

vxJSONPair::vxJSONPair(vxJSONPair& aPair) noexcept : vxJSONEntry(aPair) {
    aPair.mEntry = NULL;
}

// A copy moves the node already.
// NOLINTNEXTLINE(performance-move-constructor-init,cert-oop11-cpp)
vxJSONPair::vxJSONPair(vxJSONPair&& aPair) noexcept : vxJSONPair(aPair) {}

vxJSONPair::~vxJSONPair() {
    vxJSON_Delete(mEntry);
    mEntry = NULL;
}

// ---- vxJSONObject

vxJSONObject::~vxJSONObject() {
    SetEntry(NULL, false);
}

void vxJSONObject::CreateIfNone() {
    if (mEntry == NULL) {
        SetEntry(vxJSON_CreateObject(), true);
    } else {
        VXASSERT(vxJSON_Is(mEntry, kvxJSON_Object));
    }
}

void vxJSONObject::CreateEmpty() {
    SetEntry(NULL, false);
    CreateIfNone();
}

/// Creates the object if there is none; false if there is something else.
bool vxJSONObject::IsReady() {
    CreateIfNone();
    return IsObject();
}

bool vxJSONObject::Remove(const char* aName) {
    vxJSON_t* theNode = vxJSON_DetachItemFromObject(mEntry, aName);
    vxJSON_Delete(theNode);
    return theNode != NULL;
}

bool vxJSONObject::Move(const char* aName, const vxJSONObject& aTarget) {
    VXASSERT(vxJSON_Is(aTarget.mEntry, kvxJSON_Object));
    vxJSON_t* theNode = aTarget.IsObject() ? vxJSON_DetachItemFromObject(mEntry, aName) : NULL;
    if (theNode == NULL) {
        return false;
    }
    if (vxJSON_AddItemToObject(aTarget.mEntry, vxJSON_GetName(theNode), theNode)) {
        return true;
    }
    // The target stands inside the member: that stays here.
    vxJSON_AddItemToObject(mEntry, vxJSON_GetName(theNode), theNode);
    return false;
}

bool vxJSONObject::Take(const char* aName, vxJSONEntry& anEntry) {
    vxJSON_t* theNode = vxJSON_DetachItemFromObject(mEntry, aName);
    if (theNode == NULL) {
        return false;
    }
    anEntry.SetEntry(theNode, true);
    return true;
}

void vxJSONObject::Add(vxJSONPair aPair, bool afReplace) {
    if (!IsReady() || !aPair.IsValid()) {
        return;
    }
    const char* theName = vxJSON_GetName(aPair.mEntry);
    const int theResult = afReplace ? vxJSON_ReplaceItemInObject(mEntry, theName, aPair.mEntry, 1)
                                    : vxJSON_AddItemToObject(mEntry, theName, aPair.mEntry);
    if (theResult != 0) {
        aPair.mEntry = NULL;
    }
}

vxJSON_t* vxJSONObject::AddContainer(const char* aName, vxJSON_t* (*aCreate)()) {
    if (!IsReady()) {
        return NULL;
    }
    vxJSON_t* theNode = vxJSON_GetObjectItem(mEntry, aName);
    if (theNode == NULL) {
        theNode = aCreate();
        vxJSON_AddItemToObject(mEntry, aName, theNode);
    }
    return theNode;
}

vxJSONObject vxJSONObject::AddObject(const char* aName) {
    return vxJSONObject(AddContainer(aName, vxJSON_CreateObject));
}

vxJSONArray vxJSONObject::AddArray(const char* aName) {
    return vxJSONArray(AddContainer(aName, vxJSON_CreateArray));
}

vxJSON_t* vxJSONObject::AddRaw(const char* aName, const char* aText, unsigned aKind) {
    vxJSONDocument theDocument(aText);
    if (!vxJSON_Is(theDocument.mEntry, aKind) || !IsReady()) {
        return NULL;
    }
    // The name may be that of a member which goes.
    const vxCString theName(aName);
    while (Remove(theName.c_str())) {}
    vxJSON_t* theNode = theDocument.mEntry;
    theDocument.mEntry = NULL;
    vxJSON_AddItemToObject(mEntry, theName.c_str(), theNode);
    return theNode;
}

vxJSONObject vxJSONObject::AddRawJSONObject(const char* aName, const char* aText) {
    return vxJSONObject(AddRaw(aName, aText, kvxJSON_Object));
}

vxJSONArray vxJSONObject::AddRawJSONArray(const char* aName, const char* aText) {
    return vxJSONArray(AddRaw(aName, aText, kvxJSON_Array));
}

// ---- vxJSONArray

vxJSONArray::~vxJSONArray() {
    SetEntry(NULL, false);
}

void vxJSONArray::CreateIfNone() {
    if (mEntry == NULL) {
        SetEntry(vxJSON_CreateArray(), true);
    } else {
        VXASSERT(vxJSON_Is(mEntry, kvxJSON_Array));
    }
}

void vxJSONArray::CreateEmpty() {
    SetEntry(NULL, false);
    CreateIfNone();
}

bool vxJSONArray::Remove(uint32_t anIndex) {
    vxJSON_t* theNode = IsArray() ? vxJSON_DetachItemFromArray(mEntry, anIndex) : NULL;
    vxJSON_Delete(theNode);
    return theNode != NULL;
}

/// Takes the node over if the result is true.
bool vxJSONArray::InsertNode(vxJSON_t* aNode, uint32_t aPosition) {
    CreateIfNone();
    return IsArray() && aNode != NULL && vxJSON_InsertItemInArray(mEntry, aPosition, aNode) != 0;
}

namespace {

/// Frees a node that was not taken.
vxJSON_t* vxTaken(bool afTaken, vxJSON_t* aNode) {
    if (!afTaken) {
        vxJSON_Delete(aNode);
    }
    return afTaken ? aNode : NULL;
}

}  // namespace

void vxJSONArray::Insert(bool afValue, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateBool(afValue);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

void vxJSONArray::Insert(double aValue, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateDouble(aValue);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

void vxJSONArray::Insert(uint64_t aValue, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateUInt64(aValue);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

void vxJSONArray::Insert(int64_t aValue, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateInt64(aValue);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

void vxJSONArray::Insert(const char* aValue, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateString(aValue);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

void vxJSONArray::InsertNull(uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateNull();
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

vxJSONObject vxJSONArray::InsertObject(uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateObject();
    return vxJSONObject(vxTaken(InsertNode(theNode, aPosition), theNode));
}

vxJSONArray vxJSONArray::InsertArray(uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_CreateArray();
    return vxJSONArray(vxTaken(InsertNode(theNode, aPosition), theNode));
}

void vxJSONArray::Insert(vxJSONEntry& anEntry, uint32_t aPosition) {
    if (InsertNode(anEntry.mEntry, aPosition)) {
        anEntry.mEntry = NULL;
    }
}

void vxJSONArray::InsertCopy(const vxJSONEntry& anEntry, uint32_t aPosition) {
    vxJSON_t* theNode = vxJSON_Clone(anEntry.mEntry);
    vxTaken(InsertNode(theNode, aPosition), theNode);
}

namespace {

uint32_t vxFollowing(uint32_t aPosition) {
    return aPosition == kvxJSON_Append ? kvxJSON_Append : aPosition + 1;
}

vxCSVStringList vxSplit(const char* aText) {
    return vxCSVStringList(aText, '\\');
}

}  // namespace

void vxJSONArray::InsertCSVStringList(const char* aText, uint32_t aPosition) {
    const vxCSVStringList theList = vxSplit(aText);
    CreateIfNone();
    for (size_t i = 0; i < theList.GetCount() && IsArray(); ++i) {
        Insert(theList.GetAt(i), aPosition);
        aPosition = vxFollowing(aPosition);
    }
}

void vxJSONArray::InsertCSVInt32List(const char* aText, uint32_t aPosition) {
    const vxCSVStringList theList = vxSplit(aText);
    CreateIfNone();
    for (size_t i = 0; i < theList.GetCount() && IsArray(); ++i) {
        bool fNumber = false;
        const int64_t theValue = theList.GetAtInt32(i, 0, &fNumber);
        if (fNumber) {
            Insert(theValue, aPosition);
            aPosition = vxFollowing(aPosition);
        }
    }
}

// ---- vxJSONDocument

vxJSONDocument::vxJSONDocument(int aDocumentRoot) {
    mfIsOrphan = true;
    SetRoot(aDocumentRoot);
}

vxJSONDocument::vxJSONDocument(const char* aText) {
    mfIsOrphan = true;
    const char* thePosition = "";
    mEntry = vxJSON_Parse(aText, &thePosition);
    if (mEntry == NULL && vxShowsWarnings()) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_JSON,
              "JSON parsing error at '%s' in vxJSONDocument::vxJSONDocument\n", thePosition);
    }
}

// The base is not copied: its node belongs to the other document.
// NOLINTNEXTLINE(bugprone-copy-constructor-init,readability-redundant-member-init)
vxJSONDocument::vxJSONDocument(const vxJSONDocument& aDocument) : vxJSONEntry() {
    vxJSONDocument::SetEntry(vxJSON_Clone(aDocument.mEntry));
}

vxJSONDocument::~vxJSONDocument() {
    VXASSERT(mfIsOrphan);
    vxJSON_Delete(mEntry);
    mEntry = NULL;
}

void vxJSONDocument::SetEntry(vxJSON_t* anEntry) {
    VXASSERT(mfIsOrphan);
    VXASSERT((mEntry != anEntry) || (mEntry == NULL));
    if (mEntry != anEntry) {
        vxJSON_Delete(mEntry);
        mEntry = anEntry;
    }
}

void vxJSONDocument::SetRoot(int aDocumentRoot) {
    VXASSERT((aDocumentRoot == kvxJSONDocumentRoot_Object) ||
             (aDocumentRoot == kvxJSONDocumentRoot_Array) ||
             (aDocumentRoot == kvxJSONDocumentRoot_None));
    VXASSERT(mfIsOrphan);
    vxJSON_Delete(mEntry);
    mEntry = NULL;
    if (aDocumentRoot == kvxJSONDocumentRoot_Object) {
        mEntry = vxJSON_CreateObject();
    } else if (aDocumentRoot == kvxJSONDocumentRoot_Array) {
        mEntry = vxJSON_CreateArray();
    }
}

bool vxJSONDocument::SetDocument(const char* aText) {
    VXASSERT(mfIsOrphan);
    const char* thePosition = "";
    vxJSON_t* theTree = vxJSON_Parse(aText, &thePosition);
    if (theTree == NULL && vxShowsWarnings()) {
        VXLOG(VXLOGLEVEL_WARNING, VXLOG_M_JSON, "JSON parsing error '%s' in vxJSONDocument::Set\n",
              thePosition);
    }
    vxJSON_Delete(mEntry);
    mEntry = theTree;
    return theTree != NULL;
}

void vxJSONDocument::CloneTo(vxJSONDocument& aDocument) const {
    aDocument.SetEntry(vxJSON_Clone(mEntry));
}

// ---- vxMPackDictionary

vxMPackDictionary::vxMPackDictionary(const char** aWords)
    : mDictionary(vxJSONMPackDictionary_New()) {
    for (; aWords != NULL && *aWords != NULL; ++aWords) {
        vxJSONMPackDictionary_AddString(mDictionary, *aWords);
    }
}

vxMPackDictionary::~vxMPackDictionary() {
    vxJSONMPackDictionary_Delete(mDictionary);
}

// ---- vxJSONPath

namespace {

/// One part of a path.
struct vxPathPart {
    int mKind;        // kvxJSONPathKind_*
    char* mName;      // ends with NUL
    char* mNext;      // start of the next part
    uint32_t mIndex;  // behind the name
    bool mfLast;      // a name that ends the path
    bool mfEnd;       // an index that ends the path
};

/// Ends the index at the closing bracket and finds the start of the next part.
void vxEndIndex(vxPathPart& aPart, const char* anIndex, char* aBracket) {
    *aBracket = '\0';
    if (vxConvert_strtouint32_base(anIndex, &aPart.mIndex, 0) != 0) {
        return;
    }
    aPart.mKind = kvxJSONPathKind_Array;
    aPart.mNext = aBracket + 1;
    aPart.mfEnd = *aPart.mNext == '\0';
    // Whatever stands between the bracket and the next name counts as the dot.
    aPart.mNext += aPart.mfEnd ? 0 : 1;
}

/// Takes the next part off a path, ending its name in place.
vxPathPart vxScanPart(char* aPath) {
    vxPathPart thePart = {kvxJSONPathKind_Invalid, aPath, NULL, 0, false, false};
    int theState = kvxJSONPathParsing_Object;
    const char* theIndex = NULL;
    for (char* p = aPath; *p != '\0'; ++p) {
        if (theState == kvxJSONPathParsing_Index) {
            if (*p == ']') {
                vxEndIndex(thePart, theIndex, p);
                return thePart;
            }
        } else if (*p == '.') {
            *p = '\0';
            thePart.mKind = kvxJSONPathKind_Object;
            thePart.mNext = p + 1;
            return thePart;
        } else if (*p == '[') {
            *p = '\0';
            theIndex = p + 1;
            theState = kvxJSONPathParsing_Index;
        }
    }
    if (theState == kvxJSONPathParsing_Object) {
        thePart.mKind = kvxJSONPathKind_Object;
        thePart.mfLast = true;
    }
    return thePart;
}

/// The walk along a path, for reading and for writing.
class vxPathWalk {
public:
    vxPathWalk(const vxJSONEntry& anEntry, bool afWrite, bool afCreate)
        : mfRoot(anEntry.IsRoot()),
          mfWrite(afWrite),
          mfCreate(afCreate),
          mCurrent(anEntry.mEntry),
          mfAtCount(false),
          mfAppend(false),
          mfElement(false),
          mIndex(0) {}

    /// Goes to where the addressed node is, or is to be put.
    bool Walk(const char* aPath) {
        if (aPath == NULL) {
            return false;
        }
        std::vector<char> theCopy(aPath, aPath + strlen(aPath) + 1);
        vxPathPart thePart = vxScanPart(theCopy.data());
        while (!thePart.mfLast) {
            if (!Step(thePart)) {
                return false;
            }
            thePart = vxScanPart(thePart.mNext);
        }
        return Finish(thePart.mName);
    }

    /// The node that a reading walk found.
    vxJSON_t* Found() const {
        const vxCString& theName = mLastName;
        if (mfElement) {
            VXASSERT(theName.IsEmpty());
            return mCurrent;
        }
        VXASSERT(!theName.IsEmpty());
        return vxJSON_GetObjectItem(mCurrent, theName.c_str());
    }

    /// Puts a node where a writing walk ended; takes it over if the result is true.
    bool Put(vxJSON_t* aNode, bool afElements) const {
        if (mfAppend) {
            return vxJSON_InsertItemInArray(mCurrent, kvxJSON_Append, aNode) != 0;
        }
        if (mfElement) {
            return afElements && vxJSON_ReplaceItemInArray(mCurrent, mIndex, aNode) != 0;
        }
        return vxJSON_ReplaceItemInObject(mCurrent, mLastName.c_str(), aNode, 1) != 0;
    }

private:
    bool Step(const vxPathPart& aPart) {
        if (aPart.mKind == kvxJSONPathKind_Object) {
            return strcmp(aPart.mName, "$") == 0 ? mfRoot : StepToMember(aPart.mName);
        }
        return aPart.mKind == kvxJSONPathKind_Array && StepToItem(aPart);
    }

    /// Goes to a member, which is created first if that is wanted.
    bool Descend(const char* aName, vxJSON_t* (*aCreate)()) {
        if (!vxJSON_Is(mCurrent, kvxJSON_Object)) {
            return false;
        }
        vxJSON_t* theMember = vxJSON_GetObjectItem(mCurrent, aName);
        if (theMember == NULL && mfCreate) {
            theMember = aCreate();
            vxJSON_AddItemToObject(mCurrent, aName, theMember);
        }
        if (theMember == NULL) {
            return false;
        }
        mCurrent = theMember;
        return true;
    }

    bool StepToMember(const char* aName) { return Descend(aName, vxJSON_CreateObject); }

    bool StepToItem(const vxPathPart& aPart) {
        if (!Descend(aPart.mName, vxJSON_CreateArray) || !vxJSON_Is(mCurrent, kvxJSON_Array)) {
            return false;
        }
        mfElement = aPart.mfEnd;
        mIndex = aPart.mIndex;
        const uint32_t theCount = vxJSON_GetArraySize(mCurrent);
        if (mIndex < theCount) {
            // A write replaces the item, so it stays at the array.
            if (!mfWrite || !aPart.mfEnd) {
                mCurrent = vxJSON_GetArrayItem(mCurrent, mIndex);
            }
            return true;
        }
        mfAtCount = mfCreate && mIndex == theCount;
        return mfAtCount;
    }

    /// Settles what the last name means.
    bool Finish(const char* aName) {
        mLastName = aName;
        if (mfAtCount) {
            mfAppend = mfElement || mLastName.IsEmpty();
            return mfAppend || (AppendObject() && CanHoldLast());
        }
        if (mfElement) {
            return mCurrent != NULL;
        }
        return !mLastName.IsEmpty() && CanHoldLast();
    }

    /// The path goes on behind the end of the array: in a new object there.
    bool AppendObject() {
        vxJSON_t* theObject = vxJSON_CreateObject();
        if (!vxJSON_InsertItemInArray(mCurrent, kvxJSON_Append, theObject)) {
            vxJSON_Delete(theObject);
            return false;
        }
        mCurrent = theObject;
        return true;
    }

    bool CanHoldLast() const {
        return vxJSON_Is(mCurrent, kvxJSON_Object) &&
               (mfCreate || vxJSON_ContainsItem(mCurrent, mLastName.c_str()));
    }

    bool mfRoot;  // the start is a document
    bool mfWrite;
    bool mfCreate;
    vxJSON_t* mCurrent;  // at the end, where the last name or the index applies
    vxCString mLastName;
    bool mfAtCount;  // the last index is the array's count
    bool mfAppend;   // the value goes to the end of the array
    bool mfElement;  // the path ends with an index
    uint32_t mIndex;
};

/// Writes a node, which is freed where it cannot be.
bool vxWriteNode(const vxJSONEntry& anEntry, const char* aPath, vxJSON_t* aNode, bool afCreate,
                 bool afElements = true) {
    vxPathWalk theWalk(anEntry, true, afCreate);
    return vxTaken(aNode != NULL && theWalk.Walk(aPath) && theWalk.Put(aNode, afElements), aNode) !=
           NULL;
}

/// Fetches a path and reads the entry with one of its typed reads.
template <typename T, typename Target>
bool vxFetch(const vxJSONEntry& anEntry, const char* aPath, bool (vxJSONEntry::*aRead)(T) const,
             Target&& aTarget) {
    vxJSONEntry theEntry;
    return vxJSONPath::FetchEntry(anEntry, aPath, theEntry) &&
           (theEntry.*aRead)(std::forward<Target>(aTarget));
}

/// A text that is no number gives whatever default is asked for.
bool vxReadNumber(const char* aText, uint64_t& aValue) {
    aValue = vxuint64::FromString(aText, 0).ToUInt64();
    return aValue != 0 || vxuint64::FromString(aText, 1).ToUInt64() == 0;
}

bool vxReadBool(const vxCString& aText, bool& afValue) {
    afValue = aText.CompareNoCase("true") == 0 || aText == "1";
    return afValue || aText.CompareNoCase("false") == 0 || aText == "0";
}

}  // namespace

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, uint64_t aValue,
                     bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateUInt64(aValue), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, int64_t aValue, bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateInt64(aValue), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, double aValue, bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateDouble(aValue), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, bool afValue, bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateBool(afValue), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, const char* aValue,
                     bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateString(aValue), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, const vxJSONEntry& aValue,
                     bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_Clone(aValue.mEntry), afCreate);
}

bool vxJSONPath::Set(const vxJSONEntry& anEntry, const char* aPath, const vxCSVStringList& aList,
                     bool afCreate) {
    vxJSON_t* theArray = vxJSON_CreateArray();
    for (size_t i = 0; i < aList.GetCount(); ++i) {
        vxJSON_InsertItemInArray(theArray, kvxJSON_Append, vxJSON_CreateString(aList.GetAt(i)));
    }
    return vxWriteNode(anEntry, aPath, theArray, afCreate, false);
}

bool vxJSONPath::SetNull(const vxJSONEntry& anEntry, const char* aPath, bool afCreate) {
    return vxWriteNode(anEntry, aPath, vxJSON_CreateNull(), afCreate);
}

bool vxJSONPath::Update(const vxJSONEntry& anEntry, const char* aPath, const char* aText) {
    vxJSONEntry theMember;
    if (aText == NULL || !FetchEntry(anEntry, aPath, theMember)) {
        return false;
    }
    if (theMember.IsNumber()) {
        uint64_t theValue = 0;
        return vxReadNumber(aText, theValue) && Set(anEntry, aPath, theValue, true);
    }
    if (theMember.IsBool()) {
        bool fValue = false;
        return vxReadBool(aText, fValue) && Set(anEntry, aPath, fValue, true);
    }
    return theMember.IsString() && Set(anEntry, aPath, aText, true);
}

bool vxJSONPath::FetchEntry(const vxJSONEntry& anEntry, const char* aPath, vxJSONEntry& aResult) {
    vxPathWalk theWalk(anEntry, false, false);
    if (!theWalk.Walk(aPath)) {
        return false;
    }
    vxJSON_t* theNode = theWalk.Found();
    if (theNode == NULL) {
        return false;
    }
    aResult.SetEntry(theNode, false);
    return true;
}

bool vxJSONPath::FetchObject(const vxJSONEntry& anEntry, const char* aPath, vxJSONObject& aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchObject, aResult);
}

bool vxJSONPath::FetchArray(const vxJSONEntry& anEntry, const char* aPath, vxJSONArray& aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchArray, aResult);
}

bool vxJSONPath::FetchString(const vxJSONEntry& anEntry, const char* aPath, vxCString& aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchString, aResult);
}

bool vxJSONPath::FetchBool(const vxJSONEntry& anEntry, const char* aPath, bool* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchBool, aResult);
}

bool vxJSONPath::FetchUInt64(const vxJSONEntry& anEntry, const char* aPath, uint64_t* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchUInt64, aResult);
}

bool vxJSONPath::FetchInt64(const vxJSONEntry& anEntry, const char* aPath, int64_t* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchInt64, aResult);
}

bool vxJSONPath::FetchUInt32(const vxJSONEntry& anEntry, const char* aPath, uint32_t* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchUInt32, aResult);
}

bool vxJSONPath::FetchDouble(const vxJSONEntry& anEntry, const char* aPath, double* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchDouble, aResult);
}

bool vxJSONPath::FetchUInt16(const vxJSONEntry& anEntry, const char* aPath, uint16_t* aResult) {
    return vxFetch(anEntry, aPath, &vxJSONEntry::FetchUInt16, aResult);
}

bool vxJSONPath::FetchDiff(const vxJSONEntry& anOld, const vxJSONEntry& aNew, const char* aPath,
                           vxJSONEntry& aDiff, bool afForce) {
    vxJSONEntry theOld;
    vxJSONEntry theNew;
    const bool fOld = FetchEntry(anOld, aPath, theOld);
    const bool fNew = FetchEntry(aNew, aPath, theNew);
    if ((!fOld && !fNew) || (!afForce && theOld.SameAs(theNew))) {
        return false;
    }
    if (fNew) {
        Set(aDiff, aPath, theNew, true);
        return true;
    }
    vxJSONEntry theMarker;
    theOld.CloneTo(theMarker);
    theMarker.Reset();
    Set(aDiff, aPath, theMarker, true);
    vxJSON_Delete(theMarker.mEntry);
    return true;
}

bool vxJSONPath::FetchDiff(const vxJSONEntry& anOld, const vxJSONEntry& aNew,
                           const vxCSVStringList& aPaths, vxJSONEntry& aDiff, bool afForce) {
    bool fDiffers = false;
    for (size_t i = 0; i < aPaths.GetCount(); ++i) {
        fDiffers = FetchDiff(anOld, aNew, aPaths.GetAt(i), aDiff, afForce) || fDiffers;
    }
    return fDiffers;
}
