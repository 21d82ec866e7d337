// Offsets of the local zone, learned from the C library once and then looked up.
//
// The 32-bit seconds are cut into 1024 spans of 49 days. The first question about a span asks the C
// library for the offset at 65 instants, finds the second at which the offset changes, if it does,
// and packs the result into one word. Spans with more than one change, and zones whose local time
// is not a whole offset from UTC (those that count leap seconds), are left to the C library.
//
// Each value of TZ has its own table, which is kept: programs see few zones in their lives. A
// thread remembers where in the environment it found TZ, so that noticing a change takes one look
// at that place instead of a search.

#include "TimeZone.h"

#include "Calendar.h"

#include <atomic>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string>

#include <unistd.h>

constexpr int kvxTimeZone_SpanBits = 22;
constexpr size_t kvxTimeZone_SpanCount = size_t{1} << (32 - kvxTimeZone_SpanBits);

struct vxTimeZone {
    std::string mEntry;  // "TZ=...", or empty where the environment has none
    vxTimeZone* mNext;
    std::atomic<uint64_t> mSpans[kvxTimeZone_SpanCount];  // 0: not asked for yet
};

namespace {

constexpr int kvxTimeZone_StepBits = 16;
constexpr int64_t kvxTimeZone_SpanLength = int64_t{1} << kvxTimeZone_SpanBits;

// A span in one word: offset before the change, offset from it on, its second within the span, and
// what is known. Without a change both offsets are the same.
constexpr int kvxTimeZone_OffsetBits = 18;
constexpr int32_t kvxTimeZone_OffsetBias = 1 << (kvxTimeZone_OffsetBits - 1);
constexpr int kvxTimeZone_HalfBits = kvxTimeZone_OffsetBits + 1;
constexpr int kvxTimeZone_ChangeShift = 2 * kvxTimeZone_HalfBits;
constexpr uint64_t kvxTimeZone_Known = uint64_t{1} << 62;
constexpr uint64_t kvxTimeZone_Irregular = uint64_t{1} << 63;

// Where a thread saw TZ last, or the end of an environment without it.
struct vxZoneView {
    char** mEnvironment;
    size_t mIndex;
    const char* mEntry;     // null at the end
    const char* mPrevious;  // the entry before the end, null before any other
    vxTimeZone* mZone;

    bool IsCurrent() const {
        if (environ == nullptr || mEnvironment != environ || environ[mIndex] != mEntry) {
            return false;
        }
        // A text that putenv() handed in may have been rewritten in its place. An environment that
        // has shrunk leaves null pointers behind its end, so the end is known by what precedes it.
        return mEntry != nullptr ? strcmp(mZone->mEntry.c_str(), mEntry) == 0
                                 : mIndex == 0 || environ[mIndex - 1] == mPrevious;
    }
};

std::mutex sMutex;  // guards sZones and the C library's zone while a span is learned
vxTimeZone* sZones;
// Loaded with the program, so that reaching it takes no call.
__attribute__((tls_model("initial-exec"))) thread_local vxZoneView sView;

bool vxIsZoneEntry(const char* anEntry) {
    return strncmp(anEntry, "TZ=", 3) == 0;
}

vxTimeZone* vxZoneOf(const char* anEntry) {
    std::lock_guard<std::mutex> theLock(sMutex);
    vxTimeZone* theZone = sZones;
    while (theZone != nullptr && theZone->mEntry != anEntry) {
        theZone = theZone->mNext;
    }
    if (theZone == nullptr) {
        theZone = new vxTimeZone{anEntry, sZones, {}};
        sZones = theZone;
    }
    return theZone;
}

vxTimeZone& vxLookForZone() {
    size_t theIndex = 0;
    if (environ != nullptr) {
        while (environ[theIndex] != nullptr && !vxIsZoneEntry(environ[theIndex])) {
            ++theIndex;
        }
    }
    const char* theEntry = environ == nullptr ? nullptr : environ[theIndex];
    const char* thePrevious = theEntry == nullptr && theIndex > 0 ? environ[theIndex - 1] : nullptr;
    sView = {environ, theIndex, theEntry, thePrevious,
             vxZoneOf(theEntry == nullptr ? "" : theEntry)};
    return *sView.mZone;
}

uint64_t vxPacked(const vxTimeZoneOffset& anOffset) {
    return static_cast<uint64_t>(anOffset.mSeconds + kvxTimeZone_OffsetBias) |
           static_cast<uint64_t>(anOffset.mfDaylight) << kvxTimeZone_OffsetBits;
}

vxTimeZoneOffset vxUnpacked(uint64_t aHalf) {
    const uint64_t theMask = (uint64_t{1} << kvxTimeZone_OffsetBits) - 1;
    return {static_cast<int32_t>(aHalf & theMask) - kvxTimeZone_OffsetBias,
            (aHalf >> kvxTimeZone_OffsetBits & 1) != 0};
}

// The packed offset that the C library has for an instant, or the irregular mark.
uint64_t vxAsk(int64_t aSeconds) {
    const time_t theTime = static_cast<time_t>(aSeconds);
    struct tm theFields;
    if (localtime_r(&theTime, &theFields) == nullptr) {
        return kvxTimeZone_Irregular;
    }
    const vxtm theCopy = {theFields.tm_sec,
                          theFields.tm_min,
                          theFields.tm_hour,
                          theFields.tm_mday,
                          theFields.tm_mon,
                          theFields.tm_year,
                          0,
                          0,
                          0,
                          0};
    const int64_t theOffset = vxCalendar_Seconds(theCopy) - aSeconds;
    if (theOffset != theFields.tm_gmtoff || theOffset < -kvxTimeZone_OffsetBias ||
        theOffset >= kvxTimeZone_OffsetBias) {
        return kvxTimeZone_Irregular;
    }
    return vxPacked({static_cast<int32_t>(theOffset), theFields.tm_isdst > 0});
}

// The first second after `aFrom` whose offset is not that of `aFrom`; `aTo` has another one.
int64_t vxFindChange(int64_t aFrom, int64_t aTo, uint64_t anOffset) {
    int64_t theFrom = aFrom;
    int64_t theTo = aTo;
    while (theTo - theFrom > 1) {
        const int64_t theMiddle = theFrom + (theTo - theFrom) / 2;
        (vxAsk(theMiddle) == anOffset ? theFrom : theTo) = theMiddle;
    }
    return theTo;
}

uint64_t vxLearnSpan(int64_t aStart) {
    const uint64_t theFirst = vxAsk(aStart);
    uint64_t theLast = theFirst;
    int64_t theChange = 0;
    int64_t thePosition = 0;
    while (thePosition < kvxTimeZone_SpanLength - 1) {
        const int64_t theStep = int64_t{1} << kvxTimeZone_StepBits;
        const int64_t theNext = thePosition + theStep < kvxTimeZone_SpanLength
                                    ? thePosition + theStep
                                    : kvxTimeZone_SpanLength - 1;
        const uint64_t theOffset = vxAsk(aStart + theNext);
        if (theOffset != theLast) {
            if (theChange != 0) {
                return kvxTimeZone_Irregular;
            }
            theChange = vxFindChange(aStart + thePosition, aStart + theNext, theLast) - aStart;
            if (vxAsk(aStart + theChange) != theOffset) {
                return kvxTimeZone_Irregular;
            }
        }
        theLast = theOffset;
        thePosition = theNext;
    }
    if (((theFirst | theLast) & kvxTimeZone_Irregular) != 0) {
        return kvxTimeZone_Irregular;
    }
    return theFirst | theLast << kvxTimeZone_HalfBits |
           static_cast<uint64_t>(theChange) << kvxTimeZone_ChangeShift | kvxTimeZone_Known;
}

uint64_t vxLearnAndStore(std::atomic<uint64_t>& aSpan, size_t anIndex) {
    std::lock_guard<std::mutex> theLock(sMutex);
    tzset();
    const uint64_t theSpan =
        vxLearnSpan((static_cast<int64_t>(anIndex) << kvxTimeZone_SpanBits) + INT32_MIN);
    aSpan.store(theSpan, std::memory_order_relaxed);
    return theSpan;
}

}  // namespace

vxTimeZone& vxTimeZone_Current() {
    const vxZoneView& theView = sView;
    return theView.IsCurrent() ? *theView.mZone : vxLookForZone();
}

bool vxTimeZone_Find(vxTimeZone& aZone, int32_t aSeconds, vxTimeZoneOffset& anOffset) {
    const uint32_t theInstant = static_cast<uint32_t>(aSeconds) ^ 0x80000000U;
    const size_t theIndex = theInstant >> kvxTimeZone_SpanBits;
    const uint32_t thePosition = theInstant & (kvxTimeZone_SpanLength - 1);

    uint64_t theSpan = aZone.mSpans[theIndex].load(std::memory_order_relaxed);
    if (theSpan == 0) {
        theSpan = vxLearnAndStore(aZone.mSpans[theIndex], theIndex);
    }
    if ((theSpan & kvxTimeZone_Irregular) != 0) {
        return false;
    }
    const uint32_t theChange =
        static_cast<uint32_t>(theSpan >> kvxTimeZone_ChangeShift & (kvxTimeZone_SpanLength - 1));
    anOffset = vxUnpacked(thePosition < theChange ? theSpan : theSpan >> kvxTimeZone_HalfBits);
    return true;
}

void vxTimeZone_Refresh() {
    std::lock_guard<std::mutex> theLock(sMutex);
    tzset();
}
