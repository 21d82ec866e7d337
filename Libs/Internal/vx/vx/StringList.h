#pragma once

#include <cstddef>
#include <cstdint>

#include "vx/Api.h"
#include "vx/CString.h"

/// A list of texts that is split from, and joined to, one text with separators.
///
/// An escape byte lets an item contain the separator: with ',' and '\' the text `a\,b,c` has the
/// items `a,b` and `c`. Only an escape byte directly before a separator means anything; every other
/// one stays in its item, and none protects another. An escape of 0, or equal to the separator,
/// means that there is no escaping.
///
///     vxStringList theList("jpg;png", ';', 0);
///     theList.Add("gif");
///     vxCString theText = theList.GetString(0);   // "jpg;png;gif"
///
/// All items lie in one buffer with one array of offsets, so splitting costs two allocations however
/// many items there are. A text that is handed in may be an item of the list itself; a null text
/// counts as the empty text.
///
/// Owner:    the list owns its texts; pointers to items are good until the next change.
/// Threads:  one at a time.
class VX_EXPORT vxStringList {
public:
    /// No item.
    static constexpr size_t npos = vxCString::npos;

    /// An empty list with the separator ' '.
    vxStringList() = default;
    /// As Set().
    vxStringList(const char* aStr, char aSeparator, char anEscape);
    /// Copies items and separator.
    vxStringList(const vxStringList& aOther);
    /// Copies items and separator.
    vxStringList& operator=(const vxStringList& aOther);
    virtual ~vxStringList();

    /// Replaces the items by those of the text, and the separator.
    ///
    /// Empty items count: "a,,b" has three, "," two. A null or empty text has none.
    ///
    /// Cost:     linear in the text, two allocations.
    void Set(const char* aStr, char aSeparator, char anEscape);

    /// Removes every item and frees the memory; the separator stays.
    void Reset();

    /// Returns the number of items.
    size_t GetCount() const { return mCount; }

    /// Returns an item.
    ///
    /// Asserts:  anIndex < mCount; the empty text then.
    /// Cost:     constant.
    const char* GetAt(size_t anIndex) const;

    /// Returns an item, or `aDefault` when there is none.
    const char* GetAt(size_t anIndex, const char* aDefault) const;

    /// Returns an item as a decimal number, or `aDefault` when there is none or it is no such number
    /// as a whole. `afOk`, unless null, receives whether the value is the item's.
    int32_t GetAtInt32(size_t anIndex, int32_t aDefault, bool* afOk = NULL) const;
    /// As GetAtInt32(), for a number without a sign.
    uint32_t GetAtUInt32(size_t anIndex, uint32_t aDefault, bool* afOk = NULL) const;

    /// As GetAtUInt32(), for a number of base 16 without a prefix.
    uint32_t GetAtUInt32Hex(size_t anIndex, uint32_t aDefault, bool* afOk = NULL) const;

    /// Joins the items with the separator; each separator inside an item gets `anEscape` in front,
    /// unless that is 0. Of no items it is the empty text.
    ///
    /// Cost:     linear, one block for the text.
    vxCString GetString(char anEscape) const;

    /// Appends an item.
    ///
    /// Cost:     reallocates both blocks to exactly what is needed; so does Prepend(), which moves
    ///           every item.
    void Add(const char* aStr);

    /// Inserts an item in front.
    void Prepend(const char* aStr);

    /// Appends a number in decimal.
    void AddInt32(int aValue);
    /// Appends a number in decimal.
    void AddUInt32(unsigned aValue);

    /// Returns the first item that equals the text, byte by byte or with the letters of ASCII equal
    /// in either case, or `npos`.
    ///
    /// Cost:     linear.
    size_t IndexOf(const char* aStr, bool afCaseSensitive) const;
    /// Returns whether IndexOf() finds the text.
    bool Has(const char* aStr, bool afCaseSensitive) const {
        return IndexOf(aStr, afCaseSensitive) != npos;
    }
    /// Returns whether an item is the number as AddInt32() writes it.
    bool HasInt32(int aValue) const;
    /// Returns whether an item is the number as AddUInt32() writes it.
    bool HasUInt32(unsigned aValue) const;

    /// Removes the first item that equals the text byte by byte; false when there is none.
    bool Remove(const char* aStr);
    /// As Remove(), for the number as AddUInt32() writes it.
    bool RemoveUInt32(unsigned aValue);

    /// Removes an item; false when there is none at this index.
    ///
    /// Its bytes stay in the buffer until the next Set() or Reset().
    bool RemoveAt(size_t anIndex);

    /// Removes every empty item.
    void RemoveEmpty();

    /// Appends the items of `aOther` in order; unless `afAllowDuplicates`, those that the list has
    /// already, in the given comparison, are skipped.
    ///
    /// Cost:     linear in both lists.
    void Merge(const vxStringList& aOther, bool afCaseSensitive, bool afAllowDuplicates);

    /// Compares as sets, byte by byte: both lists have the same count, every item of this one is in
    /// the other, and the separators are equal if that is checked.
    ///
    /// So `a,a` equals `a,b`, but not the other way round: programs depend on it.
    ///
    /// Cost:     linear in both lists.
    bool IsEqual(const vxStringList& aOther, bool afCheckSeparator) const;

    /// Fills `anAdded` with the items that only `aNew` has and `aRemoved` with those that only
    /// `aOld` has, each in its list's order; what the two held before is dropped.
    ///
    /// Cost:     linear in both lists.
    static void ComputeDiff(const vxStringList& aOld, const vxStringList& aNew,
                            vxStringList& anAdded, vxStringList& aRemoved);

private:
    bool Grow(size_t aCount, size_t aSize);
    void Append(const char* aStr, size_t aSize);
    bool AppendAll(const char* const* anItems, size_t aCount);
    void Split(const char* aStr, size_t aLength, char aSeparator, char anEscape);
    size_t OffsetOf(const char* aStr) const;
    bool IsPlain(char anEscape) const;
    char* JoinPlain() const;
    char* JoinItems(char anEscape) const;
    void SwapItems(vxStringList& aOther);

    char* mStr = NULL;  // owned: every item, each ended by a NUL
    char mSeparatorChar = ' ';
    size_t* mIndex = NULL;        // owned: where each item starts in mStr, ascending
    size_t mCount = 0;            // items
    size_t mAllocatedLength = 0;  // bytes in use in mStr, NULs included
};

/// A string list with the separator ','.
class VX_EXPORT vxCSVStringList : public vxStringList {
public:
    /// An empty list; `anEscape` has nothing to act on.
    explicit vxCSVStringList(char anEscape = 0);
    /// Splits the text at commas.
    explicit vxCSVStringList(const char* aStr, char anEscape = 0);
    ~vxCSVStringList() override;
};
