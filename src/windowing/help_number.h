// The context number of what the user does.
#pragma once

#include "windowing/help.h"

#include <cstdint>

namespace vxut {

// UTIL_HELP_FIND_NUMBER if there is none.
int32_t FindHelpNumber(clsHelp& help);

} // namespace vxut
