#include <libvxOS/File.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "support/Environment.h"
#include "support/Forward.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"

using vxtest::Fails;
using vxtest::Moves;
using vxtest::ScriptedIO;
using vxtest::TempDir;

namespace {

int sAccessMode = -1;  // that the system was asked for last

}  // namespace

int access(const char* aPath, int aMode) noexcept {
    sAccessMode = aMode;
    return VXTEST_REAL(access)(aPath, aMode);
}

namespace {

vxFileFD Opened(const std::string& aPath, int aFlags, int aPermissions = 3) {
    vxFileFD theFD;
    EXPECT_EQ(vxFile_Open(aPath.c_str(), aFlags, aPermissions, &theFD), 0) << aPath;
    return theFD;
}

int OpenResult(const char* aPath, int aFlags) {
    vxFileFD theFD = 1;
    const int theResult = vxFile_Open(aPath, aFlags, 3, &theFD);
    EXPECT_EQ(theFD, kvxFileFDInvalid);
    return theResult;
}

void WriteTo(vxFileFD aFD, const std::string& aText) {
    EXPECT_EQ(vxFile_Write(aFD, aText.data(), aText.size()), static_cast<ssize_t>(aText.size()));
}

std::string ReadFrom(vxFileFD aFD, size_t aSize) {
    std::string theText(aSize, '?');
    const ssize_t theCount = vxFile_Read(aFD, theText.data(), aSize);
    theText.resize(theCount < 0 ? 0 : static_cast<size_t>(theCount));
    return theText;
}

unsigned ModeOf(const std::string& aPath) {
    struct stat theState;
    EXPECT_EQ(stat(aPath.c_str(), &theState), 0);
    return theState.st_mode & 07777;
}

}  // namespace

TEST(OSFileTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(vxFileOpenMode_Read, 0x01);
    EXPECT_EQ(vxFileOpenMode_Write, 0x02);
    EXPECT_EQ(vxFileOpenMode_ReadWrite, 0x03);
    EXPECT_EQ(vxFileOpenMode_Exclusive, 0x04);
    EXPECT_EQ(vxFileOpenMode_Append, 0x08);
    EXPECT_EQ(vxFileOpenMode_Create, 0x10);
    EXPECT_EQ(vxFileOpenMode_Truncate, 0x20);
    EXPECT_EQ(vxFileSeekMode_Begin, 0);
    EXPECT_EQ(vxFileSeekMode_Current, 1);
    EXPECT_EQ(vxFileSeekMode_End, 2);
    EXPECT_EQ(vxFileAccessMode_Read, 1);
    EXPECT_EQ(vxFileAccessMode_Write, 2);
    EXPECT_EQ(vxFileAccessMode_ReadWrite, 3);
    EXPECT_EQ(kvxFileErrorUnknown, -1);
    EXPECT_EQ(kvxFileErrorReadOnlyFileSystem, -2);
    EXPECT_EQ(kvxFileErrorNotFound, -3);
    EXPECT_EQ(kvxFileErrorAlreadyExists, -4);
    EXPECT_EQ(kvxFileErrorNoSpace, -5);
    EXPECT_EQ(kvxFileFDInvalid, ~static_cast<vxFileFD>(0));
    EXPECT_EQ(kvxFileOffsetInvalid, -1);
    EXPECT_EQ(sizeof(vxFileOffset), 8u);
}

TEST(OSFileTest, WhatIsNotThereIsNotFound) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    EXPECT_EQ(OpenResult((theDir / "none").c_str(), vxFileOpenMode_Read), kvxFileErrorNotFound);
    EXPECT_EQ(OpenResult((theFile + "/below").c_str(), vxFileOpenMode_Read), kvxFileErrorNotFound);
    EXPECT_EQ(OpenResult("", vxFileOpenMode_Read), kvxFileErrorNotFound);
    EXPECT_EQ(OpenResult(nullptr, vxFileOpenMode_Read), kvxFileErrorNotFound);
}

TEST(OSFileTest, OpeningNeedsReadOrWrite) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    EXPECT_EQ(OpenResult(theFile.c_str(), 0), kvxFileErrorUnknown);
    EXPECT_EQ(OpenResult(theFile.c_str(), vxFileOpenMode_Append | vxFileOpenMode_Truncate),
              kvxFileErrorUnknown);
}

TEST(OSFileTest, CreateExclusiveRefusesAFileThatIsThere) {
    TempDir theDir;
    const int theFlags =
        vxFileOpenMode_Create | vxFileOpenMode_ReadWrite | vxFileOpenMode_Exclusive;
    vxFile_Close(Opened(theDir / "new", theFlags));
    EXPECT_TRUE(theDir.Has("new"));
    EXPECT_EQ(OpenResult((theDir / "new").c_str(), theFlags), kvxFileErrorAlreadyExists);
}

TEST(OSFileTest, CreateWithoutExclusiveOpensAFileThatIsThere) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "text");
    const vxFileFD theFD = Opened(theFile, vxFileOpenMode_Create | vxFileOpenMode_ReadWrite);
    EXPECT_EQ(ReadFrom(theFD, 10), "text");
    vxFile_Close(theFD);
}

TEST(OSFileTest, TruncateEmptiesAFileThatIsOpenedForWriting) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "text");
    vxFile_Close(Opened(theFile, vxFileOpenMode_Read | vxFileOpenMode_Truncate));
    EXPECT_EQ(theDir.Read("file"), "text");
    vxFile_Close(Opened(theFile, vxFileOpenMode_Write | vxFileOpenMode_Truncate));
    EXPECT_EQ(theDir.Read("file"), "");
}

TEST(OSFileTest, AppendWritesAtTheEndWhereverThePositionIs) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    const vxFileFD theFD = Opened(theFile, vxFileOpenMode_Write | vxFileOpenMode_Append);
    EXPECT_EQ(vxFile_Seek(theFD, 0, vxFileSeekMode_Begin), 0);
    WriteTo(theFD, "def");
    vxFile_Close(theFD);
    EXPECT_EQ(theDir.Read("file"), "abcdef");
}

TEST(OSFileTest, ModeLimitsWhatCanBeDone) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    char theByte;
    const vxFileFD theReader = Opened(theFile, vxFileOpenMode_Read);
    EXPECT_EQ(vxFile_Write(theReader, "x", 1), kvxFileErrorUnknown);
    vxFile_Close(theReader);
    const vxFileFD theWriter = Opened(theFile, vxFileOpenMode_Write);
    EXPECT_EQ(vxFile_Read(theWriter, &theByte, 1), kvxFileErrorUnknown);
    vxFile_Close(theWriter);
}

TEST(OSFileTest, PermissionsAreCutByTheUmask) {
    const struct {
        int mPermissions;
        mode_t mUmask;
        unsigned mMode;
    } kCases[] = {
        {3, 0, 0666}, {3, 022, 0644}, {3, 077, 0600}, {1, 0, 0444}, {2, 0, 0222}, {0, 0, 0},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mPermissions << " under " << theCase.mUmask);
        TempDir theDir;
        const mode_t theOld = umask(theCase.mUmask);
        vxFile_Close(Opened(theDir / "new", vxFileOpenMode_Create | vxFileOpenMode_Write,
                            theCase.mPermissions));
        umask(theOld);
        EXPECT_EQ(ModeOf(theDir / "new"), theCase.mMode);
    }
}

TEST(OSFileTest, DescriptorsDoNotSurviveTheStartOfAnotherProgram) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file"), vxFileOpenMode_Read);
    EXPECT_EQ(fcntl(static_cast<int>(theFD), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    vxFile_Close(theFD);
}

TEST(OSFileTest, ReasonsOfTheSystemBecomeErrorCodes) {
    const struct {
        int mErrno;
        int mError;
    } kCases[] = {
        {EROFS, -2},  {ENOENT, -3}, {ENOTDIR, -3}, {EEXIST, -4}, {ENOSPC, -5},
        {EDQUOT, -5}, {EACCES, -1}, {EMFILE, -1},  {ELOOP, -1},  {EIO, -1},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mErrno);
        ScriptedIO theScript;
        theScript.mOpens = {Fails(theCase.mErrno)};
        EXPECT_EQ(OpenResult("/", vxFileOpenMode_Read), theCase.mError);
    }
}

TEST(OSFileTest, OpeningContinuesAfterASignal) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    ScriptedIO theScript;
    theScript.mOpens = {Fails(EINTR), Fails(EINTR)};
    const vxFileFD theFD = Opened(theFile, vxFileOpenMode_Read);
    EXPECT_TRUE(theScript.mOpens.empty());
    vxFile_Close(theFD);
}

TEST(OSFileTest, AnInvalidDescriptorNeverReachesTheSystem) {
    ScriptedIO theScript;
    char theByte = 0;
    vxFileOffset theOffset = 7;
    for (const vxFileFD theFD : {kvxFileFDInvalid, static_cast<vxFileFD>(-2)}) {
        EXPECT_EQ(vxFile_Read(theFD, &theByte, 1), kvxFileErrorUnknown);
        EXPECT_EQ(vxFile_Write(theFD, &theByte, 1), kvxFileErrorUnknown);
        EXPECT_EQ(vxFile_Flush(theFD), kvxFileErrorUnknown);
        EXPECT_EQ(vxFile_Seek(theFD, 0, vxFileSeekMode_Begin), kvxFileErrorUnknown);
        EXPECT_EQ(vxFile_Tell(theFD, &theOffset), kvxFileErrorUnknown);
        EXPECT_EQ(theOffset, kvxFileOffsetInvalid);
        theOffset = 7;
        EXPECT_EQ(vxFile_GetSize(theFD, &theOffset), kvxFileErrorUnknown);
        EXPECT_EQ(theOffset, kvxFileOffsetInvalid);
        EXPECT_EQ(vxFile_ChangeSize(theFD, 0), kvxFileErrorUnknown);
        EXPECT_EQ(vxFile_EndOfFile(theFD), 0);
        EXPECT_EQ(vxFile_Close(theFD), kvxFileErrorUnknown);
    }
    EXPECT_EQ(theScript.mInvalidDescriptors, 0u);
    EXPECT_EQ(theScript.mReadCount, 0u);
}

TEST(OSFileTest, ANullBufferIsRefusedUnlessNothingIsMoved) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file", "abc"), vxFileOpenMode_ReadWrite);
    EXPECT_EQ(vxFile_Read(theFD, nullptr, 1), kvxFileErrorUnknown);
    EXPECT_EQ(vxFile_Write(theFD, nullptr, 1), kvxFileErrorUnknown);
    EXPECT_EQ(vxFile_Read(theFD, nullptr, 0), 0);
    EXPECT_EQ(vxFile_Write(theFD, nullptr, 0), 0);
    vxFile_Close(theFD);
}

TEST(OSFileTest, ReadingGivesWhatIsThereAndThenNothing) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file", "abcde"), vxFileOpenMode_Read);
    EXPECT_EQ(ReadFrom(theFD, 3), "abc");
    EXPECT_EQ(ReadFrom(theFD, 3), "de");
    EXPECT_EQ(ReadFrom(theFD, 3), "");
    vxFile_Close(theFD);
}

TEST(OSFileTest, ReadingContinuesAfterASignal) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file", "abc"), vxFileOpenMode_Read);
    ScriptedIO theScript;
    theScript.mReads = {Fails(EINTR), Fails(EINTR), Moves(2)};
    EXPECT_EQ(ReadFrom(theFD, 3), "ab");
    theScript.mReads = {Fails(EIO)};
    char theByte;
    EXPECT_EQ(vxFile_Read(theFD, &theByte, 1), kvxFileErrorUnknown);
    vxFile_Close(theFD);
}

TEST(OSFileTest, WritingContinuesAfterSignalsAndShortWrites) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file"), vxFileOpenMode_Write);
    ScriptedIO theScript;
    theScript.mWrites = {Fails(EINTR), Moves(1), Fails(EINTR), Moves(2), Moves(1)};
    WriteTo(theFD, "abcdefgh");
    EXPECT_TRUE(theScript.mWrites.empty());
    vxFile_Close(theFD);
    EXPECT_EQ(theDir.Read("file"), "abcdefgh");
}

TEST(OSFileTest, AWriteThatFailsAfterAPartGivesThePartAndThenTheReason) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file"), vxFileOpenMode_Write);
    ScriptedIO theScript;
    theScript.mWrites = {Moves(3), Fails(ENOSPC), Fails(ENOSPC)};
    EXPECT_EQ(vxFile_Write(theFD, "abcdef", 6), 3);
    EXPECT_EQ(vxFile_Write(theFD, "def", 3), kvxFileErrorNoSpace);
    vxFile_Close(theFD);
    EXPECT_EQ(theDir.Read("file"), "abc");
}

TEST(OSFileTest, AFullDeviceHasNoSpace) {
    const vxFileFD theFD = Opened("/dev/full", vxFileOpenMode_Write);
    EXPECT_EQ(vxFile_Write(theFD, "x", 1), kvxFileErrorNoSpace);
    vxFile_Close(theFD);
}

TEST(OSFileTest, ClosingIsNeverRepeated) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    const vxFileFD theFirst = Opened(theFile, vxFileOpenMode_Read);
    const vxFileFD theSecond = Opened(theFile, vxFileOpenMode_Read);
    ScriptedIO theScript;
    theScript.mCloses = {Fails(EINTR), Fails(ENOSPC)};
    EXPECT_EQ(vxFile_Close(theFirst), 0);
    EXPECT_EQ(theScript.mCloses.size(), 1u);
    EXPECT_EQ(vxFile_Close(theSecond), kvxFileErrorNoSpace);
    EXPECT_EQ(vxFile_Close(theSecond), kvxFileErrorUnknown) << "it is gone";
}

TEST(OSFileTest, FlushingStoresAndTellsWhyNot) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file"), vxFileOpenMode_Write);
    EXPECT_EQ(vxFile_Flush(theFD), 0);
    ScriptedIO theScript;
    theScript.mSyncs = {Fails(EINTR), Fails(EIO)};
    EXPECT_EQ(vxFile_Flush(theFD), kvxFileErrorUnknown);
    theScript.mSyncs = {Fails(ENOSPC)};
    EXPECT_EQ(vxFile_Flush(theFD), kvxFileErrorNoSpace);
    vxFile_Close(theFD);
}

TEST(OSFileTest, FlushingWhatHasNothingToStoreSucceeds) {
    int theEnds[2];
    ASSERT_EQ(pipe(theEnds), 0);
    EXPECT_EQ(vxFile_Flush(theEnds[1]), 0);
    vxFile_Close(theEnds[0]);
    vxFile_Close(theEnds[1]);
}

TEST(OSFileTest, SeekingCountsFromBeginPositionAndEnd) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file", "0123456789"), vxFileOpenMode_Read);
    const struct {
        vxFileOffset mOffset;
        int mMode;
        int mResult;
        vxFileOffset mPosition;
    } kCases[] = {
        {4, vxFileSeekMode_Begin, 0, 4},
        {2, vxFileSeekMode_Current, 0, 6},
        {-1, vxFileSeekMode_Current, 0, 5},
        {-3, vxFileSeekMode_End, 0, 7},
        {5, vxFileSeekMode_End, 0, 15},
        {-1, vxFileSeekMode_Begin, -1, 15},
        {0, -1, -1, 15},
        {0, 3, -1, 15},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mOffset << " from " << theCase.mMode);
        EXPECT_EQ(vxFile_Seek(theFD, theCase.mOffset, theCase.mMode), theCase.mResult);
        vxFileOffset thePosition;
        EXPECT_EQ(vxFile_Tell(theFD, &thePosition), 0);
        EXPECT_EQ(thePosition, theCase.mPosition);
    }
    vxFile_Close(theFD);
}

TEST(OSFileTest, OffsetsReachBeyond32Bits) {
    TempDir theDir;
    const vxFileOffset kFar = 0x140000001;
    const vxFileFD theFD = Opened(theDir.Write("file"), vxFileOpenMode_ReadWrite);
    EXPECT_EQ(vxFile_Seek(theFD, kFar, vxFileSeekMode_Begin), 0);
    WriteTo(theFD, "x");
    vxFileOffset theOffset;
    EXPECT_EQ(vxFile_Tell(theFD, &theOffset), 0);
    EXPECT_EQ(theOffset, kFar + 1);
    EXPECT_EQ(vxFile_GetSize(theFD, &theOffset), 0);
    EXPECT_EQ(theOffset, kFar + 1);
    EXPECT_EQ(vxFile_ChangeSize(theFD, kFar - 1), 0);
    EXPECT_EQ(vxFile_GetSize(theFD, &theOffset), 0);
    EXPECT_EQ(theOffset, kFar - 1);
    vxFile_Close(theFD);
    EXPECT_EQ(vxFile_SetSize((theDir / "file").c_str(), kFar), 0);
    EXPECT_EQ(std::filesystem::file_size(theDir / "file"), 0x140000001u);
}

TEST(OSFileTest, ChangingTheSizeCutsAndExtendsWithZeros) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abcdef");
    const vxFileFD theFD = Opened(theFile, vxFileOpenMode_ReadWrite);
    EXPECT_EQ(vxFile_ChangeSize(theFD, 2), 0);
    EXPECT_EQ(vxFile_ChangeSize(theFD, 4), 0);
    EXPECT_EQ(vxFile_ChangeSize(theFD, -1), kvxFileErrorUnknown);
    vxFile_Close(theFD);
    EXPECT_EQ(theDir.Read("file"), std::string("ab\0\0", 4));
    EXPECT_EQ(vxFile_SetSize(theFile.c_str(), 1), 0);
    EXPECT_EQ(theDir.Read("file"), "a");
    EXPECT_EQ(vxFile_SetSize((theDir / "none").c_str(), 1), kvxFileErrorNotFound);
    EXPECT_EQ(vxFile_SetSize(nullptr, 1), kvxFileErrorNotFound);
}

TEST(OSFileTest, WhatHasNoPositionsHasNoSizeAndNoEnd) {
    int theEnds[2];
    ASSERT_EQ(pipe(theEnds), 0);
    vxFileOffset theOffset = 0;
    EXPECT_EQ(vxFile_GetSize(theEnds[0], &theOffset), kvxFileErrorUnknown);
    EXPECT_EQ(theOffset, kvxFileOffsetInvalid);
    EXPECT_EQ(vxFile_Seek(theEnds[0], 0, vxFileSeekMode_Begin), kvxFileErrorUnknown);
    EXPECT_EQ(vxFile_Tell(theEnds[0], &theOffset), kvxFileErrorUnknown);
    EXPECT_EQ(vxFile_EndOfFile(theEnds[0]), 0);
    vxFile_Close(theEnds[0]);
    vxFile_Close(theEnds[1]);
    const vxFileFD theNull = Opened("/dev/null", vxFileOpenMode_Read);
    EXPECT_EQ(vxFile_GetSize(theNull, &theOffset), kvxFileErrorUnknown);
    EXPECT_EQ(theOffset, kvxFileOffsetInvalid);
    EXPECT_EQ(vxFile_EndOfFile(theNull), 0);
    vxFile_Close(theNull);
}

TEST(OSFileTest, TheLowestDescriptorIsOneLikeAnyOther) {
    const TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    const int theInput = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    vxFileFD theFD = kvxFileFDInvalid;
    EXPECT_EQ(vxFile_Open(theFile.c_str(), vxFileOpenMode_Read, 3, &theFD), 0);
    EXPECT_EQ(theFD, 0);
    EXPECT_EQ(ReadFrom(theFD, 9), "abc");
    EXPECT_EQ(vxFile_EndOfFile(theFD), 1);
    EXPECT_EQ(vxFile_Close(theFD), 0);
    if (theInput >= 0) {
        dup2(theInput, STDIN_FILENO);
        close(theInput);
    }
}

TEST(OSFileTest, TheEndIsAtTheSizeAndBeyond) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Write("file", "abc"), vxFileOpenMode_Read);
    for (const vxFileOffset thePosition : {0, 2, 3, 4}) {
        SCOPED_TRACE(thePosition);
        EXPECT_EQ(vxFile_Seek(theFD, thePosition, vxFileSeekMode_Begin), 0);
        EXPECT_EQ(vxFile_EndOfFile(theFD), thePosition >= 3 ? 1 : 0);
    }
    vxFile_Close(theFD);
    const vxFileFD theEmpty = Opened(theDir.Write("empty"), vxFileOpenMode_Read);
    EXPECT_EQ(vxFile_EndOfFile(theEmpty), 1);
    vxFile_Close(theEmpty);
}

TEST(OSFileTest, ADirectoryOpensForReadingButGivesNothing) {
    TempDir theDir;
    const vxFileFD theFD = Opened(theDir.Path(), vxFileOpenMode_Read);
    char theByte;
    EXPECT_EQ(vxFile_Read(theFD, &theByte, 1), kvxFileErrorUnknown);
    vxFile_Close(theFD);
    EXPECT_EQ(OpenResult(theDir.Path().c_str(), vxFileOpenMode_Write), kvxFileErrorUnknown);
}

TEST(OSFileTest, EverythingButADirectoryExistsAsAFile) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    const std::string theSub = theDir.MakeDir("dir");
    EXPECT_TRUE(vxFile_Exists(theFile.c_str()));
    EXPECT_TRUE(vxFile_Exists(theDir.Link("to_file", "file").c_str()));
    EXPECT_TRUE(vxFile_Exists("/dev/null"));
    EXPECT_FALSE(vxFile_Exists(theSub.c_str()));
    EXPECT_FALSE(vxFile_Exists(theDir.Link("to_dir", "dir").c_str()));
    EXPECT_FALSE(vxFile_Exists(theDir.Link("dangling", "none").c_str()));
    EXPECT_FALSE(vxFile_Exists(theDir.Link("loop", "loop").c_str()));
    EXPECT_FALSE(vxFile_Exists((theFile + "/below").c_str()));
    EXPECT_FALSE(vxFile_Exists(""));
    EXPECT_FALSE(vxFile_Exists(nullptr));
}

TEST(OSFileTest, RemovingTakesTheNameItself) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    EXPECT_EQ(vxFile_Remove(theDir.Link("link", "file").c_str()), 0);
    EXPECT_FALSE(theDir.Has("link"));
    EXPECT_TRUE(theDir.Has("file"));
    EXPECT_EQ(vxFile_Remove(theFile.c_str()), 0);
    EXPECT_EQ(vxFile_Remove(theFile.c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxFile_Remove(theDir.MakeDir("dir").c_str()), kvxFileErrorUnknown);
    EXPECT_EQ(vxFile_Remove(nullptr), kvxFileErrorNotFound);
}

TEST(OSFileTest, RenamingReplacesAFile) {
    TempDir theDir;
    const std::string theFrom = theDir.Write("from", "new");
    const std::string theTo = theDir.Write("to", "old");
    EXPECT_EQ(vxFile_Rename(theFrom.c_str(), theTo.c_str()), 0);
    EXPECT_FALSE(theDir.Has("from"));
    EXPECT_EQ(theDir.Read("to"), "new");
    EXPECT_EQ(vxFile_Rename(theFrom.c_str(), theTo.c_str()), kvxFileErrorNotFound);
    EXPECT_EQ(vxFile_Rename(nullptr, nullptr), kvxFileErrorNotFound);
}

TEST(OSFileTest, AccessAsksForExistenceAtLeast) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    for (const int theMode : {0, 1, 2, 3}) {
        EXPECT_EQ(vxFile_Access(theFile.c_str(), theMode), 0) << theMode;
        EXPECT_EQ(vxFile_Access((theDir / "none").c_str(), theMode), kvxFileErrorNotFound);
    }
    // Root may do almost everything: what the system was asked counts.
    const int kModes[] = {F_OK, R_OK, W_OK, R_OK | W_OK};
    for (const int theMode : {0, 1, 2, 3}) {
        vxFile_Access(theFile.c_str(), theMode);
        EXPECT_EQ(sAccessMode, kModes[theMode]) << theMode;
    }
    // Root may write everything but what the system keeps for itself.
    EXPECT_EQ(vxFile_Access("/proc/version", vxFileAccessMode_Read), 0);
    EXPECT_EQ(vxFile_Access(nullptr, 0), kvxFileErrorNotFound);
}

TEST(OSFileTest, ModificationTimeIsSetAloneAndReadBack) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    vxtimeval theAccessBefore;
    EXPECT_EQ(vxFile_GetTimes(theFile.c_str(), nullptr, &theAccessBefore, nullptr), 0);
    const vxtimeval theTime = {1000000000, 123456};
    EXPECT_EQ(vxFile_SetModificationTime(theFile.c_str(), &theTime), 0);
    vxtimeval theCreation;
    vxtimeval theAccess;
    vxtimeval theModification;
    EXPECT_EQ(vxFile_GetTimes(theFile.c_str(), &theCreation, &theAccess, &theModification), 0);
    EXPECT_EQ(theModification.tv_sec, 1000000000);
    EXPECT_EQ(theModification.tv_usec, 123456);
    EXPECT_EQ(theAccess.tv_sec, theAccessBefore.tv_sec);
    EXPECT_EQ(theAccess.tv_usec, theAccessBefore.tv_usec);
    EXPECT_GE(theCreation.tv_sec, theAccessBefore.tv_sec - 1);
}

TEST(OSFileTest, TimesOutOfRangeAreInvalidOrRefused) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file");
    const vxtimeval kLimits[] = {{1000000000, 0}, {1000000000, 999999}, {INT32_MAX, 0}};
    for (const vxtimeval& theLimit : kLimits) {
        vxtimeval theTime = {};
        EXPECT_EQ(vxFile_SetModificationTime(theFile.c_str(), &theLimit), 0);
        EXPECT_EQ(vxFile_GetTimes(theFile.c_str(), nullptr, nullptr, &theTime), 0);
        EXPECT_EQ(theTime.tv_sec, theLimit.tv_sec);
        EXPECT_EQ(theTime.tv_usec, theLimit.tv_usec);
    }
    for (const int32_t theMicroseconds : {-1, 1000000}) {
        const vxtimeval theTime = {5, theMicroseconds};
        EXPECT_EQ(vxFile_SetModificationTime(theFile.c_str(), &theTime), kvxFileErrorUnknown);
    }
    const vxtest::Environment theName("VXTESTFILE", theFile.c_str());
    ASSERT_EQ(system("touch -d @2147483648 \"$VXTESTFILE\""), 0);
    vxtimeval theModification;
    EXPECT_EQ(vxFile_GetTimes(theFile.c_str(), nullptr, nullptr, &theModification), 0);
    EXPECT_EQ(theModification.tv_sec, -1);
    EXPECT_EQ(theModification.tv_usec, -1);
    EXPECT_TRUE(vxFile_Exists(theFile.c_str()));
}

TEST(OSFileTest, TimesOfWhatIsNotThereAreNotFound) {
    TempDir theDir;
    vxtimeval theTime = {7, 8};
    EXPECT_EQ(vxFile_GetTimes((theDir / "none").c_str(), &theTime, &theTime, &theTime),
              kvxFileErrorNotFound);
    EXPECT_EQ(vxFile_GetTimes(nullptr, &theTime, &theTime, &theTime), kvxFileErrorNotFound);
    EXPECT_EQ(theTime.tv_sec, 7);
    EXPECT_EQ(theTime.tv_usec, 8);
    EXPECT_EQ(vxFile_SetModificationTime((theDir / "none").c_str(), &theTime),
              kvxFileErrorNotFound);
}

TEST(OSFileTest, NamesAreBytesOfAnyEncoding) {
    TempDir theDir;
    const std::string theName = theDir / "\xff\xfe \n*";
    vxFile_Close(Opened(theName, vxFileOpenMode_Create | vxFileOpenMode_Write));
    EXPECT_TRUE(vxFile_Exists(theName.c_str()));
    EXPECT_EQ(vxFile_Remove(theName.c_str()), 0);
    EXPECT_FALSE(vxFile_Exists(theName.c_str()));
}

TEST(OSFileTest, OffsetsBecomeSizesWhereTheyFit) {
    const bool theIs64Bit = sizeof(ssize_t) == 8;
    const struct {
        vxFileOffset mOffset;
        bool mFits;
    } kCases[] = {
        {0, true},
        {-1, true},
        {INT32_MAX, true},
        {INT32_MIN, true},
        {INT32_MAX + INT64_C(1), theIs64Bit},
        {INT64_C(0x100000000), theIs64Bit},
        {INT64_MAX, theIs64Bit},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mOffset);
        ssize_t theSize = 77;
        EXPECT_EQ(vxFileOffset_to_ssize_t(theCase.mOffset, &theSize),
                  theCase.mFits ? 0 : kvxFileErrorUnknown);
        EXPECT_EQ(theSize, theCase.mFits ? static_cast<ssize_t>(theCase.mOffset) : 77);
    }
}
