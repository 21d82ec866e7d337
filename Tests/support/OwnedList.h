#pragma once

#include <libteskTools/PropertyList.h>

namespace vxtest {

/// A property list that is let go of at the end.
class OwnedList {
public:
    explicit OwnedList(vxPropertyList* aList = vxPropertyList_New()) : mList(aList) {}
    ~OwnedList() { vxPropertyList_Delete(mList); }
    OwnedList(const OwnedList&) = delete;
    OwnedList& operator=(const OwnedList&) = delete;
    operator vxPropertyList*() const { return mList; }

private:
    vxPropertyList* mList;
};

}  // namespace vxtest
