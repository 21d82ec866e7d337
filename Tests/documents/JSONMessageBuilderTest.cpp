#include <gmock/gmock.h>
#include <vx/JSON.h>
#include <vx/JSONMessageBuilder.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kFuncName[] = "JSON seems not to be a valid one (FUNC_NAME)\n";
constexpr char kStatus[] = "JSON seems not to be a valid one (STATUS)\n";
constexpr char kParameters[] = "JSON seems not to be a valid one (PARAMETERS)\n";

TEST(JSONMessageBuilderTest, AMessageComesBackWhole) {
    vxJSONMessageBuilder theBuilder;
    theBuilder.SetFuncName("f");
    theBuilder.SetStatus(true);
    theBuilder.AddParameter("a", "1");
    const vxJSONMessageBuilder theAgain(theBuilder.ToJSON());
    EXPECT_STREQ(theAgain.GetFuncName(), "f");
    EXPECT_TRUE(theAgain.GetStatus());
    EXPECT_STREQ(theAgain.GetParameter("a"), "1");
    EXPECT_STREQ(theAgain.GetParameter("b"), "");
    EXPECT_STREQ(theAgain.GetParameter("A"), "");
}

TEST(JSONMessageBuilderTest, MembersAreWrittenInOrderAndTheStatusAsAText) {
    vxJSONMessageBuilder theBuilder;
    theBuilder.SetFuncName("play");
    theBuilder.AddParameter("b", "2");
    theBuilder.AddParameter("a", "1");
    theBuilder.AddParameter("b", "3");
    const vxJSONDocument theDocument(theBuilder.ToJSON());
    EXPECT_STREQ(theDocument.ToString(false),
                 R"({"function_name":"play","status":"false","parameters":{"b":"3","a":"1"}})");
    EXPECT_STREQ(theBuilder.ToJSON(), theDocument.ToString(true));
    EXPECT_STREQ(theBuilder.GetParameter("b"), "2");
}

TEST(JSONMessageBuilderTest, ABooleanIsNoStatus) {
    vxtest::Reports theReports;
    const vxJSONMessageBuilder theBuilder(
        R"({"function_name": "f", "status": true, "parameters": {"n": 5, "t": "x", "z": null}})");
    EXPECT_FALSE(theBuilder.GetStatus());
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(kStatus));
    EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_ERROR);
    EXPECT_EQ(theReports.Records()[0].mModule, VXLOG_M_JSON);
    EXPECT_STREQ(theBuilder.GetParameter("n"), "5");
    EXPECT_STREQ(theBuilder.GetParameter("t"), "x");
    EXPECT_STREQ(theBuilder.GetParameter("z"), "null");
}

TEST(JSONMessageBuilderTest, TheTextIsIndented) {
    vxJSONMessageBuilder theBuilder;
    theBuilder.SetStatus(true);
    EXPECT_STREQ(theBuilder.ToJSON(),
                 "{\n    \"function_name\": \"\",\n    \"status\": \"true\",\n"
                 "    \"parameters\": {}\n}");
}

TEST(JSONMessageBuilderTest, EachMemberOfAWrongKindIsLogged) {
    struct Case {
        const char* mText;
        std::vector<std::string> mLogs;
    };
    const Case kCases[] = {
        {R"({"function_name":"f","status":"false","parameters":{}})", {}},
        {R"({"function_name":5,"status":"true","parameters":{}})", {kFuncName}},
        {R"({"function_name":"f","status":null,"parameters":{}})", {kStatus}},
        {R"({"function_name":"f","status":"true","parameters":[]})", {kParameters}},
        {R"({"Function_name":"f","Status":"true","Parameters":{}})",
         {kFuncName, kStatus, kParameters}},
        {R"(["function_name"])", {kFuncName, kStatus, kParameters}},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxtest::Reports theReports;
        const vxJSONMessageBuilder theBuilder(theCase.mText);
        EXPECT_EQ(theReports.LogTexts(), theCase.mLogs);
    }
}

TEST(JSONMessageBuilderTest, ParametersAreReadInOrderWithTheirRawValues) {
    vxJSONMessageBuilder theBuilder;
    theBuilder.AddParameter("z", "old");
    theBuilder.Set(R"({"function_name":"f","status":"true","parameters":)"
                   R"({"z":"new","a":"q\"","d":1.5,"b":false,"o":{"x":[1]},"a":"again"}})");
    EXPECT_STREQ(theBuilder.GetParameter("z"), "old");
    EXPECT_STREQ(theBuilder.GetParameter("a"), "q\"");
    const vxJSONDocument theDocument(theBuilder.ToJSON());
    EXPECT_STREQ(theDocument["parameters"].ToString(false),
                 R"({"z":"new","a":"again","d":"1.5","b":"false","o":"{\"x\":[1]}"})");
}

TEST(JSONMessageBuilderTest, ItemsOfAnArrayAreNoParameters) {
    vxtest::Reports theReports;
    const vxJSONMessageBuilder theBuilder(
        R"({"function_name":"f","status":"true","parameters":["x",{"a":"1"}]})");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(kParameters));
    EXPECT_TRUE(theBuilder.GetStatus());
    EXPECT_STREQ(vxJSONDocument(theBuilder.ToJSON())["parameters"].ToString(false), "{}");
}

TEST(JSONMessageBuilderTest, NamesOfParametersAreNoPaths) {
    vxJSONMessageBuilder theBuilder;
    for (const char* theKey : {"a.b", "[0]", "$", "a[1]", "", "sl/ash\"", "$[0]", "a.b.c"}) {
        theBuilder.AddParameter(theKey, theKey);
    }
    const vxCString theText = theBuilder.ToJSON();
    EXPECT_STREQ(vxJSONDocument(theText)["parameters"].ToString(false),
                 R"({"a.b":"a.b","[0]":"[0]","$":"$","a[1]":"a[1]","":"",)"
                 R"("sl/ash\"":"sl/ash\"","$[0]":"$[0]","a.b.c":"a.b.c"})");
    const vxJSONMessageBuilder theAgain(theText);
    for (const char* theKey : {"a.b", "[0]", "$", "a[1]", "", "sl/ash\"", "$[0]", "a.b.c"}) {
        EXPECT_STREQ(theAgain.GetParameter(theKey), theKey);
    }
}

TEST(JSONMessageBuilderTest, TheStatusIsComparedInItsCase) {
    EXPECT_FALSE(vxJSONMessageBuilder(R"({"status": "True"})").GetStatus());
    EXPECT_TRUE(vxJSONMessageBuilder(R"({"status": "true"})").GetStatus());
    EXPECT_FALSE(vxJSONMessageBuilder(R"({"status": "true "})").GetStatus());
    EXPECT_FALSE(vxJSONMessageBuilder(R"({"status": "false"})").GetStatus());
}

TEST(JSONMessageBuilderTest, ReadingGoesOnAfterAnErrorAndKeepsParameters) {
    vxtest::Reports theReports;
    vxJSONMessageBuilder theBuilder;
    theBuilder.SetFuncName("old");
    theBuilder.SetStatus(true);
    theBuilder.AddParameter("a", "1");
    theBuilder.Set(R"({"parameters": {"b": "2"}})");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(kFuncName, kStatus));
    EXPECT_STREQ(theBuilder.GetFuncName(), "old");
    EXPECT_FALSE(theBuilder.GetStatus());
    EXPECT_STREQ(theBuilder.GetParameter("a"), "1");
    EXPECT_STREQ(theBuilder.GetParameter("b"), "2");
}

TEST(JSONMessageBuilderTest, MalformedTextGivesAllThreeMessages) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_WARNING);
    vxJSONMessageBuilder theBuilder;
    theBuilder.SetFuncName("kept");
    theBuilder.Set("{");
    EXPECT_THAT(theReports.LogTexts(), ElementsAre(kFuncName, kStatus, kParameters));
    EXPECT_STREQ(theBuilder.GetFuncName(), "kept");
    EXPECT_FALSE(theBuilder.GetStatus());
}

TEST(JSONMessageBuilderTest, ErrorsAreSilentBelowTheWarningLevel) {
    vxtest::Reports theReports;
    vxLog_SetLevel(VXLOG_M_JSON, VXLOGLEVEL_ERROR);
    vxJSONMessageBuilder("{");
    EXPECT_THAT(theReports.LogTexts(), IsEmpty());
}

}  // namespace
