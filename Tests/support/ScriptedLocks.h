#pragma once

// A platform whose locks fail on demand. Linking it replaces the operations below in the whole test
// program; they are forwarded where nothing is scripted.

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vxtest {

/// What the platform's locks answer for as long as it lives; one at a time, in one thread.
struct ScriptedLocks {
    ScriptedLocks();
    ~ScriptedLocks();
    ScriptedLocks(const ScriptedLocks&) = delete;
    ScriptedLocks& operator=(const ScriptedLocks&) = delete;

    bool mfNoMutex = false;  // creation gives null, and so on
    bool mfNoCondition = false;
    bool mfNoCriticalSection = false;
    bool mfNoSemaphore = false;
    bool mfNoSocketSelect = false;

    std::optional<int> mLockResult;  // answered instead of doing anything, and so on
    std::optional<int> mUnlockResult;
    std::optional<int> mSignalResult;
    std::optional<int> mWaitResult;

    std::function<void()> mAtUnlock;  // what happens before a mutex is unlocked
    std::function<void()> mInWait;    // what happens during a wait that is answered
    std::vector<std::string> mWaits;  // of conditions: "Wait" or "WaitTimeout 20", oldest first

    bool mfNoteCalls = false;
    std::vector<std::string> mCalls;  // if noted: "Lock", "Unlock" or "Signal", oldest first
};

}  // namespace vxtest
