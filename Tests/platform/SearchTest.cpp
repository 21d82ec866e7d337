#include <libteskTools/Search.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <random>
#include <string>

namespace {

size_t Position(const std::string& aText, const char* aPlace) {
    return aPlace == nullptr ? std::string::npos : static_cast<size_t>(aPlace - aText.data());
}

std::string Lower(std::string aStr) {
    for (char& theChar : aStr) {
        theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
    }
    return aStr;
}

}  // namespace

TEST(SearchTest, AnEmptyNeedleIsFoundAtItsEnd) {
    const std::string theText("abc");
    EXPECT_EQ(Position(theText, vxSearch_First(theText.data(), 3, "", 0)), 0u);
    EXPECT_EQ(Position(theText, vxSearch_Last(theText.data(), 3, "", 0)), 3u);
    EXPECT_EQ(Position(theText, vxSearch_FirstNoCase(theText.data(), 3, "", 0)), 0u);
    EXPECT_EQ(vxSearch_First(nullptr, 0, nullptr, 0), nullptr);
    EXPECT_EQ(vxSearch_First(nullptr, 0, "a", 1), nullptr);
    EXPECT_EQ(vxSearch_Last(nullptr, 0, "a", 1), nullptr);
    EXPECT_EQ(vxSearch_FirstNoCase(nullptr, 0, "a", 1), nullptr);
    EXPECT_EQ(vxSearch_LastByte(nullptr, 0, 'a'), nullptr);
}

TEST(SearchTest, TheLastByteIsFound) {
    const std::string theText("a\0b\0c", 5);
    EXPECT_EQ(Position(theText, vxSearch_LastByte(theText.data(), 5, '\0')), 3u);
    EXPECT_EQ(Position(theText, vxSearch_LastByte(theText.data(), 5, 'a')), 0u);
    EXPECT_EQ(vxSearch_LastByte(theText.data(), 5, 'x'), nullptr);
}

TEST(SearchTest, RandomSearchesAgreeWithTheModel) {
    std::mt19937 theEngine(7);
    const std::string kAlphabets[] = {"ab", std::string("aAb\0", 4),
                                      "abcdefghijklmnopqrstuvwxyzABC"};
    const auto theBytes = [&](size_t aMax, const std::string& anAlphabet) {
        std::string theResult(theEngine() % (aMax + 1), '\0');
        for (char& theByte : theResult) {
            theByte = anAlphabet[theEngine() % anAlphabet.size()];
        }
        return theResult;
    };
    for (int i = 0; i < 30000; i++) {
        const std::string& theAlphabet = kAlphabets[i % 3];
        const std::string theText = theBytes(i % 10 == 0 ? 700 : 80, theAlphabet);
        std::string theNeedle = theBytes(i % 7 == 0 ? 40 : 5, theAlphabet);
        if (i % 4 == 0 && !theText.empty()) {
            theNeedle = theText.substr(theEngine() % theText.size(), theEngine() % 70);
        }
        ASSERT_EQ(Position(theText, vxSearch_First(theText.data(), theText.size(), theNeedle.data(),
                                                   theNeedle.size())),
                  theText.find(theNeedle));
        ASSERT_EQ(Position(theText, vxSearch_Last(theText.data(), theText.size(), theNeedle.data(),
                                                  theNeedle.size())),
                  theText.rfind(theNeedle));
        ASSERT_EQ(Position(theText, vxSearch_FirstNoCase(theText.data(), theText.size(),
                                                         theNeedle.data(), theNeedle.size())),
                  Lower(theText).find(Lower(theNeedle)));
    }
}

// Every length around the sizes of blocks, with the needle at every place or just cut off.
TEST(SearchTest, ANeedleIsFoundAtEveryPlaceOfEveryLength) {
    for (const std::string theNeedle : {"q", "qZ", "needle", "Quizzical jukebox of a thing"}) {
        for (size_t theLength = theNeedle.size(); theLength < 180;
             theLength += 1 + theLength / 10) {
            for (size_t i = 0; i + theNeedle.size() <= theLength; i++) {
                std::string theText(theLength, '.');
                theText.replace(i, theNeedle.size(), theNeedle);
                ASSERT_EQ(Position(theText, vxSearch_First(theText.data(), theLength,
                                                           theNeedle.data(), theNeedle.size())),
                          i);
                ASSERT_EQ(vxSearch_First(theText.data(), i + theNeedle.size() - 1, theNeedle.data(),
                                         theNeedle.size()),
                          nullptr);
                const std::string theFolded = Lower(theText);
                ASSERT_EQ(
                    Position(theFolded, vxSearch_FirstNoCase(theFolded.data(), theLength,
                                                             theNeedle.data(), theNeedle.size())),
                    i);
                ASSERT_EQ(vxSearch_CommonNoCase(theFolded.data(), theText.data(), theLength),
                          theLength);
                theText[i] = '#';
                ASSERT_EQ(vxSearch_CommonNoCase(theFolded.data(), theText.data(), theLength), i);
            }
        }
    }
}

// Only the case of letters is alike: no other two bytes that differ in that bit are.
TEST(SearchTest, EveryPairOfBytesFoldsAsASCII) {
    const auto theFold = [](int aByte) {
        return aByte >= 'A' && aByte <= 'Z' ? aByte + 32 : aByte;
    };
    for (int i = 0; i < 256; i++) {
        const std::string theLeft(20, static_cast<char>(i));
        for (int j = 0; j < 256; j++) {
            const std::string theRight(20, static_cast<char>(j));
            const bool theSame = theFold(i) == theFold(j);
            ASSERT_EQ(vxSearch_CommonNoCase(theLeft.data(), theRight.data(), 20),
                      theSame ? 20u : 0u);
            ASSERT_EQ(vxSearch_CommonNoCase(theLeft.data(), theRight.data(), 1), theSame ? 1u : 0u);
            ASSERT_EQ(vxSearch_FirstNoCase(theLeft.data(), 20, theRight.data(), 2) != nullptr,
                      theSame);
        }
    }
}

// Texts that let naive comparison look at most bytes again and again, so that the other search takes
// over; periods make its links matter.
TEST(SearchTest, PeriodicTextsAgreeWithTheModel) {
    for (const size_t thePeriod : std::initializer_list<size_t>{1, 2, 3, 7}) {
        for (const size_t theLength : std::initializer_list<size_t>{100, 5000}) {
            SCOPED_TRACE(testing::Message() << thePeriod << ", " << theLength);
            std::string theText(theLength, 'a');
            for (size_t i = 0; i < theLength; i += thePeriod) {
                theText[i] = thePeriod == 1 ? 'a' : 'b';
            }
            for (const char theOdd : {'a', 'b', 'c', 'A'}) {
                for (const size_t thePlace : {theLength / 3, theLength - 1, size_t{0}}) {
                    std::string theMarked = theText;
                    theMarked[thePlace] = theOdd;
                    for (const bool theAtEnd : {false, true}) {
                        std::string theNeedle = theText.substr(0, theLength / 4);
                        theNeedle.insert(theAtEnd ? theNeedle.size() : 0, 1, theOdd);
                        ASSERT_EQ(
                            Position(theMarked, vxSearch_First(theMarked.data(), theMarked.size(),
                                                               theNeedle.data(), theNeedle.size())),
                            theMarked.find(theNeedle));
                        ASSERT_EQ(
                            Position(theMarked, vxSearch_Last(theMarked.data(), theMarked.size(),
                                                              theNeedle.data(), theNeedle.size())),
                            theMarked.rfind(theNeedle));
                        ASSERT_EQ(Position(theMarked, vxSearch_FirstNoCase(
                                                          theMarked.data(), theMarked.size(),
                                                          theNeedle.data(), theNeedle.size())),
                                  Lower(theMarked).find(Lower(theNeedle)));
                    }
                }
            }
        }
    }
}
