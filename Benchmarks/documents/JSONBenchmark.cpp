// Trees of JSON: read, written, looked up, changed, copied, compared and taken apart, beside the
// trees of other libraries.
//
// Those whose nodes can be taken out and freed one by one promise the same: RapidJSON with its heap
// allocator (RapidJSON_crt), cJSON, json-c, nlohmann, json-glib and Poco. RapidJSON with its pool
// frees a document only as a whole; it shows the limit.

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>
#include <Poco/JSON/Stringifier.h>
#include <cjson/cJSON.h>
#include <json-c/json.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <nlohmann/json.hpp>
#include <sstream>

#include "documents/JSONQuestions.h"

namespace {

template <typename Allocator>
struct Rapid {
    using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Allocator>;
    using Value = rapidjson::GenericValue<rapidjson::UTF8<>, Allocator>;
    using Tree = Document*;
    using Node = Value*;
    static Tree Parse(const std::string& aText) {
        Tree theTree = new Document;
        theTree->Parse(aText.c_str());
        return theTree;
    }
    static void Free(Tree aTree) { delete aTree; }
    static size_t Print(Tree aTree, bool afIndent) {
        rapidjson::StringBuffer theBuffer;
        if (afIndent) {
            rapidjson::PrettyWriter<rapidjson::StringBuffer> theWriter(theBuffer);
            aTree->Accept(theWriter);
        } else {
            rapidjson::Writer<rapidjson::StringBuffer> theWriter(theBuffer);
            aTree->Accept(theWriter);
        }
        benchmark::DoNotOptimize(theBuffer.GetString());
        return theBuffer.GetSize();
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr ? &(*aNode)[aStep.mName] : &(*aNode)[aStep.mIndex];
    }
    static void Set(Node aNode, const char* aName, int aValue) {
        aNode->FindMember(aName)->value = Value(aValue);
    }
    static Tree Clone(Tree aTree) {
        Tree theTree = new Document;
        theTree->CopyFrom(*aTree, theTree->GetAllocator());
        return theTree;
    }
    static bool Same(Tree aTree, Tree aOther) { return *aTree == *aOther; }
    static void TakeApart(Node aNode) {
        if (aNode->IsArray()) {
            while (!aNode->Empty()) {
                Value theChild(std::move((*aNode)[aNode->Size() - 1]));
                aNode->PopBack();
                TakeApart(&theChild);
            }
        } else if (aNode->IsObject()) {
            while (!aNode->ObjectEmpty()) {
                auto theLast = aNode->MemberEnd() - 1;
                Value theChild(std::move(theLast->value));
                aNode->RemoveMember(theLast);
                TakeApart(&theChild);
            }
        }
    }
};

struct C {
    using Tree = cJSON*;
    using Node = cJSON*;
    static Tree Parse(const std::string& aText) { return cJSON_Parse(aText.c_str()); }
    static void Free(Tree aTree) { cJSON_Delete(aTree); }
    static size_t Print(Tree aTree, bool afIndent) {
        char* theText = afIndent ? cJSON_Print(aTree) : cJSON_PrintUnformatted(aTree);
        benchmark::DoNotOptimize(theText);
        free(theText);
        return 0;
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr ? cJSON_GetObjectItemCaseSensitive(aNode, aStep.mName)
                                      : cJSON_GetArrayItem(aNode, static_cast<int>(aStep.mIndex));
    }
    static void Set(Node aNode, const char* aName, int aValue) {
        cJSON_ReplaceItemInObjectCaseSensitive(aNode, aName, cJSON_CreateNumber(aValue));
    }
    static Tree Clone(Tree aTree) { return cJSON_Duplicate(aTree, true); }
    static bool Same(Tree aTree, Tree aOther) { return cJSON_Compare(aTree, aOther, true); }
    static void TakeApart(Node aNode) {
        while (aNode->child != nullptr) {
            cJSON* theChild = cJSON_DetachItemViaPointer(aNode, aNode->child);
            TakeApart(theChild);
            cJSON_Delete(theChild);
        }
    }
};

struct JSONC {
    using Tree = json_object*;
    using Node = json_object*;
    static Tree Parse(const std::string& aText) { return json_tokener_parse(aText.c_str()); }
    static void Free(Tree aTree) { json_object_put(aTree); }
    static size_t Print(Tree aTree, bool afIndent) {
        const char* theText = json_object_to_json_string_ext(
            aTree, afIndent ? JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_NOSLASHESCAPE
                            : JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
        benchmark::DoNotOptimize(theText);
        return 0;
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr ? json_object_object_get(aNode, aStep.mName)
                                      : json_object_array_get_idx(aNode, aStep.mIndex);
    }
    static void Set(Node aNode, const char* aName, int aValue) {
        json_object_object_add(aNode, aName, json_object_new_int(aValue));
    }
    static Tree Clone(Tree aTree) {
        Tree theCopy = nullptr;
        json_object_deep_copy(aTree, &theCopy, nullptr);
        return theCopy;
    }
    static bool Same(Tree aTree, Tree aOther) { return json_object_equal(aTree, aOther) != 0; }
    static void TakeApart(Node aNode) {
        if (json_object_is_type(aNode, json_type_array)) {
            for (size_t i = json_object_array_length(aNode); i > 0; --i) {
                Node theChild = json_object_get(json_object_array_get_idx(aNode, i - 1));
                json_object_array_del_idx(aNode, i - 1, 1);
                TakeApart(theChild);
                json_object_put(theChild);
            }
        } else if (json_object_is_type(aNode, json_type_object)) {
            while (lh_entry* theEntry = lh_table_head(json_object_get_object(aNode))) {
                Node theChild = json_object_get(static_cast<Node>(
                    const_cast<void*>(static_cast<const void*>(lh_entry_v(theEntry)))));
                lh_table_delete_entry(json_object_get_object(aNode), theEntry);
                TakeApart(theChild);
                json_object_put(theChild);
            }
        }
    }
};

struct Nlohmann {
    using Tree = nlohmann::json*;
    using Node = nlohmann::json*;
    static Tree Parse(const std::string& aText) {
        return new nlohmann::json(nlohmann::json::parse(aText));
    }
    static void Free(Tree aTree) { delete aTree; }
    static size_t Print(Tree aTree, bool afIndent) {
        const std::string theText = aTree->dump(afIndent ? 4 : -1);
        benchmark::DoNotOptimize(theText.data());
        return theText.size();
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr ? &*aNode->find(aStep.mName) : &(*aNode)[aStep.mIndex];
    }
    static void Set(Node aNode, const char* aName, int aValue) { (*aNode)[aName] = aValue; }
    static Tree Clone(Tree aTree) { return new nlohmann::json(*aTree); }
    static bool Same(Tree aTree, Tree aOther) { return *aTree == *aOther; }
    static void TakeApart(Node aNode) {
        if (aNode->is_array()) {
            while (!aNode->empty()) {
                nlohmann::json theChild = std::move(aNode->back());
                aNode->erase(aNode->size() - 1);
                TakeApart(&theChild);
            }
        } else if (aNode->is_object()) {
            while (!aNode->empty()) {
                nlohmann::json theChild = std::move(*aNode->begin());
                aNode->erase(aNode->begin());
                TakeApart(&theChild);
            }
        }
    }
};

struct Poco_ {
    using Tree = Poco::Dynamic::Var*;
    using Node = Poco::Dynamic::Var;
    using Object = Poco::JSON::Object::Ptr;
    using Array = Poco::JSON::Array::Ptr;
    static Tree Parse(const std::string& aText) {
        Poco::JSON::Parser theParser;
        return new Poco::Dynamic::Var(theParser.parse(aText));
    }
    static void Free(Tree aTree) { delete aTree; }
    static size_t Print(Tree aTree, bool afIndent) {
        std::ostringstream theStream;
        Poco::JSON::Stringifier::stringify(*aTree, theStream, afIndent ? 4 : 0);
        const std::string theText = theStream.str();
        benchmark::DoNotOptimize(theText.data());
        return theText.size();
    }
    static Node Root(Tree aTree) { return *aTree; }
    static Node Go(const Node& aNode, const Step& aStep) {
        return aStep.mName != nullptr ? aNode.extract<Object>()->get(aStep.mName)
                                      : aNode.extract<Array>()->get(aStep.mIndex);
    }
    static void Set(const Node& aNode, const char* aName, int aValue) {
        Object(aNode.extract<Object>())->set(aName, aValue);
    }
    static Poco::Dynamic::Var Copy(const Poco::Dynamic::Var& aNode) {
        if (aNode.type() == typeid(Object)) {
            Object theCopy = new Poco::JSON::Object;
            for (const auto& theMember : *aNode.extract<Object>()) {
                theCopy->set(theMember.first, Copy(theMember.second));
            }
            return theCopy;
        }
        if (aNode.type() == typeid(Array)) {
            Array theCopy = new Poco::JSON::Array;
            for (const auto& theItem : *aNode.extract<Array>()) {
                theCopy->add(Copy(theItem));
            }
            return theCopy;
        }
        return aNode;
    }
    static Tree Clone(Tree aTree) { return new Poco::Dynamic::Var(Copy(*aTree)); }
    static void TakeApart(const Node& aNode) {
        if (aNode.type() == typeid(Array)) {
            Array theArray = aNode.extract<Array>();
            for (size_t i = theArray->size(); i > 0; --i) {
                const Node theChild = theArray->get(static_cast<unsigned>(i - 1));
                theArray->remove(static_cast<unsigned>(i - 1));
                TakeApart(theChild);
            }
        } else if (aNode.type() == typeid(Object)) {
            Object theObject = aNode.extract<Object>();
            while (theObject->size() != 0) {
                const std::string theName = theObject->begin()->first;
                const Node theChild = theObject->begin()->second;
                theObject->remove(theName);
                TakeApart(theChild);
            }
        }
    }
};

/// Copies share until they are written, so that cloning and taking apart are other work.
struct Qt {
    using Tree = QJsonDocument*;
    using Node = QJsonValue;
    static Tree Parse(const std::string& aText) {
        return new QJsonDocument(QJsonDocument::fromJson(
            QByteArray::fromRawData(aText.data(), static_cast<qsizetype>(aText.size()))));
    }
    static void Free(Tree aTree) { delete aTree; }
    static size_t Print(Tree aTree, bool afIndent) {
        const QByteArray theText =
            aTree->toJson(afIndent ? QJsonDocument::Indented : QJsonDocument::Compact);
        benchmark::DoNotOptimize(theText.constData());
        return static_cast<size_t>(theText.size());
    }
    static Node Root(Tree aTree) { return aTree->object(); }
    static Node Go(const Node& aNode, const Step& aStep) {
        return aStep.mName != nullptr ? aNode[QLatin1String(aStep.mName)]
                                      : aNode[static_cast<qsizetype>(aStep.mIndex)];
    }
    static bool Same(Tree aTree, Tree aOther) { return *aTree == *aOther; }
};

const bool sfRegistered = [] {
    for (const BenchmarkDocument& theDocument : BenchmarkDocuments()) {
        RegisterAll<VX>("vx", theDocument);
        RegisterAll<Rapid<rapidjson::CrtAllocator>>("RapidJSON_crt", theDocument);
        RegisterAll<C>("cJSON", theDocument);
        RegisterAll<JSONC>("json-c", theDocument);
        RegisterAll<Nlohmann>("nlohmann", theDocument);
        RegisterAll<Poco_>("Poco", theDocument);
        RegisterReading<Qt>("Qt", theDocument);
        using Pool = Rapid<rapidjson::MemoryPoolAllocator<>>;
        RegisterReading<Pool>("RapidJSON", theDocument);
        Register("set", "RapidJSON", Set<Pool>, theDocument);
        Register("clone", "RapidJSON", Clone<Pool>, theDocument);
        Register("compare", "vx", Compare<VX>, theDocument);
        Register("compare", "RapidJSON_crt", Compare<Rapid<rapidjson::CrtAllocator>>, theDocument);
        Register("compare", "RapidJSON", Compare<Pool>, theDocument);
        Register("compare", "json-c", Compare<JSONC>, theDocument);
        Register("compare", "nlohmann", Compare<Nlohmann>, theDocument);
        Register("compare", "Qt", Compare<Qt>, theDocument);
        if (std::string(theDocument.mName) != "canada") {
            // It looks each item up from the front: minutes for the large arrays of canada.
            Register("compare", "cJSON", Compare<C>, theDocument);
        }
    }
    return true;
}();

}  // namespace
