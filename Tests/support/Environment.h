#pragma once

#include <cstdlib>
#include <string>

namespace vxtest {

/// Sets an environment variable, or removes it if null, for a scope.
class Environment {
public:
    Environment(const char* aName, const char* aValue) : mName(aName) {
        const char* theOld = getenv(aName);
        mHadValue = theOld != nullptr;
        mOld = mHadValue ? theOld : "";
        Set(aValue);
    }
    ~Environment() { Set(mHadValue ? mOld.c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void Set(const char* aValue) {
        if (aValue == nullptr) {
            unsetenv(mName);
        } else {
            setenv(mName, aValue, 1);
        }
    }

    const char* mName;
    bool mHadValue;
    std::string mOld;
};

}  // namespace vxtest
