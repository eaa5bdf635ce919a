// Fuzz targets of the readers of packages, XML, compound files, images and old word processors.
#pragma once

#include "target.h"

#include <vector>

namespace fuzz {

std::vector<Target> BinaryDocumentTargets();

} // namespace fuzz
