#include "vx/List.h"

#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Reports.h"
#include "vx/Ref.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Item = vxListItem<int>;

template <typename T>
std::vector<T> ValuesOf(const vxList<T>& aList) {
    std::vector<T> theValues;
    for (const vxListItem<T>* i = aList.GetBegin(); i != NULL; i = i->Next()) {
        theValues.push_back(**i);
    }
    return theValues;
}

template <typename T>
std::vector<T> ValuesBackwards(const vxList<T>& aList) {
    std::vector<T> theValues;
    for (const vxListItem<T>* i = aList.GetEnd(); i != NULL; i = i->Prev()) {
        theValues.push_back(**i);
    }
    return theValues;
}

std::vector<int> WalkOf(vxList<int>& aList) {
    std::vector<int> theValues;
    vxListIterator<int> theIterator(aList);
    while (theIterator.Next()) {
        theValues.push_back(*theIterator);
    }
    return theValues;
}

int ValueOf(const vxBaseListIterator& anIterator) {
    return **static_cast<Item*>(anIterator.GetItem());
}

// Counts its items that are alive.
struct Counted {
    Counted() { ++sAlive; }
    Counted(const Counted&) { ++sAlive; }
    ~Counted() { --sAlive; }
    Counted& operator=(const Counted&) = default;
    static int sAlive;
};
int Counted::sAlive = 0;

// Notes that it goes, and takes the last item out of its list.
class Puller : public vxBaseListItem {
public:
    Puller(vxBaseList& aList, int aNumber, std::vector<int>& aGone)
        : mList(aList), mNumber(aNumber), mGone(aGone) {}
    ~Puller() override {
        mGone.push_back(mNumber);
        if (mList.GetEnd() != NULL) {
            mList.Remove(mList.GetEnd());
        }
    }

private:
    vxBaseList& mList;
    int mNumber;
    std::vector<int>& mGone;
};

// Notes that it goes.
struct Noted {
    ~Noted() {
        if (mGone != NULL) {
            mGone->push_back(mNumber);
        }
    }
    int mNumber = 0;
    std::vector<int>* mGone = NULL;
};

class ListTest : public testing::Test {
protected:
    void Fill(std::initializer_list<int> aValues) {
        for (const int theValue : aValues) {
            mList.push_back(theValue);
        }
    }

    vxtest::Reports mReports;
    vxList<int> mList;
};

}  // namespace

TEST_F(ListTest, NewListIsEmpty) {
    EXPECT_EQ(mList.size(), 0u);
    EXPECT_EQ(mList.GetBegin(), nullptr);
    EXPECT_EQ(mList.GetEnd(), nullptr);
}

TEST_F(ListTest, PushesAtBothEnds) {
    mList.push_back(2);
    mList.push_back(3);
    mList.push_front(1);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2, 3));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(3, 2, 1));
    EXPECT_EQ(mList.size(), 3u);
    EXPECT_EQ(mList.front(), 1);
    EXPECT_EQ(mList.back(), 3);
}

TEST_F(ListTest, FirstItemPushedInFrontIsAlsoTheLast) {
    mList.push_front(1);

    EXPECT_EQ(mList.GetBegin(), mList.GetEnd());
    EXPECT_EQ(mList.GetBegin()->Next(), nullptr);
    EXPECT_EQ(mList.GetBegin()->Prev(), nullptr);
}

TEST_F(ListTest, PushAfterLinksBehindAnItem) {
    Fill({1, 3});

    mList.push_after(2, mList.find(1));
    mList.push_after(4, mList.find(3));

    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, PushBeforeLinksInFrontOfAnItem) {
    Fill({2, 4});

    mList.push_before(1, mList.find(2));
    mList.push_before(3, mList.find(4));

    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, NullPositionIsForAnEmptyList) {
    mList.push_after(1, NULL);
    EXPECT_THAT(mReports.Assertions(), IsEmpty());

    mList.push_after(2, NULL);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mSize == 0"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2));

    mList.push_before(0, NULL);
    EXPECT_THAT(mReports.Assertions(), ElementsAre("mSize == 0", "mSize == 0"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(0, 1, 2));
}

TEST_F(ListTest, NullPositionBeforeIsForAnEmptyListToo) {
    mList.push_before(1, NULL);

    EXPECT_THAT(mReports.Assertions(), IsEmpty());
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1));
}

TEST_F(ListTest, PositionInNoListIsReportedAndPushesAtTheEnd) {
    Fill({1, 2});
    Item theStray(9);
    vxList<int> theOther;
    theOther.push_back(8);

    mList.push_after(3, &theStray);
    mList.push_before(0, theOther.GetBegin());

    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsMember(anAfter)", "IsMember(aBefore)"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(3, 2, 1, 0));
    EXPECT_THAT(ValuesOf(theOther), ElementsAre(8));
}

TEST_F(ListTest, PopsAtBothEnds) {
    Fill({1, 2, 3});

    mList.pop_front();
    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 3));
    mList.pop_back();
    EXPECT_THAT(ValuesOf(mList), ElementsAre(2));
    EXPECT_THAT(ValuesBackwards(mList), ElementsAre(2));
    mList.pop_back();
    EXPECT_EQ(mList.GetBegin(), nullptr);
    EXPECT_EQ(mList.GetEnd(), nullptr);
    EXPECT_EQ(mList.size(), 0u);
}

TEST_F(ListTest, PopOfAValueRemovesOnlyTheFirstOfEqualOnes) {
    Fill({1, 2, 1});

    mList.pop(1);
    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 1));

    mList.pop(7);
    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 1));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, PopAcceptsAValueOfTheListItself) {
    vxList<std::string> theList;
    theList.push_back("a long text that is not stored in place");
    theList.push_back("b");

    theList.pop(theList.front());

    EXPECT_THAT(ValuesOf(theList), ElementsAre("b"));
}

TEST_F(ListTest, FindGivesTheFirstMatchingItemOrNull) {
    Fill({1, 2, 2});

    EXPECT_EQ(mList.find(2), mList.GetBegin()->Next());
    EXPECT_EQ(mList.find(3), nullptr);
}

TEST_F(ListTest, EraseRemovesEverything) {
    Fill({1, 2, 3});

    mList.erase();
    EXPECT_EQ(mList.size(), 0u);
    mList.erase();
    mList.push_back(4);

    EXPECT_THAT(ValuesOf(mList), ElementsAre(4));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, EmptyListAnswersWithAnEmptyValueAfterAReport) {
    EXPECT_EQ(mList.front(), 0);
    mList.front() = 5;
    EXPECT_EQ(mList.back(), 0);
    mList.pop_front();
    mList.pop_back();

    EXPECT_THAT(mReports.Assertions(), ElementsAre("mSize > 0", "mSize > 0", "mSize > 0",
                                                   "aListItem != NULL", "aListItem != NULL"));
    EXPECT_EQ(mList.size(), 0u);
}

TEST_F(ListTest, RemoveAndDetachReportANullItem) {
    Fill({1});

    mList.Remove(NULL);
    mList.Detach(NULL);
    mList.PushBack(NULL);
    mList.PushFront(NULL);
    mList.PushAfter(NULL, mList.GetBegin());

    EXPECT_THAT(mReports.Assertions(),
                ElementsAre("aListItem != NULL", "aListItem != NULL", "aListItem != NULL",
                            "aListItem != NULL", "aListItem != NULL"));
    EXPECT_THAT(mReports.AssertionReports()[0].mFile,
                testing::EndsWith("Libs/Internal/vx/core/List.cpp"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1));
}

TEST_F(ListTest, ItemInNoListIsLeftAloneAfterAReport) {
    Fill({1});
    Item theStray(2);

    mList.Remove(&theStray);
    mList.Detach(&theStray);

    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsMember(aListItem)", "IsMember(aListItem)"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1));
    EXPECT_EQ(mList.size(), 1u);
}

TEST_F(ListTest, DetachedItemBelongsToTheCaller) {
    Fill({1, 2, 3});
    std::unique_ptr<Item> theItem(mList.find(2));

    mList.Detach(theItem.get());

    EXPECT_EQ(theItem->Next(), nullptr);
    EXPECT_EQ(theItem->Prev(), nullptr);
    EXPECT_EQ(**theItem, 2);
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 3));

    mList.PushFront(theItem.release());
    EXPECT_THAT(ValuesOf(mList), ElementsAre(2, 1, 3));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, LinkedItemIsNotLinkedTwice) {
    Fill({1});
    mList.PushBack(mList.GetBegin());
    Fill({2, 3});
    mList.PushFront(mList.GetEnd());
    mList.PushAfter(mList.GetBegin(), mList.find(2));

    EXPECT_THAT(mReports.Assertions(), ElementsAre("IsPushable(aListItem)", "IsPushable(aListItem)",
                                                   "IsPushable(aListItem)"));
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 2, 3));
    EXPECT_EQ(mList.size(), 3u);
}

TEST_F(ListTest, ItemUnlinkedByItselfKeepsItsLinks) {
    Fill({1, 2, 3});
    std::unique_ptr<Item> theItem(mList.find(2));

    theItem->Remove(&mList);

    EXPECT_EQ(theItem->Prev(), mList.GetBegin());
    EXPECT_EQ(theItem->Next(), mList.GetEnd());
    EXPECT_THAT(ValuesOf(mList), ElementsAre(1, 3));
    EXPECT_EQ(mList.size(), 2u);
}

TEST_F(ListTest, RemovalGoesThroughTheVirtualOperation) {
    class Recorder : public vxList<int> {
    public:
        void Remove(vxBaseListItem* aListItem) override {
            mRemoved.push_back(**static_cast<Item*>(aListItem));
            vxList<int>::Remove(aListItem);
        }
        std::vector<int> mRemoved;
    };
    Recorder theList;
    for (int i = 1; i <= 5; ++i) {
        theList.push_back(i);
    }

    theList.pop_front();
    theList.pop_back();
    theList.pop(3);
    theList.pop(*theList.find(4));
    theList.push_back(6);
    theList.push_back(7);
    theList.erase();

    EXPECT_THAT(theList.mRemoved, ElementsAre(1, 5, 3, 4, 2, 6, 7));
}

TEST_F(ListTest, ItemsAreDestroyedWithTheirListAndWhenRemoved) {
    {
        vxList<Counted> theList;
        for (int i = 0; i < 3; ++i) {
            theList.push_back(Counted());
        }
        EXPECT_EQ(Counted::sAlive, 3);
        theList.pop_front();
        EXPECT_EQ(Counted::sAlive, 2);
    }
    EXPECT_EQ(Counted::sAlive, 0);
}

TEST_F(ListTest, ItemsAreDestroyedFromTheFront) {
    std::vector<int> theGone;
    {
        vxList<Noted> theList;
        for (int i = 1; i <= 3; ++i) {
            theList.push_back(Noted());
            theList.back().mNumber = i;
            theList.back().mGone = &theGone;
        }
    }
    EXPECT_THAT(theGone, ElementsAre(1, 2, 3));
}

TEST_F(ListTest, ItemsMayTakeOthersOutWhileTheirListIsDestroyed) {
    std::vector<int> theGone;
    {
        vxBaseList theList;
        for (int i = 1; i <= 4; ++i) {
            theList.PushBack(new Puller(theList, i, theGone));
        }
    }
    EXPECT_THAT(theGone, ElementsAre(1, 4, 3, 2));
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}

TEST_F(ListTest, HandlesKeepTheirObjectsAlive) {
    vxRef<vxUserData> theData = new vxUserData;
    {
        vxList<vxRef<vxUserData>> theList;
        theList.push_back(theData);
        EXPECT_EQ(theData->_GetRefCount(), 2);
    }
    EXPECT_EQ(theData->_GetRefCount(), 1);
}

TEST_F(ListTest, IteratorOnAnEmptyListYieldsNothing) {
    vxListIterator<int> theIterator(mList);

    EXPECT_FALSE(theIterator.Next());
    EXPECT_EQ(theIterator.GetItem(), nullptr);

    mList.push_back(1);
    EXPECT_TRUE(theIterator.Next());
}

TEST_F(ListTest, IteratorWalksForwardAndStartsOverAfterTheEnd) {
    Fill({1, 2});
    vxListIterator<int> theIterator(mList);

    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 1);
    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 2);
    EXPECT_FALSE(theIterator.Next());
    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 1);
}

TEST_F(ListTest, ReverseIteratorMirrorsTheWalk) {
    Fill({1, 2});
    vxBaseListReverseIterator theIterator(mList);

    ASSERT_TRUE(theIterator.Prev());
    EXPECT_EQ(ValueOf(theIterator), 2);
    ASSERT_TRUE(theIterator.Prev());
    EXPECT_EQ(ValueOf(theIterator), 1);
    EXPECT_FALSE(theIterator.Prev());
    ASSERT_TRUE(theIterator.Prev());
    EXPECT_EQ(ValueOf(theIterator), 2);
}

TEST_F(ListTest, IteratorGivesAccessToTheValue) {
    Fill({1});
    vxListIterator<int> theIterator(mList);
    theIterator.Next();

    *theIterator = 5;

    EXPECT_EQ(mList.front(), 5);
    EXPECT_EQ(theIterator.GetItem(), mList.GetBegin());
}

TEST_F(ListTest, ValueOutsideTheItemsIsReportedAndEmpty) {
    Fill({1});
    vxListIterator<int> theIterator(mList);

    EXPECT_EQ(*theIterator, 0);

    EXPECT_THAT(mReports.Assertions(), ElementsAre("mCurrentItem != NULL"));
}

TEST_F(ListTest, RemovingTheCurrentItemContinuesWithItsFollower) {
    Fill({1, 2, 3});
    vxListIterator<int> theIterator(mList);
    theIterator.Next();
    theIterator.Next();

    mList.pop(*theIterator.GetItem());

    EXPECT_EQ(*theIterator, 1);
    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 3);
    EXPECT_FALSE(theIterator.Next());
}

TEST_F(ListTest, RemovingTheFirstItemRestartsAtTheNewFirst) {
    Fill({1, 2});
    vxListIterator<int> theIterator(mList);
    theIterator.Next();

    mList.pop_front();

    EXPECT_EQ(theIterator.GetItem(), nullptr);
    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 2);
}

TEST_F(ListTest, RemovingEveryItemDuringAWalkSkipsNone) {
    Fill({1, 2, 3, 4});
    std::vector<int> theValues;
    vxListIterator<int> theIterator(mList);
    while (theIterator.Next()) {
        theValues.push_back(*theIterator);
        mList.pop(*theIterator.GetItem());
    }

    EXPECT_THAT(theValues, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(mList.size(), 0u);
}

TEST_F(ListTest, DetachingTheCurrentItemContinuesWithItsFollowerToo) {
    Fill({1, 2, 3});
    vxListIterator<int> theIterator(mList);
    theIterator.Next();
    theIterator.Next();
    std::unique_ptr<Item> theItem(theIterator.GetItem());

    mList.Detach(theItem.get());

    ASSERT_TRUE(theIterator.Next());
    EXPECT_EQ(*theIterator, 3);
}

TEST_F(ListTest, EveryIteratorOnTheItemStepsBackAndNoOther) {
    Fill({1, 2, 3});
    vxListIterator<int> theFirst(mList);
    vxListIterator<int> theSecond(mList);
    vxListIterator<int> theThird(mList);
    theFirst.Next();
    theFirst.Next();
    theSecond.Next();
    theSecond.Next();
    theThird.Next();
    theThird.Next();
    theThird.Next();

    mList.pop(2);

    EXPECT_EQ(*theFirst, 1);
    EXPECT_EQ(*theSecond, 1);
    EXPECT_EQ(*theThird, 3);
}

TEST_F(ListTest, ReverseIteratorOnARemovedItemSkipsTheItemBeforeIt) {
    Fill({1, 2, 3});
    vxBaseListReverseIterator theIterator(mList);
    theIterator.Prev();

    mList.pop(3);

    EXPECT_EQ(ValueOf(theIterator), 2);
    ASSERT_TRUE(theIterator.Prev());
    EXPECT_EQ(ValueOf(theIterator), 1);
}

TEST_F(ListTest, ReverseIteratorOnARemovedFirstItemStartsOverAtTheLast) {
    Fill({1, 2, 3});
    vxBaseListReverseIterator theIterator(mList);
    theIterator.Prev();
    theIterator.Prev();
    theIterator.Prev();

    mList.pop(1);

    EXPECT_EQ(theIterator.GetItem(), nullptr);
    ASSERT_TRUE(theIterator.Prev());
    EXPECT_EQ(ValueOf(theIterator), 3);
}

TEST_F(ListTest, IteratorOutlivesItsList) {
    auto theList = std::make_unique<vxList<int>>();
    theList->push_back(1);
    auto theForward = std::make_unique<vxListIterator<int>>(*theList);
    auto theReverse = std::make_unique<vxBaseListReverseIterator>(*theList);
    theForward->Next();
    theReverse->Prev();

    theList.reset();

    EXPECT_EQ(theForward->GetItem(), nullptr);
    EXPECT_EQ(theReverse->GetItem(), nullptr);
    EXPECT_FALSE(theForward->Next());
    EXPECT_FALSE(theReverse->Prev());
}

TEST_F(ListTest, IteratorsMayGoInAnyOrder) {
    Fill({1, 2});
    auto theFirst = std::make_unique<vxListIterator<int>>(mList);
    auto theSecond = std::make_unique<vxListIterator<int>>(mList);
    auto theThird = std::make_unique<vxListIterator<int>>(mList);
    theFirst->Next();
    theThird->Next();

    theSecond.reset();
    mList.pop(1);
    EXPECT_EQ(theFirst->GetItem(), nullptr);
    EXPECT_EQ(theThird->GetItem(), nullptr);
    theFirst.reset();
    theThird->Next();
    mList.pop(2);
    EXPECT_EQ(theThird->GetItem(), nullptr);
}

TEST_F(ListTest, DetachingAnUnknownIteratorIsIgnored) {
    vxList<int> theOther;
    vxListIterator<int> theIterator(theOther);
    vxListIterator<int> theOwn(mList);

    mList.DetachIterator(&theIterator);
    Fill({1});

    EXPECT_TRUE(theOwn.Next());
    theOther.push_back(1);
    EXPECT_TRUE(theIterator.Next());
}

TEST_F(ListTest, ClosedIteratorsYieldNothingWhileTheListLives) {
    Fill({1, 2});
    vxListIterator<int> theIterator(mList);
    theIterator.Next();

    mList.CloseIterators();

    EXPECT_FALSE(theIterator.Next());
    mList.pop(1);
    EXPECT_THAT(WalkOf(mList), ElementsAre(2));
}

TEST_F(ListTest, MillionItemsAreDestroyedWithoutRecursion) {
    for (int i = 0; i < 1000000; ++i) {
        mList.push_back(i);
    }
    EXPECT_EQ(mList.size(), 1000000u);
}

// The model is a std::list whose iterator is stepped back by hand.
TEST_F(ListTest, RandomOperationsAgreeWithAStandardList) {
    std::mt19937 theRandom(14);
    std::list<int> theModel;
    vxListIterator<int> theIterator(mList);
    std::list<int>::iterator thePosition = theModel.end();  // end(): before the first
    const auto theErase = [&](std::list<int>::iterator anItem) {
        if (thePosition == anItem) {
            thePosition = anItem == theModel.begin() ? theModel.end() : std::prev(anItem);
        }
        theModel.erase(anItem);
    };
    for (int i = 0; i < 4000; ++i) {
        const int theValue = static_cast<int>(theRandom() % 10);
        const auto theFound = std::find(theModel.begin(), theModel.end(), theValue);
        switch (theRandom() % 8) {
            case 0:
                mList.push_back(theValue);
                theModel.push_back(theValue);
                break;
            case 1:
                mList.push_front(theValue);
                theModel.push_front(theValue);
                break;
            case 2:
                if (theFound != theModel.end()) {
                    mList.push_after(i % 10, mList.find(theValue));
                    theModel.insert(std::next(theFound), i % 10);
                }
                break;
            case 3:
                if (theFound != theModel.end()) {
                    mList.push_before(i % 10, mList.find(theValue));
                    theModel.insert(theFound, i % 10);
                }
                break;
            case 4:
                mList.pop(theValue);
                if (theFound != theModel.end()) {
                    theErase(theFound);
                }
                break;
            case 5:
                if (!theModel.empty()) {
                    mList.pop_front();
                    theErase(theModel.begin());
                }
                break;
            case 6:
                if (!theModel.empty()) {
                    mList.pop_back();
                    theErase(std::prev(theModel.end()));
                }
                break;
            default:
                thePosition =
                    thePosition == theModel.end() ? theModel.begin() : std::next(thePosition);
                ASSERT_EQ(theIterator.Next(), thePosition != theModel.end());
                break;
        }
        ASSERT_EQ(mList.size(), theModel.size());
        ASSERT_EQ(ValuesOf(mList), std::vector<int>(theModel.begin(), theModel.end()));
        ASSERT_EQ(ValuesBackwards(mList), std::vector<int>(theModel.rbegin(), theModel.rend()));
        ASSERT_EQ(theIterator.GetItem() == NULL, thePosition == theModel.end());
        if (thePosition != theModel.end()) {
            ASSERT_EQ(*theIterator, *thePosition);
        }
    }
    EXPECT_THAT(mReports.Assertions(), IsEmpty());
}
