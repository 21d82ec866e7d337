#pragma once

// Texts of which no byte behind the last may be read.

#include <cstdlib>
#include <cstring>
#include <string>

namespace vxtest {

/// A copy of a text with its NUL in a block that ends there, so that AddressSanitizer reports whoever
/// reads on. `aShift` bytes in front of it make its address an odd one.
class ExactText {
public:
    explicit ExactText(const std::string& aText, size_t aShift = 0)
        : mBlock(static_cast<char*>(malloc(aShift + aText.size() + 1))), mShift(aShift) {
        memcpy(mBlock + mShift, aText.c_str(), aText.size() + 1);
    }
    ~ExactText() { free(mBlock); }
    ExactText(const ExactText&) = delete;
    ExactText& operator=(const ExactText&) = delete;

    operator const char*() const { return mBlock + mShift; }

private:
    char* mBlock;
    size_t mShift;
};

/// As above without a NUL, for bytes that come with their size.
class ExactBytes {
public:
    explicit ExactBytes(const std::string& aBytes, size_t aShift = 0)
        : mBlock(static_cast<char*>(malloc(aShift + aBytes.size()))), mShift(aShift) {
        if (!aBytes.empty()) {
            memcpy(mBlock + mShift, aBytes.data(), aBytes.size());
        }
    }
    ~ExactBytes() { free(mBlock); }
    ExactBytes(const ExactBytes&) = delete;
    ExactBytes& operator=(const ExactBytes&) = delete;

    operator const char*() const { return mBlock + mShift; }

private:
    char* mBlock;
    size_t mShift;
};

}  // namespace vxtest
