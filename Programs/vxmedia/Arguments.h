#pragma once

#include "Program.h"

namespace vxmedia {

/// What the arguments lead to.
enum class ArgumentResult { Run, Help, Error };

/// Reads the arguments of the program. Usage and errors are printed.
ArgumentResult ReadArguments(int anArgumentCount, char** anArguments, ProgramOptions& anOptions);

/// Returns the commands of `aText`, which are separated by `;`, as lines.
///
/// A `;` inside quotes, as the console understands them, belongs to its command.
std::string SplitCommands(const char* aText);

}  // namespace vxmedia
