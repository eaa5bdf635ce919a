#include "files/file_find.h"

#include <utility>

namespace vxut {
namespace {

bool IsDotFolder(const wchar_t* name) { return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0; }

} // namespace

bool clsFileFind::Next() {
    while (Step())
        if (!IsDotFolder(data_.cFileName)) return true;
    return false;
}

bool clsFileFind::Step() {
    if (std::exchange(started_, true)) return find_ && FindNextFileW(find_.Get(), &data_);
    find_.Reset(FindFirstFileW(pattern_.Text(), &data_));
    return static_cast<bool>(find_);
}

} // namespace vxut
