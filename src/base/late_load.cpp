#include "base/late_load.h"

#include "base/debug.h"
#include "base/last_error.h"
#include "base/owners.h"

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <utility>

namespace vxut {
namespace {

constexpr size_t kMostNameUnits = 256;
constexpr wchar_t kShellLibrary[] = L"shell32";

// The ways a function's name may be spelled: the wide form has a "W", the decorated one the size of the
// arguments.
struct Spelling {
    bool isWide;
    bool isDecorated;
};
constexpr Spelling kSpellings[] = {{false, false}, {true, false}, {false, true}, {true, true}};
constexpr Spelling kWideFirst[] = {{true, false}, {false, false}, {false, true}, {true, true}};

// No String here: String asks late-bound functions itself.
bool Spell(char (&spelled)[kMostNameUnits], const char* name, Spelling spelling, int argumentBytes) {
    const char* const wide = spelling.isWide ? "W" : "";
    const int length = spelling.isDecorated
                           ? _snprintf(spelled, kMostNameUnits, "_%s%s@%d", name, wide, argumentBytes)
                           : _snprintf(spelled, kMostNameUnits, "%s%s", name, wide);
    return length >= 0 && length < static_cast<int>(kMostNameUnits);
}

// Whether the loader can restrict its search for dependencies to the system folder: from Windows 8 on, and on
// Windows 7 with the update that also added AddDllDirectory().
bool CanSearchSystemFolderOnly() {
    return GetProcAddress(GetModuleHandleW(L"kernel32"), "AddDllDirectory") != nullptr;
}

} // namespace

HMODULE LoadFromSystemFolder(const wchar_t* name) {
    wchar_t path[2 * MAX_PATH];
    const UINT length = GetSystemDirectoryW(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return nullptr;
    const size_t nameUnits = std::wcslen(name);
    if (nameUnits + 2 > std::size(path) - length) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return nullptr;
    }
    path[length] = L'\\';
    std::wmemcpy(path + length + 1, name, nameUnits + 1);
    return LoadLibraryExW(
        path, nullptr,
        CanSearchSystemFolderOnly() ? LOAD_LIBRARY_SEARCH_SYSTEM32 : LOAD_WITH_ALTERED_SEARCH_PATH);
}

CLateLoadBase::CLateLoadBase(const wchar_t* library, clsCriticalSection* familyLock)
    : lock_(familyLock ? familyLock : &ownLock_) {
    SetName(library);
}

CLateLoadBase::~CLateLoadBase() {
    if (!freeAtEnd_) return; // at the end of the process the lock may belong to a thread that is gone
    const clsCriticalSectionScope scope(*lock_);
    clsAutoFreeLibrary(std::exchange(module_, nullptr)).Reset();
}

HMODULE CLateLoadBase::Load(const wchar_t* name) { return LoadFromSystemFolder(name); }

void CLateLoadBase::WriteDebugLine(const wchar_t* text) { DebugWrite(L"%s", text); }

void CLateLoadBase::SetName(const wchar_t* name) {
    std::wcsncpy(libraryName_, name ? name : L"", MAX_PATH - 1);
    libraryName_[MAX_PATH - 1] = L'\0';
}

bool CLateLoadBase::LoadOnce() {
    if (!module_ && !triedToLoad_) {
        triedToLoad_ = true;
        if (libraryName_[0]) module_ = Load(libraryName_);
        if (module_ && !freeAtEnd_) Pin(module_);
    }
    return module_ != nullptr;
}

bool CLateLoadBase::SetLibrary(const wchar_t* name, bool loadNow) {
    const clsLastErrorScope keepLastError;
    const clsCriticalSectionScope scope(*lock_);
    if (!module_) {
        SetName(name);
        triedToLoad_ = false;
        if (loadNow) LoadOnce();
    }
    return module_ != nullptr;
}

// A second load of a pinned module adds nothing, so that loading and unloading this library leaves no trace.
void CLateLoadBase::Pin(HMODULE module) {
    HMODULE pinned;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(module), &pinned);
}

bool CLateLoadBase::PrefersWide() const { return _wcsicmp(libraryName_, kShellLibrary) == 0; }

const char* CLateLoadBase::StripName(const char* name) const {
    if (std::strncmp(name, "p_", 2) == 0) name += 2;
    return name + strnlen(name, nameOffset_);
}

FARPROC CLateLoadBase::Resolve(const char* name, LateStatus& status, int argumentBytes) {
    const clsLastErrorScope keepLastError;
    const clsCriticalSectionScope scope(*lock_);
    status = kLateNotAsked;
    if (!LoadOnce()) return nullptr;
    status = kLateAbsent;
    char spelled[kMostNameUnits];
    for (const Spelling spelling : PrefersWide() ? kWideFirst : kSpellings) {
        if (!Spell(spelled, StripName(name), spelling, argumentBytes)) continue;
        if (const FARPROC address = resolver_(module_, spelled)) {
            status = kLatePresent;
            return address;
        }
    }
    return nullptr;
}

int CLateLoadBase::ResolveAll() {
    int missing = 0;
    for (auto* function = lastFunction_; function; function = function->previous_)
        missing += !function->IsAvailable();
    return missing;
}

LateStatus clsLateFunctionBase::Ask() {
    const clsCriticalSectionScope scope(library_.Lock());
    LateStatus status = status_.load(std::memory_order_relaxed);
    if (status != kLateNotAsked) return status;
    address_ = reinterpret_cast<void*>(library_.Resolve(name_, status, argumentBytes_));
    status_.store(status, std::memory_order_release);
    return status;
}

} // namespace vxut
