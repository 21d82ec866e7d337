// The JSON writer and reader of property lists, with packed data as escaped text both ways.

#include "vx/MediaInfoSerializer.h"

#include <libteskTools/PropertyList.h>
#include <libteskTools/StringEscaper.h>
#include <libvxLog/Log.h>

#include <cstdlib>
#include <cstring>

#include "vx/MediaInfoKeys.h"

namespace {

constexpr char kvxMediaInfo_Escape = '%';

bool vxHoldsPackedData(const vxProperty* aProperty) {
    const char* theName = aProperty == NULL ? "" : vxProperty_GetName(aProperty);
    return strcmp(theName, kvxInfo_MediaMetaData) == 0 ||
           strcmp(theName, kvxInfo_MediaResMetaData) == 0;
}

bool vxSetBytes(vxProperty* aProperty, size_t anIndex, const void* aBytes, size_t aSize) {
    vxPackedData* thePacked = vxPackedData_New(aBytes, aSize);
    const bool theDone = vxProperty_Set_packedData(aProperty, anIndex, thePacked);
    vxPackedData_Delete(thePacked);  // the value holds it now
    return theDone;
}

// Errors are reported from the level above that of errors on.
bool vxLogsFailures() {
    return vxLog_GetLevel(VXLOG_M_DEFAULT) > VXLOGLEVEL_ERROR;
}

}  // namespace

int vxMediaInfoFormatter::MapKey(const char* aKey, bool) {
    return vxJSONFormatter::MapKey(aKey, false);
}

int vxMediaInfoSerializerImp::SerializeData(vxData* aData, vxISerialize& aSink) {
    if (vxData_GetType(aData) != kvxDataType_packedData) {
        return vxPropertyListSerializer::SerializeData(aData, aSink);
    }
    vxPackedData* thePacked = vxData_Get_packedData(aData);
    const size_t theSize = vxPackedData_GetSize(thePacked);
    if (theSize == 0) {
        return aSink.String("", false);
    }
    char* theText = vxStringEscaper_EscapeBuffer(vxPackedData_GetPtr(thePacked), theSize,
                                                 kvxPropertListConvTable, kvxMediaInfo_Escape);
    const int theResult = aSink.String(theText, false);
    free(theText);
    return theResult;
}

int vxMediaInfoDeserializerImp::String(const char* aText, bool afQuote) {
    if (!vxHoldsPackedData(mProp)) {
        return vxPropertyListFormatter::String(aText, afQuote);
    }
    bool theDone = vxProperty_Set_Unknown(mProp, mDataIndex);
    size_t theSize = 0;
    void* theBytes = vxStringEscaper_UnescapeBuffer(aText, kvxMediaInfo_Escape, &theSize);
    if (theSize > 0) {
        theDone = vxSetBytes(mProp, mDataIndex, theBytes, theSize);
    }
    free(theBytes);
    return Advance(theDone);
}

vxCString vxMediaInfoSerializer::Serialize(vxPropertyList* aList) {
    if (aList == NULL) {
        return vxCString();
    }
    vxMediaInfoFormatter theFormatter;
    const int theResult = vxMediaInfoSerializerImp().Serialize(aList, theFormatter);
    if (theResult != 0 && vxLogsFailures()) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Cannot serialize media info (error %d)\n",
              theResult);
    }
    return theFormatter.Result();
}

vxPropertyList* vxMediaInfoSerializer::Deserialize(const vxCString& aText) {
    if (aText.IsEmpty()) {
        return NULL;
    }
    vxMediaInfoDeserializerImp theBuilder;
    if (vxJSONFormatter::Parse(aText, theBuilder) != 0 && vxLogsFailures()) {
        VXLOG(VXLOGLEVEL_ERROR, VXLOG_M_DEFAULT, "Cannot deserialize media info '%s'\n",
              aText.c_str());
    }
    return theBuilder.TakePropertyList();
}
