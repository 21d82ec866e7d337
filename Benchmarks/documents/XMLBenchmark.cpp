// XML: text read into trees, trees copied and written, text written without a tree, and escaped,
// beside other libraries.
//
// What they promise differs. Nodes of libxml2 can be taken out and freed one by one, as ours, and it
// checks the same rules of well-formed text in UTF-8. tinyxml2 and pugixml keep texts in one block and
// check little; pugixml frees a tree only as a whole, and shows the limit.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlwriter.h>
#include <tinyxml2.h>

#include <QXmlStreamWriter>
#include <pugixml.hpp>
#include <random>
#include <string>
#include <vector>

#include "vx/Error.h"
#include "vx/XML.h"
#include "vx/XMLBuilder.h"
#include "vx/XMLParser.h"

namespace {

// A list of tracks, as media servers send it.

struct Track {
    std::string mId;
    std::string mTitle;
    std::string mArtist;
    std::string mSize;
    std::string mURL;
};

std::vector<Track> MakeTracks() {
    static const char* const kWords[] = {"Aria",  "Tom & Jerry", "Blue", "Rain",        "a < b",
                                         "Night", "Fjord",       "Sun",  "Caf\xC3\xA9", "Stone"};
    std::mt19937 theRandom(5);
    const auto theWords = [&theRandom](size_t aCount) {
        std::string theText;
        for (size_t i = 0; i < aCount; ++i) {
            theText += (i == 0 ? "" : " ") + std::string(kWords[theRandom() % 10]);
        }
        return theText;
    };
    std::vector<Track> theTracks;
    for (int i = 0; i < 1000; ++i) {
        theTracks.push_back({std::to_string(i), theWords(4), theWords(2),
                             std::to_string(theRandom()),
                             "http://192.168.1.20:8080/music?track=" + std::to_string(theRandom()) +
                                 "&quality=high"});
    }
    return theTracks;
}

const std::vector<Track>& Tracks() {
    static const std::vector<Track> sTracks = MakeTracks();
    return sTracks;
}

/// Takes a finished text: keeps a copy where it is to be compared.
void Finish(std::string* aResult, const char* const aText, size_t aLength) {
    benchmark::DoNotOptimize(aText);
    if (aResult != nullptr) {
        aResult->assign(aText, aLength);
    }
}

// Writing without a tree

void WriteVX(std::string* aResult) {
    vxXMLBuilder theBuilder(0);
    theBuilder.StartTag("list");
    for (const Track& theTrack : Tracks()) {
        theBuilder.StartTag("item");
        theBuilder.AddAttribute("id", theTrack.mId.c_str());
        theBuilder.AddAttribute("parent", "music");
        theBuilder.AddTag("title", theTrack.mTitle.c_str(), 0, false);
        theBuilder.AddTag("artist", theTrack.mArtist.c_str(), 0, false);
        theBuilder.AddEmptyTag("audio");
        theBuilder.StartTag("res");
        theBuilder.AddAttribute("size", theTrack.mSize.c_str());
        theBuilder.AddText(theTrack.mURL.c_str());
        theBuilder.EndTag();
        theBuilder.EndTag();
    }
    theBuilder.EndTag();
    const vxCString theText = theBuilder.TakeXML();
    Finish(aResult, theText.c_str(), theText.length());
}

void AppendEscaped(std::string& aText, const std::string& aValue) {
    for (const char theChar : aValue) {
        switch (theChar) {
            case '<':
                aText += "&lt;";
                break;
            case '>':
                aText += "&gt;";
                break;
            case '&':
                aText += "&amp;";
                break;
            case '"':
                aText += "&quot;";
                break;
            case '\'':
                aText += "&apos;";
                break;
            default:
                aText += theChar;
        }
    }
}

void WriteOwn(std::string* aResult) {
    std::string theText = "<list>";
    for (const Track& theTrack : Tracks()) {
        theText += "<item id=\"";
        AppendEscaped(theText, theTrack.mId);
        theText += "\" parent=\"music\"><title>";
        AppendEscaped(theText, theTrack.mTitle);
        theText += "</title><artist>";
        AppendEscaped(theText, theTrack.mArtist);
        theText += "</artist><audio/><res size=\"";
        AppendEscaped(theText, theTrack.mSize);
        theText += "\">";
        AppendEscaped(theText, theTrack.mURL);
        theText += "</res></item>";
    }
    theText += "</list>";
    Finish(aResult, theText.data(), theText.size());
}

void WriteTiny(std::string* aResult) {
    tinyxml2::XMLPrinter thePrinter(nullptr, true);
    const auto theLeaf = [&thePrinter](const char* aName, const std::string& aText) {
        thePrinter.OpenElement(aName);
        thePrinter.PushText(aText.c_str());
        thePrinter.CloseElement();
    };
    thePrinter.OpenElement("list");
    for (const Track& theTrack : Tracks()) {
        thePrinter.OpenElement("item");
        thePrinter.PushAttribute("id", theTrack.mId.c_str());
        thePrinter.PushAttribute("parent", "music");
        theLeaf("title", theTrack.mTitle);
        theLeaf("artist", theTrack.mArtist);
        thePrinter.OpenElement("audio");
        thePrinter.CloseElement();
        thePrinter.OpenElement("res");
        thePrinter.PushAttribute("size", theTrack.mSize.c_str());
        thePrinter.PushText(theTrack.mURL.c_str());
        thePrinter.CloseElement();
        thePrinter.CloseElement();
    }
    thePrinter.CloseElement();
    Finish(aResult, thePrinter.CStr(), static_cast<size_t>(thePrinter.CStrSize()) - 1);
}

const xmlChar* X(const std::string& aText) {
    return reinterpret_cast<const xmlChar*>(aText.c_str());
}

void WriteLibxml2(std::string* aResult) {
    xmlBufferPtr theBuffer = xmlBufferCreate();
    xmlTextWriterPtr theWriter = xmlNewTextWriterMemory(theBuffer, 0);
    xmlTextWriterStartElement(theWriter, BAD_CAST "list");
    for (const Track& theTrack : Tracks()) {
        xmlTextWriterStartElement(theWriter, BAD_CAST "item");
        xmlTextWriterWriteAttribute(theWriter, BAD_CAST "id", X(theTrack.mId));
        xmlTextWriterWriteAttribute(theWriter, BAD_CAST "parent", BAD_CAST "music");
        xmlTextWriterWriteElement(theWriter, BAD_CAST "title", X(theTrack.mTitle));
        xmlTextWriterWriteElement(theWriter, BAD_CAST "artist", X(theTrack.mArtist));
        xmlTextWriterStartElement(theWriter, BAD_CAST "audio");
        xmlTextWriterEndElement(theWriter);
        xmlTextWriterStartElement(theWriter, BAD_CAST "res");
        xmlTextWriterWriteAttribute(theWriter, BAD_CAST "size", X(theTrack.mSize));
        xmlTextWriterWriteString(theWriter, X(theTrack.mURL));
        xmlTextWriterEndElement(theWriter);
        xmlTextWriterEndElement(theWriter);
    }
    xmlTextWriterEndElement(theWriter);
    xmlFreeTextWriter(theWriter);
    Finish(aResult, reinterpret_cast<const char*>(xmlBufferContent(theBuffer)),
           static_cast<size_t>(xmlBufferLength(theBuffer)));
    xmlBufferFree(theBuffer);
}

void WriteQt(std::string* aResult) {
    QByteArray theText;
    QXmlStreamWriter theWriter(&theText);
    const auto theAttribute = [&theWriter](const char* aName, const std::string& aValue) {
        theWriter.writeAttribute(QString::fromLatin1(aName), QString::fromStdString(aValue));
    };
    theWriter.writeStartElement("list");
    for (const Track& theTrack : Tracks()) {
        theWriter.writeStartElement("item");
        theAttribute("id", theTrack.mId);
        theAttribute("parent", "music");
        theWriter.writeTextElement("title", QString::fromStdString(theTrack.mTitle));
        theWriter.writeTextElement("artist", QString::fromStdString(theTrack.mArtist));
        theWriter.writeEmptyElement("audio");
        theWriter.writeStartElement("res");
        theAttribute("size", theTrack.mSize);
        theWriter.writeCharacters(QString::fromStdString(theTrack.mURL));
        theWriter.writeEndElement();
        theWriter.writeEndElement();
    }
    theWriter.writeEndElement();
    Finish(aResult, theText.constData(), static_cast<size_t>(theText.size()));
}

// Escaping

const std::string& LongText() {
    static const std::string sText = [] {
        std::mt19937 theRandom(6);
        std::string theText;
        while (theText.size() < 64 * 1024) {
            const unsigned theKind = theRandom() % 100;
            theText += theKind == 0   ? '<'
                       : theKind == 1 ? '>'
                       : theKind == 2 ? '&'
                       : theKind < 20 ? ' '
                                      : static_cast<char>('a' + theRandom() % 26);
        }
        return theText;
    }();
    return sText;
}

void EscapeVX(std::string* aResult) {
    const vxCString theText = vxXMLBuilder::Escape(
        LongText().c_str(), static_cast<uint32_t>(LongText().size()), 0, false);
    Finish(aResult, theText.c_str(), theText.length());
}

void EscapeTiny(std::string* aResult) {
    tinyxml2::XMLPrinter thePrinter;
    thePrinter.PushText(LongText().c_str());
    Finish(aResult, thePrinter.CStr(), static_cast<size_t>(thePrinter.CStrSize()) - 1);
}

void EscapeLibxml2(std::string* aResult) {
    xmlChar* theText = xmlEncodeSpecialChars(nullptr, X(LongText()));
    Finish(aResult, reinterpret_cast<char*>(theText), static_cast<size_t>(xmlStrlen(theText)));
    xmlFree(theText);
}

void EscapeGLib(std::string* aResult) {
    char* theText =
        g_markup_escape_text(LongText().c_str(), static_cast<gssize>(LongText().size()));
    Finish(aResult, theText, strlen(theText));
    g_free(theText);
}

void EscapeOwn(std::string* aResult) {
    std::string theText;
    AppendEscaped(theText, LongText());
    Finish(aResult, theText.data(), theText.size());
}

// Trees

struct VX {
    using Tree = vxXMLDocument*;
    static Tree Parse(const std::string& aText) {
        Tree theTree = new vxXMLDocument;
        vxError theError;
        vxXMLParser().Parse(aText.data(), aText.size(), *theTree, theError);
        return theTree;
    }
    static Tree Clone(Tree aTree) { return aTree->Clone(); }
    static void Save(Tree aTree, std::string* aResult) {
        vxCString theText;
        aTree->GetRoot()->SaveStr(theText);
        Finish(aResult, theText.c_str(), theText.length());
    }
    static void Free(Tree aTree) { delete aTree; }
};

struct Pugi {
    using Tree = pugi::xml_document*;
    static Tree Parse(const std::string& aText) {
        Tree theTree = new pugi::xml_document;
        theTree->load_buffer(aText.data(), aText.size(), pugi::parse_default, pugi::encoding_utf8);
        return theTree;
    }
    static Tree Clone(Tree aTree) {
        Tree theTree = new pugi::xml_document;
        theTree->reset(*aTree);
        return theTree;
    }
    struct Writer : pugi::xml_writer {
        std::string mText;
        void write(const void* aData, size_t aSize) override {
            mText.append(static_cast<const char*>(aData), aSize);
        }
    };
    static void Save(Tree aTree, std::string* aResult) {
        Writer theWriter;
        aTree->save(theWriter, "  ", pugi::format_default | pugi::format_no_declaration,
                    pugi::encoding_utf8);
        Finish(aResult, theWriter.mText.data(), theWriter.mText.size());
    }
    static void Free(Tree aTree) { delete aTree; }
};

struct Tiny {
    using Tree = tinyxml2::XMLDocument*;
    static Tree Parse(const std::string& aText) {
        Tree theTree = new tinyxml2::XMLDocument;
        theTree->Parse(aText.data(), aText.size());
        return theTree;
    }
    static Tree Clone(Tree aTree) {
        Tree theTree = new tinyxml2::XMLDocument;
        aTree->DeepCopy(theTree);
        return theTree;
    }
    static void Save(Tree aTree, std::string* aResult) {
        tinyxml2::XMLPrinter thePrinter;
        aTree->Print(&thePrinter);
        Finish(aResult, thePrinter.CStr(), static_cast<size_t>(thePrinter.CStrSize()) - 1);
    }
    static void Free(Tree aTree) { delete aTree; }
};

struct Libxml2 {
    using Tree = xmlDocPtr;
    static Tree Parse(const std::string& aText) {
        return xmlReadMemory(aText.data(), static_cast<int>(aText.size()), nullptr, "UTF-8",
                             XML_PARSE_NOBLANKS | XML_PARSE_NONET);
    }
    static Tree Clone(Tree aTree) { return xmlCopyDoc(aTree, 1); }
    static void Save(Tree aTree, std::string* aResult) {
        xmlChar* theMemory = nullptr;
        int theSize = 0;
        xmlDocDumpFormatMemoryEnc(aTree, &theMemory, &theSize, "UTF-8", 1);
        Finish(aResult, reinterpret_cast<char*>(theMemory), static_cast<size_t>(theSize));
        xmlFree(theMemory);
    }
    static void Free(Tree aTree) { xmlFreeDoc(aTree); }
};

/// The same text for the same XML: every layout gone, every entity written one way.
std::string Canonical(const std::string& aText) {
    pugi::xml_document theTree;
    if (!theTree.load_buffer(aText.data(), aText.size(), pugi::parse_default)) {
        return "no XML";
    }
    Pugi::Writer theWriter;
    theTree.save(theWriter, "", pugi::format_raw | pugi::format_no_declaration);
    return theWriter.mText;
}

/// What a piece of work gives.
template <typename Work>
std::string Result(Work aWork) {
    std::string theResult;
    aWork(&theResult);
    return theResult;
}

template <typename Work>
void Register(const char* anItem, const char* aWho, bool afIsSame, Work aWork) {
    benchmark::RegisterBenchmark(("xml/" + std::string(anItem) + "/" + aWho).c_str(),
                                 [afIsSame, aWork](benchmark::State& aState) {
                                     if (!afIsSame) {
                                         aState.SkipWithError("gives another result");
                                     }
                                     for (auto _ : aState) {
                                         aWork();
                                     }
                                 });
}

void RegisterWrite(const char* aWho, void (*aWrite)(std::string*)) {
    const bool theIsSame = Canonical(Result(aWrite)) == Canonical(Result(WriteOwn));
    Register("stream_write", aWho, theIsSame, [aWrite] { aWrite(nullptr); });
}

void RegisterEscape(const char* aWho, void (*anEscape)(std::string*)) {
    Register("escape64k", aWho, Result(anEscape) == Result(EscapeOwn),
             [anEscape] { anEscape(nullptr); });
}

template <typename Lib>
std::string Saved(typename Lib::Tree aTree) {
    return Result([aTree](std::string* aResult) { Lib::Save(aTree, aResult); });
}

template <typename Lib>
void RegisterTree(const char* aWho) {
    static const std::string sCompact = Result(WriteOwn);
    static const std::string sIndented = [] {
        pugi::xml_document theTree;
        theTree.load_string(sCompact.c_str());
        return Saved<Pugi>(&theTree);
    }();
    static const typename Lib::Tree sTree = Lib::Parse(sIndented);
    typename Lib::Tree theClone = Lib::Clone(sTree);
    const std::string theExpected = Canonical(sCompact);
    const bool theIsSame = Canonical(Saved<Lib>(sTree)) == theExpected &&
                           Canonical(Saved<Lib>(theClone)) == theExpected;
    Lib::Free(theClone);
    Register("parse/compact", aWho, theIsSame, [] { Lib::Free(Lib::Parse(sCompact)); });
    Register("parse/indented", aWho, theIsSame, [] { Lib::Free(Lib::Parse(sIndented)); });
    Register("tree_clone", aWho, theIsSame, [] { Lib::Free(Lib::Clone(sTree)); });
    Register("tree_save", aWho, theIsSame, [] { Lib::Save(sTree, nullptr); });
}

const bool sfRegistered = [] {
    RegisterEscape("vx", EscapeVX);
    RegisterEscape("tinyxml2_XMLPrinter", EscapeTiny);
    RegisterEscape("libxml2_xmlEncodeSpecialChars", EscapeLibxml2);
    RegisterEscape("GLib_g_markup_escape_text", EscapeGLib);
    RegisterEscape("own_std_string", EscapeOwn);
    RegisterWrite("vx", WriteVX);
    RegisterWrite("own_std_string", WriteOwn);
    RegisterWrite("tinyxml2_XMLPrinter", WriteTiny);
    RegisterWrite("libxml2_xmlTextWriter", WriteLibxml2);
    RegisterWrite("Qt_QXmlStreamWriter", WriteQt);
    RegisterTree<VX>("vx");
    RegisterTree<Pugi>("pugixml");
    RegisterTree<Tiny>("tinyxml2");
    RegisterTree<Libxml2>("libxml2");
    return true;
}();

}  // namespace
