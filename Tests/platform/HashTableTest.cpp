#include <libteskTools/HashTable.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string>* sFreed = NULL;  // what free functions were handed, oldest first

void RecordFree(void* aValue) {
    sFreed->push_back(static_cast<const char*>(aValue));
}

void* Text(const char* aText) {
    return const_cast<char*>(aText);
}

struct Walk {
    vxHashTable* mTable = NULL;
    std::vector<std::string> mVisited;
    std::string mStopAt;
    bool mfRemove = false;
    bool mfAdd = false;
};

bool Visit(void* aWalk, const char* aKey, void* aValue) {
    Walk* theWalk = static_cast<Walk*>(aWalk);
    const std::string theKey = aKey;
    theWalk->mVisited.push_back(theKey + "=" + static_cast<const char*>(aValue));
    if (theWalk->mfRemove) {
        vxHashTable_DeleteEntry(theWalk->mTable, theKey.data(), theKey.size());
    }
    if (theWalk->mfAdd) {
        const std::string theNew = theKey + "+";
        vxHashTable_AddEntry(theWalk->mTable, theNew.data(), theNew.size(), Text("new"));
    }
    return theKey != theWalk->mStopAt;
}

/// Texts that fall together whatever a hash starts from when it only mixes the words of a text one by
/// one into its state: each flips these words or leaves them, and the second undoes what the first did.
std::vector<std::string> TextsOfFlips(const std::vector<uint64_t>& aFlips) {
    constexpr size_t kTimes = 10;
    std::vector<std::string> theTexts;
    for (unsigned theChoice = 0; theChoice < 1U << kTimes; ++theChoice) {
        std::string theText;
        for (size_t i = 0; i < kTimes; ++i) {
            for (const uint64_t theFlip : aFlips) {
                uint64_t theWord = UINT64_C(0x6867666564636261);
                theWord ^= (theChoice >> i & 1) != 0 ? theFlip : 0;
                char theBytes[sizeof(theWord)];
                memcpy(theBytes, &theWord, sizeof(theWord));
                theText.append(theBytes, sizeof(theWord));
            }
        }
        theTexts.push_back(theText);
    }
    return theTexts;
}

class HashTableTest : public testing::Test {
protected:
    HashTableTest() { sFreed = &mFreed; }
    ~HashTableTest() override {
        vxHashTable_Delete(mPlain);
        vxCustomHashTable_Delete(mCustom);
        sFreed = NULL;
    }

    bool AddPlain(const std::string& aKey, const char* aValue) {
        return vxHashTable_AddEntry(mPlain, aKey.data(), aKey.size(), Text(aValue));
    }

    std::string GetPlain(const std::string& aKey) const {
        void* theValue = vxHashTable_GetEntry(mPlain, aKey.data(), aKey.size());
        return theValue == NULL ? "(null)" : static_cast<const char*>(theValue);
    }

    std::vector<std::string> Entries() const {
        Walk theWalk;
        EXPECT_TRUE(vxCustomHashTable_ForEach(mCustom, Visit, &theWalk));
        EXPECT_EQ(theWalk.mVisited.size(), vxCustomHashTable_GetTupleCount(mCustom));
        for (size_t i = 0; i < theWalk.mVisited.size(); ++i) {
            const std::string theKey = vxCustomHashTable_GetKeyAtIndex(mCustom, i);
            EXPECT_EQ(
                theKey + "=" + static_cast<char*>(vxCustomHashTable_GetValueAtIndex(mCustom, i)),
                theWalk.mVisited[i]);
        }
        return theWalk.mVisited;
    }

    std::vector<std::string> mFreed;
    vxHashTable* mPlain = vxHashTable_New(RecordFree);
    vxCustomHashTable* mCustom = vxCustomHashTable_New_String_Other(RecordFree);
};

TEST_F(HashTableTest, StartsEmpty) {
    EXPECT_EQ(vxHashTable_GetCount(mPlain), 0u);
    EXPECT_EQ(GetPlain("x"), "(null)");
    EXPECT_FALSE(vxHashTable_DeleteEntry(mPlain, "x", 1));
    EXPECT_EQ(vxCustomHashTable_GetTupleCount(mCustom), 0u);
    EXPECT_EQ(vxCustomHashTable_Get(mCustom, "x"), nullptr);
    EXPECT_EQ(vxCustomHashTable_LookupAt(mCustom, "x", 0), nullptr);
    EXPECT_FALSE(vxCustomHashTable_HasKey(mCustom, "x"));
    EXPECT_FALSE(vxCustomHashTable_Remove(mCustom, "x"));
    EXPECT_FALSE(vxCustomHashTable_RemoveValue(mCustom, "x", NULL));
    EXPECT_EQ(vxCustomHashTable_GetKeyAtIndex(mCustom, 0), nullptr);
    EXPECT_EQ(vxCustomHashTable_GetValueAtIndex(mCustom, 0), nullptr);
    vxHashTable_Clear(mPlain);
    vxCustomHashTable_Clear(mCustom);
    vxHashTable_Delete(NULL);
    vxCustomHashTable_Delete(NULL);
}

TEST_F(HashTableTest, PlainKeysAreBytesWithALength) {
    EXPECT_TRUE(AddPlain(std::string("a\0b", 3), "1"));
    EXPECT_TRUE(AddPlain("a", "2"));
    EXPECT_TRUE(AddPlain("", "3"));
    EXPECT_EQ(GetPlain(std::string("a\0b", 3)), "1");
    EXPECT_EQ(GetPlain("a"), "2");
    EXPECT_EQ(GetPlain(""), "3");
    EXPECT_EQ(GetPlain("A"), "(null)");
    EXPECT_EQ(vxHashTable_GetCount(mPlain), 3u);
}

TEST_F(HashTableTest, KeysAreCopied) {
    char theKey[] = "key";
    vxCustomHashTable_Add(mCustom, theKey, Text("1"));
    theKey[0] = 'K';
    EXPECT_TRUE(vxCustomHashTable_HasKey(mCustom, "key"));
    EXPECT_FALSE(vxCustomHashTable_HasKey(mCustom, "Key"));
}

TEST_F(HashTableTest, ReplacingFreesTheOldValueAndKeepsThePlace) {
    vxCustomHashTable_Add(mCustom, "a", Text("1"));
    vxCustomHashTable_Add(mCustom, "b", Text("2"));
    vxCustomHashTable_Add(mCustom, "a", Text("3"));
    EXPECT_THAT(Entries(), ElementsAre("a=3", "b=2"));
    EXPECT_THAT(mFreed, ElementsAre("1"));
}

TEST_F(HashTableTest, ReplacingAValueByItselfFreesNothing) {
    void* theValue = Text("1");
    vxCustomHashTable_Add(mCustom, "a", theValue);
    vxCustomHashTable_Add(mCustom, "a", theValue);
    EXPECT_THAT(mFreed, IsEmpty());
    EXPECT_EQ(vxCustomHashTable_GetTupleCount(mCustom), 1u);
}

TEST_F(HashTableTest, DuplicatesStandUnderTheirKeyInInsertionOrder) {
    vxCustomHashTable_AllowDuplicates(mCustom);
    for (const auto& [theKey, theValue] : std::vector<std::pair<const char*, const char*>>{
             {"a", "1"}, {"b", "2"}, {"a", "3"}, {"a", "4"}, {"b", "5"}}) {
        EXPECT_TRUE(vxCustomHashTable_Add(mCustom, theKey, Text(theValue)));
    }
    EXPECT_STREQ(static_cast<char*>(vxCustomHashTable_Get(mCustom, "a")), "1");
    EXPECT_STREQ(static_cast<char*>(vxCustomHashTable_LookupAt(mCustom, "a", 0)), "1");
    EXPECT_STREQ(static_cast<char*>(vxCustomHashTable_LookupAt(mCustom, "a", 1)), "3");
    EXPECT_STREQ(static_cast<char*>(vxCustomHashTable_LookupAt(mCustom, "a", 2)), "4");
    EXPECT_EQ(vxCustomHashTable_LookupAt(mCustom, "a", 3), nullptr);
    EXPECT_THAT(Entries(), ElementsAre("a=1", "b=2", "a=3", "a=4", "b=5"));
    EXPECT_THAT(mFreed, IsEmpty());
}

TEST_F(HashTableTest, RemovingAKeyFreesAllItsValues) {
    vxCustomHashTable_AllowDuplicates(mCustom);
    vxCustomHashTable_Add(mCustom, "a", Text("1"));
    vxCustomHashTable_Add(mCustom, "b", Text("2"));
    vxCustomHashTable_Add(mCustom, "a", Text("3"));
    EXPECT_TRUE(vxCustomHashTable_Remove(mCustom, "a"));
    EXPECT_FALSE(vxCustomHashTable_Remove(mCustom, "a"));
    EXPECT_THAT(mFreed, ElementsAre("1", "3"));
    EXPECT_THAT(Entries(), ElementsAre("b=2"));
}

TEST_F(HashTableTest, RemovingAValueLeavesTheOthersOfItsKey) {
    for (size_t theRemoved = 0; theRemoved < 3; ++theRemoved) {
        SCOPED_TRACE(theRemoved);
        vxCustomHashTable* theTable = vxCustomHashTable_New_String_Other(NULL);
        vxCustomHashTable_AllowDuplicates(theTable);
        int theValues[4] = {0, 1, 2, 3};
        for (size_t i = 0; i < 3; ++i) {
            vxCustomHashTable_Add(theTable, "a", &theValues[i]);
        }
        EXPECT_FALSE(vxCustomHashTable_RemoveValue(theTable, "a", &theValues[3]));
        EXPECT_FALSE(vxCustomHashTable_RemoveValue(theTable, "b", &theValues[0]));
        EXPECT_TRUE(vxCustomHashTable_RemoveValue(theTable, "a", &theValues[theRemoved]));
        vxCustomHashTable_Add(theTable, "a", &theValues[3]);
        size_t theIndex = 0;
        for (size_t i = 0; i < 4; ++i) {
            if (i != theRemoved) {
                EXPECT_EQ(vxCustomHashTable_LookupAt(theTable, "a", theIndex++), &theValues[i]);
            }
        }
        EXPECT_EQ(vxCustomHashTable_LookupAt(theTable, "a", 3), nullptr);
        vxCustomHashTable_Delete(theTable);
    }
}

TEST_F(HashTableTest, RemovingTheOnlyValueRemovesTheKey) {
    vxCustomHashTable_Add(mCustom, "a", Text("1"));
    void* theValue = vxCustomHashTable_Get(mCustom, "a");
    EXPECT_TRUE(vxCustomHashTable_RemoveValue(mCustom, "a", theValue));
    EXPECT_FALSE(vxCustomHashTable_HasKey(mCustom, "a"));
    EXPECT_THAT(mFreed, ElementsAre("1"));
}

TEST_F(HashTableTest, LookupTellsAnAbsentKeyFromAZeroNumber) {
    vxCustomHashTable* theTable = vxCustomHashTable_New_String_UInt32();
    vxCustomHashTable_Add(theTable, "zero", vxHashValue_FromUInt32(0));
    vxCustomHashTable_Add(theTable, "most", vxHashValue_FromUInt32(4294967295u));
    void* theValue = vxHashValue_FromUInt32(7);
    EXPECT_FALSE(vxCustomHashTable_Lookup(theTable, "none", &theValue));
    EXPECT_EQ(vxHashValue_ToUInt32(theValue), 7u);
    EXPECT_TRUE(vxCustomHashTable_Lookup(theTable, "zero", &theValue));
    EXPECT_EQ(vxHashValue_ToUInt32(theValue), 0u);
    EXPECT_TRUE(vxCustomHashTable_Lookup(theTable, "most", &theValue));
    EXPECT_EQ(vxHashValue_ToUInt32(theValue), 4294967295u);
    EXPECT_TRUE(vxCustomHashTable_Lookup(theTable, "most", NULL));
    vxCustomHashTable_Delete(theTable);
}

TEST_F(HashTableTest, ClearAndDeleteFreeInInsertionOrder) {
    AddPlain("b", "1");
    AddPlain("a", "2");
    AddPlain("c", "3");
    vxHashTable_DeleteEntry(mPlain, "a", 1);
    vxHashTable_Clear(mPlain);
    EXPECT_THAT(mFreed, ElementsAre("2", "1", "3"));
    AddPlain("z", "4");
    EXPECT_EQ(GetPlain("z"), "4");
    vxHashTable_Delete(mPlain);
    mPlain = NULL;
    EXPECT_THAT(mFreed, ElementsAre("2", "1", "3", "4"));
}

TEST_F(HashTableTest, ForEachStopsWhenTheCallbackSaysSo) {
    AddPlain("a", "1");
    AddPlain("b", "2");
    AddPlain("c", "3");
    Walk theWalk;
    theWalk.mStopAt = "b";
    EXPECT_FALSE(vxHashTable_ForEach(mPlain, Visit, &theWalk));
    EXPECT_THAT(theWalk.mVisited, ElementsAre("a=1", "b=2"));
}

TEST_F(HashTableTest, ForEachMayRemoveAndAdd) {
    const char* kKeys[] = {"a", "b", "c", "d", "e"};
    for (const char* theKey : kKeys) {
        AddPlain(theKey, "1");
    }
    Walk theWalk;
    theWalk.mTable = mPlain;
    theWalk.mfRemove = theWalk.mfAdd = true;
    EXPECT_TRUE(vxHashTable_ForEach(mPlain, Visit, &theWalk));
    EXPECT_THAT(theWalk.mVisited, ElementsAre("a=1", "b=1", "c=1", "d=1", "e=1"));
    Walk theRest;
    EXPECT_TRUE(vxHashTable_ForEach(mPlain, Visit, &theRest));
    EXPECT_THAT(theRest.mVisited, ElementsAre("a+=new", "b+=new", "c+=new", "d+=new", "e+=new"));
}

TEST_F(HashTableTest, IndexesAreRightAroundRemovedEntriesAlsoDuringAWalk) {
    struct Context {
        vxCustomHashTable* mTable;
        std::vector<std::string> mKeys;  // a model of the table
        std::vector<std::string> mVisited;
    };
    Context theContext = {mCustom, {}, {}};
    for (char theChar = 'a'; theChar <= 'z'; ++theChar) {
        theContext.mKeys.push_back(std::string(1, theChar));
        vxCustomHashTable_Add(mCustom, theContext.mKeys.back().c_str(), Text("1"));
    }
    const auto theVisit = [](void* aContext, const char* aKey, void*) {
        Context* theOne = static_cast<Context*>(aContext);
        theOne->mVisited.push_back(aKey);
        if (theOne->mVisited.size() % 3 == 0) {
            theOne->mKeys.erase(
                std::find(theOne->mKeys.begin(), theOne->mKeys.end(), std::string(aKey)));
            vxCustomHashTable_Remove(theOne->mTable, theOne->mVisited.back().c_str());
        }
        for (size_t i = 0; i < theOne->mKeys.size(); ++i) {
            EXPECT_EQ(vxCustomHashTable_GetKeyAtIndex(theOne->mTable, i), theOne->mKeys[i]);
        }
        EXPECT_EQ(vxCustomHashTable_GetKeyAtIndex(theOne->mTable, theOne->mKeys.size()), nullptr);
        return true;
    };
    EXPECT_TRUE(vxCustomHashTable_ForEach(mCustom, theVisit, &theContext));
    EXPECT_EQ(theContext.mVisited.size(), 26u);
    EXPECT_EQ(theContext.mKeys.size(), 18u);
    EXPECT_EQ(Entries().size(), 18u);
    EXPECT_STREQ(vxCustomHashTable_GetKeyAtIndex(mCustom, 17), "z");
}

TEST_F(HashTableTest, BehavesAsAPlainListUnderRandomOperations) {
    std::mt19937 theRandom(99);
    vxCustomHashTable_AllowDuplicates(mCustom);
    static const char* const kValues[] = {"0", "1", "2", "3", "4"};
    std::vector<std::pair<std::string, const char*>> theModel;
    for (int i = 0; i < 2000; ++i) {
        const std::string theKey = "key" + std::to_string(theRandom() % 40);
        const char* theValue = kValues[theRandom() % 5];
        const auto theSameKey = [&](const auto& anEntry) { return anEntry.first == theKey; };
        switch (theRandom() % 8) {
            case 0: {
                const auto theEnd = std::remove_if(theModel.begin(), theModel.end(), theSameKey);
                EXPECT_EQ(vxCustomHashTable_Remove(mCustom, theKey.c_str()),
                          theEnd != theModel.end());
                theModel.erase(theEnd, theModel.end());
                break;
            }
            case 1:
            case 2: {
                const auto thePlace =
                    std::find_if(theModel.begin(), theModel.end(), [&](const auto& anEntry) {
                        return anEntry.first == theKey && anEntry.second == theValue;
                    });
                EXPECT_EQ(vxCustomHashTable_RemoveValue(mCustom, theKey.c_str(), theValue),
                          thePlace != theModel.end());
                if (thePlace != theModel.end()) {
                    theModel.erase(thePlace);
                }
                break;
            }
            default:
                EXPECT_TRUE(vxCustomHashTable_Add(mCustom, theKey.c_str(), Text(theValue)));
                theModel.emplace_back(theKey, theValue);
        }
        std::vector<std::string> theWanted;
        for (const auto& theEntry : theModel) {
            theWanted.push_back(theEntry.first + "=" + theEntry.second);
        }
        ASSERT_EQ(Entries(), theWanted);
        const auto theFirst = std::find_if(theModel.begin(), theModel.end(), theSameKey);
        ASSERT_EQ(vxCustomHashTable_Get(mCustom, theKey.c_str()),
                  theFirst == theModel.end() ? NULL : Text(theFirst->second));
    }
}

TEST_F(HashTableTest, HoldsManyKeys) {
    std::vector<std::string> theKeys;
    for (int i = 0; i < 100000; ++i) {
        theKeys.push_back("a rather long key number " + std::to_string(i));
        ASSERT_TRUE(AddPlain(theKeys.back(), "x"));
    }
    EXPECT_EQ(vxHashTable_GetCount(mPlain), 100000u);
    for (const std::string& theKey : theKeys) {
        ASSERT_EQ(GetPlain(theKey), "x");
        ASSERT_TRUE(vxHashTable_DeleteEntry(mPlain, theKey.data(), theKey.size()));
    }
    EXPECT_EQ(vxHashTable_GetCount(mPlain), 0u);
}

}  // namespace

TEST_F(HashTableTest, TextsMadeToFallTogetherDoNot) {
    const std::vector<uint64_t> kFlips[] = {
        // The highest bit stays alone in a product with an odd number, and can be taken back.
        {UINT64_C(1) << 63, UINT64_C(1) << 63 | UINT64_C(1) << 31},
        // Two words that are joined before they are mixed.
        {UINT64_C(1), UINT64_C(1) << 32, UINT64_C(1) << 32, 0},
        {0, UINT64_C(1), UINT64_C(1), 0},
        {UINT64_C(1), UINT64_C(1), UINT64_C(1), UINT64_C(1)},
    };
    for (const std::vector<uint64_t>& theFlips : kFlips) {
        std::set<uint32_t> theHashes;
        for (const std::string& theText : TextsOfFlips(theFlips)) {
            theHashes.insert(vxHashTable_Hash(theText.data(), theText.size()));
        }
        // By chance two of the 1024 share one of 2^32 hashes once in 8000 runs, ten more never.
        EXPECT_GT(theHashes.size(), 1014U);
    }
}

TEST_F(HashTableTest, HashesOfLikeTextsSpreadOverTheBuckets) {
    for (const std::string thePrefix : {"", "key", "a long name with its number at the end: "}) {
        std::set<uint32_t> theHashes;
        std::vector<int> theBuckets(1024);
        for (int i = 0; i < 1024; ++i) {
            const std::string theText = thePrefix + std::to_string(i);
            const uint32_t theHash = vxHashTable_Hash(theText.data(), theText.size());
            theHashes.insert(theHash);
            ++theBuckets[theHash % 1024];
        }
        EXPECT_GT(theHashes.size(), 1014U);
        // Chance alone puts 16 into one of the buckets less than once in 10^10 runs.
        EXPECT_LT(*std::max_element(theBuckets.begin(), theBuckets.end()), 16);
    }
}
