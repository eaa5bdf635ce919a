// vlm encode, vlm decode: files as text, and back.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/binary_file.h"
#include "host/output.h"
#include "host/text.h"
#include "host/text_file.h"

#include <util.h>

#include <string>

namespace vlm {

namespace {

[[noreturn]] void FailConversion(const std::wstring& path) {
    Fail(path + L": " + SystemMessage(GetLastError()));
}

ExitCode RunEncode(const Arguments& arguments, Output& out) {
    const std::wstring& path = arguments.Operand(0);
    const std::string bytes = ReadInput(path);
    const int compress = arguments.Has(L"compress") ? 1 : 0;
    const int64_t size = UtilConvertBLOBToString(bytes.data(), bytes.size(), nullptr, 0, compress);
    if (size < 0) FailConversion(path);
    std::wstring text(static_cast<size_t>(size), L'\0');
    if (UtilConvertBLOBToString(bytes.data(), bytes.size(), text.data(), text.size(), compress) < 0)
        FailConversion(path);
    text.pop_back(); // the terminator
    if (arguments.HasOperand(1))
        WriteBinaryFile(arguments.Operand(1), BytesOf(text, CP_UTF8));
    else
        out.Line(text);
    return kExitSuccess;
}

ExitCode RunDecode(const Arguments& arguments, Output&) {
    const std::wstring& path = arguments.Operand(0);
    const std::wstring text = TextOf(ReadTextFile(path, SIZE_MAX), CP_ACP);
    const int64_t size = UtilConvertStringToBLOB(text.c_str(), nullptr, 0);
    if (size < 0) FailConversion(path);
    if (size == 0 && text.find_first_not_of(L" \t\r\n") != std::wstring::npos)
        Fail(path + L": the text is damaged, or no text of an encoded file");
    std::string bytes(static_cast<size_t>(size), '\0');
    if (UtilConvertStringToBLOB(text.c_str(), bytes.data(), bytes.size()) < 0) FailConversion(path);
    WriteBinaryFile(arguments.Operand(1), bytes);
    return kExitSuccess;
}

constexpr Option kEncodeOptions[] = {{L"compress", nullptr, L"compress the file first"}};

} // namespace

Command EncodeCommand() {
    return {
        .name = L"encode",
        .summary = L"Convert a file to one line of text",
        .operands = L"FILE [OUT]",
        .help =
            L"The text is Base64; that of a compressed file begins with \"@2@\". It is printed, or written\n"
            L"to OUT, which is replaced if it exists. Files may have up to 4 GB. If FILE is \"-\", standard\n"
            L"input is read.",
        .options = kEncodeOptions,
        .run = RunEncode,
    };
}

Command DecodeCommand() {
    return {
        .name = L"decode",
        .summary = L"Convert the text of a file back to the file",
        .operands = L"FILE OUT",
        .help =
            L"FILE contains text of 'vlm encode', compressed or not, in any encoding; if it is \"-\", "
            L"standard\n"
            L"input is read. White space between groups of four symbols does no harm. OUT is replaced if it\n"
            L"exists.",
        .run = RunDecode,
    };
}

} // namespace vlm
