#pragma once

// What the characters of escapes stand for.

/// The value of a hexadecimal digit of either case, or -1.
inline int vxHexValue(char aChar) {
    if (aChar >= '0' && aChar <= '9') {
        return aChar - '0';
    }
    const char theLower = static_cast<char>(aChar | 0x20);
    return theLower >= 'a' && theLower <= 'f' ? theLower - 'a' + 10 : -1;
}

/// The byte of the letter behind a backslash: a line feed, return or tab; others stand for themselves.
inline char vxUnescaped(char aChar) {
    switch (aChar) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return aChar;
    }
}
