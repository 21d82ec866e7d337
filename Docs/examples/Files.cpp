// Lists a directory and prints the first line of each text file in it.

#include <vx/vx.h>

#include <cstdio>

int main(int argc, char** argv) {
    vxDir theDir(argc > 1 ? argv[1] : ".");
    vxPathName thePath;
    for (bool theMore = theDir.GetFirst(thePath, "*.txt", vxDIR_FILES); theMore;
         theMore = theDir.GetNext(thePath)) {
        vxTextFile theFile(thePath.c_str(), 80);
        vxCString theLine;
        theFile.NextLine(theLine);
        printf("%s: %s\n", thePath.GetFullName().c_str(), theLine.c_str());
    }
    return 0;
}
