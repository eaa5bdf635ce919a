#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {

using CharsetCommands = VlmTest;

std::string Utf16(const std::wstring& text, bool isBigEndian) {
    std::string bytes;
    for (const wchar_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

} // namespace

TEST_F(CharsetCommands, FileIsToldByMarkOrContents) {
    const std::wstring letter =
        L"Dear all,\r\nthis is a letter of some length, so that statistics say something.\r\n";
    const struct {
        std::string bytes;
        const char* told;
    } rows[] = {
        {"", "empty"},
        {"plain", "ASCII"},
        {"\xEF\xBB\xBF", "UTF-8, by its mark"},
        {"\xEF\xBB\xBF\xFF", "UTF-8, by its mark"},
        {"\xFF\xFE", "UTF-16, little-endian, by its mark"},
        {"\xFE\xFF\x20\x20", "UTF-16, big-endian, by its mark"},
        {"\xC3\xA4\xE6\x97\xA5", "UTF-8, valid throughout"},
        {"\xC3\xA4\xE6\x97", "narrow, of a code page that the file does not tell"},
        {"\xC0\x80", "narrow, of a code page that the file does not tell"},
        {std::string("a\0\1\0\0\0\0\0b\0\0c", 12), "binary, it holds zero bytes"},
        {Utf16(letter, false), "UTF-16, little-endian, likely from its contents"},
        {Utf16(letter, true), "UTF-16, big-endian, likely from its contents"},
    };
    for (const auto& row : rows) {
        WriteFile(L"a.txt", row.bytes);
        Expect({L"charset file a.txt", 0, std::string(row.told) + "\n"});
    }
    Expect({L"charset file none.txt", 1, "", "none.txt: "});
}

TEST_F(CharsetCommands, TextIsJudgedByItsScripts) {
    WriteFile(L"cyrillic.txt", "\xE4");
    WriteFile(L"greek.txt", std::string("\xFF\xFE") + Utf16(L"\u03B1", false));
    Expect({
        {L"charset text abc", 0, "0 ANSI_CHARSET (any font)\n"},
        {L"charset text \u03B1\u03B2", 0, "161 GREEK_CHARSET (Greek)\n"},
        {L"charset text \u65E5\u672C --encoding 932", 0, "128 SHIFTJIS_CHARSET (Japanese)\n"},
        {L"charset text \u65E5\u672C --encoding 936", 0, "134 GB2312_CHARSET (Chinese, simplified)\n"},
        {L"charset text --file greek.txt", 0, "161 GREEK_CHARSET (Greek)\n"},
        {L"charset text --file cyrillic.txt --encoding 1251", 0, "204 RUSSIAN_CHARSET (Cyrillic)\n"},
        {L"charset text abc --file greek.txt", 2, "", "either a text or a file"},
    });
}

} // namespace vlm::test
