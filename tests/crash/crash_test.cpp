// Processes that really crash: vxut_crash_child dies of each class of fault, in each place and condition.
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

namespace vxut::test {
namespace {

struct Crash {
    const wchar_t* arguments; // the class, the place and conditions
    uint32_t exitCode;
    const wchar_t* title; // in the log; null: there is no log
    const char* members;  // of the archive, with a blank behind each; null: there is no archive
};

// Milliseconds after which a crash counts as hanging, also on a machine that is loaded many times over.
// Without load each ends within 30 s.
constexpr ULONGLONG kPatience = 150'000;

constexpr char kPacked[] = "velmora64.dmp trcwin.log ";
constexpr uint32_t kAccess = 0xC0000005;
constexpr wchar_t kAccessTitle[] = L"0xc0000005 (Access Violation)";

const Crash kCrashes[] = {
    {L"read", kAccess, kAccessTitle, kPacked},
    {L"write", kAccess, kAccessTitle, kPacked},
    {L"execute", kAccess, kAccessTitle, kPacked},
    {L"execute-null", kAccess, kAccessTitle, kPacked},
    {L"divide", 0xC0000094, L"0xc0000094 (Integer Division by Zero)", kPacked},
    {L"illegal", 0xC000001D, L"0xc000001d (Illegal Instruction Encountered)", kPacked},
    {L"privileged", 0xC0000096, L"0xc0000096 (Privileged Instruction Encountered)", kPacked},
    {L"noncontinuable", 0xC0000025, L"0xc0000025 (Noncontinuable Exception)", kPacked},
    {L"heap", 0xC0000374, L"0xc0000374 ()", kPacked},
    {L"breakpoint", 0, nullptr, nullptr},
    {L"application", 0xE06D7363, nullptr, nullptr},
    {L"fast-fail", 0xC0000409, nullptr, nullptr},
    {L"overflow main stack-reserve", 0xC00000FD, L"0xc00000fd (Stack Overflow)", kPacked},
    {L"abort main hooks", 3, L"0x40000015 (abort)", kPacked},
    {L"terminate main hooks", 3, L"0x40000015 (std::terminate)", kPacked},
    {L"pure main hooks", 3, L"0x40000015 (Pure virtual call)", kPacked},
    {L"invalid main hooks", 0xC0000417, L"0xc0000417 (Invalid parameter)", kPacked},
    {L"abort", 3, nullptr, nullptr},
    {L"read thread", kAccess, kAccessTitle, kPacked},
    {L"read unprotected", kAccess, nullptr, nullptr},
    {L"read unprotected previous-filter opened-twice", 77, nullptr, nullptr},
    {L"read window", kAccess, kAccessTitle, kPacked},
    {L"read callback", kAccess, kAccessTitle, kPacked},
    {L"read two", kAccess, kAccessTitle, kPacked},
    {L"read main ended", kAccess, nullptr, nullptr},
    {L"read main disabled", kAccess, nullptr, nullptr},
    {L"read main denied", kAccess, kAccessTitle, kPacked}, // a short report does not read the setting
    {L"execute main denied", kAccess, nullptr, nullptr},
    {L"read main trace-ring", kAccess, kAccessTitle, "velmora64.dmp trcwin.log trace.log "},
    {L"read main companion-absent", kAccess, kAccessTitle, ""},
    {L"read main companion-absent pack-always", kAccess, kAccessTitle, kPacked},
    {L"read main companion-aborts", kAccess, kAccessTitle, ""},
    {L"read main companion-faults", kAccess, kAccessTitle, ""},
    {L"read main engine-locked", kAccess, kAccessTitle, nullptr},
    {L"read main loader-locked", kAccess, kAccessTitle, kPacked},
    {L"read main loader-locked-elsewhere", kAccess, kAccessTitle, nullptr},
    {L"read main heap-locked", kAccess, kAccessTitle, nullptr},
    {L"read main no-temp", kAccess, kAccessTitle, nullptr},
};

std::wstring LogOf(const FreshFolder& folder) {
    const std::string bytes = folder.Get(L"VELMORA.LOG");
    return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t)};
}

class CrashTest : public testing::TestWithParam<Crash> {
protected:
    ChildResult Die(const std::wstring& arguments) {
        return RunChild(folder_.Path().Left(folder_.Path().Length() - 1).Text() + (L" " + arguments),
                        L"vxut_crash_child");
    }
    std::string ArchiveMembers() const {
        std::string names;
        for (const ZipMember& member : ReadZip(folder_.Get(L"Velmora\\Velmora.dmp.zip")).members)
            names += member.name + ' ';
        return names;
    }

    FreshFolder folder_;
};

TEST_P(CrashTest, EndsWithItsCodeAndLeavesItsReport) {
    const Crash& crash = GetParam();
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(static_cast<uint32_t>(Die(crash.arguments).exitCode), crash.exitCode);
    EXPECT_LE(GetTickCount64() - start, kPatience);
    const bool hasLog = folder_.Get(L"VELMORA.LOG") != "(no file)";
    EXPECT_EQ(hasLog, crash.title != nullptr);
    if (crash.title) {
        const std::wstring log = LogOf(folder_);
        EXPECT_NE(log.find(std::wstring(L"VXUT_CRASH_CHILD.EXE Exception code: ") + crash.title + L"\r\n"),
                  std::wstring::npos);
        EXPECT_NE(log.find(L"<<<========================= "), std::wstring::npos);
        EXPECT_NE(log.find(crash.members ? L"The information for the support was generated.\r\n"
                                         : L"The exception information was written to the file '"),
                  std::wstring::npos);
    }
    const bool hasArchive = folder_.Get(L"Velmora\\Velmora.dmp.zip") != "(no file)";
    ASSERT_EQ(hasArchive, crash.members != nullptr);
    if (hasArchive) {
        EXPECT_EQ(ArchiveMembers(), crash.members);
    }
}

std::string NameOf(const testing::TestParamInfo<Crash>& crash) {
    std::string name;
    for (const wchar_t* unit = crash.param.arguments; *unit; ++unit)
        name += (*unit >= L'a' && *unit <= L'z') ? static_cast<char>(*unit) : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Classes, CrashTest, testing::ValuesIn(kCrashes), NameOf);

// The full report: modules with versions, the frames from the fault on, parameters.
TEST_F(CrashTest, FullReportHasModulesAndStack) {
    Die(L"execute");
    const std::wstring log = LogOf(folder_);
    for (const wchar_t* text : {L" List of Modules:\r\n", L": vxut21.dll           21.1.0.0 ",
                                L" Stack Trace:\r\n", L"] vxut_crash_child!main + 0x", L"main.cpp, line ",
                                L"        param(count)=", L"    =========================\r\n"}) {
        EXPECT_NE(log.find(text), std::wstring::npos) << text;
    }
}

// The lines before the report are kept, not those of the report.
TEST_F(CrashTest, TraceRingHasTheLastLines) {
    Die(L"read main trace-ring");
    const ZipArchive archive = ReadZip(folder_.Get(L"Velmora\\Velmora.dmp.zip"));
    const std::string& bytes = archive.members.back().content;
    const std::wstring trace(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
    EXPECT_EQ(std::count(trace.begin(), trace.end(), L'\n'), 8);
    EXPECT_TRUE(trace.ends_with(L"line 19 of wide and narrow\r\n")) << trace;
}

// A user who answers "no" to both boxes. Nobody is asked twice.
TEST_F(CrashTest, AsksTheUser) {
    std::atomic<bool> isOver{false};
    int boxes = 0;
    std::thread user([&] {
        for (; !isOver; Sleep(50)) {
            const HWND box = FindWindowW(L"#32770", L"Integer Division by Zero");
            const HWND yes = box ? GetDlgItem(box, IDYES) : nullptr;
            if (!yes) continue;
            PostMessageW(box, WM_COMMAND, boxes++ == 0 ? IDYES : IDNO, 0);
            while (IsWindow(box) && !isOver) Sleep(50);
        }
    });
    EXPECT_EQ(static_cast<uint32_t>(Die(L"divide main interactive").exitCode), 0xC0000094u);
    isOver = true;
    user.join();
    EXPECT_EQ(boxes, 2);
    EXPECT_EQ(ArchiveMembers(), kPacked);
}

} // namespace
} // namespace vxut::test
