#include "files/debug_log.h"

#include "base/owners.h"
#include "files/path.h"
#include "tests/support/child_process.h"
#include "tests/support/import_table.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "text/settings.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>
#include <thread>
#include <tuple>

namespace vxut {
namespace {

class DebugLogTest : public testing::Test {
protected:
    std::wstring Content() const {
        const std::string bytes = folder.Get(L"debug.log");
        return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
    }

    const test::FreshFolder folder;
    const String path = folder.At(L"debug.log");
    clsDebugLogFile log{path, false};
};

TEST_F(DebugLogTest, AppendsWideLinesAndKeepsThoseThatFindNoTurn) {
    folder.Put(L"debug.log", std::string("b\0", 2));
    clsAutoCloseFile held(
        CreateFileW(path.Text(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const ULONGLONG start = GetTickCount64();
    log.Write(L"\u00E4\u20AC");
    EXPECT_GE(GetTickCount64() - start, 80u); // the limit of 100, less the clock's steps
    log.Write(L"");
    held.Reset();
    log.Write(L"three");
    EXPECT_EQ(Content(), L"b\u00E4\u20AC\r\n\r\nthree\r\n");
}

// Some lines wait for their turn, the others are kept at once.
TEST_F(DebugLogTest, WaitsForAHeldFileAFewTimesOnly) {
    constexpr size_t kLines = 50;
    std::wstring expected;
    clsAutoCloseFile held(
        CreateFileW(path.Text(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const test::CallCount<decltype(::Sleep)> pauses("Sleep");
    size_t waits = 0;
    for (size_t i = 0; i < kLines; ++i) {
        const unsigned before = pauses.Calls();
        expected += std::to_wstring(i) + L"\r\n";
        log.Write(std::to_wstring(i).c_str());
        waits += pauses.Calls() != before;
    }
    EXPECT_GT(waits, 0u);
    EXPECT_LT(waits, kLines / 2); // five, and one more after each rest on a slow machine
    held.Reset();
    log.Finish();
    EXPECT_EQ(Content(), expected);
}

TEST_F(DebugLogTest, ReadsItsSettings) {
    test::RegistryScope name(kSettingDebugLogFilename);
    test::RegistryScope flush(kSettingDebugLogFileFlush);
    const std::tuple<const wchar_t*, const wchar_t*, String, bool> rows[] = {
        {L"", L"T", L"", true},
        {path.Text(), L"TRUE", path, true},
        {path.Text(), L"t", path, false},
        {L"vxut-test.log", L"F", TempDirectory(true) + L"vxut-test.log", false},
        {L"sub\\vxut.log", L"F", L"sub\\vxut.log", false},
    };
    for (const auto& [setName, setFlush, logPath, isFlushed] : rows) {
        name.SetText(setName);
        flush.SetText(setFlush);
        log.ReadSettings();
        EXPECT_EQ(log.Name(), logPath) << setName;
        EXPECT_EQ(log.IsFlushed(), isFlushed) << setFlush;
    }
}

// Every line of each thread of each process arrives whole, and in the order in which the thread wrote it.
TEST_F(DebugLogTest, LosesAndTearsNoLineOfManyProcesses) {
    constexpr size_t kProcesses = 4;
    test::RegistryScope name(kSettingDebugLogFilename);
    name.SetText(path.Text());
    std::vector<std::thread> runners;
    for (size_t i = 0; i < kProcesses; ++i)
        runners.emplace_back([] { EXPECT_EQ(test::RunChild(L"trace-lines").exitCode, 0); });
    for (std::thread& runner : runners) runner.join();

    const std::wregex layout(L"CHILD   : [0-9:.]+ ([0-9a-f]{8})/.. \\d  line (\\d+) (\\d+) of (\\d+)\r");
    std::map<std::wstring, int> nextOf;
    std::wistringstream content(Content());
    for (std::wstring line; std::getline(content, line);) {
        std::wsmatch match;
        ASSERT_TRUE(std::regex_match(line, match, layout)) << String(line.c_str()).Narrow();
        int& next = nextOf[match[4].str() + match[1].str()];
        ASSERT_EQ(std::stoi(match[2]), next);
        ASSERT_EQ(match[3].length(), 20 + next++);
    }
    EXPECT_EQ(nextOf.size(), kProcesses * 3);
    for (const auto& [thread, next] : nextOf) EXPECT_EQ(next, 100);
}

} // namespace
} // namespace vxut
