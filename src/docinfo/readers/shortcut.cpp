// Shortcuts of the shell.
#include "base/com_initialize.h"
#include "base/owners.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/shortcut_check.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlobj.h>

#include <vector>

namespace vxut {
namespace {

// Numbers: the system's operator for the enumeration makes a value that it does not have.
constexpr DWORD kResolveFlags = DWORD{SLR_NO_UI} | DWORD{SLR_ANY_MATCH};

constexpr int64_t kMostBytes = int64_t{1024} * 1024;

// A shortcut is small. Whether it can be read is for the system to say.
bool IsKnownToBeDamaged(const String& path) {
    clsDocFile file(path);
    if (!file.IsOpen()) return false;
    const int64_t size = file.GetSize();
    std::vector<uint8_t> bytes;
    return size < 0 || size > kMostBytes || !ReadAll(file, 0, bytes, static_cast<size_t>(size)) ||
           !IsShortcutSound(bytes);
}

} // namespace

String ResolveShortcut(const String& path) {
    if (IsKnownToBeDamaged(path)) return {};
    const clsCOMInitialize com; // a thread that has COM of another kind is served as well
    clsAutoRelease<IShellLinkW*> link;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                reinterpret_cast<void**>(link.Receive())))) {
        return {};
    }
    clsAutoRelease<IPersistFile*> file;
    if (FAILED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(file.Receive()))) ||
        FAILED(file->Load(path.Text(), STGM_SHARE_DENY_WRITE)) ||
        FAILED(link->Resolve(nullptr, kResolveFlags))) {
        return {};
    }
    wchar_t target[MAX_PATH] = L"";
    if (FAILED(link->GetPath(target, MAX_PATH, nullptr, SLGP_UNCPRIORITY))) return {};
    return target;
}

} // namespace vxut
