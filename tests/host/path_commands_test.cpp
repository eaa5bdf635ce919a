#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {
using PathCommands = VlmTest;
} // namespace

TEST_F(PathCommands, NamesAreTakenApartAndBuilt) {
    Expect({
        {L"path split C:\\data\\\u00E4.tar.gz", 0,
         "Drive                 C:\nDirectory             \\data\\\n"
         "Name                  \xC3\xA4.tar\nExtension             .gz\n"},
        {L"path split name", 0, "Drive\nDirectory\nName                  name\nExtension\n"},
        {L"path split C:\\" + std::wstring(300, L'n'), 1, "", "a part is too long"},
        {L"path merge C \\data name txt", 0, "C:\\data\\name.txt\n"},
        {L"path merge \"\" \"\" name", 0, "name\n"},
        {L"path merge C: " + std::wstring(300, L'd') + L" n", 1, "", "a part is too long"},
        {L"path full C:\\a\\..\\b\\.\\c.txt", 0, "C:\\b\\c.txt\n"},
    });
}

TEST_F(PathCommands, KindTellsWhatIsThere) {
    WriteFile(L"LPT1.txt", "x");
    WriteFile(L"COMfile", "x");
    Expect({
        {L"path kind LPT1.txt", 0, "file\n"},
        {L"path kind COMfile", 0, "file\n"},
        {L"path kind .", 0, "directory\n"},
        {L"path kind lpt12:", 0, "printer port\n"},
        {L"path kind COM3:", 0, "serial port\n"},
        {L"path kind USB:printer", 0, "USB port\n"},
        {L"path kind COM:", 1, "", "COM:: "},
        {L"path kind none.txt", 1, "", "none.txt: "},
    });
}

TEST_F(PathCommands, VolumesAndTokens) {
    const Answer volume = Run(L"path volume C:\\");
    EXPECT_EQ(volume.exitCode, 0) << volume.errors;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Units of a path       260\n", volume.out);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Long names            yes\n", volume.out);
    SetEnvironmentVariableW(L"VLM_TEST_FOLDER", L"C:\\\u00E4");
    Expect({
        {L"path volume Q:\\nonsense\\", 1, "", "the volume cannot be asked"},
        {L"path tokens %VLM_TEST_FOLDER%\\x", 0, "C:\\\xC3\xA4\\x\n"},
        {L"path tokens %VLM_NO_SUCH_NAME%\\x", 0, "%VLM_NO_SUCH_NAME%\\x\n"},
    });
    EXPECT_NE(Run(L"path tokens %PERSONAL%").out, "%PERSONAL%\n");
}

} // namespace vlm::test
