#include "support/ScriptedDate.h"

#include <dlfcn.h>

namespace {

bool sfScripted = false;
vxtimeval sDate;
bool sfNoLocalTime = false;

template <typename Function>
Function* Next(const char* aName, Function*) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, aName));
}

}  // namespace

namespace vxtest {

ScriptedDate::ScriptedDate(int32_t aSeconds, int32_t aMicroseconds) {
    sfScripted = true;
    sDate = {aSeconds, aMicroseconds};
}

ScriptedDate::~ScriptedDate() {
    sfScripted = false;
}

NoLocalTime::NoLocalTime() {
    sfNoLocalTime = true;
}

NoLocalTime::~NoLocalTime() {
    sfNoLocalTime = false;
}

}  // namespace vxtest

void vxTime_GetTimeOfDay(vxtimeval* aTime) {
    static auto* const sNext = Next("vxTime_GetTimeOfDay", &vxTime_GetTimeOfDay);
    if (sfScripted) {
        *aTime = sDate;
    } else {
        sNext(aTime);
    }
}

int vxTime_localtime(int32_t aSeconds, vxtm* aFields) {
    static auto* const sNext = Next("vxTime_localtime", &vxTime_localtime);
    return sfNoLocalTime ? 0 : sNext(aSeconds, aFields);
}

int32_t vxTime_mktime(vxtm* aFields) {
    static auto* const sNext = Next("vxTime_mktime", &vxTime_mktime);
    return sfNoLocalTime ? -1 : sNext(aFields);
}
