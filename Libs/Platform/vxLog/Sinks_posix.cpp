// A record becomes one line: time, level, module, source position, text. Whatever the text holds,
// only a record starts a line at its first column: line feeds inside are followed by blanks, and
// other control bytes are written as \xNN, for texts come from outside.
//
// The log file is one process's. When a line would lift it above its limit, the file is renamed,
// replacing the previous one, and a new one is begun: two times the limit bounds what is used.

#include "Sinks.h"

#include <libvxLog/Handlers.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <syslog.h>
#include <time.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace {

std::mutex sMutex;                     // guards everything below, and the order of lines
int sFile = -1;                        // -1: no file sink
char* sFilePath = nullptr;             // owned
size_t sFileSize = 0;                  // bytes in the file
size_t sFileMaxSize = 0;               // 0: never renamed
char* sSyslogName = nullptr;           // owned; null: no syslog sink
bool sfStandardErrorIsWanted = false;  // beside the other sinks

constexpr size_t kvxLog_DefaultFileSize = 1024 * 1024;

std::string vxNow() {
    timespec theTime;
    clock_gettime(CLOCK_REALTIME, &theTime);
    tm theFields;
    localtime_r(&theTime.tv_sec, &theFields);
    char theText[64];
    const size_t theLength = strftime(theText, sizeof(theText), "%Y-%m-%d %H:%M:%S", &theFields);
    snprintf(theText + theLength, sizeof(theText) - theLength, ".%03ld", theTime.tv_nsec / 1000000);
    return theText;
}

void vxAppendText(std::string& aLine, std::string_view aText) {
    while (!aText.empty() && aText.back() == '\n') {
        aText.remove_suffix(1);
    }
    for (const char theChar : aText) {
        const unsigned char theByte = static_cast<unsigned char>(theChar);
        if (theChar == '\n') {
            aLine += "\n    ";
        } else if ((theByte < 0x20 && theChar != '\t') || theByte == 0x7F) {
            char theEscape[5];
            snprintf(theEscape, sizeof(theEscape), "\\x%02X", static_cast<unsigned>(theByte));
            aLine += theEscape;
        } else {
            aLine += theChar;
        }
    }
}

// "json Libs/Internal/vx/documents/JSON.cpp:12: text"
std::string vxBodyOf(const vxLogRecord& aRecord) {
    const char* theModule = vxLog_GetModuleName(aRecord.mModule);
    std::string theBody = theModule != nullptr ? theModule : std::to_string(aRecord.mModule);
    theBody += ' ';
    theBody += aRecord.mFile;
    theBody += ':';
    theBody += std::to_string(aRecord.mLine);
    theBody += ": ";
    vxAppendText(theBody, aRecord.mText);
    return theBody;
}

std::string vxLineOf(const vxLogRecord& aRecord, const std::string& aBody) {
    const char* theLevel = vxLog_GetLevelName(aRecord.mLevel);
    return vxNow() + ' ' + (theLevel != nullptr ? theLevel : "?") + ' ' + aBody + '\n';
}

bool vxWriteAll(int aFile, const std::string& aText) {
    size_t theDone = 0;
    while (theDone < aText.size()) {
        const ssize_t theResult = write(aFile, aText.data() + theDone, aText.size() - theDone);
        if (theResult > 0) {
            theDone += static_cast<size_t>(theResult);
        } else if (theResult == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

void vxCloseFile() {
    if (sFile != -1) {
        close(sFile);
        sFile = -1;
    }
}

// Only a regular file is ever renamed: a limit of 0 keeps pipes and terminals as they are.
bool vxOpenFile(size_t aMaxSize) {
    sFile = open(sFilePath, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0640);
    struct stat theStat;
    if (sFile == -1 || fstat(sFile, &theStat) != 0) {
        vxCloseFile();
        return false;
    }
    sFileSize = static_cast<size_t>(
        std::min(static_cast<uint64_t>(theStat.st_size), static_cast<uint64_t>(SIZE_MAX)));
    sFileMaxSize = S_ISREG(theStat.st_mode) ? aMaxSize : 0;
    return true;
}

void vxRotateFile() {
    const std::string theOldPath = std::string(sFilePath) + ".1";
    if (rename(sFilePath, theOldPath.c_str()) != 0) {
        // The bound matters more than the old lines.
        sFileSize = ftruncate(sFile, 0) == 0 ? 0 : sFileSize;
        return;
    }
    const size_t theMaxSize = sFileMaxSize;
    vxCloseFile();
    vxOpenFile(theMaxSize);
}

bool vxWriteToFile(const std::string& aLine) {
    // A file that could not be begun is tried again with each record.
    if (sFile == -1 && !vxOpenFile(sFileMaxSize)) {
        return false;
    }
    const size_t theRoom = sFileMaxSize - std::min(sFileSize, sFileMaxSize);
    if (sFileMaxSize > 0 && sFileSize > 0 && aLine.size() > theRoom) {
        vxRotateFile();
    }
    if (sFile == -1 || !vxWriteAll(sFile, aLine)) {
        return false;
    }
    sFileSize += aLine.size();
    return true;
}

int vxSyslogPriority(int aLevel) {
    switch (aLevel) {
        case VXLOGLEVEL_ERROR:
            return LOG_ERR;
        case VXLOGLEVEL_WARNING:
            return LOG_WARNING;
        case VXLOGLEVEL_INFO:
            return LOG_INFO;
        default:
            return LOG_DEBUG;
    }
}

void vxReplaceText(char*& aText, const char* aNewText) {
    free(aText);
    aText = aNewText != nullptr ? strdup(aNewText) : nullptr;
}

__attribute__((constructor)) void vxReadEnvironment() {
    const char* thePath = secure_getenv("VXLOGFILE");
    if (thePath != nullptr && *thePath != '\0' && !vxLog_SetFile(thePath, kvxLog_DefaultFileSize)) {
        fprintf(stderr, "VXLOGFILE: cannot open '%s': %s\n", thePath, strerror(errno));
    }
}

}  // namespace

void vxWriteToSinks(const vxLogRecord& aRecord) {
    const std::string theBody = vxBodyOf(aRecord);
    const std::lock_guard<std::mutex> theLock(sMutex);
    const std::string theLine = vxLineOf(aRecord, theBody);
    bool fIsWritten = false;
    if (sFilePath != nullptr) {
        fIsWritten = vxWriteToFile(theLine);
    }
    if (sSyslogName != nullptr) {
        syslog(vxSyslogPriority(aRecord.mLevel), "%s", theBody.c_str());
        fIsWritten = true;
    }
    if (!fIsWritten || sfStandardErrorIsWanted) {
        fwrite(theLine.data(), 1, theLine.size(), stderr);
    }
}

bool vxLog_SetFile(const char* aPath, size_t aMaxSize) {
    const std::lock_guard<std::mutex> theLock(sMutex);
    vxCloseFile();
    vxReplaceText(sFilePath, aPath);
    if (aPath == nullptr || vxOpenFile(aMaxSize)) {
        return true;
    }
    vxReplaceText(sFilePath, nullptr);
    return false;
}

void vxLog_SetSyslog(const char* aName) {
    const std::lock_guard<std::mutex> theLock(sMutex);
    if (sSyslogName != nullptr) {
        closelog();
    }
    vxReplaceText(sSyslogName, aName);
    if (sSyslogName != nullptr) {
        openlog(sSyslogName, LOG_PID, LOG_USER);
    }
}

void vxLog_SetStandardError(bool afWanted) {
    const std::lock_guard<std::mutex> theLock(sMutex);
    sfStandardErrorIsWanted = afWanted;
}
