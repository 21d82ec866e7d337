// Search criteria: a parser that knows two properties, and an evaluator that reads them.

#include <vx/vx.h>

#include <cstdio>

namespace {

enum { kTitle, kSeconds };

struct Song {
    const char* mTitle;
    int mSeconds;
};

constexpr Song kSongs[] = {
    {"All you need is love", 237}, {"Love me do", 142}, {"Yesterday", 125}, {"Help", 138}};

class SongParser : public vxExpressionParser {
public:
    using vxExpressionParser::vxExpressionParser;
    int GetPropertyID(const vxCString& aName) override {
        return aName == "dc:title" ? kTitle : aName == "seconds" ? kSeconds : -1;
    }
};

class SongEvaluator : public vxSearchExpressionEvaluator {
public:
    bool Evaluate(vxRelExpression* anExpression) override {
        return anExpression->GetPropertyID() == kTitle ? anExpression->MatchString(mSong->mTitle)
                                                       : anExpression->MatchInt(mSong->mSeconds);
    }
    const Song* mSong = nullptr;
};

void Find(const char* aText) {
    SongParser theParser(aText);
    if (!theParser.Parse()) {
        printf("byte %lu: expected %s\n", static_cast<unsigned long>(theParser.GetErrorPosition()),
               theParser.GetExpected());
        return;
    }
    SongEvaluator theEvaluator;
    for (const Song& theSong : kSongs) {
        theEvaluator.mSong = &theSong;
        if (theParser.Evaluate(&theEvaluator)) {
            printf("%s\n", theSong.mTitle);
        }
    }
}

}  // namespace

int main() {
    Find("dc:title contains \"love\" and seconds < \"200\" or dc:title like \"Y*\"");
    Find("dc:title = love");
    Find("artist exists true");
    return 0;
}
