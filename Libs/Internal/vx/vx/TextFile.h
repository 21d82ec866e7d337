#pragma once

#include "vx/Api.h"
#include "vx/DataBuffer.h"
#include "vx/File.h"

class vxCString;

/// Reads a text file line by line with a buffer of fixed size.
///
///     vxTextFile theFile("/etc/hosts", 1024);
///     vxCString theLine;
///     while (theFile.NextLine(theLine)) { ... }
///
/// Lines end with a line feed, a carriage return, or both in this order; the last one may end with
/// the file. A line longer than the buffer is given once, cut to the buffer's length, and its rest
/// is skipped. Bytes are taken as they are, zeros included.
///
/// Threads:  one at a time.
class VX_EXPORT vxTextFile {
public:
    /// Opens a file; lines are cut to `aMaxLineLength` bytes. Ask IsOpened().
    vxTextFile(const char* aPath, unsigned int aMaxLineLength);

    vxTextFile(const vxTextFile&) = delete;
    vxTextFile& operator=(const vxTextFile&) = delete;

    /// Could the file be opened?
    bool IsOpened() const { return mFile.IsOpened(); }

    /// Starts again with the first line; nothing without a file.
    void Rewind();

    /// Gives the next line without its terminator.
    ///
    /// A loop that takes every line into the same string, as above, allocates next to nothing.
    ///
    /// At the end of the file a later call sees what was appended meanwhile.
    ///
    /// Fails:    false at the end, when reading fails and without a file; `aLine` is left alone.
    /// Cost:     linear in the bytes of the line.
    bool NextLine(vxCString& aLine);

private:
    bool TakeLine(vxCString& aLine);
    size_t TerminatorLength();
    bool Fill();
    void Drop(size_t aCount);
    size_t End() const { return mLineStart + mLineLength; }
    size_t FindFrom(size_t aPos, char aChar) const;
    char* Bytes() const { return static_cast<char*>(mBuffer.data()); }

    vxFile mFile;           // opened for reading
    vxDataBuffer mBuffer;   // mMaxLineLength bytes
    size_t mMaxLineLength;  // longest line that is given whole
    size_t mLineLength;     // bytes in the buffer that are still to be given
    bool mfNeedLF;          // a line ended with '\r' as the last byte: a '\n' belongs to it
    bool mfLineTooBig;      // the rest of a line that was cut is being skipped
    size_t mLineStart;      // where the bytes to be given begin in the buffer
    size_t mNextCR;         // the first '\r' of them, or their end
    size_t mNextLF;         // the first '\n' of them, or their end
};
