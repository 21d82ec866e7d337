#pragma once

#include "vx/CString.h"

namespace vxmedia {

/// Which bytes EscapeForTerminal() leaves alone beyond printable text.
enum class EscapeMode {
    Name,   // nothing: a backslash is doubled, so that the escapes can be read back
    Text,   // backslashes: text that has escapes of its own
    Lines,  // backslashes and line feeds
    JSON,   // as Lines, for JSON, which stays JSON: escapes are `\uNNNN`
};

/// Returns the text with everything escaped as `\xNN` that could steer a terminal.
///
/// Escaped are control bytes, bytes that are not UTF-8, codes that are no characters, and the
/// characters that control or turn around what follows them. Everything else is kept, so that names read as their owner wrote
/// them.
///
/// Cost:     linear.
vxCString EscapeForTerminal(const vxCString& aText, EscapeMode aMode);

}  // namespace vxmedia
