// Runs of siblings wait on a stack of their own, each with the object that it goes into: the depth of
// a tree costs no stack of the thread.

#include "vx/XMLJSON.h"

#include <vector>

#include "vx/JSON.h"
#include "vx/XML.h"

namespace {

constexpr uint32_t kvxXMLJSON_AtEnd = 0xFFFFFFFF;

struct vxRun {
    const vxXMLNode* mNode;  // the next node of the run
    vxJSONObject mTarget;    // a view
};

/// Puts an array in the place of a member, with a copy of that as its first item.
vxJSONArray vxMakeList(vxJSONObject& aTarget, const vxCString& aName, const vxJSONEntry& aMember) {
    vxJSONArray theList;
    theList.InsertCopy(aMember, kvxXMLJSON_AtEnd);
    vxJSON_ReplaceItemInObject(aTarget.mEntry, aName, theList.mEntry, 1);
    theList.mfIsOrphan = false;
    return theList;
}

/// Adds an element or a comment; a run of children that is left to be added goes onto the stack.
void vxAddElement(const vxXMLNode& aNode, vxJSONObject& aTarget, std::vector<vxRun>& aRuns) {
    const vxCString& theName = aNode.GetName();
    const vxJSONEntry theMember = aTarget[theName.c_str()];
    const bool theIsRepeated = theMember.IsValid();
    vxJSONArray theList;
    vxJSONObject theValue;
    if (!theIsRepeated) {
        theValue = aTarget.AddObject(theName);
    } else if (theMember.IsArray()) {
        theList = theMember.AsArray();
    } else {
        theList = vxMakeList(aTarget, theName, theMember);
    }

    const vxXMLNode* theChild = aNode.GetChildren();
    if (theChild == NULL) {
        return;
    }
    if (theChild->GetType() != vxXMLNodeType_Text) {
        if (theIsRepeated) {
            theValue = theList.InsertObject(kvxXMLJSON_AtEnd);
        }
        aRuns.push_back({theChild, theValue});
    } else if (theIsRepeated) {
        theList.Insert(theChild->GetContent().c_str(), kvxXMLJSON_AtEnd);
    } else {
        aTarget.Set(theName, theChild->GetContent().c_str());
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
    std::vector<vxRun> theRuns = {{theStart, theObject}};
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
            vxAddElement(*theNode, theTarget, theRuns);
        }
    }
    return true;
}
