#include <libteskTools/PtrList.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <deque>
#include <random>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int>* sFreed = NULL;  // what free functions were handed, oldest first

void RecordFree(void* aPtr) {
    sFreed->push_back(*static_cast<int*>(aPtr));
}

class PtrListTest : public testing::Test {
protected:
    PtrListTest() { sFreed = &mFreed; }
    ~PtrListTest() override {
        vxPtrList_Delete(mList);
        sFreed = NULL;
    }

    void Fill() {
        for (int& theNumber : mNumbers) {
            vxPtrList_Append(mList, &theNumber);
        }
    }

    // Reads the list forwards, and checks that backwards and by index it says the same.
    std::vector<int> Contents() const {
        std::vector<int> theContents;
        for (vxPtrListNode* i = vxPtrList_GetFirstNode(mList); i != NULL;
             i = vxPtrListNode_GetNext(i)) {
            theContents.push_back(*static_cast<int*>(vxPtrListNode_GetPtr(i)));
        }
        std::vector<int> theBackwards;
        for (vxPtrListNode* i = vxPtrList_GetLastNode(mList); i != NULL;
             i = vxPtrListNode_GetPrevious(i)) {
            theBackwards.insert(theBackwards.begin(), *static_cast<int*>(vxPtrListNode_GetPtr(i)));
        }
        EXPECT_EQ(theContents, theBackwards);
        EXPECT_EQ(theContents.size(), vxPtrList_GetCount(mList));
        for (size_t i = 0; i < theContents.size(); ++i) {
            EXPECT_EQ(*static_cast<int*>(vxPtrList_GetAt(mList, i)), theContents[i]);
        }
        return theContents;
    }

    std::vector<int> mNumbers = {1, 2, 3, 4, 5};
    std::vector<int> mFreed;
    vxPtrList* mList = vxPtrList_New();
};

TEST_F(PtrListTest, StartsEmpty) {
    EXPECT_EQ(vxPtrList_GetCount(mList), 0u);
    EXPECT_EQ(vxPtrList_GetAt(mList, 0), nullptr);
    EXPECT_EQ(vxPtrList_GetFirstNode(mList), nullptr);
    EXPECT_EQ(vxPtrList_GetLastNode(mList), nullptr);
    EXPECT_FALSE(vxPtrList_RemoveAt(mList, 0));
    EXPECT_EQ(vxPtrList_TakeNode(mList, NULL), nullptr);
    vxPtrList_RemoveNode(mList, NULL);
    vxPtrList_Clear(mList);
}

TEST_F(PtrListTest, ANullListIsEmptyAndDeletable) {
    EXPECT_EQ(vxPtrList_GetCount(NULL), 0u);
    EXPECT_EQ(vxPtrList_GetAt(NULL, 0), nullptr);
    EXPECT_EQ(vxPtrList_GetNodeAt(NULL, 0), nullptr);
    vxPtrList_Delete(NULL);
}

TEST_F(PtrListTest, AppendsPrependsAndInserts) {
    vxPtrListNode* theMiddle = vxPtrList_Append(mList, &mNumbers[2]);
    vxPtrList_Append(mList, &mNumbers[3]);
    vxPtrList_Prepend(mList, &mNumbers[0]);
    vxPtrList_InsertBefore(mList, theMiddle, &mNumbers[1]);
    vxPtrList_InsertBefore(mList, NULL, &mNumbers[4]);
    EXPECT_THAT(Contents(), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(vxPtrList_GetAt(mList, 5), nullptr);
    EXPECT_EQ(vxPtrList_GetNodeAt(mList, 2), theMiddle);
}

TEST_F(PtrListTest, RemoveFreesTheFirstSuchPointerOnly) {
    vxPtrList_SetFreeFunc(mList, RecordFree);
    int theStranger = 9;
    Fill();
    vxPtrList_Append(mList, &mNumbers[0]);
    EXPECT_TRUE(vxPtrList_Remove(mList, &mNumbers[0]));
    EXPECT_TRUE(vxPtrList_RemoveAt(mList, 1));
    EXPECT_THAT(Contents(), ElementsAre(2, 4, 5, 1));
    EXPECT_FALSE(vxPtrList_Remove(mList, &theStranger));
    EXPECT_FALSE(vxPtrList_RemoveAt(mList, 4));
    EXPECT_THAT(mFreed, ElementsAre(1, 3));
}

TEST_F(PtrListTest, TakingHandsThePointerOutUnfreed) {
    vxPtrList_SetFreeFunc(mList, RecordFree);
    Fill();
    EXPECT_EQ(vxPtrList_TakeNode(mList, vxPtrList_GetNodeAt(mList, 4)), &mNumbers[4]);
    EXPECT_THAT(Contents(), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(mFreed, IsEmpty());
}

TEST_F(PtrListTest, ClearAndDeleteFreeFirstToLast) {
    vxPtrList_SetFreeFunc(mList, RecordFree);
    Fill();
    vxPtrList_Clear(mList);
    EXPECT_THAT(mFreed, ElementsAre(1, 2, 3, 4, 5));
    Fill();
    EXPECT_THAT(Contents(), ElementsAre(1, 2, 3, 4, 5));
    mFreed.clear();
    vxPtrList_Delete(mList);
    mList = NULL;
    EXPECT_THAT(mFreed, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(PtrListTest, WithoutAFreeFunctionPointersAreBorrowed) {
    vxPtrList_SetFreeFunc(mList, RecordFree);
    vxPtrList_SetFreeFunc(mList, NULL);
    Fill();
    EXPECT_TRUE(vxPtrList_RemoveAt(mList, 0));
    vxPtrList_Clear(mList);
    EXPECT_THAT(mFreed, IsEmpty());
}

struct Walk {
    vxPtrList* mList;
    std::vector<int> mVisited;
    int mStopAt;
    bool mfRemove;
};

bool Visit(void* aWalk, void* aPtr) {
    Walk* theWalk = static_cast<Walk*>(aWalk);
    theWalk->mVisited.push_back(*static_cast<int*>(aPtr));
    if (theWalk->mfRemove) {
        vxPtrList_Remove(theWalk->mList, aPtr);
    }
    return theWalk->mVisited.back() != theWalk->mStopAt;
}

TEST_F(PtrListTest, ForEachStopsWhenTheCallbackSaysSo) {
    Walk theWhole = {mList, {}, 0, false};
    EXPECT_TRUE(vxPtrList_ForEach(mList, Visit, &theWhole));
    Fill();
    EXPECT_TRUE(vxPtrList_ForEach(mList, Visit, &theWhole));
    EXPECT_THAT(theWhole.mVisited, ElementsAre(1, 2, 3, 4, 5));
    Walk thePart = {mList, {}, 3, false};
    EXPECT_FALSE(vxPtrList_ForEach(mList, Visit, &thePart));
    EXPECT_THAT(thePart.mVisited, ElementsAre(1, 2, 3));
}

TEST_F(PtrListTest, ForEachMayRemoveWhatItVisits) {
    Fill();
    Walk theWalk = {mList, {}, 0, true};
    EXPECT_TRUE(vxPtrList_ForEach(mList, Visit, &theWalk));
    EXPECT_THAT(theWalk.mVisited, ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(Contents(), IsEmpty());
}

TEST_F(PtrListTest, BehavesAsADequeUnderRandomOperations) {
    std::mt19937 theRandom(4711);
    std::deque<int> theModel;
    std::vector<int> theValues(300);
    for (int i = 0; i < 300; ++i) {
        int& theValue = theValues[static_cast<size_t>(i)];
        theValue = i;
        const size_t thePlace = theModel.empty() ? 0 : theRandom() % theModel.size();
        const auto theOffset = static_cast<std::ptrdiff_t>(thePlace);
        switch (theRandom() % 4) {
            case 0:
                vxPtrList_Append(mList, &theValue);
                theModel.push_back(i);
                break;
            case 1:
                vxPtrList_Prepend(mList, &theValue);
                theModel.push_front(i);
                break;
            case 2:
                vxPtrList_InsertBefore(mList, vxPtrList_GetNodeAt(mList, thePlace), &theValue);
                theModel.insert(theModel.begin() + theOffset, i);
                break;
            default:
                EXPECT_EQ(vxPtrList_RemoveAt(mList, thePlace), !theModel.empty());
                if (!theModel.empty()) {
                    theModel.erase(theModel.begin() + theOffset);
                }
        }
        ASSERT_EQ(Contents(), std::vector<int>(theModel.begin(), theModel.end()));
    }
}

}  // namespace
