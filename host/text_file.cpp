#include "host/text_file.h"

#include "host/binary_file.h"
#include "host/text.h"

#include <algorithm>

namespace vlm {

namespace {

struct EncodingMark {
    std::string_view bytes;
    Encoding encoding;
};
constexpr EncodingMark kMarks[] = {
    {"\xEF\xBB\xBF", Encoding::kUtf8},
    {"\xFF\xFE", Encoding::kUtf16LittleEndian},
    {"\xFE\xFF", Encoding::kUtf16BigEndian},
};

struct EncodingWords {
    Encoding encoding;
    const wchar_t* words;
    // How it was recognised if the file has no mark.
    const wchar_t* reason;
};
constexpr EncodingWords kEncodingWords[] = {
    {Encoding::kEmpty, L"empty", L""},
    {Encoding::kAscii, L"ASCII", L""},
    {Encoding::kUtf8, L"UTF-8", L", valid throughout"},
    {Encoding::kUtf16LittleEndian, L"UTF-16, little-endian", L", likely from its contents"},
    {Encoding::kUtf16BigEndian, L"UTF-16, big-endian", L", likely from its contents"},
    {Encoding::kNarrow, L"narrow", L", of an unknown code page"},
    {Encoding::kBinary, L"binary", L", contains zero bytes"},
};

// The tests of IsTextUnicode that the beginning of the bytes passes. The result of the call itself is 0 for
// all text in reversed byte order.
int PassedTests(const std::string& bytes, int tests) {
    const int count = static_cast<int>(std::min(bytes.size(), size_t{64} * 1024));
    const bool isUnicode = IsTextUnicode(bytes.data(), count, &tests) != 0;
    return isUnicode || (tests & IS_TEXT_UNICODE_REVERSE_MASK) ? tests : 0;
}

// UTF-16 text contains zero bytes, but no zero unit.
bool HasZeroUnit(const std::string& bytes) {
    for (size_t index = 0; index + 1 < bytes.size(); index += 2)
        if (!bytes[index] && !bytes[index + 1]) return true;
    return false;
}

// Of all text, only UTF-16 contains zero bytes.
Encoding EncodingOfZeroBytes(const std::string& bytes) {
    if (HasZeroUnit(bytes)) return Encoding::kBinary;
    if (PassedTests(bytes, IS_TEXT_UNICODE_UNICODE_MASK)) return Encoding::kUtf16LittleEndian;
    if (PassedTests(bytes, IS_TEXT_UNICODE_REVERSE_MASK)) return Encoding::kUtf16BigEndian;
    return Encoding::kBinary;
}

// Without a UTF-8 sequence that the end of the read cut in two.
std::string_view WithoutCutSequence(const TextFile& file) {
    std::string_view bytes = file.bytes;
    for (int count = 0; file.isCut && count < 4 && !bytes.empty(); ++count) {
        const unsigned char last = bytes.back();
        if (last < 0x80) break;
        bytes.remove_suffix(1);
        if (last >= 0xC0) break;
    }
    return bytes;
}

Encoding EncodingOfUnmarked(const TextFile& file) {
    const std::string& bytes = file.bytes;
    if (bytes.empty()) return Encoding::kEmpty;
    if (bytes.find('\0') != std::string::npos) return EncodingOfZeroBytes(bytes);
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte < 0x80; }))
        return Encoding::kAscii;
    return IsStrictUtf8(WithoutCutSequence(file)) ? Encoding::kUtf8 : Encoding::kNarrow;
}

std::wstring TextOfUtf16(const std::string& bytes, bool isBigEndian) {
    std::wstring text(bytes.size() / 2, L'\0');
    for (size_t index = 0; index < text.size(); ++index) {
        const unsigned char first = bytes[2 * index];
        const unsigned char second = bytes[2 * index + 1];
        text[index] = static_cast<wchar_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

} // namespace

TextFile ReadTextFile(const std::wstring& path, size_t maximumBytes) {
    TextFile file;
    file.bytes = ReadInput(path, maximumBytes);
    file.isCut = file.bytes.size() >= maximumBytes;
    for (const EncodingMark& mark : kMarks) {
        if (!file.bytes.starts_with(mark.bytes)) continue;
        file.bytes.erase(0, mark.bytes.size());
        file.encoding = mark.encoding;
        file.hasMark = true;
        return file;
    }
    file.encoding = EncodingOfUnmarked(file);
    return file;
}

std::wstring TextOf(const TextFile& file, UINT codePage) {
    switch (file.encoding) {
        case Encoding::kUtf16LittleEndian:
        case Encoding::kUtf16BigEndian:
            return TextOfUtf16(file.bytes, file.encoding == Encoding::kUtf16BigEndian);
        case Encoding::kUtf8:
            return WideOf(file.bytes, CP_UTF8);
        default:
            return WideOf(file.bytes, codePage);
    }
}

std::wstring Describe(const TextFile& file) {
    for (const EncodingWords& row : kEncodingWords)
        if (row.encoding == file.encoding)
            return std::wstring(row.words) + (file.hasMark ? L", by its mark" : row.reason);
    return {};
}

} // namespace vlm
