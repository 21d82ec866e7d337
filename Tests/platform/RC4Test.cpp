#include <gtest/gtest.h>
#include <libteskTools/RC4.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

/// Bytes in hexadecimal.
std::string Hex(const std::string& aBytes) {
    std::string theText;
    for (const char theChar : aBytes) {
        constexpr char kDigits[] = "0123456789abcdef";
        const unsigned char theByte = static_cast<unsigned char>(theChar);
        theText += kDigits[theByte >> 4];
        theText += kDigits[theByte & 15];
    }
    return theText;
}

std::string Processed(vxRC4Key& aKey, std::string aBytes) {
    vxRC4_Process(aBytes.data(), aBytes.size(), &aKey);
    return aBytes;
}

vxRC4Key Prepared(const std::string& aKey) {
    vxRC4Key theKey;
    vxRC4_PrepareKey(aKey.data(), aKey.size(), &theKey);
    return theKey;
}

TEST(RC4Test, KnownTextsHaveTheirKnownCiphers) {
    const struct {
        const char* mKey;
        const char* mText;
        const char* mCipher;
    } kRows[] = {
        {"Key", "Plaintext", "bbf316e8d940af0ad3"},
        {"Wiki", "pedia", "1021bf0420"},
        {"Secret", "Attack at dawn", "45a01f645fc35b383552544b9bf5"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mKey);
        vxRC4Key theKey = Prepared(theRow.mKey);
        EXPECT_EQ(Hex(Processed(theKey, theRow.mText)), theRow.mCipher);
    }
}

// Streams of RFC 6229: key, offset, sixteen bytes.
TEST(RC4Test, StreamsAreThoseOfRFC6229) {
    const std::string kKey("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x10", 16);
    const struct {
        size_t mKeyLength;
        size_t mOffset;
        const char* mStream;
    } kRows[] = {
        {5, 0, "b2396305f03dc027ccc3524a0a1118a8"},   {5, 16, "6982944f18fc82d589c403a47a0d0919"},
        {5, 240, "28cb1132c96ce286421dcaadb8b69eae"}, {16, 0, "9ac7cc9a609d1ef7b2932899cde41b97"},
        {16, 16, "5248c4959014126a6e8a84f11d1a9e1c"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mKeyLength << " at " << theRow.mOffset);
        vxRC4Key theKey = Prepared(kKey.substr(0, theRow.mKeyLength));
        Processed(theKey, std::string(theRow.mOffset, '\0'));
        EXPECT_EQ(Hex(Processed(theKey, std::string(16, '\0'))), theRow.mStream);
    }
}

TEST(RC4Test, AStreamGoesOnFromCallToCall) {
    const std::string theText(1000, 'x');
    vxRC4Key theWhole = Prepared("a key");
    vxRC4Key theParts = Prepared("a key");
    const std::string theCipher = Processed(theWhole, theText);
    std::string theJoined;
    for (size_t thePos = 0, theLength = 0; thePos < theText.size(); thePos += theLength++) {
        theJoined += Processed(theParts, theText.substr(thePos, theLength));
    }
    EXPECT_EQ(theJoined, theCipher);
    EXPECT_EQ(memcmp(&theParts, &theWhole, sizeof(vxRC4Key)), 0);
}

TEST(RC4Test, TheStreamIsItsOwnInverse) {
    vxRC4Key theFirst = Prepared("a key");
    vxRC4Key theSecond = Prepared("a key");
    EXPECT_EQ(Processed(theSecond, Processed(theFirst, "some text")), "some text");
}

TEST(RC4Test, EmptyAndNullKeysLeaveTheIdentity) {
    vxRC4Key theKeys[2];
    vxRC4_PrepareKey("", 0, &theKeys[0]);
    vxRC4_PrepareKey(nullptr, 5, &theKeys[1]);
    for (const vxRC4Key& theKey : theKeys) {
        for (unsigned i = 0; i < 256; ++i) {
            EXPECT_EQ(theKey.theState[i], i);
        }
        EXPECT_EQ(theKey.x, 0);
        EXPECT_EQ(theKey.y, 0);
    }
}

TEST(RC4Test, NoBytesMoveNothing) {
    const vxRC4Key theBefore = Prepared("Key");
    vxRC4Key theKey = theBefore;
    vxRC4_Process(nullptr, 0, &theKey);
    EXPECT_EQ(memcmp(&theKey, &theBefore, sizeof(vxRC4Key)), 0);
}

TEST(RC4Test, TheScheduleUsesTheFirst256BytesOfALongKey) {
    const std::string theLong(256, 'k');
    const vxRC4Key theKey = Prepared(theLong);
    const vxRC4Key theLonger = Prepared(theLong + "more");
    const vxRC4Key theShorter = Prepared(theLong.substr(0, 255) + "j");
    EXPECT_EQ(memcmp(&theKey, &theLonger, sizeof(vxRC4Key)), 0);
    EXPECT_NE(memcmp(&theKey, &theShorter, sizeof(vxRC4Key)), 0);
}

TEST(RC4Test, TheStateStaysAPermutation) {
    vxRC4Key theKey = Prepared("Key");
    Processed(theKey, std::string(100000, 'x'));
    std::vector<unsigned char> theSorted(theKey.theState, theKey.theState + 256);
    std::sort(theSorted.begin(), theSorted.end());
    for (unsigned i = 0; i < 256; ++i) {
        EXPECT_EQ(theSorted[i], i);
    }
    EXPECT_EQ(theKey.x, 100000 % 256);
}

}  // namespace
