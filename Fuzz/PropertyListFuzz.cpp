// Any text is refused with a stated result at a place in the text, or read: what was read and written
// as JSON reads back the same, and a property list can be built of it and walked. A sink that refuses
// an event is the last to hear of it.

#include <libteskTools/PropertyList.h>
#include <vx/Serialize.h>

#include <algorithm>

#include "Input.h"

namespace {

/// Writes JSON until it has been sent a number of events.
class StoppingFormatter : public vxJSONFormatter {
public:
    static constexpr int kStopped = 1000;

    explicit StoppingFormatter(int aCount) : mLeft(aCount) {}

    int MapBegin() override { return Count(vxJSONFormatter::MapBegin()); }
    int MapKey(const char* aKey, bool afQuote) override {
        return Count(vxJSONFormatter::MapKey(aKey, afQuote));
    }
    int MapEnd() override { return Count(vxJSONFormatter::MapEnd()); }
    int ArrayEnd() override { return Count(vxJSONFormatter::ArrayEnd()); }
    int String(const char* aText, bool afQuote) override {
        return Count(vxJSONFormatter::String(aText, afQuote));
    }
    int U32(uint32_t aValue) override { return Count(vxJSONFormatter::U32(aValue)); }

private:
    int Count(int aResult) {
        vxfuzz::Expect(mLeft >= 0, "nothing is sent behind a refusal");
        return --mLeft < 0 ? static_cast<int>(kStopped) : aResult;
    }

    int mLeft;  // events until one is refused; negative: one was
};

/// Sends the lists in a list, too.
class DeepSerializer : public vxPropertyListSerializer {
public:
    int SerializeData(vxData* aData, vxISerialize& aSink) override {
        return vxData_GetType(aData) == kvxDataType_propertyList
                   ? Serialize(vxData_Get_propertyList(aData), aSink)
                   : vxPropertyListSerializer::SerializeData(aData, aSink);
    }
};

void CheckPlace(const std::string& aText, int aLine, int aColumn) {
    const auto theLines = 1 + std::count(aText.begin(), aText.end(), '\n');
    vxfuzz::Expect(aLine >= 1 && aLine <= theLines, "the line is one of the text");
    vxfuzz::Expect(aColumn >= 1 && static_cast<size_t>(aColumn) <= aText.size() + 1,
                   "the column is one of the text");
}

void ReadAgain(const std::string& aText, bool afHuman) {
    vxJSONFormatter theFirst;
    vxJSONFormatter theSecond;
    theFirst.SetHuman(afHuman);
    theSecond.SetHuman(afHuman);
    vxJSONFormatter::Parse(aText.c_str(), theFirst);
    vxfuzz::Expect(vxJSONFormatter::Parse(theFirst.Result(), theSecond) == kvxJSONParse_Success,
                   "written text is read");
    vxfuzz::Expect(theFirst.Result() == theSecond.Result(), "written text reads back the same");
}

void Build(const std::string& aText) {
    vxPropertyListFormatter theBuilder;
    vxJSONFormatter::Parse(aText.c_str(), theBuilder);
    vxPropertyList* theList = theBuilder.TakePropertyList();
    vxJSONFormatter theFormatter;
    DeepSerializer().Serialize(theList, theFormatter);
    vxPropertyList_Delete(theList);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    StoppingFormatter theStopping(theInput.Byte());
    const std::string theText = theInput.Rest().c_str();
    int theLine = 0;
    int theColumn = 0;
    vxJSONFormatter theFormatter;
    const int theResult = vxJSONFormatter::Parse(theText.c_str(), theFormatter, theLine, theColumn);
    vxfuzz::Expect(theResult >= kvxJSONParse_Success && theResult <= kvxJSONParse_BadComment,
                   "a stated result");
    CheckPlace(theText, theLine, theColumn);
    const int theOther = vxJSONFormatter::Parse(theText.c_str(), theStopping);
    vxfuzz::Expect(theOther == theResult || theOther == StoppingFormatter::kStopped,
                   "the same result, or the refusal");
    if (theResult == kvxJSONParse_Success) {
        ReadAgain(theText, false);
        ReadAgain(theText, true);
    }
    Build(theText);
    return 0;
}
