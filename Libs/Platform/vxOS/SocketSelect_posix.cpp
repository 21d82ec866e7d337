// The trigger is an event descriptor that every wait selects for reading beside the caller's own.
// It stays readable until a wait takes notice, so a trigger that comes between two waits is kept.
//
// The selector counts its owner and the threads inside a wait; whoever leaves last frees it.

#include <libvxLog/Log.h>
#include <libvxOS/SocketSelect.h>

#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>

struct vxSocketSelect {
    explicit vxSocketSelect(int anEvent) : mEvent(anEvent) {}
    ~vxSocketSelect() { close(mEvent); }

    const int mEvent;
    std::atomic<int> mUsers{1};            // the owner and the threads inside a wait
    std::atomic<bool> mfTriggered{false};  // the event is readable, or is about to be
    std::atomic<bool> mfClosing{false};    // the owner has let go: every wait ends
};

namespace {

constexpr int64_t kvxNanosecondsPerSecond = 1000000000;
constexpr int kvxWordBits = static_cast<int>(8 * sizeof(unsigned long));

int vxRefuse(int anError) {
    errno = anError;
    return -1;
}

void vxLeave(vxSocketSelect* aSelect) {
    if (aSelect->mUsers.fetch_sub(1) == 1) {
        delete aSelect;
    }
}

/// A caller's set and the copy that the system may change.
class vxDescriptors {
public:
    vxDescriptors(fd_set* aSet, int aCount) : mSet(aSet), mCount(aCount) {
        FD_ZERO(&mCopy);
        if (mSet != nullptr) {
            CopyBits(&mCopy, mSet);
        }
    }

    fd_set* Get() { return &mCopy; }

    /// Null where the caller has none: the system then looks at one set less.
    fd_set* GetOrNull() { return mSet != nullptr ? &mCopy : nullptr; }

    void HandBack() {
        if (mSet != nullptr) {
            CopyBits(mSet, &mCopy);
        }
    }

private:
    /// Copies the bits of the descriptors below the count; a set is an array of long words.
    void CopyBits(fd_set* aTo, const fd_set* aFrom) const {
        const size_t theWhole = static_cast<size_t>(mCount / kvxWordBits) * sizeof(unsigned long);
        memcpy(aTo, aFrom, theWhole);
        const int theRest = mCount % kvxWordBits;
        if (theRest == 0) {
            return;
        }
        const unsigned long theMask = (1UL << theRest) - 1;
        unsigned long theTarget;
        unsigned long theSource;
        char* const theLastWord = reinterpret_cast<char*>(aTo) + theWhole;
        memcpy(&theTarget, theLastWord, sizeof(theTarget));
        memcpy(&theSource, reinterpret_cast<const char*>(aFrom) + theWhole, sizeof(theSource));
        theTarget = (theTarget & ~theMask) | (theSource & theMask);
        memcpy(theLastWord, &theTarget, sizeof(theTarget));
    }

    fd_set* const mSet;  // the caller's, or null
    const int mCount;
    fd_set mCopy;
};

int64_t vxNow() {
    timespec theNow;
    clock_gettime(CLOCK_MONOTONIC, &theNow);
    return static_cast<int64_t>(theNow.tv_sec) * kvxNanosecondsPerSecond + theNow.tv_nsec;
}

/// The time that is left of a wait, which may be without limit.
class vxTimeLeft {
public:
    explicit vxTimeLeft(const timeval* aTimeout) : mfLimited(aTimeout != nullptr) {
        if (mfLimited) {
            mLeft.tv_sec = aTimeout->tv_sec;
            mLeft.tv_nsec = aTimeout->tv_usec * 1000;
            mfKnowsStart = aTimeout->tv_sec != 0 || aTimeout->tv_usec != 0;
            mStart = mfKnowsStart ? vxNow() : 0;
            mTotal = mLeft;
        }
    }

    const timespec* Get() const { return mfLimited ? &mLeft : nullptr; }

    /// Takes off what has passed since the beginning.
    void Update() {
        if (!mfLimited || !mfKnowsStart) {
            return;
        }
        const int64_t thePassed = vxNow() - mStart;
        int64_t theSeconds =
            static_cast<int64_t>(mTotal.tv_sec) - thePassed / kvxNanosecondsPerSecond;
        int64_t theNanoseconds = mTotal.tv_nsec - thePassed % kvxNanosecondsPerSecond;
        if (theNanoseconds < 0) {
            theNanoseconds += kvxNanosecondsPerSecond;
            --theSeconds;
        }
        if (theSeconds < 0) {
            theSeconds = 0;
            theNanoseconds = 0;
        }
        mLeft.tv_sec = static_cast<time_t>(theSeconds);
        mLeft.tv_nsec = static_cast<long>(theNanoseconds);
    }

private:
    const bool mfLimited;
    bool mfKnowsStart = false;
    int64_t mStart = 0;
    timespec mTotal = {};
    timespec mLeft = {};
};

bool vxIsTime(const timeval* aTimeout) {
    return aTimeout == nullptr ||
           (aTimeout->tv_sec >= 0 && aTimeout->tv_usec >= 0 && aTimeout->tv_usec < 1000000);
}

/// Makes the event unreadable again, unless every wait is to end.
void vxTakeTrigger(vxSocketSelect* aSelect) {
    if (aSelect->mfClosing.load()) {
        return;
    }
    uint64_t theCount;
    static_cast<void>(!read(aSelect->mEvent, &theCount, sizeof(theCount)));
    // In this order: a trigger in between finds the flag set and counts as part of the one that is
    // being taken; the other way around the flag would stay set over an unreadable event.
    aSelect->mfTriggered.exchange(false);
    if (aSelect->mfClosing.load()) {
        static_cast<void>(eventfd_write(aSelect->mEvent, 1));
    }
}

int vxSelectOnce(vxSocketSelect* aSelect, fd_set* aReadSet, fd_set* aWriteSet, fd_set* anExceptSet,
                 int aCount, const timeval* aTimeout, bool* aTriggered) {
    const int theEvent = aSelect->mEvent;
    vxTimeLeft theTimeLeft(aTimeout);
    for (;;) {
        vxDescriptors theRead(aReadSet, aCount);
        vxDescriptors theWrite(aWriteSet, aCount);
        vxDescriptors theExcept(anExceptSet, aCount);
        FD_SET(theEvent, theRead.Get());
        const int theReady =
            pselect(std::max(aCount, theEvent + 1), theRead.Get(), theWrite.GetOrNull(),
                    theExcept.GetOrNull(), theTimeLeft.Get(), nullptr);
        if (theReady < 0) {
            if (errno != EINTR) {
                return -1;
            }
            theTimeLeft.Update();
            continue;
        }
        *aTriggered = FD_ISSET(theEvent, theRead.Get());
        FD_CLR(theEvent, theRead.Get());
        theRead.HandBack();
        theWrite.HandBack();
        theExcept.HandBack();
        return *aTriggered ? theReady - 1 : theReady;
    }
}

}  // namespace

vxSocketSelect* vxSocketSelect_New(void) {
    const int theEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (theEvent < 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT, "Cannot create the select trigger (Error = %d)\n",
              errno);
        return nullptr;
    }
    if (theEvent >= FD_SETSIZE) {
        close(theEvent);
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT,
              "Descriptor %d of the select trigger is not below FD_SETSIZE (%d)\n", theEvent,
              static_cast<int>(FD_SETSIZE));
        return nullptr;
    }
    vxSocketSelect* theSelect = new (std::nothrow) vxSocketSelect(theEvent);
    if (theSelect == nullptr) {
        close(theEvent);
    }
    return theSelect;
}

void vxSocketSelect_Delete(vxSocketSelect* aSelect) {
    if (aSelect == nullptr) {
        return;
    }
    aSelect->mfClosing.store(true);
    static_cast<void>(eventfd_write(aSelect->mEvent, 1));
    vxLeave(aSelect);
}

void vxSocketSelect_Trigger(vxSocketSelect* aSelect) {
    if (aSelect != nullptr && !aSelect->mfTriggered.exchange(true)) {
        static_cast<void>(eventfd_write(aSelect->mEvent, 1));
    }
}

int vxSocketSelect_Select(vxSocketSelect* aSelect, fd_set* aReadSet, fd_set* aWriteSet,
                          fd_set* anExceptSet, int aDescriptorCount, const timeval* aTimeout,
                          int* aTriggered) {
    if (aTriggered != nullptr) {
        *aTriggered = 0;
    }
    if (aSelect == nullptr || !vxIsTime(aTimeout)) {
        return vxRefuse(EINVAL);
    }
    if (aDescriptorCount < 0 || aDescriptorCount > FD_SETSIZE) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT, "Cannot select %d descriptors: FD_SETSIZE is %d\n",
              aDescriptorCount, static_cast<int>(FD_SETSIZE));
        return vxRefuse(EINVAL);
    }
    aSelect->mUsers.fetch_add(1);
    bool theTriggered = false;
    const int theReady = vxSelectOnce(aSelect, aReadSet, aWriteSet, anExceptSet, aDescriptorCount,
                                      aTimeout, &theTriggered);
    const int theError = errno;
    if (theTriggered) {
        vxTakeTrigger(aSelect);
    }
    vxLeave(aSelect);
    if (aTriggered != nullptr) {
        *aTriggered = theTriggered ? 1 : 0;
    }
    errno = theError;
    return theReady;
}
