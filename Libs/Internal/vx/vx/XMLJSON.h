#pragma once

#include "vx/Api.h"

class vxJSONEntry;
class vxXMLNode;

/// Turns an XML tree into members of a JSON object.
///
/// Names of elements become names of members, repeated elements become arrays, text becomes strings.
/// Attributes are not read; comments are taken for elements without content. An element is what its
/// first child is: text makes it that text, whatever follows.
///
///     <a><b>1</b><b>2</b></a>     {"a": {"b": ["1", "2"]}}
///     <a/>                        {"a": {}}
///
/// Owner:    the nodes stay the caller's and must outlive the conversion.
/// Threads:  one at a time.
class VX_EXPORT vxXMLToJSON {
public:
    /// Starts at a node; without one, SetXMLStartNode() is to name it.
    /// @{
    vxXMLToJSON();
    explicit vxXMLToJSON(const vxXMLNode* aNode);
    /// @}

    /// Sets the node to start at instead of the one given at construction, also when it is null.
    void SetXMLStartNode(const vxXMLNode* aNode);

    /// Returns the node given at construction.
    const vxXMLNode* GetRootNode() const { return mXMLNode; }

    /// Adds the start node and its following siblings to an object, beside what that holds.
    ///
    /// A target that is no object stays as it is, and a warning is logged; the result is true all
    /// the same.
    ///
    /// Fails:    false without a start node; the target is reset then.
    /// Cost:     linear in the tree, and in a member of the target whose name comes again.
    virtual bool ConvertTo(vxJSONEntry& aTarget) const;

    /// Stands behind ConvertTo(), which programs know as the first virtual operation.
    virtual ~vxXMLToJSON() = default;

private:
    const vxXMLNode* mXMLNode;
    const vxXMLNode* mXMLStartNode;
    bool mfXMLStartNode;  // mXMLStartNode counts, null or not
};
