#pragma once

#include <libteskTools/URI.h>

#include "vx/Api.h"
#include "vx/CString.h"
#include "vx/Ref.h"

/// Answers what a REST-style dispatcher asks of a request path.
///
/// A scope is a path below which requests go to one handler: "items" matches "/items", "/items/" and
/// "/items/42/x", but not "/itemsX". With a suffix allowed it also matches "/items.json" and
/// "/items.json/", but nothing below those. The scope "/" matches the root alone.
///
///     vxRef<vxURIPathParser> theRest;
///     if (theRequest->FetchSubRESTScope("items", true, false, theRest)) {
///         theRest->GetPath();   // "/42/x" of "/items/42/x"
///     }
///
/// Owner:    the parser owns its record; parsers are shared by handles.
/// Threads:  one at a time.
class VX_EXPORT vxURIPathParser : public vxRefCounted {
public:
    /// Adopts a record; null has no path and no arguments.
    explicit vxURIPathParser(vxURI* anURI);

    /// Parses a path with its query; `afDecode` decodes the percent escapes of the path.
    vxURIPathParser(const char* aPath, bool afDecode);

    /// As above, for the first `aLength` bytes.
    vxURIPathParser(const char* aPath, unsigned int aLength, bool afDecode);
    ~vxURIPathParser() override;
    vxURIPathParser(const vxURIPathParser&) = delete;
    vxURIPathParser& operator=(const vxURIPathParser&) = delete;

    /// Replaces the record by another one, or by that of another path.
    ///
    /// Owner:    the parser.
    /// @{
    void Set(vxURI* anURI);
    void Set(const char* aPath, bool afDecode);
    /// @}

    /// Returns a copy of the record, null if there is none.
    ///
    /// Owner:    the caller, who releases the copy with vxURI_Delete().
    vxURI* CloneURI() const { return vxURI_Clone(mURI); }

    /// Returns the path; empty where there is none.
    vxCString GetPath() const { return vxCString(Path()); }

    /// Compares the whole path; a missing one is empty.
    bool Is(const char* aPath) const;

    /// Compares the beginning of the path; a missing one begins with nothing but the empty text.
    bool BeginWith(const char* aPrefix) const;

    /// Replaces the arguments by those of a form body.
    void SetQuery(const char* aQuery) { vxURI_SetQueryFromPost(mURI, aQuery, true, true); }

    /// Is there an argument of that name?
    bool HasQueryPart(const char* aName) const { return vxURI_HasQueryPart(mURI, aName); }

    /// Reads an argument; false and the default where it is absent.
    bool FetchQueryPart(const char* aName, vxCString& aValue, const char* aDefaultValue) const;

    /// Reads an argument as a number in base 10; false and the default where it is absent or none.
    bool FetchQueryPartAsUInt32(const char* aName, unsigned int& aValue,
                                unsigned int aDefaultValue) const;

    /// Returns the number of arguments, of which several may have one name.
    unsigned int GetQueryPartCount() const;

    /// Reads an argument by its place; false beyond the last.
    bool GetQueryPartAt(unsigned int anIndex, vxCString& aName, vxCString& aValue) const;

    /// Does the path lie in a scope? `aConsumed`, unless null, receives how much of the path is the
    /// scope when it does.
    bool IsRESTScope(const char* aScope, bool afAllowJson, bool afAllowXml,
                     unsigned int* aConsumed) const;

    /// Makes a parser of what follows the scope in the path; false, and `aSub` is left alone, where
    /// the path does not lie in it.
    bool FetchSubRESTScope(const char* aScope, bool afAllowJson, bool afAllowXml,
                           vxRef<vxURIPathParser>& aSub) const;

    /// Is the path one of the two texts, or, when `afAllowBelow`, below the second one? An empty
    /// first text has nothing below it but the empty path.
    bool IsRESTScope(const vxCString& anExact, const vxCString& anExactWithSlash,
                     bool afAllowBelow) const;

private:
    const char* Path() const { return mURI == NULL || mURI->mPath == NULL ? "" : mURI->mPath; }

    vxURI* mURI;  // owned
};
