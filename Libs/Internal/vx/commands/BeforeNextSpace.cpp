// The words of a console line, one at a time. Code that takes many uses the tokenizer itself.

#include "vx/BeforeNextSpace.h"

#include "CLITokenizer.h"

vxCString BeforeNextSpace(vxCString& aText, bool* aFound, bool afUnquoteSingle) {
    vxCLITokenizer theTokenizer(aText, afUnquoteSingle);
    vxCString theToken;
    const bool theFound = theTokenizer.Next(theToken);
    if (aFound != NULL) {
        *aFound = theFound;
    }
    aText = theTokenizer.Rest();
    return theToken;
}
