// The tree of a profile as lines of text.
#pragma once

#include "host/command.h"

#include <prof.h>

namespace vlm {

// Prints all entries below a list, null being the root, one on each line: a list as [name], an item as
// name = value, with control characters as pictures. Fails if memory runs out.
void PrintTree(HPROF job, HPROFLIST list, Output& out);

} // namespace vlm
