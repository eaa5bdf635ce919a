#include "files/debug_log.h"

#include "diagnostics/standard_sinks.h"
#include "files/path.h"
#include "frame/owners.h"
#include "frame/settings.h"
#include "tests/support/child_process.h"
#include "tests/support/fake_viewer.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "util/debug.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>
#include <thread>

namespace vxut {
namespace {

class DebugLogTest : public testing::Test {
protected:
    std::wstring Content() const {
        const std::string bytes = folder.Get(L"debug.log");
        return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
    }
    // The file in other hands.
    clsAutoCloseFile Hold() const {
        return clsAutoCloseFile(
            CreateFileW(path.Text(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    const test::FreshFolder folder;
    const String path = folder.At(L"debug.log");
    clsDebugLogFile log{path, false};
};

TEST_F(DebugLogTest, AppendsWideLines) {
    folder.Put(L"debug.log", std::string("b\0", 2));
    log.Write(L"\u00E4\u20AC");
    log.Write(L"");
    clsDebugLogFile(path, true).Write(L"flushed");
    EXPECT_EQ(Content(), L"b\u00E4\u20AC\r\n\r\nflushed\r\n");
}

TEST_F(DebugLogTest, LeavesTheFileToOthersBetweenLines) {
    log.Write(L"one");
    EXPECT_TRUE(Hold());
    const clsAutoCloseFile reader(CreateFileW(path.Text(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    log.Write(L"two"); // while somebody reads
    EXPECT_EQ(Content(), L"one\r\ntwo\r\n");
}

TEST_F(DebugLogTest, WaitsForItsTurn) {
    clsAutoCloseFile held = Hold();
    std::thread other([&] {
        Sleep(30);
        held.Reset();
    });
    log.Write(L"line");
    other.join();
    EXPECT_EQ(Content(), L"line\r\n");
}

TEST_F(DebugLogTest, KeepsLinesThatFindNoTurn) {
    clsAutoCloseFile held = Hold();
    const ULONGLONG start = GetTickCount64();
    log.Write(L"one");
    log.Write(L"two");
    const ULONGLONG elapsed = GetTickCount64() - start;
    EXPECT_GE(elapsed, 160u); // two limits of 100, less the clock's steps
    EXPECT_LT(elapsed, 2000u);
    held.Reset();
    log.Write(L"three");
    EXPECT_EQ(Content(), L"one\r\ntwo\r\nthree\r\n");
    held = Hold();
    log.Write(L"four");
    held.Reset();
    log.Finish();
    log.Finish();
    EXPECT_EQ(Content(), L"one\r\ntwo\r\nthree\r\nfour\r\n");
}

TEST_F(DebugLogTest, GivesUpAReservedNameAtOnce) {
    clsDebugLogFile reserved(folder.At(L"what?.log"), false);
    const ULONGLONG start = GetTickCount64();
    for (int i = 0; i < 20; ++i) reserved.Write(L"line");
    EXPECT_LT(GetTickCount64() - start, 1000u);
}

TEST_F(DebugLogTest, ReadsItsSettings) {
    test::RegistryScope name(kSettingDebugLogFilename);
    test::RegistryScope flush(kSettingDebugLogFileFlush);
    const std::wstring longFlush = L"T" + std::wstring(400, L'x');
    const struct {
        const wchar_t* name;
        const wchar_t* flush;
        String path;
        bool isFlushed;
    } rows[] = {
        {L"", L"T", L"", true},
        {path.Text(), L"TRUE", path, true},
        {path.Text(), L"t", path, false},
        {path.Text(), L"1", path, false},
        {path.Text(), L"", path, false},
        {path.Text(), longFlush.c_str(), path, true},
        {L"vxut-test.log", L"F", TempDirectory(true) + L"vxut-test.log", false},
        {L"sub\\vxut.log", L"F", L"sub\\vxut.log", false},
    };
    for (const auto& row : rows) {
        name.SetText(row.name);
        flush.SetText(row.flush);
        log.ReadSettings();
        EXPECT_EQ(log.Name(), row.path) << row.name;
        EXPECT_EQ(log.HasFile(), !row.path.IsEmpty());
        EXPECT_EQ(log.IsFlushed(), row.isFlushed) << row.flush;
    }
    name.Remove();
    flush.Remove();
    log.ReadSettings();
    EXPECT_FALSE(log.HasFile());
    EXPECT_FALSE(log.IsFlushed());
}

TEST_F(DebugLogTest, TakesTheSameLinesAsTheViewer) {
    const test::FreshViewerNames fresh;
    test::FakeViewer viewer(fresh.Get());
    clsStandardSinks sinks(fresh.Get());
    sinks.SetLog(&log);
    IclsDebugSinks* const previous = SetDebugSinks(&sinks);
    UtilDebug(L"before");
    viewer.Publish();
    UtilDebug(L"both");
    sinks.Detach();
    SetDebugSinks(previous);

    std::vector<std::string> lines;
    std::istringstream content(String(Content().c_str()).Narrow());
    for (std::string line; std::getline(content, line);) lines.push_back(line);
    const std::vector<std::string> records = viewer.Records();
    ASSERT_EQ(lines.size(), 4u); // "before", join, "both", leave
    ASSERT_EQ(records.size(), 3u);
    for (size_t i = 0; i < records.size(); ++i) EXPECT_EQ(lines[i + 1], records[i]);
}

// Every line of each thread of each process arrives whole, and in the order in which the thread wrote it.
TEST_F(DebugLogTest, LosesAndTearsNoLineOfManyProcesses) {
    constexpr size_t kProcesses = 4;
    constexpr int kLines = 250;
    SetEnvironmentVariableW(L"VXUT_TEST_LOG", path.Text());
    std::vector<std::thread> runners;
    for (size_t i = 0; i < kProcesses; ++i)
        runners.emplace_back([] { EXPECT_EQ(test::RunChild(L"fill-log").exitCode, 0); });
    for (std::thread& runner : runners) runner.join();
    SetEnvironmentVariableW(L"VXUT_TEST_LOG", nullptr);

    const std::wregex layout(L"[0-9:.]+ [0-9a-f]{8}/[0-9a-f]{2} \\d  ?<(\\d+/\\d+)/(\\d+) (\\d+)>\r");
    std::map<std::wstring, int> nextOf;
    std::wistringstream content(Content());
    for (std::wstring line; std::getline(content, line);) {
        std::wsmatch match;
        ASSERT_TRUE(std::regex_match(line, match, layout)) << String(line.c_str()).Narrow();
        int& next = nextOf[match[1]];
        ASSERT_EQ(std::stoi(match[2]), next);
        ASSERT_EQ(match[3].length(), 20 + next);
        ++next;
    }
    EXPECT_EQ(nextOf.size(), kProcesses * 3);
    for (const auto& [thread, next] : nextOf) EXPECT_EQ(next, kLines);
}

} // namespace
} // namespace vxut
