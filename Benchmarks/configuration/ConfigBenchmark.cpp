// Settings in an INI file beside what else reads and writes such files. The file has 20 sections of 25
// keys, numbers and texts in turn, with a comment before each section: 15 KB, in the page cache.
//
// get100     100 values by section and key, each as a text of its own
// load       open the file, read it whole, be ready to answer, close
// set_save   one value changed, the whole file written under its name
//
// Saving is not the same promise everywhere. libvx and GKeyFile write a temporary file, wait until the
// medium has it, and rename it: a power cut leaves the old file or the new one. The others overwrite
// the file in place and wait for nothing. So set_save mostly measures the medium, and
// set_save_unsynced measures the same calls while fsync() does nothing: that is for comparison only, no
// program gets it.

#include <INIReader.h>
#define SI_NO_CONVERSION  // bytes as they are, like everybody here
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <glib.h>
#include <unistd.h>

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "vx/Config.h"

namespace {

bool sWait = true;

}  // namespace

extern "C" __attribute__((visibility("default"))) int fsync(int aFD) {
    static const auto theCall = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    return sWait ? theCall(aFD) : 0;
}

namespace {

// Registers one measurement: a name and the call that runs it.
#define CASE(aName, ...)                                                \
    [[maybe_unused]] static auto* const BENCHMARK_PRIVATE_NAME(sCase) = \
        benchmark::RegisterBenchmark(aName, [](benchmark::State& aState) { __VA_ARGS__; })

constexpr int kSections = 20;
constexpr int kKeys = 25;

struct Name {
    std::string mSection;
    std::string mKey;
};

// The file, one for each who writes it, and 100 names of keys in it.
class Files {
public:
    Files() {
        char thePattern[] = "/tmp/vxbenchXXXXXX";
        mRoot = mkdtemp(thePattern);
        std::string theText;
        for (int i = 0; i < kSections; ++i) {
            theText += "# what concerns section " + std::to_string(i) + "\n[section" +
                       std::to_string(i) + "]\n";
            for (int j = 0; j < kKeys; ++j) {
                theText += "key" + std::to_string(j) + "=" +
                           (j % 2 == 0 ? std::to_string(i * 1000 + j) : "a text for one setting") +
                           "\n";
            }
            theText += "\n";
        }
        for (const char* theName : {"_x.ini", "x.ini", "g.ini", "b.ini", "s.ini"}) {
            std::ofstream(mRoot / theName) << theText;
        }
        for (int i = 0; i < 100; ++i) {
            mNames.push_back({"section" + std::to_string(i * 7 % kSections),
                              "key" + std::to_string(i * 11 % kKeys)});
        }
    }
    ~Files() { std::filesystem::remove_all(mRoot); }

    std::string operator/(const char* aName) const { return (mRoot / aName).string(); }
    std::string Root() const { return mRoot.string(); }
    const std::vector<Name>& Names() const { return mNames; }

private:
    std::filesystem::path mRoot;
    std::vector<Name> mNames;
};

const Files& TheFiles() {
    static const Files sFiles;
    return sFiles;
}

template <typename Get>
void GetAll(benchmark::State& aState, Get aGet) {
    for (auto theRound : aState) {
        for (const Name& theName : TheFiles().Names()) {
            benchmark::DoNotOptimize(aGet(theName));
        }
    }
}

template <typename Load>
void LoadAll(benchmark::State& aState, Load aLoad) {
    for (auto theRound : aState) {
        benchmark::DoNotOptimize(aLoad());
    }
}

// The set value changes each time, so that there is always something to write.
template <typename SetAndSave>
void SaveAll(benchmark::State& aState, SetAndSave aSetAndSave) {
    int theNumber = 0;
    for (auto theRound : aState) {
        if (!aSetAndSave(std::to_string(++theNumber).c_str())) {
            aState.SkipWithError("not saved");
            return;
        }
    }
}

GKeyFile* LoadKeyFile(const std::string& aPath) {
    GKeyFile* theFile = g_key_file_new();
    if (!g_key_file_load_from_file(theFile, aPath.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr)) {
        abort();
    }
    return theFile;
}

boost::property_tree::ptree LoadTree(const std::string& aPath) {
    boost::property_tree::ptree theTree;
    boost::property_tree::read_ini(aPath, theTree);
    return theTree;
}

CASE("config/get100/vx", {
    const vxConfig theConfig(TheFiles().Root().c_str(), "", "x.ini");
    GetAll(aState, [&](const Name& aName) {
        return theConfig.GetCString(aName.mSection.c_str(), aName.mKey.c_str(), "").length();
    });
});

CASE("config/get100/GKeyFile", {
    GKeyFile* theFile = LoadKeyFile(TheFiles() / "g.ini");
    GetAll(aState, [&](const Name& aName) {
        char* theText =
            g_key_file_get_string(theFile, aName.mSection.c_str(), aName.mKey.c_str(), nullptr);
        const char theFirst = *theText;
        g_free(theText);
        return theFirst;
    });
    g_key_file_free(theFile);
});

CASE("config/get100/boost_property_tree", {
    const boost::property_tree::ptree theTree = LoadTree(TheFiles() / "b.ini");
    GetAll(aState, [&](const Name& aName) {
        return theTree.get<std::string>(aName.mSection + "." + aName.mKey).size();
    });
});

CASE("config/get100/SimpleIni", {
    CSimpleIniA theIni;
    theIni.LoadFile((TheFiles() / "s.ini").c_str());
    GetAll(aState, [&](const Name& aName) {
        return std::string(theIni.GetValue(aName.mSection.c_str(), aName.mKey.c_str(), "")).size();
    });
});

CASE("config/get100/inih_INIReader", {
    const INIReader theReader(TheFiles() / "x.ini");
    GetAll(aState,
           [&](const Name& aName) { return theReader.Get(aName.mSection, aName.mKey, "").size(); });
});

CASE("config/load/vx", LoadAll(aState, [] {
         const vxConfig theConfig(TheFiles().Root().c_str(), "", "x.ini");
         return theConfig.GetInt32("section3", "key4", 0);
     }));

CASE("config/load/GKeyFile", LoadAll(aState, [] {
         GKeyFile* theFile = LoadKeyFile(TheFiles() / "g.ini");
         const int theValue = g_key_file_get_integer(theFile, "section3", "key4", nullptr);
         g_key_file_free(theFile);
         return theValue;
     }));

CASE("config/load/boost_property_tree",
     LoadAll(aState, [] { return LoadTree(TheFiles() / "b.ini").get<int>("section3.key4"); }));

CASE("config/load/SimpleIni", LoadAll(aState, [] {
         CSimpleIniA theIni;
         theIni.LoadFile((TheFiles() / "s.ini").c_str());
         return theIni.GetLongValue("section3", "key4", 0);
     }));

CASE("config/load/inih_INIReader", LoadAll(aState, [] {
         return INIReader(TheFiles() / "x.ini").GetInteger("section3", "key4", 0);
     }));

void SaveOurs(benchmark::State& aState) {
    vxConfig theConfig("/nowhere", TheFiles().Root().c_str(), "x.ini");
    SaveAll(aState, [&](const char* aValue) {
        return theConfig.SetString("section3", "key4", aValue) && theConfig.Save();
    });
}

void SaveKeyFile(benchmark::State& aState) {
    GKeyFile* theFile = LoadKeyFile(TheFiles() / "g.ini");
    const std::string thePath = TheFiles() / "g.ini";
    SaveAll(aState, [&](const char* aValue) {
        g_key_file_set_string(theFile, "section3", "key4", aValue);
        return g_key_file_save_to_file(theFile, thePath.c_str(), nullptr) != 0;
    });
    g_key_file_free(theFile);
}

void SaveTree(benchmark::State& aState) {
    boost::property_tree::ptree theTree = LoadTree(TheFiles() / "b.ini");
    const std::string thePath = TheFiles() / "b.ini";
    SaveAll(aState, [&](const char* aValue) {
        theTree.put("section3.key4", aValue);
        boost::property_tree::write_ini(thePath, theTree);
        return true;
    });
}

void SaveSimpleIni(benchmark::State& aState) {
    CSimpleIniA theIni;
    const std::string thePath = TheFiles() / "s.ini";
    theIni.LoadFile(thePath.c_str());
    SaveAll(aState, [&](const char* aValue) {
        theIni.SetValue("section3", "key4", aValue);
        return theIni.SaveFile(thePath.c_str()) >= 0;
    });
}

void WithoutSync(benchmark::State& aState, void (*aSave)(benchmark::State&)) {
    sWait = false;
    aSave(aState);
    sWait = true;
}

CASE("config/set_save/vx", SaveOurs(aState))->UseRealTime();
CASE("config/set_save/GKeyFile", SaveKeyFile(aState))->UseRealTime();
CASE("config/set_save/boost_property_tree", SaveTree(aState))->UseRealTime();
CASE("config/set_save/SimpleIni", SaveSimpleIni(aState))->UseRealTime();

CASE("config/set_save_unsynced/vx", WithoutSync(aState, SaveOurs))->UseRealTime();
CASE("config/set_save_unsynced/GKeyFile", WithoutSync(aState, SaveKeyFile))->UseRealTime();
CASE("config/set_save_unsynced/boost_property_tree", WithoutSync(aState, SaveTree))->UseRealTime();
CASE("config/set_save_unsynced/SimpleIni", WithoutSync(aState, SaveSimpleIni))->UseRealTime();

}  // namespace
