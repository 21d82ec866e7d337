// Lines are views of the text that was read, so that what nobody changes is written back to the byte.
//
// A line never leaves its place: a key that is removed leaves a gap, which a mark or the key's return
// fills again. Blocks chain their lines, sections their blocks, lines of one name the earlier ones:
// no operation but Print() and the lists looks at more than it changes.

#include "IniText.h"

#include <algorithm>
#include <utility>

#include "Escapes.h"

namespace {

constexpr std::string_view kvxIni_Mark = ";deleted=";
constexpr std::string_view kvxIni_ByteOrderMark = "\xEF\xBB\xBF";

bool vxIsBlank(char aChar) {
    return aChar == ' ' || (aChar >= '\t' && aChar <= '\r');
}

std::string_view vxTrimmed(std::string_view aText) {
    while (!aText.empty() && vxIsBlank(aText.front())) {
        aText.remove_prefix(1);
    }
    while (!aText.empty() && vxIsBlank(aText.back())) {
        aText.remove_suffix(1);
    }
    return aText;
}

bool vxStartsWith(std::string_view aText, std::string_view aStart) {
    return aText.substr(0, aStart.size()) == aStart;
}

bool vxIsQuoted(std::string_view aText) {
    return aText.size() >= 2 && aText.front() == '"' && aText.back() == '"';
}

// Takes quotes and escapes away; the target has room for the text.
size_t vxUnquote(std::string_view aText, char* aTarget) {
    char* theEnd = aTarget;
    for (size_t i = 1; i + 1 < aText.size(); ++i) {
        const bool theEscaped = aText[i] == '\\' && i + 2 < aText.size();
        *theEnd++ = theEscaped ? vxUnescaped(aText[++i]) : aText[i];
    }
    return static_cast<size_t>(theEnd - aTarget);
}

std::string vxQuoted(std::string_view aValue) {
    std::string theText = "\"";
    for (const char theChar : aValue) {
        switch (theChar) {
            case '\n':
                theText += "\\n";
                break;
            case '\r':
                theText += "\\r";
                break;
            case '\t':
                theText += "\\t";
                break;
            case '"':
            case '\\':
                theText += '\\';
                theText += theChar;
                break;
            default:
                theText += theChar;
        }
    }
    return theText += '"';
}

bool vxNeedsQuotes(std::string_view aValue) {
    return vxIsQuoted(aValue) || vxTrimmed(aValue).size() != aValue.size() ||
           aValue.find_first_of("\r\n") != std::string_view::npos;
}

}  // namespace

void vxIniText::Parse(std::string aText) {
    mText = std::move(aText);
    mLines.clear();
    mBlocks.clear();
    mSections.clear();
    const std::string_view theText = mText;
    const size_t theCount = static_cast<size_t>(std::count(theText.begin(), theText.end(), '\n'));
    mLines.reserve(theCount + 1);
    mLineIndex.Reset(theCount);
    mSectionIndex.Reset(0);
    AddBlock(std::string_view(), std::string());
    mfEndsInLine = !theText.empty() && theText.back() != '\n';
    const size_t theFirstEnd = theText.find('\n');
    mLineEnd =
        theFirstEnd != std::string_view::npos && theFirstEnd > 0 && theText[theFirstEnd - 1] == '\r'
            ? "\r"
            : "";
    for (size_t thePos = 0; thePos < theText.size();) {
        const size_t theEnd = std::min(theText.find('\n', thePos), theText.size());
        ParseLine(theText.substr(thePos, theEnd - thePos));
        thePos = theEnd + 1;
    }
}

void vxIniText::ParseLine(std::string_view aLine) {
    std::string_view theText = vxTrimmed(aLine);
    while (vxStartsWith(theText, kvxIni_ByteOrderMark)) {
        theText = vxTrimmed(theText.substr(kvxIni_ByteOrderMark.size()));
    }
    if (theText.size() >= 2 && theText.front() == '[' && theText.back() == ']' &&
        theText.find('\0') == std::string_view::npos) {
        AddBlock(vxTrimmed(theText.substr(1, theText.size() - 2)), std::string(aLine));
        return;
    }
    Line theLine;
    theLine.mText = aLine;
    if (aLine.empty() || theText.empty()) {
        theLine.mKind = Kind::Blank;
    } else if (theText.find('\0') == std::string_view::npos) {
        ReadKey(theText, &theLine);
    }
    AddLine(std::move(theLine));
}

bool vxIniText::ReadKey(std::string_view aText, Line* aLine) {
    if (vxStartsWith(aText, kvxIni_Mark)) {
        aLine->mKey = vxTrimmed(aText.substr(kvxIni_Mark.size()));
        aLine->mKind = aLine->mKey.empty() ? Kind::Other : Kind::Mark;
        return true;
    }
    const size_t theEqual = aText.find('=');
    if (aText[0] == ';' || aText[0] == '#' || theEqual == 0 || theEqual == aText.npos) {
        return false;
    }
    aLine->mKind = Kind::Key;
    aLine->mKey = vxTrimmed(aText.substr(0, theEqual));
    aLine->mValue = vxTrimmed(aText.substr(theEqual + 1));
    if (vxIsQuoted(aLine->mValue)) {
        aLine->mOwned.reset(new char[aLine->mValue.size()]);
        const size_t theLength = vxUnquote(aLine->mValue, aLine->mOwned.get());
        aLine->mValue = std::string_view(aLine->mOwned.get(), theLength);
    }
    return true;
}

uint32_t vxIniText::FindSection(std::string_view aName) const {
    return mSectionIndex.Find(vxTextHash(aName.data(), aName.size()), [&](uint32_t aSection) {
        return mSections[aSection].mName == aName;
    });
}

uint32_t vxIniText::FindLine(const vxIniName& aName) const {
    return mLineIndex.Find(aName.mHash, [&](uint32_t anIndex) {
        const Line& theLine = mLines[anIndex];
        return theLine.mKey == aName.mKey &&
               mSections[mBlocks[theLine.mBlock].mSection].mName == aName.mSection;
    });
}

void vxIniText::AddBlock(std::string_view aSection, std::string aHeader) {
    const uint32_t theIndex = static_cast<uint32_t>(mBlocks.size());
    uint32_t theSection = FindSection(aSection);
    if (theSection == kNone) {
        theSection = static_cast<uint32_t>(mSections.size());
        const uint32_t theHash = vxTextHash(aSection.data(), aSection.size());
        mSections.push_back({std::string(aSection), theHash, theIndex, theIndex});
        mSectionIndex.Add(theHash, theSection);
    } else {
        mBlocks[mSections[theSection].mLastBlock].mNextOfSection = theIndex;
        mSections[theSection].mLastBlock = theIndex;
    }
    mBlocks.emplace_back();
    mBlocks.back().mHeader = std::move(aHeader);
    mBlocks.back().mSection = theSection;
}

// Neighboring lines that say nothing are kept as one.
bool vxIniText::ExtendRun(const Line& aLine) {
    const uint32_t theLast = mBlocks.back().mLast;
    if (theLast == kNone || aLine.mKind > Kind::Other || mLines[theLast].mKind != aLine.mKind) {
        return false;
    }
    const char* theStart = mLines[theLast].mText.data();
    const char* theEnd = aLine.mText.data() + aLine.mText.size();
    mLines[theLast].mText = std::string_view(theStart, static_cast<size_t>(theEnd - theStart));
    return true;
}

void vxIniText::AddLine(Line aLine) {
    if (ExtendRun(aLine)) {
        return;
    }
    Block& theBlock = mBlocks.back();
    const uint32_t theIndex = static_cast<uint32_t>(mLines.size());
    aLine.mBlock = static_cast<uint32_t>(mBlocks.size() - 1);
    (theBlock.mLast == kNone ? theBlock.mFirst : mLines[theBlock.mLast].mNext) = theIndex;
    theBlock.mLast = theIndex;
    const Kind theKind = aLine.mKind;
    mLines.push_back(std::move(aLine));
    if (theKind == Kind::Other) {
        theBlock.mLastText = theIndex;
    } else if (theKind != Kind::Blank) {
        theBlock.mLastKey = theIndex;
        const Section& theSection = mSections[theBlock.mSection];
        mLines[theIndex].mHash = vxIniName::HashIn(theSection.mHash, mLines[theIndex].mKey);
        Index(theIndex, theSection.mName);
    }
}

// The later of two lines counts.
void vxIniText::Index(uint32_t aLine, std::string_view aSection) {
    Line& theLine = mLines[aLine];
    const uint32_t theHash = theLine.mHash;
    const uint32_t theEarlier = mLineIndex.Find(theHash, [&](uint32_t anIndex) {
        const Line& theOther = mLines[anIndex];
        return theOther.mKey == theLine.mKey &&
               mSections[mBlocks[theOther.mBlock].mSection].mName == aSection;
    });
    if (theEarlier == kNone) {
        mLineIndex.Add(theHash, aLine);
    } else {
        mLineIndex.Replace(theHash, theEarlier, aLine);
        SetCounts(theEarlier, false);
        theLine.mEarlier = theEarlier;
    }
    SetCounts(aLine, true);
}

void vxIniText::SetCounts(uint32_t aLine, bool afCounts) {
    Line& theLine = mLines[aLine];
    theLine.mfCounts = afCounts;
    if (theLine.mKind == Kind::Key) {
        size_t& theCount = mSections[mBlocks[theLine.mBlock].mSection].mKeyCount;
        theCount = afCounts ? theCount + 1 : theCount - 1;
    }
}

// Of a line that counts.
void vxIniText::SetKind(uint32_t aLine, Kind aKind) {
    SetCounts(aLine, false);
    mLines[aLine].mKind = aKind;
    SetCounts(aLine, true);
}

// A block from which every key was taken and that says nothing else goes with its header.
bool vxIniText::IsEmptied(const Block& aBlock) const {
    if (!aBlock.mfReduced || &aBlock == &mBlocks.front()) {
        return false;
    }
    for (uint32_t i = aBlock.mFirst; i != kNone; i = mLines[i].mNext) {
        if (mLines[i].mKind != Kind::Gone && mLines[i].mKind != Kind::Blank) {
            return false;
        }
    }
    return true;
}

std::string vxIniText::Print() const {
    std::string theText;
    theText.reserve(mText.size() + 64);
    for (const Block& theBlock : mBlocks) {
        if (IsEmptied(theBlock)) {
            continue;
        }
        if (&theBlock != &mBlocks.front()) {
            theText.append(theBlock.mHeader).append(1, '\n');
        }
        for (uint32_t i = theBlock.mFirst; i != kNone; i = mLines[i].mNext) {
            if (mLines[i].mKind != Kind::Gone) {
                theText.append(mLines[i].mText).append(1, '\n');
            }
        }
    }
    if (mfEndsInLine && !theText.empty()) {
        theText.pop_back();
    }
    return theText;
}

vxIniState vxIniText::Find(const vxIniName& aName, std::string_view* aValue) const {
    const uint32_t theIndex = FindLine(aName);
    if (theIndex == kNone || mLines[theIndex].mKind == Kind::Gone) {
        return vxIniState::Absent;
    }
    *aValue = mLines[theIndex].mValue;
    return mLines[theIndex].mKind == Kind::Key ? vxIniState::Present : vxIniState::Deleted;
}

// Gives a line new text: prefix, key, sign, value as it is written; and behind it the value itself.
void vxIniText::Rewrite(Line* aLine, std::string_view aPrefix, std::string_view aKey,
                        std::string_view aSign, std::string_view aWritten,
                        std::string_view aValue) const {
    const std::string_view theParts[] = {aPrefix, aKey, aSign, aWritten, mLineEnd, aValue};
    size_t theLength = 0;
    for (const std::string_view thePart : theParts) {
        theLength += thePart.size();
    }
    std::unique_ptr<char[]> theOwned(new char[theLength]);
    char* theEnd = theOwned.get();
    for (const std::string_view thePart : theParts) {
        theEnd = std::copy(thePart.begin(), thePart.end(), theEnd);
    }
    // The views of the arguments may lead into the old text: it goes last.
    aLine->mKey = std::string_view(theOwned.get() + aPrefix.size(), aKey.size());
    aLine->mText = std::string_view(theOwned.get(), theLength - aValue.size());
    aLine->mValue = std::string_view(theEnd - aValue.size(), aValue.size());
    aLine->mOwned.swap(theOwned);
}

// Puts a line behind the last key of its section, else behind its comments: blank lines and remarks
// in front of the next section stay with that.
void vxIniText::Insert(const vxIniName& aName, Line aLine) {
    const uint32_t theSection = FindSection(aName.mSection);
    if (theSection == kNone) {
        AddBlock(aName.mSection, "[" + std::string(aName.mSection) + "]" + std::string(mLineEnd));
    }
    aLine.mBlock = theSection == kNone ? static_cast<uint32_t>(mBlocks.size() - 1)
                                       : mSections[theSection].mLastBlock;
    aLine.mHash = aName.mHash;
    Block& theBlock = mBlocks[aLine.mBlock];
    const uint32_t theIndex = static_cast<uint32_t>(mLines.size());
    const uint32_t theBefore = theBlock.mLastKey == kNone ? theBlock.mLastText : theBlock.mLastKey;
    uint32_t& theLink = theBefore == kNone ? theBlock.mFirst : mLines[theBefore].mNext;
    aLine.mNext = std::exchange(theLink, theIndex);
    theBlock.mLastKey = theIndex;
    mLines.push_back(std::move(aLine));
    Index(theIndex, aName.mSection);
    mfEndsInLine = false;
}

void vxIniText::Set(const vxIniName& aName, std::string_view aValue) {
    const uint32_t theIndex = FindLine(aName);
    if (theIndex != kNone && mLines[theIndex].mKind == Kind::Key &&
        mLines[theIndex].mValue == aValue) {
        return;
    }
    const std::string theQuoted = vxNeedsQuotes(aValue) ? vxQuoted(aValue) : std::string();
    const std::string_view theWritten = theQuoted.empty() ? aValue : theQuoted;
    Line theNew;
    Line* theLine = theIndex == kNone ? &theNew : &mLines[theIndex];
    Rewrite(theLine, std::string_view(), aName.mKey, "=", theWritten, aValue);
    if (theIndex != kNone) {
        SetKind(theIndex, Kind::Key);
        return;
    }
    theNew.mKind = Kind::Key;
    Insert(aName, std::move(theNew));
}

void vxIniText::Delete(const vxIniName& aName, bool afMark) {
    const uint32_t theIndex = FindLine(aName);
    if (theIndex == kNone) {
        if (afMark) {
            Line theNew;
            theNew.mKind = Kind::Mark;
            Rewrite(&theNew, kvxIni_Mark, aName.mKey, {}, {}, {});
            Insert(aName, std::move(theNew));
        }
        return;
    }
    if (afMark) {
        Rewrite(&mLines[theIndex], kvxIni_Mark, aName.mKey, {}, {}, {});
    }
    SetKind(theIndex, afMark ? Kind::Mark : Kind::Gone);
    mBlocks[mLines[theIndex].mBlock].mfReduced = true;
    uint32_t theEarlier = std::exchange(mLines[theIndex].mEarlier, kNone);
    while (theEarlier != kNone) {
        mBlocks[mLines[theEarlier].mBlock].mfReduced = true;
        mLines[theEarlier].mKind = Kind::Gone;
        theEarlier = mLines[theEarlier].mEarlier;
    }
}

std::vector<std::string_view> vxIniText::Sections() const {
    std::vector<std::string_view> theNames;
    for (const Section& theSection : mSections) {
        if (theSection.mKeyCount != 0 && !theSection.mName.empty()) {
            theNames.push_back(theSection.mName);
        }
    }
    return theNames;
}

bool vxIniText::HasKeys(std::string_view aSection) const {
    const uint32_t theSection = FindSection(aSection);
    return theSection != kNone && mSections[theSection].mKeyCount != 0;
}

std::vector<std::string_view> vxIniText::Keys(std::string_view aSection) const {
    std::vector<std::string_view> theNames;
    const uint32_t theSection = FindSection(aSection);
    uint32_t theBlock = theSection == kNone ? kNone : mSections[theSection].mFirstBlock;
    for (; theBlock != kNone; theBlock = mBlocks[theBlock].mNextOfSection) {
        for (uint32_t i = mBlocks[theBlock].mFirst; i != kNone; i = mLines[i].mNext) {
            if (mLines[i].mKind == Kind::Key && mLines[i].mfCounts) {
                theNames.push_back(mLines[i].mKey);
            }
        }
    }
    return theNames;
}
