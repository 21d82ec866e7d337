#pragma once

#include <cstddef>
#include <cstdint>

namespace vxmedia {

/// Bytes of one media file, read at chosen positions, no more of them than a header needs.
///
/// Small reads are served from a window of 4 KiB. After 2 MiB have been fetched every further read
/// comes back empty, so that no file, however it is made, keeps a reader busy.
///
/// Threads:  one at a time.
class MediaSource {
public:
    explicit MediaSource(uint64_t aSize) : mSize(aSize) {}
    virtual ~MediaSource() = default;
    MediaSource(const MediaSource&) = delete;
    MediaSource& operator=(const MediaSource&) = delete;

    /// Returns the number of bytes of the file.
    uint64_t Size() const { return mSize; }

    /// Copies up to `aCount` bytes that start at `aPos`, and returns how many there were.
    size_t Read(uint64_t aPos, uint8_t* aBuffer, size_t aCount);

    /// Copies exactly `aCount` bytes, or returns false when there are fewer.
    bool ReadExactly(uint64_t aPos, uint8_t* aBuffer, size_t aCount) {
        return Read(aPos, aBuffer, aCount) == aCount;
    }

    /// Lets `aCount` bytes more be fetched.
    void Allow(uint64_t aCount) {
        mFetchLimit += aCount;
        mfExhausted = false;
    }

    /// Returns whether a read was refused because too much had been fetched.
    bool IsExhausted() const { return mfExhausted; }

    /// Returns whether the file held fewer bytes than its size, or could not be read.
    bool HasFailed() const { return mfFailed; }

private:
    static constexpr size_t kWindow_Size = 4096;

    /// Copies up to `aCount` bytes from the file; `aPos` plus `aCount` is at most its size.
    virtual size_t Fetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount) = 0;

    size_t CountedFetch(uint64_t aPos, uint8_t* aBuffer, size_t aCount);
    bool IsInWindow(uint64_t aPos, size_t aCount) const;
    bool FillWindow(uint64_t aPos);

    const uint64_t mSize;
    uint64_t mFetched = 0;                   // bytes, of every fetch so far
    uint64_t mFetchLimit = 2 * 1024 * 1024;  // bytes
    bool mfExhausted = false;
    bool mfFailed = false;
    uint64_t mWindowPos = 0;   // position of the window's first byte
    size_t mWindowLength = 0;  // bytes in the window
    uint8_t mWindow[kWindow_Size];
};

}  // namespace vxmedia
