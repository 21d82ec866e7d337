#pragma once

#include <cstdint>

#include "vx/Api.h"
#include "vx/CString.h"

/// A version number of three parts, such as 1.2.3.
///
/// Threads:  one at a time.
struct VX_EXPORT vxVersion {
    /// Reads up to three decimal parts between dots; a part that is missing or is no number as a
    /// whole is 0, and what follows a third dot is ignored.
    explicit vxVersion(const vxCString& aText);

    /// Returns whether the version is later than the given one.
    bool IsGreater(uint32_t aMajor, uint32_t aMinor, uint32_t aRevision) const;

    /// Returns whether no part is smaller than the given one.
    ///
    /// This compares part by part: 2.0.0 is not greater or equal to 1.5.3 here, for its minor part
    /// is smaller. Programs depend on it; for the order of versions, ask whether the other version
    /// is not greater.
    bool IsGreaterOrEqual(uint32_t aMajor, uint32_t aMinor, uint32_t aRevision) const;

    /// Returns the first `aMaxPart` parts with dots between them.
    ///
    /// Asserts:  (aMaxPart <= 3) && (aMaxPart > 0); the empty text then.
    vxCString ToString(int aMaxPart) const;

    uint32_t mMajor = 0;     ///< first part
    uint32_t mMinor = 0;     ///< second part
    uint32_t mRevision = 0;  ///< third part
};
