#include <gmock/gmock.h>
#include <libteskTools/Base64.h>
#include <vx/Obfuscate.h>

#include <cstdint>
#include <string>

#include "support/Forward.h"
#include "support/Reports.h"

namespace {

bool sfNoText = false;  // the encoder finds no memory

}  // namespace

size_t vxBase64_Encode(const void* aBytes, size_t aLength, char** aResult) {
    if (sfNoText) {
        *aResult = nullptr;
        return 0;
    }
    return VXTEST_REAL(vxBase64_Encode)(aBytes, aLength, aResult);
}

namespace {

TEST(ObfuscateTest, TextIsEncipheredByTheStandardStreamAndWrittenInBase64) {
    // The first bytes of RC4 for these keys are published with the algorithm: bb f3 16 e8 ... for
    // "Plaintext" under "Key", 10 21 bf 04 20 for "pedia" under "Wiki".
    EXPECT_STREQ(vxObfuscate::To_B64RC4("Plaintext", "Key"), "u/MW6NlArwrT");
    EXPECT_STREQ(vxObfuscate::To_B64RC4("pedia", "Wiki"), "ECG/BCA=");
    EXPECT_STREQ(vxObfuscate::To_B64RC4("Attack at dawn", "Secret"), "RaAfZF/DWzg1UlRLm/U=");
}

TEST(ObfuscateTest, ObfuscatedTextComesBack) {
    EXPECT_STREQ(vxObfuscate::From_B64RC4("u/MW6NlArwrT", "Key"), "Plaintext");
    EXPECT_STREQ(vxObfuscate::From_B64RC4("RaAfZF/DWzg1UlRLm/U=", "Secret"), "Attack at dawn");
}

TEST(ObfuscateTest, EmptyTextIsEmptyBothWays) {
    EXPECT_STREQ(vxObfuscate::To_B64RC4("", "Key"), "");
    EXPECT_STREQ(vxObfuscate::From_B64RC4("", "Key"), "");
}

TEST(ObfuscateTest, TheSameTextAndKeyAlwaysGiveTheSameResult) {
    EXPECT_STREQ(vxObfuscate::To_B64RC4("password", "k"), vxObfuscate::To_B64RC4("password", "k"));
}

TEST(ObfuscateTest, EncipheredBytesCountUpToTheirFirstZero) {
    // The first byte of the stream for "Key" is eb: that byte enciphers to zero.
    const vxCString theText = vxObfuscate::To_B64RC4("\xEB plain", "Key");
    EXPECT_STREQ(theText, "");
    // 9f is the second one: one byte is left.
    const vxCString theShort = vxObfuscate::To_B64RC4("P\x9F lost", "Key");
    EXPECT_STREQ(theShort, "uw==");
    EXPECT_STREQ(vxObfuscate::From_B64RC4(theShort, "Key"), "P");
}

TEST(ObfuscateTest, NullAndEmptyKeysUseTheIdentitySchedule) {
    EXPECT_STREQ(vxObfuscate::To_B64RC4("text", NULL), vxObfuscate::To_B64RC4("text", ""));
    EXPECT_STREQ(vxObfuscate::From_B64RC4(vxObfuscate::To_B64RC4("text", ""), NULL), "text");
}

TEST(ObfuscateTest, WrongKeysAndMalformedTextsGiveSomethingWithoutAReport) {
    vxtest::Reports theReports;
    EXPECT_STRNE(vxObfuscate::From_B64RC4("u/MW6NlArwrT", "Kez"), "Plaintext");
    vxObfuscate::From_B64RC4("no base64!", "Key");
    vxObfuscate::From_B64RC4("====", "Key");
    EXPECT_THAT(theReports.Assertions(), testing::IsEmpty());
    EXPECT_THAT(theReports.LogTexts(), testing::IsEmpty());
}

TEST(ObfuscateTest, AnEncoderWithoutMemoryIsFatal) {
    vxtest::Reports theReports;
    sfNoText = true;
    const vxCString theResult = vxObfuscate::To_B64RC4("P\x9F lost", "Key");
    sfNoText = false;
    EXPECT_STREQ(theResult, "");
    ASSERT_EQ(theReports.FatalErrors().size(), 1U);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "memory:malloc");
    EXPECT_EQ(theReports.FatalErrors()[0].mSize, 1U);
}

TEST(ObfuscateTest, EveryTextWithoutAZeroInItsCipherComesBack) {
    uint32_t theState = 12345;
    for (int i = 0; i < 2000; ++i) {
        std::string theText;
        theState = theState * 1664525U + 1013904223U;
        const size_t theLength = theState >> 24;
        for (size_t j = 0; j < theLength; ++j) {
            theState = theState * 1664525U + 1013904223U;
            theText += static_cast<char>((theState >> 24) % 255 + 1);
        }
        const vxCString theResult =
            vxObfuscate::From_B64RC4(vxObfuscate::To_B64RC4(theText.c_str(), "a key"), "a key");
        // A cut text is the beginning of the whole one.
        EXPECT_EQ(theText.compare(0, theResult.length(), theResult.c_str()), 0);
    }
}

}  // namespace
