// MessagePack of JSON trees, beside msgpack-c, msgpack-cxx and nlohmann. The first two decode into
// an arena that is freed as a whole, the other two into nodes of their own. Decoding includes freeing.

#include <benchmark/benchmark.h>
#include <msgpack.h>

#include <msgpack.hpp>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "documents/JSONDocuments.h"
#include "vx/JSON.h"

namespace {

/// Both forms of a document.
struct Packed {
    explicit Packed(const BenchmarkDocument& aDocument)
        : mTree(vxJSON_Parse(aDocument.mText.c_str(), nullptr)) {
        uint32_t theSize = 0;
        uint8_t* theBytes = vxJSON_ToMPack(mTree, &theSize, nullptr);
        mBytes.assign(reinterpret_cast<char*>(theBytes), theSize);
        free(theBytes);
    }
    ~Packed() { vxJSON_Delete(mTree); }
    Packed(const Packed&) = delete;
    Packed& operator=(const Packed&) = delete;

    const uint8_t* Data() const { return reinterpret_cast<const uint8_t*>(mBytes.data()); }

    vxJSON_t* mTree;
    std::string mBytes;
};

void Count(benchmark::State& aState, const Packed& aPacked) {
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aPacked.mBytes.size()));
}

// How long does it take to encode a tree?

void Encode_vx(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    for (auto _ : aState) {
        uint32_t theSize = 0;
        uint8_t* theBytes = vxJSON_ToMPack(thePacked.mTree, &theSize, nullptr);
        benchmark::DoNotOptimize(theBytes);
        free(theBytes);
    }
    Count(aState, thePacked);
}

void Encode_msgpack_c(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    msgpack_unpacked theTree;
    msgpack_unpacked_init(&theTree);
    msgpack_unpack_next(&theTree, thePacked.mBytes.data(), thePacked.mBytes.size(), nullptr);
    for (auto _ : aState) {
        msgpack_sbuffer theBuffer;
        msgpack_sbuffer_init(&theBuffer);
        msgpack_packer thePacker;
        msgpack_packer_init(&thePacker, &theBuffer, msgpack_sbuffer_write);
        msgpack_pack_object(&thePacker, theTree.data);
        benchmark::DoNotOptimize(theBuffer.data);
        msgpack_sbuffer_destroy(&theBuffer);
    }
    msgpack_unpacked_destroy(&theTree);
    Count(aState, thePacked);
}

void Encode_msgpack_cxx(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    const msgpack::object_handle theTree =
        msgpack::unpack(thePacked.mBytes.data(), thePacked.mBytes.size());
    for (auto _ : aState) {
        msgpack::sbuffer theBuffer;
        msgpack::pack(theBuffer, theTree.get());
        benchmark::DoNotOptimize(theBuffer.data());
    }
    Count(aState, thePacked);
}

void Encode_nlohmann(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    const nlohmann::json theTree = nlohmann::json::from_msgpack(thePacked.mBytes);
    for (auto _ : aState) {
        const std::vector<uint8_t> theBytes = nlohmann::json::to_msgpack(theTree);
        benchmark::DoNotOptimize(theBytes.data());
    }
    Count(aState, thePacked);
}

// How long does it take to decode into a tree, and to free it?

void Decode_vx(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    for (auto _ : aState) {
        vxJSON_Delete(vxJSON_FromMPackSize(thePacked.Data(), thePacked.mBytes.size(), nullptr));
    }
    Count(aState, thePacked);
}

void Decode_msgpack_c(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    for (auto _ : aState) {
        msgpack_unpacked theTree;
        msgpack_unpacked_init(&theTree);
        msgpack_unpack_next(&theTree, thePacked.mBytes.data(), thePacked.mBytes.size(), nullptr);
        benchmark::DoNotOptimize(theTree.data);
        msgpack_unpacked_destroy(&theTree);
    }
    Count(aState, thePacked);
}

void Decode_msgpack_cxx(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    for (auto _ : aState) {
        const msgpack::object_handle theTree =
            msgpack::unpack(thePacked.mBytes.data(), thePacked.mBytes.size());
        benchmark::DoNotOptimize(theTree.get());
    }
    Count(aState, thePacked);
}

void Decode_nlohmann(benchmark::State& aState, const BenchmarkDocument& aDocument) {
    const Packed thePacked(aDocument);
    for (auto _ : aState) {
        const nlohmann::json theTree = nlohmann::json::from_msgpack(thePacked.mBytes);
        benchmark::DoNotOptimize(&theTree);
    }
    Count(aState, thePacked);
}

template <typename Function>
void Register(const char* anItem, const char* aWho, Function aFunction,
              const BenchmarkDocument& aDocument) {
    const std::string theName =
        std::string("msgpack/") + anItem + "/" + aDocument.mName + "/" + aWho;
    benchmark::RegisterBenchmark(theName.c_str(), aFunction, aDocument)
        ->Unit(benchmark::kMicrosecond);
}

const bool sfRegistered = [] {
    for (const BenchmarkDocument& theDocument : BenchmarkDocuments()) {
        Register("encode", "vx", Encode_vx, theDocument);
        Register("encode", "msgpack-c", Encode_msgpack_c, theDocument);
        Register("encode", "msgpack-cxx", Encode_msgpack_cxx, theDocument);
        Register("encode", "nlohmann", Encode_nlohmann, theDocument);
        Register("decode", "vx", Decode_vx, theDocument);
        Register("decode", "msgpack-c", Decode_msgpack_c, theDocument);
        Register("decode", "msgpack-cxx", Decode_msgpack_cxx, theDocument);
        Register("decode", "nlohmann", Decode_nlohmann, theDocument);
    }
    return true;
}();

}  // namespace
