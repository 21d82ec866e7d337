#include "vx/FileHelper.h"

#include <libteskTools/Memory.h>
#include <libvxOS/File.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>

#include "support/Forward.h"
#include "support/Reports.h"
#include "support/ScriptedIO.h"
#include "support/TempDir.h"
#include "vx/DataBuffer.h"
#include "vx/Error.h"
#include "vx/PathName.h"

using testing::IsEmpty;
using vxtest::Fails;
using vxtest::Moves;
using vxtest::Reports;
using vxtest::ScriptedIO;
using vxtest::TempDir;

namespace {

bool sHasNoMemory = false;    // vxTryMalloc() fails
vxFileOffset sFileSize = -1;  // what vxFile_GetSize() answers, unless -1

vxPathName FilePath(const std::string& aPath) {
    return vxPathName::MakeFilePath(aPath.c_str());
}

std::string Bytes(const vxDataBuffer& aBuffer) {
    return std::string(static_cast<const char*>(aBuffer.data()), aBuffer.size());
}

void ExpectError(const vxError& anError, int aCode, const std::string& aMessage) {
    EXPECT_EQ(anError.GetErrorCode(), aCode);
    EXPECT_EQ(anError.GetErrorStr().c_str(), aMessage);
    EXPECT_EQ(anError.GetModule(), static_cast<const char*>(NULL));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* vxTryMalloc(size_t aSize) {
    return sHasNoMemory ? NULL : VXTEST_REAL(vxTryMalloc)(aSize);
}

__attribute__((visibility("default"))) int vxFile_GetSize(vxFileFD aFD, vxFileOffset* aSize) {
    if (sFileSize < 0) {
        return VXTEST_REAL(vxFile_GetSize)(aFD, aSize);
    }
    *aSize = sFileSize;
    return 0;
}

}  // extern "C"

TEST(FileHelperTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(kvxFileLoadOption_None, 0);
    EXPECT_EQ(kvxFileLoadOption_AppendZero, 1);
    EXPECT_EQ(kvxFileLoad_MaxSize, 0xFFFFFFFEu);
}

TEST(FileHelperTest, AFileIsLoadedWhole) {
    TempDir theDir;
    const std::string theBytes = std::string("a\0b\n", 4) + std::string(100000, 'x');
    for (const std::string& theText : {std::string(), std::string("a"), theBytes}) {
        SCOPED_TRACE(theText.size());
        const vxPathName thePath = FilePath(theDir.Write("file", theText));
        vxDataBuffer theBuffer("old");
        ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer), 0, "");
        EXPECT_EQ(Bytes(theBuffer), theText);
        ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer, kvxFileLoadOption_AppendZero), 0,
                    "");
        EXPECT_EQ(Bytes(theBuffer), theText + '\0');
    }
}

TEST(FileHelperTest, AFileThatIsNotThereCannotBeOpened) {
    TempDir theDir;
    Reports theReports;
    vxDataBuffer theBuffer("old");
    ExpectError(vxFileHelper::LoadInBuffer(FilePath(theDir / "none.x"), theBuffer),
                kvxFileErrorNotFound, "Unable to open file '" + (theDir / "none.x") + "'");
    ExpectError(vxFileHelper::LoadInBuffer(vxPathName(), theBuffer), kvxFileErrorNotFound,
                "Unable to open file ''");
    EXPECT_EQ(Bytes(theBuffer), std::string("old\0", 4));
}

TEST(FileHelperTest, TheLimitIsInclusiveAndWithoutTheZero) {
    TempDir theDir;
    const vxPathName thePath = FilePath(theDir.Write("file", "abcde"));
    vxDataBuffer theBuffer;
    ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer, kvxFileLoadOption_None, 4), -1,
                "File '" + (theDir / "file") + "' is too large to be loaded");
    EXPECT_EQ(theBuffer.data(), static_cast<void*>(NULL));
    ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer, kvxFileLoadOption_AppendZero, 5), 0,
                "");
    EXPECT_EQ(Bytes(theBuffer), std::string("abcde\0", 6));
    ExpectError(vxFileHelper::LoadInBuffer(FilePath(theDir.Write("empty")), theBuffer, 0, 0), 0,
                "");
    EXPECT_EQ(theBuffer.size(), 0u);
}

TEST(FileHelperTest, WhatHasNoSizeOrAHugeOneIsTooLarge) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    vxDataBuffer theBuffer("old");
    ExpectError(vxFileHelper::LoadInBuffer(FilePath("/dev/zero"), theBuffer), -1,
                "File '/dev/zero' is too large to be loaded");
    for (const vxFileOffset theSize : {INT64_C(0xFFFFFFFF), INT64_MAX}) {
        sFileSize = theSize;
        ExpectError(vxFileHelper::LoadInBuffer(FilePath(theFile), theBuffer), -1,
                    "File '" + theFile + "' is too large to be loaded");
    }
    sFileSize = -1;
    EXPECT_EQ(Bytes(theBuffer), std::string("old\0", 4));
}

TEST(FileHelperTest, WithoutMemoryTheBufferIsLeftAloneAndNothingIsSaid) {
    TempDir theDir;
    Reports theReports;
    const vxPathName thePath = FilePath(theDir.Write("file", "abc"));
    vxDataBuffer theBuffer("old");
    sHasNoMemory = true;
    ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer), 0, "");
    sHasNoMemory = false;
    EXPECT_EQ(Bytes(theBuffer), std::string("old\0", 4));
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
    EXPECT_TRUE(theReports.FatalErrors().empty());
}

TEST(FileHelperTest, AFileThatEndsEarlyIsAnError) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    vxDataBuffer theBuffer("old");
    sFileSize = 4;
    ExpectError(vxFileHelper::LoadInBuffer(FilePath(theFile), theBuffer), -1,
                "Unable to read requested size from file '" + theFile + "'");
    sFileSize = -1;
    EXPECT_EQ(Bytes(theBuffer), std::string("old\0", 4));
}

TEST(FileHelperTest, AFailureToReadGivesItsCode) {
    TempDir theDir;
    const std::string theFile = theDir.Write("file", "abc");
    Reports theReports;
    ScriptedIO theScript;
    vxDataBuffer theBuffer("old");
    theScript.mReads = {Moves(1), Fails(EROFS)};
    ExpectError(vxFileHelper::LoadInBuffer(FilePath(theFile), theBuffer),
                kvxFileErrorReadOnlyFileSystem,
                "Unable to read requested size from file '" + theFile + "'");
    EXPECT_EQ(Bytes(theBuffer), std::string("old\0", 4));
}

TEST(FileHelperTest, PartsAndSignalsDoNotMakeAFileShort) {
    TempDir theDir;
    const vxPathName thePath = FilePath(theDir.Write("file", "abcdef"));
    vxDataBuffer theBuffer;
    ScriptedIO theScript;
    theScript.mReads = {Moves(1), Fails(EINTR), Moves(2), Fails(EINTR)};
    ExpectError(vxFileHelper::LoadInBuffer(thePath, theBuffer), 0, "");
    EXPECT_EQ(Bytes(theBuffer), "abcdef");
}

TEST(FileHelperTest, ADirectoryCannotBeRead) {
    TempDir theDir;
    Reports theReports;
    vxDataBuffer theBuffer;
    const vxError theError =
        vxFileHelper::LoadInBuffer(vxPathName::MakeDirPath(theDir.Path().c_str()), theBuffer);
    EXPECT_EQ(theError.GetErrorCode(), -1);
    EXPECT_EQ(theBuffer.data(), static_cast<void*>(NULL));
}
