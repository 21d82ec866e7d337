#pragma once

#include "vx/Api.h"
#include "vx/CString.h"

/// A media format of DLNA.
struct vxDLNAProfile {
    const char* mProfile;   ///< its name, as "MPEG_PS_PAL"
    const char* mMimeType;  ///< alternatives joined with '@', the preferred first
    const char*
        mExtensions;  ///< joined with '@', the default first; empty without a form as a file
};

/// Knows which MIME types and file extensions the media formats of DLNA have.
///
///     vxDLNAInfoMatcher::GetExtensionListFromProfile("JPEG_SM");  // "jpg@jpeg"
///     vxDLNAInfoMatcher::GetExtensionFromProfile("JPEG_SM");      // "jpg"
///
/// Names of profiles are case-sensitive. A program may add profiles; they come behind those of the
/// built-in table and stay until it ends.
///
/// Threads:  any, atomic.
/// Cost:     a look-up compares names from the top of the table.
class VX_EXPORT vxDLNAInfoMatcher {
public:
    /// Returns the extensions of a profile, joined with '@'; empty for an unknown profile and for
    /// null.
    static vxCString GetExtensionListFromProfile(const char* aProfile);

    /// Returns the default extension of a profile: the first of its list.
    static vxCString GetExtensionFromProfile(const char* aProfile);

    /// Returns the built-in table, which ends with a row of nulls.
    static const vxDLNAProfile* GetProfiles();

    /// Returns a profile, built in or added, which stays for good; null for an unknown one.
    static const vxDLNAProfile* FindProfile(const char* aProfile);

    /// Adds a profile; texts are copied, and null texts count as empty.
    ///
    /// Fails:    false for a name that is empty or known already: the first profile of a name stays.
    static bool AddProfile(const char* aProfile, const char* aMimeType, const char* anExtensions);
};
