#pragma once

#include <cstdint>
#include <string>

#include "vx/DateTime.h"
#include "vx/MediaInfo.h"

/// Sets fields of all kinds: texts that begin with the prefix, numbers from the offset on.
inline void FillFields(vxMediaInfo& anInfo, const char* aPrefix, int64_t anOffset) {
    const std::string thePrefix(aPrefix);
    anInfo.Set("ti", (thePrefix + "title").c_str(), true);
    anInfo.Set("cr", (thePrefix + "creator").c_str(), true);
    anInfo.Set("ge", (thePrefix + "genre").c_str(), true);
    anInfo.Set("an", (thePrefix + "album").c_str(), true);
    anInfo.Set("id", (thePrefix + "id").c_str(), true);
    anInfo.SetFilePath((thePrefix + "path").c_str());
    anInfo.SetCoverArt((thePrefix + "type").c_str(), anOffset, static_cast<size_t>(anOffset) + 1);
    anInfo.SetCoverArtEncoding(static_cast<int>(anOffset % 2), static_cast<size_t>(anOffset) + 2);
    anInfo.SetDiscNumber(static_cast<uint16_t>(anOffset));
    anInfo.SetLastModificationTime(vxDateTime(static_cast<long>(anOffset)));
}
