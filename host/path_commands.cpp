// vlm path: names taken apart and built, what is at a path, volumes, and tokens.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <memory>
#include <string>

namespace vlm {

namespace {

constexpr size_t kLongPathUnits = size_t{32} * 1024;

std::wstring ErrnoMessage(int32_t error) {
    return error == ERANGE ? L"a part is too long" : L"a part is not valid";
}

ExitCode RunFull(const clsArguments& arguments, clsOutput& out) {
    std::wstring path(kLongPathUnits, L'\0');
    UtilFullpath(path.data(), arguments.Operand(0).c_str(), static_cast<uint32_t>(path.size()));
    path.resize(wcsnlen(path.data(), path.size()));
    if (path.empty()) Fail(L"there is no full name of " + arguments.Operand(0));
    out.Line(path);
    return kExitSuccess;
}

ExitCode RunSplit(const clsArguments& arguments, clsOutput& out) {
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

ExitCode RunMerge(const clsArguments& arguments, clsOutput& out) {
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

// A numbered port is the prefix, digits and a colon; another one the prefix and a colon.
bool IsPort(const std::wstring& path, const PortKind& kind) {
    const size_t prefixUnits = wcslen(kind.prefix);
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

ExitCode RunKind(const clsArguments& arguments, clsOutput& out) {
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

ExitCode RunVolume(const clsArguments& arguments, clsOutput& out) {
    UtilFSInfo info = {};
    info.size = sizeof info;
    const wchar_t* root = arguments.HasOperand(0) ? arguments.Operand(0).c_str() : nullptr;
    UtilGetFSInfo(root, &info);
    if (info.maximumComponentLength == 0)
        Fail(L"the volume cannot be asked; its root is written with a backslash at the end, as C:\\");
    out.Field(L"Units of a path", std::to_wstring(info.maximumPath));
    out.Field(L"Units of a drive", std::to_wstring(info.maximumDrive));
    out.Field(L"Units of a name", std::to_wstring(info.maximumComponentLength));
    for (const VolumeFlag& flag : kVolumeFlags) out.Field(flag.words, info.flags & flag.bit ? L"yes" : L"no");
    return kExitSuccess;
}

ExitCode RunTokens(const clsArguments& arguments, clsOutput& out) {
    struct FreeString {
        void operator()(wchar_t* text) const { SysFreeString(text); }
    };
    BSTR expanded = nullptr;
    if (!UtilExpandDefaultTokensOfFolderPath(arguments.Operand(0).c_str(), &expanded))
        Fail(L"the tokens cannot be expanded");
    const std::unique_ptr<wchar_t, FreeString> owner(expanded);
    out.Line(std::wstring(expanded, SysStringLen(expanded)));
    return kExitSuccess;
}

const Command kCommands[] = {
    {
        .name = L"full",
        .summary = L"Tells the full name of a path",
        .operands = L"PATH",
        .run = RunFull,
    },
    {
        .name = L"kind",
        .summary = L"Tells what is at a path: file, directory, or a port by its name",
        .operands = L"PATH",
        .help = L"A name such as LPT1:, COM2: or USB:... is a port by its form, whether it is there or not.",
        .run = RunKind,
    },
    {
        .name = L"merge",
        .summary = L"Builds a path from its parts",
        .operands = L"DRIVE DIRECTORY NAME [EXTENSION]",
        .help = L"A part may be \"\". Colon, separator and dot are added where they lack.",
        .run = RunMerge,
    },
    {
        .name = L"split",
        .summary = L"Takes a path apart",
        .operands = L"PATH",
        .run = RunSplit,
    },
    {
        .name = L"tokens",
        .summary = L"Replaces %NAME% by environment variables and shell folders",
        .operands = L"TEXT",
        .help = L"Unknown names stay as they are.",
        .run = RunTokens,
    },
    {
        .name = L"volume",
        .summary = L"Tells what a volume can do",
        .operands = L"[ROOT]",
        .help = L"ROOT is the volume's root path, as C:\\. Without it, the volume of the current directory "
                L"is asked.",
        .run = RunVolume,
    },
};

} // namespace

Command PathCommands() {
    return {
        .name = L"path",
        .summary = L"Takes names apart, builds them, tells of volumes",
        .children = kCommands,
    };
}

} // namespace vlm
