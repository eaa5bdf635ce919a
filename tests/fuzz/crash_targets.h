// The targets of crash reports: what vlm reads, and the layout of debug lines.
#pragma once

#include "target.h"

namespace fuzz {

Target ArchiveTarget();
Target DumpTarget();
Target LineLayoutTarget();

} // namespace fuzz
