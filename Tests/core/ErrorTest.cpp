#include "vx/Error.h"

#include <string>

#include <gmock/gmock.h>
#include <pthread.h>

#include "support/Reports.h"
#include "vx/JSON.h"

namespace {

// Code 1 first, code 3 last.
vxError ChainOfThree() {
    vxError theError(1, "one");
    theError.SetModule("File");
    theError.ConvertTo(2, "two", "Net");
    theError.ConvertTo(3, "three", "App");
    return theError;
}

std::string JSONOf(const vxError& anError) {
    vxJSONObject theObject;
    anError.ToJSON(theObject);
    return theObject.GetRawValue().c_str();
}

// Reads the text into an error that has a code, a message, a module and a history.
bool ReadInto(vxError& anError, const char* aText) {
    vxJSONDocument theDocument(aText);
    return anError.FromJSON(theDocument.AsObject());
}

std::string TextOf(const vxError& anError) {
    return anError.ToString().c_str();
}

}  // namespace

TEST(ErrorTest, NewErrorIsNone) {
    const vxError theError;

    EXPECT_EQ(theError.GetErrorCode(), 0);
    EXPECT_STREQ(theError.GetErrorStr(), "");
    EXPECT_EQ(theError.GetModule(), nullptr);
    EXPECT_EQ(theError.GetErrorHistoryCount(), 0u);
    EXPECT_STREQ(theError.ToString(), "");
    EXPECT_STREQ(theError.ToShortString(), "");
    EXPECT_TRUE(theError == 0);
    EXPECT_FALSE(theError != 0);
}

TEST(ErrorTest, CarriesCodeAndMessage) {
    const vxError theError(-7, "x");

    EXPECT_EQ(theError.GetErrorCode(), -7);
    EXPECT_STREQ(theError.GetErrorStr(), "x");
    EXPECT_EQ(theError.GetModule(), nullptr);
    EXPECT_TRUE(theError == -7);
    EXPECT_TRUE(theError != 7);
}

TEST(ErrorTest, AssigningACodeEmptiesTheMessageAlone) {
    vxError theError = ChainOfThree();

    theError = 9;

    EXPECT_EQ(theError.GetErrorCode(), 9);
    EXPECT_STREQ(theError.GetErrorStr(), "");
    EXPECT_STREQ(theError.GetModule(), "App");
    EXPECT_EQ(theError.GetErrorHistoryCount(), 2u);
}

TEST(ErrorTest, AssigningATextSetsTheMessageAlone) {
    vxError theError = ChainOfThree();

    theError = "other";
    EXPECT_EQ(TextOf(theError),
              " (error: 3 [App] 'other') (error: 2 [Net] 'two') (error: 1 [File] 'one')");

    theError = static_cast<const char*>(NULL);
    EXPECT_STREQ(theError.GetErrorStr(), "");
    EXPECT_EQ(theError.GetErrorCode(), 3);
}

TEST(ErrorTest, ModuleIsACopy) {
    char theModule[] = "File";
    vxError theError;

    theError.SetModule(theModule);
    theModule[0] = 'X';
    EXPECT_STREQ(theError.GetModule(), "File");

    theError.SetModule(theError.GetModule() + 1);
    EXPECT_STREQ(theError.GetModule(), "ile");
    theError.SetModule("");
    EXPECT_STREQ(theError.GetModule(), "");
    theError.SetModule(NULL);
    EXPECT_EQ(theError.GetModule(), nullptr);
}

TEST(ErrorTest, SetLeavesTheHistory) {
    vxError theError = ChainOfThree();

    theError.Set("New", 4, "four");

    EXPECT_EQ(TextOf(theError),
              " (error: 4 [New] 'four') (error: 2 [Net] 'two') (error: 1 [File] 'one')");
    theError.Set(theError.GetModule(), 5, theError.GetErrorStr());
    EXPECT_STREQ(theError.GetModule(), "New");
    EXPECT_STREQ(theError.GetErrorStr(), "four");
}

TEST(ErrorTest, TextsShowWhatIsThere) {
    struct Case {
        int mCode;
        const char* mMessage;
        const char* mModule;
        const char* mText;
        const char* mShortText;
    };
    constexpr Case kCases[] = {
        {0, "x", "File", "", ""},
        {7, "x", NULL, " (error: 7 'x')", "7: x"},
        {7, "", NULL, " (error: 7)", "7"},
        {7, "", "File", " (error: 7 [File])", "7"},
        {7, "x", "", " (error: 7 'x')", "7: x"},
        {-3, "not found", "File", " (error: -3 [File] 'not found')", "-3: not found"},
        {-2147483647 - 1, "%n%s", "%d", " (error: -2147483648 [%d] '%n%s')", "-2147483648: %n%s"},
        {2147483647, "", NULL, " (error: 2147483647)", "2147483647"},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxError theError(theCase.mCode, theCase.mMessage);
        theError.SetModule(theCase.mModule);
        EXPECT_STREQ(theError.ToString(), theCase.mText);
        EXPECT_STREQ(theError.ToShortString(), theCase.mShortText);
    }
}

TEST(ErrorTest, TextShowsTheHistoryNewestFirst) {
    vxError theError(5, "");
    theError.ConvertTo(-3, "not found", "File");

    EXPECT_STREQ(theError.ToString(), " (error: -3 [File] 'not found') (error: 5)");
    EXPECT_STREQ(theError.ToShortString(), "-3: not found");
}

TEST(ErrorTest, TextEndsBeforeTheFirstErrorOfCodeZero) {
    vxError theError(1, "one");
    theError.ConvertTo(0, "none", NULL);
    EXPECT_STREQ(theError.ToString(), "");

    theError.ConvertTo(2, "two", NULL);
    EXPECT_STREQ(theError.ToString(), " (error: 2 'two')");
    EXPECT_EQ(theError.GetErrorHistoryCount(), 2u);
}

TEST(ErrorTest, ConvertingKeepsTheCurrentErrorInTheHistory) {
    const vxError theError = ChainOfThree();

    EXPECT_EQ(theError.GetErrorHistoryCount(), 2u);
    EXPECT_EQ(theError.GetInitialError().GetErrorCode(), 1);
    EXPECT_EQ(TextOf(theError.GetErrorHistory(0)),
              " (error: 2 [Net] 'two') (error: 1 [File] 'one')");
    EXPECT_EQ(TextOf(theError.GetErrorHistory(1)), " (error: 1 [File] 'one')");
    EXPECT_EQ(theError.GetErrorHistory(2).GetErrorCode(), 0);
    EXPECT_EQ(theError.GetErrorHistory(5).GetErrorCode(), 0);
    EXPECT_EQ(theError.GetErrorHistory(4294967295u).GetErrorCode(), 0);
}

TEST(ErrorTest, ConvertingNoErrorRecordsIt) {
    vxError theError;

    theError.ConvertTo(2, "two", NULL);

    EXPECT_EQ(theError.GetErrorHistoryCount(), 1u);
    EXPECT_EQ(theError.GetInitialError().GetErrorCode(), 0);
    EXPECT_EQ(theError.GetModule(), nullptr);
}

TEST(ErrorTest, ConvertingWithoutAModuleClearsIt) {
    vxError theError = ChainOfThree();

    theError.ConvertTo(4, "", NULL);

    EXPECT_EQ(theError.GetModule(), nullptr);
    EXPECT_STREQ(theError.GetErrorHistory(0).GetModule(), "App");
}

TEST(ErrorTest, ConvertingToAnErrorTakesItsHeadAlone) {
    vxError theError(1, "one");

    theError.ConvertTo(ChainOfThree());

    EXPECT_EQ(TextOf(theError), " (error: 3 [App] 'three') (error: 1 'one')");
}

TEST(ErrorTest, ConvertingToItselfDoublesTheHead) {
    vxError theError(1, "one");
    theError.SetModule("File");

    theError.ConvertTo(theError);
    theError.ConvertTo(theError.GetErrorCode(), theError.GetErrorStr(), theError.GetModule());

    EXPECT_EQ(TextOf(theError),
              " (error: 1 [File] 'one') (error: 1 [File] 'one') (error: 1 [File] 'one')");
}

TEST(ErrorTest, InitialErrorWithoutHistoryIsTheErrorItself) {
    EXPECT_EQ(TextOf(vxError(5, "x").GetInitialError()), " (error: 5 'x')");
}

TEST(ErrorTest, CopiesTheWholeChain) {
    vxError theError = ChainOfThree();
    const vxError theCopy(theError);
    theError.ConvertTo(4, "", NULL);
    theError = vxError(9, "");

    EXPECT_EQ(TextOf(theCopy),
              " (error: 3 [App] 'three') (error: 2 [Net] 'two') (error: 1 [File] 'one')");
}

TEST(ErrorTest, AssigningAnErrorWithHistoryReplacesTheHistory) {
    vxError theError(9, "nine");
    theError.ConvertTo(8, "eight", "Old");

    theError = ChainOfThree();

    EXPECT_EQ(TextOf(theError), TextOf(ChainOfThree()));
}

TEST(ErrorTest, AssigningAnErrorWithoutHistoryKeepsTheOldHistory) {
    vxError theError = ChainOfThree();

    theError = vxError(9, "nine");

    EXPECT_EQ(theError.GetModule(), nullptr);
    EXPECT_EQ(TextOf(theError),
              " (error: 9 'nine') (error: 2 [Net] 'two') (error: 1 [File] 'one')");
}

TEST(ErrorTest, AssigningItselfDoesNothing) {
    vxError theError = ChainOfThree();
    const vxError& theAlias = theError;
    const char* theModule = theError.GetModule();

    theError = theAlias;

    EXPECT_EQ(TextOf(theError), TextOf(ChainOfThree()));
    EXPECT_EQ(theError.GetModule(), theModule);
}

TEST(ErrorTest, FetchesTheNewestErrorOfAModuleWithItsHistory) {
    vxError theError = ChainOfThree();
    theError.ConvertTo(4, "four", "Net");
    vxError theFound;

    ASSERT_TRUE(theError.FetchModuleError("Net", theFound));
    EXPECT_EQ(theFound.GetErrorCode(), 4);
    EXPECT_EQ(theFound.GetErrorHistoryCount(), 3u);
    ASSERT_TRUE(theError.FetchModuleError("App", theFound));
    EXPECT_EQ(TextOf(theFound), TextOf(ChainOfThree()));
}

TEST(ErrorTest, FetchingComparesByteForByteAndSkipsErrorsWithoutAModule) {
    vxError theError = ChainOfThree();
    theError.ConvertTo(4, "four", NULL);
    vxError theFound(77, "kept");

    EXPECT_FALSE(theError.FetchModuleError("net", theFound));
    EXPECT_FALSE(theError.FetchModuleError("Ne", theFound));
    EXPECT_FALSE(theError.FetchModuleError("", theFound));
    EXPECT_FALSE(theError.FetchModuleError(NULL, theFound));
    EXPECT_EQ(TextOf(theFound), " (error: 77 'kept')");
}

TEST(ErrorTest, FetchedErrorWithoutHistoryKeepsTheHistoryOfItsTarget) {
    vxError theFound(8, "eight");
    theFound.ConvertTo(9, "nine", NULL);

    ASSERT_TRUE(ChainOfThree().FetchModuleError("File", theFound));

    EXPECT_EQ(TextOf(theFound), " (error: 1 [File] 'one') (error: 8 'eight')");
}

TEST(ErrorTest, FetchingIntoTheErrorItselfIsSafe) {
    vxError theError = ChainOfThree();

    ASSERT_TRUE(theError.FetchModuleError("Net", theError));

    EXPECT_EQ(TextOf(theError), " (error: 2 [Net] 'two') (error: 1 [File] 'one')");
}

TEST(ErrorTest, WritesAsJSONWhatIsThere) {
    EXPECT_EQ(JSONOf(vxError()), "{\"code\":0}");
    EXPECT_EQ(JSONOf(vxError(-3, "")), "{\"code\":-3}");

    vxError theError(1, "one");
    theError.SetModule("");
    EXPECT_EQ(JSONOf(theError), "{\"code\":1,\"message\":\"one\",\"module\":\"\"}");

    theError.ConvertTo(2, "", "Net");
    theError.ConvertTo(-2147483647 - 1, "", NULL);
    EXPECT_EQ(JSONOf(theError),
              "{\"code\":-2147483648,\"previous\":{\"code\":2,\"module\":\"Net\",\"previous\":"
              "{\"code\":1,\"message\":\"one\",\"module\":\"\"}}}");
}

TEST(ErrorTest, WritingAsJSONToAnArrayIsReported) {
    vxtest::Reports theReports;
    vxJSONDocument theDocument("[1]");
    vxJSONObject theObject(theDocument.mEntry);

    vxError(5, "x").ToJSON(theObject);

    EXPECT_THAT(theReports.Assertions(), testing::ElementsAre("vxJSON_Is(mEntry, kvxJSON_Object)"));
    EXPECT_STREQ(theDocument.GetRawValue(), "[1]");
}

TEST(ErrorTest, WritingAsJSONKeepsTheOtherMembers) {
    vxJSONDocument theDocument("{\"id\":7,\"code\":1}");
    vxJSONObject theObject = theDocument.AsObject();

    vxError(5, "x").ToJSON(theObject);

    EXPECT_STREQ(theDocument.GetRawValue(), "{\"id\":7,\"code\":5,\"message\":\"x\"}");
}

TEST(ErrorTest, WritingAsJSONReplacesAnOlderHistory) {
    for (const char* theText : {"{\"previous\":5}", "{\"previous\":{\"message\":\"old\"}}"}) {
        SCOPED_TRACE(theText);
        vxtest::Reports theReports;
        vxJSONDocument theDocument(theText);
        vxJSONObject theObject = theDocument.AsObject();
        vxError theError(1, "");
        theError.ConvertTo(2, "", NULL);

        theError.ToJSON(theObject);

        EXPECT_STREQ(theDocument.GetRawValue(), "{\"code\":2,\"previous\":{\"code\":1}}");
        EXPECT_THAT(theReports.Assertions(), testing::IsEmpty());
    }
}

TEST(ErrorTest, ReadsBackTheChainThatWasWritten) {
    vxError theError;

    ASSERT_TRUE(ReadInto(theError, JSONOf(ChainOfThree()).c_str()));

    EXPECT_EQ(TextOf(theError), TextOf(ChainOfThree()));
    EXPECT_EQ(theError.GetErrorHistoryCount(), 2u);
}

TEST(ErrorTest, ReadHistoryReplacesTheOldOneAndAMissingOneLeavesIt) {
    vxError theError = ChainOfThree();
    ASSERT_TRUE(ReadInto(theError, "{\"code\":9,\"previous\":{\"code\":8}}"));
    EXPECT_EQ(TextOf(theError), " (error: 9) (error: 8)");

    ASSERT_TRUE(ReadInto(theError, "{\"code\":7,\"message\":\"m\",\"module\":\"M\"}"));
    EXPECT_EQ(TextOf(theError), " (error: 7 [M] 'm') (error: 8)");
}

TEST(ErrorTest, ReadingNeedsACodeThatIsAnInteger) {
    for (const char* theText :
         {"{}", "{\"message\":\"x\"}", "{\"code\":\"1\"}", "{\"code\":1.5}", "{\"code\":null}",
          "{\"code\":2147483648}", "{\"code\":-2147483649}", "{\"code\":{}}"}) {
        SCOPED_TRACE(theText);
        vxError theError = ChainOfThree();
        EXPECT_FALSE(ReadInto(theError, theText));
        EXPECT_EQ(TextOf(theError), TextOf(ChainOfThree()));
    }
    vxError theError = ChainOfThree();
    EXPECT_FALSE(theError.FromJSON(vxJSONObject()));
    EXPECT_EQ(TextOf(theError), TextOf(ChainOfThree()));
}

TEST(ErrorTest, MembersOfAnotherKindReadAsMissing) {
    vxError theError;

    ASSERT_TRUE(ReadInto(theError,
                         "{\"code\":1,\"message\":5,\"module\":[],\"previous\":"
                         "{\"code\":\"x\",\"message\":\"m\",\"previous\":[]}}"));

    EXPECT_STREQ(theError.GetErrorStr(), "");
    EXPECT_EQ(theError.GetModule(), nullptr);
    ASSERT_EQ(theError.GetErrorHistoryCount(), 1u);
    EXPECT_EQ(theError.GetErrorHistory(0).GetErrorCode(), 0);
    EXPECT_STREQ(theError.GetErrorHistory(0).GetErrorStr(), "m");
}

TEST(ErrorTest, EmptyModuleIsReadAsSet) {
    vxError theError;

    ASSERT_TRUE(ReadInto(theError, "{\"code\":1,\"module\":\"\"}"));

    EXPECT_STREQ(theError.GetModule(), "");
}

TEST(ErrorTest, LinkReadsItselfAndNotItsHistory) {
    vxJSONDocument theDocument("{\"code\":2,\"message\":\"m\",\"previous\":{\"code\":1}}");

    const vxError::vxErrorInfo theInfo(theDocument.AsObject());

    EXPECT_STREQ(theInfo.ToString(), " (error: 2 'm')");
    EXPECT_STREQ(theInfo.ToShortString(), "2: m");
}

TEST(ErrorTest, LinkAnswersAsItsError) {
    char theModule[] = "File";
    const vxError::vxErrorInfo theInfo(-3, "not found", theModule);
    theModule[0] = 'X';
    EXPECT_STREQ(theInfo.ToString(), " (error: -3 [File] 'not found')");
    EXPECT_STREQ(theInfo.ToShortString(), "-3: not found");

    vxError theFound;
    EXPECT_FALSE(theInfo.FetchModuleError("Xile", theFound));
    ASSERT_TRUE(theInfo.FetchModuleError("File", theFound));
    EXPECT_EQ(TextOf(theFound), " (error: -3 [File] 'not found')");

    vxJSONObject theObject;
    vxError::vxErrorInfo(5, "", NULL).ToJSON(theObject);
    EXPECT_STREQ(theObject.GetRawValue(), "{\"code\":5}");
}

TEST(ErrorTest, LinkIsAssignedWithoutLosingItsModule) {
    vxError::vxErrorInfo theInfo(1, "one", "File");
    const vxError::vxErrorInfo& theAlias = theInfo;
    theInfo = theAlias;
    EXPECT_STREQ(theInfo.ToString(), " (error: 1 [File] 'one')");

    theInfo = vxError::vxErrorInfo(2, "two", NULL);
    EXPECT_STREQ(theInfo.ToString(), " (error: 2 'two')");
}

TEST(ErrorTest, MillionErrorsAreCopiedPrintedReadAndDestroyedOnASmallStack) {
    pthread_attr_t theAttributes;
    pthread_attr_init(&theAttributes);
    pthread_attr_setstacksize(&theAttributes, 128 * 1024);
    const auto theBody = [](void*) -> void* {
        vxError theError(1, "");
        for (int i = 0; i < 1000000; ++i) {
            theError.ConvertTo(2, "", NULL);
        }
        vxError theCopy(theError);
        theCopy = theError;
        EXPECT_EQ(theCopy.GetErrorHistoryCount(), 1000000u);
        EXPECT_EQ(theCopy.ToString().length(), 11u * 1000001u);
        EXPECT_EQ(theCopy.GetInitialError().GetErrorCode(), 1);

        vxJSONObject theObject;
        theError.ToJSON(theObject);
        vxError theRead;
        EXPECT_TRUE(theRead.FromJSON(theObject));
        EXPECT_EQ(theRead.GetErrorHistoryCount(), 1000000u);
        return NULL;
    };
    pthread_t theThread;
    ASSERT_EQ(pthread_create(&theThread, &theAttributes, theBody, NULL), 0);
    pthread_join(theThread, NULL);
    pthread_attr_destroy(&theAttributes);
}
