// How the reader of a file is found.
#pragma once

#include "docinfo/document.h"

namespace vxut {

// Reads the properties of a file: from the system's own sources if they know them, otherwise with the reader
// for its first bytes or its extension. Returns a negative value if that fails. Throws std::bad_alloc.
int ReadProperties(clsDocu& document, clsDocFile& file);

} // namespace vxut
