#include "probes/ProbeHandler.h"

namespace vxmedia {

namespace {

// Positions in the list of names.
enum { kProbe_Format, kProbe_Endings, kProbe_Recognize, kProbe_Read, kProbe_Count };

const char* sFunctionNames[kProbe_Count] = {"vxmedia_probe1_format", "vxmedia_probe1_endings",
                                            "vxmedia_probe1_recognize", "vxmedia_probe1_read"};

const char* OrEmpty(const char* aText) {
    return aText == NULL ? "" : aText;
}

}  // namespace

ProbeHandler::ProbeHandler() : vxPluginHandler(sFunctionNames, kProbe_Count) {}

const char* ProbeHandler::GetFormat() const {
    return OrEmpty(
        reinterpret_cast<decltype(&vxmedia_probe1_format)>(GetFunction(kProbe_Format))());
}

const char* ProbeHandler::GetEndings() const {
    return OrEmpty(
        reinterpret_cast<decltype(&vxmedia_probe1_endings)>(GetFunction(kProbe_Endings))());
}

bool ProbeHandler::Recognize(const vxmedia_source& aSource) const {
    return reinterpret_cast<decltype(&vxmedia_probe1_recognize)>(GetFunction(kProbe_Recognize))(
               &aSource) != 0;
}

const char* ProbeHandler::Read(const vxmedia_source& aSource, vxmedia_facts& aFacts) const {
    return reinterpret_cast<decltype(&vxmedia_probe1_read)>(GetFunction(kProbe_Read))(&aSource,
                                                                                      &aFacts);
}

}  // namespace vxmedia
