// Two lists that mirror each other: a listener is in a broadcaster's list exactly when the
// broadcaster is in the listener's.
//
// A walk that calls code of the program touches nothing but its own iterator afterwards. Iterators
// survive whatever happens to their list meanwhile, its destruction included, so callers may be
// destroyed by those whom they call.

#include "vx/Broadcaster.h"

vxBroadcaster::~vxBroadcaster() {
    vxBroadcaster::BroadcastMessage(0, this);
    ForgetListeners();
}

vxBroadcaster& vxBroadcaster::operator=(const vxBroadcaster& aBroadcaster) {
    mfIsBroadcasting = aBroadcaster.mfIsBroadcasting;
    ForgetListeners();
    return *this;
}

void vxBroadcaster::AddListener(vxListener* aListener) {
    if (VXCHECK(aListener != NULL) && mListeners.find(aListener) == NULL) {
        mListeners.push_back(aListener);
        aListener->AddBroadcaster(this);
    }
}

void vxBroadcaster::RemoveListener(vxListener* aListener) {
    if (vxListItem<void*>* theItem = mListeners.find(aListener)) {
        mListeners.pop(*theItem);
        aListener->RemoveBroadcaster(this);
    }
}

void vxBroadcaster::BroadcastMessage(int aMessage, void* aParam) {
    if (!mfIsBroadcasting) {
        return;
    }
    vxListIterator<void*> theIterator(mListeners);
    while (theIterator.Next()) {
        vxListener* theListener = static_cast<vxListener*>(*theIterator);
        if (theListener->IsListening()) {
            theListener->ListenToMessage(aMessage, aParam);
        }
    }
}

void vxBroadcaster::ForgetListeners() {
    while (mListeners.size() > 0) {
        vxListener* theListener = static_cast<vxListener*>(mListeners.front());
        mListeners.pop_front();
        theListener->RemoveBroadcaster(this);
    }
}

vxListener::~vxListener() {
    vxListIterator<void*> theIterator(mBroadcasters);
    while (theIterator.Next()) {
        static_cast<vxBroadcaster*>(*theIterator)->RemoveListener(this);
    }
    ForgetBroadcasters();
}

vxListener& vxListener::operator=(const vxListener& aListener) {
    mfIsListening = aListener.mfIsListening;
    ForgetBroadcasters();
    return *this;
}

// Those that are left where RemoveListener() has been overridden and kept the listener, too.
void vxListener::ForgetBroadcasters() {
    while (mBroadcasters.size() > 0) {
        static_cast<vxBroadcaster*>(mBroadcasters.front())->mListeners.pop(this);
        mBroadcasters.pop_front();
    }
}

void vxListener::ListenToMessage(int, void*) {}

void vxListener::AddBroadcaster(vxBroadcaster* aBroadcaster) {
    mBroadcasters.push_back(aBroadcaster);
}

void vxListener::RemoveBroadcaster(vxBroadcaster* aBroadcaster) {
    mBroadcasters.pop(aBroadcaster);
}
