#include "Arguments.h"

#include <libvxLog/Console.h>

#include "TerminalText.h"
#include "WholeFile.h"
#include "vx/CommandLineParser.h"
#include "vx/DataBuffer.h"

namespace vxmedia {

namespace {

constexpr unsigned int kArguments_MaxScriptSize = 64 * 1024 * 1024;  // bytes

const vxCommandLineDescription kArguments[] = {
    {vxCommandLineEntryType_Switch, "h", "show this help", vxCommandLineParameter_None,
     vxCommandLineFlag_HelpOption},
    {vxCommandLineEntryType_Switch, "q", "quiet: no banner", vxCommandLineParameter_None,
     vxCommandLineFlag_None},
    {vxCommandLineEntryType_Option, "c", "directory of the configuration",
     vxCommandLineParameter_String, vxCommandLineFlag_None},
    {vxCommandLineEntryType_Option, "e", "execute these commands, separated by ';', then end",
     vxCommandLineParameter_String, vxCommandLineFlag_None},
    {vxCommandLineEntryType_Option, "s", "execute the lines of this script file, then end",
     vxCommandLineParameter_String, vxCommandLineFlag_None},
    {vxCommandLineEntryType_Parameter, NULL, "directory", vxCommandLineParameter_String,
     vxCommandLineFlag_ParameterOptional | vxCommandLineFlag_ParameterMultiple},
    {vxCommandLineEntryType_None, NULL, NULL, vxCommandLineParameter_None, vxCommandLineFlag_None},
};

bool LoadScript(const vxCString& aPath, std::string& aLines) {
    vxDataBuffer theBuffer;
    const vxCString theError = ReadWholeFile(aPath, theBuffer, kArguments_MaxScriptSize);
    if (!theError.IsEmpty()) {
        vxConsole_Printf("%s\n", EscapeForTerminal(theError, EscapeMode::Text).c_str());
        return false;
    }
    aLines.append(static_cast<const char*>(theBuffer.data()), theBuffer.size());
    aLines += '\n';
    return true;
}

}  // namespace

// Quotes open and close as they do for the words of a command. Beyond that, in double quotes a
// backslash keeps what follows, as it does in search criteria and in JSON, which are taken unparsed.
std::string SplitCommands(const char* aText) {
    std::string theLines = aText;
    char theQuote = 0;
    bool theIsEscaped = false;
    for (char& theByte : theLines) {
        if (theByte == '\n') {
            theQuote = 0;
            theIsEscaped = false;
        } else if (theIsEscaped) {
            theIsEscaped = false;
        } else if (theQuote == '"' && theByte == '\\') {
            theIsEscaped = true;
        } else if (theQuote != 0) {
            theQuote = theByte == theQuote ? '\0' : theQuote;
        } else if (theByte == '"' || theByte == '\'') {
            theQuote = theByte;
        } else if (theByte == ';') {
            theByte = '\n';
        }
    }
    return theLines + "\n";
}

ArgumentResult ReadArguments(int anArgumentCount, char** anArguments, ProgramOptions& anOptions) {
    vxCommandLineParser theParser(kArguments, anArgumentCount, anArguments);
    const int theResult = theParser.Parse(true);
    if (theResult != 0) {
        return theResult < 0 ? ArgumentResult::Help : ArgumentResult::Error;
    }
    anOptions.mfQuiet = theParser.Found("q");
    anOptions.mfHasConfigDirectory = theParser.Found("c", &anOptions.mConfigDirectory);
    vxCString theValue;
    if (theParser.Found("s", &theValue)) {
        anOptions.mfHasLines = true;
        if (!LoadScript(theValue, anOptions.mLines)) {
            return ArgumentResult::Error;
        }
    }
    if (theParser.Found("e", &theValue)) {
        anOptions.mfHasLines = true;
        anOptions.mLines += SplitCommands(theValue);
    }
    for (unsigned i = 0; i < theParser.GetParameterCount(); ++i) {
        anOptions.mDirectories.push_back(theParser.GetParameter(i));
    }
    return ArgumentResult::Run;
}

}  // namespace vxmedia
