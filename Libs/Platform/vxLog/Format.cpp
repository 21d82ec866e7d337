// Most texts are short: they are formatted once, on the stack. Longer ones are formatted a second
// time, into the room that the first pass measured.

#include "Format.h"

#include <cstdio>

void vxAppendFormatted(std::string& aText, const char* aFormat, va_list anArgs) {
    char theBuffer[256];
    va_list theCopy;
    va_copy(theCopy, anArgs);
    const int theLength = vsnprintf(theBuffer, sizeof(theBuffer), aFormat, theCopy);
    va_end(theCopy);
    if (theLength < 0) {
        return;
    }
    const size_t theSize = static_cast<size_t>(theLength);
    if (theSize < sizeof(theBuffer)) {
        aText.append(theBuffer, theSize);
        return;
    }
    const size_t theStart = aText.size();
    aText.resize(theStart + theSize + 1);
    vsnprintf(&aText[theStart], theSize + 1, aFormat, anArgs);
    aText.resize(theStart + theSize);
}
