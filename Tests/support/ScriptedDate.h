#pragma once

// The date of the platform, turned by hand, and conversions that fail on demand. List
// ../support/ScriptedDate.cpp among the sources of the test.

#include <libvxOS/Time.h>

namespace vxtest {

/// Sets the date for as long as it lives.
class ScriptedDate {
public:
    explicit ScriptedDate(int32_t aSeconds, int32_t aMicroseconds = 0);
    ~ScriptedDate();
    ScriptedDate(const ScriptedDate&) = delete;
    ScriptedDate& operator=(const ScriptedDate&) = delete;
};

/// Makes vxTime_localtime() and vxTime_mktime() fail for as long as it lives.
class NoLocalTime {
public:
    NoLocalTime();
    ~NoLocalTime();
    NoLocalTime(const NoLocalTime&) = delete;
    NoLocalTime& operator=(const NoLocalTime&) = delete;
};

}  // namespace vxtest
