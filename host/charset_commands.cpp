// vlm charset: the encoding of a file, and the charset of a text.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"
#include "host/text_file.h"

#include <prof.h>
#include <util.h>
#include <windows.h>

#include <string>

namespace vlm {

namespace {

// The part of a file that is examined; the help names the size.
constexpr size_t kFileBytes = size_t{16} * 1024 * 1024;

struct CharsetName {
    uint32_t charset;
    const wchar_t* name;
    const wchar_t* words;
};
constexpr CharsetName kCharsetNames[] = {
    {ANSI_CHARSET, L"ANSI_CHARSET", L"any font"},
    {SHIFTJIS_CHARSET, L"SHIFTJIS_CHARSET", L"Japanese"},
    {HANGEUL_CHARSET, L"HANGEUL_CHARSET", L"Korean"},
    {GB2312_CHARSET, L"GB2312_CHARSET", L"Chinese, simplified"},
    {CHINESEBIG5_CHARSET, L"CHINESEBIG5_CHARSET", L"Chinese, traditional"},
    {GREEK_CHARSET, L"GREEK_CHARSET", L"Greek"},
    {HEBREW_CHARSET, L"HEBREW_CHARSET", L"Hebrew"},
    {ARABIC_CHARSET, L"ARABIC_CHARSET", L"Arabic"},
    {RUSSIAN_CHARSET, L"RUSSIAN_CHARSET", L"Cyrillic"},
    {THAI_CHARSET, L"THAI_CHARSET", L"Thai"},
};

std::wstring CharsetText(uint32_t charset) {
    for (const CharsetName& row : kCharsetNames)
        if (row.charset == charset)
            return std::to_wstring(charset) + L" " + row.name + L" (" + row.words + L")";
    return std::to_wstring(charset);
}

ExitCode RunFile(const Arguments& arguments, Output& out) {
    const TextFile file = ReadTextFile(arguments.Operand(0), kFileBytes);
    out.Line(Describe(file));
    return kExitSuccess;
}

std::wstring TextToExamine(const Arguments& arguments, UINT codePage) {
    const std::wstring* file = arguments.Value(L"file");
    if (!file && !arguments.HasOperand(0)) FailUsage(L"specify a text, or a file with --file");
    if (file && arguments.HasOperand(0)) FailUsage(L"specify either a text or a file, not both");
    return file ? TextOf(ReadTextFile(*file, kFileBytes), codePage) : arguments.Operand(0);
}

ExitCode RunText(const Arguments& arguments, Output& out) {
    if (const std::wstring* encoding = arguments.Value(L"encoding"))
        ProfSetOption(PROF_OPTION_CODE_PAGE, CodePageNamed(*encoding));
    const UINT codePage = ProfGetOption(PROF_OPTION_CODE_PAGE);
    out.Line(CharsetText(UtilGetLikelyCharsetFromString(TextToExamine(arguments, codePage).c_str())));
    return kExitSuccess;
}

constexpr Option kTextOptions[] = {
    {L"file", L"FILE", L"examine the text of a file instead"},
    {L"encoding", L"CODEPAGE", L"code page of a narrow file, and of a text with several scripts"},
};

const Command kCommands[] = {
    {
        .name = L"file",
        .summary = L"Print the encoding of a text file",
        .operands = L"FILE",
        .help = L"A byte order mark decides. Without one, the contents are tested: a file with zero bytes is "
                L"UTF-16\n"
                L"or binary by its statistics; any other is ASCII, strictly valid UTF-8, or text in an "
                L"unknown code\n"
                L"page. The first 16 MB are examined.",
        .run = RunFile,
    },
    {
        .name = L"text",
        .summary = L"Print the GDI charset of a font that can display a text",
        .operands = L"[TEXT]",
        .options = kTextOptions,
        .run = RunText,
    },
};

} // namespace

Command CharsetCommands() {
    return {
        .name = L"charset",
        .summary = L"Detect encodings of files and charsets of text",
        .children = kCommands,
    };
}

} // namespace vlm
