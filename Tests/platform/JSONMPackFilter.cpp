// Turns JSON into MPack ("encode") or MPack into JSON ("decode"), from standard input to standard
// output, so that another program can judge both. Input that is neither gives the result 1.

#include <libteskTools/JSON.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/JSONTree.h"

int main(int aCount, char** anArguments) {
    std::string theInput;
    char theBlock[65536];
    for (size_t theSize; (theSize = fread(theBlock, 1, sizeof(theBlock), stdin)) > 0;) {
        theInput.append(theBlock, theSize);
    }
    const bool fEncode = aCount == 2 && strcmp(anArguments[1], "encode") == 0;
    const vxtest::Tree theTree = fEncode ? vxtest::Parse(theInput) : vxtest::Decode(theInput);
    if (theTree == nullptr) {
        return 1;
    }
    const std::string theOutput =
        fEncode ? vxtest::Encode(theTree.get()) : vxtest::Print(theTree.get());
    fwrite(theOutput.data(), 1, theOutput.size(), stdout);
    return 0;
}
