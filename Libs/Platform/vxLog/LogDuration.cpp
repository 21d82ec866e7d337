// A scope keeps its label and its start; what it says at either end is one row of a table.

#include <libvxLog/LogDuration.h>

#include "Format.h"

#include <chrono>
#include <memory>

struct _vxLogDurationScope {
    int mLevel;
    vxLogModule mModule;
    vxLogDurationKind mKind;
    const char* mFile;
    int mLine;
    std::string mLabel;
    std::chrono::steady_clock::time_point mStart;
};

namespace {

struct vxDurationTexts {
    vxLogDurationKind mKind;
    const char* mBegin[2];  // before and behind the label; nulls where nothing is said
    const char* mEnd[2];    // before and behind the label; the milliseconds follow
};

constexpr vxDurationTexts kvxLogDuration_Texts[] = {
    {kvxLogDuration_Duration, {nullptr, nullptr}, {"", ": "}},
    {kvxLogDuration_Start, {"", "..."}, {"", ": done in "}},
    {kvxLogDuration_Load, {"Loading ", "..."}, {"Loaded ", " in "}},
    {kvxLogDuration_Unload, {"Unloading ", "..."}, {"Unloaded ", " in "}},
};

const vxDurationTexts& vxTextsOf(vxLogDurationKind aKind) {
    for (const vxDurationTexts& theTexts : kvxLogDuration_Texts) {
        if (theTexts.mKind == aKind) {
            return theTexts;
        }
    }
    return kvxLogDuration_Texts[0];
}

}  // namespace

_vxLogDurationScope* _vxLogDuration_Begin(int aLevel, vxLogModule aModule, vxLogDurationKind aKind,
                                          const char* aFile, int aLine, const char* aFormat, ...) {
    std::string theLabel;
    va_list theArgs;
    va_start(theArgs, aFormat);
    vxAppendFormatted(theLabel, aFormat, theArgs);
    va_end(theArgs);

    const auto& theTexts = vxTextsOf(aKind).mBegin;
    if (theTexts[0] != nullptr) {
        _vxLog_Begin(aLevel, aModule, aFile, aLine);
        vxLog_Append_F("%s%s%s\n", theTexts[0], theLabel.c_str(), theTexts[1]);
        vxLog_End();
    }
    return new _vxLogDurationScope{
        aLevel, aModule, aKind, aFile, aLine, theLabel, std::chrono::steady_clock::now()};
}

void _vxLogDuration_End(_vxLogDurationScope* aScope) {
    const std::unique_ptr<_vxLogDurationScope> theScope(aScope);
    const auto theDuration = std::chrono::steady_clock::now() - theScope->mStart;
    const auto theMilliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(theDuration).count();
    const auto& theTexts = vxTextsOf(theScope->mKind).mEnd;
    _vxLog_Begin(theScope->mLevel, theScope->mModule, theScope->mFile, theScope->mLine);
    vxLog_Append_F("%s%s%s%lu ms\n", theTexts[0], theScope->mLabel.c_str(), theTexts[1],
                   static_cast<unsigned long>(theMilliseconds));
    vxLog_End();
}
