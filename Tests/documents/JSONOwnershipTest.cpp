// Which handle frees which node: every call that frees a tree is counted.

#include <gmock/gmock.h>

#include <libteskTools/JSON.h>

#include <cstdlib>

#include "support/Forward.h"
#include "support/Reports.h"
#include "vx/JSON.h"

namespace {

int sTrees = 0;
int sDictionaries = 0;

// Returns the trees freed since it was asked last.
int Freed() {
    const int theTrees = sTrees;
    sTrees = 0;
    return theTrees;
}

}  // namespace

void vxJSON_Delete(vxJSON_t* aNode) {
    sTrees += aNode != nullptr;
    VXTEST_REAL(vxJSON_Delete)(aNode);
}

void vxJSONMPackDictionary_Delete(vxJSONMPackDictionary_t* aDictionary) {
    sDictionaries += aDictionary != nullptr;
    VXTEST_REAL(vxJSONMPackDictionary_Delete)(aDictionary);
}

namespace {

class JSONOwnershipTest : public testing::Test {
protected:
    void SetUp() override { Freed(); }

    vxtest::Reports mReports;
};

TEST_F(JSONOwnershipTest, APlainEntryFreesNothing) {
    vxJSON_t* theNode = vxJSON_CreateObject();
    {
        vxJSONEntry theEntry;
        theEntry.SetEntry(theNode, true);
    }
    EXPECT_EQ(Freed(), 0);
    vxJSON_Delete(theNode);
}

TEST_F(JSONOwnershipTest, ObjectsAndArraysFreeWhatTheyOwn) {
    {
        vxJSONObject theObject;
        theObject.CreateIfNone();
        vxJSONObject theView;
        theObject.FetchObject(theView);
    }
    EXPECT_EQ(Freed(), 1);
    {
        vxJSONArray theArray;
        theArray.InsertNull(kvxJSON_Append);
        vxJSONArray theView;
        theArray.FetchArray(theView);
    }
    EXPECT_EQ(Freed(), 1);
    vxJSON_t* theNode = vxJSON_CreateArray();
    {
        const vxJSONArray theView(theNode);
        const vxJSONArray theOther = theView;
    }
    EXPECT_EQ(Freed(), 0);
    vxJSON_Delete(theNode);
}

TEST_F(JSONOwnershipTest, APairFreesItsNodeUnlessItHasGoneIntoAnObject) {
    { const vxJSONPair thePair("a", true); }
    EXPECT_EQ(Freed(), 1);
    {
        vxJSONPair thePair("a", true);
        const vxJSONPair theOther(thePair);
    }
    EXPECT_EQ(Freed(), 1);
    vxJSONObject theObject;
    vxJSONPair thePair("a", true);
    theObject.Add(thePair, false);
    vxJSONArray theArray;
    theArray.CreateIfNone();
    theObject.Add(vxJSONPair("b", theArray), false);
    EXPECT_EQ(Freed(), 0);
    EXPECT_EQ(theObject.GetCount(), 2u);
    vxJSONObject theNumber(theObject["a"].mEntry);
    theNumber.Add(vxJSONPair("c", 1.5), false);
    EXPECT_EQ(Freed(), 1);
}

TEST_F(JSONOwnershipTest, ADocumentFreesItsTreeInEveryCase) {
    { const vxJSONDocument theDocument(kvxJSONDocumentRoot_Object); }
    EXPECT_EQ(Freed(), 1);
    { const vxJSONDocument theDocument("[1,[2]]"); }
    EXPECT_EQ(Freed(), 1);
    { const vxJSONDocument theDocument("x"); }
    EXPECT_EQ(Freed(), 0);
    {
        const vxJSONDocument theDocument("[1]");
        const vxJSONDocument theCopy(theDocument);
        EXPECT_FALSE(theCopy.mfIsOrphan);
    }
    EXPECT_EQ(Freed(), 2);
}

TEST_F(JSONOwnershipTest, WhatReplacesADocumentsTreeFreesIt) {
    vxJSONDocument theDocument("{\"a\":1}");
    theDocument.SetRoot(kvxJSONDocumentRoot_Array);
    EXPECT_EQ(Freed(), 1);
    EXPECT_TRUE(theDocument.SetDocument("[2]"));
    EXPECT_EQ(Freed(), 1);
    EXPECT_FALSE(theDocument.SetDocument("x"));
    EXPECT_EQ(Freed(), 1);
    EXPECT_FALSE(theDocument.IsValid());
    theDocument.SetEntry(vxJSON_CreateArray());
    EXPECT_EQ(Freed(), 0);
    theDocument.SetEntry(vxJSON_CreateObject());
    EXPECT_EQ(Freed(), 1);
    const vxJSONDocument theOther("[3]");
    theOther.CloneTo(theDocument);
    EXPECT_EQ(Freed(), 1);
    theDocument.SetRoot(kvxJSONDocumentRoot_None);
    EXPECT_EQ(Freed(), 1);
}

TEST_F(JSONOwnershipTest, SettingAnEntryFreesTheNodeThatItOwned) {
    vxJSONDocument theDocument("{\"a\":{},\"b\":[]}");
    vxJSONEntry theEntry;
    EXPECT_TRUE(vxJSONPath::FetchEntry(theDocument, "a", theEntry));
    EXPECT_TRUE(vxJSONPath::FetchEntry(theDocument, "b", theEntry));
    EXPECT_EQ(Freed(), 0);
    theDocument.CloneTo(static_cast<vxJSONEntry&>(theEntry));
    EXPECT_EQ(Freed(), 0);
    EXPECT_TRUE(theEntry.mfIsOrphan);
    theEntry.SetEntry(theDocument.mEntry, false);
    EXPECT_EQ(Freed(), 1);
    vxJSONObject theObject;
    theObject.CreateEmpty();
    theObject.CreateEmpty();
    EXPECT_EQ(Freed(), 1);
}

TEST_F(JSONOwnershipTest, WhatCannotBePutAnywhereIsFreed) {
    const vxJSONDocument theDocument("{\"a\":1}");
    vxJSONArray theWrongArray(theDocument.mEntry);
    theWrongArray.Insert(true, 0);
    theWrongArray.Insert("text", 0);
    EXPECT_FALSE(theWrongArray.InsertObject(0).IsValid());
    theWrongArray.InsertCopy(theDocument, 0);
    EXPECT_EQ(Freed(), 4);
    vxJSONEntry theNumber = theDocument["a"];
    theNumber.Set("b", 1.5);
    theNumber.Set("b", theDocument);
    EXPECT_EQ(Freed(), 2);
    EXPECT_FALSE(vxJSONPath::SetNull(theDocument, "a.b", true));
    EXPECT_FALSE(vxJSONPath::Set(theDocument, "a.b", theDocument, true));
    EXPECT_EQ(Freed(), 2);
    vxJSONObject theObject;
    EXPECT_FALSE(theObject.AddRawJSONObject("a", "[1]").IsValid());
    EXPECT_EQ(Freed(), 1);
    EXPECT_TRUE(theObject.AddRawJSONArray("a", "[1]").IsValid());
    EXPECT_EQ(Freed(), 0);
}

TEST_F(JSONOwnershipTest, RemovedMembersAndItemsAreFreedAndTakenOnesAreNot) {
    vxJSONDocument theDocument("{\"a\":[1,2],\"b\":{},\"c\":{}}");
    vxJSONObject theObject(theDocument.mEntry);
    vxJSONArray theArray(theObject["a"].mEntry);
    EXPECT_TRUE(theArray.Remove(0));
    EXPECT_TRUE(theObject.Remove("b"));
    EXPECT_EQ(Freed(), 2);
    {
        vxJSONObject theTaken;
        EXPECT_TRUE(theObject.Take("c", theTaken));
        EXPECT_EQ(Freed(), 0);
    }
    EXPECT_EQ(Freed(), 1);
    vxJSONEntry theEntry;
    EXPECT_TRUE(theObject.Take("a", theEntry));
    vxJSONArray theNew;
    theNew.Insert(theEntry, kvxJSON_Append);
    EXPECT_EQ(Freed(), 0);
    EXPECT_EQ(theNew.GetCount(), 1u);
}

TEST_F(JSONOwnershipTest, ADecodedTreeGoesThroughTheVirtualSetter) {
    struct Recorder : vxJSONEntry {
        void SetEntry(vxJSON_t* anEntry, bool afIsOrphan) override {
            mCalls++;
            vxJSONEntry::SetEntry(anEntry, afIsOrphan);
        }
        int mCalls = 0;
    };
    const vxJSONDocument theDocument("[1,2]");
    uint32_t theSize = 0;
    uint8_t* theBuffer = theDocument.ToMPackBuffer(&theSize, 0);
    Recorder theEntry;
    EXPECT_TRUE(theEntry.FromMPackBuffer(theBuffer, 0));
    free(theBuffer);
    EXPECT_EQ(theEntry.mCalls, 1);
    EXPECT_TRUE(theEntry.mfIsOrphan);
    EXPECT_TRUE(theEntry.SameAs(theDocument));
    vxJSON_Delete(theEntry.mEntry);
}

TEST_F(JSONOwnershipTest, TheMarkerOfADifferenceIsFreed) {
    const vxJSONDocument theOld("{\"a\":1}");
    const vxJSONDocument theNew("{}");
    vxJSONDocument theDifference(kvxJSONDocumentRoot_Object);
    EXPECT_TRUE(vxJSONPath::FetchDiff(theOld, theNew, "a", theDifference, false));
    EXPECT_EQ(Freed(), 1);
}

TEST_F(JSONOwnershipTest, TheLastReferenceFreesADictionary) {
    const char* theWords[] = {"a", nullptr};
    {
        const vxRef<vxMPackDictionary> theDictionary = new vxMPackDictionary(theWords);
        const vxRef<vxMPackDictionary> theOther = theDictionary;
        EXPECT_EQ(sDictionaries, 0);
    }
    EXPECT_EQ(sDictionaries, 1);
}

}  // namespace
