#include "host/library_path.h"

#include "host/command.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>

namespace vlm {

std::wstring LibraryPath() {
    HMODULE library = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<LPCWSTR>(&UtilGetVersion), &library))
        Fail(L"cannot find the module of the library: " + SystemMessage(GetLastError()));
    return ModulePath(library);
}

std::wstring ModulePath(void* module) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length;
    while ((length = GetModuleFileNameW(static_cast<HMODULE>(module), path.data(),
                                        static_cast<DWORD>(path.size()))) == path.size())
        path.resize(path.size() * 2);
    path.resize(length);
    return path;
}

} // namespace vlm
