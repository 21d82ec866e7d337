// Random operations beside std::string, which is the model.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support/Text.h"
#include "vx/CString.h"

using vxtest::Text;

namespace {

constexpr size_t npos = vxCString::npos;

// Small alphabets make matches, repeats and overlaps likely.
class Source {
public:
    explicit Source(unsigned aStart) : mEngine(aStart) {}

    size_t Below(size_t aLimit) {
        return std::uniform_int_distribution<size_t>(0, aLimit - 1)(mEngine);
    }

    std::string Bytes(size_t aMax, const std::string& anAlphabet) {
        std::string theBytes(Below(aMax + 1), '\0');
        for (char& theByte : theBytes) {
            theByte = anAlphabet[Below(anAlphabet.size())];
        }
        return theBytes;
    }

private:
    std::mt19937 mEngine;
};

std::string Lower(std::string aStr) {
    for (char& theChar : aStr) {
        theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
    }
    return aStr;
}

size_t ReplaceAll(std::string& aStr, const std::string& anOld, const std::string& aNew) {
    size_t theCount = 0;
    size_t thePos = 0;
    while (!anOld.empty() && thePos < aStr.size() &&
           (thePos = aStr.find(anOld, thePos)) != std::string::npos) {
        aStr.replace(thePos, anOld.size(), aNew);
        thePos += aNew.size();
        theCount++;
    }
    return theCount;
}

vxCString Make(const std::string& aStr) {
    return vxCString(aStr.data(), aStr.size());
}

}  // namespace

TEST(CStringRandomTest, SearchesAgreeWithTheModel) {
    Source theSource(1);
    for (int i = 0; i < 20000; i++) {
        const std::string theText =
            theSource.Bytes(60, i % 2 == 0 ? "ab" : std::string("aAb\0", 4));
        const std::string theNeedle =
            theSource.Bytes(i % 5 == 0 ? 12 : 4, i % 2 == 0 ? "ab" : std::string("aAb\0", 4));
        const size_t theStart = theSource.Below(theText.size() + 1);
        SCOPED_TRACE(testing::Message() << "'" << theNeedle << "' in '" << theText << "' from "
                                        << theStart << ", round " << i);
        const vxCString theStr = Make(theText);

        size_t theExpected = theNeedle.empty() ? npos : theText.find(theNeedle, theStart);
        ASSERT_EQ(theStr.Find(Make(theNeedle), theStart), theExpected);

        const std::string theCNeedle = theNeedle.c_str();
        theExpected = theStart == 0 || theCNeedle.size() > theStart
                          ? npos
                          : theText.substr(0, theStart).rfind(theCNeedle);
        ASSERT_EQ(theStr.FindLastStr(theCNeedle.c_str(), theStart), theExpected);

        theExpected = theNeedle.empty() ? npos : Lower(theText).find(Lower(theNeedle), theStart);
        if (theExpected != npos && theExpected >= theText.size() - theStart) {
            theExpected = npos;
        }
        ASSERT_EQ(theStr.FindNoCase(Make(theNeedle), theStart), theExpected);

        ASSERT_EQ(theStr.FindFirstOf(theCNeedle.c_str(), theStart),
                  theText.find_first_of(theCNeedle, theStart));
        ASSERT_EQ(theStr.FindLastOf(theCNeedle.c_str(), theStart),
                  theText.find_last_of(theCNeedle, theStart));
        ASSERT_EQ(theStr.FindFirstNotOf(theCNeedle.c_str(), theStart),
                  theText.find_first_not_of(theCNeedle, theStart));
    }
}

TEST(CStringRandomTest, ChangesAgreeWithTheModelAndLeaveCopiesAlone) {
    Source theSource(2);
    for (int theRound = 0; theRound < 300; theRound++) {
        std::string theModel = theSource.Bytes(30, "abc ");
        vxCString theStr = Make(theModel);
        for (int i = 0; i < 60; i++) {
            const vxCString theCopy = theSource.Below(2) == 0 ? theStr : vxCString();
            const std::string theCopyModel = theCopy.IsEmpty() ? std::string() : theModel;
            const std::string theOther = theSource.Bytes(40, "abc ");
            const size_t thePos = theSource.Below(theModel.size() + 1);
            const size_t theCount = theSource.Below(20);
            const size_t theChoice = theSource.Below(12);
            SCOPED_TRACE(testing::Message()
                         << "round " << theRound << ", step " << i << ", choice " << theChoice);
            switch (theChoice) {
                case 0:
                    theStr += theOther.c_str();
                    theModel += theOther;
                    break;
                case 1:
                    theStr += 'z';
                    theModel += 'z';
                    break;
                case 2:
                    theStr.Insert(thePos, theOther.c_str());
                    theModel.insert(thePos, theOther);
                    break;
                case 3:
                    theStr.Erase(thePos, theCount);
                    theModel.erase(thePos, theCount);
                    break;
                case 4:
                    theStr.Replace(thePos, theCount, theOther.data(), theOther.size());
                    theModel.replace(thePos, theCount, theOther);
                    break;
                case 5: {
                    const std::string theOld = theSource.Bytes(3, "abc ");
                    const std::string theNew = theSource.Bytes(5, "abc ");
                    ASSERT_EQ(theStr.Replace(theOld.c_str(), theNew.c_str(), true),
                              ReplaceAll(theModel, theOld, theNew));
                    break;
                }
                case 6:
                    theStr.Pad(theCount, '.', i % 2 == 0);
                    theModel.insert(i % 2 == 0 ? theModel.size() : 0, theCount, '.');
                    break;
                case 7:
                    theStr.Truncate(thePos);
                    theModel.resize(thePos);
                    break;
                case 8:
                    theStr = theStr + theOther.c_str() + 'q';
                    theModel += theOther + 'q';
                    break;
                case 9:
                    theStr = theStr.c_str() + thePos;
                    theModel = theModel.substr(thePos);
                    break;
                case 10:
                    theStr.Insert(thePos, theStr.c_str() + thePos);
                    theModel.insert(thePos, theModel.substr(thePos));
                    break;
                default: {
                    theStr.TrimLeftRight();
                    const size_t theStart = theModel.find_first_not_of(' ');
                    theModel = theStart == npos ? std::string() : theModel.substr(theStart);
                    theModel.resize(theModel.find_last_not_of(' ') + 1);
                    break;
                }
            }
            if (theModel.size() > 400) {
                theStr.Truncate(20);
                theModel.resize(20);
            }
            ASSERT_EQ(Text(theStr), theModel);
            ASSERT_EQ(theStr.c_str()[theStr.length()], '\0');
            ASSERT_EQ(Text(theCopy), theCopyModel);
        }
    }
}

TEST(CStringRandomTest, OrderAgreesWithTheModel) {
    Source theSource(3);
    for (int i = 0; i < 20000; i++) {
        const std::string theLeft = theSource.Bytes(20, std::string("aAb\0\xFF", 5));
        std::string theRight = theSource.Bytes(20, std::string("aAb\0\xFF", 5));
        if (i % 3 == 0) {
            theRight = theLeft.substr(0, theSource.Below(theLeft.size() + 1)) + theRight;
        }
        const int theOrder = theLeft.compare(theRight);
        const int theResult = Make(theLeft).Compare(Make(theRight));
        ASSERT_EQ(theResult > 0, theOrder > 0);
        ASSERT_EQ(theResult < 0, theOrder < 0);
        ASSERT_EQ(Make(theLeft) == Make(theRight), theLeft == theRight);
        const int theFolded = Lower(theLeft).compare(Lower(theRight));
        ASSERT_EQ(Make(theLeft).CompareNoCase(Make(theRight)), (theFolded > 0) - (theFolded < 0));
    }
}
