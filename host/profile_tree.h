// The tree of a profile as lines of text.
#pragma once

#include "host/command.h"

#include <prof.h>

namespace vlm {

// Prints what is below a list, null being the root: a list as [name], an item as name = value.
void PrintTree(HPROF job, HPROFLIST list, clsOutput& out);

} // namespace vlm
