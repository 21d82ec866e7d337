#include "vx/StringHashMap.h"

#include <libteskTools/HashTable.h>

#include <string>

#include <gmock/gmock.h>

namespace {

bool Visit(const char* aKey, void* aValue, void* aUserData) {
    std::string* theText = static_cast<std::string*>(aUserData);
    *theText += std::string(aKey) + "=" + static_cast<const char*>(aValue) + ";";
    return theText->size() < 8;
}

}  // namespace

TEST(StringHashMapTest, CallbackReceivesKeyValueAndItsOwnData) {
    std::string theText;
    char theValue[] = "value";
    vxStringHashMap_Visitor theVisitor = {Visit, &theText};

    EXPECT_FALSE(vxStringHashMap_ForEach("key", theValue, &theVisitor));
    EXPECT_EQ(theText, "key=value;");

    theText.clear();
    theValue[1] = '\0';
    EXPECT_TRUE(vxStringHashMap_ForEach("k", theValue, &theVisitor));
    EXPECT_EQ(theText, "k=v;");
}

TEST(StringHashMapTest, WalkOfATableReachesTheCallbackUntilItAnswersFalse) {
    std::string theText;
    char theValue[] = "v";
    vxStringHashMap_Visitor theVisitor = {Visit, &theText};
    vxCustomHashTable* theTable = vxCustomHashTable_New_String_Other(nullptr);
    for (const char* theKey : {"a", "b", "c"}) {
        vxCustomHashTable_Add(theTable, theKey, theValue);
    }

    EXPECT_FALSE(vxCustomHashTable_ForEach(theTable, vxStringHashMap_ForEach, &theVisitor));

    EXPECT_EQ(theText, "a=v;b=v;");
    vxCustomHashTable_Delete(theTable);
}
