#include <vx/vx.h>

#include <cstdio>

int main() {
    vxJSONDocument theDocument(
        "{\"player\": {\"volume\": 40, \"tracks\": [\"intro\", \"theme\"]}}");
    uint32_t theVolume = 0;
    vxJSONPath::FetchUInt32(theDocument, "player.volume", &theVolume);
    vxJSONPath::Set(theDocument, "player.tracks[2]", "finale", true);
    printf("%lu %s\n", static_cast<unsigned long>(theVolume), theDocument.ToString(false).c_str());
    return 0;
}
