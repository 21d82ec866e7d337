#pragma once

#include <cstdlib>
#include <string>

namespace vxtest {

/// Sets the local time zone for as long as it lives; null means none in the environment.
class LocalZone {
public:
    explicit LocalZone(const char* aName)
        : mfOldSet(getenv("TZ") != nullptr), mOld(mfOldSet ? getenv("TZ") : "") {
        Set(aName);
    }
    ~LocalZone() { Set(mfOldSet ? mOld.c_str() : nullptr); }
    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;

    static void Set(const char* aName) {
        if (aName == nullptr) {
            unsetenv("TZ");
        } else {
            setenv("TZ", aName, 1);
        }
    }

private:
    bool mfOldSet;
    std::string mOld;
};

}  // namespace vxtest
