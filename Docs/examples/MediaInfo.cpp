// Three media infos, and the titles of those that match search criteria.

#include <vx/vx.h>

#include <cstdio>

namespace {

/// Properties have the names of keys.
class KeyParser : public vxExpressionParser {
public:
    using vxExpressionParser::vxExpressionParser;

    int GetPropertyID(const vxCString& aName) override { return aName.length() == 2 ? 0 : -1; }
};

class InfoEvaluator : public vxSearchExpressionEvaluator {
public:
    bool Evaluate(vxRelExpression* anExpression) override {
        const vxCString& theKey = anExpression->GetPropertyName();
        return theKey == kvxInfo_Duration ? anExpression->MatchInt(mInfo->GetInt(theKey, 0))
                                          : anExpression->MatchString(mInfo->Peek(theKey));
    }

    const vxMediaInfo* mInfo = NULL;
};

void Fill(vxMediaInfo& anInfo, const char* aPath, const char* aClass, int aDuration) {
    anInfo.SetFilePath(aPath);
    anInfo.Set(kvxInfo_ClassName, aClass, true);
    anInfo.Set(kvxInfo_Duration, aDuration, true);
    anInfo.Finalize(false);
}

}  // namespace

int main() {
    vxMediaInfo theInfos[3];
    Fill(theInfos[0], "/music/Blue.mp3", "object.item.audioItem", 185000);
    Fill(theInfos[1], "/music/Carey.mp3", "object.item.audioItem", 182000);
    Fill(theInfos[2], "/films/Blue.mpg", "object.item.videoItem", 5400000);

    KeyParser theParser(
        "cn derivedfrom \"object.item.audio\" and (ti like \"B*\" or du < \"60000\")");
    if (!theParser.Parse()) {
        printf("expected %s\n", theParser.GetExpected());
        return 1;
    }
    InfoEvaluator theEvaluator;
    for (const vxMediaInfo& theInfo : theInfos) {
        theEvaluator.mInfo = &theInfo;
        if (theParser.Evaluate(&theEvaluator)) {
            printf("%s: %s\n", theInfo.GetTitle().c_str(), theInfo.GetSerializedInfo().c_str());
        }
    }
    return 0;
}
