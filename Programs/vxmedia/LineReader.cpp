// Each byte is looked at once for a line feed. Bytes of lines already taken are dropped when the
// next piece arrives, so that taking many short lines does not move the rest each time.

#include "LineReader.h"

namespace vxmedia {

void LineReader::Append(const char* aBytes, size_t aCount) {
    DropTaken();
    const size_t theOldSize = mBuffer.size();
    mBuffer.append(aBytes, aCount);
    if (!HasLine()) {
        FindLineFeed(theOldSize);
    }
    if (!HasLine() && mBuffer.size() > kMaxLength) {
        mBuffer.clear();
        mfTooLong = true;
    }
}

void LineReader::End() {
    if (!mfEnded && (mBuffer.size() > mStart || mfTooLong) &&
        (mBuffer.empty() || mBuffer.back() != '\n')) {
        Append("\n", 1);
    }
    mfEnded = true;
}

LineReader::Result LineReader::NextLine(std::string& aLine) {
    if (!HasLine()) {
        return Result::None;
    }
    aLine.assign(mBuffer, mStart, mNextLineFeed - mStart);
    mStart = mNextLineFeed + 1;
    FindLineFeed(mStart);
    if (mfTooLong || aLine.size() > kMaxLength) {
        mfTooLong = false;
        return Result::TooLong;
    }
    return aLine.find('\0') == std::string::npos ? Result::Line : Result::HasNul;
}

void LineReader::DropTaken() {
    if (mStart == 0) {
        return;
    }
    mBuffer.erase(0, mStart);
    mNextLineFeed = HasLine() ? mNextLineFeed - mStart : std::string::npos;
    mStart = 0;
}

}  // namespace vxmedia
