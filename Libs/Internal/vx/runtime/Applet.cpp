// Applets and the wake-ups that cross threads.
//
// A wake-up must never be lost: what a thread wrote before it called AppletWakeUp() must be seen by
// a loop that begins later, although the call may do no more than find the flag set. So both flags
// are only ever set and taken by exchanges, which are sequentially consistent. An exchange that
// finds the flag set still takes part in the order in which the driver takes it; a load would not,
// and the driver could clear the flag, miss what was written, and sleep for ever. A wake-up climbs
// from the child to the root, at each level the flag of the child before that of its parent, and
// the driver takes them in the opposite order.

#include "vx/Applet.h"

#include <libvxOS/Thread.h>

vxApplet::vxApplet()
    : mfaWake(false),
      mfChildaWake(false),
      mParent(NULL),
      mOptions(vxAppletOption_None),
      mLastUpstreamMsg(vxAppletMsg_None),
      mfHadChild(false),
      mNextChild(NULL) {
    vxDLList_InitNode(this);
    vxDLList_Init(&mChildren);
}

vxApplet::~vxApplet() {
    if (mParent != NULL) {
        // It is being deleted already.
        AppletClearOptions(vxAppletOption_SelfDestruct);
        mParent->AppletDetach(this);
    }
    // Awake once and for all: detaching the children raises no signal any more.
    mfaWake.exchange(true);
    while (_vxDLListNode* theNode = vxDLList_Head(&mChildren)) {
        AppletDetach(static_cast<vxApplet*>(theNode));
    }
}

vxTimeout* vxApplet::FirstExpiringTimeout() {
    vxTimeout* theFirst = vxTimeoutQueue::FirstExpiringTimeout();
    if (mChildren.mNext == &mChildren) {
        return theFirst;
    }
    const uint32_t theTick = vxTimeout::GetSysMSTickCount();
    vxApplet* theChild;
    vxDLList_ForEachTyped(vxApplet, &mChildren, theChild) {
        vxTimeout* theOther = theChild->FirstExpiringTimeout();
        if (theFirst == NULL ||
            (theOther != NULL && theOther->RemainingAt(theTick) < theFirst->RemainingAt(theTick))) {
            theFirst = theOther;
        }
    }
    return theFirst;
}

void vxApplet::OnTimeouts() {}

vxAppletMsg vxApplet::AppletLoop(vxAppletMsg aMsg) {
    if (!mfHadChild) {
        return aMsg;
    }
    return vxDLList_Head(&mChildren) != NULL ? vxAppletMsg_None : vxAppletMsg_Exit;
}

void vxApplet::WaitWakeUpSignal(unsigned int aMSTimeout) {
    VXASSERT_TEXT(aMSTimeout != 0xFFFFFFFF, "aMSTimeout != (uint32)-1");
    if (aMSTimeout != 0xFFFFFFFF) {
        vxThread_Sleep(aMSTimeout);
    }
}

vxAppletMsg vxApplet::AppletRun(vxAppletMsg aMsg) {
    if (mLastUpstreamMsg == vxAppletMsg_Exit) {
        return vxAppletMsg_Exit;
    }
    if (!HasReasonToRun(aMsg)) {
        return vxAppletMsg_None;
    }
    mfaWake.exchange(false);
    const vxAppletMsg theResult = _DoRun(aMsg);
    if (mfChildaWake.exchange(false)) {
        _RunChilds();
    }
    return theResult;
}

bool vxApplet::HasReasonToRun(vxAppletMsg aMsg) {
    if (mfaWake.load() || aMsg != vxAppletMsg_None) {
        return true;
    }
    if (!HasExpiredTimeout()) {
        return false;
    }
    // It may be a child's: let every child look.
    mfChildaWake.exchange(true);
    return true;
}

bool vxApplet::HasExpiredTimeout() {
    const vxTimeout* theTimeout = FirstExpiringTimeout();
    return theTimeout != NULL && theTimeout->IsExpired();
}

vxAppletMsg vxApplet::_DoRun(vxAppletMsg aMsg) {
    return _HandleUpstreamMsg(AppletLoop(aMsg));
}

vxAppletMsg vxApplet::_HandleUpstreamMsg(vxAppletMsg aMsg) {
    mLastUpstreamMsg = aMsg;
    if (aMsg == vxAppletMsg_LoopAgain) {
        AppletWakeUp();
    }
    return aMsg;
}

void vxApplet::_RunChilds() {
    _vxDLListNode* theNode = mChildren.mNext;
    while (theNode != &mChildren) {
        // A step may detach any child, also the next one: AppletDetach() moves mNextChild on then.
        mNextChild = theNode->mNext;
        vxApplet* theChild = static_cast<vxApplet*>(theNode);
        if (theChild->AppletRun(vxAppletMsg_None) == vxAppletMsg_Exit) {
            AppletDetach(theChild);
        }
        theNode = mNextChild;
    }
}

void vxApplet::SelfWait() {
    if (!mfaWake.load()) {
        _WaitForReason();
        mfaWake.exchange(true);
    }
    // The next step finds the applet awake, and will not ask the time-outs of the children.
    if (HasExpiredTimeout()) {
        mfChildaWake.exchange(true);
    }
}

void vxApplet::_WaitForReason() {
    const vxTimeout* theTO = FirstExpiringTimeout();
    if (mOptions & vxAppletOption_Multithreaded) {
        WaitWakeUpSignal(theTO != NULL ? theTO->Remaining() : 0xFFFFFFFF);
    } else if (VXCHECK(theTO)) {
        vxThread_Sleep(theTO->Remaining());
    }
}

void vxApplet::AppletWakeUp() {
    if (mfaWake.exchange(true)) {
        return;
    }
    if (mParent != NULL) {
        VXASSERT((mParent->mOptions & vxAppletOption_Multithreaded) ==
                 (mOptions & vxAppletOption_Multithreaded));
        mParent->AppletWakeUpFromChild();
    } else if (mOptions & vxAppletOption_Multithreaded) {
        RaiseWakeUpSignal();
    }
}

void vxApplet::AppletWakeUpFromChild() {
    mfChildaWake.exchange(true);
    AppletWakeUp();
}

void vxApplet::AppletAttach(vxApplet* anApplet, vxAppletOptions anOptions) {
    if (!VXCHECK(anApplet->mParent == NULL)) {
        return;
    }
    anApplet->mOptions |= mOptions & vxAppletOption_Multithreaded;
    vxDLList_AddTail(&mChildren, anApplet);
    anApplet->mParent = this;
    anApplet->mOptions |= anOptions & vxAppletOption_SelfDestruct;
    mfHadChild = true;
    if (anApplet->mfaWake.load()) {
        // Its wake-up came before it had a parent to tell.
        mfChildaWake.exchange(true);
    }
    AppletWakeUp();
}

void vxApplet::AppletDetach(vxApplet* anApplet) {
    if (!VXCHECK(anApplet->mParent == this)) {
        return;
    }
    if (mNextChild == anApplet) {
        mNextChild = anApplet->mNext;
    }
    anApplet->mParent = NULL;
    vxDLList_Detach(anApplet);
    if (anApplet->mOptions & vxAppletOption_SelfDestruct) {
        delete anApplet;
    }
    AppletWakeUp();
}
