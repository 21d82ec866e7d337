// A thin owner of the platform's selector.

#include "vx/Select.h"

#include <libvxLog/Log.h>

int vxSelect::Setup() {
    Terminate();
    mSocketSelect = vxSocketSelect_New();
    if (mSocketSelect == NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_SELECT, "Failed to create vxSocketSelect object\n");
        return -1;
    }
    return 0;
}

void vxSelect::Terminate() {
    Signal();
    vxSocketSelect* theSelect = mSocketSelect.exchange(NULL);
    if (theSelect != NULL) {
        vxSocketSelect_Delete(theSelect);
    }
}

int vxSelect::Select(fd_set* aReadSet, fd_set* aWriteSet, fd_set* anExceptSet, int aDescriptorCount,
                     timeval* aTimeout, bool* afTriggered) {
    int theTriggered = 0;
    const int theResult = vxSocketSelect_Select(mSocketSelect, aReadSet, aWriteSet, anExceptSet,
                                                aDescriptorCount, aTimeout, &theTriggered);
    if (afTriggered != NULL) {
        *afTriggered = theTriggered != 0;
    }
    return theResult;
}

void vxSelect::Signal() {
    vxSocketSelect* theSelect = mSocketSelect;
    if (theSelect != NULL) {
        vxSocketSelect_Trigger(theSelect);
    }
}
