#pragma once

#include <libteskTools/JSON.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Ref.h"

class vxCSVStringList;
class vxJSONArray;
class vxJSONDocument;
class vxJSONObject;
class vxMPackDictionary;

/// What a new document holds.
enum {
    kvxJSONDocumentRoot_Object = 0,
    kvxJSONDocumentRoot_Array = 1,
    kvxJSONDocumentRoot_None = 2  ///< nothing
};

/// What a part of a path is.
enum {
    kvxJSONPathKind_Array = 1,   ///< a name followed by an index
    kvxJSONPathKind_Object = 2,  ///< a name
    kvxJSONPathKind_Invalid = 3
};

/// Where the scanner of a path is.
enum { kvxJSONPathParsing_Object = 0, kvxJSONPathParsing_Index = 1 };

/// A handle on one node of a JSON tree, usually a view on a node that something else owns.
///
/// The handle is two fields, copied as they are: a copy is one more view, never a copy of the node.
/// A handle of any kind may point to nothing; it is invalid then, which every operation takes.
///
///     vxJSONDocument theDocument("{\"list\":[{\"name\":\"first\"}]}");
///     vxCString theName;
///     if (theDocument["list"][0]["name"].FetchString(theName)) ...
///
/// Owner:    a plain entry never frees its node. Who puts an owned node into one, with CloneTo() for
///           example, frees it with vxJSON_Delete(mEntry) or hands it to a tree.
/// Threads:  one at a time for a tree that is changed; any number may read one that is not.
class VX_EXPORT vxJSONEntry {
public:
    /// An invalid entry.
    vxJSONEntry() noexcept : mEntry(NULL), mfIsOrphan(false) {}

    /// A view on a node, or an invalid entry for null.
    explicit vxJSONEntry(vxJSON_t* anEntry) noexcept : mEntry(anEntry), mfIsOrphan(false) {}

    /// One more view on the node; mfIsOrphan is copied with it, and nothing is freed.
    /// @{
    vxJSONEntry(const vxJSONEntry&) noexcept = default;
    vxJSONEntry& operator=(const vxJSONEntry&) noexcept = default;
    /// @}

    virtual ~vxJSONEntry();

    /// Points to another node; frees the one before if the entry owns it.
    ///
    /// Owner:    the entry, if `afIsOrphan`.
    virtual void SetEntry(vxJSON_t* anEntry, bool afIsOrphan);

    /// Tells whether this is a document, where paths may begin with "$".
    virtual bool IsRoot() const { return false; }

    /// Tells the kind of the node: an invalid entry, or one of another kind, gives false.
    ///
    /// IsNULL() asks for the value "null" of JSON, IsValid() whether there is a node at all.
    /// @{
    bool IsValid() const { return mEntry != NULL; }
    bool IsNULL() const { return Is(kvxJSON_NULL); }
    bool IsBool() const { return Is(kvxJSON_True | kvxJSON_False); }
    bool IsTrue() const { return Is(kvxJSON_True); }
    bool IsFalse() const { return Is(kvxJSON_False); }
    bool IsNumber() const { return Is(kvxJSON_Numeric); }
    bool IsString() const { return Is(kvxJSON_String); }
    bool IsArray() const { return Is(kvxJSON_Array); }
    bool IsObject() const { return Is(kvxJSON_Object); }
    /// @}

    /// Reads a value of exactly this type; no double counts as an integer.
    ///
    /// Fails:    false for a node of another kind and an integer outside the type's range; the target
    ///           is left alone.
    /// @{
    bool FetchBool(bool* aValue) const;
    bool FetchUInt8(uint8_t* aValue) const;
    bool FetchUInt16(uint16_t* aValue) const;
    bool FetchUInt32(uint32_t* aValue) const;
    bool FetchUInt64(uint64_t* aValue) const;
    bool FetchInt8(int8_t* aValue) const;
    bool FetchInt16(int16_t* aValue) const;
    bool FetchInt32(int32_t* aValue) const;
    bool FetchInt64(int64_t* aValue) const;
    /// @}

    /// Stores the value of a number of any kind and returns true in every case.
    ///
    /// Callers set a default first and read over it, so nothing but a number changes the target.
    bool FetchDouble(double* aValue) const;

    /// Reads a string.
    ///
    /// Fails:    false for a node of another kind; the target is left alone.
    bool FetchString(vxCString& aValue) const;

    /// Makes the target a view on this node.
    ///
    /// Fails:    false for a node of another kind; the target is left alone.
    /// @{
    bool FetchObject(vxJSONObject& anObject) const;
    bool FetchArray(vxJSONArray& anArray) const;
    /// @}

    /// Gives the document a copy of this object or array, by way of its text.
    ///
    /// Fails:    for other nodes the document stays as it is; for a tree too deep to be read it is
    ///           invalid.
    bool FetchDocument(vxJSONDocument& aDocument) const;

    /// Returns a view on this node, or logs a warning and returns an invalid one.
    /// @{
    vxJSONObject AsObject() const;
    vxJSONArray AsArray() const;
    /// @}

    /// Writes a member of an object: replaces the first of that name, or adds one.
    ///
    /// Another entry is copied; an invalid one writes nothing.
    ///
    /// Asserts:  vxJSON_Is(mEntry, kvxJSON_Object); nothing is written then.
    /// @{
    void SetNull(const char* aName);
    void Set(const char* aName, bool afValue);
    void Set(const char* aName, const char* aValue);
    void Set(const char* aName, double aValue);
    void Set(const char* aName, uint64_t aValue);
    void Set(const char* aName, int64_t aValue);
    void Set(const char* aName, const vxJSONEntry& anEntry);
    /// @}

    // Children

    /// Returns a view on the item at a position, of an object on the member; invalid if none is.
    ///
    /// Asserts:  anIndex >= 0.
    vxJSONEntry operator[](int anIndex) const;

    /// Returns a view on the first member of that name, invalid if none is.
    vxJSONEntry operator[](const char* aName) const;

    /// Returns the number of items or members; 0 for other nodes.
    uint32_t GetCount() const { return vxJSON_GetArraySize(mEntry); }

    /// Tells whether this is an object with a member of that name.
    bool Contains(const char* aName) const { return vxJSON_ContainsItem(mEntry, aName) != 0; }

    // The node itself

    /// Returns the name under which the node is in its object; empty if it has none.
    vxCString GetName() const { return vxCString(vxJSON_GetName(mEntry)); }

    /// Returns the text of a scalar: a string as it is, a number in decimal, "true", "null". A
    /// container gives its compact text, an invalid entry the empty text.
    vxCString GetRawValue() const;

    /// Tells whether both hold the same values: see vxJSON_Compare().
    bool SameAs(const vxJSONEntry& anEntry) const {
        return vxJSON_Compare(mEntry, anEntry.mEntry) == 0;
    }

    /// Gives the node the first value of its kind: false, 0, the empty text, no children.
    void Reset() { vxJSON_Reset(mEntry); }

    /// Removes the children of an object or array; other nodes are left alone.
    void Clear() { vxJSON_Clear(mEntry); }

    /// Gives the target a copy of the tree below this node.
    ///
    /// Owner:    the target, whose mfIsOrphan is true afterwards. A plain entry frees nothing: see
    ///           the class.
    void CloneTo(vxJSONEntry& aTarget) const;

    // Text and MPack

    /// Returns the tree below this node as text, indented or compact; empty for an invalid entry.
    vxCString ToString(bool afFormatted) const;

    /// As ToString().
    ///
    /// Fails:    null for an invalid entry.
    /// Owner:    the caller, who releases the text with free().
    char* ToCharPtr(bool afFormatted) const;

    /// Encodes the tree below this node and stores the number of bytes. The dictionary may be null.
    ///
    /// Fails:    null for an invalid entry.
    /// Owner:    the caller, who releases the bytes with free().
    uint8_t* ToMPackBuffer(uint32_t* aSize, const vxRef<vxMPackDictionary>& aDictionary) const;

    /// Decodes a tree that ToMPackBuffer() wrote with a dictionary of the same words, and owns it.
    ///
    /// Nothing tells where the buffer ends: for bytes from outside, use
    /// SetEntry(vxJSON_FromMPackSize(...), true).
    ///
    /// Fails:    false, and the entry is invalid.
    bool FromMPackBuffer(const uint8_t* aBuffer, const vxRef<vxMPackDictionary>& aDictionary);

    vxJSON_t* mEntry;  ///< null: invalid
    bool mfIsOrphan;   ///< the handle owns the node, which is part of no other tree

protected:
    /// Tells whether the node is of one of these kinds, kvxJSON_* combined.
    bool Is(unsigned aMask) const { return vxJSON_Is(mEntry, aMask) != 0; }

private:
    void SetMember(const char* aName, vxJSON_t* aNode);
};

/// A single named node on its way into an object: Add(vxJSONPair("size", 5), false).
///
/// Owner:    the pair, until its node is given away. A copy takes the node over from its source.
class VX_EXPORT vxJSONPair : public vxJSONEntry {
public:
    /// A null value.
    explicit vxJSONPair(const char* aName);

    /// A value of the argument's kind; a text is copied.
    /// @{
    vxJSONPair(const char* aName, bool afValue);
    vxJSONPair(const char* aName, uint32_t aValue);
    vxJSONPair(const char* aName, uint64_t aValue);
    vxJSONPair(const char* aName, int32_t aValue);
    vxJSONPair(const char* aName, double aValue);
    vxJSONPair(const char* aName, const char* aValue);
    /// @}

    /// Takes the node out of the handle, which is invalid afterwards.
    ///
    /// Asserts:  anObject.mEntry != NULL, anArray.mEntry != NULL; the pair is invalid then.
    /// @{
    vxJSONPair(const char* aName, vxJSONObject& anObject);
    vxJSONPair(const char* aName, vxJSONArray& anArray);
    /// @}

    /// Copies the document's tree.
    ///
    /// Asserts:  aDocument.mEntry != NULL; the pair is invalid then.
    vxJSONPair(const char* aName, const vxJSONDocument& aDocument);

    /// Takes the node over; the source is invalid afterwards.
    /// @{
    vxJSONPair(vxJSONPair& aPair) noexcept;
    vxJSONPair(vxJSONPair&& aPair) noexcept;
    /// @}
    vxJSONPair& operator=(const vxJSONPair&) = delete;
    ~vxJSONPair() override;

private:
    vxJSONPair(const char* aName, vxJSON_t* aNode);
};

/// A handle on an object.
///
/// Operations that put something in create the object first if the handle is invalid, and own it.
///
/// Asserts:  vxJSON_Is(mEntry, kvxJSON_Object), where something is put into another node; nothing
///           changes then, and views that are returned are invalid.
/// Owner:    frees the node if mfIsOrphan. A copy of an owning handle is a second view of the same
///           node: let only one of them keep mfIsOrphan.
class VX_EXPORT vxJSONObject : public vxJSONEntry {
public:
    /// An invalid handle.
    vxJSONObject() noexcept = default;
    /// A view.
    explicit vxJSONObject(vxJSON_t* anEntry) noexcept : vxJSONEntry(anEntry) {}

    /// One more view on the node; what the target owned before is not freed.
    /// @{
    vxJSONObject(const vxJSONObject&) noexcept = default;
    vxJSONObject& operator=(const vxJSONObject&) noexcept = default;
    /// @}

    ~vxJSONObject() override;

    /// Creates an empty object if there is no node.
    void CreateIfNone();

    /// Lets go of the node, freeing it if owned, and creates an empty object.
    void CreateEmpty();

    /// Frees the first member of that name. False if there is none.
    bool Remove(const char* aName);

    /// Moves the first member of that name to the end of another object. False if there is none, or
    /// the target is no object.
    bool Move(const char* aName, const vxJSONObject& aTarget);

    /// Gives the first member of that name to the entry, which owns it. False if there is none.
    bool Take(const char* aName, vxJSONEntry& anEntry);

    /// Puts a pair in: in the place of the first member of its name if `afReplace`, else, and where
    /// there is none, at the end. Members of one name are all kept.
    void Add(vxJSONPair aPair, bool afReplace);

    /// Returns a view on the member of that name, of whatever kind it is; adds an empty object or
    /// array if there is none.
    /// @{
    vxJSONObject AddObject(const char* aName);
    vxJSONArray AddArray(const char* aName);
    /// @}

    /// Reads a text and puts its root at the end, in the place of all members of that name.
    ///
    /// Returns a view on it. A text whose root is no object, or no array, changes nothing and gives
    /// an invalid view.
    /// @{
    vxJSONObject AddRawJSONObject(const char* aName, const char* aText);
    vxJSONArray AddRawJSONArray(const char* aName, const char* aText);
    /// @}

private:
    bool IsReady();
    vxJSON_t* AddContainer(const char* aName, vxJSON_t* (*aCreate)());
    vxJSON_t* AddRaw(const char* aName, const char* aText, unsigned aKind);
};

/// A handle on an array.
///
/// A position is that of the item in front of which to insert; 0xFFFFFFFF, and every position
/// behind the last item, is the end. Operations that put something in create the array first if the
/// handle is invalid, and own it.
///
/// Asserts:  vxJSON_Is(mEntry, kvxJSON_Array), where something is put into another node; nothing
///           changes then, and views that are returned are invalid.
/// Owner:    as vxJSONObject.
class VX_EXPORT vxJSONArray : public vxJSONEntry {
public:
    /// An invalid handle.
    vxJSONArray() noexcept = default;
    /// A view.
    explicit vxJSONArray(vxJSON_t* anEntry) noexcept : vxJSONEntry(anEntry) {}

    /// One more view on the node; what the target owned before is not freed.
    /// @{
    vxJSONArray(const vxJSONArray&) noexcept = default;
    vxJSONArray& operator=(const vxJSONArray&) noexcept = default;
    /// @}

    ~vxJSONArray() override;

    /// Creates an empty array if there is no node.
    void CreateIfNone();

    /// Lets go of the node, freeing it if owned, and creates an empty array.
    void CreateEmpty();

    /// Frees the item at a position. False if there is none.
    bool Remove(uint32_t anIndex);

    /// Inserts a value of the argument's kind; a text is copied.
    /// @{
    void Insert(bool afValue, uint32_t aPosition);
    void Insert(double aValue, uint32_t aPosition);
    void Insert(uint64_t aValue, uint32_t aPosition);
    void Insert(int64_t aValue, uint32_t aPosition);
    void Insert(const char* aValue, uint32_t aPosition);
    void InsertNull(uint32_t aPosition);
    /// @}

    /// Inserts an empty container and returns a view on it.
    /// @{
    vxJSONObject InsertObject(uint32_t aPosition);
    vxJSONArray InsertArray(uint32_t aPosition);
    /// @}

    /// Moves the entry's node in; the entry is invalid afterwards. A node that belongs to a tree is
    /// reported and stays where it is.
    void Insert(vxJSONEntry& anEntry, uint32_t aPosition);

    /// Inserts a copy; an invalid entry inserts nothing.
    void InsertCopy(const vxJSONEntry& anEntry, uint32_t aPosition);

    /// Splits the text at commas, with '\\' as escape character, and inserts its items as strings
    /// one behind the other.
    void InsertCSVStringList(const char* aText, uint32_t aPosition);

    /// The same for signed 32-bit numbers; items that are none are left out.
    void InsertCSVInt32List(const char* aText, uint32_t aPosition);

private:
    bool InsertNode(vxJSON_t* aNode, uint32_t aPosition);
};

/// A tree of its own, and a handle on its root.
///
/// Owner:    always frees its tree. Documents can be copied, not assigned.
class VX_EXPORT vxJSONDocument : public vxJSONEntry {
public:
    /// An empty object or array, or, for kvxJSONDocumentRoot_None, an invalid document.
    ///
    /// Asserts:  as SetRoot().
    explicit vxJSONDocument(int aDocumentRoot);

    /// Reads a text.
    ///
    /// Fails:    the document is invalid, and a warning with the text from the error on is logged.
    explicit vxJSONDocument(const char* aText);

    /// Copies the tree.
    ///
    /// Asserts:  mfIsOrphan, for the copy, here and when it is destroyed; the copy is freed all the
    ///           same. Programs know these reports; CloneTo() copies without them.
    vxJSONDocument(const vxJSONDocument& aDocument);
    vxJSONDocument& operator=(const vxJSONDocument&) = delete;

    /// Frees the tree.
    ///
    /// Asserts:  mfIsOrphan.
    ~vxJSONDocument() override;

    using vxJSONEntry::SetEntry;

    bool IsRoot() const override { return true; }

    /// Frees the tree and takes another.
    ///
    /// Asserts:  mfIsOrphan; (mEntry != anEntry) || (mEntry == NULL), where nothing happens.
    /// Owner:    the document.
    virtual void SetEntry(vxJSON_t* anEntry);

    /// Frees the tree and starts anew with an empty root, or with none.
    ///
    /// Asserts:  mfIsOrphan; (aDocumentRoot == kvxJSONDocumentRoot_Object) || (aDocumentRoot ==
    ///           kvxJSONDocumentRoot_Array) || (aDocumentRoot == kvxJSONDocumentRoot_None), where
    ///           there is no root then.
    void SetRoot(int aDocumentRoot);

    /// Frees the tree and reads another from a text, which may stand in the old one.
    ///
    /// Asserts:  mfIsOrphan.
    /// Fails:    false; the document is invalid, and a warning is logged.
    bool SetDocument(const char* aText);

    using vxJSONEntry::CloneTo;

    /// Gives another document a copy of the tree.
    void CloneTo(vxJSONDocument& aDocument) const;
};

/// The words that a program's MPack trees write as numbers, shared by all who encode and decode.
///
/// Threads:  any, once created.
class VX_EXPORT vxMPackDictionary : public vxRefCounted {
public:
    /// Adds the words of an array that ends with null; a word's index is its position there.
    explicit vxMPackDictionary(const char** aWords);
    vxMPackDictionary(const vxMPackDictionary&) = delete;
    vxMPackDictionary& operator=(const vxMPackDictionary&) = delete;
    ~vxMPackDictionary() override;

    /// Returns the index of a word, or -1.
    int32_t GetStringIndex(const char* aWord) const {
        return vxJSONMPackDictionary_GetStringIndex(mDictionary, aWord);
    }

    /// Returns the word at an index, or null.
    const char* GetStringAtIndex(int32_t anIndex) const {
        return vxJSONMPackDictionary_GetStringAtIndex(mDictionary, anIndex);
    }

    /// Returns the dictionary for the operations of the platform.
    ///
    /// Owner:    this object.
    vxJSONMPackDictionary_t* GetJSONMPackDictionary() const { return mDictionary; }

private:
    vxJSONMPackDictionary_t* mDictionary;  // owned
};

/// Reads and writes deep members by path: "a.b.c", "list[2].name", "$.a".
///
/// A path is a sequence of names, separated by dots. A name may be followed by one index in
/// brackets: decimal, hexadecimal behind "0x", or octal behind "0". Whatever single character follows the closing
/// bracket counts as the dot, so "a[1]xb" reads like "a[1].b", and "a[1][2]" is no path into an
/// array of arrays. The walk starts at an object, never at an array. "$" stands for the document and
/// is allowed only there; "$[0]", and a "$" at the end, are ordinary names.
class VX_EXPORT vxJSONPath {
public:
    /// Writes a value and returns whether it was written.
    ///
    /// The member is set in its object; a path that ends with an index replaces that item, or, with
    /// `afCreate`, appends one where the index equals the count. With `afCreate`, objects and arrays
    /// that are missing on the way are added, and so is the member; without, it fails.
    ///
    /// Another entry is written as a copy, a list as an array of strings, which replaces no item of an
    /// array, but can be appended.
    ///
    /// Fails:    false; what was created on the way may stay.
    /// @{
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, uint64_t aValue, bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, int64_t aValue, bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, double aValue, bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, bool afValue, bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, const char* aValue,
                    bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, const vxJSONEntry& aValue,
                    bool afCreate);
    static bool Set(const vxJSONEntry& anEntry, const char* aPath, const vxCSVStringList& aList,
                    bool afCreate);
    static bool SetNull(const vxJSONEntry& anEntry, const char* aPath, bool afCreate);
    /// @}

    /// Writes a text into a member that exists, keeping its kind.
    ///
    /// A number takes an unsigned 64-bit decimal number; a boolean "true" or "1", "false" or "0", in
    /// any case; a string any text. Anything else writes nothing.
    static bool Update(const vxJSONEntry& anEntry, const char* aPath, const char* aText);

    /// Makes the result a view on the addressed node. False if there is none.
    static bool FetchEntry(const vxJSONEntry& anEntry, const char* aPath, vxJSONEntry& aResult);

    /// Reads the addressed node as the operation of this name in vxJSONEntry does.
    ///
    /// Fails:    false where there is no such node, or the typed read fails; the target is left alone.
    /// @{
    static bool FetchObject(const vxJSONEntry& anEntry, const char* aPath, vxJSONObject& aResult);
    static bool FetchArray(const vxJSONEntry& anEntry, const char* aPath, vxJSONArray& aResult);
    static bool FetchString(const vxJSONEntry& anEntry, const char* aPath, vxCString& aResult);
    static bool FetchBool(const vxJSONEntry& anEntry, const char* aPath, bool* aResult);
    static bool FetchUInt64(const vxJSONEntry& anEntry, const char* aPath, uint64_t* aResult);
    static bool FetchInt64(const vxJSONEntry& anEntry, const char* aPath, int64_t* aResult);
    static bool FetchUInt32(const vxJSONEntry& anEntry, const char* aPath, uint32_t* aResult);
    static bool FetchDouble(const vxJSONEntry& anEntry, const char* aPath, double* aResult);
    static bool FetchUInt16(const vxJSONEntry& anEntry, const char* aPath, uint16_t* aResult);
    /// @}

    /// Writes what became of a path between two trees into a third, at the same path.
    ///
    /// Written is the new value; where the member went away, the old one after Reset(). Equal values
    /// are written only with `afForce`. Returns false where there is nothing to write.
    static bool FetchDiff(const vxJSONEntry& anOld, const vxJSONEntry& aNew, const char* aPath,
                          vxJSONEntry& aDiff, bool afForce);

    /// The same for each path of a list; true if any of them was written.
    static bool FetchDiff(const vxJSONEntry& anOld, const vxJSONEntry& aNew,
                          const vxCSVStringList& aPaths, vxJSONEntry& aDiff, bool afForce);
};
