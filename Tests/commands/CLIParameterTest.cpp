#include "vx/CLIParameter.h"

#include <gmock/gmock.h>

#include "CLISupport.h"
#include "support/Reports.h"
#include "vx/CLIParameterChecker.h"
#include "vx/CountedDataBuffer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CLIParameterTest, TypesHaveTheirNumbers) {
    EXPECT_EQ(kvxInteractiveParameterType_None, 0);
    EXPECT_EQ(kvxInteractiveParameterType_UInt8, 1);
    EXPECT_EQ(kvxInteractiveParameterType_Int8, 2);
    EXPECT_EQ(kvxInteractiveParameterType_UInt16, 3);
    EXPECT_EQ(kvxInteractiveParameterType_Int16, 4);
    EXPECT_EQ(kvxInteractiveParameterType_UInt32, 5);
    EXPECT_EQ(kvxInteractiveParameterType_Int32, 6);
    EXPECT_EQ(kvxInteractiveParameterType_UInt64, 7);
    EXPECT_EQ(kvxInteractiveParameterType_Int64, 8);
    EXPECT_EQ(kvxInteractiveParameterType_Double, 9);
    EXPECT_EQ(kvxInteractiveParameterType_Str, 10);
    EXPECT_EQ(kvxInteractiveParameterType_Char, 11);
    EXPECT_EQ(kvxInteractiveParameterType_Bool, 12);
    EXPECT_EQ(kvxInteractiveParameterType_Litteral, 13);
    EXPECT_EQ(kvxInteractiveParameterType_Base64, 14);
}

TEST(CLIParameterTest, StartsWithoutATypeOrAsAString) {
    vxCLIParameter theEmpty;
    EXPECT_EQ(theEmpty.GetType(), kvxInteractiveParameterType_None);
    EXPECT_FALSE(theEmpty.IsMissing());
    EXPECT_FALSE(theEmpty.Is("", true));
    vxCLIParameter theText("words");
    EXPECT_EQ(theText.GetType(), kvxInteractiveParameterType_Str);
    EXPECT_STREQ(theText.GetString(), "words");
    EXPECT_FALSE(theText.IsMissing());
}

TEST(CLIParameterTest, GettersTruncateTowardZero) {
    vxtest::Reports theReports;
    vxCLIParameter theParameter;
    theParameter.SetValue(kvxInteractiveParameterType_UInt8, 12.9);
    EXPECT_EQ(theParameter.GetUInt8(), 12);
    theParameter.SetValue(kvxInteractiveParameterType_Int8, -12.9);
    EXPECT_EQ(theParameter.GetInt8(), -12);
    theParameter.SetValue(kvxInteractiveParameterType_UInt16, 65535.0);
    EXPECT_EQ(theParameter.GetUInt16(), 65535);
    theParameter.SetValue(kvxInteractiveParameterType_Int16, -32768.0);
    EXPECT_EQ(theParameter.GetInt16(), -32768);
    theParameter.SetValue(kvxInteractiveParameterType_UInt32, 4294967295.0);
    EXPECT_EQ(theParameter.GetUInt32(), 4294967295u);
    theParameter.SetValue(kvxInteractiveParameterType_Int32, 1.5);
    EXPECT_EQ(theParameter.GetInt32(), 1);
    theParameter.SetValue(kvxInteractiveParameterType_UInt64, 18446744073709551616.0);
    EXPECT_EQ(theParameter.GetUInt64(), 18446744073709551615u);
    theParameter.SetValue(kvxInteractiveParameterType_Double, 0.25);
    EXPECT_EQ(theParameter.GetDouble(), 0.25);
    theParameter.SetValue(kvxInteractiveParameterType_Bool, 1.0);
    EXPECT_TRUE(theParameter.GetBool());
    theParameter.SetValue(kvxInteractiveParameterType_Bool, 0.0);
    EXPECT_FALSE(theParameter.GetBool());
    theParameter.SetValue(kvxInteractiveParameterType_Bool, -0.5);
    EXPECT_TRUE(theParameter.GetBool());
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(CLIParameterTest, GettersCutWhatTheirTypeCannotHold) {
    vxCLIParameter theParameter;
    theParameter.SetValue(kvxInteractiveParameterType_UInt8, 300.0);
    EXPECT_EQ(theParameter.GetUInt8(), 255);
    theParameter.SetValue(kvxInteractiveParameterType_Int32, -1e300);
    EXPECT_EQ(theParameter.GetInt32(), -2147483647 - 1);
}

TEST(CLIParameterTest, TextGettersReadTheText) {
    vxCLIParameter theParameter;
    theParameter.SetValue(kvxInteractiveParameterType_Char, vxCString("x"));
    EXPECT_EQ(theParameter.GetChar(), 'x');
    theParameter.SetValue(kvxInteractiveParameterType_Char, vxCString(""));
    EXPECT_EQ(theParameter.GetChar(), '\0');
    theParameter.SetValue(kvxInteractiveParameterType_Litteral, vxCString("on"));
    EXPECT_STREQ(theParameter.GetString(), "on");
}

TEST(CLIParameterTest, AValueOfOneKindLeavesThoseOfTheOthers) {
    vxCLIParameter theParameter("words");
    theParameter.SetValue(kvxInteractiveParameterType_Double, 2.5);
    EXPECT_STREQ(theParameter._GetText(), "words");
    theParameter.SetValue(kvxInteractiveParameterType_Str, vxCString("others"));
    EXPECT_EQ(theParameter._GetNumber(), 2.5);
    theParameter.SetValue(kvxInteractiveParameterType_Base64, new vxCountedDataBuffer("ab", 2));
    EXPECT_EQ(theParameter._GetNumber(), 2.5);
    EXPECT_STREQ(theParameter._GetText(), "others");
}

TEST(CLIParameterTest, DataBufferIsShared) {
    vxCLIParameter theParameter;
    const vxRef<vxCountedDataBuffer> theBuffer = new vxCountedDataBuffer("abc", 3);
    theParameter.SetValue(kvxInteractiveParameterType_Base64, theBuffer);
    EXPECT_EQ(theParameter.GetType(), kvxInteractiveParameterType_Base64);
    EXPECT_EQ(theParameter.GetDataBuffer().Get(), theBuffer.Get());
}

TEST(CLIParameterTest, EveryGetterReportsAnotherType) {
    vxtest::Reports theReports;
    const vxCLIParameter theParameter;
    EXPECT_FALSE(theParameter.GetBool());
    EXPECT_EQ(theParameter.GetUInt8(), 0);
    EXPECT_EQ(theParameter.GetUInt16(), 0);
    EXPECT_EQ(theParameter.GetUInt32(), 0u);
    EXPECT_EQ(theParameter.GetUInt64(), 0u);
    EXPECT_EQ(theParameter.GetInt8(), 0);
    EXPECT_EQ(theParameter.GetInt16(), 0);
    EXPECT_EQ(theParameter.GetInt32(), 0);
    EXPECT_EQ(theParameter.GetDouble(), 0.0);
    EXPECT_EQ(theParameter.GetChar(), '\0');
    EXPECT_STREQ(theParameter.GetString(), "");
    EXPECT_TRUE(theParameter.GetDataBuffer().IsNull());
    EXPECT_THAT(theReports.Assertions(),
                ElementsAre("mType == kvxInteractiveParameterType_Bool",
                            "mType == kvxInteractiveParameterType_UInt8",
                            "mType == kvxInteractiveParameterType_UInt16",
                            "mType == kvxInteractiveParameterType_UInt32",
                            "mType == kvxInteractiveParameterType_UInt64",
                            "mType == kvxInteractiveParameterType_Int8",
                            "mType == kvxInteractiveParameterType_Int16",
                            "mType == kvxInteractiveParameterType_Int32",
                            "mType == kvxInteractiveParameterType_Double",
                            "mType == kvxInteractiveParameterType_Char",
                            "(mType == kvxInteractiveParameterType_Str) || (mType == "
                            "kvxInteractiveParameterType_Litteral)",
                            "mType == kvxInteractiveParameterType_Base64"));
}

TEST(CLIParameterTest, IsComparesStringsAndLiteralsOnly) {
    vxCLIParameter theParameter("Fast");
    EXPECT_TRUE(theParameter.Is("Fast", true));
    EXPECT_FALSE(theParameter.Is("fast", true));
    EXPECT_TRUE(theParameter.Is("fast", false));
    EXPECT_FALSE(theParameter.Is("faster", false));
    EXPECT_FALSE(theParameter.Is(NULL, false));
    theParameter.SetValue(kvxInteractiveParameterType_Litteral, vxCString("on"));
    EXPECT_TRUE(theParameter.Is("ON", false));
    EXPECT_FALSE(theParameter.Is("ON", true));
    theParameter.SetValue(kvxInteractiveParameterType_Char, vxCString("x"));
    EXPECT_FALSE(theParameter.Is("x", true));
}

TEST(CLIParameterTest, MissingTakesTypeAndDefaultOfTheChecker) {
    vxCLIParameterChecker theNumber("n", kvxInteractiveParameterType_UInt8, false, 0, 0, true,
                                    false);
    theNumber.SetDefault(7, "seven");
    vxCLIParameter theParameter;
    theParameter.SetMissing(&theNumber);
    EXPECT_TRUE(theParameter.IsMissing());
    EXPECT_EQ(theParameter.GetUInt8(), 7);
    EXPECT_STREQ(theParameter._GetText(), "");

    vxCLIParameterChecker theText("s", kvxInteractiveParameterType_Str, false, 0, 0, true, false);
    theText.SetDefault(7, "seven");
    theParameter.SetMissing(&theText);
    EXPECT_STREQ(theParameter.GetString(), "seven");
    EXPECT_EQ(theParameter._GetNumber(), 0.0);
}

TEST(CLIParameterTest, MissingWithoutACheckerReports) {
    vxtest::Reports theReports;
    vxCLIParameter theParameter;
    theParameter.SetMissing(NULL);
    EXPECT_TRUE(theParameter.IsMissing());
    EXPECT_EQ(theParameter.GetType(), kvxInteractiveParameterType_None);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("theCLIParameterChecker != NULL"));
}

TEST(CLIParameterTest, NewArrayReleasesItsParameters) {
    const vxRef<vxCLIParameter> theParameter = new vxCLIParameter("kept");
    vxArray* theArray = vxCLIParameter::NewArray();
    theParameter->Retain(NULL);
    vxArray_Append(theArray, theParameter.Get());
    EXPECT_EQ(theParameter->_GetRefCount(), 2);
    vxArray_Delete(theArray);
    EXPECT_EQ(theParameter->_GetRefCount(), 1);
}

}  // namespace
