// Replaces the content of profile files so that a failure at any moment leaves the old content.
#pragma once

#include "profile/open_file.h"

#include <cstdint>

namespace vxut {

// The bytes of a whole file.
struct scImage {
    const void* bytes;
    int64_t size;
};

// Saves under a name, asking for the file with patience while others use it; nobody may share it. Returns the
// system's error, ERROR_SUCCESS if the new content is in the file and on the disk.
DWORD SaveUnderName(const String& name, const scImage& image, const scPatience& patience = kSavePatience);

// Saves into the file or stream that a job keeps. A file on disk stays open for reading and writing, shared
// with readers; it is closed for the moment of the rename only. Should another process take it in that moment
// and not let go of it within the patience, the file is closed afterwards, and the next save opens it again.
DWORD SaveIntoKept(clsFile& kept, const scImage& image, const scPatience& patience = kSavePatience);

} // namespace vxut
