#pragma once

#include <libteskTools/Types.h>

// Request targets as RFC 3986 has them, with query arguments as HTML forms write them: parts between
// '&', names and values around the first '=', '+' for a blank, and bytes as '%' and two hexadecimal
// digits. A '%' that two digits do not follow, and "%00", stand for themselves.

VX_C_BEGIN

/// An argument of a query, decoded.
typedef struct vxURIQueryPart {
    char* mName;   ///< never null
    char* mValue;  ///< empty where there is no '='
} vxURIQueryPart;

/// A parsed URI. Texts are owned, and null where the URI lacks them.
typedef struct vxURI {
    char* mScheme;                ///< without the ":"
    char* mUserInfo;              ///< without the "@"
    char* mHostName;              ///< without the port
    uint16_t mPort;               ///< 0: none
    char* mPath;                  ///< with "%" where nobody asked to decode it
    char* mQuery;                 ///< as written, without the '?'
    char* mFragment;              ///< without the "#"
    vxURIQueryPart* mQueryParts;  ///< in order
    size_t mQueryPartCount;       ///< of mQueryParts
    char* mQueryTexts;            ///< the block that the parts point into
} vxURI;

/// Parses a path with what may follow it: "/path?query#fragment".
///
/// `afDecode` decodes the percent escapes of the path; the query's are always decoded in its parts.
/// A null text gives a record without a path.
///
/// Owner:    the caller, who releases the record with vxURI_Delete().
VX_API vxURI* vxURI_NewFromPath(const char* aPath, bool afDecode);

/// Parses a whole URI: "scheme://user@host:port/path?query#fragment"; without a scheme it is a path.
///
/// Owner:    as vxURI_NewFromPath().
VX_API vxURI* vxURI_New(const char* aText, bool afDecode);

/// Frees a record; null does nothing.
VX_API void vxURI_Delete(vxURI* anURI);

/// Returns a copy; null for null.
///
/// Owner:    as vxURI_NewFromPath().
VX_API vxURI* vxURI_Clone(const vxURI* anURI);

/// Cuts bytes off the beginning of the path, all of them when it has no more.
VX_API void vxURI_TruncatePathBegin(vxURI* anURI, size_t aCount);

/// Reads arguments from a form body; `afReplace` drops those that were there, `afDecodePlus` takes
/// '+' for a blank. A null text holds none. `mQuery` keeps what the URI was written with.
VX_API void vxURI_SetQueryFromPost(vxURI* anURI, const char* aText, bool afReplace,
                                   bool afDecodePlus);

/// Tells whether the query has a part of that name.
///
/// A null record has no parts, and no part has a null name.
VX_API bool vxURI_HasQueryPart(const vxURI* anURI, const char* aName);

/// Returns the value of the first part of that name, or null.
///
/// Owner:    the caller, who releases the text with free().
VX_API char* vxURI_GetQueryPart(const vxURI* anURI, const char* aName);

/// Returns the number of parts, 0 for a null record.
VX_API size_t vxURI_GetQueryPartCount(const vxURI* anURI);

/// Stores copies of a part's name and value; false beyond the last part.
///
/// Owner:    the caller, who releases both texts with free().
VX_API bool vxURI_GetQueryPartAt(const vxURI* anURI, size_t anIndex, char** aName, char** aValue);

VX_C_END
