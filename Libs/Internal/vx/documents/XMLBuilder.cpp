// A growing buffer, a stack of names, and one flag: whether a start tag still waits for its '>'.
//
// The names of open elements stand in one block, each with its length behind it.

#include "vx/XMLBuilder.h"

#include "Bytes.h"

#include <libvxLog/Assert.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

const char* vxText(const char* aText) {
    return aText == NULL ? "" : aText;
}

struct vxEntity {
    char mChar;
    std::string_view mSingle;
    std::string_view mDouble;
};

constexpr vxEntity kvxXML_Entities[] = {
    {'"', "&quot;", "&amp;quot;"}, {'\'', "&apos;", "&amp;apos;"}, {'<', "&lt;", "&amp;lt;"},
    {'>', "&gt;", "&amp;gt;"},     {'&', "&amp;", "&amp;amp;"},
};

const vxEntity& vxEntityOf(char aChar) {
    const vxEntity* theEntity = kvxXML_Entities;
    while (theEntity->mChar != aChar) {
        ++theEntity;
    }
    return *theEntity;
}

/// Escapes into a buffer: runs of plain bytes as blocks, and entities whole or not at all.
void vxEscape(vxGrowingBuffer& aBuffer, const char* aText, size_t aLength, size_t aMaxLength,
              bool afDouble) {
    size_t theRoom = aMaxLength == 0 ? static_cast<size_t>(-1) : aMaxLength;
    const char* const theEnd = aText + aLength;
    for (const char* thePos = aText; thePos != theEnd; ++thePos) {
        const char* const theRun = thePos;
        const char* const theRunEnd =
            static_cast<size_t>(theEnd - thePos) < theRoom ? theEnd : thePos + theRoom;
        thePos = vxFindAnyOf(thePos, theRunEnd, '"', '\'', '<', '>', '&');
        const size_t theLength = static_cast<size_t>(thePos - theRun);
        aBuffer.Append(theRun, theLength);
        theRoom -= theLength;
        if (thePos == theRunEnd) {
            return;
        }
        const vxEntity& theEntity = vxEntityOf(*thePos);
        const std::string_view theText = afDouble ? theEntity.mDouble : theEntity.mSingle;
        if (theText.size() > theRoom) {
            return;
        }
        aBuffer.Append(theText.data(), theText.size());
        theRoom -= theText.size();
    }
}

/// Makes a text of a buffer's bytes.
vxCString vxTake(vxGrowingBuffer& aBuffer) {
    aBuffer.Append("", 1);
    return vxCString::FromAllocatedString(aBuffer.TakeOwnership(false, NULL));
}

}  // namespace

vxXMLBuilder::vxXMLBuilder(uint32_t anInitialSize)
    : mBuffer(anInitialSize), mTagArray(NULL), mfTagStarted(false) {}

vxXMLBuilder::~vxXMLBuilder() {
    delete mTagArray;
}

void vxXMLBuilder::AddOpening(const char* aName, size_t aLength) {
    mBuffer.Append("<", 1);
    mBuffer.Append(aName, aLength);
}

void vxXMLBuilder::AddClosing(const char* aName, size_t aLength) {
    mBuffer.Append("</", 2);
    mBuffer.Append(aName, aLength);
    mBuffer.Append(">", 1);
}

void vxXMLBuilder::AddEnd(const char* aName, size_t aLength) {
    if (mfTagStarted) {
        mBuffer.Append("/>", 2);
        mfTagStarted = false;
    } else {
        AddClosing(aName, aLength);
    }
}

void vxXMLBuilder::StartTag(const char* aName) {
    if (mTagArray == NULL) {
        mTagArray = new vxGrowingBuffer(0);
    }
    const char* theName = vxText(aName);
    const size_t theLength = strlen(theName);
    mTagArray->Append(theName, theLength);
    mTagArray->Append(reinterpret_cast<const char*>(&theLength), sizeof(theLength));
    CloseStartTag();
    AddOpening(theName, theLength);
    mfTagStarted = true;
}

void vxXMLBuilder::AddAttribute(const char* aName, const char* aValue) {
    VXASSERT(mfTagStarted);
    if (!mfTagStarted) {
        return;
    }
    mBuffer.Append(" ", 1);
    mBuffer += vxText(aName);
    mBuffer.Append("=\"", 2);
    vxEscape(mBuffer, vxText(aValue), strlen(vxText(aValue)), 0, false);
    mBuffer.Append("\"", 1);
}

void vxXMLBuilder::AddUInt32Attribute(const char* aName, uint32_t aValue) {
    VXASSERT(mfTagStarted);
    if (mfTagStarted) {
        mBuffer +=
            vxCString::Format(" %s=\"%lu\"", vxText(aName), static_cast<unsigned long>(aValue));
    }
}

void vxXMLBuilder::EndTag() {
    VXASSERT(mTagArray != NULL);
    const size_t theCount = mTagArray == NULL ? 0 : mTagArray->GetPosition();
    VXASSERT_TEXT(mTagArray == NULL || theCount > 0, "theCount > 0");
    if (theCount == 0) {
        return;
    }
    size_t theLength = 0;
    const size_t theEnd = theCount - sizeof(theLength);
    memcpy(&theLength, mTagArray->data() + theEnd, sizeof(theLength));
    const size_t theStart = theEnd - theLength;
    mTagArray->SetPosition(theStart);
    AddEnd(mTagArray->data() + theStart, theLength);
}

void vxXMLBuilder::AddStartTag(const char* aName, bool afClose) {
    CloseStartTag();
    AddOpening(vxText(aName), strlen(vxText(aName)));
    mfTagStarted = true;
    if (afClose) {
        CloseStartTag();
    }
}

void vxXMLBuilder::AddEndTag(const char* aName) {
    AddEnd(vxText(aName), strlen(vxText(aName)));
}

void vxXMLBuilder::CloseStartTag() {
    if (mfTagStarted) {
        mBuffer.Append(">", 1);
        mfTagStarted = false;
    }
}

void vxXMLBuilder::AddTag(const char* aName, const char* aText, uint32_t aMaxLength,
                          bool afDoubleEscape) {
    const char* theName = vxText(aName);
    const size_t theLength = strlen(theName);
    CloseStartTag();
    AddOpening(theName, theLength);
    const char* theText = vxText(aText);
    if (*theText == '\0') {
        mBuffer.Append("/>", 2);
        return;
    }
    mBuffer.Append(">", 1);
    vxEscape(mBuffer, theText, strlen(theText), aMaxLength, afDoubleEscape);
    AddClosing(theName, theLength);
}

void vxXMLBuilder::AddUInt32Tag(const char* aName, uint32_t aValue) {
    AddTag(aName, vxCString::Format("%lu", static_cast<unsigned long>(aValue)), 0, false);
}

void vxXMLBuilder::AddRawTag(const char* aName, const void* aData, uint32_t aSize) {
    const char* theName = vxText(aName);
    const size_t theLength = strlen(theName);
    CloseStartTag();
    AddOpening(theName, theLength);
    mBuffer.Append(">", 1);
    if (aData != NULL) {
        mBuffer.Append(static_cast<const char*>(aData), aSize);
    }
    AddClosing(theName, theLength);
}

void vxXMLBuilder::AddEmptyTag(const char* aName) {
    CloseStartTag();
    AddOpening(vxText(aName), strlen(vxText(aName)));
    mBuffer.Append("/>", 2);
}

void vxXMLBuilder::AddText(const char* aText) {
    CloseStartTag();
    vxEscape(mBuffer, vxText(aText), strlen(vxText(aText)), 0, false);
}

void vxXMLBuilder::AddText(const vxCString& aText) {
    CloseStartTag();
    vxEscape(mBuffer, aText.c_str(), aText.length(), 0, false);
}

void vxXMLBuilder::AddRaw(const char* aText) {
    CloseStartTag();
    mBuffer += vxText(aText);
}

vxCString vxXMLBuilder::TakeXML() {
    CloseStartTag();
    return vxTake(mBuffer);
}

vxCString vxXMLBuilder::Escape(const char* aText, uint32_t aLength, uint32_t aMaxLength,
                               bool afDoubleEscape) {
    const bool theIsLimited = aMaxLength != 0 && aMaxLength < aLength;
    vxGrowingBuffer theBuffer(aText == NULL ? 0 : theIsLimited ? aMaxLength : aLength);
    if (aText != NULL) {
        vxEscape(theBuffer, aText, aLength, aMaxLength, afDoubleEscape);
    }
    return vxTake(theBuffer);
}

void vxXMLBuilder::EscapeAndAdd(const char* aText, uint32_t aLength, uint32_t aMaxLength,
                                bool afDoubleEscape) {
    if (aText != NULL) {
        vxEscape(mBuffer, aText, aLength, aMaxLength, afDoubleEscape);
    }
}
