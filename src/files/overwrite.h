// The replacement of a content in place, for what cannot be replaced by a sibling.
#pragma once

#include "files/file.h"

#include <cstdint>

namespace vxut {

// Writes a new content from the start of an open file or stream and ends it there. Returns the system's
// error, ERROR_SUCCESS if the content is there; that of a file is on the disk then.
//
// The old content is read into memory first, and space for the new one is made before anything is
// overwritten. When something fails the old content is put back. A stream that cannot be read is written all
// the same, and ends where the writing stopped. A process that is killed meanwhile leaves a mixture.
DWORD OverwriteContent(clsFile& target, const void* bytes, int64_t size);

} // namespace vxut
