// The texts of a file's version resource that a module list shows.
#pragma once

#include "text/string.h"

namespace vxut {

struct scModuleVersion {
    String fileVersion;
    String productVersion;
    String company;
};

// Reads the texts in the first language of the resource. A text that is missing stays empty.
scModuleVersion ReadModuleVersion(const String& path);

} // namespace vxut
