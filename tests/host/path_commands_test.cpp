#include "tests/host/vlm_fixture.h"

namespace vlm::test {

namespace {
using PathCommands = VlmTest;
} // namespace

TEST_F(PathCommands, PrintTheResultsOfTheLibrary) {
    SetEnvironmentVariableW(L"VLM_TEST_FOLDER", L"C:\\\u00E4");
    Expect({
        {L"path split C:\\data\\\u00E4.tar.gz", 0,
         "Drive                 C:\nDirectory             \\data\\\n"
         "Name                  \xC3\xA4.tar\nExtension             .gz\n"},
        {L"path split C:\\" + std::wstring(300, L'n'), 1, "", "a part is too long"},
        {L"path merge C \\data name txt", 0, "C:\\data\\name.txt\n"},
        {L"path full C:\\a\\..\\b\\.\\c.txt", 0, "C:\\b\\c.txt\n"},
        {L"path kind COM3:", 0, "serial port\n"},
        {L"path kind none.txt", 1, "", "none.txt: "},
        {L"path volume Q:\\nonsense\\", 1, "", "cannot query the volume"},
        {L"path tokens %VLM_TEST_FOLDER%\\x", 0, "C:\\\xC3\xA4\\x\n"},
    });
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Path length limit     260\n", Run(L"path volume C:\\").out);
}

} // namespace vlm::test
