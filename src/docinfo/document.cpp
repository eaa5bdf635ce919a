#include "docinfo/document.h"

#include "base/text_units.h"
#include "docinfo/formats.h"
#include "docinfo/readers/readers.h"
#include "files/network_path.h"
#include "files/path.h"

#include <cstring>
#include <new>

namespace vxut {
namespace {

String PathOf(const String& request) {
    const auto length = static_cast<size_t>(request.Length());
    return request.Left(static_cast<int64_t>(FindUnitWithin(request.Text(), length, L'|')));
}

bool IsSameTime(const SYSTEMTIME& one, const SYSTEMTIME& other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
}

} // namespace

clsDocu::clsDocu(const String& request) { Path = PathOf(request); }

void clsDocu::CopyFrom(const scDocuFields& other) {
    static_cast<scDocuFields&>(*this) = other;
    // A value that cannot be copied is empty.
    for (clsVariant scDocuFields::* const text : kDocuTexts)
        if ((this->*text).vt != (other.*text).vt) throw std::bad_alloc();
}

void clsDocu::Resolve() {
    const bool isShortcut = IString(Extension(Path)) == L".lnk";
    ResolvedPath = EnsureLocalPath(isShortcut ? ResolveShortcut(Path) : Path);
}

void clsDocu::Reload() {
    clsDocFile file(ResolvedPath);
    if (!file.IsOpen()) {
        if (GetLastError() == ERROR_FILE_NOT_FOUND)
            LoadedTick = 0;
        else
            Clear();
        return;
    }
    Exists = true;
    FILETIME lastWrite;
    if (!GetFileTime(file.Handle(), nullptr, nullptr, &lastWrite)) return Clear();
    const SYSTEMTIME time = SystemTimeOf(lastWrite);
    if (IsSameTime(time, FileTime)) return;
    ClearProperties();
    FileTime = Modified = time;
    if (ReadProperties(*this, file) < 0) Clear();
}

void clsDocu::Clear() {
    Exists = false;
    LoadedTick = 0;
    ClearProperties();
}

void clsDocu::ClearProperties() {
    Created = Modified = EmptyTime();
    for (clsVariant scDocuFields::* const text : kDocuTexts) (this->*text).Clear();
}

} // namespace vxut
