#pragma once

// Texts of the shape of three documents that JSON libraries are often measured with, made by a
// fixed rule: the documents themselves are not part of the project.
//
//     canada        2.2 MB: rings of coordinate pairs, doubles of 17 digits, no blanks
//     twitter       0.6 MB: messages of many members, half of their text Japanese, indented
//     citm_catalog  1.7 MB: small objects of integers and nulls, many of them keyed, indented

#include <cstdio>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

struct BenchmarkDocument {
    const char* mName;
    std::string mText;
};

using OrderedJSON = nlohmann::ordered_json;

inline std::string MakeCanada() {
    std::mt19937 theRandom(1);
    std::string theText =
        "{\"type\":\"FeatureCollection\",\"features\":[{\"type\":\"Feature\",\"properties\":"
        "{\"name\":\"Canada\"},\"geometry\":{\"type\":\"Polygon\",\"coordinates\":[";
    const auto theCoordinate = [&theRandom](double aStart, double aRange) {
        const double theMillionths = aRange * 1e6 * (theRandom() % 1000003) / 1000003.0;
        char theDigits[40];
        snprintf(theDigits, sizeof(theDigits), "%.15f",
                 aStart + static_cast<double>(static_cast<long>(theMillionths)) / 1e6);
        return std::string(theDigits);
    };
    for (int theRing = 0; theRing < 480; ++theRing) {
        theText += theRing == 0 ? "[" : ",[";
        for (int thePair = 0; thePair < 116; ++thePair) {
            theText += thePair == 0 ? "[" : ",[";
            theText += theCoordinate(-141, 89) + "," + theCoordinate(41, 43) + "]";
        }
        theText += "]";
    }
    return theText + "]}}]}\n";
}

inline std::string MakeWords(std::mt19937& aRandom, bool afJapanese, size_t aCount) {
    static const char* const kJapanese[] = {"\u540d\u524d", "\u524d\u7530", "\u7b2c\u4e8c",
                                            "\u3042\u3089", "\u304a\u3084", "\u30a2\u30ab",
                                            "\u3067\u3059", "\u3001"};
    static const char* const kLatin[] = {"name ",   "of ",     "second ",
                                         "person ", "\"so\" ", "reply\n"};
    std::string theText;
    for (size_t i = 0; i < aCount; ++i) {
        theText += afJapanese ? kJapanese[aRandom() % 8] : kLatin[aRandom() % 6];
    }
    return theText;
}

inline OrderedJSON MakeTwitterUser(std::mt19937& aRandom) {
    const uint64_t theId = 1000000000 + aRandom();
    OrderedJSON theUser;
    theUser["id"] = theId;
    theUser["id_str"] = std::to_string(theId);
    theUser["name"] = MakeWords(aRandom, true, 4);
    theUser["screen_name"] = "user" + std::to_string(aRandom());
    theUser["location"] = "";
    theUser["description"] = MakeWords(aRandom, true, 30);
    theUser["url"] = nullptr;
    theUser["entities"] = {{"description", {{"urls", OrderedJSON::array()}}}};
    theUser["protected"] = false;
    theUser["followers_count"] = aRandom() % 10000;
    theUser["friends_count"] = aRandom() % 10000;
    theUser["listed_count"] = aRandom() % 100;
    theUser["created_at"] = "Thu Jul 26 13:47:21 +0000 2012";
    theUser["favourites_count"] = aRandom() % 1000;
    theUser["utc_offset"] = nullptr;
    theUser["time_zone"] = nullptr;
    theUser["geo_enabled"] = false;
    theUser["verified"] = false;
    theUser["statuses_count"] = aRandom() % 100000;
    theUser["lang"] = "ja";
    theUser["contributors_enabled"] = false;
    theUser["is_translator"] = false;
    theUser["is_translation_enabled"] = false;
    theUser["profile_background_color"] = "C0DEED";
    theUser["profile_background_image_url"] = "http://abs.example.com/images/themes/theme1/bg.png";
    theUser["profile_background_tile"] = false;
    theUser["profile_image_url"] =
        "http://pbs.example.com/profile_images/" + std::to_string(aRandom()) + "/icon_normal.jpeg";
    theUser["profile_banner_url"] =
        "https://pbs.example.com/profile_banners/" + std::to_string(aRandom());
    theUser["profile_link_color"] = "0084B4";
    theUser["profile_sidebar_border_color"] = "C0DEED";
    theUser["profile_sidebar_fill_color"] = "DDEEF6";
    theUser["profile_text_color"] = "333333";
    theUser["profile_use_background_image"] = true;
    theUser["default_profile"] = true;
    theUser["default_profile_image"] = false;
    theUser["following"] = false;
    theUser["follow_request_sent"] = false;
    theUser["notifications"] = false;
    return theUser;
}

inline OrderedJSON MakeTwitterStatus(std::mt19937& aRandom, bool afRetweet) {
    const uint64_t theId = 500000000000000000u + aRandom();
    OrderedJSON theStatus;
    theStatus["metadata"] = {{"result_type", "recent"}, {"iso_language_code", "ja"}};
    theStatus["created_at"] = "Sun Aug 31 00:29:15 +0000 2014";
    theStatus["id"] = theId;
    theStatus["id_str"] = std::to_string(theId);
    theStatus["text"] = "@example " + MakeWords(aRandom, aRandom() % 4 != 0, 25);
    theStatus["source"] =
        "<a href=\"http://example.com/download\" rel=\"nofollow\">Example for Phones</a>";
    theStatus["truncated"] = false;
    theStatus["in_reply_to_status_id"] = nullptr;
    theStatus["in_reply_to_user_id"] = 866260188;
    theStatus["in_reply_to_screen_name"] = "example";
    theStatus["user"] = MakeTwitterUser(aRandom);
    theStatus["geo"] = nullptr;
    theStatus["coordinates"] = nullptr;
    theStatus["place"] = nullptr;
    theStatus["contributors"] = nullptr;
    if (afRetweet) {
        theStatus["retweeted_status"] = MakeTwitterStatus(aRandom, false);
    }
    theStatus["retweet_count"] = aRandom() % 100;
    theStatus["favorite_count"] = aRandom() % 100;
    OrderedJSON theMention = {{"screen_name", "example"},
                              {"name", MakeWords(aRandom, true, 4)},
                              {"id", 866260188},
                              {"id_str", "866260188"},
                              {"indices", {0, 9}}};
    theStatus["entities"] = {{"hashtags", OrderedJSON::array()},
                             {"symbols", OrderedJSON::array()},
                             {"urls", OrderedJSON::array()},
                             {"user_mentions", OrderedJSON::array({theMention})}};
    theStatus["favorited"] = false;
    theStatus["retweeted"] = false;
    theStatus["lang"] = "ja";
    return theStatus;
}

inline std::string MakeTwitter() {
    std::mt19937 theRandom(2);
    OrderedJSON theRoot;
    for (int i = 0; i < 100; ++i) {
        theRoot["statuses"].push_back(MakeTwitterStatus(theRandom, i % 4 != 0));
    }
    theRoot["search_metadata"] = {{"completed_in", 0.087}, {"count", 100}, {"since_id", 0}};
    return theRoot.dump(2) + "\n";
}

inline OrderedJSON MakePerformance(std::mt19937& aRandom, int anIndex) {
    OrderedJSON thePerformance;
    thePerformance["eventId"] = 138586341 + anIndex % 184;
    thePerformance["id"] = 339887544 + anIndex;
    thePerformance["logo"] = nullptr;
    thePerformance["name"] = nullptr;
    thePerformance["prices"] = OrderedJSON::array();
    thePerformance["seatCategories"] = OrderedJSON::array();
    for (int i = 0; i < 3; ++i) {
        thePerformance["prices"].push_back({{"amount", 10000 + 250 * (aRandom() % 500)},
                                            {"audienceSubCategoryId", 337100890},
                                            {"seatCategoryId", 338937295 + aRandom() % 50}});
        OrderedJSON theAreas = OrderedJSON::array();
        for (int theArea = 0; theArea < 9; ++theArea) {
            theAreas.push_back(
                {{"areaId", 205705993 + aRandom() % 20}, {"blockIds", OrderedJSON::array()}});
        }
        thePerformance["seatCategories"].push_back(
            {{"areas", theAreas}, {"seatCategoryId", 338937295 + aRandom() % 50}});
    }
    thePerformance["seatMapImage"] = nullptr;
    thePerformance["start"] = 1372701600000u + aRandom();
    thePerformance["venueCode"] = "PLEYEL_PLEYEL";
    return thePerformance;
}

inline std::string MakeCatalog() {
    std::mt19937 theRandom(3);
    OrderedJSON theRoot;
    for (int i = 0; i < 20; ++i) {
        theRoot["areaNames"][std::to_string(205705993 + i)] = "Arri\u00e8re-sc\u00e8ne central";
    }
    for (int i = 0; i < 184; ++i) {
        OrderedJSON theEvent = {{"description", nullptr},
                                {"id", 138586341 + i},
                                {"logo", nullptr},
                                {"name", "30th Anniversary Tour"},
                                {"subTopicIds", {337184269, 337184283}},
                                {"subjectCode", nullptr},
                                {"subtitle", nullptr},
                                {"topicIds", {324846099, 107888604}}};
        theRoot["events"][std::to_string(138586341 + i)] = theEvent;
    }
    for (int i = 0; i < 243; ++i) {
        theRoot["performances"].push_back(MakePerformance(theRandom, i));
    }
    for (int i = 0; i < 400; ++i) {
        theRoot["seatCategoryNames"][std::to_string(338937235 + i)] = "1\u00e8re cat\u00e9gorie";
        theRoot["topicSubTopics"][std::to_string(107888604 + i)] = {337184269, 337184283,
                                                                    337184275};
    }
    return theRoot.dump(4) + "\n";
}

/// The documents, made once.
inline const BenchmarkDocument (&BenchmarkDocuments())[3] {
    static const BenchmarkDocument sDocuments[3] = {
        {"canada", MakeCanada()}, {"twitter", MakeTwitter()}, {"citm_catalog", MakeCatalog()}};
    return sDocuments;
}
