#include "tests/host/vlm_fixture.h"

#include <chrono>

namespace vlm::test {

namespace {

class TempCommand : public VlmTest {
protected:
    void SetUp() override {
        VlmTest::SetUp();
        for (const wchar_t* name : {L"TMP", L"TEMP"}) SetEnvironmentVariableW(name, Folder().c_str());
    }
    void TearDown() override {
        for (const wchar_t* name : {L"TMP", L"TEMP"})
            SetEnvironmentVariableW(name, Folder().parent_path().c_str());
        VlmTest::TearDown();
    }
    void Put(const wchar_t* name, const std::string& bytes, int minutesAgo) const {
        const auto path = Folder() / L"Velmora" / name;
        WriteFile(std::wstring(L"Velmora\\") + name, bytes);
        last_write_time(path,
                        std::filesystem::file_time_type::clock::now() - std::chrono::minutes(minutesAgo));
    }
};

} // namespace

TEST_F(TempCommand, ShowsWhatASweepWouldTake) {
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Sweep                 none: the folder does not exist\n",
                        Run(L"temp").out);
    create_directories(Folder() / L"Velmora");
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Last activity         none\nSweep                 due\n",
                        Run(L"temp").out);
    Put(L"_21_old.tmp", "12345", 62);
    Put(L"_21_new.tmp", "", 58);
    Put(L"_20_old.tmp", "", 300);
    Put(L"_21_b.SIGNAL", "", 300);
    Put(L"_21_activity.signal", std::string("o\0k\0\x1B\0", 6) + std::string(100'000, 'x'), 179);
    const std::string out = Run(L"temp").out;
    EXPECT_LT(out.size(), 2000u) << "an activity file of any size";
    for (const char* part : {"Time stamp            ok\xE2\x90\x9B", "Sweep                 not due: ",
                             "Files                 2\nA sweep would take    1\n", "Z  _21_old.tmp  5\n"})
        EXPECT_PRED_FORMAT2(testing::IsSubstring, part, out);
    Put(L"_21_activity.signal", "", 181);
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "Sweep                 due\n", Run(L"temp").out);
    EXPECT_TRUE(IsThere(L"Velmora\\_21_old.tmp"));
}

} // namespace vlm::test
