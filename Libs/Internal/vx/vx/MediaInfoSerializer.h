#pragma once

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Serialize.h"

/// Writes the JSON text of media infos: compact, and every key in quotes.
///
/// Threads:  one at a time.
class VX_EXPORT vxMediaInfoFormatter : public vxJSONFormatter {
public:
    /// Writes the key in quotes, whatever `afQuote` asks for.
    int MapKey(const char* aKey, bool afQuote) override;
};

/// Sends media infos to sinks: packed data as text, everything else as for other lists.
class VX_EXPORT vxMediaInfoSerializerImp : public vxPropertyListSerializer {
public:
    /// Sends a value. Packed data become a text in which '%' and two hexadecimal digits stand for the
    /// bytes that kvxPropertListConvTable marks, for '%' and for NUL; no bytes, an empty one.
    int SerializeData(vxData* aData, vxISerialize& aSink) override;
};

/// Builds the property list of a media info: texts of the properties "md" and "rd" become packed data.
///
/// An empty text of these becomes a value without a type, so that the others keep their places.
///
/// Threads:  one at a time.
class VX_EXPORT vxMediaInfoDeserializerImp : public vxPropertyListFormatter {
public:
    using vxPropertyListFormatter::String;
    /// Adds a value to the property being filled.
    int String(const char* aText, bool afQuote) override;
};

/// Turns media infos that are property lists into compact JSON text, and back.
///
/// The names of the properties are the keys of vx/MediaInfoKeys.h. "md" and "rd" may hold packed
/// data, which survive.
///
///     vxPropertyList* theList = vxPropertyList_New();
///     vxPropertyList_Set_charPtr(theList, kvxInfo_Title, "Blue");
///     vxPropertyList_Set_uint32(theList, kvxInfo_Duration, 217000);
///     vxMediaInfoSerializer::Serialize(theList);    // {"ti":"Blue","du":217000,}
///     vxPropertyList_Delete(theList);
///
/// Threads:  any, for different lists.
class VX_EXPORT vxMediaInfoSerializer {
public:
    /// Returns the JSON text of a list; empty for a null list.
    ///
    /// Fails:    logged at error level, where the level of the default module is above that; the text
    ///           produced so far is returned.
    static vxCString Serialize(vxPropertyList* aList);

    /// Returns the list that a JSON text describes; null for an empty text, and for one without an
    /// object.
    ///
    /// Fails:    logged as for Serialize(), with the text; the list built so far is returned.
    /// Owner:    the caller, who lets go of it with vxPropertyList_Delete().
    static vxPropertyList* Deserialize(const vxCString& aText);
};
