// Runs of siblings wait on a stack of their own, each with the object that it goes into: the depth of
// a tree costs no stack of the thread.
//
// A member whose name comes again becomes an array, and what it held is copied into that. So that no
// subtree is copied at each level above it, a run is looked through first, and names that stand in it
// more than once get their array while they are still empty.

#include "vx/XMLJSON.h"

#include <string_view>
#include <unordered_set>
#include <vector>

#include "vx/JSON.h"
#include "vx/StringHashMap.h"
#include "vx/XML.h"

namespace {

constexpr uint32_t kvxXMLJSON_AtEnd = 0xFFFFFFFF;

using vxNames = std::unordered_set<std::string_view, vxStringHashMap_Hash>;

struct vxRun {
    const vxXMLNode* mNode;  // the next node of the run
    vxJSONObject mTarget;    // a view
    vxNames mRepeated;       // what stands more than once in the run
};

/// The names that more than one node of a run has, texts aside.
vxNames vxRepeatedNames(const vxXMLNode* aFirst) {
    vxNames theRepeated;
    if (aFirst->GetNext() == NULL) {
        return theRepeated;
    }
    vxNames theNames;
    for (const vxXMLNode* i = aFirst; i != NULL; i = i->GetNext()) {
        const std::string_view theName = i->GetName().c_str();
        if (i->GetType() != vxXMLNodeType_Text && !theNames.insert(theName).second) {
            theRepeated.insert(theName);
        }
    }
    return theRepeated;
}

/// Puts an array in the place of a member, with a copy of that as its first item.
vxJSONArray vxMakeList(vxJSONObject& aTarget, const vxCString& aName, const vxJSONEntry& aMember) {
    vxJSONArray theList;
    theList.InsertCopy(aMember, kvxXMLJSON_AtEnd);
    vxJSON_ReplaceItemInObject(aTarget.mEntry, aName, theList.mEntry, 1);
    theList.mfIsOrphan = false;
    return theList;
}

/// Adds an element or a comment; a run of children that is left to be added goes onto the stack.
void vxAddElement(const vxXMLNode& aNode, vxJSONObject& aTarget, bool afComesAgain,
                  std::vector<vxRun>& aRuns) {
    const vxCString& theName = aNode.GetName();
    const vxXMLNode* theChild = aNode.GetChildren();
    const bool theHasText = theChild != NULL && theChild->GetType() == vxXMLNodeType_Text;
    const vxJSONEntry theMember = aTarget[theName.c_str()];
    if (!theMember.IsValid() && !afComesAgain) {
        if (theHasText) {
            aTarget.Set(theName, theChild->GetContent().c_str());
            return;
        }
        const vxJSONObject theValue = aTarget.AddObject(theName);
        if (theChild != NULL) {
            aRuns.push_back({theChild, theValue, vxRepeatedNames(theChild)});
        }
        return;
    }

    vxJSONArray theList;
    if (!theMember.IsValid()) {
        theList = aTarget.AddArray(theName);
    } else if (theMember.IsArray()) {
        theList = theMember.AsArray();
    } else {
        theList = vxMakeList(aTarget, theName, theMember);
    }
    if (theHasText) {
        theList.Insert(theChild->GetContent().c_str(), kvxXMLJSON_AtEnd);
    } else if (theChild != NULL) {
        aRuns.push_back(
            {theChild, theList.InsertObject(kvxXMLJSON_AtEnd), vxRepeatedNames(theChild)});
    } else if (!theMember.IsValid()) {
        // Empty elements add no item, but the first of them is a value.
        theList.InsertObject(kvxXMLJSON_AtEnd);
    }
}

}  // namespace

vxXMLToJSON::vxXMLToJSON() : vxXMLToJSON(NULL) {}

vxXMLToJSON::vxXMLToJSON(const vxXMLNode* aNode)
    : mXMLNode(aNode), mXMLStartNode(NULL), mfXMLStartNode(false) {}

void vxXMLToJSON::SetXMLStartNode(const vxXMLNode* aNode) {
    mXMLStartNode = aNode;
    mfXMLStartNode = true;
}

bool vxXMLToJSON::ConvertTo(vxJSONEntry& aTarget) const {
    const vxXMLNode* theStart = mfXMLStartNode ? mXMLStartNode : mXMLNode;
    if (theStart == NULL) {
        aTarget.Reset();
        return false;
    }
    const vxJSONObject theObject = aTarget.AsObject();
    if (!theObject.IsValid()) {
        return true;
    }
    std::vector<vxRun> theRuns;
    theRuns.push_back({theStart, theObject, vxRepeatedNames(theStart)});
    while (!theRuns.empty()) {
        vxRun& theRun = theRuns.back();
        const vxXMLNode* theNode = theRun.mNode;
        if (theNode == NULL) {
            theRuns.pop_back();
            continue;
        }
        theRun.mNode = theNode->GetNext();
        vxJSONObject theTarget = theRun.mTarget;
        if (theNode->GetType() == vxXMLNodeType_Text) {
            theTarget.Set(theNode->GetName(), theNode->GetContent().c_str());
        } else {
            const bool theComesAgain = theRun.mRepeated.count(theNode->GetName().c_str()) != 0;
            vxAddElement(*theNode, theTarget, theComesAgain, theRuns);
        }
    }
    return true;
}
