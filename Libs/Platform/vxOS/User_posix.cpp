// Who runs the program, and what its environment says.

#include <libteskTools/Memory.h>
#include <libvxOS/User.h>

#include <unistd.h>

#include <cstdlib>

int64_t vxUser_GetID(void) {
    return static_cast<int64_t>(geteuid());
}

char* vxPlatform_getenv(const char* aName) {
    return aName == nullptr ? nullptr : vxStrdup(getenv(aName));
}
