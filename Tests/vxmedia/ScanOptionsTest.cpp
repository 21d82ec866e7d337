#include "ScanOptions.h"

#include <gtest/gtest.h>

#include "vx/StringList.h"

using namespace vxmedia;

namespace {

TEST(ScanOptionsTest, EndingsAreComparedBehindADotInAnyCase) {
    const NameEndings theEndings(vxCSVStringList("jpg, TAR.gz ,,x\\,y", '\\'));
    for (const char* thePath : {"a.jpg", "/d/a.JPG", ".jpg", "a.tar.gz", "a.b.Tar.GZ", "a.x,y"}) {
        EXPECT_TRUE(theEndings.Match(thePath)) << thePath;
    }
    for (const char* thePath : {"", "jpg", "ajpg", "a.jpg.", "a.jpg/b", "a.gz", "x.jpg/", "a."}) {
        EXPECT_FALSE(theEndings.Match(thePath)) << thePath;
    }
}

TEST(ScanOptionsTest, NoEndingsMatchNothing) {
    EXPECT_FALSE(NameEndings().Match("a."));
    EXPECT_FALSE(NameEndings(vxCSVStringList(",, ", '\\')).Match("a."));
}

}  // namespace
