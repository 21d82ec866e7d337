#pragma once

// How a target takes its bytes apart, and how it says that a promise is broken.

#include <libvxLog/Handlers.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vxfuzz {

/// Ends the run when a promise does not hold, so that the fuzzer keeps the input.
inline void Expect(bool afHolds, const char* aPromise) {
    if (!afHolds) {
        fprintf(stderr, "broken promise: %s\n", aPromise);
        abort();
    }
}

/// Makes an assertion of the library a finding: outside input must not reach misuse.
inline void AssertionsAreFindings() {
    vxAssert_SetHandler(
        [](void*, const char* aCondition, const char*, int) { Expect(false, aCondition); },
        nullptr);
}

/// Reads numbers from the front of the input and hands out the rest as text.
class Input {
public:
    Input(const uint8_t* aData, size_t aSize) : mData(aData), mSize(aSize) {}

    uint8_t Byte() {
        if (mSize == 0) {
            return 0;
        }
        --mSize;
        return *mData++;
    }

    bool IsEmpty() const { return mSize == 0; }

    /// The bytes that are left, with a NUL behind them.
    std::string Rest() const { return std::string(reinterpret_cast<const char*>(mData), mSize); }

    /// The bytes up to the next line end, which is dropped.
    std::string Line() {
        std::string theLine;
        while (mSize != 0) {
            const char theByte = static_cast<char>(Byte());
            if (theByte == '\n') {
                break;
            }
            theLine += theByte;
        }
        return theLine;
    }

private:
    const uint8_t* mData;
    size_t mSize;
};

}  // namespace vxfuzz
