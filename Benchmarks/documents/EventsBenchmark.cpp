// JSON as events: read into a sink that keeps nothing, and written from events, beside the event
// interfaces of other libraries.
//
// Every reader must send the same events, every writer give the same values, before it is measured.
// yajl is told not to check UTF-8, as the others do not; nlohmann always does.

#include <Poco/JSON/Handler.h>
#include <Poco/JSON/ParseHandler.h>
#include <Poco/JSON/Parser.h>
#include <Poco/JSON/PrintHandler.h>
#include <benchmark/benchmark.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <yajl/yajl_gen.h>
#include <yajl/yajl_parse.h>

#include <sstream>

#include "documents/JSONDocuments.h"
#include "vx/Serialize.h"

namespace {

// What events go to

/// Counts; the compiler may not leave a value out.
struct Counter {
    size_t mCount = 0;

    void Mark(char) { ++mCount; }
    void Text(char, const char* aText, size_t) {
        ++mCount;
        benchmark::DoNotOptimize(aText);
    }
    template <typename Value>
    void Scalar(Value aValue) {
        ++mCount;
        benchmark::DoNotOptimize(aValue);
    }
};

/// Writes down every event, to compare what two readers sent.
struct Transcript {
    std::string mLines;

    void Mark(char aKind) { (mLines += aKind) += '\n'; }
    void Text(char aKind, const char* aText, size_t aLength) {
        mLines += aKind;
        mLines.append(aText, aLength == std::string::npos ? strlen(aText) : aLength) += '\n';
    }
    template <typename Value>
    void Scalar(Value aValue) {
        char theText[40];
        snprintf(theText, sizeof(theText), "%.17g\n", static_cast<double>(aValue));
        mLines += theText;
    }
};

// Readers: each sends the events of a text to a Counter or Transcript.

template <typename Target>
struct VXSink : vxISerialize {
    Target mTarget;

    int Mark(char aKind) {
        mTarget.Mark(aKind);
        return 0;
    }
    template <typename Value>
    int Scalar(Value aValue) {
        mTarget.Scalar(aValue);
        return 0;
    }
    int MapBegin() override { return Mark('{'); }
    int MapKey(const char* aKey, bool) override {
        mTarget.Text('k', aKey, std::string::npos);
        return 0;
    }
    int MapEnd() override { return Mark('}'); }
    int ArrayBegin() override { return Mark('['); }
    int ArrayItemSeparator() override { return 0; }
    int ArrayEnd() override { return Mark(']'); }
    int String(const char* aText, bool) override {
        mTarget.Text('s', aText, std::string::npos);
        return 0;
    }
    int String(const wchar_t*, bool) override { return 1; }
    int Boolean(bool aValue) override { return Mark(aValue ? 't' : 'f'); }
    int U32(uint32_t aValue) override { return Scalar(aValue); }
    int S32(int32_t aValue) override { return Scalar(aValue); }
    int U64(uint64_t aValue) override { return Scalar(aValue); }
    int S64(int64_t aValue) override { return Scalar(aValue); }
    int Float(double aValue) override { return Scalar(aValue); }
    int Null() override { return Mark('n'); }
};

template <typename Target>
Target ReadVX(const std::string& aText) {
    VXSink<Target> theSink;
    vxJSONFormatter::Parse(aText.c_str(), theSink);
    return theSink.mTarget;
}

template <typename Target>
struct RapidHandler {
    Target mTarget;

    bool Mark(char aKind) {
        mTarget.Mark(aKind);
        return true;
    }
    template <typename Value>
    bool Scalar(Value aValue) {
        mTarget.Scalar(aValue);
        return true;
    }
    bool Null() { return Mark('n'); }
    bool Bool(bool aValue) { return Mark(aValue ? 't' : 'f'); }
    bool Int(int aValue) { return Scalar(aValue); }
    bool Uint(unsigned aValue) { return Scalar(aValue); }
    bool Int64(int64_t aValue) { return Scalar(aValue); }
    bool Uint64(uint64_t aValue) { return Scalar(aValue); }
    bool Double(double aValue) { return Scalar(aValue); }
    bool RawNumber(const char*, unsigned, bool) { return false; }
    bool String(const char* aText, unsigned aLength, bool) {
        mTarget.Text('s', aText, aLength);
        return true;
    }
    bool Key(const char* aText, unsigned aLength, bool) {
        mTarget.Text('k', aText, aLength);
        return true;
    }
    bool StartObject() { return Mark('{'); }
    bool EndObject(unsigned) { return Mark('}'); }
    bool StartArray() { return Mark('['); }
    bool EndArray(unsigned) { return Mark(']'); }
};

template <typename Target>
Target ReadRapid(const std::string& aText) {
    RapidHandler<Target> theHandler;
    rapidjson::Reader theReader;
    rapidjson::StringStream theStream(aText.c_str());
    theReader.Parse(theStream, theHandler);
    return theHandler.mTarget;
}

template <typename Target>
Target ReadYajl(const std::string& aText) {
    Target theTarget;
    const auto theMark = [](void* aTarget, char aKind) {
        static_cast<Target*>(aTarget)->Mark(aKind);
        return 1;
    };
    static const auto sMark = theMark;
    static const yajl_callbacks sCallbacks = {
        [](void* aTarget) { return sMark(aTarget, 'n'); },
        [](void* aTarget, int aValue) { return sMark(aTarget, aValue != 0 ? 't' : 'f'); },
        [](void* aTarget, long long aValue) {
            static_cast<Target*>(aTarget)->Scalar(aValue);
            return 1;
        },
        [](void* aTarget, double aValue) {
            static_cast<Target*>(aTarget)->Scalar(aValue);
            return 1;
        },
        nullptr,
        [](void* aTarget, const unsigned char* aText, size_t aLength) {
            static_cast<Target*>(aTarget)->Text('s', reinterpret_cast<const char*>(aText), aLength);
            return 1;
        },
        [](void* aTarget) { return sMark(aTarget, '{'); },
        [](void* aTarget, const unsigned char* aText, size_t aLength) {
            static_cast<Target*>(aTarget)->Text('k', reinterpret_cast<const char*>(aText), aLength);
            return 1;
        },
        [](void* aTarget) { return sMark(aTarget, '}'); },
        [](void* aTarget) { return sMark(aTarget, '['); },
        [](void* aTarget) { return sMark(aTarget, ']'); }};
    yajl_handle theHandle = yajl_alloc(&sCallbacks, nullptr, &theTarget);
    yajl_config(theHandle, yajl_dont_validate_strings, 1);
    yajl_parse(theHandle, reinterpret_cast<const unsigned char*>(aText.data()), aText.size());
    yajl_complete_parse(theHandle);
    yajl_free(theHandle);
    return theTarget;
}

template <typename Target>
struct NlohmannHandler : nlohmann::json_sax<nlohmann::json> {
    Target mTarget;

    bool Mark(char aKind) {
        mTarget.Mark(aKind);
        return true;
    }
    template <typename Value>
    bool Scalar(Value aValue) {
        mTarget.Scalar(aValue);
        return true;
    }
    bool null() override { return Mark('n'); }
    bool boolean(bool aValue) override { return Mark(aValue ? 't' : 'f'); }
    bool number_integer(int64_t aValue) override { return Scalar(aValue); }
    bool number_unsigned(uint64_t aValue) override { return Scalar(aValue); }
    bool number_float(double aValue, const std::string&) override { return Scalar(aValue); }
    bool string(std::string& aText) override {
        mTarget.Text('s', aText.data(), aText.size());
        return true;
    }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool start_object(size_t) override { return Mark('{'); }
    bool key(std::string& aText) override {
        mTarget.Text('k', aText.data(), aText.size());
        return true;
    }
    bool end_object() override { return Mark('}'); }
    bool start_array(size_t) override { return Mark('['); }
    bool end_array() override { return Mark(']'); }
    bool parse_error(size_t, const std::string&, const nlohmann::json::exception&) override {
        return false;
    }
};

template <typename Target>
Target ReadNlohmann(const std::string& aText) {
    NlohmannHandler<Target> theHandler;
    nlohmann::json::sax_parse(aText, &theHandler);
    return theHandler.mTarget;
}

template <typename Target>
struct PocoHandler : Poco::JSON::Handler {
    Target mTarget;

    void reset() override {}
    void startObject() override { mTarget.Mark('{'); }
    void endObject() override { mTarget.Mark('}'); }
    void startArray() override { mTarget.Mark('['); }
    void endArray() override { mTarget.Mark(']'); }
    void key(const std::string& aText) override { mTarget.Text('k', aText.data(), aText.size()); }
    void null() override { mTarget.Mark('n'); }
    void value(int aValue) override { mTarget.Scalar(aValue); }
    void value(unsigned aValue) override { mTarget.Scalar(aValue); }
    void value(Poco::Int64 aValue) override { mTarget.Scalar(aValue); }
    void value(Poco::UInt64 aValue) override { mTarget.Scalar(aValue); }
    void value(const std::string& aText) override { mTarget.Text('s', aText.data(), aText.size()); }
    void value(double aValue) override { mTarget.Scalar(aValue); }
    void value(bool aValue) override { mTarget.Mark(aValue ? 't' : 'f'); }
};

template <typename Target>
Target ReadPoco(const std::string& aText) {
    Poco::SharedPtr<PocoHandler<Target>> theHandler(new PocoHandler<Target>);
    Poco::JSON::Parser theParser(theHandler);
    theParser.parse(aText);
    return theHandler->mTarget;
}

// What is written: descriptions of tracks.

struct Record {
    uint32_t mId;
    std::string mTitle;
    std::string mPath;
    uint64_t mSize;
    int mOffset;
    double mGain;
    bool mfHidden;
    uint32_t mCounts[3];
};

std::vector<Record> MakeRecords() {
    std::mt19937 theRandom(4);
    std::vector<Record> theRecords;
    for (uint32_t i = 0; i < 1000; ++i) {
        Record theRecord;
        theRecord.mId = i;
        theRecord.mTitle = "Movement " + std::to_string(theRandom() % 1000) + ": " +
                           MakeWords(theRandom, false, 3);
        if (i % 8 == 0) {
            theRecord.mTitle += " \"live\"";
        }
        theRecord.mPath = "/media/music/" + std::to_string(theRandom()) + "/track.flac";
        theRecord.mSize = 5000000000u + theRandom();
        theRecord.mOffset = -static_cast<int>(theRandom() % 50000) - 1;
        theRecord.mGain = (static_cast<int>(theRandom() % 4000) - 2000) / 100.0;
        theRecord.mfHidden = theRandom() % 2 == 0;
        for (uint32_t& theCount : theRecord.mCounts) {
            theCount = static_cast<uint32_t>(theRandom() % 100000);
        }
        theRecords.push_back(theRecord);
    }
    return theRecords;
}

const std::vector<Record>& Records() {
    static const std::vector<Record> sRecords = MakeRecords();
    return sRecords;
}

/// The records as others read them; a truth may be the number that a writer makes of it.
OrderedJSON RecordsAsTree(bool afTruthIsNumber) {
    OrderedJSON theTree;
    for (const Record& theRecord : Records()) {
        const OrderedJSON theTruth = theRecord.mfHidden;
        const OrderedJSON theNumber = int{theRecord.mfHidden};
        theTree["tracks"].push_back(
            {{"id", theRecord.mId},
             {"title", theRecord.mTitle},
             {"path", theRecord.mPath},
             {"size", theRecord.mSize},
             {"offset", theRecord.mOffset},
             {"gain", theRecord.mGain},
             {"hidden", afTruthIsNumber ? theNumber : theTruth},
             {"cover", nullptr},
             {"counts", {theRecord.mCounts[0], theRecord.mCounts[1], theRecord.mCounts[2]}}});
    }
    return theTree;
}

// Writers: each has the events under the same names.

struct VXWriter {
    vxJSONFormatter mFormatter;
    bool mfFirst = true;

    explicit VXWriter(bool afIndent) {
        mFormatter.SetStrict(false);
        mFormatter.SetHuman(afIndent);
    }
    void BeginMap() { mFormatter.MapBegin(); }
    void EndMap() { mFormatter.MapEnd(); }
    void BeginArray() { mFormatter.ArrayBegin(); }
    void Next(bool afFirst) {
        if (!afFirst) {
            mFormatter.ArrayItemSeparator();
        }
    }
    void EndArray() { mFormatter.ArrayEnd(); }
    void Key(const char* aKey) { mFormatter.MapKey(aKey, false); }
    void Text(const std::string& aText) { mFormatter.String(aText.c_str(), false); }
    void Unsigned(uint32_t aValue) { mFormatter.U32(aValue); }
    void Signed(int aValue) { mFormatter.S32(aValue); }
    void Large(uint64_t aValue) { mFormatter.U64(aValue); }
    void Real(double aValue) { mFormatter.Float(aValue); }
    void Truth(bool aValue) { mFormatter.Boolean(aValue); }
    void Null() { mFormatter.Null(); }
    const char* Result() { return mFormatter.Result().c_str(); }
};

template <typename Writer>
struct RapidWriter {
    rapidjson::StringBuffer mBuffer;
    Writer mWriter{mBuffer};

    explicit RapidWriter(bool) {}
    void BeginMap() { mWriter.StartObject(); }
    void EndMap() { mWriter.EndObject(); }
    void BeginArray() { mWriter.StartArray(); }
    void Next(bool) {}
    void EndArray() { mWriter.EndArray(); }
    void Key(const char* aKey) { mWriter.Key(aKey); }
    void Text(const std::string& aText) {
        mWriter.String(aText.data(), static_cast<unsigned>(aText.size()));
    }
    void Unsigned(uint32_t aValue) { mWriter.Uint(aValue); }
    void Signed(int aValue) { mWriter.Int(aValue); }
    void Large(uint64_t aValue) { mWriter.Uint64(aValue); }
    void Real(double aValue) { mWriter.Double(aValue); }
    void Truth(bool aValue) { mWriter.Bool(aValue); }
    void Null() { mWriter.Null(); }
    const char* Result() { return mBuffer.GetString(); }
};

struct YajlWriter {
    yajl_gen mGen = yajl_gen_alloc(nullptr);

    explicit YajlWriter(bool afIndent) { yajl_gen_config(mGen, yajl_gen_beautify, int{afIndent}); }
    ~YajlWriter() { yajl_gen_free(mGen); }
    void BeginMap() { yajl_gen_map_open(mGen); }
    void EndMap() { yajl_gen_map_close(mGen); }
    void BeginArray() { yajl_gen_array_open(mGen); }
    void Next(bool) {}
    void EndArray() { yajl_gen_array_close(mGen); }
    void Key(const char* aKey) {
        yajl_gen_string(mGen, reinterpret_cast<const unsigned char*>(aKey), strlen(aKey));
    }
    void Text(const std::string& aText) {
        yajl_gen_string(mGen, reinterpret_cast<const unsigned char*>(aText.data()), aText.size());
    }
    void Unsigned(uint32_t aValue) { yajl_gen_integer(mGen, aValue); }
    void Signed(int aValue) { yajl_gen_integer(mGen, aValue); }
    void Large(uint64_t aValue) { yajl_gen_integer(mGen, static_cast<long long>(aValue)); }
    void Real(double aValue) { yajl_gen_double(mGen, aValue); }
    void Truth(bool aValue) { yajl_gen_bool(mGen, aValue); }
    void Null() { yajl_gen_null(mGen); }
    const char* Result() {
        const unsigned char* theText = nullptr;
        size_t theLength = 0;
        yajl_gen_get_buf(mGen, &theText, &theLength);
        return reinterpret_cast<const char*>(theText);
    }
};

/// Writes 0 and 1 for truths.
struct PocoWriter {
    std::ostringstream mStream;
    Poco::JSON::PrintHandler mHandler;
    std::string mText;

    explicit PocoWriter(bool afIndent) : mHandler(mStream, afIndent ? 4 : 0) {}
    void BeginMap() { mHandler.startObject(); }
    void EndMap() { mHandler.endObject(); }
    void BeginArray() { mHandler.startArray(); }
    void Next(bool) {}
    void EndArray() { mHandler.endArray(); }
    void Key(const char* aKey) { mHandler.key(aKey); }
    void Text(const std::string& aText) { mHandler.value(aText); }
    void Unsigned(uint32_t aValue) { mHandler.value(aValue); }
    void Signed(int aValue) { mHandler.value(aValue); }
    void Large(uint64_t aValue) { mHandler.value(static_cast<Poco::UInt64>(aValue)); }
    void Real(double aValue) { mHandler.value(aValue); }
    void Truth(bool aValue) { mHandler.value(aValue); }
    void Null() { mHandler.null(); }
    const char* Result() {
        mText = mStream.str();
        return mText.c_str();
    }
};

/// What one writes with the standard library alone; without layout.
struct OwnWriter {
    std::string mText;
    bool mfComma = false;

    explicit OwnWriter(bool) {}
    void Open(char aChar) {
        Separate();
        mText += aChar;
        mfComma = false;
    }
    void Close(char aChar) {
        mText += aChar;
        mfComma = true;
    }
    void Separate() {
        if (mfComma) {
            mText += ',';
        }
        mfComma = true;
    }
    void Escaped(const char* aText, size_t aLength) {
        mText += '"';
        for (size_t i = 0; i < aLength; ++i) {
            const char theChar = aText[i];
            if (theChar == '"' || theChar == '\\') {
                (mText += '\\') += theChar;
            } else if (static_cast<unsigned char>(theChar) < 0x20) {
                char theEscape[8];
                snprintf(theEscape, sizeof(theEscape), "\\u%04x", unsigned(theChar));
                mText += theEscape;
            } else {
                mText += theChar;
            }
        }
        mText += '"';
    }
    void Plain(const std::string& aText) {
        Separate();
        mText += aText;
    }
    void BeginMap() { Open('{'); }
    void EndMap() { Close('}'); }
    void BeginArray() { Open('['); }
    void Next(bool) {}
    void EndArray() { Close(']'); }
    void Key(const char* aKey) {
        Separate();
        Escaped(aKey, strlen(aKey));
        mText += ':';
        mfComma = false;
    }
    void Text(const std::string& aText) {
        Separate();
        Escaped(aText.data(), aText.size());
    }
    void Unsigned(uint32_t aValue) { Plain(std::to_string(aValue)); }
    void Signed(int aValue) { Plain(std::to_string(aValue)); }
    void Large(uint64_t aValue) { Plain(std::to_string(aValue)); }
    void Real(double aValue) { Plain(std::to_string(aValue)); }
    void Truth(bool aValue) { Plain(aValue ? "true" : "false"); }
    void Null() { Plain("null"); }
    const char* Result() { return mText.c_str(); }
};

template <typename Writer>
void WriteRecord(Writer& aWriter, const Record& aRecord) {
    aWriter.BeginMap();
    aWriter.Key("id");
    aWriter.Unsigned(aRecord.mId);
    aWriter.Key("title");
    aWriter.Text(aRecord.mTitle);
    aWriter.Key("path");
    aWriter.Text(aRecord.mPath);
    aWriter.Key("size");
    aWriter.Large(aRecord.mSize);
    aWriter.Key("offset");
    aWriter.Signed(aRecord.mOffset);
    aWriter.Key("gain");
    aWriter.Real(aRecord.mGain);
    aWriter.Key("hidden");
    aWriter.Truth(aRecord.mfHidden);
    aWriter.Key("cover");
    aWriter.Null();
    aWriter.Key("counts");
    aWriter.BeginArray();
    for (size_t i = 0; i < 3; ++i) {
        aWriter.Next(i == 0);
        aWriter.Unsigned(aRecord.mCounts[i]);
    }
    aWriter.EndArray();
    aWriter.EndMap();
}

template <typename Writer>
void WriteRecords(Writer& aWriter) {
    aWriter.BeginMap();
    aWriter.Key("tracks");
    aWriter.BeginArray();
    for (const Record& theRecord : Records()) {
        aWriter.Next(&theRecord == &Records().front());
        WriteRecord(aWriter, theRecord);
    }
    aWriter.EndArray();
    aWriter.EndMap();
}

/// The text without commas in front of a closing brace, which the formatter's maps end with.
std::string WithoutLastCommas(const std::string& aText) {
    std::string theText;
    bool theIsInText = false;
    for (size_t i = 0; i < aText.size(); ++i) {
        if (theIsInText && aText[i] == '\\') {
            theText += aText[i++];
        } else if (aText[i] == '"') {
            theIsInText = !theIsInText;
        } else if (!theIsInText && aText[i] == ',' &&
                   aText[aText.find_first_not_of(" \n", i + 1)] == '}') {
            continue;
        }
        theText += aText[i];
    }
    return theText;
}

/// How fast are events read from a text?
template <typename Read, typename Check>
void RegisterRead(const std::string& anItem, const char* aWho, Read aRead, Check aCheck,
                  const std::string& aText) {
    const bool theIsSame = aCheck(aText).mLines == ReadVX<Transcript>(aText).mLines;
    benchmark::RegisterBenchmark(
        ("events/parse/" + anItem + "/" + aWho).c_str(),
        [aRead, theIsSame, &aText](benchmark::State& aState) {
            if (!theIsSame) {
                aState.SkipWithError("sends other events");
            }
            for (auto _ : aState) {
                benchmark::DoNotOptimize(aRead(aText).mCount);
            }
            aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aText.size()));
        });
}

void RegisterReads(const std::string& anItem, const std::string& aText) {
    RegisterRead(anItem, "vx", ReadVX<Counter>, ReadVX<Transcript>, aText);
    RegisterRead(anItem, "RapidJSON_Reader", ReadRapid<Counter>, ReadRapid<Transcript>, aText);
    RegisterRead(anItem, "yajl", ReadYajl<Counter>, ReadYajl<Transcript>, aText);
    RegisterRead(anItem, "nlohmann_sax", ReadNlohmann<Counter>, ReadNlohmann<Transcript>, aText);
    RegisterRead(anItem, "Poco_Handler", ReadPoco<Counter>, ReadPoco<Transcript>, aText);
}

/// How fast is a text written from events?
template <typename Writer>
void RegisterWrite(const char* aWho, bool afIndent) {
    Writer theWriter(afIndent);
    WriteRecords(theWriter);
    const OrderedJSON theTree =
        OrderedJSON::parse(WithoutLastCommas(theWriter.Result()), nullptr, false);
    const bool theIsSame = theTree == RecordsAsTree(std::is_same_v<Writer, PocoWriter>);
    const std::string theName = afIndent ? "events/write_indent/" : "events/write/";
    benchmark::RegisterBenchmark((theName + aWho).c_str(),
                                 [afIndent, theIsSame](benchmark::State& aState) {
                                     if (!theIsSame) {
                                         aState.SkipWithError("writes other values");
                                     }
                                     for (auto _ : aState) {
                                         Writer theWriter(afIndent);
                                         WriteRecords(theWriter);
                                         benchmark::DoNotOptimize(theWriter.Result());
                                     }
                                 });
}

void RegisterWrites(bool afIndent) {
    using rapidjson::PrettyWriter;
    using rapidjson::StringBuffer;
    using rapidjson::Writer;
    RegisterWrite<VXWriter>("vx", afIndent);
    if (afIndent) {
        RegisterWrite<RapidWriter<PrettyWriter<StringBuffer>>>("RapidJSON_PrettyWriter", true);
    } else {
        RegisterWrite<RapidWriter<Writer<StringBuffer>>>("RapidJSON_Writer", false);
        RegisterWrite<OwnWriter>("own_std_string", false);
    }
    RegisterWrite<YajlWriter>("yajl_gen", afIndent);
    RegisterWrite<PocoWriter>("Poco_PrintHandler", afIndent);
}

const bool sfRegistered = [] {
    static const std::string sRecords = RecordsAsTree(false).dump();
    RegisterReads("records", sRecords);
    RegisterReads("twitter", BenchmarkDocuments()[1].mText);
    RegisterWrites(false);
    RegisterWrites(true);
    return true;
}();

}  // namespace
