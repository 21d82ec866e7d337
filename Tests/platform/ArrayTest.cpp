#include <libteskTools/Array.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int>* sFreed = NULL;  // what free functions were handed, oldest first

void RecordFree(void* anElement) {
    sFreed->push_back(*static_cast<int*>(anElement));
}

int CompareInts(const void* aLeft, const void* aRight) {
    return *static_cast<const int*>(aLeft) - *static_cast<const int*>(aRight);
}

class ArrayTest : public testing::Test {
protected:
    ArrayTest() { sFreed = &mFreed; }
    ~ArrayTest() override {
        if (mArray != NULL) {
            vxArray_SetFreeFunc(mArray, NULL);  // the test's elements are gone by now
        }
        vxArray_Delete(mArray);
        sFreed = NULL;
    }

    void Fill(std::vector<int>& aNumbers) {
        for (int& theNumber : aNumbers) {
            ASSERT_TRUE(vxArray_Append(mArray, &theNumber));
        }
    }

    std::vector<int> Contents() const {
        std::vector<int> theContents;
        for (size_t i = 0; i < vxArray_GetCount(mArray); ++i) {
            theContents.push_back(*static_cast<int*>(vxArray_At(mArray, i)));
        }
        return theContents;
    }

    std::vector<int> mFreed;
    vxArray* mArray = vxArray_New();
};

TEST_F(ArrayTest, StartsEmpty) {
    EXPECT_EQ(vxArray_GetCount(mArray), 0u);
    EXPECT_EQ(vxArray_At(mArray, 0), nullptr);
    EXPECT_FALSE(vxArray_RemoveAt(mArray, 0));
    EXPECT_EQ(vxArray_TakeAt(mArray, 0), nullptr);
    vxArray_Clear(mArray);
    vxArray_Sort(mArray);
    EXPECT_EQ(vxArray_GetCount(mArray), 0u);
}

TEST_F(ArrayTest, ANullArrayIsEmptyAndDeletable) {
    EXPECT_EQ(vxArray_GetCount(NULL), 0u);
    EXPECT_EQ(vxArray_At(NULL, 0), nullptr);
    vxArray_Delete(NULL);
}

TEST_F(ArrayTest, KeepsElementsInTheOrderOfAppending) {
    std::vector<int> theNumbers(1000);
    for (int i = 0; i < 1000; ++i) {
        theNumbers[static_cast<size_t>(i)] = i;
    }
    Fill(theNumbers);
    EXPECT_EQ(Contents(), theNumbers);
    EXPECT_EQ(vxArray_At(mArray, 1000), nullptr);
}

TEST_F(ArrayTest, NullIsAnElement) {
    EXPECT_TRUE(vxArray_Append(mArray, NULL));
    EXPECT_EQ(vxArray_GetCount(mArray), 1u);
    EXPECT_EQ(vxArray_Find(mArray, NULL), 0u);
    EXPECT_TRUE(vxArray_Remove(mArray, NULL));
    EXPECT_EQ(vxArray_GetCount(mArray), 0u);
}

TEST_F(ArrayTest, InsertsBeforeAnIndexAndAppendsBeyondTheEnd) {
    std::vector<int> theNumbers = {1, 2};
    int theExtra[] = {10, 11, 12};
    Fill(theNumbers);
    EXPECT_TRUE(vxArray_Insert(mArray, 0, &theExtra[0]));
    EXPECT_TRUE(vxArray_Insert(mArray, 2, &theExtra[1]));
    EXPECT_TRUE(vxArray_Insert(mArray, 99, &theExtra[2]));
    EXPECT_THAT(Contents(), ElementsAre(10, 1, 11, 2, 12));
}

TEST_F(ArrayTest, RemoveFreesTheFirstSuchPointerOnly) {
    vxArray_SetFreeFunc(mArray, RecordFree);
    std::vector<int> theNumbers = {1, 2, 3};
    int theStranger = 4;
    Fill(theNumbers);
    vxArray_Append(mArray, &theNumbers[0]);
    EXPECT_TRUE(vxArray_Remove(mArray, &theNumbers[0]));
    EXPECT_THAT(Contents(), ElementsAre(2, 3, 1));
    EXPECT_THAT(mFreed, ElementsAre(1));
    EXPECT_FALSE(vxArray_Remove(mArray, &theStranger));
    EXPECT_EQ(vxArray_Find(mArray, &theStranger), kvxArray_NotFound);
    EXPECT_THAT(mFreed, ElementsAre(1));
}

TEST_F(ArrayTest, TakingHandsTheElementOutUnfreed) {
    vxArray_SetFreeFunc(mArray, RecordFree);
    std::vector<int> theNumbers = {1, 2, 3};
    Fill(theNumbers);
    EXPECT_EQ(vxArray_TakeAt(mArray, 1), &theNumbers[1]);
    EXPECT_EQ(vxArray_TakeAt(mArray, 2), nullptr);
    EXPECT_THAT(Contents(), ElementsAre(1, 3));
    EXPECT_THAT(mFreed, IsEmpty());
}

TEST_F(ArrayTest, ClearAndDeleteFreeFirstToLast) {
    vxArray_SetFreeFunc(mArray, RecordFree);
    std::vector<int> theNumbers = {3, 1, 2};
    Fill(theNumbers);
    vxArray_Clear(mArray);
    EXPECT_THAT(mFreed, ElementsAre(3, 1, 2));
    Fill(theNumbers);
    vxArray_Delete(mArray);
    mArray = NULL;
    EXPECT_THAT(mFreed, ElementsAre(3, 1, 2, 3, 1, 2));
}

TEST_F(ArrayTest, WithoutAFreeFunctionElementsAreBorrowed) {
    std::vector<int> theNumbers = {1, 2};
    Fill(theNumbers);
    vxArray_SetFreeFunc(mArray, RecordFree);
    vxArray_SetFreeFunc(mArray, NULL);
    EXPECT_TRUE(vxArray_RemoveAt(mArray, 0));
    vxArray_Clear(mArray);
    EXPECT_THAT(mFreed, IsEmpty());
}

TEST_F(ArrayTest, WithoutASortFunctionSortingChangesNothing) {
    std::vector<int> theNumbers = {3, 1, 2};
    Fill(theNumbers);
    vxArray_Sort(mArray);
    EXPECT_THAT(Contents(), ElementsAre(3, 1, 2));
}

TEST_F(ArrayTest, SortsEveryLengthAsTheStandardLibraryDoes) {
    std::mt19937 theRandom(20240601);
    vxArray_SetSortFunc(mArray, CompareInts);
    for (size_t theCount = 0; theCount < 200; ++theCount) {
        SCOPED_TRACE(theCount);
        std::vector<int> theNumbers;
        for (size_t i = 0; i < theCount; ++i) {
            theNumbers.push_back(static_cast<int>(theRandom() % 50));
        }
        std::vector<int> theSorted = theNumbers;
        std::sort(theSorted.begin(), theSorted.end());
        vxArray_Clear(mArray);
        Fill(theNumbers);
        vxArray_Sort(mArray);
        ASSERT_EQ(Contents(), theSorted);
    }
}

int CompareTens(const void* aLeft, const void* aRight) {
    return *static_cast<const int*>(aLeft) / 10 - *static_cast<const int*>(aRight) / 10;
}

TEST_F(ArrayTest, EqualElementsKeepTheirOrder) {
    std::vector<int> theNumbers;
    for (int i = 0; i < 100; ++i) {
        theNumbers.push_back((i * 37 % 10) * 10 + i / 10);
    }
    std::vector<int> theSorted = theNumbers;
    std::sort(theSorted.begin(), theSorted.end());
    Fill(theNumbers);
    vxArray_SetSortFunc(mArray, CompareTens);
    vxArray_Sort(mArray);
    EXPECT_EQ(Contents(), theSorted);
}

std::mt19937* sRandom = NULL;

int CompareAtRandom(const void*, const void*) {
    return static_cast<int>((*sRandom)() % 3) - 1;
}

int ClaimFirst(const void*, const void*) {
    return -1;
}

int ClaimLast(const void*, const void*) {
    return 1;
}

TEST_F(ArrayTest, ContradictoryComparisonsKeepEveryElementOnce) {
    std::mt19937 theRandom(7);
    sRandom = &theRandom;
    for (vxArray_SortFunc theFunc : {CompareAtRandom, ClaimFirst, ClaimLast}) {
        for (int theCount : {0, 1, 2, 7, 8, 9, 16, 17, 1000}) {
            std::vector<int> theNumbers;
            for (int i = 0; i < theCount; ++i) {
                theNumbers.push_back(i);
            }
            vxArray_Clear(mArray);
            Fill(theNumbers);
            vxArray_SetSortFunc(mArray, theFunc);
            vxArray_Sort(mArray);
            std::vector<int> theContents = Contents();
            std::sort(theContents.begin(), theContents.end());
            ASSERT_EQ(theContents, theNumbers);
        }
    }
    sRandom = NULL;
}

// Looks at the left element alone where that is below 10 (always first) or above 90 (always last).
int CompareOneSided(const void* aLeft, const void* aRight) {
    const int theLeft = *static_cast<const int*>(aLeft);
    if (theLeft < 10) {
        return -1;
    }
    return theLeft > 90 ? 1 : CompareInts(aLeft, aRight);
}

TEST_F(ArrayTest, AOneSidedComparisonPutsItsExtremesAtTheEnds) {
    std::vector<int> theNumbers = {50, 95, 3, 40, 1, 99, 60, 2, 91, 10, 90};
    Fill(theNumbers);
    vxArray_SetSortFunc(mArray, CompareOneSided);
    vxArray_Sort(mArray);
    EXPECT_THAT(Contents(), ElementsAre(3, 1, 2, 10, 40, 50, 60, 90, 95, 99, 91));
}

}  // namespace
