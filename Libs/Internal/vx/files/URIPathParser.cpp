// All questions about a scope come down to one test of the path against a text and the same text with
// a slash behind it.

#include "vx/URIPathParser.h"

#include <cstring>

namespace {

/// The beginning of a text, which may lack a NUL.
vxCString vxBeginning(const char* aText, size_t aLength) {
    const void* theEnd = memchr(aText, '\0', aLength);
    return vxCString(aText, theEnd == NULL
                                ? aLength
                                : static_cast<size_t>(static_cast<const char*>(theEnd) - aText));
}

}  // namespace

vxURIPathParser::vxURIPathParser(vxURI* anURI) : mURI(anURI) {}

vxURIPathParser::vxURIPathParser(const char* aPath, bool afDecode)
    : mURI(vxURI_NewFromPath(aPath, afDecode)) {}

vxURIPathParser::vxURIPathParser(const char* aPath, unsigned int aLength, bool afDecode)
    : mURI(vxURI_NewFromPath(aPath == NULL ? NULL : vxBeginning(aPath, aLength).c_str(),
                             afDecode)) {}

vxURIPathParser::~vxURIPathParser() {
    vxURI_Delete(mURI);
}

void vxURIPathParser::Set(vxURI* anURI) {
    if (anURI != mURI) {
        vxURI_Delete(mURI);
        mURI = anURI;
    }
}

void vxURIPathParser::Set(const char* aPath, bool afDecode) {
    // The path may be part of the old record.
    Set(vxURI_NewFromPath(aPath, afDecode));
}

bool vxURIPathParser::Is(const char* aPath) const {
    return strcmp(Path(), aPath == NULL ? "" : aPath) == 0;
}

bool vxURIPathParser::BeginWith(const char* aPrefix) const {
    return aPrefix == NULL || strncmp(Path(), aPrefix, strlen(aPrefix)) == 0;
}

bool vxURIPathParser::FetchQueryPart(const char* aName, vxCString& aValue,
                                     const char* aDefaultValue) const {
    char* theText = vxURI_GetQueryPart(mURI, aName);
    if (theText == NULL) {
        aValue = aDefaultValue;
        return false;
    }
    aValue = vxCString::FromAllocatedString(theText);
    return true;
}

bool vxURIPathParser::FetchQueryPartAsUInt32(const char* aName, unsigned int& aValue,
                                             unsigned int aDefaultValue) const {
    vxCString theText;
    uint32_t theValue = 0;
    const bool theResult = FetchQueryPart(aName, theText, NULL) && theText.ToUInt32(&theValue, 10);
    aValue = theResult ? theValue : aDefaultValue;
    return theResult;
}

unsigned int vxURIPathParser::GetQueryPartCount() const {
    return static_cast<unsigned int>(vxURI_GetQueryPartCount(mURI));
}

bool vxURIPathParser::GetQueryPartAt(unsigned int anIndex, vxCString& aName,
                                     vxCString& aValue) const {
    char* theName = NULL;
    char* theValue = NULL;
    if (!vxURI_GetQueryPartAt(mURI, anIndex, &theName, &theValue)) {
        return false;
    }
    aName = vxCString::FromAllocatedString(theName);
    aValue = vxCString::FromAllocatedString(theValue);
    return true;
}

bool vxURIPathParser::IsRESTScope(const char* aScope, bool afAllowJson, bool afAllowXml,
                                  unsigned int* aConsumed) const {
    vxCString theScope(aScope);
    if (theScope.First() != '/') {
        theScope = "/" + theScope;
    }
    vxCString theWithSlash = theScope;
    if (theScope.Last() == '/') {
        theScope.Truncate(theScope.length() - 1);
    } else {
        theWithSlash += '/';
    }
    size_t theExtra = 0;
    if (IsRESTScope(theScope, theWithSlash, true)) {
        theExtra = 0;
    } else if (afAllowJson && IsRESTScope(theScope + ".json", theScope + ".json/", false)) {
        theExtra = 5;
    } else if (afAllowXml && IsRESTScope(theScope + ".xml", theScope + ".xml/", false)) {
        theExtra = 4;
    } else {
        return false;
    }
    if (aConsumed != NULL) {
        *aConsumed = static_cast<unsigned int>(theScope.length() + theExtra);
    }
    return true;
}

bool vxURIPathParser::FetchSubRESTScope(const char* aScope, bool afAllowJson, bool afAllowXml,
                                        vxRef<vxURIPathParser>& aSub) const {
    unsigned int theConsumed = 0;
    if (!IsRESTScope(aScope, afAllowJson, afAllowXml, &theConsumed)) {
        return false;
    }
    vxURI* theURI = CloneURI();
    vxURI_TruncatePathBegin(theURI, theConsumed);
    aSub = new vxURIPathParser(theURI);
    return true;
}

bool vxURIPathParser::IsRESTScope(const vxCString& anExact, const vxCString& anExactWithSlash,
                                  bool afAllowBelow) const {
    if (Is(anExact) || Is(anExactWithSlash)) {
        return true;
    }
    if (!afAllowBelow) {
        return false;
    }
    return anExact.IsEmpty() ? *Path() == '\0' : BeginWith(anExactWithSlash);
}
