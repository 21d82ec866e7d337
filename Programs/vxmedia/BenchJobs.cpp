// Jobs that always do the same, so that their times can be compared between machines and versions.

#include "BenchJobs.h"

#include <libteskTools/JSON.h>

#include <cstdlib>

#include "vx/BenchMark.h"
#include "vx/Error.h"
#include "vx/JSON.h"
#include "vx/List.h"
#include "vx/XML.h"
#include "vx/XMLBuilder.h"
#include "vx/XMLParser.h"

namespace vxmedia {

namespace {

constexpr char kBench_FileName[] = "vxmedia-bench.txt";
constexpr int kBench_Rounds = 20;
constexpr uint32_t kBench_Items = 5000;

struct BenchJob {
    const char* mName;
    const char* mTitle;
    void (*mRun)();
};

void MakeDocument(vxJSONDocument& aDocument) {
    vxJSONArray theItems = aDocument.AsObject().AddArray("items");
    for (uint32_t i = 0; i < kBench_Items; ++i) {
        vxJSONObject theItem = theItems.InsertObject(kvxJSON_Append);
        theItem.Add(vxJSONPair("id", i), false);
        theItem.Add(vxJSONPair("path", vxCString::Format("music/track %u.flac", i)), false);
        theItem.Add(vxJSONPair("seconds", i * 0.001), false);
    }
}

void RunJSON() {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_Object);
    MakeDocument(theDocument);
    for (int i = 0; i < kBench_Rounds; ++i) {
        theDocument.SetDocument(theDocument.ToString(false));
    }
}

void RunMPack() {
    vxJSONDocument theDocument(kvxJSONDocumentRoot_Object);
    MakeDocument(theDocument);
    for (int i = 0; i < kBench_Rounds; ++i) {
        uint32_t theSize = 0;
        uint8_t* theBytes = theDocument.ToMPackBuffer(&theSize, vxRef<vxMPackDictionary>());
        theDocument.SetEntry(vxJSON_FromMPackSize(theBytes, theSize, NULL));
        free(theBytes);
    }
}

void RunStrings() {
    for (int i = 0; i < kBench_Rounds; ++i) {
        vxCString theText;
        for (uint32_t j = 0; j < kBench_Items; ++j) {
            theText += vxCString::Format("%u,", j);
        }
        theText.Replace(",", "; ");
    }
}

void RunXML() {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("items");
    for (uint32_t i = 0; i < kBench_Items; ++i) {
        theBuilder.StartTag("item");
        theBuilder.AddUInt32Attribute("id", i);
        theBuilder.AddTag("path", vxCString::Format("music/track & %u.flac", i), 0, false);
        theBuilder.EndTag();
    }
    theBuilder.EndTag();
    const vxCString theText = theBuilder.TakeXML();
    for (int i = 0; i < kBench_Rounds; ++i) {
        vxXMLDocument theDocument;
        vxError theError;
        vxXMLParser().Parse(theText, theDocument, theError);
    }
}

constexpr BenchJob kBenchJobs[] = {
    {"json", "json: write and read a document of 5000 items, 20 times", RunJSON},
    {"mpack", "mpack: encode and decode a document of 5000 items, 20 times", RunMPack},
    {"strings", "strings: format, append and replace in 5000 pieces, 20 times", RunStrings},
    {"xml", "xml: build a text of 5000 elements, and read it 20 times", RunXML},
};

}  // namespace

vxCString RunBenchJob(const vxCString& aName) {
    vxCString theNames;
    for (const BenchJob& theJob : kBenchJobs) {
        if (aName == theJob.mName) {
            const vxBenchMark theBenchMark(VXLOG_M_DEFAULT, kBench_FileName, theJob.mTitle);
            theJob.mRun();
            return vxCString();
        }
        theNames += theNames.IsEmpty() ? "" : ", ";
        theNames += theJob.mName;
    }
    return vxCString("ERROR: There is no job '") + aName + "'; there are " + theNames;
}

}  // namespace vxmedia
