#pragma once

// Allocation of the platform that fails on demand. List ../support/ScriptedMemory.cpp among the
// sources of the test.

namespace vxtest {

/// Makes vxMalloc(), vxCalloc(), vxRealloc() and vxTryMalloc() fail for as long as it lives.
///
/// The first three report as they do when memory runs out; keep a Reports alive, or they end the
/// program.
class NoMemory {
public:
    NoMemory();
    ~NoMemory();
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

/// Returns how often vxRealloc() was called so far.
int ReallocCount();

}  // namespace vxtest
