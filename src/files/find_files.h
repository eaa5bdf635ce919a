// Searches for files and folders.
#pragma once

#include "base/last_error.h"
#include "base/owners.h"
#include "text/string.h"

#include <windows.h>

namespace vxut {

// Calls visit(const WIN32_FIND_DATAW&) for each file and folder that a path with wildcards matches, "." and
// ".." included, in the order of the system. Returns the system's error that ended the search early,
// ERROR_SUCCESS if there was none, also if nothing matches.
template <class Visit>
DWORD ForEachFound(const String& path, Visit visit) {
    WIN32_FIND_DATAW found;
    const clsAutoCloseFind search(FindFirstFileW(path.Text(), &found));
    if (search) {
        do {
            visit(static_cast<const WIN32_FIND_DATAW&>(found));
        } while (FindNextFileW(search.Get(), &found));
    }
    const DWORD error = ErrorOfFailedCall();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

} // namespace vxut
