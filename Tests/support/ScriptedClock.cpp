// The definitions with C linkage stand in front of the platform's, because the program's symbols
// are found before those of its libraries.

#include "support/ScriptedClock.h"

#include <libvxOS/Clock.h>
#include <libvxOS/Thread.h>
#include <libvxOS/Time.h>

#include <atomic>
#include <utility>

#include "support/Forward.h"

namespace {

std::atomic<vxtest::ScriptedClock*> sClock{nullptr};

}  // namespace

namespace vxtest {

ScriptedClock::ScriptedClock(uint32_t aTick, vxtimeval aTime) : mTick(aTick), mTime(aTime) {
    sClock = this;
}

ScriptedClock::~ScriptedClock() {
    sClock = nullptr;
}

void ScriptedClock::Advance(uint32_t aMS) {
    std::lock_guard<std::mutex> theLock(mMutex);
    AdvanceLocked(aMS);
}

void ScriptedClock::AdvanceLocked(uint32_t aMS) {
    mTick += aMS;
    mLocalTimeMS += aMS;
    const int64_t theMicroseconds = mTime.tv_usec + int64_t{aMS} * 1000;
    mTime.tv_sec += static_cast<int32_t>(theMicroseconds / 1000000);
    mTime.tv_usec = static_cast<int32_t>(theMicroseconds % 1000000);
}

void ScriptedClock::SetTick(uint32_t aTick) {
    std::lock_guard<std::mutex> theLock(mMutex);
    mTick = aTick;
}

void ScriptedClock::SetTime(vxtimeval aTime) {
    std::lock_guard<std::mutex> theLock(mMutex);
    mTime = aTime;
}

void ScriptedClock::SetLocalTimeMS(uint64_t aTime) {
    std::lock_guard<std::mutex> theLock(mMutex);
    mLocalTimeMS = aTime;
}

uint64_t ScriptedClock::GetLocalTimeMS() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mLocalTimeMS;
}

uint32_t ScriptedClock::GetTick() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mTick;
}

vxtimeval ScriptedClock::GetTime() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mTime;
}

void ScriptedClock::AfterNextTime(std::function<void()> anAction) {
    std::lock_guard<std::mutex> theLock(mMutex);
    mAfterNextTime = std::move(anAction);
}

vxtimeval ScriptedClock::TakeTime() {
    vxtimeval theTime;
    std::function<void()> theAction;
    {
        std::lock_guard<std::mutex> theLock(mMutex);
        theTime = mTime;
        theAction.swap(mAfterNextTime);
    }
    if (theAction) {
        theAction();
    }
    return theTime;
}

void ScriptedClock::AtNextSleep(std::function<void()> anAction) {
    std::lock_guard<std::mutex> theLock(mMutex);
    mAtNextSleep = std::move(anAction);
}

void ScriptedClock::Sleep(uint32_t aMS) {
    std::function<void()> theAction;
    {
        std::lock_guard<std::mutex> theLock(mMutex);
        mSleeps.push_back(aMS);
        AdvanceLocked(aMS);
        theAction.swap(mAtNextSleep);
    }
    if (theAction) {
        theAction();
    }
}

std::vector<uint32_t> ScriptedClock::Sleeps() const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return mSleeps;
}

}  // namespace vxtest

uint32_t vxTime_GetTickCount(void) {
    if (const vxtest::ScriptedClock* theClock = sClock) {
        return theClock->GetTick();
    }
    return VXTEST_REAL(vxTime_GetTickCount)();
}

void vxMonoliticTime_GetTime(vxtimeval* aTime) {
    if (vxtest::ScriptedClock* theClock = sClock) {
        *aTime = theClock->TakeTime();
        return;
    }
    VXTEST_REAL(vxMonoliticTime_GetTime)(aTime);
}

void vxTime_GetLocalTimeMS(vxULongLong* aTime) {
    if (const vxtest::ScriptedClock* theClock = sClock) {
        const uint64_t theTime = theClock->GetLocalTimeMS();
        *aTime = {static_cast<uint32_t>(theTime), static_cast<uint32_t>(theTime >> 32)};
        return;
    }
    VXTEST_REAL(vxTime_GetLocalTimeMS)(aTime);
}

void vxThread_Sleep(uint32_t aMSDuration) {
    if (vxtest::ScriptedClock* theClock = sClock) {
        theClock->Sleep(aMSDuration);
        return;
    }
    VXTEST_REAL(vxThread_Sleep)(aMSDuration);
}
