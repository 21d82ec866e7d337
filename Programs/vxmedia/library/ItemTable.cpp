#include "library/ItemTable.h"

#include "ItemFacts.h"
#include "TerminalText.h"

namespace vxmedia {

namespace {

vxCString PictureText(const MediaFacts& aFacts) {
    return aFacts.IsPicture() ? vxCString::Format("%ux%u", aFacts.mWidth, aFacts.mHeight) : "-";
}

vxCString ChannelsText(const MediaFacts& aFacts) {
    return aFacts.IsSound() ? NumberText(aFacts.mChannels) : "-";
}

vxCString RateText(const MediaFacts& aFacts) {
    return aFacts.IsSound() ? NumberText(aFacts.mRate) : "-";
}

vxCString PlayingTimeText(const MediaFacts& aFacts) {
    return aFacts.mfDurationKnown ? SecondsText(aFacts.DurationMS()) : "-";
}

}  // namespace

ItemTable::ItemTable() : mTable("rlrlrrrl") {
    mTable.AddRow({"ID", "FORMAT", "BYTES", "PICTURE", "CHANNELS", "RATE", "SECONDS", "PATH"});
}

void ItemTable::Add(const MediaItem& anItem) {
    const MediaFacts& theFacts = anItem.GetFacts();
    mTable.AddRow({NumberText(anItem.GetID()),
                   EscapeForTerminal(anItem.GetFormat().mName, EscapeMode::Text),
                   NumberText(anItem.GetSize()), PictureText(theFacts), ChannelsText(theFacts),
                   RateText(theFacts), PlayingTimeText(theFacts),
                   EscapeForTerminal(anItem.GetPath(), EscapeMode::Name)});
    ++mCount;
}

vxCString ItemTable::GetText(size_t aTotal) const {
    return mTable.GetText() + NumberText(mCount) + " of " + NumberText(aTotal) + " media files\n";
}

}  // namespace vxmedia
