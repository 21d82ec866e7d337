#include "config/Secret.h"

#include <gtest/gtest.h>

#include <string>

using namespace vxmedia;

namespace {

TEST(SecretTest, EveryTextComesBack) {
    // Long enough that many of them have a zero byte under the first number.
    for (size_t theLength = 0; theLength <= 600; ++theLength) {
        std::string theText;
        for (size_t i = 0; i < theLength; ++i) {
            theText += static_cast<char>(1 + (i * 7 + theLength) % 255);
        }
        const vxCString theHidden = HideSecret(theText.c_str());
        ASSERT_TRUE(IsSecret(theHidden)) << theLength;
        ASSERT_STREQ(RevealSecret(theHidden), theText.c_str()) << theLength;
    }
}

TEST(SecretTest, TheHiddenFormIsPrintableAndDoesNotShowTheText) {
    const std::string theHidden = HideSecret("Jane Doe").c_str();
    EXPECT_EQ(theHidden.find("Jane"), std::string::npos);
    EXPECT_EQ(theHidden.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                          "0123456789+/=:"),
              std::string::npos);
}

TEST(SecretTest, ATextThatIsNotHiddenStaysAsItIs) {
    for (const char* theText : {"", "secret", "Secret:0:AAAA", "plain", "secre:"}) {
        EXPECT_FALSE(IsSecret(theText));
        EXPECT_STREQ(RevealSecret(theText), theText);
    }
}

TEST(SecretTest, GibberishThatNobodyHasMadeIsSurvived) {
    for (const char* theText :
         {"secret:", "secret::", "secret:0", "secret:0:!!", "secret:x:AAAA"}) {
        EXPECT_TRUE(IsSecret(theText));
        RevealSecret(theText);
    }
}

}  // namespace
