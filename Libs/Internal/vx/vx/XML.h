#pragma once

#include <cstddef>
#include <new>

#include "vx/Api.h"
#include "vx/CString.h"

class vxFile;
class vxXMLArena;
class vxXMLFreeing;

/// What a node of an XML tree is.
enum vxXMLNodeType {
    vxXMLNodeType_Unknown = 0,
    vxXMLNodeType_Element = 1,
    vxXMLNodeType_Text = 2,
    vxXMLNodeType_Comment = 3
};

/// Memory of nodes and attributes: those that are made one by one have their own, those that were read
/// or copied together share blocks of up to 16 KB, each of which goes with the last one in it.
struct VX_EXPORT vxXMLMemory {
    /// Memory for an object that is made alone, and the end of any object's memory.
    /// @{
    static void* operator new(size_t aSize);
    static void* operator new(size_t aSize, const std::nothrow_t& aTag) noexcept;
    static void* operator new(size_t, void* aPlace) noexcept { return aPlace; }
    static void operator delete(void* anObject);
    static void operator delete(void*, void*) noexcept {}
    /// @}
};

/// An attribute of an element: a name, a value, and the next attribute.
///
/// Owner:    the element that it was added to; a detached one belongs to whoever made it.
/// Threads:  one at a time.
class VX_EXPORT vxXMLProperty : public vxXMLMemory {
public:
    /// An attribute with an empty name and value.
    vxXMLProperty() : mNext(NULL) {}

    /// A detached attribute; the value is plain text, which writers escape.
    vxXMLProperty(const vxCString& aName, const vxCString& aValue)
        : mName(aName), mValue(aValue), mNext(NULL) {}

    /// Returns the name.
    const vxCString& GetName() const { return mName; }

    /// Returns the value as plain text.
    const vxCString& GetValue() const { return mValue; }

    /// Returns the attribute behind this one, or null.
    vxXMLProperty* GetNext() const { return mNext; }

    /// Links an attribute behind this one; what stood there is forgotten, not deleted.
    void SetNext(vxXMLProperty* aNext) { mNext = aNext; }

private:
    friend class vxXMLReaderLinks;

    vxCString mName;
    vxCString mValue;
    vxXMLProperty* mNext;  // of the same element
};

/// Takes one piece of written text; false stops the writer.
typedef bool (*vxXMLOutput)(void* aContext, const vxCString& aText);

/// An element, a text or a comment, with what lies below it.
///
/// Trees are built by hand or by vxXMLParser, asked by paths of names, and written as indented text.
/// Text nodes are named "text" by convention; the operations that read text rely on it.
///
///     vxXMLNode theTrack(vxXMLNodeType_Element, "track", "");
///     theTrack.AddProperty("number", "7");
///     theTrack.AddChild(new vxXMLNode(vxXMLNodeType_Text, "text", "Aria"));
///     vxCString theXML;
///     theTrack.SaveStr(theXML);   // <track number="7">Aria</track>
///
/// Written text escapes less-than, greater-than and ampersand, and in attributes the double quote.
/// An ampersand that "amp;" follows is left alone, so text that holds "&amp;" literally reads back as
/// "&". Line ends and tabs in attribute values are written as they are, and readers make blanks of
/// them.
///
/// Owner:    a node owns its children and its attributes. It does not unlink itself from its parent:
///           remove it there before deleting it.
/// Threads:  one at a time.
/// Cost:     depth costs no stack: copying, writing, searching and deleting keep their own.
class VX_EXPORT vxXMLNode : public vxXMLMemory {
public:
    /// A detached node of unknown type.
    vxXMLNode();

    /// A detached node.
    vxXMLNode(vxXMLNodeType aType, const vxCString& aName, const vxCString& aContent);

    /// A node that takes an attribute list as it is; a parent gets it as its first child.
    ///
    /// The node goes in front of the parent's children, unlike AddChild(), which appends; programs
    /// depend on the difference. `aNext` is its sibling; where that is no child of the parent yet, it
    /// and those behind it stand between the node and the old first child.
    vxXMLNode(vxXMLNode* aParent, vxXMLNodeType aType, const vxCString& aName,
              const vxCString& aContent, vxXMLProperty* aProperties, vxXMLNode* aNext);

    /// Copies everything below, and the user data pointer; the copy has no parent and no sibling.
    vxXMLNode(const vxXMLNode& aNode);

    /// Replaces content, children and attributes by copies; the place in the tree stays.
    vxXMLNode& operator=(const vxXMLNode& aNode);

    ~vxXMLNode();

    /// Returns what the node is.
    vxXMLNodeType GetType() const { return mType; }
    /// Returns the name; that of a text is "text" by convention.
    const vxCString& GetName() const { return mName; }
    /// Returns the text of a text or comment; an element without children may have one.
    const vxCString& GetContent() const { return mContent; }
    /// Returns the element that holds this node, or null.
    vxXMLNode* GetParent() const { return mParent; }
    /// Returns the first child, or null.
    vxXMLNode* GetChildren() const { return mChildren; }
    /// Returns the next sibling, or null.
    vxXMLNode* GetNext() const { return mNext; }
    /// Returns the first attribute, or null.
    vxXMLProperty* GetProperties() const { return mProperties; }
    /// Returns the top of the tree.
    vxXMLNode* GetRoot();

    /// Replaces type, name or content; children and attributes stay, whatever the type.
    /// @{
    void SetType(vxXMLNodeType aType) { mType = aType; }
    void SetName(const vxCString& aName) { mName = aName; }
    void SetContent(const vxCString& aContent) { mContent = aContent; }
    /// @}

    /// The caller's pointer, which the node copies and never frees; null at first.
    /// @{
    void* GetUserData() const { return mUserData; }
    void SetUserData(void* aUserData) { mUserData = aUserData; }
    /// @}

    /// Compares byte for byte.
    bool NameIs(const vxCString& aName) const { return mName == aName; }

    /// Appends a detached child.
    ///
    /// Owner:    this node.
    /// Cost:     linear in the number of children.
    void AddChild(vxXMLNode* aChild);

    /// Links a detached child just before another.
    ///
    /// Asserts:  aBeforeNode->GetParent() == this; nothing is linked then.
    /// Owner:    this node.
    void InsertChild(vxXMLNode* aChild, vxXMLNode* aBeforeNode);

    /// Unlinks a child without deleting it; false if it is none.
    ///
    /// Owner:    the caller, from then on.
    bool RemoveChild(vxXMLNode* aChild);

    /// Appends an attribute; nobody looks whether the name is there already.
    ///
    /// Owner:    this node, also of those linked behind it.
    /// Cost:     linear in the number of attributes.
    /// @{
    void AddProperty(const vxCString& aName, const vxCString& aValue);
    void AddProperty(vxXMLProperty* aProperty);
    /// @}

    /// Deletes the first attribute of a name; false if there is none.
    bool DeleteProperty(const vxCString& aName);

    /// Tells whether there is an attribute of exactly this name.
    bool HasProperty(const vxCString& aName) const;

    /// Reads the first attribute of exactly this name; the target may be null.
    ///
    /// Fails:    false if there is none; the target is left alone.
    bool GetPropertyValue(const vxCString& aName, vxCString* aValue) const;

    /// Returns the value of the first attribute of exactly this name, or the default.
    vxCString GetPropertyValue(const vxCString& aName, const vxCString& aDefault) const;

    /// Returns the value as a number in base 10, blanks around it aside; else the default.
    uint32_t GetPropertyValueAsUInt32(const vxCString& aName, uint32_t aDefault) const;

    /// Returns whether the value is 1 or "true" rather than 0 or "false", in any case and with blanks
    /// around it; else the default.
    bool GetPropertyValueAsBool(const vxCString& aName, bool afDefault) const;

    /// Returns the first child of a name, in any case; null if there is none.
    vxXMLNode* GetChild(const vxCString& aName) const;

    /// Walks down a path of names with GetChild(): "a/b"; null when a step fails.
    ///
    /// An empty path, and an empty name in it, match nothing.
    vxXMLNode* GetChildNode(const vxCString& aPath) const;

    /// Returns the content of the text child, or the default.
    vxCString GetTextContent(const vxCString& aDefault = vxCString()) const;

    /// Returns the content of the text child of the node at a path, or the default.
    vxCString GetChildNodeText(const vxCString& aPath, const vxCString& aDefault) const;

    /// Reads the text content as a number in base 10; false if it is none.
    bool GetTextContentValue(int32_t* aValue) const;

    /// Reads the text content as one of 1, true, yes or 0, false, no and nothing, in any case; false
    /// for other text. A node without a text child reads as false, with success.
    bool GetTextContentValue(bool* aValue) const;

    /// Calls a function with every node that a path of exact names leads to, in order.
    ///
    /// Names are matched in their case here, and in any case by GetChild(); programs depend on it.
    void ForEachChild(const vxCString& aPath, void (*aCallback)(vxXMLNode*, void*),
                      void* aContext) const;

    /// Returns the first node below that a predicate accepts: direct children before the subtree of
    /// any of them; null if there is none.
    vxXMLNode* FindChild(bool (*aPredicate)(const vxXMLNode*, void*), void* aContext) const;

    /// Writes the node and a line end, piece by piece.
    ///
    /// Fails:    false as soon as the output function returns false; what was written stays written.
    bool Save(vxXMLOutput anOutput, void* aContext) const;

    /// Appends the written node and a line end to a text.
    bool SaveStr(vxCString& aText) const;

private:
    friend class vxXMLReaderLinks;

    void CopyContent(const vxXMLNode& aNode);
    void CopyProperties(const vxXMLNode& aNode, vxXMLArena& anArena);
    static vxXMLNode* NewCopy(const vxXMLNode& aNode, vxXMLNode* aParent, vxXMLArena& anArena);
    void DeleteContent();
    void DeleteProperties(vxXMLFreeing& aFreeing);
    vxXMLProperty* FindProperty(const vxCString& aName) const;

    vxXMLNodeType mType;
    vxCString mName;
    vxCString mContent;          // of a text or comment; of an element without children
    vxXMLProperty* mProperties;  // owned list, in order
    vxXMLNode* mParent;
    vxXMLNode* mChildren;  // owned list: the first child
    vxXMLNode* mNext;      // sibling
    void* mUserData;       // the caller's
};

/// A tree with the version and encoding that its declaration names.
///
/// Owner:    the document owns its root.
/// Threads:  one at a time.
class VX_EXPORT vxXMLDocument {
public:
    /// An empty document of version "1.0" in "utf-8".
    vxXMLDocument();
    /// Copies the whole tree.
    /// @{
    vxXMLDocument(const vxXMLDocument& aDocument);
    vxXMLDocument& operator=(const vxXMLDocument& aDocument);
    /// @}
    virtual ~vxXMLDocument();

    /// Returns a copy with its whole tree.
    ///
    /// Owner:    the caller, who deletes the copy.
    vxXMLDocument* Clone() const;

    /// Deletes the old root and takes the new one.
    void SetRoot(vxXMLNode* aRoot);
    /// Returns the root, or null.
    ///
    /// Owner:    the document.
    vxXMLNode* GetRoot() const { return mRoot; }
    /// The version that the declaration names; nothing depends on it.
    /// @{
    const vxCString& GetVersion() const { return mVersion; }
    void SetVersion(const vxCString& aVersion) { mVersion = aVersion; }
    /// @}
    /// Returns the encoding that the declaration names.
    const vxCString& GetContentEncoding() const { return mEncoding; }

    /// Has it a root?
    bool IsOk() const { return mRoot != NULL; }

    /// Writes the declaration, if wanted, the root and a line end.
    ///
    /// Fails:    false without a root, and nothing is written; false when a piece could not be written.
    bool Save(vxXMLOutput anOutput, void* aContext, bool afWithDeclaration) const;

    /// As above, into an open file; false for null.
    bool Save(vxFile* aFile, bool afWithDeclaration) const;

    /// As above, into a file that is created or overwritten.
    bool Save(const vxCString& aPath, bool afWithDeclaration) const;

private:
    vxCString mVersion;
    vxCString mEncoding;
    vxXMLNode* mRoot;  // owned; null: the document is empty
};
