// Bytes appended, encoded and read bit by bit, beside the standard library, GLib, nettle, OpenSSL,
// Qt and GStreamer.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <gst/base/gstbitreader.h>
#include <nettle/base64.h>
#include <openssl/evp.h>

#include <libteskTools/Base64.h>

#include <QByteArray>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "vx/BitString.h"
#include "vx/GrowingBuffer.h"

namespace {

constexpr size_t kBlock = 65536;
constexpr size_t kFields = 100000;

const std::string& Bytes() {
    static const std::string sBytes = [] {
        std::mt19937 theRandom(1);
        std::string theBytes(kBlock, '\0');
        for (char& theByte : theBytes) {
            theByte = static_cast<char>(theRandom());
        }
        return theBytes;
    }();
    return sBytes;
}

const std::string& Base64Text() {
    static const std::string sText = [] {
        gchar* theText = g_base64_encode(reinterpret_cast<const guchar*>(Bytes().data()), kBlock);
        std::string theResult = theText;
        g_free(theText);
        return theResult;
    }();
    return sText;
}

const guint8* Data(const std::string& aText) {
    return reinterpret_cast<const guint8*>(aText.data());
}

// How fast do 16 bytes at a time become a block of 1 MB?

constexpr size_t kAppended = 1 << 20;
constexpr char kPiece[] = "0123456789abcdef";

void Append_vx(benchmark::State& aState) {
    for (auto _ : aState) {
        vxGrowingBuffer theBuffer(0);
        for (size_t i = 0; i < kAppended; i += 16) {
            theBuffer.Append(kPiece, 16);
        }
        benchmark::DoNotOptimize(theBuffer.data());
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kAppended));
}
BENCHMARK(Append_vx)->Name("buffers/append_1MB_by16/vx");

size_t DoubledSize(size_t aPos, size_t aLength) {
    return 2 * (aPos + aLength);
}

// The same with doubled capacities: what the growth by steps costs.
void Append_vx_doubling(benchmark::State& aState) {
    for (auto _ : aState) {
        vxGrowingBuffer theBuffer(0);
        theBuffer.SetNewBufferSizeFunc(DoubledSize);
        for (size_t i = 0; i < kAppended; i += 16) {
            theBuffer.Append(kPiece, 16);
        }
        benchmark::DoNotOptimize(theBuffer.data());
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kAppended));
}
BENCHMARK(Append_vx_doubling)->Name("buffers/append_1MB_by16/vx_doubling");

void Append_std_vector(benchmark::State& aState) {
    for (auto _ : aState) {
        std::vector<char> theBuffer;
        for (size_t i = 0; i < kAppended; i += 16) {
            theBuffer.insert(theBuffer.end(), kPiece, kPiece + 16);
        }
        benchmark::DoNotOptimize(theBuffer.data());
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kAppended));
}
BENCHMARK(Append_std_vector)->Name("buffers/append_1MB_by16/std_vector");

void Append_std_string(benchmark::State& aState) {
    for (auto _ : aState) {
        std::string theBuffer;
        for (size_t i = 0; i < kAppended; i += 16) {
            theBuffer.append(kPiece, 16);
        }
        benchmark::DoNotOptimize(theBuffer.data());
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kAppended));
}
BENCHMARK(Append_std_string)->Name("buffers/append_1MB_by16/std_string");

void Append_GByteArray(benchmark::State& aState) {
    for (auto _ : aState) {
        GByteArray* theBuffer = g_byte_array_new();
        for (size_t i = 0; i < kAppended; i += 16) {
            g_byte_array_append(theBuffer, reinterpret_cast<const guint8*>(kPiece), 16);
        }
        benchmark::DoNotOptimize(theBuffer->data);
        g_byte_array_unref(theBuffer);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kAppended));
}
BENCHMARK(Append_GByteArray)->Name("buffers/append_1MB_by16/GByteArray");

// How fast do 64 KB become base64 text in a block of its own?

void Encode_vx(benchmark::State& aState) {
    for (auto _ : aState) {
        char* theText = nullptr;
        vxBase64_Encode(Bytes().data(), kBlock, &theText);
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Encode_vx)->Name("buffers/base64_encode_64k/vx");

void Encode_nettle(benchmark::State& aState) {
    for (auto _ : aState) {
        char* theText = static_cast<char*>(malloc(BASE64_ENCODE_RAW_LENGTH(kBlock) + 1));
        base64_encode_raw(theText, kBlock, Data(Bytes()));
        theText[BASE64_ENCODE_RAW_LENGTH(kBlock)] = '\0';
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Encode_nettle)->Name("buffers/base64_encode_64k/nettle");

void Encode_OpenSSL_EVP(benchmark::State& aState) {
    for (auto _ : aState) {
        unsigned char* theText =
            static_cast<unsigned char*>(malloc(BASE64_ENCODE_RAW_LENGTH(kBlock) + 1));
        EVP_EncodeBlock(theText, Data(Bytes()), static_cast<int>(kBlock));
        benchmark::DoNotOptimize(theText);
        free(theText);
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Encode_OpenSSL_EVP)->Name("buffers/base64_encode_64k/OpenSSL_EVP");

void Encode_QByteArray(benchmark::State& aState) {
    const QByteArray theBytes(Bytes().data(), static_cast<int>(kBlock));
    for (auto _ : aState) {
        const QByteArray theText = theBytes.toBase64();
        benchmark::DoNotOptimize(theText.constData());
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Encode_QByteArray)->Name("buffers/base64_encode_64k/QByteArray");

// How fast does the base64 text of 64 KB become bytes again?

void Decode_vx(benchmark::State& aState) {
    std::vector<char> theBytes(Base64Text().size());
    for (auto _ : aState) {
        size_t theSize = 0;
        vxBase64_DecodeSized(Base64Text().data(), Base64Text().size(), theBytes.data(), &theSize);
        benchmark::DoNotOptimize(theSize);
        benchmark::ClobberMemory();
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Decode_vx)->Name("buffers/base64_decode_64k/vx");

void Decode_OpenSSL_EVP(benchmark::State& aState) {
    std::vector<unsigned char> theBytes(Base64Text().size());
    for (auto _ : aState) {
        benchmark::DoNotOptimize(EVP_DecodeBlock(theBytes.data(), Data(Base64Text()),
                                                 static_cast<int>(Base64Text().size())));
        benchmark::ClobberMemory();
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Decode_OpenSSL_EVP)->Name("buffers/base64_decode_64k/OpenSSL_EVP");

void Decode_GLib(benchmark::State& aState) {
    std::vector<guchar> theBytes(Base64Text().size());
    for (auto _ : aState) {
        gint theRest = 0;
        guint theSave = 0;
        benchmark::DoNotOptimize(g_base64_decode_step(Base64Text().data(), Base64Text().size(),
                                                      theBytes.data(), &theRest, &theSave));
        benchmark::ClobberMemory();
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Decode_GLib)->Name("buffers/base64_decode_64k/GLib");

void Decode_nettle(benchmark::State& aState) {
    std::vector<uint8_t> theBytes(Base64Text().size());
    for (auto _ : aState) {
        struct base64_decode_ctx theContext;
        base64_decode_init(&theContext);
        size_t theSize = theBytes.size();
        base64_decode_update(&theContext, &theSize, theBytes.data(), Base64Text().size(),
                             Base64Text().data());
        benchmark::DoNotOptimize(base64_decode_final(&theContext));
        benchmark::ClobberMemory();
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * kBlock));
}
BENCHMARK(Decode_nettle)->Name("buffers/base64_decode_64k/nettle");

// What one writes in an hour: a position in bits, and eight bytes loaded at it; nothing more comes
// once fewer than eight are left.
class OwnReader {
public:
    OwnReader(const uint8_t* aBytes, size_t aSize)
        : mBytes(aBytes), mPosition(0), mEnd((aSize - 8) * 8) {}

    uint32_t Get(unsigned aCount) {
        if (mPosition + aCount > mEnd) {
            return 0;
        }
        const uint64_t theWindow = Window();
        mPosition += aCount;
        return static_cast<uint32_t>(theWindow >> (64 - aCount));
    }

    uint32_t GetUE() {
        if (mPosition >= mEnd) {
            return 0;
        }
        const uint64_t theWindow = Window();
        const unsigned theZeros = static_cast<unsigned>(__builtin_clzll(theWindow | 1));
        if (theZeros > 28) {
            return 0;
        }
        mPosition += 2 * theZeros + 1;
        return static_cast<uint32_t>(theWindow >> (63 - 2 * theZeros)) - 1;
    }

private:
    uint64_t Window() const {
        uint64_t theWord;
        memcpy(&theWord, mBytes + mPosition / 8, sizeof(theWord));
        return __builtin_bswap64(theWord) << (mPosition & 7);
    }

    const uint8_t* mBytes;
    size_t mPosition;
    size_t mEnd;
};

// Widths of fields, 1 to 32 bits, and bytes that hold them all.
const std::vector<uint8_t>& Widths() {
    static const std::vector<uint8_t> sWidths = [] {
        std::mt19937 theRandom(2);
        std::vector<uint8_t> theWidths(kFields);
        for (uint8_t& theWidth : theWidths) {
            theWidth = static_cast<uint8_t>(theRandom() % 32 + 1);
        }
        return theWidths;
    }();
    return sWidths;
}

const std::vector<uint8_t>& FieldBytes() {
    static const std::vector<uint8_t> sBytes = [] {
        std::mt19937 theRandom(3);
        std::vector<uint8_t> theBytes(kFields * 4 + 8);
        for (uint8_t& theByte : theBytes) {
            theByte = static_cast<uint8_t>(theRandom());
        }
        return theBytes;
    }();
    return sBytes;
}

// How fast are 100,000 fields of 1 to 32 bits read?

void BitFields_vx(benchmark::State& aState) {
    const std::vector<uint8_t>& theWidths = Widths();
    for (auto _ : aState) {
        vxBitString theBits(FieldBytes().data(), FieldBytes().size());
        uint32_t theSum = 0;
        for (const uint8_t theWidth : theWidths) {
            theSum += theBits.Get(theWidth);
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(BitFields_vx)->Name("buffers/bit_fields_1e5/vx");

void BitFields_own(benchmark::State& aState) {
    const std::vector<uint8_t>& theWidths = Widths();
    for (auto _ : aState) {
        OwnReader theBits(FieldBytes().data(), FieldBytes().size());
        uint32_t theSum = 0;
        for (const uint8_t theWidth : theWidths) {
            theSum += theBits.Get(theWidth);
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(BitFields_own)->Name("buffers/bit_fields_1e5/own_64bit_window");

void BitFields_Gst_unchecked(benchmark::State& aState) {
    const std::vector<uint8_t>& theWidths = Widths();
    for (auto _ : aState) {
        GstBitReader theBits;
        gst_bit_reader_init(&theBits, FieldBytes().data(), static_cast<guint>(FieldBytes().size()));
        uint32_t theSum = 0;
        for (const uint8_t theWidth : theWidths) {
            theSum += gst_bit_reader_get_bits_uint32_unchecked(&theBits, theWidth);
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(BitFields_Gst_unchecked)->Name("buffers/bit_fields_1e5/GstBitReader_unchecked");

void BitFields_Gst(benchmark::State& aState) {
    const std::vector<uint8_t>& theWidths = Widths();
    for (auto _ : aState) {
        GstBitReader theBits;
        gst_bit_reader_init(&theBits, FieldBytes().data(), static_cast<guint>(FieldBytes().size()));
        uint32_t theSum = 0;
        for (const uint8_t theWidth : theWidths) {
            guint32 theField = 0;
            gst_bit_reader_get_bits_uint32(&theBits, &theField, theWidth);
            theSum += theField;
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(BitFields_Gst)->Name("buffers/bit_fields_1e5/GstBitReader");

// 100,000 codes whose lengths fall off as those of a video header do, and bytes behind them.
const std::vector<uint8_t>& GolombBytes() {
    static const std::vector<uint8_t> sBytes = [] {
        std::mt19937 theRandom(4);
        std::vector<bool> theBits;
        for (size_t i = 0; i < kFields; ++i) {
            const uint32_t theValue =
                1 + (static_cast<uint32_t>(theRandom()) >> (16 + theRandom() % 16));
            const int theLength = 31 - __builtin_clz(theValue);
            theBits.insert(theBits.end(), static_cast<size_t>(theLength), false);
            for (int j = theLength; j >= 0; --j) {
                theBits.push_back((theValue >> j & 1) != 0);
            }
        }
        std::vector<uint8_t> theBytes(theBits.size() / 8 + 16, 0xff);
        for (size_t i = 0; i < theBits.size(); ++i) {
            if (!theBits[i]) {
                theBytes[i / 8] = static_cast<uint8_t>(theBytes[i / 8] & ~(0x80 >> i % 8));
            }
        }
        return theBytes;
    }();
    return sBytes;
}

// How fast are 100,000 Exp-Golomb codes read?

void Golomb_vx(benchmark::State& aState) {
    for (auto _ : aState) {
        vxBitString theBits(GolombBytes().data(), GolombBytes().size());
        uint32_t theSum = 0;
        for (size_t i = 0; i < kFields; ++i) {
            theSum += theBits.GetUE();
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(Golomb_vx)->Name("buffers/exp_golomb_1e5/vx");

void Golomb_own(benchmark::State& aState) {
    for (auto _ : aState) {
        OwnReader theBits(GolombBytes().data(), GolombBytes().size());
        uint32_t theSum = 0;
        for (size_t i = 0; i < kFields; ++i) {
            theSum += theBits.GetUE();
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(Golomb_own)->Name("buffers/exp_golomb_1e5/own_64bit_window");

uint32_t GstUE(GstBitReader& aBits) {
    guint32 theBit = 0;
    guint theZeros = 0;
    while (gst_bit_reader_get_bits_uint32(&aBits, &theBit, 1) && theBit == 0) {
        ++theZeros;
    }
    guint32 theRest = 0;
    gst_bit_reader_get_bits_uint32(&aBits, &theRest, theZeros);
    return (1U << theZeros) - 1 + theRest;
}

void Golomb_Gst(benchmark::State& aState) {
    for (auto _ : aState) {
        GstBitReader theBits;
        gst_bit_reader_init(&theBits, GolombBytes().data(),
                            static_cast<guint>(GolombBytes().size()));
        uint32_t theSum = 0;
        for (size_t i = 0; i < kFields; ++i) {
            theSum += GstUE(theBits);
        }
        benchmark::DoNotOptimize(theSum);
    }
}
BENCHMARK(Golomb_Gst)->Name("buffers/exp_golomb_1e5/GstBitReader");

}  // namespace
