#include "vx/CharBuffer.h"

#include <libteskTools/Memory.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace {

// Both holders pass the same tests.
struct Narrow {
    using Buffer = vxCharBuffer;
    using Char = char;
    static const char* Abc() { return "abc"; }
    static const char* Other() { return "other"; }
    static size_t Length(const char* aStr) { return strlen(aStr); }
    static bool Same(const char* aLeft, const char* aRight) { return strcmp(aLeft, aRight) == 0; }
};

struct Wide {
    using Buffer = vxWCharBuffer;
    using Char = wchar_t;
    static const wchar_t* Abc() { return L"abc"; }
    static const wchar_t* Other() { return L"other"; }
    static size_t Length(const wchar_t* aStr) { return wcslen(aStr); }
    static bool Same(const wchar_t* aLeft, const wchar_t* aRight) {
        return wcscmp(aLeft, aRight) == 0;
    }
};

template <typename Kind>
class CharBufferTest : public testing::Test {
protected:
    using Buffer = typename Kind::Buffer;
    using Char = typename Kind::Char;

    static Char* HeapCopy(const Char* aStr) {
        const size_t theSize = (Kind::Length(aStr) + 1) * sizeof(Char);
        Char* theCopy = static_cast<Char*>(malloc(theSize));
        memcpy(theCopy, aStr, theSize);
        return theCopy;
    }

    static const Char* Text(const Buffer& aBuffer) { return aBuffer; }
};

using Kinds = testing::Types<Narrow, Wide>;
TYPED_TEST_SUITE(CharBufferTest, Kinds);

}  // namespace

TYPED_TEST(CharBufferTest, ADefaultHolderIsNull) {
    const typename TypeParam::Buffer theBuffer;
    EXPECT_EQ(this->Text(theBuffer), nullptr);
}

TYPED_TEST(CharBufferTest, NullStaysNull) {
    const typename TypeParam::Char* theNull = nullptr;
    const typename TypeParam::Buffer theCopied(theNull, true);
    const typename TypeParam::Buffer theAdopted(theNull, false);
    EXPECT_EQ(this->Text(theCopied), nullptr);
    EXPECT_EQ(this->Text(theAdopted), nullptr);
}

TYPED_TEST(CharBufferTest, ACopyIsADuplicate) {
    const typename TypeParam::Buffer theBuffer(TypeParam::Abc(), true);
    EXPECT_NE(this->Text(theBuffer), TypeParam::Abc());
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Abc()));
}

TYPED_TEST(CharBufferTest, AnAdoptedTextIsThePointerItself) {
    typename TypeParam::Char* theText = this->HeapCopy(TypeParam::Abc());
    const typename TypeParam::Buffer theBuffer(theText, false);
    EXPECT_EQ(this->Text(theBuffer), theText);
}

TYPED_TEST(CharBufferTest, ALengthGivesThatManyCharactersAndANul) {
    typename TypeParam::Buffer theBuffer(size_t{3});
    memcpy(theBuffer.data(), TypeParam::Abc(), 3 * sizeof(typename TypeParam::Char));
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Abc()));

    const typename TypeParam::Buffer theEmpty(size_t{0});
    ASSERT_NE(this->Text(theEmpty), nullptr);
    EXPECT_EQ(TypeParam::Length(theEmpty), 0u);
}

TYPED_TEST(CharBufferTest, ACopyTakesTheTextFromItsSource) {
    typename TypeParam::Buffer theSource(TypeParam::Abc(), true);
    const typename TypeParam::Char* theText = theSource;
    const typename TypeParam::Buffer theTarget(theSource);
    EXPECT_EQ(this->Text(theTarget), theText);
    EXPECT_EQ(this->Text(theSource), nullptr);
}

TYPED_TEST(CharBufferTest, AssignmentTakesTheTextAndFreesTheOldOne) {
    typename TypeParam::Buffer theSource(TypeParam::Abc(), true);
    typename TypeParam::Buffer theTarget(TypeParam::Other(), true);
    const typename TypeParam::Char* theText = theSource;
    theTarget = theSource;
    EXPECT_EQ(this->Text(theTarget), theText);
    EXPECT_EQ(this->Text(theSource), nullptr);
}

TYPED_TEST(CharBufferTest, AssignmentToItselfDoesNothing) {
    typename TypeParam::Buffer theBuffer(TypeParam::Abc(), true);
    typename TypeParam::Buffer& theSame = theBuffer;
    theBuffer = theSame;
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Abc()));
}

TYPED_TEST(CharBufferTest, AssignedTextIsDuplicated) {
    typename TypeParam::Buffer theBuffer(TypeParam::Abc(), true);
    theBuffer = TypeParam::Other();
    EXPECT_NE(this->Text(theBuffer), TypeParam::Other());
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Other()));
    theBuffer = this->Text(theBuffer) + 2;
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Other() + 2));
    theBuffer = static_cast<const typename TypeParam::Char*>(nullptr);
    EXPECT_EQ(this->Text(theBuffer), nullptr);
}

TYPED_TEST(CharBufferTest, ReleaseHandsTheTextOut) {
    typename TypeParam::Buffer theBuffer(TypeParam::Abc(), true);
    typename TypeParam::Char* theText = theBuffer.release();
    EXPECT_EQ(this->Text(theBuffer), nullptr);
    EXPECT_TRUE(TypeParam::Same(theText, TypeParam::Abc()));
    free(theText);
    EXPECT_EQ(theBuffer.release(), nullptr);
}

TYPED_TEST(CharBufferTest, AFunctionMayReturnTheHolder) {
    const auto theFunction = [] { return typename TypeParam::Buffer(TypeParam::Abc(), true); };
    typename TypeParam::Buffer theBuffer(TypeParam::Other(), true);
    theBuffer = theFunction();
    EXPECT_TRUE(TypeParam::Same(theBuffer, TypeParam::Abc()));
    EXPECT_EQ(sizeof(theBuffer), sizeof(void*));
}
