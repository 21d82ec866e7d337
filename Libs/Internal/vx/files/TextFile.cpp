// Lines out of a buffer of fixed size.
//
// The buffer is filled only when no line ends in what is left of it, and where the next line feed
// and the next carriage return are is remembered. Every byte is therefore moved at most once and
// looked at twice, whatever the length of the lines.

#include "vx/TextFile.h"

#include <cstring>

#include "vx/CString.h"

vxTextFile::vxTextFile(const char* aPath, unsigned int aMaxLineLength)
    : mFile(aPath, vxFileOpenMode_Read),
      mBuffer(static_cast<size_t>(aMaxLineLength)),
      mMaxLineLength(aMaxLineLength),
      mLineLength(0),
      mfNeedLF(false),
      mfLineTooBig(false),
      mLineStart(0),
      mNextCR(0),
      mNextLF(0) {}

void vxTextFile::Rewind() {
    if (IsOpened()) {
        mFile.Seek(0, vxFileSeekMode_Begin);
    }
    Drop(mLineLength);
    mfNeedLF = false;
    mfLineTooBig = false;
}

bool vxTextFile::NextLine(vxCString& aLine) {
    // Mostly a line lies whole in the buffer and ends with a line feed.
    if (mNextLF < mNextCR && !mfNeedLF && !mfLineTooBig) {
        const size_t theLength = mNextLF - mLineStart;
        aLine.InitWith(Bytes() + mLineStart, 0, theLength);
        mLineStart += theLength + 1;
        mLineLength -= theLength + 1;
        mNextLF = FindFrom(mLineStart, '\n');
        return true;
    }
    while (IsOpened()) {
        if (mNextCR == End() && mNextLF == End() && !Fill()) {
            return false;
        }
        if (TakeLine(aLine)) {
            return true;
        }
    }
    return false;
}

// Takes what the buffer begins with; false when that was not a line, or the rest of one.
bool vxTextFile::TakeLine(vxCString& aLine) {
    if (mfNeedLF) {
        mfNeedLF = false;
        if (mNextLF == mLineStart) {
            Drop(1);
            return false;
        }
    }
    const size_t theEnd = mNextCR < mNextLF ? mNextCR : mNextLF;
    const size_t theLength = theEnd - mLineStart;
    const bool theIsWhole = theEnd != End();
    const bool theIsRest = mfLineTooBig;
    mfLineTooBig = !theIsWhole;
    if (!theIsRest) {
        aLine.InitWith(Bytes() + mLineStart, 0, theLength);
    }
    Drop(theIsWhole ? theLength + TerminatorLength() : theLength);
    return !theIsRest;
}

// Returns the length of the end of a line, with "\r\n" as one end of two bytes.
size_t vxTextFile::TerminatorLength() {
    if (mNextLF < mNextCR) {
        return 1;
    }
    mfNeedLF = mNextCR + 1 == End();
    return !mfNeedLF && mNextLF == mNextCR + 1 ? 2 : 1;
}

// Reads until a line ends in the buffer, the buffer is full or the file ends; no line ends in the
// bytes that are left. False when reading fails or there is nothing.
bool vxTextFile::Fill() {
    memmove(Bytes(), Bytes() + mLineStart, mLineLength);
    mLineStart = 0;
    mNextCR = mNextLF = mLineLength;
    while (mLineLength < mMaxLineLength && mNextCR == End() && mNextLF == End()) {
        const ssize_t theCount = mFile.Read(Bytes() + mLineLength, mMaxLineLength - mLineLength);
        if (theCount < 0) {
            return false;
        }
        if (theCount == 0) {
            break;
        }
        const size_t theOld = mLineLength;
        mLineLength += static_cast<size_t>(theCount);
        mNextCR = FindFrom(theOld, '\r');
        mNextLF = FindFrom(theOld, '\n');
    }
    return mLineLength > 0;
}

void vxTextFile::Drop(size_t aCount) {
    mLineStart += aCount;
    mLineLength -= aCount;
    if (mNextCR < mLineStart) {
        mNextCR = FindFrom(mLineStart, '\r');
    }
    if (mNextLF < mLineStart) {
        mNextLF = FindFrom(mLineStart, '\n');
    }
}

size_t vxTextFile::FindFrom(size_t aPos, char aChar) const {
    const void* thePlace = memchr(Bytes() + aPos, aChar, End() - aPos);
    return thePlace == NULL ? End()
                            : static_cast<size_t>(static_cast<const char*>(thePlace) - Bytes());
}
