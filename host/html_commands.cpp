// vlm html: converts between HTML and plain text.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"
#include "host/text_file.h"

#include <prof.h>
#include <util.h>
#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <memory>
#include <string>

namespace vlm {

namespace {

constexpr size_t kMostBytes = size_t{256} * 1024 * 1024;

struct FreeString {
    void operator()(wchar_t* text) const { SysFreeString(text); }
};

std::wstring InputText(const Arguments& arguments) {
    const std::wstring path = arguments.HasOperand(0) ? arguments.Operand(0) : L"-";
    const std::wstring* encoding = arguments.Value(L"encoding");
    const UINT codePage = encoding ? CodePageNamed(*encoding) : ProfGetOption(PROF_OPTION_CODE_PAGE);
    const TextFile file = ReadTextFile(path, kMostBytes);
    if (file.isCut) Fail(path + L": larger than 256 MB");
    if (file.encoding == Encoding::kBinary) Fail(path + L": not a text, it contains zero bytes");
    return TextOf(file, codePage);
}

// Calls one of the library's functions, which stores its result.
template <class Convert>
std::wstring Converted(Convert convert) {
    BSTR result = nullptr;
    convert(&result);
    const std::unique_ptr<wchar_t, FreeString> owner(result);
    if (!result) Fail(L"not enough memory");
    return {result, SysStringLen(result)};
}

// Each line end, of whichever kind, as the given one.
std::wstring WithLineEnds(const std::wstring& text, const wchar_t* lineEnd) {
    std::wstring result;
    for (size_t index = 0; index < text.size(); ++index) {
        if (text[index] != L'\r' && text[index] != L'\n') {
            result += text[index];
            continue;
        }
        if (text.compare(index, 2, L"\r\n") == 0) ++index;
        result += lineEnd;
    }
    return result;
}

int Placeholders(const Arguments& arguments) { return arguments.Has(L"placeholders") ? 1 : 0; }

ExitCode RunToText(const Arguments& arguments, Output& out) {
    const std::wstring html = InputText(arguments);
    const std::wstring text = Converted(
        [&](BSTR* result) { UtilConvertHtml2PlainText(html.c_str(), result, Placeholders(arguments)); });
    out.Line(WithLineEnds(text, L"\n"));
    return kExitSuccess;
}

ExitCode RunFromText(const Arguments& arguments, Output& out) {
    const std::wstring text = WithLineEnds(InputText(arguments), L"\r\n");
    out.Line(Converted(
        [&](BSTR* result) { UtilConvertText2HTML(text.c_str(), result, Placeholders(arguments)); }));
    return kExitSuccess;
}

ExitCode RunMask(const Arguments& arguments, Output& out) {
    const std::wstring text = InputText(arguments);
    out.Write(Converted([&](BSTR* result) { UtilMaskAllHTMLCharacters(text.c_str(), result); }));
    return kExitSuccess;
}

ExitCode RunDemask(const Arguments& arguments, Output& out) {
    const std::wstring text = InputText(arguments);
    out.Write(Converted([&](BSTR* result) { UtilDemaskAllHTMLCharacters(text.c_str(), result); }));
    return kExitSuccess;
}

constexpr Option kEncodingOption = {L"encoding", L"CODEPAGE", L"code page of narrow input"};
constexpr Option kMaskOptions[] = {kEncodingOption};
constexpr Option kConvertOptions[] = {
    kEncodingOption,
    {L"placeholders", nullptr, L"write tags as [_[p]_] instead of <p>"},
};
constexpr Option kReadOptions[] = {
    kEncodingOption,
    {L"placeholders", nullptr, L"read tags as [_[p]_] instead of <p>"},
};

const Command kCommands[] = {
    {
        .name = L"demask",
        .summary = L"Replace entities by their characters",
        .operands = L"[FILE]",
        .help =
            L"Named entities of Latin-1 and numbers are known. Without FILE, or with \"-\", standard input "
            L"is read.",
        .options = kMaskOptions,
        .run = RunDemask,
    },
    {
        .name = L"from-text",
        .summary = L"Convert plain text to HTML paragraphs",
        .operands = L"[FILE]",
        .help = L"Each line becomes a paragraph, empty lines are left out. Without FILE, or with \"-\", "
                L"standard\n"
                L"input is read.",
        .options = kConvertOptions,
        .run = RunFromText,
    },
    {
        .name = L"mask",
        .summary = L"Replace special characters by entities",
        .operands = L"[FILE]",
        .help = L"Characters beyond Latin-1 all become the text \"&#x04x;\" and cannot be converted back. "
                L"Without\n"
                L"FILE, or with \"-\", standard input is read.",
        .options = kMaskOptions,
        .run = RunMask,
    },
    {
        .name = L"to-text",
        .summary = L"Convert HTML to plain text",
        .operands = L"[FILE]",
        .help = L"Links become their text and target; text behind the last link is dropped. Without FILE, or "
                L"with\n"
                L"\"-\", standard input is read.",
        .options = kReadOptions,
        .run = RunToText,
    },
};

} // namespace

Command HtmlCommands() {
    return {
        .name = L"html",
        .summary = L"Convert between HTML and plain text",
        .children = kCommands,
    };
}

} // namespace vlm
