// vlm version: the versions of the loaded library and of its file.
#include "host/groups.h"

#include "host/library_path.h"
#include "host/output.h"
#include "host/text.h"

#include <prof.h>
#include <util.h>
#include <windows.h>

#include <string>
#include <vector>

namespace vlm {

namespace {

constexpr const wchar_t* kFileStrings[] = {L"ProductName", L"FileDescription", L"FileVersion",
                                           L"ProductVersion"};

std::wstring MajorMinor(uint32_t major, uint32_t minor) {
    return std::to_wstring(major) + L"." + std::to_wstring(minor);
}

std::vector<BYTE> VersionResource(const std::wstring& path) {
    std::vector<BYTE> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    if (resource.empty() ||
        !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()))
        Fail(path + L" has no version resource: " + SystemMessage(GetLastError()));
    return resource;
}

// The path of the strings in the first language of a resource: "\StringFileInfo\040904B0\".
std::wstring StringBlock(const std::vector<BYTE>& resource) {
    struct Translation {
        WORD language;
        WORD codePage;
    };
    void* found = nullptr;
    UINT bytes = 0;
    if (!VerQueryValueW(resource.data(), L"\\VarFileInfo\\Translation", &found, &bytes) ||
        bytes < sizeof(Translation))
        return {};
    const auto* translation = static_cast<const Translation*>(found);
    wchar_t block[64];
    _snwprintf(block, std::size(block), L"\\StringFileInfo\\%04X%04X\\", translation->language,
               translation->codePage);
    return block;
}

void PrintFile(const std::wstring& path, Output& out) {
    out.Field(L"File", path);
    const std::vector<BYTE> resource = VersionResource(path);
    const std::wstring block = StringBlock(resource);
    for (const wchar_t* name : kFileStrings) {
        void* text = nullptr;
        UINT units = 0;
        if (VerQueryValueW(resource.data(), (block + name).c_str(), &text, &units) && units)
            out.Field(name, static_cast<const wchar_t*>(text));
    }
}

ExitCode RunVersion(const Arguments&, Output& out) {
    const uint32_t library = UtilGetVersion(0);
    const uint32_t store = ProfGetVersion(0);
    out.Field(L"Library", MajorMinor(HIWORD(library), LOWORD(library)));
    out.Field(L"Profile store", MajorMinor(HIBYTE(store), LOBYTE(store)));
    out.Field(L"Debug channel", UtilGetFlags() ? L"listener attached" : L"no listener");
    PrintFile(LibraryPath(), out);
    return kExitSuccess;
}

} // namespace

Command VersionCommand() {
    return {
        .name = L"version",
        .summary = L"Print the versions of the library and of its file",
        .run = RunVersion,
    };
}

} // namespace vlm
