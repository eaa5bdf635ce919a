#include "host/profile_arguments.h"

#include "host/text.h"

#include <algorithm>
#include <cwchar>

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

uint32_t FormNamed(const std::wstring* name) {
    for (const FormName& form : kForms)
        if (!name || *name == form.name) return form.format;
    FailUsage(L"unknown form: " + *name);
}

// Narrow files are read in the default code page, which must be set before the open.
void ApplyEncoding(const Arguments& arguments) {
    if (const std::wstring* encoding = arguments.Value(L"encoding"))
        ProfSetOption(PROF_OPTION_CODE_PAGE, CodePageNamed(*encoding));
}

void CheckName(const std::wstring& name, bool isItem) {
    if (name.empty()) FailUsage(L"the path contains an empty name");
    if (std::any_of(name.begin(), name.end(), [](wchar_t unit) { return unit < L' '; }))
        FailUsage(L"a name must not contain control characters");
    const wchar_t* const forbidden = isItem ? L"#;{} " : L"[";
    if (std::wcschr(forbidden, name[0]))
        FailUsage(std::wstring(L"the name of ") + (isItem ? L"an item" : L"a list") +
                  L" must not begin with '" + name[0] + L"': " + name);
}

void CheckNewPath(const std::wstring& path, bool isItem) {
    size_t start = 0;
    for (size_t slash; (slash = path.find(L'/', start)) != std::wstring::npos; start = slash + 1)
        CheckName(path.substr(start, slash - start), false);
    CheckName(path.substr(start), isItem);
}

} // namespace

uint32_t FormatOf(const Arguments& arguments) {
    return FormNamed(arguments.Value(L"form")) | (arguments.Has(L"packed") ? PROF_FORMAT_PACKED : 0);
}

ProfileFile OpenForReading(const Arguments& arguments) {
    ApplyEncoding(arguments);
    return ProfileFile::ForReading(arguments.Operand(0));
}

ProfileFile OpenForChange(const Arguments& arguments) {
    ApplyEncoding(arguments);
    return ProfileFile::ForChange(arguments.Operand(0), arguments.Has(L"shared"));
}

std::wstring TreePath(std::wstring path) {
    if (path.starts_with(L'/')) path.erase(0, 1);
    if (path.empty()) FailUsage(L"the path is empty");
    return path;
}

void CheckNewItem(const std::wstring& path) { CheckNewPath(path, true); }

void CheckNewList(const std::wstring& path) { CheckNewPath(path, false); }

} // namespace vlm
