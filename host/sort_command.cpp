// vlm sort: lines in the order of the user's locale.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"
#include "host/text_file.h"

#include <util.h>
#include <windows.h>

#include <algorithm>
#include <list>
#include <string>

namespace vlm {

namespace {

constexpr size_t kFileBytes = size_t{256} * 1024 * 1024; // the help names the size

std::list<std::wstring> LinesOf(const std::wstring& text) {
    std::list<std::wstring> lines;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(L'\n', start), text.size());
        const bool hasReturn = end > start && text[end - 1] == L'\r';
        lines.push_back(text.substr(start, end - start - hasReturn));
        start = end + 1;
    }
    return lines;
}

ExitCode RunSort(const Arguments& arguments, Output& out) {
    const std::wstring path = arguments.HasOperand(0) ? arguments.Operand(0) : L"-";
    const std::wstring* const encoding = arguments.Value(L"encoding");
    const TextFile file = ReadTextFile(path, kFileBytes);
    if (file.isCut) Fail(path + L": the file is too large");
    std::list<std::wstring> lines = LinesOf(TextOf(file, encoding ? CodePageNamed(*encoding) : GetACP()));
    const auto compare = arguments.Has(L"ignore-case") ? UtilLocaleStricmp : UtilLocaleStrcmp;
    const int wanted = arguments.Has(L"reverse") ? 1 : -1;
    // A list is merged, which ends with some order even if the system's comparisons contradict each other.
    lines.sort([=](const std::wstring& left, const std::wstring& right) {
        return compare(left.c_str(), right.c_str()) == wanted;
    });
    for (const std::wstring& line : lines) out.Line(line);
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {L"ignore-case", nullptr, L"treat upper and lower case alike"},
    {L"reverse", nullptr, L"print the last line first"},
    {L"encoding", L"CODEPAGE", L"code page of a narrow file without a mark"},
};

} // namespace

Command SortCommand() {
    return {
        .name = L"sort",
        .summary = L"Sort lines in the order of the user's locale",
        .operands = L"[FILE]",
        .help =
            L"Without a file, or with \"-\", lines of standard input are sorted. Lines that are equal keep\n"
            L"their order. Files have 256 MB at most.",
        .options = kOptions,
        .run = RunSort,
    };
}

} // namespace vlm
