#include "vx/Saturate.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

TEST(SaturateTest, TruncatesTowardZero) {
    EXPECT_EQ(vxSaturate<int32_t>(1.999), 1);
    EXPECT_EQ(vxSaturate<int32_t>(-1.999), -1);
    EXPECT_EQ(vxSaturate<uint32_t>(0.999), 0u);
    EXPECT_EQ(vxSaturate<uint32_t>(-0.5), 0u);
    EXPECT_EQ(vxSaturate<uint64_t>(4503599627370497.0), 4503599627370497u);
}

TEST(SaturateTest, StopsAtBothLimitsOfEveryType) {
    EXPECT_EQ(vxSaturate<uint8_t>(255.9), 255);
    EXPECT_EQ(vxSaturate<uint8_t>(256.0), 255);
    EXPECT_EQ(vxSaturate<uint8_t>(-1.0), 0);
    EXPECT_EQ(vxSaturate<int8_t>(127.9), 127);
    EXPECT_EQ(vxSaturate<int8_t>(128.0), 127);
    EXPECT_EQ(vxSaturate<int8_t>(-128.0), -128);
    EXPECT_EQ(vxSaturate<int8_t>(-129.0), -128);
    EXPECT_EQ(vxSaturate<uint16_t>(65536.0), 65535);
    EXPECT_EQ(vxSaturate<int16_t>(32768.0), 32767);
    EXPECT_EQ(vxSaturate<int16_t>(-32769.0), -32768);
    EXPECT_EQ(vxSaturate<uint32_t>(4294967295.0), 4294967295u);
    EXPECT_EQ(vxSaturate<uint32_t>(4294967296.0), 4294967295u);
    EXPECT_EQ(vxSaturate<int32_t>(2147483648.0), 2147483647);
    EXPECT_EQ(vxSaturate<int32_t>(-2147483649.0), -2147483647 - 1);
    EXPECT_EQ(vxSaturate<uint64_t>(18446744073709549568.0), 18446744073709549568u);
    EXPECT_EQ(vxSaturate<uint64_t>(18446744073709551616.0), 18446744073709551615u);
    EXPECT_EQ(vxSaturate<int64_t>(9223372036854775808.0), 9223372036854775807);
    EXPECT_EQ(vxSaturate<int64_t>(-9223372036854775808.0), -9223372036854775807 - 1);
}

TEST(SaturateTest, TakesWhatIsNoFiniteNumber) {
    EXPECT_EQ(vxSaturate<uint32_t>(std::nan("")), 0u);
    EXPECT_EQ(vxSaturate<int64_t>(std::nan("")), 0);
    EXPECT_EQ(vxSaturate<int64_t>(std::numeric_limits<double>::infinity()), 9223372036854775807);
    EXPECT_EQ(vxSaturate<uint8_t>(-std::numeric_limits<double>::infinity()), 0);
}

}  // namespace
