// vlm profile: shows, reads, changes and converts profiles. The commands for embedded files and the clipboard
// are in embedded_commands.cpp.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/embedded_commands.h"
#include "host/help.h"
#include "host/output.h"
#include "host/profile_arguments.h"
#include "host/profile_tree.h"
#include "host/profile_values.h"

#include <prof.h>

#include <cstdint>
#include <string>

namespace vlm {

namespace {

std::wstring PathOperand(const Arguments& arguments) { return TreePath(arguments.Operand(1)); }

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
    CheckNewItem(path);
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
    const uint32_t format = FormatOf(arguments);
    const ProfileFile file = OpenForReading(arguments);
    file.RequireItems();
    file.SaveAs(arguments.Operand(1), format);
    return kExitSuccess;
}

std::wstring TypesText() {
    std::wstring text = L"Types:\n";
    for (const ValueType& type : ValueTypes()) text += HelpRow(type.name, type.help);
    return text;
}

constexpr Option kAs = {L"as", L"TYPE", L"type of the value; default: string"};

constexpr Option kShowOptions[] = {kEncodingOption};
constexpr Option kGetOptions[] = {
    kAs,
    {L"default", L"VALUE", L"print this value if the item is missing"},
    kEncodingOption,
};
constexpr Option kSetOptions[] = {kAs, kSharedOption, kEncodingOption};
constexpr Option kDeleteOptions[] = {
    {L"list", nullptr, L"delete lists, with everything below them"},
    kSharedOption,
    kEncodingOption,
};
constexpr Option kConvertOptions[] = {
    kFormOption,
    kPackedOption,
    kEncodingOption,
};

constexpr wchar_t kChangeHelp[] =
    L"The file keeps its form; a packed file stays packed. Comments are lost. A file in use is waited for "
    L"up\n"
    L"to 10 seconds. A file that cannot be read in full, or not written back without loss, is left "
    L"unchanged.";

constexpr wchar_t kSetHelp[] =
    L"A missing item, list or file is created. An existing file keeps its form; a packed file stays packed.\n"
    L"Comments are lost. A file in use is waited for up to 10 seconds. A file that cannot be read in full, "
    L"or\n"
    L"not written back without loss, is left unchanged.";

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
    CopyCommand(),
    {
        .name = L"delete",
        .summary = L"Delete all items or lists of a path",
        .operands = L"FILE PATH",
        .help = kChangeHelp,
        .options = kDeleteOptions,
        .run = RunDelete,
    },
    EmbedCommand(),
    ExtractCommand(),
    {
        .name = L"get",
        .summary = L"Print the value of an item",
        .operands = L"FILE PATH",
        .help = L"An item with an empty value is missing for all types but string.",
        .details = TypesText,
        .options = kGetOptions,
        .run = RunGet,
    },
    PasteCommand(),
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
