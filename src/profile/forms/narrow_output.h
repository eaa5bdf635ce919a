// Writes the text of a form in the default code page.
#pragma once

#include "profile/output.h"

#include <string_view>

namespace vxut {

// Characters that the code page does not hold become its default character. If the system cannot convert to
// the code page at all, the output fails with the system's error.
void PutNarrow(clsProfOutput& output, std::wstring_view text);

// As clsProfOutput::PutIndent().
void PutNarrowIndent(clsProfOutput& output, int depth);

} // namespace vxut
