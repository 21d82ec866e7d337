#include <libteskTools/JSON.h>
#include <libteskTools/Memory.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "platform/JSONTree.h"
#include "support/Forward.h"
#include "support/Latch.h"
#include "support/Reports.h"
#include "support/SmallStack.h"

namespace {

std::atomic<int> sIndexCount{0};  // indexes are what the tree has zeroed blocks for

}  // namespace

void* vxCalloc(size_t aSize) {
    ++sIndexCount;
    return VXTEST_REAL(vxCalloc)(aSize);
}

namespace {

using testing::ElementsAre;
using vxtest::Parse;
using vxtest::Print;
using vxtest::Tree;

constexpr size_t kMillion = 1000000;

vxJSON_t* NewNumber(uint64_t aValue) {
    return vxJSON_CreateUInt64(aValue);
}

// ---- Kinds and values

TEST(JSONTreeTest, ANodeHasExactlyOneKind) {
    struct Row {
        vxJSON_t* mNode;
        unsigned mKind;
    };
    const Row kRows[] = {
        {vxJSON_CreateBool(0), 0x0001},   {vxJSON_CreateBool(7), 0x0002},
        {vxJSON_CreateNull(), 0x0004},    {vxJSON_CreateString("x"), 0x0008},
        {vxJSON_CreateArray(), 0x0010},   {vxJSON_CreateObject(), 0x0020},
        {vxJSON_CreateUInt64(1), 0x0040}, {vxJSON_CreateInt64(1), 0x0080},
        {vxJSON_CreateDouble(1), 0x0100},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mKind);
        for (unsigned theBit = 1; theBit <= 0x100; theBit *= 2) {
            EXPECT_EQ(vxJSON_Is(theRow.mNode, theBit) != 0, theBit == theRow.mKind);
        }
        EXPECT_EQ(vxJSON_Is(theRow.mNode, 0x01C0) != 0, theRow.mKind >= 0x40);
        vxJSON_Delete(theRow.mNode);
    }
    EXPECT_EQ(vxJSON_Is(nullptr, 0x1FF), 0);
}

TEST(JSONTreeTest, IntegersAreCheckedAgainstBothBounds) {
    const Tree theSigned(vxJSON_CreateInt64(-128));
    const Tree theUnsigned(vxJSON_CreateUInt64(UINT64_MAX));
    const Tree thePositive(vxJSON_CreateInt64(5));
    const Tree theDouble(vxJSON_CreateDouble(5));
    int64_t theInt = 1;
    uint64_t theUInt = 1;
    EXPECT_TRUE(vxJSON_CheckInt(theSigned.get(), -128, 127, &theInt));
    EXPECT_EQ(theInt, -128);
    EXPECT_FALSE(vxJSON_CheckInt(theSigned.get(), -127, 127, &theInt));
    EXPECT_FALSE(vxJSON_CheckUInt(theSigned.get(), UINT64_MAX, &theUInt));
    EXPECT_FALSE(vxJSON_CheckInt(theUnsigned.get(), INT64_MIN, INT64_MAX, &theInt));
    EXPECT_EQ(theInt, -128);
    EXPECT_TRUE(vxJSON_CheckUInt(theUnsigned.get(), UINT64_MAX, &theUInt));
    EXPECT_EQ(theUInt, UINT64_MAX);
    EXPECT_FALSE(vxJSON_CheckUInt(theUnsigned.get(), UINT64_MAX - 1, &theUInt));
    EXPECT_TRUE(vxJSON_CheckUInt(thePositive.get(), 5, &theUInt));
    EXPECT_EQ(theUInt, 5u);
    EXPECT_FALSE(vxJSON_CheckUInt(theDouble.get(), 5, &theUInt));
    EXPECT_FALSE(vxJSON_CheckInt(theDouble.get(), 0, 5, &theInt));
    EXPECT_FALSE(vxJSON_CheckInt(nullptr, 0, 5, &theInt));
}

TEST(JSONTreeTest, ValuesOfOtherKindsAreEmpty) {
    const Tree theString(vxJSON_CreateString(nullptr));
    const Tree theNumber(vxJSON_CreateInt64(-3));
    EXPECT_STREQ(vxJSON_GetValueString(theString.get()), "");
    EXPECT_EQ(vxJSON_GetValueDouble(theString.get()), 0);
    EXPECT_EQ(vxJSON_GetValueString(theNumber.get()), nullptr);
    EXPECT_EQ(vxJSON_GetValueDouble(theNumber.get()), -3);
    EXPECT_EQ(vxJSON_GetValueString(nullptr), nullptr);
    EXPECT_EQ(vxJSON_GetValueDouble(nullptr), 0);
}

TEST(JSONTreeTest, ResetKeepsKindAndName) {
    const Tree theTree = Parse(
        "{\"a\":true,\"b\":5,\"c\":-5,\"d\":1.5,\"e\":\"text\",\"f\":[1],\"g\":{\"h\":1},\"i\":"
        "null}");
    const std::string theNames = "abcdefgi";
    for (const char theName : theNames) {
        vxJSON_Reset(vxJSON_GetObjectItem(theTree.get(), std::string(1, theName).c_str()));
    }
    EXPECT_EQ(Print(theTree),
              "{\"a\":false,\"b\":0,\"c\":0,\"d\":0,\"e\":\"\",\"f\":[],\"g\":{},\"i\":null}");
    EXPECT_NE(vxJSON_Is(vxJSON_GetObjectItem(theTree.get(), "d"), kvxJSON_Double), 0);
    vxJSON_Reset(nullptr);
}

TEST(JSONTreeTest, ClearRemovesChildrenOnly) {
    const Tree theTree = Parse("{\"a\":[1,[2]],\"b\":\"x\"}");
    vxJSON_Clear(vxJSON_GetObjectItem(theTree.get(), "a"));
    vxJSON_Clear(vxJSON_GetObjectItem(theTree.get(), "b"));
    EXPECT_EQ(Print(theTree), "{\"a\":[],\"b\":\"x\"}");
    vxJSON_Clear(theTree.get());
    EXPECT_EQ(Print(theTree), "{}");
    vxJSON_AddItemToObject(theTree.get(), "z", NewNumber(1));
    EXPECT_EQ(Print(theTree), "{\"z\":1}");
    vxJSON_Clear(nullptr);
}

// ---- Names

TEST(JSONTreeTest, NodesAreNamedWhereverTheyComeFrom) {
    const Tree theTree = Parse("[1,\"text\",[2],{\"a\":3}]");
    const Tree theObject(vxJSON_CreateObject());
    for (const char* theName :
         {"one", "a rather long name, longer than the node itself", "", "x"}) {
        vxJSON_t* theNode = vxJSON_DetachItemFromArray(theTree.get(), 0);
        EXPECT_EQ(vxJSON_GetName(theNode), nullptr);
        ASSERT_TRUE(vxJSON_AddItemToObject(theObject.get(), theName, theNode));
        EXPECT_STREQ(vxJSON_GetName(theNode), theName);
    }
    EXPECT_EQ(Print(theObject),
              "{\"one\":1,\"a rather long name, longer than the node itself\":\"text\","
              "\"\":[2],\"x\":{\"a\":3}}");
    EXPECT_EQ(Print(vxJSON_GetObjectItem(theObject.get(), "x")), "{\"a\":3}");
    vxJSON_Clear(vxJSON_GetObjectItem(theObject.get(), "x"));
    vxJSON_Reset(vxJSON_GetObjectItem(theObject.get(), "one"));
    EXPECT_EQ(Print(vxJSON_GetObjectItem(theObject.get(), "one")), "0");
}

TEST(JSONTreeTest, RenamingTakesTheNewNameAndNullTakesItAway) {
    for (vxJSON_t* theNode : {NewNumber(1), Parse("1").release(), Parse("[1]").release(),
                              vxJSON_DetachItemFromObject(Parse("{\"a\":1}").get(), "a"),
                              vxJSON_DetachItemFromArray(Parse("[[1]]").get(), 0)}) {
        vxJSON_SetName(theNode, "first");
        vxJSON_SetName(theNode, "second");
        vxJSON_SetName(theNode, "second");
        EXPECT_STREQ(vxJSON_GetName(theNode), "second");
        vxJSON_SetName(theNode, nullptr);
        EXPECT_EQ(vxJSON_GetName(theNode), nullptr);
        vxJSON_SetName(theNode, "third");
        EXPECT_STREQ(vxJSON_GetName(theNode), "third");
        vxJSON_Delete(theNode);
    }
}

TEST(JSONTreeTest, LinkedNodesKeepTheirNames) {
    vxtest::Reports theReports;
    const Tree theTree = Parse("{\"a\":1}");
    vxJSON_SetName(vxJSON_GetObjectItem(theTree.get(), "a"), "b");
    vxJSON_SetName(nullptr, "b");
    EXPECT_EQ(Print(theTree), "{\"a\":1}");
    EXPECT_EQ(vxJSON_GetName(nullptr), nullptr);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("vxJSON_SetName: the node belongs to a tree", "aNode != NULL"));
}

// ---- Edits

TEST(JSONTreeTest, ObjectsAreEditedByName) {
    const Tree theTree(vxJSON_CreateObject());
    vxJSON_t* theRoot = theTree.get();
    EXPECT_TRUE(vxJSON_AddItemToObject(theRoot, "a", NewNumber(1)));
    EXPECT_TRUE(vxJSON_AddItemToObject(theRoot, "b", NewNumber(2)));
    EXPECT_TRUE(vxJSON_AddItemToObject(theRoot, "a", NewNumber(3)));
    EXPECT_EQ(Print(theTree), "{\"a\":1,\"b\":2,\"a\":3}");
    EXPECT_EQ(vxJSON_GetArraySize(theRoot), 3u);
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theRoot, "a", NewNumber(4), 1));
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theRoot, "c", NewNumber(5), 1));
    EXPECT_EQ(Print(theTree), "{\"a\":4,\"b\":2,\"a\":3,\"c\":5}");
    const Tree theRefused(NewNumber(6));
    EXPECT_FALSE(vxJSON_ReplaceItemInObject(theRoot, "d", theRefused.get(), 0));
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theRoot, "c", NewNumber(7), 0));
    EXPECT_EQ(Print(theTree), "{\"a\":4,\"b\":2,\"a\":3,\"c\":7}");
    vxJSON_DeleteItemFromObject(theRoot, "a");
    vxJSON_DeleteItemFromObject(theRoot, "none");
    EXPECT_EQ(Print(theTree), "{\"b\":2,\"a\":3,\"c\":7}");
    const Tree theDetached(vxJSON_DetachItemFromObject(theRoot, "c"));
    EXPECT_STREQ(vxJSON_GetName(theDetached.get()), "c");
    EXPECT_EQ(vxJSON_DetachItemFromObject(theRoot, "c"), nullptr);
    EXPECT_EQ(vxJSON_DetachItemFromObject(theRoot, "C"), nullptr);
    EXPECT_EQ(Print(theTree), "{\"b\":2,\"a\":3}");
    EXPECT_TRUE(vxJSON_ContainsItem(theRoot, "b"));
    EXPECT_FALSE(vxJSON_ContainsItem(theRoot, "B"));
}

TEST(JSONTreeTest, ArraysAreEditedByPosition) {
    const Tree theTree(vxJSON_CreateArray());
    vxJSON_t* theRoot = theTree.get();
    EXPECT_TRUE(vxJSON_InsertItemInArray(theRoot, 0xFFFFFFFF, NewNumber(1)));
    EXPECT_TRUE(vxJSON_InsertItemInArray(theRoot, 0, NewNumber(0)));
    EXPECT_TRUE(vxJSON_InsertItemInArray(theRoot, 2, NewNumber(2)));
    EXPECT_TRUE(vxJSON_InsertItemInArray(theRoot, 100, NewNumber(3)));
    EXPECT_TRUE(vxJSON_InsertItemInArray(theRoot, 1, NewNumber(9)));
    EXPECT_EQ(Print(theTree), "[0,9,1,2,3]");
    EXPECT_TRUE(vxJSON_ReplaceItemInArray(theRoot, 4, NewNumber(8)));
    EXPECT_TRUE(vxJSON_ReplaceItemInArray(theRoot, 0, NewNumber(7)));
    const Tree theRefused(NewNumber(6));
    EXPECT_FALSE(vxJSON_ReplaceItemInArray(theRoot, 5, theRefused.get()));
    EXPECT_EQ(Print(theTree), "[7,9,1,2,8]");
    const Tree theLast(vxJSON_DetachItemFromArray(theRoot, 4));
    const Tree theFirst(vxJSON_DetachItemFromArray(theRoot, 0));
    EXPECT_EQ(vxJSON_DetachItemFromArray(theRoot, 3), nullptr);
    EXPECT_EQ(vxJSON_GetArrayItem(theRoot, 3), nullptr);
    EXPECT_EQ(Print(theTree), "[9,1,2]");
    EXPECT_EQ(Print(theLast) + Print(theFirst), "87");
}

TEST(JSONTreeTest, TheOnlyChildCanBeReplacedAndTaken) {
    const Tree theTree = Parse("{\"a\":[1]}");
    vxJSON_t* theArray = vxJSON_GetObjectItem(theTree.get(), "a");
    EXPECT_TRUE(vxJSON_ReplaceItemInArray(theArray, 0, NewNumber(2)));
    EXPECT_EQ(Print(theTree), "{\"a\":[2]}");
    vxJSON_Delete(vxJSON_DetachItemFromArray(theArray, 0));
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theTree.get(), "a", NewNumber(3), 1));
    EXPECT_EQ(Print(theTree), "{\"a\":3}");
    vxJSON_DeleteItemFromObject(theTree.get(), "a");
    EXPECT_EQ(Print(theTree), "{}");
}

TEST(JSONTreeTest, MembersAreFoundByPositionToo) {
    const Tree theTree = Parse("{\"a\":1,\"b\":2}");
    EXPECT_STREQ(vxJSON_GetName(vxJSON_GetArrayItem(theTree.get(), 1)), "b");
    EXPECT_EQ(vxJSON_GetArrayItem(theTree.get(), 2), nullptr);
    EXPECT_EQ(vxJSON_DetachItemFromArray(theTree.get(), 2), nullptr);
    const Tree theMember(vxJSON_DetachItemFromArray(theTree.get(), 0));
    EXPECT_STREQ(vxJSON_GetName(theMember.get()), "a");
    EXPECT_EQ(Print(theTree), "{\"b\":2}");
}

TEST(JSONTreeTest, NamesOfOneLengthDifferAtEveryPlace) {
    for (size_t theLength = 1; theLength <= 40; ++theLength) {
        const Tree theTree(vxJSON_CreateObject());
        const std::string thePlain(theLength, 'n');
        for (size_t i = 0; i < theLength; ++i) {
            std::string theName = thePlain;
            theName[i] = 'x';
            EXPECT_EQ(vxJSON_GetObjectItem(theTree.get(), theName.c_str()), nullptr);
            vxJSON_t* theItem = NewNumber(i);
            vxJSON_AddItemToObject(theTree.get(), theName.c_str(), theItem);
            EXPECT_EQ(vxJSON_GetObjectItem(theTree.get(), theName.c_str()), theItem);
        }
        EXPECT_EQ(vxJSON_GetObjectItem(theTree.get(), thePlain.c_str()), nullptr);
    }
}

TEST(JSONTreeTest, NamesMayComeFromTheItemOrFromWhatItReplaces) {
    const Tree theTree = Parse("{\"name\":1}");
    vxJSON_t* theOld = vxJSON_GetObjectItem(theTree.get(), "name");
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theTree.get(), vxJSON_GetName(theOld), NewNumber(2), 1));
    vxJSON_t* theItem = vxJSON_DetachItemFromObject(theTree.get(), "name");
    EXPECT_TRUE(vxJSON_AddItemToObject(theTree.get(), vxJSON_GetName(theItem), theItem));
    EXPECT_EQ(Print(theTree), "{\"name\":2}");
}

TEST(JSONTreeTest, NullNamesCountAsEmpty) {
    const Tree theTree(vxJSON_CreateObject());
    EXPECT_TRUE(vxJSON_AddItemToObject(theTree.get(), nullptr, NewNumber(1)));
    EXPECT_TRUE(vxJSON_ReplaceItemInObject(theTree.get(), nullptr, NewNumber(2), 1));
    EXPECT_EQ(Print(theTree), "{\"\":2}");
    EXPECT_EQ(vxJSON_GetObjectItem(theTree.get(), nullptr), nullptr);
}

// ---- Misuse

TEST(JSONTreeTest, WrongKindsAreReportedAndRefused) {
    vxtest::Reports theReports;
    const Tree theArray = Parse("[1]");
    const Tree theObject = Parse("{\"a\":1}");
    const Tree theItem(NewNumber(5));
    EXPECT_FALSE(vxJSON_AddItemToObject(theArray.get(), "a", theItem.get()));
    EXPECT_FALSE(vxJSON_ReplaceItemInObject(nullptr, "a", theItem.get(), 1));
    EXPECT_FALSE(vxJSON_InsertItemInArray(theObject.get(), 0, theItem.get()));
    EXPECT_FALSE(vxJSON_ReplaceItemInArray(theItem.get(), 0, theItem.get()));
    EXPECT_FALSE(vxJSON_InsertItemInArray(theArray.get(), 0, nullptr));
    EXPECT_EQ(Print(theArray) + Print(theObject), "[1]{\"a\":1}");
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("vxJSON: the target is of another kind",
                            "vxJSON: the target is of another kind",
                            "vxJSON: the target is of another kind",
                            "vxJSON: the target is of another kind", "vxJSON: there is no item"));
}

TEST(JSONTreeTest, LookupsOfOtherKindsFindNothing) {
    vxtest::Reports theReports;
    const Tree theNumber(NewNumber(5));
    const Tree theArray = Parse("[1]");
    EXPECT_EQ(vxJSON_GetObjectItem(theArray.get(), "a"), nullptr);
    EXPECT_EQ(vxJSON_GetObjectItem(nullptr, "a"), nullptr);
    EXPECT_EQ(vxJSON_GetArrayItem(theNumber.get(), 0), nullptr);
    EXPECT_EQ(vxJSON_GetArrayItem(nullptr, 0), nullptr);
    EXPECT_EQ(vxJSON_GetArraySize(theNumber.get()), 0u);
    EXPECT_EQ(vxJSON_GetArraySize(nullptr), 0u);
    EXPECT_EQ(vxJSON_DetachItemFromObject(theArray.get(), "a"), nullptr);
    EXPECT_EQ(vxJSON_DetachItemFromArray(nullptr, 0), nullptr);
    EXPECT_TRUE(theReports.Assertions().empty());
}

TEST(JSONTreeTest, ANodeIsLinkedOnce) {
    vxtest::Reports theReports;
    const Tree theTree = Parse("[[1],[2]]");
    vxJSON_t* theFirst = vxJSON_GetArrayItem(theTree.get(), 0);
    vxJSON_t* theSecond = vxJSON_GetArrayItem(theTree.get(), 1);
    EXPECT_FALSE(vxJSON_InsertItemInArray(theFirst, 0, theSecond));
    vxJSON_Delete(theFirst);
    EXPECT_EQ(Print(theTree), "[[1],[2]]");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON: the item belongs to a tree",
                                                     "vxJSON_Delete: the node belongs to a tree"));
}

TEST(JSONTreeTest, ATreeNeverBecomesItsOwnMember) {
    vxtest::Reports theReports;
    const Tree theTree = Parse("{\"a\":[{\"b\":[]}]}");
    vxJSON_t* theArray = vxJSON_GetObjectItem(theTree.get(), "a");
    vxJSON_t* theInner = vxJSON_GetObjectItem(vxJSON_GetArrayItem(theArray, 0), "b");
    EXPECT_FALSE(vxJSON_InsertItemInArray(theInner, 0, theTree.get()));
    EXPECT_FALSE(vxJSON_AddItemToObject(theTree.get(), "x", theTree.get()));
    EXPECT_EQ(Print(theTree), "{\"a\":[{\"b\":[]}]}");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON: the item holds the target",
                                                     "vxJSON: the item holds the target"));
    EXPECT_TRUE(vxJSON_InsertItemInArray(theInner, 0, Parse("[[[]]]").release()));
    EXPECT_EQ(Print(theTree), "{\"a\":[{\"b\":[[[[]]]]}]}");
}

// ---- Large containers

TEST(JSONTreeTest, LargeObjectsFollowAModelThroughEveryEdit) {
    std::mt19937 theRandom(20240303);
    std::vector<std::pair<std::string, uint64_t>> theModel;
    const Tree theTree(vxJSON_CreateObject());
    vxJSON_t* theRoot = theTree.get();
    for (uint64_t i = 0; i < 20000; ++i) {
        const std::string theName = "name" + std::to_string(theRandom() % 200);
        auto theFound = theModel.begin();
        while (theFound != theModel.end() && theFound->first != theName) {
            ++theFound;
        }
        const vxJSON_t* theNode = vxJSON_GetObjectItem(theRoot, theName.c_str());
        ASSERT_EQ(theNode != nullptr, theFound != theModel.end());
        if (theNode != nullptr) {
            ASSERT_EQ(Print(theNode), std::to_string(theFound->second));
        }
        switch (theRandom() % 6) {
            case 0:
                vxJSON_AddItemToObject(theRoot, theName.c_str(), NewNumber(i));
                theModel.emplace_back(theName, i);
                break;
            case 1:
            case 2:
                vxJSON_ReplaceItemInObject(theRoot, theName.c_str(), NewNumber(i), 1);
                if (theFound == theModel.end()) {
                    theModel.emplace_back(theName, i);
                } else {
                    theFound->second = i;
                }
                break;
            case 3:
                if (!theModel.empty() && theRandom() % 4 == 0) {
                    const size_t theIndex = theRandom() % theModel.size();
                    vxJSON_Delete(
                        vxJSON_DetachItemFromArray(theRoot, static_cast<uint32_t>(theIndex)));
                    theModel.erase(theModel.begin() + static_cast<ptrdiff_t>(theIndex));
                    break;
                }
                vxJSON_DeleteItemFromObject(theRoot, theName.c_str());
                if (theFound != theModel.end()) {
                    theModel.erase(theFound);
                }
                break;
            default:
                if (!theModel.empty()) {
                    const uint32_t theIndex = static_cast<uint32_t>(theRandom() % theModel.size());
                    const std::string theOther = theModel[theIndex].first;
                    ASSERT_EQ(vxJSON_GetName(vxJSON_GetArrayItem(theRoot, theIndex)), theOther);
                    // The member that was asked for last is edited by its name.
                    const auto theFirst = std::find_if(
                        theModel.begin(), theModel.end(),
                        [&](const auto& aMember) { return aMember.first == theOther; });
                    if (theRandom() % 3 == 0) {
                        vxJSON_DeleteItemFromObject(theRoot, theOther.c_str());
                        theModel.erase(theFirst);
                    } else {
                        vxJSON_ReplaceItemInObject(theRoot, theOther.c_str(), NewNumber(i), 0);
                        theFirst->second = i;
                    }
                }
                break;
        }
        ASSERT_EQ(vxJSON_GetArraySize(theRoot), theModel.size());
    }
    std::string theText;
    for (const auto& theMember : theModel) {
        theText += (theText.empty() ? "{\"" : ",\"") + theMember.first +
                   "\":" + std::to_string(theMember.second);
    }
    EXPECT_EQ(Print(theTree), theText + "}");
}

TEST(JSONTreeTest, LargeArraysFollowAModelThroughEveryEdit) {
    std::mt19937 theRandom(20240304);
    std::vector<uint64_t> theModel;
    const Tree theTree(vxJSON_CreateArray());
    vxJSON_t* theRoot = theTree.get();
    for (uint64_t i = 0; i < 20000; ++i) {
        const uint32_t theCount = static_cast<uint32_t>(theModel.size());
        const uint32_t theIndex = static_cast<uint32_t>(theRandom() % (theCount + 1));
        const vxJSON_t* theNode = vxJSON_GetArrayItem(theRoot, theIndex);
        ASSERT_EQ(theNode != nullptr, theIndex < theCount);
        if (theNode != nullptr) {
            ASSERT_EQ(Print(theNode), std::to_string(theModel[theIndex]));
        }
        switch (theRandom() % 6) {
            case 0:
            case 1:
                vxJSON_InsertItemInArray(theRoot, theIndex, NewNumber(i));
                theModel.insert(theModel.begin() + theIndex, i);
                break;
            case 2:
                vxJSON_InsertItemInArray(theRoot, kvxJSON_Append, NewNumber(i));
                theModel.push_back(i);
                break;
            case 3:
                if (theIndex < theCount) {
                    vxJSON_ReplaceItemInArray(theRoot, theIndex, NewNumber(i));
                    theModel[theIndex] = i;
                }
                break;
            default: {
                const uint32_t theVictim = theRandom() % 2 == 0 ? 0 : theIndex;
                vxJSON_Delete(vxJSON_DetachItemFromArray(theRoot, theVictim));
                if (theVictim < theCount) {
                    theModel.erase(theModel.begin() + theVictim);
                }
                break;
            }
        }
        ASSERT_EQ(vxJSON_GetArraySize(theRoot), theModel.size());
    }
}

TEST(JSONTreeTest, CountsAbove16BitsAreKept) {
    const Tree theTree(vxJSON_CreateArray());
    for (uint64_t i = 0; i < 65540; ++i) {
        vxJSON_InsertItemInArray(theTree.get(), kvxJSON_Append, NewNumber(i));
    }
    EXPECT_EQ(vxJSON_GetArraySize(theTree.get()), 65540u);
    EXPECT_EQ(Print(vxJSON_GetArrayItem(theTree.get(), 65538)), "65538");
    while (vxJSON_GetArraySize(theTree.get()) > 65530) {
        vxJSON_Delete(vxJSON_DetachItemFromArray(theTree.get(), 0));
    }
    EXPECT_EQ(Print(vxJSON_GetArrayItem(theTree.get(), 65529)), "65539");
    const Tree theClone(vxJSON_Clone(theTree.get()));
    EXPECT_EQ(vxJSON_Compare(theTree.get(), theClone.get()), 0);
    vxJSON_Clear(theTree.get());
    EXPECT_EQ(vxJSON_GetArraySize(theTree.get()), 0u);
}

TEST(JSONTreeTest, WhereLookupsAndEditsTakeTurnsThereIsAnIndexThatFollows) {
    const Tree theObject(vxJSON_CreateObject());
    const Tree theArray(vxJSON_CreateArray());
    sIndexCount = 0;
    for (uint64_t i = 0; i < 1000; ++i) {
        vxJSON_ReplaceItemInObject(theObject.get(), std::to_string(i).c_str(), NewNumber(i), 1);
    }
    EXPECT_GT(sIndexCount, 0);
    EXPECT_LT(sIndexCount, 30);
    sIndexCount = 0;
    for (uint64_t i = 0; i < 1000; ++i) {
        vxJSON_InsertItemInArray(theArray.get(), vxJSON_GetArraySize(theArray.get()) / 2,
                                 NewNumber(i));
    }
    EXPECT_GT(sIndexCount, 0);
    EXPECT_LT(sIndexCount, 30);
    for (uint64_t i = 1000; i > 0; --i) {
        vxJSON_DeleteItemFromObject(theObject.get(), std::to_string(i - 1).c_str());
        vxJSON_Delete(vxJSON_DetachItemFromArray(theArray.get(), static_cast<uint32_t>(i / 2)));
    }
    EXPECT_EQ(Print(theObject), "{}");
    EXPECT_EQ(Print(theArray), "[]");
}

TEST(JSONTreeTest, MembersThatAreFoundByPositionAreEditedByNameWithTheSameIndex) {
    const Tree theTree(vxJSON_CreateObject());
    for (uint64_t i = 0; i < 1000; ++i) {
        vxJSON_AddItemToObject(theTree.get(), std::to_string(i).c_str(), NewNumber(i));
    }
    sIndexCount = 0;
    for (uint32_t i = 0; i < 1000; ++i) {
        const std::string theName = vxJSON_GetName(vxJSON_GetArrayItem(theTree.get(), i));
        ASSERT_EQ(theName, std::to_string(i));
        vxJSON_ReplaceItemInObject(theTree.get(), theName.c_str(), NewNumber(i + 1), 0);
    }
    for (uint32_t i = 999; i < 1000; --i) {
        const vxJSON_t* theNode = vxJSON_GetArrayItem(theTree.get(), i);
        ASSERT_EQ(Print(theNode), std::to_string(i + 1));
        if (i % 2 == 0) {
            vxJSON_DeleteItemFromObject(theTree.get(), vxJSON_GetName(theNode));
        } else if (i % 5 == 0) {
            vxJSON_Delete(vxJSON_DetachItemFromArray(theTree.get(), i));
        }
    }
    EXPECT_LT(sIndexCount, 30);
    EXPECT_EQ(vxJSON_GetArraySize(theTree.get()), 400u);
    EXPECT_STREQ(vxJSON_GetName(vxJSON_GetArrayItem(theTree.get(), 399)), "999");
}

// ---- Addresses and threads

TEST(JSONTreeTest, NodesKeepTheirAddresses) {
    const Tree theTree = Parse("{\"a\":[10,20,30],\"b\":{\"c\":\"x\"}}");
    const vxJSON_t* theNode = vxJSON_GetObjectItem(vxJSON_GetObjectItem(theTree.get(), "b"), "c");
    vxJSON_t* theObject = vxJSON_DetachItemFromObject(theTree.get(), "b");
    vxJSON_t* theArray = vxJSON_GetObjectItem(theTree.get(), "a");
    for (int i = 0; i < 1000; ++i) {
        vxJSON_InsertItemInArray(theArray, 0, NewNumber(1));
    }
    vxJSON_InsertItemInArray(theArray, 500, theObject);
    EXPECT_EQ(vxJSON_GetObjectItem(vxJSON_GetArrayItem(theArray, 500), "c"), theNode);
    EXPECT_STREQ(vxJSON_GetValueString(theNode), "x");
}

TEST(JSONTreeTest, DetachedNodesOutliveTheirTree) {
    Tree theTree = Parse("[{\"name\":\"kept\",\"list\":[1,2]},\"gone\"]");
    const Tree theKept(vxJSON_DetachItemFromArray(theTree.get(), 0));
    theTree.reset();
    EXPECT_EQ(Print(theKept), "{\"name\":\"kept\",\"list\":[1,2]}");
}

TEST(JSONTreeTest, NodesOfOneTreeAreFreedInManyThreads) {
    std::string theText = "[";
    for (int i = 0; i < 4000; ++i) {
        theText += "{\"number\":" + std::to_string(i) + ",\"text\":\"abc\"},";
    }
    const Tree theTree = Parse(theText + "0]");
    std::vector<std::vector<vxJSON_t*>> theShares(4);
    for (size_t i = 0; i < 4000; ++i) {
        theShares[i % 4].push_back(vxJSON_DetachItemFromArray(theTree.get(), 0));
    }
    vxtest::Latch theStart(5);
    std::vector<std::thread> theThreads;
    for (auto& theShare : theShares) {
        theThreads.emplace_back([&theShare, &theStart] {
            theStart.ArriveAndWait();
            for (vxJSON_t* theNode : theShare) {
                vxJSON_Delete(theNode);
            }
        });
    }
    theStart.ArriveAndWait();
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(Print(theTree), "[0]");
}

TEST(JSONTreeTest, ManyThreadsReadOneTreeWhoseIndexesAreNotBuiltYet) {
    std::string theObject = "{";
    std::string theArray = "[";
    for (int i = 0; i < 500; ++i) {
        theObject += "\"name" + std::to_string(i) + "\":" + std::to_string(i) + ",";
        theArray += std::to_string(i) + ",";
    }
    const Tree theTree = Parse(theObject + "\"list\":" + theArray + "500]}");
    const vxJSON_t* theRoot = theTree.get();
    vxtest::Latch theStart(4);
    std::vector<std::thread> theThreads;
    std::atomic<int> theErrors{0};
    for (int theThread = 0; theThread < 4; ++theThread) {
        theThreads.emplace_back([&] {
            theStart.ArriveAndWait();
            for (uint32_t i = 0; i < 500; ++i) {
                const std::string theName = "name" + std::to_string(i);
                const vxJSON_t* theList = vxJSON_GetObjectItem(theRoot, "list");
                uint64_t theValue = 0;
                const bool fMember = vxJSON_CheckUInt(
                    vxJSON_GetObjectItem(theRoot, theName.c_str()), 500, &theValue);
                theErrors += fMember && theValue == i ? 0 : 1;
                vxJSON_CheckUInt(vxJSON_GetArrayItem(theList, i), 500, &theValue);
                theErrors += theValue == i ? 0 : 1;
                vxJSON_CheckUInt(vxJSON_GetArrayItem(theRoot, i), 500, &theValue);
                theErrors += theValue == i ? 0 : 1;
            }
        });
    }
    for (std::thread& theThread : theThreads) {
        theThread.join();
    }
    EXPECT_EQ(theErrors, 0);
}

// ---- Copies and comparison

TEST(JSONTreeTest, ACloneIsEqualAndIndependent) {
    const char kText[] =
        "{\"a\":[1,-2,3.5,true,false,null,\"\",\"text\"],\"long name of a member\":{\"x\":{}},"
        "\"e\":[]}";
    const Tree theTree = Parse(kText);
    const Tree theClone(vxJSON_Clone(theTree.get()));
    EXPECT_EQ(Print(theClone), kText);
    vxJSON_DeleteItemFromObject(theClone.get(), "a");
    EXPECT_EQ(Print(theTree), kText);
    EXPECT_EQ(vxJSON_Clone(nullptr), nullptr);
}

TEST(JSONTreeTest, ACloneOfAMemberKeepsItsNameAndIsARoot) {
    const Tree theTree = Parse("{\"a\":{\"b\":1}}");
    const Tree theClone(vxJSON_Clone(vxJSON_GetObjectItem(theTree.get(), "a")));
    EXPECT_STREQ(vxJSON_GetName(theClone.get()), "a");
    EXPECT_EQ(Print(theClone), "{\"b\":1}");
}

TEST(JSONTreeTest, ComparisonIsByValue) {
    struct Row {
        const char* mLeft;
        const char* mRight;
        bool mfEqual;
    };
    constexpr Row kRows[] = {
        {"1", "1", true},
        {"1", "1.0", true},
        {"-1", "-1.0", true},
        {"0", "-0.0", true},
        {"0", "-0", true},
        {"1", "2", false},
        {"1", "-1", false},
        {"1", "true", false},
        {"0", "null", false},
        {"\"1\"", "1", false},
        {"9007199254740993", "9007199254740992.0", false},
        {"9007199254740992", "9007199254740992.0", true},
        {"18446744073709551615", "18446744073709551616", false},
        {"18446744073709551615", "-1", false},
        {"9223372036854775808", "-9223372036854775808", false},
        {"-9223372036854775808", "-9.223372036854775808e18", true},
        {"1", "1.5", false},
        {"true", "true", true},
        {"true", "false", false},
        {"null", "null", true},
        {"\"a\"", "\"a\"", true},
        {"\"a\"", "\"b\"", false},
        {"\"a\"", "\"a\\u0000\"", false},
        {"[]", "{}", false},
        {"[]", "[]", true},
        {"[1,2]", "[1,2]", true},
        {"[1,2]", "[2,1]", false},
        {"[1,2]", "[1]", false},
        {"[[1],[2]]", "[[1],[3]]", false},
        {"[[1,[2]],3]", "[[1,[2]],3]", true},
        {"[[1,[2]],3]", "[[1,[2]],4]", false},
        {"{\"a\":1,\"b\":2}", "{\"b\":2,\"a\":1}", true},
        {"{\"a\":1,\"b\":2}", "{\"b\":1,\"a\":2}", false},
        {"{\"a\":1,\"b\":2}", "{\"a\":1,\"c\":2}", false},
        {"{\"a\":1}", "{\"A\":1}", false},
        {"{\"a\":1,\"a\":2}", "{\"a\":1,\"a\":2}", true},
        {"{\"a\":1,\"a\":2}", "{\"a\":2,\"a\":1}", false},
        {"{\"a\":1,\"b\":3,\"a\":2}", "{\"b\":3,\"a\":1,\"a\":2}", true},
        {"{\"a\":1,\"b\":3,\"a\":2}", "{\"b\":3,\"a\":2,\"a\":1}", false},
        {"{\"x\":{\"a\":1,\"b\":[{\"c\":1,\"d\":2}]},\"y\":0}",
         "{\"y\":0,\"x\":{\"b\":[{\"d\":2,\"c\":1}],\"a\":1}}", true},
        {"{\"x\":{\"a\":1,\"b\":[{\"c\":1,\"d\":2}]},\"y\":0}",
         "{\"y\":0,\"x\":{\"b\":[{\"d\":2,\"c\":9}],\"a\":1}}", false},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(std::string(theRow.mLeft) + " " + theRow.mRight);
        const Tree theLeft = Parse(theRow.mLeft);
        const Tree theRight = Parse(theRow.mRight);
        EXPECT_EQ(vxJSON_Compare(theLeft.get(), theRight.get()) == 0, theRow.mfEqual);
        EXPECT_EQ(vxJSON_Compare(theRight.get(), theLeft.get()) == 0, theRow.mfEqual);
        EXPECT_EQ(vxJSON_Compare(theLeft.get(), theLeft.get()), 0);
    }
}

TEST(JSONTreeTest, ComparisonTakesNaNNullNodesAndTopNames) {
    const Tree theNaN(vxJSON_CreateDouble(std::nan("")));
    const Tree theOther(vxJSON_CreateDouble(-std::nan("")));
    EXPECT_EQ(vxJSON_Compare(theNaN.get(), theOther.get()), 0);
    EXPECT_EQ(vxJSON_Compare(nullptr, nullptr), 0);
    EXPECT_NE(vxJSON_Compare(theNaN.get(), nullptr), 0);
    EXPECT_NE(vxJSON_Compare(nullptr, theNaN.get()), 0);
    const Tree theTree = Parse("{\"a\":1,\"b\":1}");
    EXPECT_EQ(vxJSON_Compare(vxJSON_GetArrayItem(theTree.get(), 0),
                             vxJSON_GetArrayItem(theTree.get(), 1)),
              0);
}

TEST(JSONTreeTest, ANumberIsNotTakenForTheAddressOfANamedOne) {
    // The second word of an item that was read without a name and then got one is an address.
    const Tree theTree = Parse("[1]");
    vxJSON_t* theNode = vxJSON_DetachItemFromArray(theTree.get(), 0);
    vxJSON_SetName(theNode, "name");
    uint64_t theWords[2];
    memcpy(theWords, theNode, sizeof(theWords));
    ASSERT_NE(theWords[1], 1u);
    vxJSON_InsertItemInArray(theTree.get(), 0, theNode);
    const Tree theOther(vxJSON_CreateArray());
    vxJSON_InsertItemInArray(theOther.get(), 0, NewNumber(theWords[1]));
    EXPECT_NE(vxJSON_Compare(theTree.get(), theOther.get()), 0);
    EXPECT_NE(vxJSON_Compare(theOther.get(), theTree.get()), 0);
}

TEST(JSONTreeTest, ComparingInAnotherOrderIsNotQuadratic) {
    const Tree theTree(vxJSON_CreateObject());
    const Tree theReversed(vxJSON_CreateObject());
    constexpr uint64_t kCount = 100000;
    for (uint64_t i = 0; i < kCount; ++i) {
        vxJSON_AddItemToObject(theTree.get(), std::to_string(i).c_str(), NewNumber(i));
        const uint64_t theOther = kCount - 1 - i;
        vxJSON_AddItemToObject(theReversed.get(), std::to_string(theOther).c_str(),
                               NewNumber(theOther));
    }
    EXPECT_EQ(vxJSON_Compare(theTree.get(), theReversed.get()), 0);
}

// ---- Depth

/// Arrays in objects in arrays, from the inside out.
Tree DeepTree(size_t aLevels) {
    Tree theTree(vxJSON_CreateArray());
    for (size_t i = 1; i < aLevels; ++i) {
        const bool fObject = i % 2 == 1;
        vxJSON_t* theOuter = fObject ? vxJSON_CreateObject() : vxJSON_CreateArray();
        if (fObject) {
            vxJSON_AddItemToObject(theOuter, "a", theTree.release());
        } else {
            vxJSON_InsertItemInArray(theOuter, 0, theTree.release());
        }
        theTree.reset(theOuter);
    }
    return theTree;
}

TEST(JSONTreeTest, AMillionLevelsNeedNoStack) {
    vxtest::OnSmallStack([] {
        Tree theTree = DeepTree(kMillion);
        const Tree theClone(vxJSON_Clone(theTree.get()));
        EXPECT_EQ(vxJSON_Compare(theTree.get(), theClone.get()), 0);
        EXPECT_EQ(Print(theTree).size(), 2 * kMillion + kMillion / 2 * 4);
        EXPECT_EQ(vxtest::Decode(vxtest::Encode(theTree.get())), nullptr);
        vxJSON_Clear(theTree.get());
        EXPECT_EQ(Print(theTree), "{}");
    });
}

TEST(JSONTreeTest, AMillionLevelsAreBuiltFromTheOutsideToo) {
    vxtest::OnSmallStack([] {
        const Tree theTree(vxJSON_CreateArray());
        vxJSON_t* theInner = theTree.get();
        for (size_t i = 1; i < kMillion; ++i) {
            vxJSON_t* theNext = vxJSON_CreateArray();
            vxJSON_InsertItemInArray(theInner, 0, theNext);
            theInner = theNext;
        }
        vxtest::Reports theReports;
        EXPECT_FALSE(vxJSON_InsertItemInArray(theInner, 0, theTree.get()));
        EXPECT_THAT(theReports.Assertions(), ElementsAre("vxJSON: the item holds the target"));
    });
}

}  // namespace
