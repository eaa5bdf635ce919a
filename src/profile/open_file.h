// Opens files that other processes may be using.
#pragma once

#include "base/patience.h"
#include "files/file.h"

#include <cstdint>

namespace vxut {

// How long to try for a file that is in use, and what to do between two attempts.
struct scPatience {
    uint64_t limitMilliseconds;
    void (*pause)();
};
extern const scPatience kOpenPatience; // sleeps between attempts
extern const scPatience kSavePatience; // only yields, so as to be first when the file becomes free

// Repeats attempt(), which returns a system's error, while that is a sharing violation and the patience
// lasts. Returns the last one.
template <class Attempt>
DWORD RepeatPatiently(const scPatience& patience, Attempt attempt) {
    DWORD error = ERROR_SUCCESS;
    TryPatiently(
        patience.limitMilliseconds, [&] { return (error = attempt()) != ERROR_SHARING_VIOLATION; },
        patience.pause);
    return error;
}

struct scOpenArguments {
    FileAccess access;
    FileDisposition disposition;
    FileShare share;
};

// Opens a file on disk. A device, which a name such as "nul" may lead to, counts as an invalid name, as does
// a name that is too long for every file system. Tries
// again after sharing violations until the patience ends. Returns the system's error of the last attempt,
// ERROR_SUCCESS when the file is open.
DWORD OpenPatiently(clsFile& file, const String& name, const scOpenArguments& arguments,
                    const scPatience& patience);

// One attempt of the same.
DWORD OpenOnDisk(clsFile& file, const String& name, const scOpenArguments& arguments);

} // namespace vxut
