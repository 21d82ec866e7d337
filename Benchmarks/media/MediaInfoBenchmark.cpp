// What is known about a media item, written as text and read back: property lists as JSON, and media
// infos as lines of key and value. Everybody keeps what was read in a container that can be asked
// for each key.

#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>
#include <glib.h>
#include <json-c/json.h>
#include <libteskTools/PropertyList.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>
#include <vector>

#include "vx/MediaInfo.h"
#include "vx/MediaInfoSerializer.h"

namespace {

struct Text {
    const char* mKey;
    const char* mValue;
};
struct Number {
    const char* mKey;
    uint32_t mValue;
};

constexpr Text kTexts[] = {
    {"ti", "Blue in Green"},
    {"cr", "The Quintet"},
    {"an", "Kind of \"Blue\""},
    {"ge", "Jazz"},
    {"fp", "/media/music/The Quintet/Kind of Blue/03 Blue in Green.flac"},
    {"fe", "flac"},
    {"mt", "audio/x-flac"},
    {"cn", "object.item.audioItem.musicTrack"},
    {"ca", "flac"},
    {"da", "1959-08-17"},
    {"al", "en"},
    {"dl", ""},
};
constexpr Number kNumbers[] = {
    {"du", 337000}, {"fs", 31415926}, {"br", 745000}, {"ar", 745000},
    {"sf", 44100},  {"ac", 2},        {"bs", 16},     {"ta", 1},
};

// JSON

struct VX {
    using Tree = vxPropertyList*;
    static Tree Make() {
        Tree theTree = vxPropertyList_New();
        for (const Text& theText : kTexts) {
            vxPropertyList_Set_charPtr(theTree, theText.mKey, theText.mValue);
        }
        for (const Number& theNumber : kNumbers) {
            vxPropertyList_Set_uint32(theTree, theNumber.mKey, theNumber.mValue);
        }
        return theTree;
    }
    static std::string MakeText() {
        Tree theTree = Make();
        const std::string theText = vxMediaInfoSerializer::Serialize(theTree).c_str();
        Free(theTree);
        return theText;
    }
    static void Write(Tree aTree) {
        benchmark::DoNotOptimize(vxMediaInfoSerializer::Serialize(aTree).c_str());
    }
    static Tree Read(const std::string& aText) {
        return vxMediaInfoSerializer::Deserialize(aText.c_str());
    }
    static std::string Title(Tree aTree) { return vxPropertyList_Get_charPtr(aTree, "ti"); }
    static uint64_t Duration(Tree aTree) {
        uint32_t theValue = 0;
        vxPropertyList_Get_uint32(aTree, "du", &theValue);
        return theValue;
    }
    static void Free(Tree aTree) { vxPropertyList_Delete(aTree); }
};

/// The text that others read and write: the library's has a comma behind the last value.
const std::string& CommonText() {
    static const std::string sText = [] {
        std::string theText = VX::MakeText();
        return theText.erase(theText.size() - 2, 1);
    }();
    return sText;
}

struct RapidCrt {
    using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, rapidjson::CrtAllocator>;
    using Tree = Document*;
    static void Write(Tree aTree) {
        rapidjson::StringBuffer theBuffer;
        rapidjson::Writer<rapidjson::StringBuffer> theWriter(theBuffer);
        aTree->Accept(theWriter);
        benchmark::DoNotOptimize(theBuffer.GetString());
    }
    static Tree Read(const std::string& aText) {
        Tree theTree = new Document;
        theTree->Parse(aText.c_str());
        return theTree;
    }
    static std::string Title(Tree aTree) { return (*aTree)["ti"].GetString(); }
    static uint64_t Duration(Tree aTree) { return (*aTree)["du"].GetUint(); }
    static void Free(Tree aTree) { delete aTree; }
};

struct Nlohmann {
    using Tree = nlohmann::ordered_json*;
    static void Write(Tree aTree) { benchmark::DoNotOptimize(aTree->dump().data()); }
    static Tree Read(const std::string& aText) {
        return new nlohmann::ordered_json(nlohmann::ordered_json::parse(aText));
    }
    static std::string Title(Tree aTree) { return (*aTree)["ti"]; }
    static uint64_t Duration(Tree aTree) { return (*aTree)["du"]; }
    static void Free(Tree aTree) { delete aTree; }
};

struct C {
    using Tree = cJSON*;
    static void Write(Tree aTree) {
        char* theText = cJSON_PrintUnformatted(aTree);
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
    static Tree Read(const std::string& aText) { return cJSON_Parse(aText.c_str()); }
    static std::string Title(Tree aTree) {
        return cJSON_GetStringValue(cJSON_GetObjectItem(aTree, "ti"));
    }
    static uint64_t Duration(Tree aTree) {
        return static_cast<uint64_t>(cJSON_GetNumberValue(cJSON_GetObjectItem(aTree, "du")));
    }
    static void Free(Tree aTree) { cJSON_Delete(aTree); }
};

struct JSONC {
    using Tree = json_object*;
    static void Write(Tree aTree) {
        benchmark::DoNotOptimize(json_object_to_json_string_ext(aTree, JSON_C_TO_STRING_PLAIN));
    }
    static Tree Read(const std::string& aText) { return json_tokener_parse(aText.c_str()); }
    static std::string Title(Tree aTree) {
        return json_object_get_string(json_object_object_get(aTree, "ti"));
    }
    static uint64_t Duration(Tree aTree) {
        return json_object_get_uint64(json_object_object_get(aTree, "du"));
    }
    static void Free(Tree aTree) { json_object_put(aTree); }
};

// Lines

struct VXLines {
    using Tree = vxMediaInfo*;
    static void Write(Tree aTree) { benchmark::DoNotOptimize(aTree->GetSerializedInfo().c_str()); }
    static Tree Read(const std::string& aText) {
        Tree theTree = new vxMediaInfo;
        theTree->DeserializeInfo(aText.c_str());
        return theTree;
    }
    static std::string Title(Tree aTree) { return aTree->GetStr("fp", ""); }
    static uint64_t Duration(Tree aTree) { return aTree->GetUInt32("du", 0); }
    static void Free(Tree aTree) { delete aTree; }
};

/// What one writes with the standard library.
template <typename Map>
struct OwnLines {
    using Tree = Map*;
    static void Write(Tree aTree) {
        std::string theText;
        for (const auto& theEntry : *aTree) {
            (theText += theEntry.first) += '=';
            for (const char theChar : theEntry.second) {
                theText.append(theChar == '=' ? 2 : 1, theChar);
            }
            theText += '\n';
        }
        benchmark::DoNotOptimize(theText.data());
    }
    static Tree Read(const std::string& aText) {
        Tree theTree = new Map;
        for (size_t thePos = 0; thePos < aText.size();) {
            const size_t theEnd = std::min(aText.find('\n', thePos), aText.size());
            const size_t theEqual = aText.find('=', thePos);
            std::string theValue;
            for (size_t i = theEqual + 1; i < theEnd; ++i) {
                theValue += aText[i];
                i += aText[i] == '=' && aText[i + 1] == '=' ? 1 : 0;
            }
            (*theTree)[aText.substr(thePos, theEqual - thePos)] = theValue;
            thePos = theEnd + 1;
        }
        return theTree;
    }
    static std::string Title(Tree aTree) { return (*aTree)["fp"]; }
    static uint64_t Duration(Tree aTree) { return std::stoul((*aTree)["du"]); }
    static void Free(Tree aTree) { delete aTree; }
};

/// Its values have escapes of its own.
struct GLibLines {
    using Tree = GKeyFile*;
    static void Write(Tree aTree) {
        char* theText = g_key_file_to_data(aTree, nullptr, nullptr);
        benchmark::DoNotOptimize(theText);
        g_free(theText);
    }
    static Tree Read(const std::string& aText) {
        Tree theTree = g_key_file_new();
        g_key_file_load_from_data(theTree, aText.data(), aText.size(), G_KEY_FILE_NONE, nullptr);
        return theTree;
    }
    static std::string Title(Tree aTree) {
        char* theText = g_key_file_get_string(aTree, "i", "fp", nullptr);
        const std::string theTitle = theText;
        g_free(theText);
        return theTitle;
    }
    static uint64_t Duration(Tree aTree) {
        return g_key_file_get_uint64(aTree, "i", "du", nullptr);
    }
    static void Free(Tree aTree) { g_key_file_free(aTree); }
};

const std::string& Lines() {
    static const std::string sLines = [] {
        std::string theText;
        for (const Text& theLine : kTexts) {
            theText += std::string(theLine.mKey) + "=" + theLine.mValue + "\n";
        }
        for (const Number& theLine : kNumbers) {
            theText += std::string(theLine.mKey) + "=" + std::to_string(theLine.mValue) + "\n";
        }
        return theText;
    }();
    return sLines;
}

// How long does it take to write what is known, and to read it?
template <typename Lib>
void Register(const std::string& anItem, const std::string& aWho, const std::string& aText) {
    typename Lib::Tree theTree = Lib::Read(aText);
    const bool theIsSame =
        Lib::Title(theTree) == (anItem == "json" ? kTexts[0] : kTexts[4]).mValue &&
        Lib::Duration(theTree) == kNumbers[0].mValue;
    benchmark::RegisterBenchmark(("mediainfo/" + anItem + "_write/" + aWho).c_str(),
                                 [theTree, theIsSame](benchmark::State& aState) {
                                     if (!theIsSame) {
                                         aState.SkipWithError("reads other values");
                                     }
                                     for (auto _ : aState) {
                                         Lib::Write(theTree);
                                     }
                                 });
    benchmark::RegisterBenchmark(("mediainfo/" + anItem + "_read/" + aWho).c_str(),
                                 [aText](benchmark::State& aState) {
                                     for (auto _ : aState) {
                                         Lib::Free(Lib::Read(aText));
                                     }
                                 });
}

const bool sfRegistered = [] {
    Register<VX>("json", "vx", VX::MakeText());
    Register<RapidCrt>("json", "RapidJSON_crt", CommonText());
    Register<Nlohmann>("json", "nlohmann", CommonText());
    Register<C>("json", "cJSON", CommonText());
    Register<JSONC>("json", "json-c", CommonText());
    Register<VXLines>("lines", "vx", Lines());
    Register<OwnLines<std::unordered_map<std::string, std::string>>>(
        "lines", "own_std_unordered_map", Lines());
    Register<OwnLines<std::map<std::string, std::string>>>("lines", "own_std_map", Lines());
    Register<GLibLines>("lines", "GKeyFile", "[i]\n" + Lines());
    return true;
}();

}  // namespace
