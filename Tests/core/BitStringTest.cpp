#include "vx/BitString.h"

#include <gmock/gmock.h>

#include <random>
#include <vector>

#include "support/Reports.h"
#include "vx/UInt64.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Bytes = std::vector<uint8_t>;

// Bytes whose bits are those of a text of '0' and '1'; the last byte is filled up with zeros.
Bytes FromBits(const std::string& aBits) {
    Bytes theBytes((aBits.size() + 7) / 8);
    for (size_t i = 0; i < aBits.size(); ++i) {
        if (aBits[i] == '1') {
            theBytes[i / 8] = static_cast<uint8_t>(theBytes[i / 8] | 0x80 >> i % 8);
        }
    }
    return theBytes;
}

// The reader as it is described: one bit at a time, and nothing but a position.
class Model {
public:
    explicit Model(const Bytes& aBytes) : mBytes(aBytes) {}

    size_t Remaining() const { return mBytes.size() * 8 - mPosition; }
    size_t ByteOffset() const { return (mPosition + 7) / 8; }

    uint32_t Bit() {
        if (Remaining() == 0) {
            return 0;
        }
        const uint32_t theBit = mBytes[mPosition / 8] >> (7 - mPosition % 8) & 1;
        ++mPosition;
        return theBit;
    }

    uint32_t Get(size_t aCount) {
        uint32_t theBits = 0;
        for (size_t i = 0; i < aCount; ++i) {
            theBits = theBits << 1 | Bit();
        }
        return theBits;
    }

    uint32_t GetUE() {
        uint32_t theZeros = 0;
        while (Remaining() > 0 && Bit() == 0) {
            ++theZeros;
        }
        if (theZeros > 31) {
            return 0;
        }
        return (1U << theZeros) - 1 + Get(theZeros);
    }

    int32_t GetSE() {
        const int64_t theCode = GetUE();
        return static_cast<int32_t>(theCode % 2 == 1 ? (theCode + 1) / 2 : -(theCode / 2));
    }

    void Skip(size_t aCount) { mPosition += std::min(aCount, Remaining()); }
    void ByteAlign() { mPosition = (mPosition + 7) / 8 * 8; }

    void Mark(bool afSet) {
        if (afSet) {
            mMark = mPosition;
        } else if (mfMarked) {
            mPosition = mMark;
        }
        mfMarked = afSet;
    }

private:
    const Bytes& mBytes;
    size_t mPosition = 0;
    size_t mMark = 0;
    bool mfMarked = false;
};

TEST(BitStringTest, StartsWithoutBits) {
    vxBitString theBits;
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
    EXPECT_EQ(theBits.GetByteOffset(), 0u);
    EXPECT_EQ(theBits.Get(8), 0u);
    EXPECT_EQ(theBits.GetUE(), 0u);
}

TEST(BitStringTest, ReadsFieldsFromTheMostSignificantBit) {
    const Bytes theBytes = {0xab, 0xcd, 0xef, 0x01, 0x23, 0x45};
    vxBitString theBits(theBytes.data(), theBytes.size());
    EXPECT_EQ(theBits.Get(4), 0xau);
    EXPECT_EQ(theBits.Get(8), 0xbcu);
    EXPECT_EQ(theBits.Get(1), 1u);
    EXPECT_EQ(theBits.Get(3), 5u);
    EXPECT_EQ(theBits.Get(32), 0xef012345u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
}

TEST(BitStringTest, ByteCountsAsLoadedWithItsFirstBit) {
    const Bytes theBytes(20, 0xff);
    vxBitString theBits(theBytes.data(), theBytes.size());
    EXPECT_EQ(theBits.GetByteOffset(), 0u);
    theBits.Get(1);
    EXPECT_EQ(theBits.GetByteOffset(), 1u);
    theBits.Get(7);
    EXPECT_EQ(theBits.GetByteOffset(), 1u);
    theBits.Get(9);
    EXPECT_EQ(theBits.GetByteOffset(), 3u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 143u);
}

TEST(BitStringTest, MissingBitsAreZeroAtTheLowEnd) {
    const Bytes theBytes = {0xff, 0xe0};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.Skip(4);
    EXPECT_EQ(theBits.Get(32), 0xfe000000u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
    EXPECT_EQ(theBits.GetByteOffset(), 2u);
    EXPECT_EQ(theBits.Get(5), 0u);
}

TEST(BitStringTest, CountsOutOfRangeAreReported) {
    vxtest::Reports theReports;
    const Bytes theBytes = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef,
                            0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef};
    vxBitString theBits(theBytes.data(), theBytes.size());

    EXPECT_EQ(theBits.Get(0), 0u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 128u);
    EXPECT_EQ(theBits.Get(40), 0x23456789u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 88u);
    EXPECT_EQ(theBits.Get(33), 0x579bde02u);
    EXPECT_EQ(theBits.Get(255), 0u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);

    const char* const kText = "(aBitCount > 0) && (aBitCount <= 32)";
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kText, kText, kText, kText));
}

TEST(BitStringTest, LimitsOfTheCountAreInRange) {
    vxtest::Reports theReports;
    const Bytes theBytes(16, 0xff);
    vxBitString theBits(theBytes.data(), theBytes.size());
    EXPECT_EQ(theBits.Get(1), 1u);
    EXPECT_EQ(theBits.Get(32), 0xffffffffu);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(BitStringTest, PeekingDoesNotMove) {
    const Bytes theBytes = {0xab, 0xcd};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.Get(4);
    EXPECT_EQ(theBits.Peek(8), 0xbcu);
    EXPECT_EQ(theBits.Peek(8), 0xbcu);
    EXPECT_EQ(theBits.GetByteOffset(), 1u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 12u);
}

TEST(BitStringTest, PeekingForgetsTheBookmark) {
    const Bytes theBytes = {0xab, 0xcd};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.ToggleMarker(true);
    theBits.Get(4);
    theBits.Peek(8);
    theBits.ToggleMarker(false);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 12u);
}

TEST(BitStringTest, BookmarkBringsTheReaderBackOnce) {
    const Bytes theBytes = {0xab, 0xcd, 0xef};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.Get(4);
    theBits.ToggleMarker(true);
    theBits.Get(12);
    theBits.ToggleMarker(false);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 20u);
    EXPECT_EQ(theBits.GetByteOffset(), 1u);
    EXPECT_EQ(theBits.Get(8), 0xbcu);
    theBits.ToggleMarker(false);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 12u);
}

TEST(BitStringTest, NewBytesForgetTheBookmark) {
    const Bytes theBytes = {0xab, 0xcd, 0xef};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.ToggleMarker(true);
    theBits.SetBuffer(theBytes.data() + 1, 2);
    theBits.Get(3);
    theBits.ToggleMarker(false);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 13u);
    EXPECT_EQ(theBits.Get(5), 0xdu);
}

TEST(BitStringTest, NullBytesAreNoBytes) {
    vxBitString theBits(NULL, 10);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
    EXPECT_EQ(theBits.Get(32), 0u);
}

TEST(BitStringTest, BytesWhoseBitsASizeCannotCountAreLeftOut) {
    const uint8_t theByte = 0xab;
    vxBitString theBits;
    for (const size_t theExtra : {1, 2, 100}) {
        theBits.SetBuffer(&theByte, SIZE_MAX / 8 + theExtra);
        EXPECT_EQ(theBits.GetRemainingBitCount(), SIZE_MAX - 7);
        EXPECT_EQ(theBits.GetByteOffset(), 0u);
    }
}

TEST(BitStringTest, SkippingPastTheEndEmptiesTheReader) {
    const Bytes theBytes(10, 0xff);
    for (const size_t theCount : {size_t{80}, size_t{81}, size_t{100000}, SIZE_MAX}) {
        SCOPED_TRACE(theCount);
        vxBitString theBits(theBytes.data(), theBytes.size());
        theBits.Get(3);
        theBits.Skip(theCount);
        EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
        EXPECT_EQ(theBits.GetByteOffset(), 10u);
    }
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.Skip(79);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 1u);
    theBits.Skip(0);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 1u);
}

TEST(BitStringTest, SmallSkipsGoUpTo32Bits) {
    vxtest::Reports theReports;
    const Bytes theBytes(10, 0xff);
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.SkipSmall(32);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 48u);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theBits.SkipSmall(33);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 15u);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aBitCount <= 32"));
    theBits.SkipSmall(16);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
}

TEST(BitStringTest, AligningDropsTheRestOfTheByte) {
    const Bytes theBytes = {0xab, 0xcd};
    vxBitString theBits(theBytes.data(), theBytes.size());
    theBits.ByteAlign();
    EXPECT_EQ(theBits.GetRemainingBitCount(), 16u);
    theBits.Get(1);
    theBits.ByteAlign();
    EXPECT_EQ(theBits.GetRemainingBitCount(), 8u);
    EXPECT_EQ(theBits.Get(8), 0xcdu);
}

struct GolombCase {
    const char* mBits;
    uint32_t mUnsigned;
    int32_t mSigned;
    size_t mLength;
};

constexpr GolombCase kGolombCases[] = {
    {"1", 0, 0, 1},
    {"010", 1, 1, 3},
    {"011", 2, -1, 3},
    {"00100", 3, 2, 5},
    {"00101", 4, -2, 5},
    {"00110", 5, 3, 5},
    {"00111", 6, -3, 5},
    {"0001000", 7, 4, 7},
    {"000000000000000000000000000010000000000000000000000000000", 268435455, 134217728, 57},
    {"00000000000000000000000000000100000000000000000000000000001", 536870912, -268435456, 59},
    {"000000000000000000000000000000010000000000000000000000000000000", 2147483647, 1073741824, 63},
    {"000000000000000000000000000000011111111111111111111111111111111", 4294967294, -2147483647,
     63},
    {"000000000000000000000000000000011111111111111111111111111111110", 4294967293, 2147483647, 63},
    {"000000000000000000000000000000001", 0, 0, 33},
    {"000000000000000000000000000000000000000000000000000000000000000000000001", 0, 0, 72},
};

TEST(BitStringTest, ExpGolombCodesAreZerosAOneAndAsManyBits) {
    for (const GolombCase& theCase : kGolombCases) {
        for (const size_t theTail : {0, 20}) {  // at the end of the bytes and far from it
            SCOPED_TRACE(testing::Message() << theCase.mBits << " and " << theTail);
            Bytes theBytes = FromBits(theCase.mBits);
            theBytes.resize(theBytes.size() + theTail, 0xff);
            vxBitString theBits(theBytes.data(), theBytes.size());
            EXPECT_EQ(theBits.GetUE(), theCase.mUnsigned);
            EXPECT_EQ(theBits.GetRemainingBitCount(), theBytes.size() * 8 - theCase.mLength);
            theBits.SetBuffer(theBytes.data(), theBytes.size());
            EXPECT_EQ(theBits.GetSE(), theCase.mSigned);
        }
    }
}

TEST(BitStringTest, ExpGolombCodesThatRunOutCountTheZerosSeen) {
    const Bytes theZeros(5, 0);
    vxBitString theBits(theZeros.data(), 1);
    theBits.Skip(5);
    EXPECT_EQ(theBits.GetUE(), 7u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
    EXPECT_EQ(theBits.GetUE(), 0u);

    theBits.SetBuffer(theZeros.data(), 4);
    theBits.Skip(1);
    EXPECT_EQ(theBits.GetUE(), 2147483647u);
    theBits.SetBuffer(theZeros.data(), 4);
    EXPECT_EQ(theBits.GetUE(), 0u);
    theBits.SetBuffer(theZeros.data(), 5);
    EXPECT_EQ(theBits.GetUE(), 0u);

    // The one bit is there, but bits behind it are missing and count as 0.
    const Bytes theCut = FromBits("00000101");
    theBits.SetBuffer(theCut.data(), 1);
    EXPECT_EQ(theBits.GetUE(), 31u + 8u);
    EXPECT_EQ(theBits.GetRemainingBitCount(), 0u);
}

TEST(BitStringTest, AgreesWithAReaderOfSingleBits) {
    std::mt19937 theRandom(264);
    for (int theRound = 0; theRound < 4000; ++theRound) {
        Bytes theBytes(theRandom() % 60);
        for (uint8_t& theByte : theBytes) {
            // Many zeros, so that there are long codes.
            theByte = static_cast<uint8_t>(theRandom() % 3 == 0 ? theRandom() : 0);
        }
        const Bytes theExact(theBytes.begin(), theBytes.end());
        vxBitString theBits(theExact.data(), theExact.size());
        Model theModel(theExact);
        for (int i = 0; i < 60; ++i) {
            const uint8_t theCount = static_cast<uint8_t>(theRandom() % 32 + 1);
            switch (theRandom() % 9) {
                case 0:
                case 1:
                    ASSERT_EQ(theBits.Get(theCount), theModel.Get(theCount));
                    break;
                case 2: {
                    Model theCopy = theModel;
                    ASSERT_EQ(theBits.Peek(theCount), theCopy.Get(theCount));
                    theModel.Mark(true);
                    theModel.Mark(false);
                    break;
                }
                case 3:
                    theBits.Skip(theCount * 2U);
                    theModel.Skip(theCount * 2U);
                    break;
                case 4:
                    theBits.SkipSmall(theCount);
                    theModel.Skip(theCount);
                    break;
                case 5:
                    ASSERT_EQ(theBits.GetUE(), theModel.GetUE());
                    break;
                case 6:
                    ASSERT_EQ(theBits.GetSE(), theModel.GetSE());
                    break;
                case 7:
                    theBits.ByteAlign();
                    theModel.ByteAlign();
                    break;
                default:
                    theBits.ToggleMarker(theCount % 2 == 0);
                    theModel.Mark(theCount % 2 == 0);
                    break;
            }
            ASSERT_EQ(theBits.GetRemainingBitCount(), theModel.Remaining());
            ASSERT_EQ(theBits.GetByteOffset(), theModel.ByteOffset());
        }
    }
}

TEST(BitStringTest, ByteOrderHelpersReadNumbers) {
    const Bytes theBytes = {0x81, 0x92, 0xa3, 0xb4, 0xc5, 0xd6, 0xe7, 0xf8};
    const uint8_t* thePtr = theBytes.data();
    EXPECT_EQ(vxBitString::Get3(thePtr), 0x8192a3u);
    EXPECT_EQ(vxBitString::BigEndianTouint32(thePtr), 0x8192a3b4u);
    EXPECT_EQ(vxBitString::BigEndianToint32(thePtr), -2121096268);
    EXPECT_EQ(vxBitString::BigEndianTouint16(thePtr), 0x8192u);
    EXPECT_EQ(vxBitString::BigEndianToint16(thePtr), -32366);
    EXPECT_EQ(vxBitString::LittleEndianTouint32(thePtr), 0xb4a39281u);
    EXPECT_EQ(vxBitString::LittleEndianToint32(thePtr), -1264348543);
    EXPECT_EQ(vxBitString::LittleEndianTouint16(thePtr), 0x9281u);
    EXPECT_EQ(vxBitString::LittleEndianToint16(thePtr), -28031);
    EXPECT_EQ(vxBitString::LittleEndianTouint64(thePtr).ToUInt64(), 0xf8e7d6c5b4a39281u);
    EXPECT_EQ(vxBitString::BigEndianToOpenGL(thePtr), 0x81b4a392u);
}

TEST(BitStringTest, ByteOrderHelpersWriteNumbers) {
    uint8_t theBytes[5] = {0, 0, 0, 0, 9};
    vxBitString::uint32ToLittleEndian(0xb4a39281u, theBytes);
    EXPECT_THAT(theBytes, ElementsAre(0x81, 0x92, 0xa3, 0xb4, 9));
    vxBitString::uint16ToLittleEndian(0xf8e7, theBytes);
    EXPECT_THAT(theBytes, ElementsAre(0xe7, 0xf8, 0xa3, 0xb4, 9));
}

TEST(BitStringTest, PlatformOrderIsThatOfItsNumbers) {
    const uint16_t theNumber = 1;
    uint8_t theFirst;
    memcpy(&theFirst, &theNumber, 1);
    EXPECT_EQ(vxBitString::IsBigEndianPlatform(), theFirst == 0);
}

}  // namespace
