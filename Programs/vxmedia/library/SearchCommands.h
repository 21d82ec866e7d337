#pragma once

#include <cstdint>

#include "Console.h"
#include "MediaLibrary.h"
#include "vx/CString.h"

namespace vxmedia {

/// Lists the first `aMaxCount` media files that match search criteria, by path.
///
/// Fails:    with an error text, which is empty on success.
vxCString FindItems(const MediaLibrary& aLibrary, const vxCString& aCriteria, uint32_t aMaxCount,
                    Console& aConsole);

}  // namespace vxmedia
