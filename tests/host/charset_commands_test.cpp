#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {
using CharsetCommands = VlmTest;
} // namespace

TEST_F(CharsetCommands, FilesAreRecognisedByMarkOrContentsAndTextsByTheirScripts) {
    const std::pair<std::string, std::string> rows[] = {
        {"\xFF\xFE", "UTF-16, little-endian, by its mark"},
        {"\xC3\xA4\xE6\x97\xA5", "UTF-8, valid throughout"},
        {"\xC3\xA4\xE6\x97", "narrow, of an unknown code page"},
        {std::string("a\0\1\0\0\0\0\0b\0\0c", 12), "binary, contains zero bytes"},
    };
    for (const auto& [bytes, printed] : rows) {
        WriteFile(L"a.txt", bytes);
        Expect({L"charset file a.txt", 0, printed + "\n"});
    }
    WriteFile(L"cyrillic.txt", "\xE4");
    Expect({
        {L"charset file none.txt", 1, "", "none.txt: "},
        {L"charset text \u65E5\u672C --encoding 932", 0, "128 SHIFTJIS_CHARSET (Japanese)\n"},
        {L"charset text --file cyrillic.txt --encoding 1251", 0, "204 RUSSIAN_CHARSET (Cyrillic)\n"},
    });
}

} // namespace vlm::test
