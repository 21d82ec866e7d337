// A tree of nodes in two kinds of singly linked lists, children and attributes.
//
// No operation recurses: a walk goes to the first child, else to the next sibling, else up to an
// ancestor that has one. So the depth of a tree, which outside text decides, costs no stack.

#include "vx/XML.h"

#include "Bytes.h"
#include "XMLCells.h"

#include <libvxLog/Assert.h>

#include <cstring>

#include "vx/File.h"
#include "vx/GrowingBuffer.h"

namespace {

// Walks

/// Returns the node behind a subtree in writing order, or null when `aTop` is left.
const vxXMLNode* vxAfterSubtree(const vxXMLNode* aNode, const vxXMLNode* aTop) {
    while (aNode != aTop && aNode->GetNext() == NULL) {
        aNode = aNode->GetParent();
    }
    return aNode == aTop ? NULL : aNode->GetNext();
}

bool vxEqualNoCase(const vxCString& aText, const char* aWord) {
    return aText.CompareNoCase(aWord) == 0;
}

bool vxIsOneOf(const vxCString& aText, const char* const* aWords, size_t aCount) {
    for (size_t i = 0; i < aCount; ++i) {
        if (vxEqualNoCase(aText, aWords[i])) {
            return true;
        }
    }
    return false;
}

// Writing

/// Collects pieces in one block; cannot fail.
class vxBufferSink {
public:
    vxBufferSink() : mBuffer(0) {}

    bool Write(const char* aText, size_t aLength) {
        mBuffer.Append(aText, aLength);
        return true;
    }

    bool WriteName(const vxCString& aName) {
        mBuffer.Append(" ", 1);
        mBuffer.Append(aName.c_str(), aName.length());
        mBuffer.Append("=\"", 2);
        return true;
    }

    bool WriteIndentation(size_t aLevel) {
        mBuffer.Append("\n", 1);
        for (size_t i = 0; i < aLevel; ++i) {
            mBuffer.Append("  ", 2);
        }
        return true;
    }

    const vxGrowingBuffer& Buffer() const { return mBuffer; }

private:
    vxGrowingBuffer mBuffer;
};

/// Hands every piece to the caller's function.
class vxFunctionSink {
public:
    vxFunctionSink(vxXMLOutput anOutput, void* aContext) : mOutput(anOutput), mContext(aContext) {}

    bool Write(const char* aText, size_t aLength) {
        return mOutput(mContext, vxCString(aText, aLength));
    }

    /// One piece: a blank, the name of an attribute, and what stands in front of its value.
    bool WriteName(const vxCString& aName) {
        vxCString thePiece = " ";
        thePiece += aName;
        thePiece += "=\"";
        return mOutput(mContext, thePiece);
    }

    /// One piece: a line end and two blanks for every level.
    bool WriteIndentation(size_t aLevel) {
        vxCString thePiece = "\n";
        thePiece.Pad(2 * aLevel, ' ', true);
        return mOutput(mContext, thePiece);
    }

private:
    vxXMLOutput mOutput;
    void* mContext;
};

/// The entity that stands for a byte, or null for a byte that stands for itself.
const char* vxEntityOf(const char* aText, const char* anEnd, bool afEscapeQuotes) {
    switch (*aText) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return afEscapeQuotes ? "&quot;" : NULL;
        case '&':
            return anEnd - aText >= 5 && memcmp(aText, "&amp;", 5) == 0 ? NULL : "&amp;";
        default:
            return NULL;
    }
}

/// Passes over bytes that stand for themselves.
const char* vxSkipPlain(const char* aText, const char* anEnd) {
    return vxFindAnyOf(aText, anEnd, '<', '>', '"', '&');
}

template <typename Sink>
class vxXMLWriter {
public:
    explicit vxXMLWriter(Sink& aSink) : mSink(aSink) {}

    bool WriteTree(const vxXMLNode& aTop) {
        const vxXMLNode* theNode = &aTop;
        size_t theLevel = 0;
        for (;;) {
            if (!Open(*theNode)) {
                return false;
            }
            if (HasWrittenChildren(*theNode)) {
                theNode = theNode->GetChildren();
                ++theLevel;
            } else {
                theNode = LeaveAll(theNode, &aTop, &theLevel);
                if (theNode == NULL) {
                    return mfGood;
                }
            }
            if (theNode->GetType() != vxXMLNodeType_Text && !mSink.WriteIndentation(theLevel)) {
                return false;
            }
        }
    }

private:
    static bool HasWrittenChildren(const vxXMLNode& aNode) {
        return aNode.GetType() == vxXMLNodeType_Element && aNode.GetChildren() != NULL;
    }

    bool Text(const char* aText) { return mSink.Write(aText, strlen(aText)); }
    bool Text(const vxCString& aText) { return mSink.Write(aText.c_str(), aText.length()); }

    bool Escaped(const vxCString& aText, bool afEscapeQuotes) {
        const char* theRun = aText.c_str();
        const char* const theEnd = theRun + aText.length();
        const char* thePos = vxSkipPlain(theRun, theEnd);
        while (thePos != theEnd) {
            const char* theEntity = vxEntityOf(thePos, theEnd, afEscapeQuotes);
            if (theEntity != NULL) {
                if (!Run(theRun, thePos) || !Text(theEntity)) {
                    return false;
                }
                theRun = thePos + 1;
            }
            thePos = vxSkipPlain(thePos + 1, theEnd);
        }
        return Run(theRun, theEnd);
    }

    bool Run(const char* aStart, const char* anEnd) {
        return aStart == anEnd || mSink.Write(aStart, static_cast<size_t>(anEnd - aStart));
    }

    bool Attributes(const vxXMLNode& aNode) {
        for (const vxXMLProperty* i = aNode.GetProperties(); i != NULL; i = i->GetNext()) {
            if (!mSink.WriteName(i->GetName()) || !Escaped(i->GetValue(), true) || !Text("\"")) {
                return false;
            }
        }
        return true;
    }

    /// Writes a node up to where its children stand, or wholly when it has none.
    bool Open(const vxXMLNode& aNode) {
        switch (aNode.GetType()) {
            case vxXMLNodeType_Text:
                return Escaped(aNode.GetContent(), false);
            case vxXMLNodeType_Comment:
                return Text("<!--") && Text(aNode.GetContent()) && Text("-->");
            case vxXMLNodeType_Element:
                return Text("<") && Text(aNode.GetName()) && Attributes(aNode) &&
                       OpenContent(aNode);
            default:
                VXASSERT_TEXT(false, "Unsupported node type");
                return true;
        }
    }

    bool OpenContent(const vxXMLNode& aNode) {
        if (aNode.GetChildren() != NULL) {
            return Text(">");
        }
        if (!aNode.GetContent().IsEmpty()) {
            return Text(">") && Text(aNode.GetContent()) && Close(aNode);
        }
        return Text("/>");
    }

    bool Close(const vxXMLNode& aNode) { return Text("</") && Text(aNode.GetName()) && Text(">"); }

    /// Closes what ends with `aNode` and returns the node that comes next, or null at the end.
    const vxXMLNode* LeaveAll(const vxXMLNode* aNode, const vxXMLNode* aTop, size_t* aLevel) {
        while (aNode != aTop && aNode->GetNext() == NULL) {
            --*aLevel;
            const bool theInline = aNode->GetType() == vxXMLNodeType_Text;
            aNode = aNode->GetParent();
            if ((!theInline && !mSink.WriteIndentation(*aLevel)) || !Close(*aNode)) {
                mfGood = false;
                return NULL;
            }
        }
        return aNode == aTop ? NULL : aNode->GetNext();
    }

    Sink& mSink;
    bool mfGood = true;
};

template <typename Sink>
bool vxWriteNode(const vxXMLNode& aNode, Sink& aSink) {
    vxXMLWriter<Sink> theWriter(aSink);
    return theWriter.WriteTree(aNode) && aSink.Write("\n", 1);
}

constexpr size_t kvxXML_FirstSlab = 256;  // bytes; a copy may be of one node

constexpr const char* kvxXML_TrueWords[] = {"1", "true", "yes"};
constexpr const char* kvxXML_FalseWords[] = {"0", "false", "no", ""};

}  // namespace

// Not inline: the compiler shall see them as the match of the delete that knows cells.
__attribute__((noinline)) void* vxXMLMemory::operator new(size_t aSize) {
    return ::operator new(aSize);
}

__attribute__((noinline)) void* vxXMLMemory::operator new(size_t aSize,
                                                          const std::nothrow_t& aTag) noexcept {
    return ::operator new(aSize, aTag);
}

void vxXMLMemory::operator delete(void* anObject) {
    vxXMLFreeing().Free(anObject);
}

// vxXMLNode

vxXMLNode::vxXMLNode()
    : mType(vxXMLNodeType_Unknown),
      mProperties(NULL),
      mParent(NULL),
      mChildren(NULL),
      mNext(NULL),
      mUserData(NULL) {}

vxXMLNode::vxXMLNode(vxXMLNodeType aType, const vxCString& aName, const vxCString& aContent)
    : mType(aType),
      mName(aName),
      mContent(aContent),
      mProperties(NULL),
      mParent(NULL),
      mChildren(NULL),
      mNext(NULL),
      mUserData(NULL) {}

vxXMLNode::vxXMLNode(vxXMLNode* aParent, vxXMLNodeType aType, const vxCString& aName,
                     const vxCString& aContent, vxXMLProperty* aProperties, vxXMLNode* aNext)
    : vxXMLNode(aType, aName, aContent) {
    mProperties = aProperties;
    mNext = aNext;
    if (aParent == NULL) {
        return;
    }
    mParent = aParent;
    vxXMLNode** theLink = &mNext;
    if (aNext != NULL && aNext->mParent == aParent) {
        mNext = NULL;
    }
    while (*theLink != NULL) {
        (*theLink)->mParent = aParent;
        theLink = &(*theLink)->mNext;
    }
    *theLink = aParent->mChildren;
    aParent->mChildren = this;
}

vxXMLNode::vxXMLNode(const vxXMLNode& aNode) : vxXMLNode() {
    CopyContent(aNode);
}

vxXMLNode& vxXMLNode::operator=(const vxXMLNode& aNode) {
    if (this != &aNode) {
        // The source may lie below: it is copied before anything goes.
        vxXMLNode theCopy(aNode);
        DeleteContent();
        mType = theCopy.mType;
        mName = theCopy.mName;
        mContent = theCopy.mContent;
        mUserData = theCopy.mUserData;
        mProperties = theCopy.mProperties;
        mChildren = theCopy.mChildren;
        theCopy.mProperties = NULL;
        theCopy.mChildren = NULL;
        for (vxXMLNode* i = mChildren; i != NULL; i = i->mNext) {
            i->mParent = this;
        }
    }
    return *this;
}

vxXMLNode::~vxXMLNode() {
    DeleteContent();
}

// Copies everything below into a node that has nothing below.
void vxXMLNode::CopyContent(const vxXMLNode& aNode) {
    vxXMLArena theArena(kvxXML_FirstSlab);
    mType = aNode.mType;
    mName = aNode.mName;
    mContent = aNode.mContent;
    mUserData = aNode.mUserData;
    CopyProperties(aNode, theArena);
    vxXMLNode* theCopy = this;
    for (const vxXMLNode* theNode = &aNode;;) {
        if (theNode->mChildren != NULL) {
            theNode = theNode->mChildren;
            theCopy->mChildren = NewCopy(*theNode, theCopy, theArena);
            theCopy = theCopy->mChildren;
            continue;
        }
        while (theNode != &aNode && theNode->mNext == NULL) {
            theNode = theNode->mParent;
            theCopy = theCopy->mParent;
        }
        if (theNode == &aNode) {
            return;
        }
        theNode = theNode->mNext;
        theCopy->mNext = NewCopy(*theNode, theCopy->mParent, theArena);
        theCopy = theCopy->mNext;
    }
}

void vxXMLNode::CopyProperties(const vxXMLNode& aNode, vxXMLArena& anArena) {
    vxXMLProperty* theLast = NULL;
    for (const vxXMLProperty* i = aNode.mProperties; i != NULL; i = i->GetNext()) {
        vxXMLProperty* theProperty = anArena.New<vxXMLProperty>(i->GetName(), i->GetValue());
        if (theLast == NULL) {
            mProperties = theProperty;
        } else {
            theLast->SetNext(theProperty);
        }
        theLast = theProperty;
    }
}

// Copies a node and its attributes, and links it to the parent, but not the parent to it.
vxXMLNode* vxXMLNode::NewCopy(const vxXMLNode& aNode, vxXMLNode* aParent, vxXMLArena& anArena) {
    vxXMLNode* theCopy = anArena.New<vxXMLNode>(aNode.mType, aNode.mName, aNode.mContent);
    theCopy->mParent = aParent;
    theCopy->mUserData = aNode.mUserData;
    theCopy->CopyProperties(aNode, anArena);
    return theCopy;
}

// Deletes children and attributes. The children of a deleted node join the list of what is still to
// be deleted, so that a destructor never finds any.
void vxXMLNode::DeleteContent() {
    if (mProperties == NULL && mChildren == NULL) {
        return;
    }
    vxXMLFreeing theFreeing;
    DeleteProperties(theFreeing);
    while (mChildren != NULL) {
        vxXMLNode* theNode = mChildren;
        vxXMLNode** theLink = &theNode->mChildren;
        while (*theLink != NULL) {
            theLink = &(*theLink)->mNext;
        }
        *theLink = theNode->mNext;
        mChildren = theNode->mChildren;
        theNode->mChildren = NULL;
        theNode->DeleteProperties(theFreeing);
        theNode->~vxXMLNode();
        theFreeing.Free(theNode);
    }
}

void vxXMLNode::DeleteProperties(vxXMLFreeing& aFreeing) {
    while (mProperties != NULL) {
        vxXMLProperty* theProperty = mProperties;
        mProperties = theProperty->GetNext();
        theProperty->~vxXMLProperty();
        aFreeing.Free(theProperty);
    }
}

vxXMLNode* vxXMLNode::GetRoot() {
    vxXMLNode* theNode = this;
    while (theNode->mParent != NULL) {
        theNode = theNode->mParent;
    }
    return theNode;
}

void vxXMLNode::AddChild(vxXMLNode* aChild) {
    if (aChild == NULL) {
        return;
    }
    vxXMLNode** theLink = &mChildren;
    while (*theLink != NULL) {
        theLink = &(*theLink)->mNext;
    }
    *theLink = aChild;
    aChild->mParent = this;
    aChild->mNext = NULL;
}

void vxXMLNode::InsertChild(vxXMLNode* aChild, vxXMLNode* aBeforeNode) {
    const bool theIsChild = aBeforeNode != NULL && aBeforeNode->GetParent() == this;
    VXASSERT_TEXT(theIsChild, "aBeforeNode->GetParent() == this");
    if (!theIsChild || aChild == NULL) {
        return;
    }
    vxXMLNode** theLink = &mChildren;
    while (*theLink != aBeforeNode) {
        theLink = &(*theLink)->mNext;
    }
    *theLink = aChild;
    aChild->mNext = aBeforeNode;
    aChild->mParent = this;
}

bool vxXMLNode::RemoveChild(vxXMLNode* aChild) {
    for (vxXMLNode** theLink = &mChildren; *theLink != NULL; theLink = &(*theLink)->mNext) {
        if (*theLink == aChild) {
            *theLink = aChild->mNext;
            aChild->mParent = NULL;
            aChild->mNext = NULL;
            return true;
        }
    }
    return false;
}

void vxXMLNode::AddProperty(const vxCString& aName, const vxCString& aValue) {
    AddProperty(new vxXMLProperty(aName, aValue));
}

void vxXMLNode::AddProperty(vxXMLProperty* aProperty) {
    if (mProperties == NULL) {
        mProperties = aProperty;
        return;
    }
    vxXMLProperty* theLast = mProperties;
    while (theLast->GetNext() != NULL) {
        theLast = theLast->GetNext();
    }
    theLast->SetNext(aProperty);
}

bool vxXMLNode::DeleteProperty(const vxCString& aName) {
    vxXMLProperty* thePrevious = NULL;
    for (vxXMLProperty* i = mProperties; i != NULL; i = i->GetNext()) {
        if (i->GetName() == aName) {
            if (thePrevious == NULL) {
                mProperties = i->GetNext();
            } else {
                thePrevious->SetNext(i->GetNext());
            }
            delete i;
            return true;
        }
        thePrevious = i;
    }
    return false;
}

vxXMLProperty* vxXMLNode::FindProperty(const vxCString& aName) const {
    vxXMLProperty* theProperty = mProperties;
    while (theProperty != NULL && theProperty->GetName() != aName) {
        theProperty = theProperty->GetNext();
    }
    return theProperty;
}

bool vxXMLNode::HasProperty(const vxCString& aName) const {
    return FindProperty(aName) != NULL;
}

bool vxXMLNode::GetPropertyValue(const vxCString& aName, vxCString* aValue) const {
    const vxXMLProperty* theProperty = FindProperty(aName);
    if (theProperty != NULL && aValue != NULL) {
        *aValue = theProperty->GetValue();
    }
    return theProperty != NULL;
}

vxCString vxXMLNode::GetPropertyValue(const vxCString& aName, const vxCString& aDefault) const {
    const vxXMLProperty* theProperty = FindProperty(aName);
    return theProperty != NULL ? theProperty->GetValue() : aDefault;
}

uint32_t vxXMLNode::GetPropertyValueAsUInt32(const vxCString& aName, uint32_t aDefault) const {
    vxCString theText = GetPropertyValue(aName, vxCString());
    uint32_t theValue = 0;
    return theText.TrimLeftRight().ToUInt32(&theValue, 10) ? theValue : aDefault;
}

bool vxXMLNode::GetPropertyValueAsBool(const vxCString& aName, bool afDefault) const {
    vxCString theText = GetPropertyValue(aName, vxCString());
    theText.TrimLeftRight();
    uint32_t theValue = 0;
    if (theText.ToUInt32(&theValue, 10) && theValue <= 1) {
        return theValue == 1;
    }
    if (vxEqualNoCase(theText, "true")) {
        return true;
    }
    return !vxEqualNoCase(theText, "false") && afDefault;
}

vxXMLNode* vxXMLNode::GetChild(const vxCString& aName) const {
    vxXMLNode* theChild = mChildren;
    while (theChild != NULL && theChild->mName.CompareNoCase(aName) != 0) {
        theChild = theChild->mNext;
    }
    return theChild;
}

vxXMLNode* vxXMLNode::GetChildNode(const vxCString& aPath) const {
    const vxXMLNode* theNode = this;
    for (size_t thePos = 0; theNode != NULL;) {
        const size_t theSlash = aPath.FindFirstOf("/", thePos);
        const size_t theEnd = theSlash == vxCString::npos ? aPath.length() : theSlash;
        const vxCString theName = aPath.Mid(thePos, theEnd - thePos);
        theNode = theName.IsEmpty() ? NULL : theNode->GetChild(theName);
        if (theSlash == vxCString::npos) {
            break;
        }
        thePos = theSlash + 1;
    }
    return const_cast<vxXMLNode*>(theNode);
}

vxCString vxXMLNode::GetTextContent(const vxCString& aDefault) const {
    const vxXMLNode* theText = GetChildNode("text");
    return theText != NULL ? theText->mContent : aDefault;
}

vxCString vxXMLNode::GetChildNodeText(const vxCString& aPath, const vxCString& aDefault) const {
    const vxXMLNode* theText = GetChildNode(aPath + "/text");
    return theText != NULL ? theText->mContent : aDefault;
}

bool vxXMLNode::GetTextContentValue(int32_t* aValue) const {
    return GetTextContent().ToInt32(aValue, 10);
}

bool vxXMLNode::GetTextContentValue(bool* aValue) const {
    const vxCString theText = GetTextContent();
    const bool theIsTrue = vxIsOneOf(theText, kvxXML_TrueWords, 3);
    if (!theIsTrue && !vxIsOneOf(theText, kvxXML_FalseWords, 4)) {
        return false;
    }
    *aValue = theIsTrue;
    return true;
}

void vxXMLNode::ForEachChild(const vxCString& aPath, void (*aCallback)(vxXMLNode*, void*),
                             void* aContext) const {
    // The walk stands on one child in each level of the path.
    const vxXMLNode* theNode = mChildren;
    size_t theStart = 0;  // of the level's name in the path
    while (theNode != NULL) {
        const size_t theSlash = aPath.FindFirstOf("/", theStart);
        const size_t theEnd = theSlash == vxCString::npos ? aPath.length() : theSlash;
        const bool theIsLast = theEnd + 1 >= aPath.length();
        // Read before the callback, which may remove the node.
        const vxXMLNode* theNext = theNode->mNext;
        const vxXMLNode* const theParent = theNode->mParent;
        if (theEnd != theStart && theNode->mName.length() == theEnd - theStart &&
            memcmp(theNode->mName.c_str(), aPath.c_str() + theStart, theEnd - theStart) == 0) {
            if (theIsLast) {
                aCallback(const_cast<vxXMLNode*>(theNode), aContext);
            } else if (theNode->mChildren != NULL) {
                theNode = theNode->mChildren;
                theStart = theEnd + 1;
                continue;
            }
        }
        const vxXMLNode* theAbove = theParent;
        while (theNext == NULL && theAbove != this) {
            theNext = theAbove->mNext;
            theAbove = theAbove->mParent;
            theStart = theStart < 2 ? 0 : aPath.FindLastOf("/", theStart - 2) + 1;
        }
        theNode = theNext;
    }
}

vxXMLNode* vxXMLNode::FindChild(bool (*aPredicate)(const vxXMLNode*, void*), void* aContext) const {
    const vxXMLNode* theNode = this;
    while (theNode != NULL) {
        for (vxXMLNode* theChild = theNode->mChildren; theChild != NULL;
             theChild = theChild->mNext) {
            if (aPredicate(theChild, aContext)) {
                return theChild;
            }
        }
        theNode = theNode->mChildren != NULL ? theNode->mChildren : vxAfterSubtree(theNode, this);
    }
    return NULL;
}

bool vxXMLNode::Save(vxXMLOutput anOutput, void* aContext) const {
    vxFunctionSink theSink(anOutput, aContext);
    return vxWriteNode(*this, theSink);
}

bool vxXMLNode::SaveStr(vxCString& aText) const {
    vxBufferSink theSink;
    const bool theResult = vxWriteNode(*this, theSink);
    aText.ConcatSelf(theSink.Buffer().GetPosition(), theSink.Buffer().data(), vxCString::npos);
    return theResult;
}

// vxXMLDocument

vxXMLDocument::vxXMLDocument() : mVersion("1.0"), mEncoding("utf-8"), mRoot(NULL) {}

vxXMLDocument::vxXMLDocument(const vxXMLDocument& aDocument)
    : mVersion(aDocument.mVersion),
      mEncoding(aDocument.mEncoding),
      mRoot(aDocument.mRoot == NULL ? NULL : new vxXMLNode(*aDocument.mRoot)) {}

vxXMLDocument& vxXMLDocument::operator=(const vxXMLDocument& aDocument) {
    if (this != &aDocument) {
        SetRoot(aDocument.mRoot == NULL ? NULL : new vxXMLNode(*aDocument.mRoot));
        mVersion = aDocument.mVersion;
        mEncoding = aDocument.mEncoding;
    }
    return *this;
}

vxXMLDocument::~vxXMLDocument() {
    delete mRoot;
}

vxXMLDocument* vxXMLDocument::Clone() const {
    return new vxXMLDocument(*this);
}

void vxXMLDocument::SetRoot(vxXMLNode* aRoot) {
    if (aRoot != mRoot) {
        delete mRoot;
        mRoot = aRoot;
    }
}

bool vxXMLDocument::Save(vxXMLOutput anOutput, void* aContext, bool afWithDeclaration) const {
    if (mRoot == NULL) {
        return false;
    }
    if (afWithDeclaration &&
        !anOutput(aContext, vxCString::Format("<?xml version=\"%s\" encoding=\"%s\"?>\n",
                                              mVersion.c_str(), mEncoding.c_str()))) {
        return false;
    }
    return mRoot->Save(anOutput, aContext);
}

bool vxXMLDocument::Save(vxFile* aFile, bool afWithDeclaration) const {
    const vxXMLOutput theOutput = [](void* aContext, const vxCString& aText) {
        return aText.IsEmpty() || static_cast<vxFile*>(aContext)->Write(
                                      aText.c_str(), aText.length()) == aText.length();
    };
    return aFile != NULL && Save(theOutput, aFile, afWithDeclaration);
}

bool vxXMLDocument::Save(const vxCString& aPath, bool afWithDeclaration) const {
    vxFile theFile;
    return theFile.Open(aPath,
                        vxFileOpenMode_Create | vxFileOpenMode_Truncate | vxFileOpenMode_Write) &&
           Save(&theFile, afWithDeclaration) && theFile.Close();
}
