#pragma once

// Watches the allocations of the tools library, and lets them fail on demand.
//
// Linking this fixture puts its own vxMalloc() and vxRealloc() in front of the library's.

#include <cstddef>

namespace vxtest {

/// Counts what is allocated while it lives; one at a time.
///
/// Threads:  one at a time.
class Allocations {
public:
    Allocations();
    ~Allocations();
    Allocations(const Allocations&) = delete;
    Allocations& operator=(const Allocations&) = delete;

    size_t Mallocs() const;
    size_t Reallocs() const;
    /// Bytes asked for by the last call.
    size_t LastSize() const;

    /// Makes every allocation after the next `aCount` fail, as when memory has run out.
    void FailAfter(size_t aCount);
};

}  // namespace vxtest
