// A stopwatch that reports to three places. The file object stands for a measurement that runs: it
// is there even where the file itself could not be opened.

#include "vx/BenchMark.h"

#include <libvxLog/Console.h>

#include "vx/Config.h"
#include "vx/File.h"
#include "vx/PathName.h"

namespace {

// Beside the configuration that the program writes.
vxCString vxBenchMarkPath(const vxCString& aFileName) {
    vxCString theReadPath;
    vxCString theWritePath;
    vxConfigConfig::GetConfigPaths(theReadPath, theWritePath, "ConfigPath.ini");
    return vxPathName::MakeFilePath(theWritePath, aFileName).GetFullPath();
}

}  // namespace

vxBenchMark::vxBenchMark(vxLogModule aLogModule, const char* aFileName, const char* aTitle)
    : vxBenchMark(aLogModule, aFileName) {
    Start(aTitle, true);
}

vxBenchMark::vxBenchMark(vxLogModule aLogModule, const char* aFileName)
    : mFile(NULL), mFileName(aFileName), mLogModule(aLogModule) {
    vxChrono_S_Init(&mChrono);
}

void vxBenchMark::Start(const char* aTitle, bool afEnabled) {
    if (!afEnabled) {
        return;
    }
    const char* theTitle = aTitle == NULL ? "" : aTitle;
    OpenFile();
    WriteLine(theTitle, "\n");
    vxConsole_Printf("%s\n", theTitle);
    VXLOG(VXLOGLEVEL_INFO, mLogModule, "%s\n", theTitle);
    vxChrono_S_Init(&mChrono);
    vxChrono_Start_S(&mChrono);
}

void vxBenchMark::Stop() {
    if (mFile == NULL) {
        return;
    }
    uint32_t theSeconds;
    uint32_t theMilliseconds;
    vxChrono_GetTime_S_MS(&mChrono, &theSeconds, &theMilliseconds);
    vxCString theText;
    theText.Printf("Duration: %lu.%03lu seconds", static_cast<unsigned long>(theSeconds),
                   static_cast<unsigned long>(theMilliseconds));
    WriteLine(theText, "\n\n");
    vxConsole_Printf("%s\n\n", theText.c_str());
    VXLOG(VXLOGLEVEL_INFO, mLogModule, "%s\n", theText.c_str());
    delete mFile;
    mFile = NULL;
}

void vxBenchMark::OpenFile() {
    const vxCString thePath = vxBenchMarkPath(mFileName);
    delete mFile;
    mFile = new vxFile;
    if (!vxFile::Exists(thePath)) {
        mFile->Create(thePath, false, vxFileAccessMode_ReadWrite);
    }
    mFile->Open(thePath, vxFileOpenMode_Write | vxFileOpenMode_Append, vxFileAccessMode_ReadWrite);
}

void vxBenchMark::WriteLine(const char* aText, const char* anEnd) {
    if (mFile->IsOpened()) {
        const vxCString theLine = vxCString(aText) + anEnd;
        mFile->Write(theLine.c_str(), theLine.length());
    }
}
