#include "vx/CountedDataBuffer.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedMemory.h"

namespace {

using testing::ElementsAre;

using BufferRef = vxRef<vxCountedDataBuffer>;

std::string Bytes(const BufferRef& aBuffer) {
    return std::string(static_cast<const char*>(aBuffer->data()), aBuffer->size());
}

TEST(CountedDataBufferTest, StartsEmpty) {
    const BufferRef theBuffer = new vxCountedDataBuffer;
    EXPECT_EQ(theBuffer->data(), nullptr);
    EXPECT_EQ(theBuffer->size(), 0u);
}

TEST(CountedDataBufferTest, SizeAloneMakesABlockToWriteTo) {
    const BufferRef theBuffer = new vxCountedDataBuffer(size_t{3});
    ASSERT_EQ(theBuffer->size(), 3u);
    memcpy(theBuffer->data(), "abc", 3);
    EXPECT_EQ(Bytes(theBuffer), "abc");
}

TEST(CountedDataBufferTest, CopiesBytesIncludingZeros) {
    char theBytes[] = {'a', '\0', 'b'};
    const BufferRef theBuffer = new vxCountedDataBuffer(theBytes, sizeof(theBytes));
    theBytes[0] = 'x';
    EXPECT_EQ(Bytes(theBuffer), std::string("a\0b", 3));
}

TEST(CountedDataBufferTest, NullBytesMakeAnEmptyBuffer) {
    const BufferRef theBuffer = new vxCountedDataBuffer(NULL, 3);
    EXPECT_EQ(theBuffer->data(), nullptr);
    EXPECT_EQ(theBuffer->size(), 0u);
}

TEST(CountedDataBufferTest, CopiesATextWithItsNUL) {
    const BufferRef theBuffer = new vxCountedDataBuffer("abc");
    EXPECT_EQ(Bytes(theBuffer), std::string("abc\0", 4));
}

TEST(CountedDataBufferTest, NullTextIsReportedAndMakesAnEmptyBuffer) {
    vxtest::Reports theReports;
    const char* theText = NULL;

    const BufferRef theBuffer = new vxCountedDataBuffer(theText);

    EXPECT_THAT(theReports.Assertions(), ElementsAre("aString != NULL"));
    EXPECT_EQ(theBuffer->data(), nullptr);
    EXPECT_EQ(theBuffer->size(), 0u);
}

TEST(CountedDataBufferTest, Base64IsComputedWhenFirstAskedFor) {
    const BufferRef theBuffer = new vxCountedDataBuffer("foobar", 6);
    const char* theText = theBuffer->base64();
    EXPECT_STREQ(theText, "Zm9vYmFy");
    EXPECT_EQ(theBuffer->base64Size(), 8u);
    EXPECT_EQ(theBuffer->base64(), theText);
}

TEST(CountedDataBufferTest, Base64SizeAloneComputesTheTextToo) {
    const BufferRef theBuffer = new vxCountedDataBuffer("foob", 4);
    EXPECT_EQ(theBuffer->base64Size(), 8u);
    EXPECT_STREQ(theBuffer->base64(), "Zm9vYg==");
}

TEST(CountedDataBufferTest, Base64OfNoBytesIsTheEmptyText) {
    const BufferRef theBuffer = new vxCountedDataBuffer;
    EXPECT_STREQ(theBuffer->base64(), "");
    EXPECT_EQ(theBuffer->base64Size(), 0u);
}

TEST(CountedDataBufferTest, BytesChangedAfterEncodingLeaveAStaleText) {
    const BufferRef theBuffer = new vxCountedDataBuffer("foo", 3);
    theBuffer->encodeBase64();
    memcpy(theBuffer->data(), "bar", 3);
    theBuffer->encodeBase64();
    EXPECT_STREQ(theBuffer->base64(), "Zm9v");
}

TEST(CountedDataBufferTest, DecodesBase64) {
    const BufferRef theBuffer = vxCountedDataBuffer::fromBase64("Zm9vYg==", 8);
    EXPECT_EQ(theBuffer->_GetRefCount(), 1);
    EXPECT_EQ(Bytes(theBuffer), "foob");
    EXPECT_STREQ(theBuffer->base64(), "Zm9vYg==");
}

TEST(CountedDataBufferTest, DecodingReadsNoFurtherThanTheText) {
    // The first text has no NUL behind it; the second ends before its stated size.
    const std::vector<char> theText = {'Z', 'm', '9', 'v'};
    EXPECT_EQ(Bytes(vxCountedDataBuffer::fromBase64(theText.data(), theText.size())), "foo");
    EXPECT_EQ(Bytes(vxCountedDataBuffer::fromBase64("Zm9v", 4000)), "foo");
    EXPECT_EQ(Bytes(vxCountedDataBuffer::fromBase64("Zm9vYmFy", 4)), "foo");
}

TEST(CountedDataBufferTest, MalformedTextDecodesToNoBytes) {
    for (const char* theText : {"Zm9", "Zm9v YmFy", "Zg=A", "Zh==", "====", "Zm9vYmF*"}) {
        EXPECT_EQ(BufferRef(vxCountedDataBuffer::fromBase64(theText, strlen(theText)))->size(), 0u)
            << theText;
    }
    EXPECT_EQ(BufferRef(vxCountedDataBuffer::fromBase64("", 0))->size(), 0u);
    EXPECT_EQ(BufferRef(vxCountedDataBuffer::fromBase64(NULL, 5))->size(), 0u);
}

TEST(CountedDataBufferTest, LackOfMemoryForTheTextIsReported) {
    vxtest::Reports theReports;
    const BufferRef theBuffer = new vxCountedDataBuffer("foo", 3);
    {
        vxtest::NoMemory theNoMemory;
        EXPECT_EQ(theBuffer->base64(), nullptr);
    }
    ASSERT_EQ(theReports.FatalErrors().size(), 1u);
    EXPECT_EQ(theReports.FatalErrors()[0].mResource, "memory:malloc");
    EXPECT_STREQ(theBuffer->base64(), "Zm9v");
}

TEST(CountedDataBufferTest, LackOfMemoryForTheBlockMakesAnEmptyBuffer) {
    vxtest::Reports theReports;
    vxtest::NoMemory theNoMemory;
    const BufferRef theBuffer = vxCountedDataBuffer::fromBase64("Zm9v", 4);
    EXPECT_EQ(theBuffer->size(), 0u);
    EXPECT_EQ(theBuffer->data(), nullptr);
    EXPECT_EQ(theReports.FatalErrors().size(), 1u);
}

}  // namespace
