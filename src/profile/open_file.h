// Opens files that others may be using, with patience.
#pragma once

#include "files/file.h"

#include <cstdint>

namespace vxut {

// How long to ask for a file that is in use, and how to pass the time between two attempts.
struct scPatience {
    uint64_t limitMilliseconds;
    void (*pause)();
};
extern const scPatience kOpenPatience; // sleeps between attempts
extern const scPatience kSavePatience; // only yields, so as to come first when the file becomes free

struct scOpenArguments {
    FileAccess access;
    FileDisposition disposition;
    FileShare share;
};

// Tries again after sharing violations until the patience ends. Gives the system's error code of the last
// attempt, ERROR_SUCCESS when the file is open.
DWORD OpenPatiently(clsFile& file, const String& name, const scOpenArguments& arguments,
                    const scPatience& patience);

} // namespace vxut
