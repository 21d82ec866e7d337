#pragma once

// What the local clock shows, from what the C library knows about the zone.

#include <libteskTools/Types.h>

/// The offsets of one zone.
struct vxTimeZone;

/// Local time minus UTC at some instant.
struct vxTimeZoneOffset {
    int32_t mSeconds;
    bool mfDaylight;
};

/// Returns the zone that the environment names now. It stays valid for the life of the program.
///
/// Threads:  any, as long as none changes the environment.
vxTimeZone& vxTimeZone_Current();

/// Finds the offset at an instant; false when only the C library itself can convert it.
///
/// The zone must be the current one.
bool vxTimeZone_Find(vxTimeZone& aZone, int32_t aSeconds, vxTimeZoneOffset& anOffset);

/// Makes the C library take the zone from the environment again.
void vxTimeZone_Refresh();
