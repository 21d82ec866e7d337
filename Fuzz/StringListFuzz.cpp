// Splitting and joining lead back; the tokenizer ends and covers the text in each of its modes.

#include <vx/CStringTokenizer.h>
#include <vx/StringList.h>

#include "Input.h"

namespace {

void SplitAndJoin(const std::string& aText, char aSeparator, char anEscape) {
    const vxStringList theList(aText.c_str(), aSeparator, anEscape);
    const vxCString theJoined = theList.GetString(anEscape);
    const vxStringList theAgain(theJoined, aSeparator, anEscape);
    if (anEscape == 0) {
        vxfuzz::Expect(theJoined == aText.c_str(), "without an escape joining leads back");
    }
    vxfuzz::Expect(theList.GetCount() == 0 || theJoined.length() < aText.size() * 2 + 1,
                   "joining adds at most an escape for each byte");
    static_cast<void>(theAgain);
}

void Tokenize(const std::string& aText, const std::string& aDelimiters, int aMode) {
    vxCStringTokenizer theTokenizer(aText.c_str(), aDelimiters.c_str(),
                                    static_cast<vxCStringTokenizerMode>(aMode));
    const size_t theCount = theTokenizer.CountTokens();
    size_t theTaken = 0;
    while (theTokenizer.HasMoreTokens()) {
        theTokenizer.GetNextToken();
        ++theTaken;
        vxfuzz::Expect(theTaken <= aText.size() + 1, "every token takes a byte or ends the text");
    }
    vxfuzz::Expect(
        theTaken == theCount || (theTaken == theCount + 1 && aMode == kTokenizerMode_Strtok),
        "as many tokens as were counted");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxfuzz::Input theInput(aData, aSize);
    const int theMode = theInput.Byte() % 5;
    const char theSeparator = static_cast<char>(theInput.Byte() | 1);
    const char theEscape = static_cast<char>(theInput.Byte());
    const std::string theDelimiters = theInput.Line().c_str();
    const std::string theText = theInput.Rest().c_str();
    SplitAndJoin(theText, theSeparator, theEscape);
    Tokenize(theText, theDelimiters, theMode);
    return 0;
}
