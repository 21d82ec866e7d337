#include <libvxOS/User.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "support/Environment.h"

using vxtest::Environment;

namespace {

TEST(OSUserTest, TheUserIsTheOneThatTheProcessActsAs) {
    EXPECT_EQ(vxUser_GetID(), static_cast<int64_t>(geteuid()));
}

TEST(OSUserTest, AVariableIsCopied) {
    const Environment theVariable("VXTEST_VARIABLE", "some value");

    char* theText = vxPlatform_getenv("VXTEST_VARIABLE");

    EXPECT_STREQ(theText, "some value");
    EXPECT_NE(theText, getenv("VXTEST_VARIABLE"));
    free(theText);
}

TEST(OSUserTest, AnEmptyVariableIsEmptyAndAMissingOneIsNull) {
    const Environment theEmpty("VXTEST_EMPTY", "");
    const Environment theMissing("VXTEST_MISSING", nullptr);

    char* theText = vxPlatform_getenv("VXTEST_EMPTY");

    EXPECT_STREQ(theText, "");
    free(theText);
    EXPECT_EQ(vxPlatform_getenv("VXTEST_MISSING"), nullptr);
    EXPECT_EQ(vxPlatform_getenv(nullptr), nullptr);
}

}  // namespace
