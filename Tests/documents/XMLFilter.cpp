// Reads XML files and writes each again beside itself, as "<file>.out", so that another program can
// judge both. A file that is refused has no such companion; the reason goes to standard output.

#include <vx/Error.h>
#include <vx/PathName.h>
#include <vx/XML.h>
#include <vx/XMLParser.h>

#include <cstdio>

int main(int aCount, char** anArguments) {
    int theResult = 0;
    for (int i = 1; i < aCount; ++i) {
        vxXMLDocument theDocument;
        vxError theError;
        if (!vxXMLParser().ParseFile(vxPathName::MakeFilePath(anArguments[i]), theDocument,
                                     theError)) {
            printf("%s: %s\n", anArguments[i], theError.GetErrorStr().c_str());
        } else if (!theDocument.Save(vxCString(anArguments[i]) + ".out", true)) {
            theResult = 1;
        }
    }
    return theResult;
}
