#pragma once

// Media files that live in memory, and helpers to write their headers byte by byte.

#include <algorithm>
#include <cstring>
#include <string>

#include "readers/MediaReader.h"

namespace vxtest {

/// A file in memory; it may pretend to be longer than it is, as one that shrinks under a reader.
class MemorySource : public vxmedia::MediaSource {
public:
    explicit MemorySource(const std::string& aBytes) : MediaSource(aBytes.size()), mBytes(aBytes) {}
    MemorySource(const std::string& aBytes, uint64_t aPretendedSize)
        : MediaSource(aPretendedSize), mBytes(aBytes) {}

    /// Bytes handed out by all reads of the file together.
    uint64_t mFetchedBytes = 0;

private:
    size_t Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) override {
        if (aPos >= mBytes.size()) {
            return 0;
        }
        const size_t theCount =
            std::min(aCount, static_cast<size_t>(mBytes.size() - static_cast<size_t>(aPos)));
        memcpy(aBuffer, mBytes.data() + aPos, theCount);
        mFetchedBytes += theCount;
        return theCount;
    }

    const std::string mBytes;
};

/// Bytes written as a literal that may hold NULs.
template <size_t N>
std::string Raw(const char (&aLiteral)[N]) {
    return std::string(aLiteral, N - 1);
}

inline std::string BigEndian(uint64_t aValue, int aByteCount) {
    std::string theBytes;
    for (int i = aByteCount - 1; i >= 0; --i) {
        theBytes += static_cast<char>(aValue >> (8 * i) & 0xFF);
    }
    return theBytes;
}

inline std::string LittleEndian(uint64_t aValue, int aByteCount) {
    std::string theBytes = BigEndian(aValue, aByteCount);
    std::reverse(theBytes.begin(), theBytes.end());
    return theBytes;
}

/// Reads a file of that name that consists of those bytes.
inline vxmedia::MediaReading ReadBytes(const std::string& aBytes, const char* aName = "file") {
    MemorySource theSource(aBytes);
    return vxmedia::ReadMedia(theSource, aName);
}

/// The facts in one line, "refused: " and the reason, or "no media".
inline std::string Describe(const vxmedia::MediaReading& aReading) {
    if (aReading.mFormat == nullptr) {
        return "no media";
    }
    if (aReading.mReason != nullptr) {
        return std::string("refused: ") + aReading.mReason;
    }
    const vxmedia::MediaFacts& theFacts = aReading.mFacts;
    std::string theText = aReading.mFormat->mName;
    if (theFacts.IsPicture()) {
        theText += " " + std::to_string(theFacts.mWidth) + "x" + std::to_string(theFacts.mHeight);
    }
    if (theFacts.IsSound()) {
        theText += " " + std::to_string(theFacts.mChannels) + "ch " +
                   std::to_string(theFacts.mRate) + "Hz ";
        theText += theFacts.mfDurationKnown ? std::to_string(theFacts.DurationMS()) + "ms" : "-";
    }
    return theText + " (" + theFacts.mDetail.c_str() + ")";
}

inline std::string DescribeBytes(const std::string& aBytes, const char* aName = "file") {
    return Describe(ReadBytes(aBytes, aName));
}

}  // namespace vxtest
