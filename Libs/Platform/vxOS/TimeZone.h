#pragma once

// What the local clock shows, from what the C library knows about the zone.

#include <libteskTools/Types.h>

/// Local time minus UTC at some instant.
struct vxTimeZoneOffset {
    int32_t mSeconds;
    bool mfDaylight;
};

/// Finds the local offset at an instant; false when only the C library itself can convert it.
///
/// Threads:  any, as long as none changes the environment.
bool vxTimeZone_Find(int32_t aSeconds, vxTimeZoneOffset& anOffset);

/// Makes the C library take the zone from the environment again.
void vxTimeZone_Refresh();
