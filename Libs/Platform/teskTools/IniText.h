#pragma once

// The text of one INI file: its lines as they stand, and an index of its keys.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "TextHash.h"

/// A key of a section, ready to be looked up in several texts.
struct vxIniName {
    vxIniName(std::string_view aSection, std::string_view aKey)
        : mSection(aSection), mKey(aKey), mHash(HashOf(aSection, aKey)) {}

    static uint32_t HashOf(std::string_view aSection, std::string_view aKey) {
        return HashIn(vxTextHash(aSection.data(), aSection.size()), aKey);
    }
    static uint32_t HashIn(uint32_t aSectionHash, std::string_view aKey) {
        return vxTextHash(aKey.data(), aKey.size(), aSectionHash);
    }

    std::string_view mSection;
    std::string_view mKey;
    uint32_t mHash;
};

enum class vxIniState { Absent, Present, Deleted };

/// Views that it hands out hold until the text changes.
class vxIniText {
public:
    vxIniText() { Parse(std::string()); }
    vxIniText(const vxIniText&) = delete;
    vxIniText& operator=(const vxIniText&) = delete;

    /// Replaces everything by the lines of a text; every text of less than 4 GB is accepted.
    void Parse(std::string aText);

    /// Returns the lines as a text, which is the parsed one where nothing was changed.
    std::string Print() const;

    /// Looks a key up; `aValue` receives the value of a present one.
    vxIniState Find(const vxIniName& aName, std::string_view* aValue) const;

    /// Sets a key in its line, or in a new line behind the last key of its section.
    void Set(const vxIniName& aName, std::string_view aValue);

    /// Removes a key; `afMark` leaves a mark that says so.
    void Delete(const vxIniName& aName, bool afMark);

    /// Returns the named sections that have keys, in the order of their first headers.
    std::vector<std::string_view> Sections() const;

    bool HasKeys(std::string_view aSection) const;

    /// Returns the keys of a section, in the order of the lines that count.
    std::vector<std::string_view> Keys(std::string_view aSection) const;

private:
    static constexpr uint32_t kNone = vxHashIndex::kNone;

    enum class Kind : uint8_t { Blank, Other, Key, Mark, Gone };

    struct Line {
        std::string_view mText;  // without its line end; blank and other lines come in runs
        std::string_view mKey;   // of a key, a mark, or what was one
        std::string_view mValue;
        std::unique_ptr<char[]> mOwned;  // where the views lead that are not the file's
        uint32_t mHash = 0;
        uint32_t mBlock = 0;
        uint32_t mNext = kNone;     // of the block
        uint32_t mEarlier = kNone;  // line with the same name, which does not count
        Kind mKind = Kind::Other;
        bool mfCounts = false;  // the last line of its name
    };

    // What stands between two headers.
    struct Block {
        std::string mHeader;  // its line; the first block has none
        uint32_t mSection;
        uint32_t mNextOfSection = kNone;
        uint32_t mFirst = kNone;
        uint32_t mLast = kNone;      // when the text was read
        uint32_t mLastKey = kNone;   // new keys go behind it
        uint32_t mLastText = kNone;  // or, where there is none, behind this
        bool mfReduced = false;      // keys were taken out
    };

    struct Section {
        std::string mName;
        uint32_t mHash;
        uint32_t mFirstBlock;
        uint32_t mLastBlock;
        size_t mKeyCount = 0;
    };

    void ParseLine(std::string_view aLine);
    static bool ReadKey(std::string_view aText, Line* aLine);
    uint32_t FindSection(std::string_view aName) const;
    uint32_t FindLine(const vxIniName& aName) const;
    void AddBlock(std::string_view aSection, std::string aHeader);
    void AddLine(Line aLine);
    bool ExtendRun(const Line& aLine);
    void Insert(const vxIniName& aName, Line aLine);
    void Index(uint32_t aLine, std::string_view aSection);
    void SetCounts(uint32_t aLine, bool afCounts);
    void SetKind(uint32_t aLine, Kind aKind);
    void Rewrite(Line* aLine, std::string_view aPrefix, std::string_view aKey,
                 std::string_view aSign, std::string_view aWritten, std::string_view aValue) const;
    bool IsEmptied(const Block& aBlock) const;

    std::string mText;  // as it was parsed
    std::vector<Line> mLines;
    std::vector<Block> mBlocks;      // never empty
    std::vector<Section> mSections;  // the first is the one without a name
    vxHashIndex mLineIndex;          // the lines that count, by name
    vxHashIndex mSectionIndex;
    std::string_view mLineEnd;  // what new lines have in front of the line feed
    bool mfEndsInLine = false;  // the text's last line has no line end
};
