// Levels by module: one table that every level test reads, filled from VXLOG when the library is
// loaded.

#include <libvxLog/Handlers.h>
#include <libvxLog/Log.h>

#include <strings.h>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

uint8_t _vxLogLevels[0x10000];

namespace {

struct vxNamedNumber {
    const char* mName;
    int mNumber;
};

constexpr vxNamedNumber kvxLog_Levels[] = {
    {"none", VXLOGLEVEL_NONE}, {"error", VXLOGLEVEL_ERROR}, {"warning", VXLOGLEVEL_WARNING},
    {"info", VXLOGLEVEL_INFO}, {"debug", VXLOGLEVEL_DEBUG},
};

constexpr vxNamedNumber kvxLog_Modules[] = {
    {"default", VXLOG_M_DEFAULT},     {"query", VXLOG_M_QUERY},         {"select", VXLOG_M_SELECT},
    {"plugin", VXLOG_M_PLUGIN},       {"filecache", VXLOG_M_FILECACHE}, {"file", VXLOG_M_FILE},
    {"threading", VXLOG_M_THREADING}, {"json", VXLOG_M_JSON},
};

constexpr int kvxLog_NotUnderstood = -1;

// Reads a name of the table, in any case, or a decimal number up to `aMax`.
template <size_t Count>
int vxReadNumber(std::string_view aText, const vxNamedNumber (&aTable)[Count], int aMax) {
    for (const vxNamedNumber& theRow : aTable) {
        const std::string_view theName = theRow.mName;
        if (theName.size() == aText.size() &&
            strncasecmp(theName.data(), aText.data(), aText.size()) == 0) {
            return theRow.mNumber;
        }
    }
    int theNumber = kvxLog_NotUnderstood;
    const char* theEnd = aText.data() + aText.size();
    const auto theResult = std::from_chars(aText.data(), theEnd, theNumber);
    const bool fOk = theResult.ec == std::errc() && theResult.ptr == theEnd && theNumber >= 0 &&
                     theNumber <= aMax;
    return fOk ? theNumber : kvxLog_NotUnderstood;
}

std::string_view vxTrimmed(std::string_view aText) {
    while (!aText.empty() && aText.front() == ' ') {
        aText.remove_prefix(1);
    }
    while (!aText.empty() && aText.back() == ' ') {
        aText.remove_suffix(1);
    }
    return aText;
}

// Applies one "level" or "module=level".
bool vxApplyEntry(std::string_view anEntry) {
    int theModule = kvxLogAllModules;
    const size_t theEquals = anEntry.find('=');
    if (theEquals != std::string_view::npos) {
        theModule = vxReadNumber(vxTrimmed(anEntry.substr(0, theEquals)), kvxLog_Modules, 0xFFFF);
        anEntry.remove_prefix(theEquals + 1);
    }
    const int theLevel = vxReadNumber(vxTrimmed(anEntry), kvxLog_Levels, VXLOGLEVEL_DEBUG);
    if (theModule == kvxLog_NotUnderstood || theLevel == kvxLog_NotUnderstood) {
        return false;
    }
    vxLog_SetLevel(static_cast<vxLogModule>(theModule), theLevel);
    return true;
}

// Applies the entries with a module, or those without.
bool vxApplyEntries(std::string_view aText, bool afWithModule) {
    bool fOk = true;
    while (!aText.empty()) {
        const size_t theLength = aText.find(',');
        const std::string_view theEntry = vxTrimmed(aText.substr(0, theLength));
        const bool fHasModule = theEntry.find('=') != std::string_view::npos;
        if (!theEntry.empty() && fHasModule == afWithModule) {
            fOk = vxApplyEntry(theEntry) && fOk;
        }
        aText.remove_prefix(theLength == std::string_view::npos ? aText.size() : theLength + 1);
    }
    return fOk;
}

__attribute__((constructor)) void vxReadEnvironment() {
    const char* theText = secure_getenv("VXLOG");
    if (theText != nullptr && !vxLog_SetLevels(theText)) {
        fprintf(stderr, "VXLOG: '%s' is not understood\n", theText);
    }
}

}  // namespace

void vxLog_SetLevel(vxLogModule aModule, int aLevel) {
    const int theLevel = aLevel < VXLOGLEVEL_NONE    ? VXLOGLEVEL_NONE
                         : aLevel > VXLOGLEVEL_DEBUG ? VXLOGLEVEL_DEBUG
                                                     : aLevel;
    const uint8_t theValue = static_cast<uint8_t>(theLevel ^ _VXLOG_INITIAL_LEVEL);
    if (aModule != kvxLogAllModules) {
        __atomic_store_n(&_vxLogLevels[aModule], theValue, __ATOMIC_RELAXED);
        return;
    }
    for (uint8_t& theEntry : _vxLogLevels) {
        __atomic_store_n(&theEntry, theValue, __ATOMIC_RELAXED);
    }
}

bool vxLog_SetLevels(const char* aText) {
    const bool fGeneral = vxApplyEntries(aText, false);
    const bool fModules = vxApplyEntries(aText, true);
    return fGeneral && fModules;
}

const char* vxLog_GetModuleName(vxLogModule aModule) {
    for (const vxNamedNumber& theRow : kvxLog_Modules) {
        if (theRow.mNumber == aModule) {
            return theRow.mName;
        }
    }
    return nullptr;
}

const char* vxLog_GetLevelName(int aLevel) {
    for (const vxNamedNumber& theRow : kvxLog_Levels) {
        if (theRow.mNumber == aLevel) {
            return theRow.mName;
        }
    }
    return nullptr;
}
