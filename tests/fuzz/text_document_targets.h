// Fuzz targets of the readers of mail, PDF, RTF and HTML.
#pragma once

#include "target.h"

#include <vector>

namespace fuzz {

std::vector<Target> TextDocumentTargets();

} // namespace fuzz
