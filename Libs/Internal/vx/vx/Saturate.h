#pragma once

#include <limits>

/// Converts a double to an integer type: truncated toward zero, cut to the type's limits, 0 for NaN.
///
///     vxSaturate<uint64_t>(18446744073709551616.0)   // 18446744073709551615
///     vxSaturate<int8_t>(-1.9)                       // -1
///
/// Threads:  any.
template <typename T>
constexpr T vxSaturate(double aNumber) {
    static_assert(std::numeric_limits<T>::is_integer, "vxSaturate converts to integers");
    // The first value above the type is a power of two, so a double holds it exactly, which it need
    // not do with the highest value itself. The lowest value is exact.
    constexpr double theEnd = 2.0 * static_cast<double>(std::numeric_limits<T>::max() / 2 + 1);
    constexpr double theFirst = static_cast<double>(std::numeric_limits<T>::min());
    if (aNumber >= theEnd) {
        return std::numeric_limits<T>::max();
    }
    if (aNumber >= theFirst) {
        return static_cast<T>(aNumber);
    }
    return aNumber < theFirst ? std::numeric_limits<T>::min() : T(0);
}
