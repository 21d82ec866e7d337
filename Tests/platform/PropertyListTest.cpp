#include <libteskTools/PropertyList.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/OwnedList.h"
#include "support/SmallStack.h"

using testing::ElementsAre;
using vxtest::OwnedList;

namespace {

std::vector<std::string> Names(const vxPropertyList* aList) {
    std::vector<std::string> theNames;
    for (size_t i = 0; i < vxPropertyList_GetCount(aList); ++i) {
        theNames.push_back(vxProperty_GetName(vxPropertyList_GetAt(aList, i)));
    }
    return theNames;
}

TEST(PropertyListTest, DataTypesHaveTheNumbersThatProgramsStore) {
    EXPECT_EQ(kvxDataType_Unknown, 0);
    EXPECT_EQ(kvxDataType_uint32, 1);
    EXPECT_EQ(kvxDataType_double, 2);
    EXPECT_EQ(kvxDataType_voidPtr, 3);
    EXPECT_EQ(kvxDataType_uint64, 4);
    EXPECT_EQ(kvxDataType_size_t, 5);
    EXPECT_EQ(kvxDataType_charPtr, 100);
    EXPECT_EQ(kvxDataType_propertyList, 101);
    EXPECT_EQ(kvxDataType_malloc, 102);
    EXPECT_EQ(kvxDataType_packedData, 103);
    EXPECT_EQ(kvxDataType_DLNAProtocolInfo, 104);
    EXPECT_EQ(kvxDataType_wcharPtr, 105);
}

TEST(PropertyListTest, NumbersAndTextsAreFoundByName) {
    const OwnedList theList;
    EXPECT_TRUE(vxPropertyList_Set_uint32(theList, "size", 4294967295u));
    EXPECT_TRUE(vxPropertyList_Set_charPtr(theList, "title", "Song"));
    EXPECT_TRUE(vxPropertyList_Set_charPtr(theList, "none", nullptr));

    uint32_t theValue = 7;
    EXPECT_TRUE(vxPropertyList_Get_uint32(theList, "size", &theValue));
    EXPECT_EQ(theValue, 4294967295u);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "title"), "Song");
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "none"), "");
}

TEST(PropertyListTest, AWrongTypeOrNameLeavesTheTargetAlone) {
    const OwnedList theList;
    vxPropertyList_Set_charPtr(theList, "text", "1");
    vxPropertyList_Set_uint32(theList, "number", 1);
    vxPropertyList_Add(theList, "empty");

    uint32_t theValue = 7;
    EXPECT_FALSE(vxPropertyList_Get_uint32(theList, "text", &theValue));
    EXPECT_FALSE(vxPropertyList_Get_uint32(theList, "Number", &theValue));
    EXPECT_FALSE(vxPropertyList_Get_uint32(theList, "empty", &theValue));
    EXPECT_EQ(theValue, 7u);
    EXPECT_EQ(vxPropertyList_Get_charPtr(theList, "number"), nullptr);
    EXPECT_EQ(vxPropertyList_Get_charPtr(theList, "absent"), nullptr);
    EXPECT_EQ(vxPropertyList_Get_charPtr(theList, "empty"), nullptr);
}

TEST(PropertyListTest, SettingReplacesAllValuesAndKeepsThePlace) {
    const OwnedList theList;
    vxPropertyList_Set_uint32(theList, "a", 1);
    vxPropertyList_Set_charPtr(theList, "b", "two");
    vxProperty_Set_uint32(vxPropertyList_Find(theList, "a"), 1, 2);
    vxPropertyList_Set_charPtr(theList, "a", "text");
    vxPropertyList_Set_charPtr(theList, "b", vxPropertyList_Get_charPtr(theList, "b") + 1);

    EXPECT_THAT(Names(theList), ElementsAre("a", "b"));
    EXPECT_EQ(vxProperty_GetCount(vxPropertyList_Find(theList, "a")), 1u);
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "a"), "text");
    EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "b"), "wo");
    vxPropertyList_Set_uint32(theList, "a", 3);
    EXPECT_EQ(vxPropertyList_Get_charPtr(theList, "a"), nullptr);
}

TEST(PropertyListTest, PropertiesKeepTheirOrderAndGoByName) {
    const OwnedList theList;
    for (const char* theName : {"c", "a", "b", "a"}) {
        EXPECT_STREQ(vxProperty_GetName(vxPropertyList_Add(theList, theName)), theName);
    }
    EXPECT_THAT(Names(theList), ElementsAre("c", "a", "b"));
    EXPECT_TRUE(vxPropertyList_Remove(theList, "a"));
    EXPECT_FALSE(vxPropertyList_Remove(theList, "a"));
    EXPECT_THAT(Names(theList), ElementsAre("c", "b"));
    EXPECT_EQ(vxPropertyList_GetAt(theList, 2), nullptr);
}

TEST(PropertyListTest, APropertyHoldsValuesOfEveryType) {
    const OwnedList theList;
    const OwnedList theNested;
    vxPropertyList_Set_uint32(theNested, "x", 9);
    vxPackedData* thePacked = vxPackedData_New("\0\1\2", 3);
    int theBorrowed = 0;
    void* theBlock = malloc(4);
    void* theInfo = malloc(4);
    vxProperty* const theProperty = vxPropertyList_Add(theList, "all");

    EXPECT_TRUE(vxProperty_Set_Unknown(theProperty, 0));
    EXPECT_TRUE(vxProperty_Set_uint32(theProperty, 1, 5));
    EXPECT_TRUE(vxProperty_Set_double(theProperty, 2, 1.5));
    EXPECT_TRUE(vxProperty_Set_voidPtr(theProperty, 3, &theBorrowed));
    EXPECT_TRUE(vxProperty_Set_uint64(theProperty, 4, UINT64_MAX));
    EXPECT_TRUE(vxProperty_Set_size_t(theProperty, 5, SIZE_MAX));
    EXPECT_TRUE(vxProperty_Set_charPtr(theProperty, 6, "text"));
    EXPECT_TRUE(vxProperty_Set_propertyList(theProperty, 7, theNested));
    EXPECT_TRUE(vxProperty_Set_malloc(theProperty, 8, theBlock));
    EXPECT_TRUE(vxProperty_Set_packedData(theProperty, 9, thePacked));
    EXPECT_TRUE(vxProperty_Set_DLNAProtocolInfo(theProperty, 10, theInfo));
    EXPECT_TRUE(vxProperty_Set_wcharPtr(theProperty, 11, L"wide"));
    vxPackedData_Delete(thePacked);

    std::vector<int> theTypes;
    for (size_t i = 0; i < vxProperty_GetCount(theProperty); ++i) {
        theTypes.push_back(vxData_GetType(vxProperty_GetAt(theProperty, i)));
    }
    EXPECT_THAT(theTypes, ElementsAre(0, 1, 2, 3, 4, 5, 100, 101, 102, 103, 104, 105));
    const auto theAt = [&](size_t anIndex) { return vxProperty_GetAt(theProperty, anIndex); };
    EXPECT_EQ(vxData_Get_uint32(theAt(1)), 5u);
    EXPECT_EQ(vxData_Get_double(theAt(2)), 1.5);
    EXPECT_EQ(vxData_Get_voidPtr(theAt(3)), &theBorrowed);
    EXPECT_EQ(vxData_Get_uint64(theAt(4)), UINT64_MAX);
    EXPECT_EQ(vxData_Get_size_t(theAt(5)), SIZE_MAX);
    EXPECT_STREQ(vxData_Get_charPtr(theAt(6)), "text");
    EXPECT_EQ(vxData_Get_propertyList(theAt(7)), theNested);
    EXPECT_EQ(vxData_Get_malloc(theAt(8)), theBlock);
    EXPECT_EQ(vxData_Get_packedData(theAt(9)), thePacked);
    EXPECT_EQ(vxPackedData_GetSize(thePacked), 3u);
    EXPECT_EQ(memcmp(vxPackedData_GetPtr(thePacked), "\0\1\2", 3), 0);
    EXPECT_EQ(vxData_Get_DLNAProtocolInfo(theAt(10)), theInfo);
    EXPECT_STREQ(vxData_Get_wcharPtr(theAt(11)), L"wide");
}

TEST(PropertyListTest, AValueOfAnotherTypeReadsAsNothing) {
    const OwnedList theList;
    vxProperty* const theProperty = vxPropertyList_Add(theList, "p");
    vxProperty_Set_uint32(theProperty, 0, 5);
    vxProperty_Set_charPtr(theProperty, 1, nullptr);
    vxProperty_Set_wcharPtr(theProperty, 2, nullptr);
    const vxData* theNumber = vxProperty_GetAt(theProperty, 0);
    const vxData* theText = vxProperty_GetAt(theProperty, 1);

    EXPECT_EQ(vxData_Get_uint32(theText), 0u);
    EXPECT_EQ(vxData_Get_double(theNumber), 0);
    EXPECT_EQ(vxData_Get_uint64(theNumber), 0u);
    EXPECT_EQ(vxData_Get_size_t(theNumber), 0u);
    EXPECT_EQ(vxData_Get_charPtr(theNumber), nullptr);
    EXPECT_EQ(vxData_Get_wcharPtr(theText), nullptr);
    EXPECT_EQ(vxData_Get_propertyList(theText), nullptr);
    EXPECT_EQ(vxData_Get_packedData(theText), nullptr);
    EXPECT_EQ(vxData_Get_voidPtr(theText), nullptr);
    EXPECT_EQ(vxData_Get_malloc(theText), nullptr);
    EXPECT_EQ(vxData_Get_DLNAProtocolInfo(theText), nullptr);
    EXPECT_STREQ(vxData_Get_charPtr(theText), "");
    EXPECT_STREQ(vxData_Get_wcharPtr(vxProperty_GetAt(theProperty, 2)), L"");
}

TEST(PropertyListTest, ValuesAreReplacedOrAddedAtTheEndButNotBeyond) {
    const OwnedList theList;
    vxProperty* const theProperty = vxPropertyList_Add(theList, "p");
    void* theBlock = malloc(1);

    EXPECT_FALSE(vxProperty_Set_uint32(theProperty, 1, 5));
    EXPECT_FALSE(vxProperty_Set_charPtr(theProperty, 1, "x"));
    EXPECT_FALSE(vxProperty_Set_malloc(theProperty, 1, theBlock));
    EXPECT_FALSE(vxProperty_Set_propertyList(theProperty, 1, theList));
    EXPECT_FALSE(vxProperty_Set_propertyList(theProperty, 0, nullptr));
    EXPECT_FALSE(vxProperty_Set_packedData(theProperty, 0, nullptr));
    EXPECT_EQ(vxProperty_GetCount(theProperty), 0u);
    EXPECT_TRUE(vxProperty_Set_charPtr(theProperty, 0, "text"));
    EXPECT_TRUE(vxProperty_Set_malloc(theProperty, 0, theBlock));
    EXPECT_TRUE(vxProperty_Set_uint32(theProperty, 0, 5));
    EXPECT_TRUE(vxProperty_Set_uint32(theProperty, 1, 6));
    EXPECT_EQ(vxProperty_GetCount(theProperty), 2u);
    vxProperty_Truncate(theProperty, 3);
    EXPECT_EQ(vxProperty_GetCount(theProperty), 2u);
    vxProperty_Truncate(theProperty, 1);
    EXPECT_EQ(vxData_Get_uint32(vxProperty_GetAt(theProperty, 0)), 5u);
    EXPECT_EQ(vxProperty_GetAt(theProperty, 1), nullptr);
}

TEST(PropertyListTest, NullListsNamesPropertiesAndValuesAreEmpty) {
    const OwnedList theList;
    uint32_t theValue = 7;
    EXPECT_FALSE(vxPropertyList_Set_uint32(nullptr, "a", 1));
    EXPECT_FALSE(vxPropertyList_Set_uint32(theList, nullptr, 1));
    EXPECT_FALSE(vxPropertyList_Set_charPtr(nullptr, "a", "1"));
    EXPECT_FALSE(vxPropertyList_Get_uint32(nullptr, "a", &theValue));
    EXPECT_EQ(vxPropertyList_Get_charPtr(nullptr, "a"), nullptr);
    EXPECT_EQ(vxPropertyList_Get_charPtr(theList, nullptr), nullptr);
    EXPECT_EQ(vxPropertyList_GetCount(nullptr), 0u);
    EXPECT_EQ(vxPropertyList_GetAt(nullptr, 0), nullptr);
    EXPECT_EQ(vxPropertyList_Add(theList, nullptr), nullptr);
    EXPECT_FALSE(vxPropertyList_Remove(nullptr, "a"));
    EXPECT_EQ(vxProperty_GetName(nullptr), nullptr);
    EXPECT_EQ(vxProperty_GetCount(nullptr), 0u);
    EXPECT_FALSE(vxProperty_Set_uint32(nullptr, 0, 1));
    vxProperty_Truncate(nullptr, 0);
    EXPECT_EQ(vxData_GetType(nullptr), kvxDataType_Unknown);
    EXPECT_EQ(vxData_Get_uint32(nullptr), 0u);
    EXPECT_EQ(vxPackedData_GetPtr(nullptr), nullptr);
    EXPECT_EQ(vxPackedData_GetSize(nullptr), 0u);
    EXPECT_EQ(vxPropertyList_Take(nullptr), nullptr);
    EXPECT_EQ(vxPackedData_Take(nullptr), nullptr);
    vxPropertyList_Delete(nullptr);
    vxPackedData_Delete(nullptr);
    EXPECT_EQ(theValue, 7u);
}

TEST(PropertyListTest, AListLivesUntilItsLastReferenceGoes) {
    vxPropertyList* theInner = vxPropertyList_New();
    vxPropertyList_Set_uint32(theInner, "x", 1);
    {
        const OwnedList theOuter;
        vxProperty_Set_propertyList(vxPropertyList_Add(theOuter, "p"), 0, theInner);
        EXPECT_EQ(vxPropertyList_Take(theInner), theInner);
        vxPropertyList_Delete(theInner);
    }
    uint32_t theValue = 0;
    EXPECT_TRUE(vxPropertyList_Get_uint32(theInner, "x", &theValue));
    vxPropertyList_Delete(theInner);
}

TEST(PropertyListTest, DeepListsAreFreedOnASmallStack) {
    vxtest::OnSmallStack([] {
        vxPropertyList* theList = vxPropertyList_New();
        for (int i = 0; i < 200000; ++i) {
            vxPropertyList* theOuter = vxPropertyList_New();
            vxProperty_Set_propertyList(vxPropertyList_Add(theOuter, "p"), 0, theList);
            vxPropertyList_Delete(theList);
            theList = theOuter;
        }
        vxPropertyList_Delete(theList);
    });
}

TEST(PropertyListTest, EmptyPackedDataHaveAnAddress) {
    vxPackedData* theData = vxPackedData_New(nullptr, 0);
    EXPECT_EQ(vxPackedData_GetSize(theData), 0u);
    EXPECT_NE(vxPackedData_GetPtr(theData), nullptr);
    vxPackedData_Delete(theData);
    EXPECT_EQ(vxPackedData_New(nullptr, SIZE_MAX), nullptr);
}

TEST(PropertyListTest, ReferencesAreCountedByAnyThread) {
    vxPropertyList* theList = vxPropertyList_New();
    vxPackedData* theData = vxPackedData_New("x", 1);
    const auto theWork = [&] {
        for (int i = 0; i < 10000; ++i) {
            vxPropertyList_Delete(vxPropertyList_Take(theList));
            vxPackedData_Delete(vxPackedData_Take(theData));
        }
    };
    std::thread theOther(theWork);
    theWork();
    theOther.join();
    EXPECT_EQ(vxPropertyList_GetCount(theList), 0u);
    vxPropertyList_Delete(theList);
    vxPackedData_Delete(theData);
}

TEST(PropertyListTest, TextsOfEveryLengthStayWhereTheyAreWhileTheirValueLives) {
    const OwnedList theList;
    for (const size_t theLength : {0, 1, 7, 8, 13, 14, 15, 16, 100}) {
        SCOPED_TRACE(theLength);
        const std::string theText(theLength, 'x');
        vxProperty* const theProperty = vxPropertyList_Add(theList, theText.c_str());
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_TRUE(vxProperty_Set_charPtr(theProperty, i, theText.c_str()));
        }
        std::vector<const char*> theTexts;
        for (size_t i = 0; i < 3; ++i) {
            const vxData* theData = vxProperty_GetAt(theProperty, i);
            EXPECT_EQ(vxData_GetType(theData), kvxDataType_charPtr);
            EXPECT_EQ(vxData_Get_voidPtr(theData), nullptr);
            theTexts.push_back(vxData_Get_charPtr(theData));
        }
        for (uint32_t i = 3; i < 40; ++i) {
            EXPECT_TRUE(vxProperty_Set_uint32(theProperty, i, i));
        }
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(vxData_Get_charPtr(vxProperty_GetAt(theProperty, i)), theTexts[i]);
            EXPECT_EQ(theTexts[i], theText);
        }
    }
}

TEST(PropertyListTest, ATextMayComeOutOfTheOneThatItReplaces) {
    const OwnedList theList;
    for (const char* theText :
         {"0123456789abcd", "0123456789abcde", "0123456789abcdefghijklmnop"}) {
        for (const size_t theStart : {0, 1, 5, 11, 14}) {
            vxPropertyList_Set_charPtr(theList, "p", theText);
            const char* theOld = vxPropertyList_Get_charPtr(theList, "p");
            EXPECT_TRUE(vxPropertyList_Set_charPtr(theList, "p", theOld + theStart));
            EXPECT_STREQ(vxPropertyList_Get_charPtr(theList, "p"), theText + theStart);
        }
    }
}

TEST(PropertyListTest, ManyValuesComeAndGo) {
    const OwnedList theList;
    vxProperty* const theProperty = vxPropertyList_Add(theList, "p");
    for (uint32_t theCount = 0; theCount < 20; ++theCount) {
        for (uint32_t i = 0; i < 2 * theCount; ++i) {
            ASSERT_TRUE(vxProperty_Set_uint32(theProperty, i, i + theCount));
        }
        vxProperty_Truncate(theProperty, theCount);
        ASSERT_EQ(vxProperty_GetCount(theProperty), theCount);
        for (uint32_t i = 0; i < theCount; ++i) {
            ASSERT_EQ(vxData_Get_uint32(vxProperty_GetAt(theProperty, i)), i + theCount);
        }
    }
}

TEST(PropertyListTest, ComingAndGoingPropertiesAreFoundByNameAndPosition) {
    const OwnedList theList;
    std::vector<std::string> theModel;
    std::mt19937 theRandom(7);
    for (int i = 0; i < 4000; ++i) {
        const bool fGrows = (i / 500) % 2 == 0;
        const std::string theName = std::to_string(theRandom() % 300);
        const auto theFound = std::find(theModel.begin(), theModel.end(), theName);
        if (theRandom() % 4 != 0 ? fGrows : !fGrows) {
            EXPECT_STREQ(vxProperty_GetName(vxPropertyList_Add(theList, theName.c_str())),
                         theName.c_str());
            if (theFound == theModel.end()) {
                theModel.push_back(theName);
            }
        } else {
            EXPECT_EQ(vxPropertyList_Remove(theList, theName.c_str()), theFound != theModel.end());
            if (theFound != theModel.end()) {
                theModel.erase(theFound);
            }
        }
        ASSERT_EQ(vxPropertyList_GetCount(theList), theModel.size());
        if (!theModel.empty()) {
            const size_t theIndex = theRandom() % theModel.size();
            vxProperty* const theProperty = vxPropertyList_GetAt(theList, theIndex);
            ASSERT_EQ(vxProperty_GetName(theProperty), theModel[theIndex]);
            ASSERT_EQ(vxPropertyList_Find(theList, theModel[theIndex].c_str()), theProperty);
        }
        if (i % 100 == 0) {
            ASSERT_EQ(Names(theList), theModel);
        }
    }
}

TEST(PropertyListTest, AListIsEmptiedFastFromItsFront) {
    const OwnedList theList;
    for (uint32_t i = 0; i < 50000; ++i) {
        vxPropertyList_Set_uint32(theList, std::to_string(i).c_str(), i);
    }
    while (vxProperty* theProperty = vxPropertyList_GetAt(theList, 0)) {
        ASSERT_TRUE(vxPropertyList_Remove(theList, vxProperty_GetName(theProperty)));
    }
    EXPECT_EQ(vxPropertyList_GetCount(theList), 0u);
    EXPECT_NE(vxPropertyList_Add(theList, "new"), nullptr);
    EXPECT_THAT(Names(theList), ElementsAre("new"));
}

TEST(PropertyListTest, ManyPropertiesAreFoundFast) {
    const OwnedList theList;
    for (uint32_t i = 0; i < 100000; ++i) {
        vxPropertyList_Set_uint32(theList, std::to_string(i).c_str(), i);
    }
    for (uint32_t i = 0; i < 100000; ++i) {
        uint32_t theValue = 0;
        ASSERT_TRUE(vxPropertyList_Get_uint32(theList, std::to_string(i).c_str(), &theValue));
        ASSERT_EQ(theValue, i);
    }
}

}  // namespace
