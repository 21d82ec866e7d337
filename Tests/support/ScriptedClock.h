#pragma once

// A clock that the test turns by hand. Linking it replaces the platform's ticks, monotonic time,
// local milliseconds and sleep in the whole test program; they are forwarded while no scripted clock
// lives.

#include <libvxOS/TimeVal.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace vxtest {

/// Answers for the platform's clocks for as long as it lives; one at a time.
///
/// Threads:  any.
class ScriptedClock {
public:
    /// Ticks and monotonic time start where told, local milliseconds at 1000000.
    explicit ScriptedClock(uint32_t aTick = 1000000, vxtimeval aTime = {5000, 0});
    ~ScriptedClock();
    ScriptedClock(const ScriptedClock&) = delete;
    ScriptedClock& operator=(const ScriptedClock&) = delete;

    /// Moves all clocks on.
    void Advance(uint32_t aMS);

    void SetTick(uint32_t aTick);
    void SetTime(vxtimeval aTime);
    void SetLocalTimeMS(uint64_t aTime);
    uint32_t GetTick() const;
    vxtimeval GetTime() const;
    uint64_t GetLocalTimeMS() const;

    /// Runs `anAction` once, behind the next reading of the monotonic time: what another thread
    /// might do before the reader goes on.
    void AfterNextTime(std::function<void()> anAction);

    /// Reads the monotonic time for the platform.
    vxtimeval TakeTime();

    /// Runs `anAction` once, during the next sleep and in the thread that sleeps.
    void AtNextSleep(std::function<void()> anAction);

    /// Moves all clocks on by the duration of the sleep, and remembers it.
    void Sleep(uint32_t aMS);

    /// The sleeps that were asked for, in milliseconds, oldest first.
    std::vector<uint32_t> Sleeps() const;

private:
    void AdvanceLocked(uint32_t aMS);

    mutable std::mutex mMutex;  // guards everything below
    uint32_t mTick;
    vxtimeval mTime;
    uint64_t mLocalTimeMS = 1000000;
    std::vector<uint32_t> mSleeps;
    std::function<void()> mAfterNextTime;
    std::function<void()> mAtNextSleep;
};

}  // namespace vxtest
