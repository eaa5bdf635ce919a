#include "crash/debug_help_library.h"

#include "base/identity.h"
#include "text/settings.h"

namespace vxut {
namespace {

constexpr const wchar_t* kToolFolders[] = {L"\\Debugging Tools for Windows\\",
                                           L"\\Debugging Tools for Windows (x86)\\",
                                           L"\\Debugging Tools for Windows 64-Bit\\"};

HMODULE LoadFile(const String& path) {
    if (GetFileAttributesW(path.Text()) == INVALID_FILE_ATTRIBUTES) return nullptr;
    return LoadLibraryW(path.Text());
}

} // namespace

clsRPDBGHELP::clsRPDBGHELP() : CLateLoadBase(kName) {}

HMODULE clsRPDBGHELP::Load(const wchar_t* name) {
    if (const HMODULE beside = LoadFile(String(Identity().processDirectory) + name)) return beside;
    const String programs = EnvironmentText(L"ProgramFiles");
    for (const wchar_t* folder : kToolFolders) {
        if (const HMODULE installed = LoadFile(programs + folder + name)) return installed;
    }
    return LoadLibraryW(name);
}

} // namespace vxut
