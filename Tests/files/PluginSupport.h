#pragma once

// Plug-in files for the tests, and the platform's plug-in operations under watch. Include it in one
// source of a test program: it stands in front of the platform's definitions.

#include <gmock/gmock.h>
#include <libvxOS/Plugin.h>

#include <string>
#include <vector>

#include "support/Forward.h"
#include "support/Reports.h"
#include "support/TempDir.h"
#include "vx/PluginHandler.h"

/// What was asked of the platform since the last clearing.
struct PlatformCalls {
    std::vector<std::string> mLoads;  // paths, oldest first
    int mUnloads = 0;
    size_t mFailingLoad = 0;  // the load, counted from 1, that fails; 0: none
};

inline PlatformCalls sPlatform;

vxOSPluginHandle vxPlugin_Load(const char* aPath) {
    sPlatform.mLoads.push_back(aPath);
    return sPlatform.mLoads.size() == sPlatform.mFailingLoad ? NULL
                                                             : VXTEST_REAL(vxPlugin_Load)(aPath);
}

void vxPlugin_Unload(vxOSPluginHandle aPlugin) {
    ++sPlatform.mUnloads;
    VXTEST_REAL(vxPlugin_Unload)(aPlugin);
}

inline const char* kProbeNames[] = {"ProbeOpen", "ProbeRead", "ProbeClose"};

/// Notes in a journal when it is finalized and when it is destroyed.
class ProbeHandler : public vxPluginHandler {
public:
    explicit ProbeHandler(std::vector<std::string>& aJournal, const char** aNames = kProbeNames,
                          unsigned int aCount = 3)
        : vxPluginHandler(aNames, aCount), mJournal(aJournal) {}
    ~ProbeHandler() override { Note("delete "); }
    void Finalize() override { Note("finalize "); }

    /// Calls an entry point.
    int Call(unsigned int anIndex) const {
        return reinterpret_cast<int (*)(void)>(GetFunction(anIndex))();
    }

private:
    void Note(const char* aWhat) { mJournal.push_back(std::string(aWhat) + GetFileName().c_str()); }

    std::vector<std::string>& mJournal;
};

/// A directory of plug-in files.
class PluginDir : public vxtest::TempDir {
public:
    std::string AddComplete(const std::string& aName) const { return Link(aName, VXTEST_COMPLETE); }
    std::string AddLacking(const std::string& aName) const { return Link(aName, VXTEST_LACKING); }
    std::string AddText(const std::string& aName) const { return Write(aName, "no library\n"); }
};

/// A log record at a level of the module of plug-ins.
inline auto IsRecord(int aLevel, const std::string& aText) {
    return testing::AllOf(testing::Field(&vxtest::LogRecord::mLevel, aLevel),
                          testing::Field(&vxtest::LogRecord::mModule, VXLOG_M_PLUGIN),
                          testing::Field(&vxtest::LogRecord::mText, aText));
}

/// The end of a duration: the text, a number of milliseconds and its unit.
inline auto IsDuration(const std::string& aText) {
    return testing::AllOf(testing::Field(&vxtest::LogRecord::mLevel, VXLOGLEVEL_INFO),
                          testing::Field(&vxtest::LogRecord::mModule, VXLOG_M_PLUGIN),
                          testing::Field(&vxtest::LogRecord::mText,
                                         testing::AllOf(testing::StartsWith(aText),
                                                        testing::ContainsRegex(" [0-9]+ ms\n$"))));
}
