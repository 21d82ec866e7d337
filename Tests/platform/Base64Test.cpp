#include <libteskTools/Base64.h>

#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "support/Environment.h"
#include "support/ScriptedMemory.h"
#include "support/TempDir.h"

namespace {

struct Vector {
    const char* mBytes;
    const char* mText;
};

// RFC 4648, section 10.
constexpr Vector kRFCVectors[] = {
    {"", ""},
    {"f", "Zg=="},
    {"fo", "Zm8="},
    {"foo", "Zm9v"},
    {"foob", "Zm9vYg=="},
    {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"},
};

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string Encode(const std::string& aBytes) {
    char* theText = NULL;
    const size_t theLength = vxBase64_Encode(aBytes.data(), aBytes.size(), &theText);
    EXPECT_EQ(strlen(theText), theLength);
    std::string theResult(theText, theLength);
    free(theText);
    return theResult;
}

// Decodes a text that has no NUL into a block that is just large enough; "refused" if it is.
std::string Decode(const std::string& aText) {
    std::vector<char> theText(aText.begin(), aText.end());
    std::vector<char> theBytes(aText.size() / 4 * 3);
    size_t theSize = 99;
    if (!vxBase64_DecodeSized(theText.data(), theText.size(), theBytes.data(), &theSize)) {
        EXPECT_EQ(theSize, 0u);
        return "refused";
    }
    return std::string(theBytes.data(), theSize);
}

std::string RandomBytes(std::mt19937& aRandom, size_t aSize) {
    std::string theBytes(aSize, '\0');
    for (char& theByte : theBytes) {
        theByte = static_cast<char>(aRandom());
    }
    return theBytes;
}

// What coreutils' base64 makes of the bytes, with options, through a file.
std::string Coreutils(const std::string& aBytes, const std::string& anOptions) {
    const vxtest::TempDir theDir;
    const vxtest::Environment theName("VXTESTFILE", theDir.Write("bytes", aBytes).c_str());
    FILE* thePipe = popen(("base64 " + anOptions + " \"$VXTESTFILE\"").c_str(), "r");
    std::string theResult;
    char theBlock[4096];
    for (size_t theRead; (theRead = fread(theBlock, 1, sizeof(theBlock), thePipe)) > 0;) {
        theResult.append(theBlock, theRead);
    }
    EXPECT_EQ(pclose(thePipe), 0);
    return theResult;
}

TEST(Base64Test, EncodesTheVectorsOfTheRFC) {
    for (const Vector& theVector : kRFCVectors) {
        EXPECT_EQ(Encode(theVector.mBytes), theVector.mText);
    }
}

TEST(Base64Test, DecodesTheVectorsOfTheRFC) {
    for (const Vector& theVector : kRFCVectors) {
        EXPECT_EQ(Decode(theVector.mText), theVector.mBytes);
    }
}

TEST(Base64Test, UsesTheStandardAlphabetInItsOrder) {
    std::string theBytes;
    for (unsigned i = 0; i < 64; i += 4) {
        const unsigned theGroup = i << 18 | (i + 1) << 12 | (i + 2) << 6 | (i + 3);
        theBytes += static_cast<char>(theGroup >> 16);
        theBytes += static_cast<char>(theGroup >> 8);
        theBytes += static_cast<char>(theGroup);
    }

    EXPECT_EQ(Encode(theBytes), kAlphabet);
    EXPECT_EQ(Decode(kAlphabet), theBytes);
}

TEST(Base64Test, EncodesNoBytesAsAnAllocatedEmptyText) {
    char* theText = NULL;

    EXPECT_EQ(vxBase64_Encode(NULL, 0, &theText), 0u);

    ASSERT_NE(theText, nullptr);
    EXPECT_STREQ(theText, "");
    free(theText);
}

TEST(Base64Test, AgreesWithCoreutilsOnBytesOfEveryLength) {
    std::mt19937 theRandom(4648);
    for (size_t i = 0; i < 40; ++i) {
        const size_t theSize = i < 34 ? i : 1000 * i + i;
        SCOPED_TRACE(theSize);
        const std::string theBytes = RandomBytes(theRandom, theSize);
        const std::string theText = Encode(theBytes);
        EXPECT_EQ(theText, Coreutils(theBytes, "-w0"));
        EXPECT_EQ(Coreutils(theText, "-d"), theBytes);
        EXPECT_EQ(Decode(theText), theBytes);
    }
}

TEST(Base64Test, RefusesEveryCharacterOutsideTheAlphabetAtEveryPlace) {
    const std::string theGood = "Zm9vYmFyZm9v";
    for (size_t i = 0; i < theGood.size(); ++i) {
        for (int theChar = 0; theChar < 256; ++theChar) {
            std::string theText = theGood;
            theText[i] = static_cast<char>(theChar);
            const bool fInAlphabet = theChar != 0 && strchr(kAlphabet, theChar) != NULL;
            const bool fPadding = theChar == '=' && i == theGood.size() - 1;
            if (!fInAlphabet && !fPadding) {
                EXPECT_EQ(Decode(theText), "refused") << theChar << " at " << i;
            }
        }
    }
}

TEST(Base64Test, RefusesMalformedText) {
    const char* const kTexts[] = {
        "Z",    "Zg",         "Zg=",      "Zm9",   "Zm9vYg", "Zg==Zg==", "Zm8=Zm9v",     "====",
        "=",    "Z===",       "Zg=A",     "=g==",  "Z=g=",   "Zm9vY===", "Zm9v\n",       " Zm9",
        "Zm9 ", "Zm9vYmFy\n", "Zm9v====", "Zm9v=", "Zm-v",   "Zm_v",     "Zm9v\r\nYmFy",
    };
    for (const char* theText : kTexts) {
        EXPECT_EQ(Decode(theText), "refused") << theText;
    }
}

TEST(Base64Test, RefusesUnusedBitsThatAreNotZero) {
    for (const char* theText : {"Zh==", "Zv==", "Zm9=", "Zm+=", "Zm9vYh=="}) {
        EXPECT_EQ(Decode(theText), "refused") << theText;
    }
}

TEST(Base64Test, ReadsTheTextToItsNULWhereNoLengthIsGiven) {
    char theBytes[16] = "untouched";

    EXPECT_EQ(vxBase64_Decode("Zm9vYg==", theBytes), 4u);
    EXPECT_EQ(memcmp(theBytes, "foob", 4), 0);
    EXPECT_EQ(vxBase64_Decode("", theBytes), 0u);
    EXPECT_EQ(vxBase64_Decode("Zm9vYg=", theBytes), 0u);
}

TEST(Base64Test, DecodesInPlace) {
    char theText[] = "Zm9vYmFyZm9vYg==";

    EXPECT_EQ(vxBase64_Decode(theText, theText), 10u);

    EXPECT_EQ(std::string(theText, 10), "foobarfoob");
}

TEST(Base64Test, AnswersNoTextWhenThereIsNoMemory) {
    vxtest::NoMemory theNoMemory;
    char theAny = 'x';
    char* theText = &theAny;

    EXPECT_EQ(vxBase64_Encode("foo", 3, &theText), 0u);
    EXPECT_EQ(theText, nullptr);
}

TEST(Base64Test, AnswersNoTextForMoreBytesThanATextCanHold) {
    char theAny = 'x';
    char* theText = &theAny;

    EXPECT_EQ(vxBase64_Encode(&theAny, SIZE_MAX - 1, &theText), 0u);
    EXPECT_EQ(theText, nullptr);
}

}  // namespace
