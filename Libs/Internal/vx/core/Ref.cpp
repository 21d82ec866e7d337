// Reference counting and its one debugging aid: a developer picks an object, and every retain and
// release of it is logged before its count changes.

#include "vx/Ref.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Log.h>
#include <libvxOS/Debug.h>

#include <cstdlib>
#include <cstring>

vxRefCounted* vxRefCounted::sDebugReference = NULL;
vxAtomic_int vxRefCounted::sDebugRefCount(0);

vxRefCounted::~vxRefCounted() {
    VXASSERT(mRefCount == 0);
}

void vxRefCounted::NotifyRefCountIsNull() {
    delete this;
}

void vxRefCounted::SetDebugReference(vxRefCounted* aObject) {
    sDebugReference = aObject;
}

void vxRefCounted::DumpDebugReference(const vxRefCounted* aObject, bool afRetain) {
    static_cast<void>(aObject);
    if (afRetain) {
        const uint32_t theCount = static_cast<uint32_t>(sDebugRefCount.fetch_add(1)) + 1;
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "===>>>\nRefCount: %lu\n\n",
              static_cast<unsigned long>(theCount));
        vxDebug_BackTraceCurrent();
    } else {
        const uint32_t theCount = static_cast<uint32_t>(sDebugRefCount.fetch_sub(1)) - 1;
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "===<<<\nRefCount: %lu\n\n",
              static_cast<unsigned long>(theCount));
    }
}

void vxRefCounted::DumpRemainingReferenceCallStack() {
    VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT,
          "VXREF_DEBUG_BACKTRACE is not enabled, callstack can't be dump\n");
}

vxRefCountDebug::vxRefCountDebug(void* aParentPtr, const char* aCallStack)
    : mParentPtr(aParentPtr), mCallStack(vxStrdup(aCallStack)), mNext(NULL) {}

vxRefCountDebug::~vxRefCountDebug() {
    free(mCallStack);
    mCallStack = NULL;
}

vxNamedClass::~vxNamedClass() = default;

bool vxNamedClass::IsClassName(const char* aName) const {
    return mClassName == aName ||
           (mClassName != NULL && aName != NULL && strcmp(mClassName, aName) == 0);
}

vxUserData::~vxUserData() = default;
