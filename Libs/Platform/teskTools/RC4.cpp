// The RC4 stream, byte by byte: each byte depends on the swap before it. The indexes live in
// registers while a run is processed.

#include <libteskTools/RC4.h>

#include <utility>

void vxRC4_PrepareKey(const void* aKey, size_t aLength, vxRC4Key* aState) {
    const unsigned char* theKey = static_cast<const unsigned char*>(aKey);
    unsigned char* theState = aState->theState;
    for (unsigned i = 0; i < 256; ++i) {
        theState[i] = static_cast<unsigned char>(i);
    }
    aState->x = 0;
    aState->y = 0;
    if (theKey == NULL || aLength == 0) {
        return;
    }
    unsigned theOther = 0;
    size_t theKeyIndex = 0;
    for (unsigned i = 0; i < 256; ++i) {
        theOther = (theOther + theState[i] + theKey[theKeyIndex]) & 0xFF;
        std::swap(theState[i], theState[theOther]);
        theKeyIndex = theKeyIndex + 1 == aLength ? 0 : theKeyIndex + 1;
    }
}

void vxRC4_Process(void* aBytes, size_t aLength, vxRC4Key* aState) {
    unsigned char* theBytes = static_cast<unsigned char*>(aBytes);
    unsigned char* theState = aState->theState;
    unsigned x = aState->x;
    unsigned y = aState->y;
    for (size_t i = 0; i < aLength; ++i) {
        x = (x + 1) & 0xFF;
        const unsigned char theFirst = theState[x];
        y = (y + theFirst) & 0xFF;
        const unsigned char theSecond = theState[y];
        theState[x] = theSecond;
        theState[y] = theFirst;
        theBytes[i] = static_cast<unsigned char>(
            theBytes[i] ^ theState[(static_cast<unsigned>(theFirst) + theSecond) & 0xFF]);
    }
    aState->x = static_cast<unsigned char>(x);
    aState->y = static_cast<unsigned char>(y);
}
