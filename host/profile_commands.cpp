// vlm profile: shows, reads, changes and converts profiles.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/help.h"
#include "host/output.h"
#include "host/profile_file.h"
#include "host/profile_tree.h"
#include "host/profile_values.h"
#include "host/text.h"

#include <prof.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <string>

namespace vlm {

namespace {

struct FormName {
    const wchar_t* name;
    uint32_t format;
};
constexpr FormName kForms[] = {
    {L"text", PROF_FORMAT_TEXT},
    {L"xml", PROF_FORMAT_XML},
    {L"xfdf", PROF_FORMAT_XFDF},
};

uint32_t FormatNamed(const std::wstring* name) {
    for (const FormName& form : kForms)
        if (!name || *name == form.name) return form.format;
    FailUsage(L"unknown form: " + *name);
}

// Narrow files are read in the default code page, which must be set before the open.
void ApplyEncoding(const Arguments& arguments) {
    if (const std::wstring* encoding = arguments.Value(L"encoding"))
        ProfSetOption(PROF_OPTION_CODE_PAGE, CodePageNamed(*encoding));
}

ProfileFile OpenForReading(const Arguments& arguments) {
    ApplyEncoding(arguments);
    return ProfileFile::ForReading(arguments.Operand(0));
}

ProfileFile OpenForChange(const Arguments& arguments) {
    ApplyEncoding(arguments);
    return ProfileFile::ForChange(arguments.Operand(0), arguments.Has(L"shared"));
}

// Every path starts at the root, so a leading slash is dropped; the deletions would take it for an empty
// name.
std::wstring PathOperand(const Arguments& arguments) {
    std::wstring path = arguments.Operand(1);
    if (path.starts_with(L'/')) path.erase(0, 1);
    if (path.empty()) FailUsage(L"the path is empty");
    return path;
}

// The text form has no escape for such names: it would read them back as something else.
void CheckName(const std::wstring& name, bool isItem) {
    if (name.empty()) FailUsage(L"the path contains an empty name");
    if (std::any_of(name.begin(), name.end(), [](wchar_t unit) { return unit < L' '; }))
        FailUsage(L"a name must not contain control characters");
    const wchar_t* const forbidden = isItem ? L"#;{} " : L"[";
    if (std::wcschr(forbidden, name[0]))
        FailUsage(std::wstring(L"the name of ") + (isItem ? L"an item" : L"a list") +
                  L" must not begin with '" + name[0] + L"': " + name);
}

void CheckNewPath(const std::wstring& path) {
    size_t start = 0;
    for (size_t slash; (slash = path.find(L'/', start)) != std::wstring::npos; start = slash + 1)
        CheckName(path.substr(start, slash - start), false);
    CheckName(path.substr(start), true);
}

ExitCode RunShow(const Arguments& arguments, Output& out) {
    const ProfileFile file = OpenForReading(arguments);
    HPROFLIST list = nullptr;
    if (arguments.HasOperand(1) &&
        !(list = ProfGetListW(file.Job(), nullptr, PathOperand(arguments).c_str())))
        Fail(arguments.Operand(1) + L": there is no such list");
    PrintTree(file.Job(), list, out);
    return kExitSuccess;
}

ExitCode RunGet(const Arguments& arguments, Output& out) {
    const ValueType& type = ValueTypeNamed(arguments.Value(L"as"));
    const std::wstring* defaultText = arguments.Value(L"default");
    const std::wstring path = PathOperand(arguments);
    if (defaultText) type.parse(*defaultText);
    const ProfileFile file = OpenForReading(arguments);
    std::wstring text;
    const int32_t result = type.read({file.Job(), path.c_str()}, defaultText, text);
    const bool isDefaulted = result == PROF_ERR_NOT_FOUND && defaultText;
    if (result != PROF_OK && !isDefaulted) Fail(path + L": " + ProfileErrorWords(result));
    out.Line(text);
    return kExitSuccess;
}

ExitCode RunSet(const Arguments& arguments, Output&) {
    const auto store = ValueTypeNamed(arguments.Value(L"as")).parse(arguments.Operand(2));
    const std::wstring path = PathOperand(arguments);
    CheckNewPath(path);
    const ProfileFile file = OpenForChange(arguments);
    store({file.Job(), path.c_str()});
    file.Save();
    return kExitSuccess;
}

ExitCode RunDelete(const Arguments& arguments, Output&) {
    const std::wstring path = PathOperand(arguments);
    const bool isList = arguments.Has(L"list");
    ProfileFile::Require(arguments.Operand(0));
    const ProfileFile file = OpenForChange(arguments);
    const bool isThere = isList ? ProfGetListW(file.Job(), nullptr, path.c_str()) != nullptr
                                : ProfGetStringLengthW(file.Job(), nullptr, path.c_str()) >= 0;
    if (!isThere) Fail(path + L": there is no such " + (isList ? L"list" : L"item"));
    (isList ? ProfDeleteListW : ProfDeleteItemW)(file.Job(), nullptr, path.c_str());
    file.Save();
    return kExitSuccess;
}

ExitCode RunConvert(const Arguments& arguments, Output&) {
    const uint32_t form = FormatNamed(arguments.Value(L"form"));
    const uint32_t packed = arguments.Has(L"packed") ? PROF_FORMAT_PACKED : 0;
    const ProfileFile file = OpenForReading(arguments);
    file.RequireItems();
    file.SaveAs(arguments.Operand(1), form | packed);
    return kExitSuccess;
}

std::wstring TypesText() {
    std::wstring text = L"Types:\n";
    for (const ValueType& type : ValueTypes()) text += HelpRow(type.name, type.help);
    return text;
}

constexpr Option kEncoding = {L"encoding", L"CODEPAGE",
                              L"code page of a narrow file: 1252, cp850, utf-8, ansi, oem"};
constexpr Option kAs = {L"as", L"TYPE", L"type of the value; default: string"};
constexpr Option kShared = {L"shared", nullptr, L"let others write the file between reading and saving"};

constexpr Option kShowOptions[] = {kEncoding};
constexpr Option kGetOptions[] = {
    kAs,
    {L"default", L"VALUE", L"print this value if the item is missing"},
    kEncoding,
};
constexpr Option kSetOptions[] = {kAs, kShared, kEncoding};
constexpr Option kDeleteOptions[] = {
    {L"list", nullptr, L"delete lists, with everything below them"},
    kShared,
    kEncoding,
};
constexpr Option kConvertOptions[] = {
    {L"form", L"FORM", L"text, xml or xfdf; default: text"},
    {L"packed", nullptr, L"compress OUT: a packed profile, with the form inside"},
    kEncoding,
};

constexpr wchar_t kChangeHelp[] =
    L"The file keeps its form; a packed file stays packed, with the text form inside. Comments are lost. A\n"
    L"file in use is waited for up to 10 seconds. A file that cannot be read in full, or not written back\n"
    L"without loss, is left unchanged.";

constexpr wchar_t kSetHelp[] =
    L"A missing item, list or file is created. An existing file keeps its form; a packed file stays packed,\n"
    L"with the text form inside. Comments are lost. A file in use is waited for up to 10 seconds. A file\n"
    L"that cannot be read in full, or not written back without loss, is left unchanged.";

const Command kCommands[] = {
    {
        .name = L"convert",
        .summary = L"Convert a profile to another form",
        .operands = L"IN OUT",
        .help =
            L"The form of IN, which may be packed, is recognised. OUT is replaced if it exists. Files of the "
            L"xfdf form are for "
            L"programs\n"
            L"that fill in PDF forms: they are written in the default code page, and cannot be read back.",
        .options = kConvertOptions,
        .run = RunConvert,
    },
    {
        .name = L"delete",
        .summary = L"Delete all items or lists of a path",
        .operands = L"FILE PATH",
        .help = kChangeHelp,
        .options = kDeleteOptions,
        .run = RunDelete,
    },
    {
        .name = L"get",
        .summary = L"Print the value of an item",
        .operands = L"FILE PATH",
        .help = L"An item with an empty value is missing for all types but string.",
        .details = TypesText,
        .options = kGetOptions,
        .run = RunGet,
    },
    {
        .name = L"set",
        .summary = L"Set the value of an item",
        .operands = L"FILE PATH VALUE",
        .help = kSetHelp,
        .details = TypesText,
        .options = kSetOptions,
        .run = RunSet,
    },
    {
        .name = L"show",
        .summary = L"Print the tree of a profile",
        .operands = L"FILE [LIST]",
        .help = L"Control characters are shown as pictures.",
        .options = kShowOptions,
        .run = RunShow,
    },
};

} // namespace

Command ProfileCommands() {
    return {
        .name = L"profile",
        .summary = L"Show, read, change and convert profiles",
        .help =
            L"A path leads from the root to an item or a list, with \"/\" between the names: "
            L"Window/Main/Width.",
        .children = kCommands,
    };
}

} // namespace vlm
