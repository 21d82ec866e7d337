// Obfuscated texts, short as a password and long as a document, beside the ciphers of three
// libraries with the base64 that one would take with them, and beside a stream written by hand.

#include <benchmark/benchmark.h>
#include <gcrypt.h>
#include <glib.h>
#include <nettle/arcfour.h>
#include <nettle/base64.h>
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/evp.h>
#include <openssl/rc4.h>

#include <QByteArray>
#include <cstring>
#include <string>
#include <utility>

#include "vx/Obfuscate.h"

namespace {

constexpr char kKey[] = "the key of a program";
constexpr size_t kKeyLength = sizeof(kKey) - 1;

const unsigned char* Bytes(const std::string& aText) {
    return reinterpret_cast<const unsigned char*>(aText.data());
}

unsigned char* Bytes(std::string& aText) {
    return reinterpret_cast<unsigned char*>(aText.data());
}

struct VX {
    static vxCString To(const std::string& aText) {
        return vxObfuscate::To_B64RC4(aText.c_str(), kKey);
    }
    static vxCString From(const std::string& aText) {
        return vxObfuscate::From_B64RC4(aText.c_str(), kKey);
    }
    static const char* Data(const vxCString& aText) { return aText.c_str(); }
    static size_t Size(const vxCString& aText) { return aText.length(); }
};

struct StdResult {
    static const char* Data(const std::string& aText) { return aText.data(); }
    static size_t Size(const std::string& aText) { return aText.size(); }
};

struct OpenSSL : StdResult {
    static std::string Cipher(const std::string& aText) {
        RC4_KEY theKey;
        RC4_set_key(&theKey, kKeyLength, reinterpret_cast<const unsigned char*>(kKey));
        std::string theResult(aText.size(), '\0');
        RC4(&theKey, aText.size(), Bytes(aText), Bytes(theResult));
        return theResult;
    }
    static std::string To(const std::string& aText) {
        const std::string theCipher = Cipher(aText);
        std::string theResult(4 * ((theCipher.size() + 2) / 3) + 1, '\0');
        const int theLength =
            EVP_EncodeBlock(Bytes(theResult), Bytes(theCipher), static_cast<int>(theCipher.size()));
        theResult.resize(static_cast<size_t>(theLength));
        return theResult;
    }
    static std::string From(const std::string& aText) {
        std::string theCipher(aText.size(), '\0');
        const int theLength =
            EVP_DecodeBlock(Bytes(theCipher), Bytes(aText), static_cast<int>(aText.size()));
        const size_t thePadding = aText.size() - aText.find_last_not_of('=') - 1;
        theCipher.resize(static_cast<size_t>(theLength) - thePadding);
        return Cipher(theCipher);
    }
};

struct GcryptGLib : StdResult {
    static void Cipher(void* aBytes, size_t aLength) {
        gcry_cipher_hd_t theCipher;
        gcry_cipher_open(&theCipher, GCRY_CIPHER_ARCFOUR, GCRY_CIPHER_MODE_STREAM, 0);
        gcry_cipher_setkey(theCipher, kKey, kKeyLength);
        gcry_cipher_encrypt(theCipher, aBytes, aLength, nullptr, 0);
        gcry_cipher_close(theCipher);
    }
    static std::string To(std::string aText) {
        Cipher(aText.data(), aText.size());
        char* theText = g_base64_encode(Bytes(aText), aText.size());
        std::string theResult(theText);
        g_free(theText);
        return theResult;
    }
    static std::string From(const std::string& aText) {
        size_t theLength;
        unsigned char* theBytes = g_base64_decode(aText.c_str(), &theLength);
        Cipher(theBytes, theLength);
        std::string theResult(reinterpret_cast<char*>(theBytes), theLength);
        g_free(theBytes);
        return theResult;
    }
};

struct Nettle : StdResult {
    static void Cipher(std::string& aText) {
        arcfour_ctx theContext;
        arcfour_set_key(&theContext, kKeyLength, reinterpret_cast<const uint8_t*>(kKey));
        arcfour_crypt(&theContext, aText.size(), Bytes(aText), Bytes(aText));
    }
    static std::string To(std::string aText) {
        Cipher(aText);
        std::string theResult(BASE64_ENCODE_RAW_LENGTH(aText.size()), '\0');
        base64_encode_raw(theResult.data(), aText.size(), Bytes(aText));
        return theResult;
    }
    static std::string From(const std::string& aText) {
        base64_decode_ctx theContext;
        base64_decode_init(&theContext);
        std::string theResult(BASE64_DECODE_LENGTH(aText.size()), '\0');
        size_t theLength = theResult.size();
        base64_decode_update(&theContext, &theLength, Bytes(theResult), aText.size(), aText.data());
        theResult.resize(theLength);
        Cipher(theResult);
        return theResult;
    }
};

struct QtOwn {
    static void Cipher(QByteArray& aText) {
        unsigned char theState[256];
        for (int i = 0; i < 256; ++i) {
            theState[i] = static_cast<unsigned char>(i);
        }
        for (unsigned i = 0, j = 0; i < 256; ++i) {
            j = (j + theState[i] + static_cast<unsigned char>(kKey[i % kKeyLength])) & 255;
            std::swap(theState[i], theState[j]);
        }
        unsigned x = 0;
        unsigned y = 0;
        for (char& theByte : aText) {
            x = (x + 1) & 255;
            y = (y + theState[x]) & 255;
            std::swap(theState[x], theState[y]);
            theByte = static_cast<char>(theByte ^ theState[(theState[x] + theState[y]) & 255]);
        }
    }
    static QByteArray To(const std::string& aText) {
        QByteArray theBytes(aText.data(), static_cast<qsizetype>(aText.size()));
        Cipher(theBytes);
        return theBytes.toBase64();
    }
    static QByteArray From(const std::string& aText) {
        QByteArray theBytes = QByteArray::fromBase64(
            QByteArray::fromRawData(aText.data(), static_cast<qsizetype>(aText.size())));
        Cipher(theBytes);
        return theBytes;
    }
    static const char* Data(const QByteArray& aText) { return aText.constData(); }
    static size_t Size(const QByteArray& aText) { return static_cast<size_t>(aText.size()); }
};

// The longest text of at most so many bytes whose cipher has no zero: the library cuts at zeros, so
// every byte that would give one is replaced.
std::string PlainText(size_t aSize) {
    std::string theText;
    for (size_t i = 0; i < aSize; ++i) {
        theText += static_cast<char>('a' + i % 26);
    }
    const std::string theCipher = OpenSSL::Cipher(theText);
    for (size_t i = 0; i < aSize; ++i) {
        if (theCipher[i] == '\0') {
            theText[i] = 'A';
        }
    }
    return theText;
}

template <typename Library>
void To(benchmark::State& aState, size_t aSize) {
    const std::string theText = PlainText(aSize);
    const auto theExpected = OpenSSL::To(theText);
    for (auto theTurn : aState) {
        const auto theResult = Library::To(theText);
        if (Library::Size(theResult) != theExpected.size()) {
            aState.SkipWithError("wrong length");
            break;
        }
        benchmark::DoNotOptimize(Library::Data(theResult));
    }
    const auto theResult = Library::To(theText);
    if (theExpected.compare(Library::Data(theResult)) != 0) {
        aState.SkipWithError("wrong text");
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aSize));
}

template <typename Library>
void From(benchmark::State& aState, size_t aSize) {
    const std::string theExpected = PlainText(aSize);
    const std::string theText = OpenSSL::To(theExpected);
    for (auto theTurn : aState) {
        const auto theResult = Library::From(theText);
        if (Library::Size(theResult) != aSize) {
            aState.SkipWithError("wrong length");
            break;
        }
        benchmark::DoNotOptimize(Library::Data(theResult));
    }
    const auto theResult = Library::From(theText);
    if (theExpected.compare(Library::Data(theResult)) != 0) {
        aState.SkipWithError("wrong text");
    }
    aState.SetBytesProcessed(static_cast<int64_t>(aState.iterations() * aSize));
}

template <typename Library>
bool Register(const std::string& aName) {
    using benchmark::RegisterBenchmark;
    const std::string theTo = "obfuscation/to/";
    const std::string theFrom = "obfuscation/from/";
    RegisterBenchmark((theTo + "64/" + aName).c_str(), To<Library>, 64);
    RegisterBenchmark((theTo + "64k/" + aName).c_str(), To<Library>, 65536);
    RegisterBenchmark((theFrom + "64/" + aName).c_str(), From<Library>, 64);
    RegisterBenchmark((theFrom + "64k/" + aName).c_str(), From<Library>, 65536);
    return true;
}

[[maybe_unused]] const bool sfRegistered =
    Register<VX>("vx") && Register<OpenSSL>("OpenSSL") && Register<GcryptGLib>("libgcrypt_GLib") &&
    Register<Nettle>("nettle") && Register<QtOwn>("Qt_own_rc4");

}  // namespace
