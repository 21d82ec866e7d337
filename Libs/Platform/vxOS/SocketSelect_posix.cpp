// A trigger writes to an event descriptor, which is watched edge-triggered: one notice is pending
// from the write until a wait takes it, and nothing ever reads the event. So a trigger between two
// waits is kept, and a wait that has no descriptors beside it takes notice in the call in which it
// sleeps. Other waits select the watching descriptor beside the caller's own.
//
// The selector counts its owner and the threads inside a wait; whoever leaves last frees it.

#include <libvxLog/Log.h>
#include <libvxOS/SocketSelect.h>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <new>

struct vxSocketSelect {
    vxSocketSelect(int aWatch, int anEvent) : mWatch(aWatch), mEvent(anEvent) {}
    ~vxSocketSelect() {
        close(mWatch);
        close(mEvent);
    }

    const int mWatch;  // readable while a notice is pending
    const int mEvent;
    std::atomic<int> mUsers{1};            // the owner and the threads inside a wait
    std::atomic<bool> mfTriggered{false};  // a notice is pending, or is about to be
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

void vxNotify(vxSocketSelect* aSelect) {
    static_cast<void>(eventfd_write(aSelect->mEvent, 1));
}

/// Waits for a notice and takes it: 1, or 0 when the time is over; -1 milliseconds have no limit.
int vxTakeNotice(vxSocketSelect* aSelect, int aMSTimeout) {
    epoll_event theEvent;
    return epoll_wait(aSelect->mWatch, &theEvent, 1, aMSTimeout);
}

/// Lets the next trigger give a notice again, after the last one has been taken.
void vxAllowTrigger(vxSocketSelect* aSelect) {
    // A trigger that comes before this finds the flag set, and counts as part of the one taken.
    aSelect->mfTriggered.exchange(false);
    if (aSelect->mfClosing.load()) {
        vxNotify(aSelect);  // on behalf of the next one that waits
    }
}

/// Waits for the caller's descriptors and for a notice.
int vxSelectDescriptors(vxSocketSelect* aSelect, fd_set* aReadSet, fd_set* aWriteSet,
                        fd_set* anExceptSet, int aCount, vxTimeLeft* aTimeLeft, bool* aTriggered) {
    const int theWatch = aSelect->mWatch;
    for (;;) {
        vxDescriptors theRead(aReadSet, aCount);
        vxDescriptors theWrite(aWriteSet, aCount);
        vxDescriptors theExcept(anExceptSet, aCount);
        FD_SET(theWatch, theRead.Get());
        const int theReady =
            pselect(std::max(aCount, theWatch + 1), theRead.Get(), theWrite.GetOrNull(),
                    theExcept.GetOrNull(), aTimeLeft->Get(), nullptr);
        if (theReady < 0) {
            if (errno != EINTR) {
                return -1;
            }
            aTimeLeft->Update();
            continue;
        }
        const bool theIsNotified = FD_ISSET(theWatch, theRead.Get());
        FD_CLR(theWatch, theRead.Get());
        const int theOwnReady = theIsNotified ? theReady - 1 : theReady;
        *aTriggered = theIsNotified && vxTakeNotice(aSelect, 0) == 1;
        if (theIsNotified && !*aTriggered && theOwnReady == 0) {
            aTimeLeft->Update();  // another thread was faster
            continue;
        }
        theRead.HandBack();
        theWrite.HandBack();
        theExcept.HandBack();
        return theOwnReady;
    }
}

/// The time-out as the system's waits for a notice take it, in milliseconds; -1 has no limit, and
/// other negative values mean that it cannot be told so.
int vxMillisecondsOf(const timeval* aTimeout) {
    if (aTimeout == nullptr) {
        return -1;
    }
    if (aTimeout->tv_usec % 1000 != 0 || aTimeout->tv_sec > INT_MAX / 1000 - 1) {
        return -2;
    }
    return static_cast<int>(aTimeout->tv_sec) * 1000 + static_cast<int>(aTimeout->tv_usec) / 1000;
}

int vxSelectOnce(vxSocketSelect* aSelect, fd_set* aReadSet, fd_set* aWriteSet, fd_set* anExceptSet,
                 int aCount, const timeval* aTimeout, bool* aTriggered) {
    vxTimeLeft theTimeLeft(aTimeout);
    const bool theHasSets = aReadSet != nullptr || aWriteSet != nullptr || anExceptSet != nullptr;
    const int theMilliseconds = vxMillisecondsOf(aTimeout);
    if (!theHasSets && theMilliseconds >= -1) {
        const int theNotices = vxTakeNotice(aSelect, theMilliseconds);
        if (theNotices >= 0) {
            *aTriggered = theNotices == 1;
            return 0;
        }
        if (errno != EINTR) {
            return -1;
        }
        theTimeLeft.Update();
    }
    return vxSelectDescriptors(aSelect, aReadSet, aWriteSet, anExceptSet, aCount, &theTimeLeft,
                               aTriggered);
}

/// Creates the watching descriptor; -1 after a message where there is none that select can take.
int vxNewWatch() {
    const int theWatch = epoll_create1(EPOLL_CLOEXEC);
    if (theWatch < 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT, "Cannot create the select trigger (Error = %d)\n",
              errno);
        return -1;
    }
    if (theWatch >= FD_SETSIZE) {
        close(theWatch);
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT,
              "Descriptor %d of the select trigger is not below FD_SETSIZE (%d)\n", theWatch,
              static_cast<int>(FD_SETSIZE));
        return -1;
    }
    return theWatch;
}

/// Creates the event and has it watched; -1 after a message when the system refuses.
int vxNewEvent(int aWatch) {
    const int theEvent = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    epoll_event theInterest = {};
    theInterest.events = EPOLLIN | EPOLLET;
    if (theEvent < 0 || epoll_ctl(aWatch, EPOLL_CTL_ADD, theEvent, &theInterest) != 0) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT, "Cannot create the select trigger (Error = %d)\n",
              errno);
        if (theEvent >= 0) {
            close(theEvent);
        }
        return -1;
    }
    return theEvent;
}

}  // namespace

vxSocketSelect* vxSocketSelect_New(void) {
    const int theWatch = vxNewWatch();
    if (theWatch < 0) {
        return nullptr;
    }
    const int theEvent = vxNewEvent(theWatch);
    if (theEvent < 0) {
        close(theWatch);
        return nullptr;
    }
    vxSocketSelect* theSelect = new (std::nothrow) vxSocketSelect(theWatch, theEvent);
    if (theSelect == nullptr) {
        close(theEvent);
        close(theWatch);
    }
    return theSelect;
}

void vxSocketSelect_Delete(vxSocketSelect* aSelect) {
    if (aSelect == nullptr) {
        return;
    }
    aSelect->mfClosing.store(true);
    vxNotify(aSelect);
    vxLeave(aSelect);
}

void vxSocketSelect_Trigger(vxSocketSelect* aSelect) {
    if (aSelect != nullptr && !aSelect->mfTriggered.exchange(true)) {
        vxNotify(aSelect);
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
        vxAllowTrigger(aSelect);
    }
    vxLeave(aSelect);
    if (aTriggered != nullptr) {
        *aTriggered = theTriggered ? 1 : 0;
    }
    errno = theError;
    return theReady;
}
