#pragma once

/// Tells whether the whole of `aName` fits `aPattern`: `*`, `?`, `[set]` and backslash, on bytes, as
/// vxDirTraverser_GetFirst() describes them.
///
/// Cost:     at most the product of both lengths, whatever the number of stars.
bool vxWildcardMatches(const char* aPattern, const char* aName);
