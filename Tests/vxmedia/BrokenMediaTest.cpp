// Every sample cut at every length and changed at random: the readers answer or refuse, never more.

#include <gtest/gtest.h>
#include <libvxOS/Dir.h>

#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "support/Reports.h"
#include "vxmedia/MemorySource.h"

using namespace vxtest;

namespace {

struct Sample {
    std::string mName;
    std::string mBytes;
};

std::vector<std::string> NamesIn(const std::string& aFolder) {
    std::vector<std::string> theNames;
    vxDirTraverser* theWalk = vxDirTraverser_New(aFolder.c_str());
    for (const vxDirEntry* theEntry =
             vxDirTraverser_GetFirst(theWalk, "*", vxDIR_FILES | vxDIR_DIRS, NULL);
         theEntry != NULL; theEntry = vxDirTraverser_GetNext(theWalk, NULL)) {
        theNames.push_back(theEntry->mName);
    }
    vxDirTraverser_Delete(theWalk);
    std::sort(theNames.begin(), theNames.end());
    return theNames;
}

std::vector<Sample> LoadSamples() {
    std::vector<Sample> theSamples;
    for (const std::string& theFolder : NamesIn(VXMEDIA_SAMPLES)) {
        for (const std::string& theName : NamesIn(VXMEDIA_SAMPLES "/" + theFolder)) {
            std::ifstream theFile(VXMEDIA_SAMPLES "/" + theFolder + "/" + theName,
                                  std::ios::binary);
            theSamples.push_back(
                {theName, std::string(std::istreambuf_iterator<char>(theFile), {})});
        }
    }
    return theSamples;
}

// What holds of every answer, whatever the bytes.
void ExpectSane(const std::string& aBytes, const std::string& aName) {
    MemorySource theSource(aBytes);
    const vxmedia::MediaReading theReading = vxmedia::ReadMedia(theSource, aName.c_str());
    EXPECT_LE(theSource.mFetchedBytes, 2u << 20);
    EXPECT_FALSE(theSource.HasFailed());
    if (theReading.IsMedia()) {
        EXPECT_NE(theReading.mFacts.IsPicture(), theReading.mFacts.IsSound());
        EXPECT_FALSE(theReading.mFacts.mDetail.IsEmpty());
        EXPECT_TRUE(!theReading.mFacts.IsSound() || theReading.mFacts.mRate != 0);
        EXPECT_TRUE(theReading.mTags.mTitle.IsValidUTF8());
        EXPECT_TRUE(theReading.mTags.mCreator.IsValidUTF8());
    } else {
        EXPECT_TRUE(theReading.mTags.IsEmpty());
    }
}

TEST(BrokenMediaTest, EverySampleIsReadWhole) {
    const std::vector<Sample> theSamples = LoadSamples();
    EXPECT_EQ(theSamples.size(), 30u);
    for (const Sample& theSample : theSamples) {
        EXPECT_TRUE(ReadBytes(theSample.mBytes, theSample.mName.c_str()).IsMedia())
            << theSample.mName;
        EXPECT_TRUE(ReadBytes(theSample.mBytes, "").IsMedia()) << theSample.mName;
    }
}

TEST(BrokenMediaTest, EveryTruncationOfEverySampleIsSurvived) {
    Reports theReports;
    for (const Sample& theSample : LoadSamples()) {
        SCOPED_TRACE(theSample.mName);
        for (size_t i = 0; i < theSample.mBytes.size(); i += i < 6000 ? 1 : 97) {
            ExpectSane(theSample.mBytes.substr(0, i), theSample.mName);
        }
    }
    EXPECT_TRUE(theReports.Assertions().empty());
}

TEST(BrokenMediaTest, RandomChangesAreSurvived) {
    Reports theReports;
    std::mt19937 theRandom(20240607);
    for (const Sample& theSample : LoadSamples()) {
        SCOPED_TRACE(theSample.mName);
        for (int i = 0; i < 1000; ++i) {
            std::string theBytes = theSample.mBytes;
            // Headers stand at the start; some changes go anywhere, and some cut the file.
            const size_t theRange =
                i % 4 == 0 ? theBytes.size() : std::min<size_t>(theBytes.size(), 128);
            for (auto j = theRandom() % 8 + 1; j > 0; --j) {
                theBytes[theRandom() % theRange] =
                    static_cast<char>(i % 3 == 0 ? 0xFF : theRandom());
            }
            theBytes.resize(i % 5 == 0 ? theRandom() % theBytes.size() : theBytes.size());
            ExpectSane(theBytes, theSample.mName);
        }
    }
    EXPECT_TRUE(theReports.Assertions().empty());
}

TEST(BrokenMediaTest, RandomBytesBehindEverySignatureAreSurvived) {
    std::mt19937 theRandom(7);
    const std::string kStarts[] = {Raw("\x89PNG\r\n\x1A\n"),
                                   Raw("\xFF\xD8\xFF"),
                                   "GIF89a",
                                   Raw("RIFF\0\0\0\0WAVE"),
                                   "fLaC",
                                   Raw("OggS\0"),
                                   "ID3",
                                   Raw("\xFF\xFB\x90"),
                                   ""};
    for (const std::string& theStart : kStarts) {
        for (int i = 0; i < 2000; ++i) {
            std::string theBytes = theStart;
            for (auto j = theRandom() % 600; j > 0; --j) {
                theBytes += static_cast<char>(theRandom());
            }
            ExpectSane(theBytes, i % 2 == 0 ? "a.mp3" : "a.ogg");
        }
    }
}

}  // namespace
