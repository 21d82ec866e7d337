// Plug-ins over dlopen. Symbols are resolved at once, so that a plug-in that lacks one fails when it
// is loaded and not in the middle of its work, and are kept local, so that two plug-ins may use the
// same names. The loader takes an empty path for the program itself, which is none.
//
// The loader waits for ever at a pipe, and dies with the whole process at a file that was cut short, as
// by a copy that was not finished: it maps what the headers promise. Files are looked at first.

#include <libteskTools/Memory.h>
#include <libvxLog/Log.h>
#include <libvxOS/Plugin.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned char kvxPlugin_Class = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;

bool vxReadAt(int aFD, uint64_t aPos, void* aBuffer, size_t aSize) {
    return pread(aFD, aBuffer, aSize, static_cast<off_t>(aPos)) == static_cast<ssize_t>(aSize);
}

// Whether the file ends before what its headers promise. What is no library of this machine at all is
// left to the loader, which tells.
bool vxIsCutShort(int aFD, uint64_t aFileSize) {
    ElfW(Ehdr) theHeader;
    if (!vxReadAt(aFD, 0, &theHeader, sizeof(theHeader)) ||
        memcmp(theHeader.e_ident, ELFMAG, SELFMAG) != 0 ||
        theHeader.e_ident[EI_CLASS] != kvxPlugin_Class ||
        theHeader.e_phentsize != sizeof(ElfW(Phdr))) {
        return false;
    }
    for (uint64_t i = 0; i < theHeader.e_phnum; ++i) {
        ElfW(Phdr) thePart;
        if (!vxReadAt(aFD, theHeader.e_phoff + i * sizeof(thePart), &thePart, sizeof(thePart))) {
            return true;
        }
        if (thePart.p_type == PT_LOAD &&
            (thePart.p_offset > aFileSize || thePart.p_filesz > aFileSize - thePart.p_offset)) {
            return true;
        }
    }
    return false;
}

// Returns why the loader must not see the file, or null. What cannot be opened is left to it.
const char* vxReasonAgainst(const char* aPath) {
    const int theFD = open(aPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (theFD < 0) {
        return NULL;
    }
    struct stat theState;
    const char* theReason = NULL;
    if (fstat(theFD, &theState) != 0 || !S_ISREG(theState.st_mode)) {
        theReason = "it is no regular file";
    } else if (vxIsCutShort(theFD, static_cast<uint64_t>(theState.st_size))) {
        theReason = "it is cut short";
    }
    close(theFD);
    return theReason;
}

}  // namespace

vxOSPluginHandle vxPlugin_Load(const char* aPath) {
    if (aPath == NULL || *aPath == '\0') {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "A plug-in needs a path\n");
        return NULL;
    }
    // A bare name is looked up by the loader.
    const char* theProblem = strchr(aPath, '/') == NULL ? NULL : vxReasonAgainst(aPath);
    if (theProblem != NULL) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "%s: %s\n", aPath, theProblem);
        return NULL;
    }
    void* theHandle = dlopen(aPath, RTLD_NOW | RTLD_LOCAL);
    if (theHandle == NULL) {
        const char* theReason = dlerror();
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_PLUGIN, "%s\n", theReason == NULL ? aPath : theReason);
    }
    return static_cast<vxOSPluginHandle>(theHandle);
}

vxPluginFunc_Generic vxPlugin_GetSymbol(vxOSPluginHandle aPlugin, const char* aName) {
    if (aPlugin == NULL || aName == NULL) {
        return NULL;
    }
    return reinterpret_cast<vxPluginFunc_Generic>(dlsym(aPlugin, aName));
}

void vxPlugin_Unload(vxOSPluginHandle aPlugin) {
    if (aPlugin != NULL) {
        dlclose(aPlugin);
    }
}

char* vxPlugin_GetDefaultPath(void) {
    const char* thePath = getenv("VXPLUGINPATH");
    return vxStrdup(thePath != NULL && *thePath != 0 ? thePath : "/usr/lib/vx/plugins");
}

const char* vxPlugin_GetDebugReleaseSuffix(void) {
    return "";
}

const char* vxPlugin_GetExtension(void) {
    return ".so";
}
