#include "probes/ProbeLoader.h"

#include "probes/QOIProbe.h"
#include "vx/PathName.h"

namespace vxmedia {

vxCString ProbeLoader::GetPluginsPath() {
    return mDirectory.IsEmpty() ? vxPluginLoader::GetPluginsPath() : mDirectory;
}

int ProbeLoader::LoadPluginsStatic(const vxCString&, bool, bool) {
    vxPluginHandler* theHandler = NewPluginHandler();
    theHandler->Load(kQOIProbeFunctions, "probe_qoi");
    AddPlugin(theHandler);
    return 1;
}

bool ProbeLoader::IsPluginActive(const vxCString& aFileName) {
    for (unsigned int i = 0; i < GetPluginCount(); ++i) {
        if (vxPathName::MakeFilePath(GetPlugin(i)->GetFullPath()).GetFullName() == aFileName) {
            return false;
        }
    }
    return true;
}

}  // namespace vxmedia
