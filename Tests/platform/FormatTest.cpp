#include <libteskTools/Format.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

constexpr size_t kRoom = 2000;

// Formats are picked at random here, so the compiler cannot check them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string FormatV(const char* aFormat, va_list anArgs) {
    char theBuffer[kRoom];
    const int theLength = vx_vsnprintf(theBuffer, sizeof(theBuffer), aFormat, anArgs);
    return theLength < 0 ? "failed" : std::string(theBuffer, static_cast<size_t>(theLength));
}

std::string CLibraryV(const char* aFormat, va_list anArgs) {
    char theBuffer[kRoom];
    const int theLength = vsnprintf(theBuffer, sizeof(theBuffer), aFormat, anArgs);
    return theLength < 0 ? "failed" : std::string(theBuffer, static_cast<size_t>(theLength));
}

void ExpectAsCLibrary(const char* aFormat, ...) {
    va_list theArgs;
    va_start(theArgs, aFormat);
    va_list theCopy;
    va_copy(theCopy, theArgs);
    EXPECT_EQ(FormatV(aFormat, theArgs), CLibraryV(aFormat, theCopy)) << aFormat;
    va_end(theCopy);
    va_end(theArgs);
}
#pragma GCC diagnostic pop

}  // namespace

TEST(FormatTest, TheTextIsCutButItsWholeLengthReturned) {
    char theBuffer[8];
    memset(theBuffer, 'x', sizeof(theBuffer));
    EXPECT_EQ(vx_snprintf(theBuffer, 4, "%s", "abcdef"), 6);
    EXPECT_STREQ(theBuffer, "abc");
    EXPECT_EQ(theBuffer[4], 'x');
    EXPECT_EQ(vx_snprintf(theBuffer, 7, "%s", "abcdef"), 6);
    EXPECT_STREQ(theBuffer, "abcdef");
    EXPECT_EQ(vx_snprintf(theBuffer, 1, "%d", 12345), 5);
    EXPECT_STREQ(theBuffer, "");
    theBuffer[0] = 'x';
    EXPECT_EQ(vx_snprintf(theBuffer, 0, "%d", 12345), 5);
    EXPECT_EQ(theBuffer[0], 'x');
    EXPECT_EQ(vx_snprintf(nullptr, 0, "%5000s|", ""), 5001);
}

TEST(FormatTest, EachPieceMayBeTheOneThatIsCut) {
    char theWhole[32];
    const int theLength = vx_snprintf(theWhole, sizeof(theWhole), "ab%5d%-4sx%%%c", 42, "yz", 'q');
    ASSERT_STREQ(theWhole, "ab   42yz  x%q");
    ASSERT_EQ(theLength, 14);
    for (size_t i = 1; i < 20; i++) {
        SCOPED_TRACE(i);
        char theCut[32];
        memset(theCut, '#', sizeof(theCut));
        EXPECT_EQ(vx_snprintf(theCut, i, "ab%5d%-4sx%%%c", 42, "yz", 'q'), theLength);
        EXPECT_EQ(std::string(theCut), std::string(theWhole).substr(0, i - 1));
        EXPECT_EQ(theCut[i > 15 ? 15 : i], '#');
    }
}

TEST(FormatTest, OrdinaryConversions) {
    ExpectAsCLibrary("plain");
    ExpectAsCLibrary("%%");
    ExpectAsCLibrary("100%%, %s", "abc");
    ExpectAsCLibrary("%d %i %u", -1, 42, 4000000000u);
    ExpectAsCLibrary("%d %d", INT_MIN, INT_MAX);
    ExpectAsCLibrary("%ld %lu %lld %llu", LONG_MIN, ULONG_MAX, LLONG_MIN, ULLONG_MAX);
    ExpectAsCLibrary("%zu %zd %jd", static_cast<size_t>(-1), static_cast<ssize_t>(-5),
                     static_cast<intmax_t>(-7));
    ExpectAsCLibrary("%hd %hu %hhd %hhu", -1, 70000, -200, 300);
    ExpectAsCLibrary("%x %X %o %lx %#x %#o", 0xBEEFu, 0xBEEFu, 8u, 0xBEEFul, 5u, 5u);
    ExpectAsCLibrary("%c%c", 'a', 200);
    ExpectAsCLibrary("%s|%10s|%-10s|%.2s|%10.2s|%-10.2s|%.0s", "abc", "abc", "abc", "abc", "abc",
                     "abc", "abc");
    ExpectAsCLibrary("%5d|%-5d|%05d|%+d|% d|%+5d|%-+5d|%+05d", 42, 42, 42, 42, 42, 42, 42, 42);
    ExpectAsCLibrary("%.3d|%.0d|%8.3d|%-8.3d|%08.3d|%.0d", 5, 5, 5, 5, 5, 0);
    ExpectAsCLibrary("%*d|%-*d|%*d|%.*d|%.*s|%.*d", 6, 42, 6, 42, -6, 42, 4, 42, 2, "abc", -1, 42);
    ExpectAsCLibrary("%p %p", static_cast<void*>(nullptr), reinterpret_cast<void*>(0x1234));
    ExpectAsCLibrary("%.*s", 3, "abcdef");
    ExpectAsCLibrary("%2$s %1$d", 5, "abc");
    ExpectAsCLibrary("%ls", L"wide");
    ExpectAsCLibrary("%s %.3s", static_cast<char*>(nullptr), static_cast<char*>(nullptr));
    ExpectAsCLibrary("%5c|%-5c|", 'a', 'b');
    ExpectAsCLibrary("%td %tu", static_cast<ptrdiff_t>(-3), static_cast<ptrdiff_t>(3));
    ExpectAsCLibrary("%'d", 1234567);
    ExpectAsCLibrary("%a", 1.5);
    ExpectAsCLibrary("%Lf", 1.5L);
}

TEST(FormatTest, APrecisionBoundsATextThatHasNoNul) {
    const char theText[3] = {'a', 'b', 'c'};
    char theBuffer[8];
    EXPECT_EQ(vx_snprintf(theBuffer, sizeof(theBuffer), "%.3s", theText), 3);
    EXPECT_STREQ(theBuffer, "abc");
}

TEST(FormatTest, RealNumbers) {
    constexpr double kValues[] = {0.0,   -0.0,    1.0,     -1.5,     0.1,      123456.789, 1e-5,
                                  1e100, 1e-100,  0.00005, 99999.95, 1e15,     2.5,        0.5,
                                  1e21,  DBL_MAX, DBL_MIN, 4.9e-324, INFINITY, -INFINITY,  NAN};
    constexpr const char* kFormats[] = {"%f",       "%e",     "%g",       "%.0f", "%.2f", "%.10g",
                                        "%.17g",    "%10.3f", "%-12.3e|", "%+g",  "% g",  "%012.4f",
                                        "%.0e",     "%.0g",   "%G",       "%E",   "%F",   "%#g",
                                        "%+010.1f", "%#.0f",  "%.300f"};
    for (const char* theFormat : kFormats) {
        for (const double theValue : kValues) {
            SCOPED_TRACE(theValue);
            ExpectAsCLibrary(theFormat, theValue);
        }
    }
}

TEST(FormatTest, RandomConversionsAgreeWithTheCLibrary) {
    std::mt19937_64 theEngine(5);
    const auto thePick = [&](size_t aLimit) { return static_cast<size_t>(theEngine() % aLimit); };
    for (int i = 0; i < 50000; i++) {
        std::string theFormat(thePick(4), '.');
        theFormat += '%';
        for (size_t j = thePick(3); j > 0; j--) {
            theFormat += "-+ 0#"[thePick(5)];
        }
        if (thePick(2) == 0) {
            theFormat += std::to_string(thePick(30));
        }
        if (thePick(2) == 0) {
            theFormat += '.';
            theFormat += thePick(4) == 0 ? "" : std::to_string(thePick(25));
        }
        const uint64_t theBits = theEngine() >> thePick(64);
        const std::string theTail(thePick(3), '!');
        switch (thePick(4)) {
            case 0:
                ExpectAsCLibrary((theFormat + "diuxXo"[thePick(6)] + theTail).c_str(),
                                 static_cast<int>(theBits));
                break;
            case 1:
                ExpectAsCLibrary((theFormat + "ll" + "diuxXo"[thePick(6)] + theTail).c_str(),
                                 static_cast<long long>(theBits));
                break;
            case 2:
                ExpectAsCLibrary((theFormat + "s" + theTail).c_str(),
                                 std::string(thePick(40), 's').c_str());
                break;
            default:
                ExpectAsCLibrary(
                    (theFormat + "eEfFgG"[thePick(6)] + theTail).c_str(),
                    std::ldexp(static_cast<double>(theBits), static_cast<int>(thePick(200)) - 100));
                break;
        }
    }
}

TEST(FormatTest, ALongTextIsFormattedWhole) {
    const std::string theText(100000, 'x');
    std::string theBuffer(100010, '\0');
    EXPECT_EQ(vx_snprintf(&theBuffer[0], theBuffer.size(), "<%s>", theText.c_str()), 100002);
    EXPECT_EQ(std::string(theBuffer.c_str()), "<" + theText + ">");
}

TEST(FormatTest, ALengthThatIsNoIntFails) {
    volatile int theWidth = INT_MAX;  // unknown to the compiler, which would object
    EXPECT_LT(vx_snprintf(nullptr, 0, "%*d%s", theWidth, 5, "x"), 0);
    EXPECT_LT(vx_snprintf(nullptr, 0, "%*s%*s", theWidth, "", theWidth, ""), 0);
}
