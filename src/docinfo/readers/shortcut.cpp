// Shortcuts of the shell.
#include "base/com_initialize.h"
#include "base/owners.h"
#include "docinfo/readers/readers.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlobj.h>

namespace vxut {

String ResolveShortcut(const String& path) {
    const clsCOMInitialize com; // a thread that has COM of another kind is served as well
    clsAutoRelease<IShellLinkW*> link;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                reinterpret_cast<void**>(link.Receive())))) {
        return {};
    }
    clsAutoRelease<IPersistFile*> file;
    if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(file.Receive()))) ||
        FAILED(file->Load(path.Text(), STGM_SHARE_DENY_WRITE)) ||
        FAILED(link->Resolve(nullptr, SLR_NO_UI | SLR_ANY_MATCH))) {
        return {};
    }
    wchar_t target[MAX_PATH] = L"";
    if (FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_UNCPRIORITY))) return {};
    return target;
}

} // namespace vxut
