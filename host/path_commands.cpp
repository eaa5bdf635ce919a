// vlm path: splits and builds paths, and queries files, ports, volumes and tokens.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <memory>
#include <string>

namespace vlm {

namespace {

constexpr size_t kLongPathUnits = size_t{32} * 1024;

std::wstring ErrnoMessage(int32_t error) {
    return error == ERANGE ? L"a part is too long" : L"a part is not valid";
}

ExitCode RunFull(const Arguments& arguments, Output& out) {
    std::wstring path(kLongPathUnits, L'\0');
    UtilFullpath(path.data(), arguments.Operand(0).c_str(), static_cast<uint32_t>(path.size()));
    path.resize(wcsnlen(path.data(), path.size()));
    if (path.empty()) Fail(L"cannot make an absolute path of " + arguments.Operand(0));
    out.Line(path);
    return kExitSuccess;
}

ExitCode RunSplit(const Arguments& arguments, Output& out) {
    wchar_t drive[UTIL_DRIVE_UNITS], directory[UTIL_DIRECTORY_UNITS], name[UTIL_NAME_UNITS],
        extension[UTIL_EXTENSION_UNITS];
    if (const int32_t error = UtilSplitpath(arguments.Operand(0).c_str(), drive, directory, name, extension))
        Fail(ErrnoMessage(error));
    out.Field(L"Drive", drive);
    out.Field(L"Directory", directory);
    out.Field(L"Name", name);
    out.Field(L"Extension", extension);
    return kExitSuccess;
}

ExitCode RunMerge(const Arguments& arguments, Output& out) {
    wchar_t path[UTIL_PATH_UNITS];
    if (const int32_t error = UtilMergepath(path, arguments.Operand(0).c_str(), arguments.Operand(1).c_str(),
                                            arguments.Operand(2).c_str(), arguments.Operand(3).c_str()))
        Fail(ErrnoMessage(error));
    out.Line(path);
    return kExitSuccess;
}

struct PortKind {
    const wchar_t* prefix;
    bool isNumbered;
    const wchar_t* words;
};
constexpr PortKind kPortKinds[] = {
    {L"LPT", true, L"printer port"},
    {L"COM", true, L"serial port"},
    {L"USB", false, L"USB port"},
};

// A numbered port is the prefix, digits and a colon; another port is the prefix, a colon and any text.
bool IsPort(const std::wstring& path, const PortKind& kind) {
    const size_t prefixUnits = std::wcslen(kind.prefix);
    if (_wcsnicmp(path.c_str(), kind.prefix, prefixUnits) != 0) return false;
    if (!kind.isNumbered) return path[prefixUnits] == L':';
    const size_t colon = path.find_first_not_of(L"0123456789", prefixUnits);
    return colon > prefixUnits && colon + 1 == path.size() && path[colon] == L':';
}

std::wstring KindOf(const std::wstring& path) {
    for (const PortKind& kind : kPortKinds)
        if (IsPort(path, kind)) return kind.words;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) Fail(path + L": " + SystemMessage(GetLastError()));
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? L"directory" : L"file";
}

ExitCode RunKind(const Arguments& arguments, Output& out) {
    out.Line(KindOf(arguments.Operand(0)));
    return kExitSuccess;
}

struct VolumeFlag {
    uint32_t bit;
    const wchar_t* words;
};
constexpr VolumeFlag kVolumeFlags[] = {
    {UTIL_FS_CASE_SENSITIVE, L"Case-sensitive search"},
    {UTIL_FS_CASE_PRESERVED, L"Case preserved"},
    {UTIL_FS_UNICODE, L"Unicode names"},
    {UTIL_FS_LONG_NAMES, L"Long names"},
    {UTIL_FS_COMPRESSED, L"Compressed"},
};

ExitCode RunVolume(const Arguments& arguments, Output& out) {
    UtilFSInfo info = {};
    info.size = sizeof info;
    const wchar_t* root = arguments.HasOperand(0) ? arguments.Operand(0).c_str() : nullptr;
    UtilGetFSInfo(root, &info);
    if (info.maximumComponentLength == 0)
        Fail(L"cannot query the volume; a root path ends with a backslash, for example C:\\");
    out.Field(L"Path length limit", std::to_wstring(info.maximumPath));
    out.Field(L"Drive length limit", std::to_wstring(info.maximumDrive));
    out.Field(L"Name length limit", std::to_wstring(info.maximumComponentLength));
    for (const VolumeFlag& flag : kVolumeFlags) out.Field(flag.words, info.flags & flag.bit ? L"yes" : L"no");
    return kExitSuccess;
}

ExitCode RunTokens(const Arguments& arguments, Output& out) {
    struct FreeString {
        void operator()(wchar_t* text) const { SysFreeString(text); }
    };
    BSTR expanded = nullptr;
    if (!UtilExpandDefaultTokensOfFolderPath(arguments.Operand(0).c_str(), &expanded))
        Fail(L"cannot expand the tokens");
    const std::unique_ptr<wchar_t, FreeString> owner(expanded);
    out.Line(std::wstring(expanded, SysStringLen(expanded)));
    return kExitSuccess;
}

const Command kCommands[] = {
    {
        .name = L"full",
        .summary = L"Print the absolute form of a path",
        .operands = L"PATH",
        .run = RunFull,
    },
    {
        .name = L"kind",
        .summary = L"Print what a path names: a file, a directory or a port",
        .operands = L"PATH",
        .help = L"A name such as LPT1:, COM2: or USB:... counts as a port, whether the port exists or not.",
        .run = RunKind,
    },
    {
        .name = L"merge",
        .summary = L"Build a path from its parts",
        .operands = L"DRIVE DIRECTORY NAME [EXTENSION]",
        .help = L"A part may be \"\". A missing colon, separator or dot is added.",
        .run = RunMerge,
    },
    {
        .name = L"split",
        .summary = L"Split a path into its parts",
        .operands = L"PATH",
        .run = RunSplit,
    },
    {
        .name = L"tokens",
        .summary = L"Replace %NAME% with environment variables and shell folders",
        .operands = L"TEXT",
        .help = L"Unknown names are left unchanged.",
        .run = RunTokens,
    },
    {
        .name = L"volume",
        .summary = L"Print the limits and features of a volume",
        .operands = L"[ROOT]",
        .help = L"ROOT is the root path of the volume, for example C:\\. The default is the volume of the "
                L"current\n"
                L"directory. Limits are in UTF-16 units.",
        .run = RunVolume,
    },
};

} // namespace

Command PathCommands() {
    return {
        .name = L"path",
        .summary = L"Split and build paths, query files and volumes",
        .children = kCommands,
    };
}

} // namespace vlm
