// A search for the files that match a pattern.
#pragma once

#include "frame/owners.h"
#include "frame/string.h"

#include <windows.h>

namespace vxut {

// Walks the matches of one pattern, the folders "." and ".." left out:
//     for (clsFileFind find(pattern); find.Next();) Use(find.Name());
class clsFileFind {
public:
    explicit clsFileFind(const String& pattern) : pattern_(pattern) {}

    // Goes to the next match. False when there are no more, or none at all.
    bool Next();
    const wchar_t* Name() const noexcept { return data_.cFileName; } // without its folder
    bool IsDirectory() const noexcept { return (data_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    const WIN32_FIND_DATAW& Data() const noexcept { return data_; }

private:
    bool Step();

    String pattern_;
    clsAutoCloseFind find_;
    bool started_ = false;
    WIN32_FIND_DATAW data_{};
};

} // namespace vxut
