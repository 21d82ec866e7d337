#pragma once

#include <libteskTools/DLList.h>
#include <libvxLog/Assert.h>

#include <atomic>

#include "vx/Api.h"
#include "vx/Timeout.h"

/// What goes down into a step of an applet and comes back from it.
enum vxAppletMsg : int32_t {
    vxAppletMsg_None = 0,      // nothing in particular
    vxAppletMsg_Exit = 1,      // upward: the applet has finished
    vxAppletMsg_LoopAgain = 2  // upward: run the loop again without waiting
};

/// Options of an applet, to be combined.
enum vxAppletOption : uint32_t {
    vxAppletOption_None = 0,
    vxAppletOption_Multithreaded = 1,  // other threads wake the tree; all its applets agree on this
    vxAppletOption_SelfDestruct = 2    // the parent deletes the child when it detaches it
};

/// A combination of vxAppletOption bits.
typedef uint32_t vxAppletOptions;

/// A unit of a program's main loop: it sleeps until it is woken or a time-out expires, then runs
/// one step of its loop, and with it the steps of the applets inside it.
///
/// A program derives from vxApplet, builds a tree, and drives the root:
///
///     while (theRoot.AppletRun(vxAppletMsg_None) != vxAppletMsg_Exit) {
///         theRoot.SelfWait();
///     }
///
/// In a single-threaded tree a step is caused by time-outs, or by a wake-up from within the tree.
/// In a multithreaded tree any thread may call AppletWakeUp(); its root overrides
/// RaiseWakeUpSignal() and WaitWakeUpSignal() with a signal that is kept until a wait takes it,
/// such as a vxCondition or the trigger of a vxSelect.
///
///     asleep --AppletWakeUp, message, expired time-out, end of SelfWait--> awake
///     awake --AppletRun--> asleep, or awake when the loop returned LoopAgain
///     awake --AppletRun, the loop returned Exit--> finished, for ever
///
/// Owner:    applets belong to the program; children with vxAppletOption_SelfDestruct to their
///           parent, which deletes them when it detaches them.
/// Threads:  one at a time, the driver's; AppletWakeUp() any, atomic, in a multithreaded tree, as
///           long as the applet and its parents stay where they are.
class VX_EXPORT vxApplet : public _vxDLListNode, public vxTimeoutQueue {
public:
    vxApplet();

    /// Leaves the parent, then detaches every child. A root that goes wakes nobody.
    ~vxApplet() override;

    /// Returns the time-out of the whole subtree that expires first, or null; of several that
    /// expire at the same time the own one, then that of the child attached first.
    vxTimeout* FirstExpiringTimeout() override;

    /// Called by HandleExpiredTimeouts(), also when only a time-out of a child has expired.
    void OnTimeouts() override;

    /// Does the work of one step, and returns a message upward.
    ///
    /// The base returns `aMsg`. Once it has had children it returns None as long as one is left,
    /// and Exit after the last: such an applet ends with its children. It does not handle
    /// time-outs; a derived loop calls HandleExpiredTimeouts().
    virtual vxAppletMsg AppletLoop(vxAppletMsg aMsg);

    /// Ends the WaitWakeUpSignal() under way, else the next one; called for the root of a
    /// multithreaded tree, which overrides both.
    ///
    /// Asserts:  !(mOptions & vxAppletOption_Multithreaded).
    /// Threads:  any.
    virtual void RaiseWakeUpSignal() { VXASSERT(!(mOptions & vxAppletOption_Multithreaded)); }

    /// Waits for RaiseWakeUpSignal(), at most `aMSTimeout` milliseconds; 0xFFFFFFFF has no limit.
    /// The base sleeps.
    ///
    /// Asserts:  aMSTimeout != (uint32)-1; the base returns at once then.
    virtual void WaitWakeUpSignal(unsigned int aMSTimeout);

    /// Switches options on; returns all that are on.
    vxAppletOptions AppletSetOptions(vxAppletOptions anOptions) { return mOptions |= anOptions; }

    /// Switches options off; returns all that are on.
    vxAppletOptions AppletClearOptions(vxAppletOptions anOptions) { return mOptions &= ~anOptions; }

    /// Does one step if there is a reason: the applet is awake, a time-out of the subtree has
    /// expired, or `aMsg` is not None.
    ///
    /// The own loop comes first, then, if a child is awake or a time-out has expired, the step of
    /// every child. A child whose step returns Exit is detached. A loop that has returned Exit
    /// never runs again.
    ///
    /// Returns what the loop returned; None when there was no reason; Exit once the applet has
    /// finished.
    vxAppletMsg AppletRun(vxAppletMsg aMsg);

    /// Blocks until the applet is woken or the first time-out of the subtree expires; the next
    /// AppletRun() then runs the loop, and steps the children if a time-out has expired. For a
    /// root.
    ///
    /// Asserts:  theTO: a single-threaded tree has a time-out, for nothing else can end its wait;
    ///           it returns at once otherwise.
    void SelfWait();

    /// Lets the next step of the tree run this applet, and ends the SelfWait() of its root.
    ///
    /// What the calling thread wrote before is visible to the loop that runs. Calls that come
    /// before the loop has begun count as one.
    ///
    /// Asserts:  (mParent->mOptions & vxAppletOption_Multithreaded) ==
    ///           (mOptions & vxAppletOption_Multithreaded).
    /// Threads:  any, atomic, in a multithreaded tree; else the driver's.
    void AppletWakeUp();

    /// Makes `anApplet` the last child, and wakes this applet; wake the child itself to have it
    /// stepped.
    ///
    /// The child becomes multithreaded with this applet, but not the children that it has already.
    /// Of `anOptions` only SelfDestruct matters: it is set on the child.
    ///
    /// Asserts:  anApplet->mParent == NULL; nothing happens otherwise.
    /// Owner:    unchanged, or this applet with SelfDestruct.
    void AppletAttach(vxApplet* anApplet, vxAppletOptions anOptions);

    /// Lets go of the child, and wakes this applet. A child with SelfDestruct is deleted: not from
    /// within its own step, at whose end its parent does it.
    ///
    /// Asserts:  anApplet->mParent == this; nothing happens otherwise.
    void AppletDetach(vxApplet* anApplet);

private:
    void AppletWakeUpFromChild();
    bool HasReasonToRun(vxAppletMsg aMsg);
    bool HasExpiredTimeout();
    vxAppletMsg _DoRun(vxAppletMsg aMsg);
    vxAppletMsg _HandleUpstreamMsg(vxAppletMsg aMsg);
    void _RunChilds();
    void _WaitForReason();

    std::atomic<bool> mfaWake;       // run the loop at the next AppletRun()
    std::atomic<bool> mfChildaWake;  // step the children at the next step
    vxApplet* mParent;               // null for a root
    vxAppletOptions mOptions;
    vxDLList mChildren;            // vxApplet, in the order of attachment
    vxAppletMsg mLastUpstreamMsg;  // what the last step of the loop returned
    bool mfHadChild;               // for ever, once a child was attached
    _vxDLListNode* mNextChild;     // whose step is next while the children are stepped
};
