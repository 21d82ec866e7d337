// What the console shows and what exports hold comes from one list, so that they agree.

#include "ItemFacts.h"

#include "TerminalText.h"

namespace vxmedia {

namespace {

ItemFact TextFact(const char* aName, const vxCString& aText, EscapeMode aMode) {
    return {aName, ItemFact::Kind::Text, EscapeForTerminal(aText, aMode)};
}

ItemFact NumberFact(const char* aName, uint64_t aNumber) {
    return {aName, ItemFact::Kind::Number, NumberText(aNumber), aNumber};
}

ItemFact SecondsFact(const char* aName, const MediaFacts& aFacts) {
    if (!aFacts.mfDurationKnown) {
        return {aName, ItemFact::Kind::Unknown, "-"};
    }
    const uint64_t theDurationMS = aFacts.DurationMS();
    return {aName, ItemFact::Kind::Seconds, SecondsText(theDurationMS), theDurationMS};
}

}  // namespace

std::vector<ItemFact> GetItemFacts(const MediaItem& anItem) {
    const MediaFacts& theFacts = anItem.GetFacts();
    std::vector<ItemFact> theResult;
    theResult.push_back(NumberFact("id", anItem.GetID()));
    theResult.push_back(TextFact("path", anItem.GetPath(), EscapeMode::Name));
    theResult.push_back(TextFact("format", anItem.GetFormat().mName, EscapeMode::Text));
    theResult.push_back(NumberFact("bytes", anItem.GetSize()));
    if (theFacts.IsPicture()) {
        theResult.push_back(NumberFact("width", theFacts.mWidth));
        theResult.push_back(NumberFact("height", theFacts.mHeight));
    }
    if (theFacts.IsSound()) {
        theResult.push_back(NumberFact("channels", theFacts.mChannels));
        theResult.push_back(NumberFact("rate", theFacts.mRate));
        theResult.push_back(SecondsFact("seconds", theFacts));
    }
    theResult.push_back(TextFact("detail", theFacts.mDetail, EscapeMode::Text));
    return theResult;
}

vxCString NumberText(uint64_t aNumber) {
    return vxCString::Format("%llu", static_cast<unsigned long long>(aNumber));
}

vxCString SecondsText(uint64_t aDurationMS) {
    return vxCString::Format("%llu.%03u", static_cast<unsigned long long>(aDurationMS / 1000),
                             static_cast<unsigned>(aDurationMS % 1000));
}

}  // namespace vxmedia
