// vlm docinfo: prints the properties of documents.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/docinfo_files.h"
#include "host/output.h"
#include "host/progress_bar.h"
#include "host/text.h"
#include "host/value_text.h"

#include <util.h>
#include <windows.h>
// After windows.h, which it needs:
#include <oleauto.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace vlm {

namespace {

constexpr uint32_t kDefaultTimeout = 10; // seconds

struct Property {
    const wchar_t* name; // in JSON and --fields
    const wchar_t* label;
    VARIANT* DocInfoRequest::* target;
};
constexpr Property kProperties[] = {
    {L"title", L"Title", &DocInfoRequest::Title},
    {L"subject", L"Subject", &DocInfoRequest::Subject},
    {L"author", L"Author", &DocInfoRequest::Author},
    {L"lastAuthor", L"Last author", &DocInfoRequest::LastAuthor},
    {L"keywords", L"Keywords", &DocInfoRequest::Keywords},
    {L"comments", L"Comments", &DocInfoRequest::Comments},
    {L"created", L"Created", &DocInfoRequest::Created},
    {L"modified", L"Modified", &DocInfoRequest::Modified},
    {L"resolvedPath", L"Resolved path", &DocInfoRequest::ResolvedPath},
};
constexpr size_t kPropertyCount = std::size(kProperties);

// The selected properties, in the order in which they are printed.
using Selection = std::vector<const Property*>;

// The answer for one document.
class Answer {
public:
    Answer() {
        request_.Size = sizeof request_;
        for (size_t index = 0; index < kPropertyCount; ++index) {
            VariantInit(&values_[index]);
            request_.*kProperties[index].target = &values_[index];
        }
    }
    ~Answer() {
        for (VARIANT& value : values_) VariantClear(&value);
    }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    bool Ask(HUTILDOCINFO list, const std::wstring& path, uint32_t timeout) {
        return UtilDocInfoGet(list, path.c_str(), &request_, timeout) != 0;
    }

    // Dates are in the form of ISO 8601. Empty if the document lacks the property.
    std::wstring Text(const Property& property) const {
        const VARIANT& value = values_[&property - kProperties];
        if (V_VT(&value) == VT_BSTR && V_BSTR(&value))
            return std::wstring(V_BSTR(&value), SysStringLen(V_BSTR(&value)));
        SYSTEMTIME time;
        if (V_VT(&value) != VT_DATE || V_DATE(&value) == 0.0 ||
            !VariantTimeToSystemTime(V_DATE(&value), &time))
            return L"";
        return FormatTime(time);
    }

private:
    DocInfoRequest request_ = {};
    VARIANT values_[kPropertyCount];
};

std::wstring JsonText(const std::wstring& text) {
    std::wstring quoted = L"\"";
    for (const wchar_t unit : text) {
        if (unit == L'"' || unit == L'\\') quoted += L'\\';
        if (unit >= L' ') {
            quoted += unit;
            continue;
        }
        wchar_t escape[8];
        _snwprintf(escape, std::size(escape), L"\\u%04x", unit);
        quoted += escape;
    }
    return quoted + L'"';
}

void PrintJson(const std::wstring& path, const Answer* answer, const Selection& selection, Output& out) {
    std::wstring line = L"{\"path\":" + JsonText(path);
    line += answer ? L",\"exists\":true" : L",\"exists\":false";
    for (const Property* property : selection) {
        const std::wstring text = answer ? answer->Text(*property) : L"";
        if (!text.empty()) line.append(L",\"").append(property->name).append(L"\":").append(JsonText(text));
    }
    out.Line(line + L"}");
}

void PrintTable(const std::wstring& path, const Answer* answer, const Selection& selection, Output& out) {
    out.Line(Visible(path));
    if (!answer) out.Line(L"  cannot be opened");
    for (const Property* property : selection) {
        const std::wstring text = answer ? answer->Text(*property) : L"";
        if (!text.empty()) out.Field(L"  " + std::wstring(property->label), Visible(text));
    }
}

const Property& PropertyNamed(const std::wstring& name) {
    for (const Property& property : kProperties)
        if (_wcsicmp(name.c_str(), property.name) == 0) return property;
    FailUsage(L"unknown field: " + name);
}

Selection SelectedBy(const std::wstring* names) {
    Selection selection;
    if (!names) {
        // The path of a file that is no shortcut is printed already.
        for (const Property& property : kProperties) selection.push_back(&property);
        selection.pop_back();
        return selection;
    }
    for (size_t start = 0; start <= names->size();) {
        const size_t end = std::min(names->find(L',', start), names->size());
        selection.push_back(&PropertyNamed(names->substr(start, end - start)));
        start = end + 1;
    }
    return selection;
}

struct CloseList {
    void operator()(HUTILDOCINFO list) const { UtilDocInfoClose(list); }
};
using ListOwner = std::unique_ptr<std::remove_pointer_t<HUTILDOCINFO>, CloseList>;

ExitCode RunDocinfo(const Arguments& arguments, Output& out) {
    std::vector<std::wstring> paths;
    for (size_t index = 0; arguments.HasOperand(index); ++index) paths.push_back(arguments.Operand(index));
    const Selection selection = SelectedBy(arguments.Value(L"fields"));
    const auto print = arguments.Has(L"json") ? PrintJson : PrintTable;
    const std::wstring* timeoutText = arguments.Value(L"timeout");
    const int32_t timeout = timeoutText ? ParseInt(*timeoutText) : static_cast<int32_t>(kDefaultTimeout);
    if (timeout < 0) FailUsage(L"a time-out is not negative");

    const std::vector<DocinfoFile> files = FindDocinfoFiles(paths, arguments.Has(L"recursive"));
    uint64_t total = 0;
    for (const DocinfoFile& file : files) total += file.bytes;
    const ListOwner list(UtilDocInfoOpen(0)); // each file is asked for once
    if (!list) Fail(L"out of memory");
    ProgressBar bar(total, arguments.Has(L"progress"), L"Reading");
    uint64_t done = 0;
    bool isComplete = true;
    for (const DocinfoFile& file : files) {
        Answer answer;
        const bool exists = answer.Ask(list.get(), file.path, static_cast<uint32_t>(timeout));
        print(file.path, exists ? &answer : nullptr, selection, out);
        isComplete = isComplete && exists;
        bar.Show(done += file.bytes);
    }
    bar.Finish();
    return isComplete ? kExitSuccess : kExitFailure;
}

struct Row {
    std::wstring extensions;
    bool hasMagic;
    const wchar_t* name;
    const wchar_t* properties;
    const wchar_t* limits;
};

// What the help says about the formats.
std::wstring FormatList() {
#define VLM_FORMAT(reader, extensions, magic, mask, name, properties, limits) \
    {extensions, (mask) != 0, name, properties, limits},
#define VLM_STORAGE(reader, extension, name, properties, limits) {extension, true, name, properties, limits},
    const Row kRows[] = {UTIL_DOCINFO_STORAGES(VLM_STORAGE) UTIL_DOCINFO_FORMATS(VLM_FORMAT)};
#undef VLM_FORMAT
#undef VLM_STORAGE
    std::wstring text = L"Formats:\n";
    for (const Row& row : kRows) {
        text.append(L"  ").append(row.name).append(L" (").append(row.extensions);
        if (row.hasMagic) text.append(row.extensions.empty() ? L"by content" : L", or by content");
        text.append(L")\n    ").append(row.properties).append(L"\n");
        if (*row.limits) text.append(L"    limits: ").append(row.limits).append(L"\n");
    }
    return text + L"Any other file has its time of modification only.\n";
}

constexpr Option kOptions[] = {
    {L"recursive", nullptr, L"read subfolders too"},
    {L"json", nullptr, L"print one JSON object a line"},
    {L"fields", L"NAMES",
     L"print these, separated by commas: title, subject, author, lastAuthor, keywords, "
     L"comments, created, modified, resolvedPath"},
    {L"timeout", L"SECONDS", L"wait so long for a file on a network share; 10 by default"},
    {L"progress", nullptr, L"show progress even if standard error is not a console"},
};

} // namespace

Command DocinfoCommand() {
    return {
        .name = L"docinfo",
        .summary = L"Print title, author, dates and other properties of documents",
        .operands = L"PATH [PATH...]",
        .help =
            L"A path is a file, a folder or a pattern such as *.doc. Times are local. Properties that a "
            L"document\n"
            L"lacks are not printed. Exits with 1 if a file cannot be opened.",
        .details = FormatList,
        .options = kOptions,
        .run = RunDocinfo,
    };
}

} // namespace vlm
