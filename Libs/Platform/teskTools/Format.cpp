// Formatting is the C library's.

#include <libteskTools/Format.h>

#include <cstdio>

int vx_vsnprintf(char* aBuffer, size_t aSize, const char* aFormat, va_list anArgs) {
    return vsnprintf(aBuffer, aSize, aFormat, anArgs);
}

int vx_snprintf(char* aBuffer, size_t aSize, const char* aFormat, ...) {
    va_list theArgs;
    va_start(theArgs, aFormat);
    const int theLength = vx_vsnprintf(aBuffer, aSize, aFormat, theArgs);
    va_end(theArgs);
    return theLength;
}
