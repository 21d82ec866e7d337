#include <libteskTools/DLList.h>

#include <list>
#include <memory>
#include <random>
#include <vector>

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const kAddTailText = "aList && aNode && aNode->mPrev == NULL && aNode->mNext == NULL";
const char* const kInsertBeforeText =
    "anInserted && aNode && aNode->mPrev != NULL && aNode->mNext != NULL";

// The node is not the first base, so that typed walks have to convert the address.
struct Polymorphic {
    virtual ~Polymorphic() = default;
    int mPadding = 0;
};

struct Record : Polymorphic, _vxDLListNode {
    explicit Record(int aValue) : mValue(aValue) { vxDLList_InitNode(this); }
    int mValue;
};

std::vector<int> ValuesOf(const vxDLList& aList) {
    std::vector<int> theValues;
    Record* theRecord;
    vxDLList_ForEachTyped(Record, &aList, theRecord) {
        theValues.push_back(theRecord->mValue);
    }
    return theValues;
}

std::vector<int> ValuesBackwards(const vxDLList& aList) {
    std::vector<int> theValues;
    for (_vxDLListNode* theNode = aList.mPrev; theNode != &aList; theNode = theNode->mPrev) {
        theValues.push_back(static_cast<Record*>(theNode)->mValue);
    }
    return theValues;
}

class DLListTest : public testing::Test {
protected:
    DLListTest() { vxDLList_Init(&mList); }

    vxtest::Reports mReports;
    vxDLList mList;
    Record mOne{1};
    Record mTwo{2};
    Record mThree{3};
};

}  // namespace

TEST_F(DLListTest, EmptyHeadPointsToItself) {
    EXPECT_EQ(mList.mNext, &mList);
    EXPECT_EQ(mList.mPrev, &mList);
    EXPECT_EQ(vxDLList_Head(&mList), nullptr);
    EXPECT_THAT(ValuesOf(mList), IsEmpty());
}

TEST_F(DLListTest, NodeInNoListHasNullLinks) {
    EXPECT_EQ(mOne.mNext, nullptr);
    EXPECT_EQ(mOne.mPrev, nullptr);
}

TEST_F(DLListTest, NodesAreAddedAtTheTail) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);
    vxDLList_AddTail(&mList, &mThree);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2, 3));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(3, 2, 1));
    EXPECT_EQ(vxDLList_Head(&mList), &mOne);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DLListTest, InsertsBeforeANodeAndBeforeTheHeadAtTheTail) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_InsertBefore(&mOne, &mTwo);
    vxDLList_InsertBefore(&mList, &mThree);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 1, 3));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(3, 1, 2));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DLListTest, InsertsBeforeTheHeadOfAnEmptyList) {
    vxDLList_InsertBefore(&mList, &mOne);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(1));
}

TEST_F(DLListTest, DetachJoinsTheNeighborsAndClearsTheLinks) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);
    vxDLList_AddTail(&mList, &mThree);

    vxDLList_Detach(&mTwo);

    EXPECT_EQ(mTwo.mNext, nullptr);
    EXPECT_EQ(mTwo.mPrev, nullptr);
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 3));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(3, 1));
}

TEST_F(DLListTest, DetachingTwiceIsHarmless) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_Detach(&mOne);
    vxDLList_Detach(&mOne);

    EXPECT_EQ(vxDLList_Head(&mList), nullptr);
    EXPECT_EQ(mList.mPrev, &mList);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DLListTest, DetachedNodeCanBeAddedAgain) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);
    vxDLList_Detach(&mOne);
    vxDLList_AddTail(&mList, &mOne);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 1));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(DLListTest, AddingANodeThatIsInAListIsReportedAndLinksNothing) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);

    vxDLList_AddTail(&mList, &mOne);

    EXPECT_THAT(mReports.Assertions(), ElementsAre(kAddTailText));
    EXPECT_THAT(mReports.AssertionReports()[0].mFile,
                testing::EndsWith("Libs/Platform/teskTools/DLList.cpp"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(2, 1));
}

TEST_F(DLListTest, NullsAreReportedAndIgnored) {
    vxDLList_AddTail(NULL, &mOne);
    vxDLList_AddTail(&mList, NULL);
    vxDLList_InsertBefore(NULL, &mOne);
    vxDLList_InsertBefore(&mList, NULL);
    vxDLList_Detach(NULL);

    EXPECT_THAT(mReports.Assertions(), ElementsAre(kAddTailText, kAddTailText, kInsertBeforeText,
                                                   kInsertBeforeText, "aNode"));
    EXPECT_EQ(vxDLList_Head(&mList), nullptr);
    EXPECT_EQ(mOne.mNext, nullptr);
}

TEST_F(DLListTest, InsertingBeforeANodeInNoListIsReportedAndLinksNothing) {
    vxDLList_InsertBefore(&mOne, &mTwo);

    EXPECT_THAT(mReports.Assertions(), ElementsAre(kInsertBeforeText));
    EXPECT_EQ(mTwo.mNext, nullptr);
    EXPECT_EQ(mOne.mPrev, nullptr);
}

TEST_F(DLListTest, SafeWalkSurvivesDetachingTheCurrentNode) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);
    vxDLList_AddTail(&mList, &mThree);
    std::vector<int> theValues;

    _vxDLListNode* theCurrent;
    _vxDLListNode* theNext;
    vxDLList_ForEachSafe(&mList, theCurrent, theNext) {
        theValues.push_back(static_cast<Record*>(theCurrent)->mValue);
        vxDLList_Detach(theCurrent);
    }

    EXPECT_THAT(theValues, ElementsAre(1, 2, 3));
    EXPECT_EQ(vxDLList_Head(&mList), nullptr);
}

TEST_F(DLListTest, PlainWalkEndsAtTheHead) {
    vxDLList_AddTail(&mList, &mOne);
    vxDLList_AddTail(&mList, &mTwo);
    int theCount = 0;

    _vxDLListNode* theCurrent;
    vxDLList_ForEach(&mList, theCurrent) {
        ++theCount;
    }

    EXPECT_EQ(theCount, 2);
    EXPECT_EQ(theCurrent, &mList);
}

TEST_F(DLListTest, TypedSafeWalkSurvivesDestroyingTheCurrentRecord) {
    for (int i = 1; i <= 3; ++i) {
        vxDLList_AddTail(&mList, new Record(i));
    }
    std::vector<int> theValues;

    Record* theRecord;
    vxDLList_ForEachTypedSafe(Record, &mList, theRecord, theNext) {
        theValues.push_back(theRecord->mValue);
        vxDLList_Detach(theRecord);
        delete theRecord;
    }

    EXPECT_THAT(theValues, ElementsAre(1, 2, 3));
    EXPECT_EQ(vxDLList_Head(&mList), nullptr);
}

TEST_F(DLListTest, RandomOperationsAgreeWithAStandardList) {
    std::mt19937 theRandom(20);
    std::vector<std::unique_ptr<Record>> theRecords;
    for (int i = 0; i < 20; ++i) {
        theRecords.push_back(std::make_unique<Record>(i));
    }
    std::list<int> theModel;
    for (int i = 0; i < 5000; ++i) {
        Record* theRecord = theRecords[theRandom() % theRecords.size()].get();
        const auto theFound = std::find(theModel.begin(), theModel.end(), theRecord->mValue);
        if (theFound != theModel.end()) {
            vxDLList_Detach(theRecord);
            theModel.erase(theFound);
        } else if (theModel.empty() || theRandom() % 2 == 0) {
            vxDLList_AddTail(&mList, theRecord);
            theModel.push_back(theRecord->mValue);
        } else {
            const auto thePosition =
                std::next(theModel.begin(), static_cast<long>(theRandom() % theModel.size()));
            vxDLList_InsertBefore(theRecords[static_cast<size_t>(*thePosition)].get(), theRecord);
            theModel.insert(thePosition, theRecord->mValue);
        }
        ASSERT_EQ(ValuesOf(mList), std::vector<int>(theModel.begin(), theModel.end()));
        ASSERT_EQ(ValuesBackwards(mList), std::vector<int>(theModel.rbegin(), theModel.rend()));
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}
