#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Returns a text as a configuration file keeps it when it should not be read at a glance.
///
/// Fails:    empty when no form is found that can be read back, as for very long texts.
vxCString HideSecret(const vxCString& aText);

/// Returns whether a stored text claims to be hidden.
bool IsSecret(const vxCString& aStored);

/// Returns the text that was hidden; a text that is not hidden comes back as it is.
vxCString RevealSecret(const vxCString& aStored);

}  // namespace vxmedia
