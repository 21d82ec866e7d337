// An adapter: the walk of a table knows one context, a callback of ours has its own.

#include "vx/StringHashMap.h"

bool vxStringHashMap_ForEach(const char* aKey, void* aValue, void* aContext) {
    const auto* theVisitor = static_cast<const vxStringHashMap_Visitor*>(aContext);
    return theVisitor->mCallback(aKey, aValue, theVisitor->mUserData);
}

bool vxStringHashMap_ForEach(void* aContext, const char* aKey, void* aValue) {
    return vxStringHashMap_ForEach(aKey, aValue, aContext);
}
