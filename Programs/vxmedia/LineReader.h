#pragma once

#include <cstddef>
#include <string>

namespace vxmedia {

/// Cuts the bytes of an input into lines.
///
/// A line that is longer than 16 MiB, or that holds a NUL byte, is handed out as a refusal.
///
/// Threads:  one at a time.
/// Cost:     linear in the bytes, however they are cut into pieces.
class LineReader {
public:
    /// What NextLine() found.
    enum class Result { None, Line, TooLong, HasNul };

    /// Adds a piece of the input.
    void Append(const char* aBytes, size_t aCount);

    /// Marks the end of the input: what is left over is the last line.
    void End();

    /// Takes the next line, without its line feed. None: there is no whole line yet.
    Result NextLine(std::string& aLine);

    /// Returns whether a whole line waits.
    bool HasLine() const { return mNextLineFeed != std::string::npos; }

    /// Returns whether the input has ended; lines may wait still.
    bool HasEnded() const { return mfEnded; }

private:
    static constexpr size_t kMaxLength = 16 * 1024 * 1024;  // bytes

    void FindLineFeed(size_t aFrom) { mNextLineFeed = mBuffer.find('\n', aFrom); }
    void DropTaken();

    std::string mBuffer;
    size_t mStart = 0;                         // where the next line starts
    size_t mNextLineFeed = std::string::npos;  // the first one at or behind mStart
    bool mfTooLong = false;                    // the line at mStart has lost its beginning
    bool mfEnded = false;
};

}  // namespace vxmedia
