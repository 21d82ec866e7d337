// Uses a little of everything, so that every library must be found when it is linked and started.

#include <vx/vx.h>

#include <cstdio>

int main() {
    vxJSONDocument theDocument("{\"answer\": 42}");
    uint32_t theAnswer = 0;
    const bool theFound = vxJSONPath::FetchUInt32(theDocument, "answer", &theAnswer);

    vxMutex theMutex;
    vxMutexLocker theLocker(&theMutex);

    const vxPathName thePath = vxPathName::MakeFilePath("/music/song.ogg");
    vxCString theText;
    theText.Printf("%lu %s", static_cast<unsigned long>(theAnswer), thePath.GetExtension().c_str());
    puts(theText.c_str());
    return theFound && theText == "42 ogg" ? 0 : 1;
}
