#pragma once

namespace vxmedia {

/// The entry points of the probe for QOI pictures, which is linked into the program, in the order
/// of kProbeFunctionNames.
extern void (*kQOIProbeFunctions[])();

}  // namespace vxmedia
