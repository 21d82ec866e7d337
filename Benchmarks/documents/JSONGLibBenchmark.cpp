// The trees of json-glib, in a program of their own: json-c has functions of the same names.

#include <json-glib/json-glib.h>

#include "documents/JSONQuestions.h"

namespace {

struct GLib {
    using Tree = JsonNode*;
    using Node = JsonNode*;
    static Tree Parse(const std::string& aText) { return json_from_string(aText.c_str(), nullptr); }
    static void Free(Tree aTree) { json_node_unref(aTree); }
    static size_t Print(Tree aTree, bool afIndent) {
        char* theText = json_to_string(aTree, afIndent);
        benchmark::DoNotOptimize(theText);
        g_free(theText);
        return 0;
    }
    static Node Root(Tree aTree) { return aTree; }
    static Node Go(Node aNode, const Step& aStep) {
        return aStep.mName != nullptr
                   ? json_object_get_member(json_node_get_object(aNode), aStep.mName)
                   : json_array_get_element(json_node_get_array(aNode), aStep.mIndex);
    }
    static void Set(Node aNode, const char* aName, int aValue) {
        json_object_set_int_member(json_node_get_object(aNode), aName, aValue);
    }
    /// json_node_copy() shares containers, so a deep copy is written out.
    static Tree Clone(Tree aTree) {
        JsonNode* theCopy = nullptr;
        if (JSON_NODE_HOLDS_ARRAY(aTree)) {
            JsonArray* theArray = json_array_new();
            JsonArray* theSource = json_node_get_array(aTree);
            for (guint i = 0; i < json_array_get_length(theSource); ++i) {
                json_array_add_element(theArray, Clone(json_array_get_element(theSource, i)));
            }
            theCopy = json_node_new(JSON_NODE_ARRAY);
            json_node_take_array(theCopy, theArray);
        } else if (JSON_NODE_HOLDS_OBJECT(aTree)) {
            JsonObject* theObject = json_object_new();
            JsonObjectIter theIterator;
            const char* theName;
            JsonNode* theMember;
            json_object_iter_init(&theIterator, json_node_get_object(aTree));
            while (json_object_iter_next(&theIterator, &theName, &theMember)) {
                json_object_set_member(theObject, theName, Clone(theMember));
            }
            theCopy = json_node_new(JSON_NODE_OBJECT);
            json_node_take_object(theCopy, theObject);
        } else {
            theCopy = json_node_copy(aTree);
        }
        return theCopy;
    }
    static bool Same(Tree aTree, Tree aOther) { return json_node_equal(aTree, aOther); }
    static void TakeApart(Node aNode) {
        if (JSON_NODE_HOLDS_ARRAY(aNode)) {
            JsonArray* theArray = json_node_get_array(aNode);
            for (guint i = json_array_get_length(theArray); i > 0; --i) {
                JsonNode* theChild = json_node_ref(json_array_get_element(theArray, i - 1));
                json_array_remove_element(theArray, i - 1);
                TakeApart(theChild);
                json_node_unref(theChild);
            }
        } else if (JSON_NODE_HOLDS_OBJECT(aNode)) {
            JsonObject* theObject = json_node_get_object(aNode);
            GList* theNames = json_object_get_members(theObject);
            std::vector<std::string> theCopies;
            for (GList* theName = theNames; theName != nullptr; theName = theName->next) {
                theCopies.push_back(static_cast<const char*>(theName->data));
            }
            g_list_free(theNames);
            for (const std::string& theName : theCopies) {
                JsonNode* theChild = json_object_dup_member(theObject, theName.c_str());
                json_object_remove_member(theObject, theName.c_str());
                TakeApart(theChild);
                json_node_unref(theChild);
            }
        }
    }
};

const bool sfRegistered = [] {
    for (const BenchmarkDocument& theDocument : BenchmarkDocuments()) {
        RegisterAll<VX>("vx", theDocument);
        RegisterAll<GLib>("json-glib", theDocument);
        Register("compare", "vx", Compare<VX>, theDocument);
        Register("compare", "json-glib", Compare<GLib>, theDocument);
    }
    return true;
}();

}  // namespace
