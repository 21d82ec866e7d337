#pragma once

// Decimal text to double and back, exact in both directions and without regard to the locale.

#include <libteskTools/Types.h>

/// Room that the writers below need; what they use of it may be less than what they write to.
constexpr size_t kvxMaxNumberLength = 40;

/// Gives the double nearest to `aDigits` times ten to the `anExponent`, ties to even.
///
/// Returns false, leaving the value alone, outside the range that its table covers.
bool vxDecimalToDouble(uint64_t aDigits, int anExponent, double& aValue);

/// Writes the shortest digits that read back as `aValue`; "null" if it is not finite. Returns the
/// end.
char* vxWriteDouble(char* aTarget, double aValue);

/// Writes an integer and returns the end.
char* vxWriteUInt(char* aTarget, uint64_t aValue);
char* vxWriteInt(char* aTarget, int64_t aValue);
