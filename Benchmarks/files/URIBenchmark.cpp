// Query arguments of a request beside what a standard string and two URI libraries make of it. Each
// parses the target of one request and holds its arguments, decoded, in their order.

#include <Poco/URI.h>
#include <benchmark/benchmark.h>
#include <uriparser/Uri.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "vx/URIPathParser.h"

namespace {

constexpr char kTarget[] =
    "/library/tracks?artist=Some+Artist&album=An%20Album%20%26%20More&limit=50&offset=100"
    "&sort=title";
constexpr size_t kCount = 5;

void VxParse(benchmark::State& aState) {
    for (auto theTurn : aState) {
        const vxRef<vxURIPathParser> theParser = new vxURIPathParser(kTarget, true);
        if (theParser->GetQueryPartCount() != kCount) {
            aState.SkipWithError("wrong number of arguments");
        }
    }
}
BENCHMARK(VxParse)->Name("uri/parse_query/vx");

int HexDigit(char aChar) {
    return aChar >= 'a' ? aChar - 'a' + 10 : aChar >= 'A' ? aChar - 'A' + 10 : aChar - '0';
}

std::string Decode(const char* aStart, const char* anEnd) {
    std::string theText;
    theText.reserve(static_cast<size_t>(anEnd - aStart));
    while (aStart < anEnd) {
        if (*aStart == '+') {
            theText += ' ';
            ++aStart;
        } else if (*aStart == '%' && anEnd - aStart > 2) {
            theText += static_cast<char>(HexDigit(aStart[1]) << 4 | HexDigit(aStart[2]));
            aStart += 3;
        } else {
            theText += *aStart++;
        }
    }
    return theText;
}

const char* Find(const char* aStart, const char* anEnd, char aChar) {
    const void* thePos = memchr(aStart, aChar, static_cast<size_t>(anEnd - aStart));
    return thePos == nullptr ? anEnd : static_cast<const char*>(thePos);
}

void OwnParse(benchmark::State& aState) {
    for (auto theTurn : aState) {
        std::vector<std::pair<std::string, std::string>> theParts;
        const char* const theEnd = kTarget + strlen(kTarget);
        const char* theStart = Find(kTarget, theEnd, '?');
        const std::string thePath = Decode(kTarget, theStart);
        while (theStart < theEnd) {
            ++theStart;
            const char* theStop = Find(theStart, theEnd, '&');
            const char* theEqual = Find(theStart, theStop, '=');
            theParts.emplace_back(Decode(theStart, theEqual),
                                  Decode(theEqual < theStop ? theEqual + 1 : theStop, theStop));
            theStart = theStop;
        }
        benchmark::DoNotOptimize(thePath.data());
        if (theParts.size() != kCount) {
            aState.SkipWithError("wrong number of arguments");
        }
    }
}
BENCHMARK(OwnParse)->Name("uri/parse_query/own_vector_of_pairs");

void PocoParse(benchmark::State& aState) {
    for (auto theTurn : aState) {
        const Poco::URI theURI(kTarget);
        if (theURI.getQueryParameters().size() != kCount) {
            aState.SkipWithError("wrong number of arguments");
        }
    }
}
BENCHMARK(PocoParse)->Name("uri/parse_query/Poco_URI");

void UriParserParse(benchmark::State& aState) {
    for (auto theTurn : aState) {
        UriUriA theURI;
        UriQueryListA* theList = nullptr;
        int theCount = 0;
        uriParseSingleUriA(&theURI, kTarget, nullptr);
        uriDissectQueryMallocA(&theList, &theCount, theURI.query.first, theURI.query.afterLast);
        if (theCount != static_cast<int>(kCount)) {
            aState.SkipWithError("wrong number of arguments");
        }
        uriFreeQueryListA(theList);
        uriFreeUriMembersA(&theURI);
    }
}
BENCHMARK(UriParserParse)->Name("uri/parse_query/uriparser");

}  // namespace
