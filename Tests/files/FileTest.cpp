#include "vx/File.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"
#include "vx/CString.h"
#include "vx/DateTime.h"
#include "vx/PathName.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::Fails;
using vxtest::Moves;
using vxtest::Reports;
using vxtest::ScriptedIO;
using vxtest::TempDir;

namespace {

constexpr int kCreateAndWrite = vxFileOpenMode_Create | vxFileOpenMode_Write;

// The descriptor of a file, as log records show it.
std::string Shown(vxFile& aFile) {
    const vxFileFD theFD = aFile.Detach();
    aFile.Attach(theFD);
    char theText[32];
    snprintf(theText, sizeof(theText), "%p", reinterpret_cast<void*>(theFD));
    return theText;
}

std::string ReadFrom(vxFile& aFile, size_t aSize) {
    std::string theText(aSize, '?');
    const ssize_t theCount = aFile.Read(theText.data(), aSize);
    theText.resize(theCount < 0 ? 0 : static_cast<size_t>(theCount));
    return theText;
}

void ExpectOneError(const Reports& aReports, const std::string& aText) {
    EXPECT_THAT(aReports.LogTexts(), ElementsAre(aText));
    for (const vxtest::LogRecord& theRecord : aReports.Records()) {
        EXPECT_EQ(theRecord.mLevel, VXLOGLEVEL_ERROR);
        EXPECT_EQ(theRecord.mModule, 42);
    }
    EXPECT_THAT(aReports.Assertions(), IsEmpty());
}

}  // namespace

TEST(FileTest, ANewObjectHasNoFileAndNoError) {
    Reports theReports;
    vxFile theFile;
    EXPECT_FALSE(theFile.IsOpened());
    EXPECT_EQ(theFile.GetErrorCode(), 0);
    EXPECT_EQ(theFile.Detach(), kvxFileFDInvalid);
    EXPECT_FALSE(theFile.EndOfFile());
    EXPECT_TRUE(theFile.Flush());
    EXPECT_TRUE(theFile.Close());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(FileTest, CreatingWithoutTruncationRefusesAFileThatIsThere) {
    TempDir theDir;
    const std::string thePath = theDir / "new";
    Reports theReports;
    vxFile theFile;
    EXPECT_TRUE(theFile.Create(thePath.c_str(), false, 3));
    EXPECT_EQ(theFile.Write("abc", 3), 3u);
    EXPECT_EQ(theFile.Seek(0, vxFileSeekMode_Begin), 0);
    EXPECT_EQ(ReadFrom(theFile, 9), "abc");
    EXPECT_TRUE(theFile.Close());
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());

    EXPECT_FALSE(theFile.Create(thePath.c_str(), false, 3));
    EXPECT_FALSE(theFile.IsOpened());
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorAlreadyExists);
    ExpectOneError(theReports, "Create: Cannot create file '" + thePath + "'\n");
    EXPECT_EQ(theDir.Read("new"), "abc");
}

TEST(FileTest, CreatingWithTruncationEmptiesAFileThatIsThere) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file", "abc");
    vxFile theFile;
    EXPECT_TRUE(theFile.Create(thePath.c_str(), true));
    EXPECT_EQ(theFile.Length(), 0);
    EXPECT_EQ(theDir.Read("file"), "");
}

TEST(FileTest, OpeningWhatIsNotThereIsLogged) {
    TempDir theDir;
    const std::string thePath = theDir / "none";
    Reports theReports;
    vxFile theFile(thePath.c_str(), vxFileOpenMode_Read);
    EXPECT_FALSE(theFile.IsOpened());
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorNotFound);
    ExpectOneError(theReports, "Open: Cannot open file '" + thePath + "'\n");
    theReports.Clear();
    EXPECT_FALSE(theFile.Open(NULL, vxFileOpenMode_Read));
    ExpectOneError(theReports, "Open: Cannot open file ''\n");
    theReports.Clear();
    EXPECT_FALSE(theFile.Create(NULL, true));
    ExpectOneError(theReports, "Create: Cannot create file ''\n");
}

TEST(FileTest, NothingIsLoggedBelowTheErrorLevel) {
    Reports theReports;
    vxLog_SetLevel(VXLOG_M_FILE, VXLOGLEVEL_NONE);
    vxFile theFile("/none/x", vxFileOpenMode_Read);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(FileTest, OpeningAgainClosesTheFirstFileOnlyOnSuccess) {
    TempDir theDir;
    const std::string theFirst = theDir.Write("first", "first");
    const std::string theSecond = theDir.Write("second", "second");
    Reports theReports;
    vxFile theFile(theFirst.c_str(), vxFileOpenMode_Read);
    EXPECT_FALSE(theFile.Open((theDir / "none").c_str(), vxFileOpenMode_Read));
    EXPECT_EQ(ReadFrom(theFile, 5), "first");
    EXPECT_TRUE(theFile.Open(theSecond.c_str(), vxFileOpenMode_Read));
    EXPECT_EQ(theFile.GetErrorCode(), 0);
    EXPECT_EQ(ReadFrom(theFile, 6), "second");
}

TEST(FileTest, AttachingClosesTheCurrentFileAndDetachingForgetsIt) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file", "abc");
    vxFile theFirst(thePath.c_str(), vxFileOpenMode_Read);
    vxFile theSecond(thePath.c_str(), vxFileOpenMode_Read);
    const vxFileFD theOldFD = theSecond.Detach();
    EXPECT_FALSE(theSecond.IsOpened());
    theSecond.Attach(theOldFD);
    const vxFileFD theFD = theFirst.Detach();
    theSecond.Attach(theFD);
    EXPECT_EQ(fcntl(static_cast<int>(theOldFD), F_GETFD), -1);
    theSecond.Attach(theFD);
    EXPECT_EQ(ReadFrom(theSecond, 3), "abc") << "its own descriptor stays open";
    vxFile theThird(theSecond.Detach());
    EXPECT_TRUE(theThird.IsOpened());
    EXPECT_TRUE(theThird.EndOfFile());
    EXPECT_TRUE(theThird.Close());
    EXPECT_EQ(fcntl(static_cast<int>(theFD), F_GETFD), -1);
}

TEST(FileTest, TheDestructorClosesTheFile) {
    vxFileFD theFD;
    {
        vxFile theFile("/dev/null", vxFileOpenMode_Read);
        theFD = theFile.Detach();
        theFile.Attach(theFD);
    }
    EXPECT_EQ(fcntl(static_cast<int>(theFD), F_GETFD), -1);
}

TEST(FileTest, AFailureToCloseIsLoggedAndTheFileGone) {
    vxFile theFile("/dev/null", vxFileOpenMode_Write);
    const std::string theShown = Shown(theFile);
    Reports theReports;
    ScriptedIO theScript;
    theScript.mCloses = {Fails(ENOSPC)};
    EXPECT_FALSE(theFile.Close());
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorNoSpace);
    EXPECT_FALSE(theFile.IsOpened());
    ExpectOneError(theReports, "Close: Cannot close file descriptor " + theShown + "\n");
    EXPECT_TRUE(theFile.Close());
    EXPECT_EQ(theFile.GetErrorCode(), 0);
}

TEST(FileTest, ReadingGivesBytesThenNothingThenTheFailure) {
    TempDir theDir;
    vxFile theFile(theDir.Write("file", "abcde").c_str(), vxFileOpenMode_Read);
    const std::string theShown = Shown(theFile);
    Reports theReports;
    EXPECT_EQ(ReadFrom(theFile, 3), "abc");
    EXPECT_EQ(ReadFrom(theFile, 3), "de");
    char theByte;
    EXPECT_EQ(theFile.Read(&theByte, 1), 0);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    ScriptedIO theScript;
    theScript.mReads = {Fails(EIO)};
    EXPECT_EQ(theFile.Read(&theByte, 1), -1);
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorUnknown);
    ExpectOneError(theReports, "Read: Cannot read from file descriptor " + theShown + "\n");
}

TEST(FileTest, WritingToAFullDeviceGivesNothingAndIsLogged) {
    vxFile theFile("/dev/full", vxFileOpenMode_Write);
    const std::string theShown = Shown(theFile);
    Reports theReports;
    EXPECT_EQ(theFile.Write("abc", 3), 0u);
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorNoSpace);
    ExpectOneError(theReports, "Write: Cannot write to file descriptor " + theShown + "\n");
}

TEST(FileTest, AWriteThatFailsAfterAPartGivesThePart) {
    TempDir theDir;
    vxFile theFile((theDir / "file").c_str(), kCreateAndWrite);
    Reports theReports;
    ScriptedIO theScript;
    theScript.mWrites = {Moves(2), Fails(EINTR), Moves(1), Fails(ENOSPC)};
    EXPECT_EQ(theFile.Write("abcdef", 6), 3u);
    EXPECT_EQ(theFile.GetErrorCode(), 0);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_EQ(theDir.Read("file"), "abc");
}

TEST(FileTest, ReadingAndWritingLeaveAnEarlierCode) {
    vxFile theFile("/dev/full", vxFileOpenMode_ReadWrite);
    Reports theReports;
    char theByte;
    EXPECT_EQ(theFile.Write("a", 1), 0u);
    EXPECT_EQ(theFile.Read(&theByte, 1), 1);
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorNoSpace);
    EXPECT_TRUE(theFile.Flush());
    EXPECT_EQ(theFile.GetErrorCode(), 0);
}

TEST(FileTest, MovingNoBytesIsNoFailure) {
    const TempDir theDir;
    vxFile theFile(theDir.Write("file", "abc").c_str(), vxFileOpenMode_ReadWrite);
    Reports theReports;
    char theByte = 'x';
    EXPECT_EQ(theFile.Read(&theByte, 0), 0);
    EXPECT_EQ(theFile.Write(&theByte, 0), 0u);
    EXPECT_EQ(theFile.GetErrorCode(), 0);
    EXPECT_EQ(theFile.Tell(), 0);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(FileTest, MovingBytesWithoutAFileOrABufferIsReported) {
    TempDir theDir;
    Reports theReports;
    ScriptedIO theScript;
    vxFile theNone;
    char theByte = 'x';
    EXPECT_EQ(theNone.Read(&theByte, 1), -1);
    EXPECT_EQ(theNone.Write(&theByte, 1), 0u);
    EXPECT_EQ(theNone.GetErrorCode(), kvxFileErrorUnknown);
    vxFile theFile(theDir.Write("file", "abc").c_str(), vxFileOpenMode_ReadWrite);
    EXPECT_EQ(theFile.Read(NULL, 1), -1);
    EXPECT_EQ(theFile.Write(NULL, 1), 0u);
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorUnknown);
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("(aBuffer != NULL) && IsOpened()", "(aBuffer != NULL) && IsOpened()",
                            "(aBuffer != NULL) && IsOpened()", "(aBuffer != NULL) && IsOpened()"));
    EXPECT_EQ(theReports.LogTexts().size(), 4u);
    EXPECT_EQ(theScript.mInvalidDescriptors, 0u);
    EXPECT_EQ(ReadFrom(theFile, 9), "abc");
}

TEST(FileTest, FlushingTellsTheFailureOfTheDevice) {
    TempDir theDir;
    vxFile theFile((theDir / "file").c_str(), kCreateAndWrite);
    EXPECT_TRUE(theFile.Flush());
    ScriptedIO theScript;
    theScript.mSyncs = {Fails(EIO)};
    EXPECT_FALSE(theFile.Flush());
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorUnknown);
    EXPECT_TRUE(theFile.Flush());
}

TEST(FileTest, FlushingWithoutAFileTellsAnEarlierFailure) {
    Reports theReports;
    vxFile theFile("/none/x", vxFileOpenMode_Read);
    EXPECT_FALSE(theFile.Flush());
    EXPECT_TRUE(theFile.Close());
    EXPECT_TRUE(theFile.Flush());
}

TEST(FileTest, SeekingGivesTheNewPosition) {
    TempDir theDir;
    vxFile theFile(theDir.Write("file", "0123456789").c_str(), vxFileOpenMode_Read);
    EXPECT_EQ(theFile.Tell(), 0);
    EXPECT_EQ(theFile.Seek(4, vxFileSeekMode_Begin), 4);
    EXPECT_EQ(theFile.Seek(2, vxFileSeekMode_Current), 6);
    EXPECT_EQ(theFile.Seek(-3, vxFileSeekMode_End), 7);
    EXPECT_EQ(theFile.Tell(), 7);
    EXPECT_EQ(ReadFrom(theFile, 9), "789");
}

TEST(FileTest, AFailureToSeekIsLogged) {
    TempDir theDir;
    vxFile theFile(theDir.Write("file", "0123456789").c_str(), vxFileOpenMode_Read);
    const std::string theShown = Shown(theFile);
    Reports theReports;
    EXPECT_EQ(theFile.Seek(-1, vxFileSeekMode_Begin), -1);
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorUnknown);
    ExpectOneError(theReports, "Seek: Cannot seek on file descriptor " + theShown + "\n");
    EXPECT_EQ(theFile.Tell(), 0);
    EXPECT_EQ(theFile.GetErrorCode(), 0);
}

TEST(FileTest, WithoutAFileNothingHasAPosition) {
    Reports theReports;
    vxFile theFile;
    EXPECT_EQ(theFile.Seek(0, vxFileSeekMode_Begin), -1);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("IsOpened()"));
    EXPECT_EQ(theFile.Tell(), -1);
    EXPECT_FALSE(theFile.ChangeSize(1));
    EXPECT_EQ(theFile.Length(), -1);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("IsOpened()"));
    const std::string theShown = sizeof(void*) == 8 ? "0xffffffffffffffff" : "0xffffffff";
    EXPECT_THAT(
        theReports.LogTexts(),
        ElementsAre("Seek: Cannot seek on file descriptor " + theShown + "\n",
                    "Tell: Cannot get position\n", "ChangeSize: Cannot truncate/extend file\n"));
}

TEST(FileTest, APipeHasNoPositionAndNoLength) {
    int theEnds[2];
    ASSERT_EQ(pipe(theEnds), 0);
    vxFile theFile(static_cast<vxFileFD>(theEnds[0]));
    vxFile theOther(static_cast<vxFileFD>(theEnds[1]));
    Reports theReports;
    EXPECT_EQ(theFile.Tell(), -1);
    ExpectOneError(theReports, "Tell: Cannot get position\n");
    EXPECT_EQ(theFile.Length(), -1);
    EXPECT_FALSE(theFile.EndOfFile());
}

TEST(FileTest, ChangingTheSizeOfAnOpenFile) {
    TempDir theDir;
    vxFile theFile(theDir.Write("file", "abcdef").c_str(), vxFileOpenMode_ReadWrite);
    Reports theReports;
    EXPECT_TRUE(theFile.ChangeSize(2));
    EXPECT_EQ(theFile.Length(), 2);
    EXPECT_TRUE(theFile.ChangeSize(0x140000001));
    EXPECT_EQ(theFile.Length(), 0x140000001);
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_FALSE(theFile.ChangeSize(-1));
    EXPECT_EQ(theFile.GetErrorCode(), kvxFileErrorUnknown);
    ExpectOneError(theReports, "ChangeSize: Cannot truncate/extend file\n");
}

TEST(FileTest, TheEndIsWhereThePlatformSaysSo) {
    TempDir theDir;
    vxFile theFile(theDir.Write("file", "abc").c_str(), vxFileOpenMode_Read);
    EXPECT_FALSE(theFile.EndOfFile());
    EXPECT_EQ(ReadFrom(theFile, 3), "abc");
    EXPECT_TRUE(theFile.EndOfFile());
    theFile.Close();
    EXPECT_FALSE(theFile.EndOfFile());
}

TEST(FileTest, RemovingWhatIsNotThereSucceeds) {
    TempDir theDir;
    Reports theReports;
    const std::string thePath = theDir.Write("file");
    EXPECT_TRUE(vxFile::Remove(thePath.c_str()));
    EXPECT_FALSE(theDir.Has("file"));
    EXPECT_TRUE(vxFile::Remove(thePath.c_str()));
    EXPECT_FALSE(vxFile::Remove(theDir.MakeDir("dir").c_str()));
    EXPECT_TRUE(theDir.Has("dir"));
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

TEST(FileTest, FilesByNameExistAndMove) {
    TempDir theDir;
    const vxPathName theFrom = vxPathName::MakeFilePath(theDir.Write("from", "new").c_str());
    const vxCString theTo((theDir / "to").c_str());
    EXPECT_TRUE(vxFile::Exists(theFrom));
    EXPECT_FALSE(vxFile::Exists(theTo));
    EXPECT_FALSE(vxFile::Exists(theDir.Path().c_str()));
    EXPECT_TRUE(vxFile::Rename(theFrom, theTo));
    EXPECT_FALSE(vxFile::Exists(theFrom));
    EXPECT_EQ(theDir.Read("to"), "new");
    EXPECT_FALSE(vxFile::Rename(theFrom, theTo));
    EXPECT_TRUE(vxFile::Access(theTo, vxFileAccessMode_ReadWrite));
    EXPECT_FALSE(vxFile::Access(theFrom, vxFileAccessMode_Read));
    EXPECT_TRUE(vxFile::ChangeSize(theTo, 1));
    EXPECT_EQ(theDir.Read("to"), "n");
    EXPECT_FALSE(vxFile::ChangeSize(theFrom, 1));
}

TEST(FileTest, TheModificationTimeIsSetToTheMillisecond) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file");
    vxDateTime theTime(1000000000L);
    theTime.SetMillisecond(123);
    EXPECT_TRUE(vxFile::SetModificationTime(thePath.c_str(), theTime));
    vxDateTime theCreation;
    vxDateTime theAccess;
    vxDateTime theModification;
    EXPECT_TRUE(vxFile::GetTimes(thePath.c_str(), &theCreation, &theAccess, &theModification));
    EXPECT_TRUE(theModification == theTime);
    EXPECT_TRUE(theCreation.IsValid());
    EXPECT_TRUE(theAccess.IsValid());
    EXPECT_GT(theCreation.GetTicks(), 1000000000);
}

TEST(FileTest, TimesMayBeAskedOneByOne) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file");
    vxDateTime theTime;
    EXPECT_TRUE(vxFile::GetTimes(thePath.c_str(), NULL, NULL, NULL));
    EXPECT_TRUE(vxFile::GetTimes(thePath.c_str(), NULL, NULL, &theTime));
    EXPECT_TRUE(theTime.IsValid());
}

TEST(FileTest, TimesThatCannotBeHadOrSetAreFalse) {
    TempDir theDir;
    const std::string thePath = theDir.Write("file");
    vxDateTime theTime(5L);
    EXPECT_FALSE(vxFile::GetTimes((theDir / "none").c_str(), &theTime, &theTime, &theTime));
    EXPECT_EQ(theTime.GetTicks(), 5);
    EXPECT_FALSE(vxFile::SetModificationTime((theDir / "none").c_str(), theTime));
    EXPECT_FALSE(vxFile::SetModificationTime(thePath.c_str(), vxDateTime()));
}
