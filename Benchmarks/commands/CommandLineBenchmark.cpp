// How long does a program take from its argument vector to its settings? Twenty options, all given:
// ten switches, five numbers and five texts, each value in an argument of its own, and three files.
// Every parser describes its options, parses, hands all values out and is dropped, as at the start of
// a program.

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

constexpr size_t kSwitches = 10;
constexpr size_t kNumbers = 5;
constexpr size_t kTexts = 5;

struct Named {
    const char* mName;
    const char* mDescription;
};

constexpr Named kSwitchTable[kSwitches] = {{"verbose", "tell more"},
                                           {"quiet", "tell less"},
                                           {"force", "overwrite"},
                                           {"recursive", "enter directories"},
                                           {"follow", "follow links"},
                                           {"shuffle", "play in any order"},
                                           {"repeat", "start over at the end"},
                                           {"mute", "start silent"},
                                           {"daemon", "run in the background"},
                                           {"fullscreen", "cover the screen"}};
constexpr Named kNumberTable[kNumbers] = {{"port", "port of the server"},
                                          {"timeout", "seconds to wait"},
                                          {"level", "log level"},
                                          {"volume", "volume in percent"},
                                          {"buffer", "bytes to read ahead"}};
constexpr Named kTextTable[kTexts] = {{"output", "file to write"},
                                      {"config", "configuration file"},
                                      {"device", "sound device"},
                                      {"language", "language of messages"},
                                      {"playlist", "playlist to load"}};

struct Settings {
    bool mSwitches[kSwitches] = {};
    int mNumbers[kNumbers] = {};
    std::string mTexts[kTexts];
    std::vector<std::string> mFiles;

    bool IsComplete() const {
        for (bool theSwitch : mSwitches) {
            if (!theSwitch) {
                return false;
            }
        }
        return mNumbers[0] == 8080 && mNumbers[4] == 65536 && mTexts[0] == "recording.wav" &&
               mTexts[4] == "/media/music/evening.m3u" && mFiles.size() == 3 &&
               mFiles[2] == "third.flac";
    }
};

// The arguments behind a program's name; options begin with aDash.
std::vector<std::string> Arguments(const std::string& aDash) {
    return {"player",
            aDash + "verbose",
            aDash + "port",
            "8080",
            aDash + "quiet",
            aDash + "output",
            "recording.wav",
            "first.flac",
            aDash + "force",
            aDash + "timeout",
            "30",
            aDash + "recursive",
            aDash + "config",
            "/etc/player/config.ini",
            aDash + "follow",
            aDash + "level",
            "3",
            "second.flac",
            aDash + "shuffle",
            aDash + "device",
            "hw:0,0",
            aDash + "repeat",
            aDash + "volume",
            "75",
            aDash + "mute",
            aDash + "language",
            "en",
            aDash + "daemon",
            aDash + "buffer",
            "65536",
            aDash + "fullscreen",
            "third.flac",
            aDash + "playlist",
            "/media/music/evening.m3u"};
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
    {vxCommandLineEntryType_Switch, "shuffle", "play in any order", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Switch, "repeat", "start over at the end", vxCommandLineParameter_None,
     0},
    {vxCommandLineEntryType_Switch, "mute", "start silent", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Switch, "daemon", "run in the background", vxCommandLineParameter_None,
     0},
    {vxCommandLineEntryType_Switch, "fullscreen", "cover the screen", vxCommandLineParameter_None,
     0},
    {vxCommandLineEntryType_Option, "port", "port of the server", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "timeout", "seconds to wait", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "level", "log level", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "volume", "volume in percent", vxCommandLineParameter_Number,
     0},
    {vxCommandLineEntryType_Option, "buffer", "bytes to read ahead", vxCommandLineParameter_Number,
     0},
    {vxCommandLineEntryType_Option, "output", "file to write", vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Option, "config", "configuration file", vxCommandLineParameter_String,
     0},
    {vxCommandLineEntryType_Option, "device", "sound device", vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Option, "language", "language of messages",
     vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Option, "playlist", "playlist to load", vxCommandLineParameter_String,
     0},
    {vxCommandLineEntryType_Parameter, nullptr, "files", vxCommandLineParameter_String,
     vxCommandLineFlag_ParameterMultiple},
    {vxCommandLineEntryType_None, nullptr, nullptr, vxCommandLineParameter_None, 0}};

Settings ReadVx(vxCommandLineParser& aParser) {
    Settings theSettings;
    if (aParser.Parse(false) != 0) {
        return theSettings;
    }
    for (size_t i = 0; i < kSwitches; ++i) {
        theSettings.mSwitches[i] = aParser.Found(kSwitchTable[i].mName);
    }
    for (size_t i = 0; i < kNumbers; ++i) {
        aParser.Found(kNumberTable[i].mName, &theSettings.mNumbers[i]);
    }
    vxCString theText;
    for (size_t i = 0; i < kTexts; ++i) {
        aParser.Found(kTextTable[i].mName, &theText);
        theSettings.mTexts[i] = theText.c_str();
    }
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

// The numbers that getopt_long() answers with: index of the option, by kind.
constexpr int kSwitchBase = 1000;
constexpr int kNumberBase = 2000;
constexpr int kTextBase = 3000;

Settings ReadGetopt(int anArgc, char** anArgv) {
    static const std::vector<option> kOptions = [] {
        std::vector<option> theOptions = {{"help", no_argument, nullptr, 1}};
        for (size_t i = 0; i < kSwitches; ++i) {
            theOptions.push_back(
                {kSwitchTable[i].mName, no_argument, nullptr, kSwitchBase + static_cast<int>(i)});
        }
        for (size_t i = 0; i < kNumbers; ++i) {
            theOptions.push_back({kNumberTable[i].mName, required_argument, nullptr,
                                  kNumberBase + static_cast<int>(i)});
        }
        for (size_t i = 0; i < kTexts; ++i) {
            theOptions.push_back(
                {kTextTable[i].mName, required_argument, nullptr, kTextBase + static_cast<int>(i)});
        }
        theOptions.push_back({nullptr, 0, nullptr, 0});
        return theOptions;
    }();
    Settings theSettings;
    optind = 0;
    for (int theOption;
         (theOption = getopt_long(anArgc, anArgv, "", kOptions.data(), nullptr)) != -1;) {
        if (theOption >= kTextBase) {
            theSettings.mTexts[theOption - kTextBase] = optarg;
        } else if (theOption >= kNumberBase) {
            theSettings.mNumbers[theOption - kNumberBase] =
                static_cast<int>(strtol(optarg, nullptr, 10));
        } else if (theOption >= kSwitchBase) {
            theSettings.mSwitches[theOption - kSwitchBase] = true;
        }
    }
    for (int i = optind; i < anArgc; ++i) {
        theSettings.mFiles.emplace_back(anArgv[i]);
    }
    return theSettings;
}

void BM_Getopt(benchmark::State& aState) {
    Argv theArgv("--");
    for (auto _ : aState) {
        std::vector<char*> theArguments = theArgv.mPointers;  // they are reordered
        if (!ReadGetopt(theArgv.Count(), theArguments.data()).IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_Getopt)->Name("cmdline/parse20/getopt_long");

Settings ReadGOption(int aCount, char** anArgv) {
    gboolean theSwitches[kSwitches] = {};
    gint theNumbers[kNumbers] = {};
    gchar* theTexts[kTexts] = {};
    gchar** theFiles = nullptr;
    std::vector<GOptionEntry> theEntries;
    theEntries.reserve(kSwitches + kNumbers + kTexts + 2);
    for (size_t i = 0; i < kSwitches; ++i) {
        theEntries.push_back({kSwitchTable[i].mName, 0, 0, G_OPTION_ARG_NONE, &theSwitches[i],
                              kSwitchTable[i].mDescription, nullptr});
    }
    for (size_t i = 0; i < kNumbers; ++i) {
        theEntries.push_back({kNumberTable[i].mName, 0, 0, G_OPTION_ARG_INT, &theNumbers[i],
                              kNumberTable[i].mDescription, "NUM"});
    }
    for (size_t i = 0; i < kTexts; ++i) {
        theEntries.push_back({kTextTable[i].mName, 0, 0, G_OPTION_ARG_STRING, &theTexts[i],
                              kTextTable[i].mDescription, "STR"});
    }
    theEntries.push_back(
        {G_OPTION_REMAINING, 0, 0, G_OPTION_ARG_STRING_ARRAY, &theFiles, "files", nullptr});
    theEntries.push_back({nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr});
    GOptionContext* theContext = g_option_context_new(nullptr);
    g_option_context_add_main_entries(theContext, theEntries.data(), nullptr);
    Settings theSettings;
    if (g_option_context_parse(theContext, &aCount, &anArgv, nullptr)) {
        for (size_t i = 0; i < kSwitches; ++i) {
            theSettings.mSwitches[i] = theSwitches[i] != FALSE;
        }
        for (size_t i = 0; i < kNumbers; ++i) {
            theSettings.mNumbers[i] = theNumbers[i];
        }
        for (size_t i = 0; i < kTexts; ++i) {
            theSettings.mTexts[i] = theTexts[i];
            g_free(theTexts[i]);
        }
        for (gchar** i = theFiles; *i != nullptr; ++i) {
            theSettings.mFiles.emplace_back(*i);
        }
        g_strfreev(theFiles);
    }
    g_option_context_free(theContext);
    return theSettings;
}

void BM_GOption(benchmark::State& aState) {
    Argv theArgv("--");
    for (auto _ : aState) {
        std::vector<char*> theArguments = theArgv.mPointers;  // they are taken out
        if (!ReadGOption(theArgv.Count(), theArguments.data()).IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_GOption)->Name("cmdline/parse20/GOption");

Settings ReadQt(const QStringList& anArguments) {
    QCommandLineParser theParser;
    QList<QCommandLineOption> theOptions;
    for (const Named& theSwitch : kSwitchTable) {
        theOptions << QCommandLineOption(theSwitch.mName, theSwitch.mDescription);
    }
    for (const Named& theNumber : kNumberTable) {
        theOptions << QCommandLineOption(theNumber.mName, theNumber.mDescription, "num");
    }
    for (const Named& theText : kTextTable) {
        theOptions << QCommandLineOption(theText.mName, theText.mDescription, "str");
    }
    theParser.addOptions(theOptions);
    theParser.addPositionalArgument("files", "files", "files...");
    Settings theSettings;
    if (!theParser.parse(anArguments)) {
        return theSettings;
    }
    auto theOption = theOptions.cbegin();
    for (bool& theSwitch : theSettings.mSwitches) {
        theSwitch = theParser.isSet(*theOption++);
    }
    for (int& theNumber : theSettings.mNumbers) {
        theNumber = theParser.value(*theOption++).toInt();
    }
    for (std::string& theText : theSettings.mTexts) {
        theText = theParser.value(*theOption++).toStdString();
    }
    for (const QString& theFile : theParser.positionalArguments()) {
        theSettings.mFiles.push_back(theFile.toStdString());
    }
    return theSettings;
}

void BM_Qt(benchmark::State& aState) {
    QStringList theArguments;
    for (const std::string& theText : Arguments("--")) {
        theArguments << QString::fromStdString(theText);
    }
    for (auto _ : aState) {
        if (!ReadQt(theArguments).IsComplete()) {
            aState.SkipWithError("incomplete");
        }
    }
}
BENCHMARK(BM_Qt)->Name("cmdline/parse20/QCommandLineParser");

}  // namespace
