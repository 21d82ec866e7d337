// How long does a program take from its argument vector to its settings? Twenty arguments: five
// switches, five options with a value in the next argument, five files. Every parser describes its
// options, parses, hands all values out and is dropped, as at the start of a program.

#include <benchmark/benchmark.h>
#include <getopt.h>
#include <glib.h>

#include <QCommandLineParser>
#include <QStringList>
#include <cstdlib>
#include <string>
#include <vector>

#include "vx/CommandLineParser.h"

namespace {

struct Settings {
    bool mVerbose = false;
    bool mQuiet = false;
    bool mForce = false;
    bool mRecursive = false;
    bool mFollow = false;
    int mPort = 0;
    int mTimeout = 0;
    int mLevel = 0;
    std::string mOutput;
    std::string mConfig;
    std::vector<std::string> mFiles;

    bool IsComplete() const {
        return mVerbose && mQuiet && mForce && mRecursive && mFollow && mPort == 8080 &&
               mTimeout == 30 && mLevel == 3 && mOutput == "recording.wav" &&
               mConfig == "/etc/player/config.ini" && mFiles.size() == 5 &&
               mFiles[4] == "fifth.flac";
    }
};

// The arguments behind a program's name; options begin with aDash.
std::vector<std::string> Arguments(const std::string& aDash) {
    return {"player",          aDash + "verbose", "first.flac",
            aDash + "port",    "8080",            aDash + "quiet",
            aDash + "timeout", "30",              "second.flac",
            aDash + "force",   aDash + "output",  "recording.wav",
            "third.flac",      aDash + "config",  "/etc/player/config.ini",
            "fourth.flac",     aDash + "level",   "3",
            aDash + "recursive", aDash + "follow", "fifth.flac"};
}

struct Argv {
    explicit Argv(const std::string& aDash) : mTexts(Arguments(aDash)) {
        for (std::string& theText : mTexts) {
            mPointers.push_back(theText.data());
        }
        mPointers.push_back(nullptr);
    }
    int Count() const { return static_cast<int>(mTexts.size()); }

    std::vector<std::string> mTexts;
    std::vector<char*> mPointers;
};

constexpr vxCommandLineDescription kVxTable[] = {
    {vxCommandLineEntryType_Switch, "help", "show this help", vxCommandLineParameter_None,
     vxCommandLineFlag_HelpOption},
    {vxCommandLineEntryType_Switch, "verbose", "tell more", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Switch, "quiet", "tell less", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Switch, "force", "overwrite", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Switch, "recursive", "enter directories", vxCommandLineParameter_None,
     0},
    {vxCommandLineEntryType_Switch, "follow", "follow links", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Option, "port", "port of the server", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "timeout", "seconds to wait", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "level", "log level", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "output", "file to write", vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Option, "config", "configuration", vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Parameter, nullptr, "files", vxCommandLineParameter_String,
     vxCommandLineFlag_ParameterMultiple},
    {vxCommandLineEntryType_None, nullptr, nullptr, vxCommandLineParameter_None, 0}};

Settings ReadVx(vxCommandLineParser& aParser) {
    Settings theSettings;
    if (aParser.Parse(false) != 0) {
        return theSettings;
    }
    theSettings.mVerbose = aParser.Found("verbose");
    theSettings.mQuiet = aParser.Found("quiet");
    theSettings.mForce = aParser.Found("force");
    theSettings.mRecursive = aParser.Found("recursive");
    theSettings.mFollow = aParser.Found("follow");
    aParser.Found("port", &theSettings.mPort);
    aParser.Found("timeout", &theSettings.mTimeout);
    aParser.Found("level", &theSettings.mLevel);
    vxCString theText;
    aParser.Found("output", &theText);
    theSettings.mOutput = theText.c_str();
    aParser.Found("config", &theText);
    theSettings.mConfig = theText.c_str();
    for (unsigned i = 0; i < aParser.GetParameterCount(); ++i) {
        theSettings.mFiles.emplace_back(aParser.GetParameter(i).c_str());
    }
    return theSettings;
}

void BM_Vx(benchmark::State& aState) {
    Argv theArgv("-");
    for (auto _ : aState) {
        vxCommandLineParser theParser(kVxTable, theArgv.Count(), theArgv.mPointers.data());
        if (!ReadVx(theParser).IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_Vx)->Name("cmdline/parse20/vx");

void BM_Getopt(benchmark::State& aState) {
    static const option kOptions[] = {
        {"help", no_argument, nullptr, 'h'},        {"verbose", no_argument, nullptr, 'v'},
        {"quiet", no_argument, nullptr, 'q'},       {"force", no_argument, nullptr, 'f'},
        {"recursive", no_argument, nullptr, 'r'},   {"follow", no_argument, nullptr, 'F'},
        {"port", required_argument, nullptr, 'p'},  {"timeout", required_argument, nullptr, 't'},
        {"level", required_argument, nullptr, 'l'}, {"output", required_argument, nullptr, 'o'},
        {"config", required_argument, nullptr, 'c'}, {nullptr, 0, nullptr, 0}};
    Argv theArgv("--");
    for (auto _ : aState) {
        std::vector<char*> theArguments = theArgv.mPointers;
        Settings theSettings;
        optind = 0;
        for (int theOption; (theOption = getopt_long(theArgv.Count(), theArguments.data(), "",
                                                     kOptions, nullptr)) != -1;) {
            switch (theOption) {
                case 'v': theSettings.mVerbose = true; break;
                case 'q': theSettings.mQuiet = true; break;
                case 'f': theSettings.mForce = true; break;
                case 'r': theSettings.mRecursive = true; break;
                case 'F': theSettings.mFollow = true; break;
                case 'p': theSettings.mPort = static_cast<int>(strtol(optarg, nullptr, 10)); break;
                case 't': theSettings.mTimeout = static_cast<int>(strtol(optarg, nullptr, 10)); break;
                case 'l': theSettings.mLevel = static_cast<int>(strtol(optarg, nullptr, 10)); break;
                case 'o': theSettings.mOutput = optarg; break;
                case 'c': theSettings.mConfig = optarg; break;
            }
        }
        for (int i = optind; i < theArgv.Count(); ++i) {
            theSettings.mFiles.emplace_back(theArguments[static_cast<size_t>(i)]);
        }
        if (!theSettings.IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_Getopt)->Name("cmdline/parse20/getopt_long");

void BM_GOption(benchmark::State& aState) {
    Argv theArgv("--");
    for (auto _ : aState) {
        gboolean theVerbose = FALSE, theQuiet = FALSE, theForce = FALSE, theRecursive = FALSE,
                 theFollow = FALSE;
        gint thePort = 0, theTimeout = 0, theLevel = 0;
        gchar *theOutput = nullptr, *theConfig = nullptr, **theFiles = nullptr;
        const GOptionEntry kEntries[] = {
            {"verbose", 0, 0, G_OPTION_ARG_NONE, &theVerbose, "tell more", nullptr},
            {"quiet", 0, 0, G_OPTION_ARG_NONE, &theQuiet, "tell less", nullptr},
            {"force", 0, 0, G_OPTION_ARG_NONE, &theForce, "overwrite", nullptr},
            {"recursive", 0, 0, G_OPTION_ARG_NONE, &theRecursive, "enter directories", nullptr},
            {"follow", 0, 0, G_OPTION_ARG_NONE, &theFollow, "follow links", nullptr},
            {"port", 0, 0, G_OPTION_ARG_INT, &thePort, "port of the server", "NUM"},
            {"timeout", 0, 0, G_OPTION_ARG_INT, &theTimeout, "seconds to wait", "NUM"},
            {"level", 0, 0, G_OPTION_ARG_INT, &theLevel, "log level", "NUM"},
            {"output", 0, 0, G_OPTION_ARG_STRING, &theOutput, "file to write", "STR"},
            {"config", 0, 0, G_OPTION_ARG_STRING, &theConfig, "configuration", "STR"},
            {G_OPTION_REMAINING, 0, 0, G_OPTION_ARG_STRING_ARRAY, &theFiles, "files", nullptr},
            {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr}};
        GOptionContext* theContext = g_option_context_new(nullptr);
        g_option_context_add_main_entries(theContext, kEntries, nullptr);
        std::vector<char*> theArguments = theArgv.mPointers;
        char** thePointers = theArguments.data();
        int theCount = theArgv.Count();
        Settings theSettings;
        if (g_option_context_parse(theContext, &theCount, &thePointers, nullptr)) {
            theSettings.mVerbose = theVerbose != FALSE;
            theSettings.mQuiet = theQuiet != FALSE;
            theSettings.mForce = theForce != FALSE;
            theSettings.mRecursive = theRecursive != FALSE;
            theSettings.mFollow = theFollow != FALSE;
            theSettings.mPort = thePort;
            theSettings.mTimeout = theTimeout;
            theSettings.mLevel = theLevel;
            theSettings.mOutput = theOutput;
            theSettings.mConfig = theConfig;
            for (gchar** i = theFiles; *i != nullptr; ++i) {
                theSettings.mFiles.emplace_back(*i);
            }
        }
        g_free(theOutput);
        g_free(theConfig);
        g_strfreev(theFiles);
        g_option_context_free(theContext);
        if (!theSettings.IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_GOption)->Name("cmdline/parse20/GOption");

void BM_Qt(benchmark::State& aState) {
    Argv theArgv("--");
    QStringList theArguments;
    for (const std::string& theText : theArgv.mTexts) {
        theArguments << QString::fromStdString(theText);
    }
    for (auto _ : aState) {
        QCommandLineParser theParser;
        const QCommandLineOption theVerbose("verbose", "tell more"), theQuiet("quiet", "tell less"),
            theForce("force", "overwrite"), theRecursive("recursive", "enter directories"),
            theFollow("follow", "follow links"), thePort("port", "port of the server", "num"),
            theTimeout("timeout", "seconds to wait", "num"), theLevel("level", "log level", "num"),
            theOutput("output", "file to write", "str"), theConfig("config", "configuration", "str");
        theParser.addOptions({theVerbose, theQuiet, theForce, theRecursive, theFollow, thePort,
                              theTimeout, theLevel, theOutput, theConfig});
        theParser.addPositionalArgument("files", "files", "files...");
        Settings theSettings;
        if (theParser.parse(theArguments)) {
            theSettings.mVerbose = theParser.isSet(theVerbose);
            theSettings.mQuiet = theParser.isSet(theQuiet);
            theSettings.mForce = theParser.isSet(theForce);
            theSettings.mRecursive = theParser.isSet(theRecursive);
            theSettings.mFollow = theParser.isSet(theFollow);
            theSettings.mPort = theParser.value(thePort).toInt();
            theSettings.mTimeout = theParser.value(theTimeout).toInt();
            theSettings.mLevel = theParser.value(theLevel).toInt();
            theSettings.mOutput = theParser.value(theOutput).toStdString();
            theSettings.mConfig = theParser.value(theConfig).toStdString();
            for (const QString& theFile : theParser.positionalArguments()) {
                theSettings.mFiles.push_back(theFile.toStdString());
            }
        }
        if (!theSettings.IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_Qt)->Name("cmdline/parse20/QCommandLineParser");

}  // namespace
