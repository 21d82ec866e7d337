// The RC4 stream. Each byte depends on the swap before it, so that nothing runs side by side; the
// indexes live in registers while a run is processed, and eight bytes at a time spare the counting.

#include <libteskTools/RC4.h>

namespace {

constexpr size_t kvxRC4_Run = 8;  // bytes between two looks at the length

/// Takes a step of the stream and enciphers one byte by it.
inline void vxStep(unsigned char* aState, unsigned& x, unsigned& y, unsigned char& aByte) {
    x = (x + 1) & 0xFF;
    const unsigned theFirst = aState[x];
    y = (y + theFirst) & 0xFF;
    const unsigned theSecond = aState[y];
    aState[x] = static_cast<unsigned char>(theSecond);
    aState[y] = static_cast<unsigned char>(theFirst);
    aByte = static_cast<unsigned char>(aByte ^ aState[(theFirst + theSecond) & 0xFF]);
}

}  // namespace

void vxRC4_PrepareKey(const void* aKey, size_t aLength, vxRC4Key* aState) {
    const unsigned char* const theKey = static_cast<const unsigned char*>(aKey);
    unsigned char* const theState = aState->theState;
    for (unsigned i = 0; i < 256; ++i) {
        theState[i] = static_cast<unsigned char>(i);
    }
    aState->x = 0;
    aState->y = 0;
    if (theKey == NULL || aLength == 0) {
        return;
    }
    unsigned theOther = 0;
    const unsigned char* theKeyByte = theKey;
    for (unsigned i = 0; i < 256; ++i) {
        const unsigned char theFirst = theState[i];
        theOther = (theOther + theFirst + *theKeyByte) & 0xFF;
        theState[i] = theState[theOther];
        theState[theOther] = theFirst;
        theKeyByte = theKeyByte + 1 == theKey + aLength ? theKey : theKeyByte + 1;
    }
}

void vxRC4_Process(void* aBytes, size_t aLength, vxRC4Key* aState) {
    unsigned char* theBytes = static_cast<unsigned char*>(aBytes);
    unsigned char* const theState = aState->theState;
    unsigned x = aState->x;
    unsigned y = aState->y;
    for (; aLength >= kvxRC4_Run; aLength -= kvxRC4_Run, theBytes += kvxRC4_Run) {
        for (size_t i = 0; i < kvxRC4_Run; ++i) {
            vxStep(theState, x, y, theBytes[i]);
        }
    }
    for (size_t i = 0; i < aLength; ++i) {
        vxStep(theState, x, y, theBytes[i]);
    }
    aState->x = static_cast<unsigned char>(x);
    aState->y = static_cast<unsigned char>(y);
}
