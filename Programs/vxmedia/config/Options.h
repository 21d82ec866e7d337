#pragma once

#include <cstdint>

#include "vx/CString.h"
#include "vx/ConfigMapper.h"

namespace vxmedia {

/// The settings of the program, as the library's mapper takes them; ends with a null name.
extern const vxConfigMapperInfo kOptions[];

/// What a number may be.
struct OptionRange {
    const char* mOptionName;
    uint32_t mMin;
    uint32_t mMax;
};

/// Returns the range of an option that is a number.
const OptionRange& GetOptionRange(const char* anOptionName);

/// Returns the row of an option, or null.
const vxConfigMapperInfo* FindOption(const char* anOptionName);

/// Returns the type of an option in a word.
const char* GetOptionTypeName(const vxConfigMapperInfo& anOption);

/// Returns whether an option holds a text of any kind.
bool IsTextOption(const vxConfigMapperInfo& anOption);

/// Checks a text that is to become the value of an option.
///
/// Fails:    with an error text, which is empty on success.
vxCString CheckOptionValue(const vxConfigMapperInfo& anOption, const vxCString& aValue);

}  // namespace vxmedia
