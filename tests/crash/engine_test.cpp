#include "crash/debug_help_job.h"

#include "crash/dump_archive.h"
#include "crash/frame_lines.h"
#include "crash/frame_values.h"
#include "crash/module_sources.h"
#include "crash/symbol_path.h"
#include "crash/symbol_session.h"
#include "crash/value_text.h"
#include "system/environment_policy.h"
#include "tests/support/registry_scope.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

namespace vxut {
namespace {

// One job at a time in the process.
class CrashEngineTest : public testing::Test {
protected:
    void SetUp() override { job_.Open(); }
    void TearDown() override { job_.Close(); }

    clsDBGHelpWrapperGPFProt job_;
};

TEST_F(CrashEngineTest, ListsModulesInALiveList) {
    auto list = job_.ListModules();
    ASSERT_TRUE(list);
    job_.Close(); // lists outlive their job
    ULONG count = 0;
    EXPECT_EQ(list->GetCount(&count), S_OK);
    ASSERT_GT(count, 5u);
    const DBGModuleItem* items[2] = {};
    ULONG fetched = 0;
    EXPECT_EQ(list->Next(2, items, &fetched), S_OK);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(items[0]->base, reinterpret_cast<uint64_t>(GetModuleHandleW(nullptr)));
    EXPECT_STREQ(items[0]->name, "vxut_unit_tests.exe");
    IDBGModuleList* clone = nullptr;
    ASSERT_EQ(list->Clone(&clone), S_OK);
    list->Reset();
    const DBGModuleItem* third = nullptr;
    EXPECT_EQ(clone->Next(1, &third, nullptr), S_OK); // from where its original was
    EXPECT_EQ(list->Skip(2), S_OK);
    const DBGModuleItem* original = nullptr;
    EXPECT_EQ(list->Next(1, &original, nullptr), S_OK);
    EXPECT_NE(third, original);
    EXPECT_STREQ(third->path, original->path);
    list->Skip(count);
    EXPECT_EQ(list->Next(1, &original, &fetched), S_FALSE);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(clone->Release(), 0u);
}

// All sources agree about the program.
TEST_F(CrashEngineTest, HasThreeSourcesOfModules) {
    clsRPDBGHELP library;
    LoadedModules lists[3];
    EXPECT_TRUE(ListByDebugHelp(library, GetCurrentProcess(), lists[0]));
    EXPECT_TRUE(ListBySnapshot(lists[1]));
    EXPECT_TRUE(ListByPsapi(GetCurrentProcess(), lists[2]));
    for (const LoadedModules& list : lists) {
        const scLoadedModule& program = list.get(0);
        EXPECT_EQ(program.base, reinterpret_cast<uint64_t>(GetModuleHandleW(nullptr)));
        EXPECT_EQ(program.path, PathOfModule(program.base));
        EXPECT_GT(program.size, 0u);
    }
}

TEST_F(CrashEngineTest, WalksTheCallersStackAsTheOptionsSay) {
    const auto all = job_.WalkStack(nullptr);
    ASSERT_TRUE(all);
    ULONG count = 0;
    all->GetCount(&count);
    ASSERT_GT(count, 5u);
    const DBGStackTraceItem* frame = nullptr;
    all->Next(1, &frame, nullptr);
    EXPECT_EQ(frame->size, sizeof *frame);
    EXPECT_EQ(frame->isCall, 0);
    EXPECT_STREQ(frame->module, "vxut_unit_tests");

    job_.SetOption(UTIL_DEBUGHELP_MOST_FRAMES, 3);
    job_.SetOption(UTIL_DEBUGHELP_FRAME_MODE, 0);
    for (const uint32_t thread : {0u, 1u}) {
        job_.SetOption(UTIL_DEBUGHELP_USE_THREAD, thread);
        const auto quick = job_.WalkStack(nullptr);
        ASSERT_TRUE(quick);
        quick->GetCount(&count);
        EXPECT_EQ(count, 3u);
        quick->Next(1, &frame, nullptr);
        EXPECT_EQ(frame->isCall, 1);
        EXPECT_EQ(frame->moduleBase, reinterpret_cast<uint64_t>(GetModuleHandleW(nullptr)));
        EXPECT_TRUE(std::strstr(frame->module, "\\vxut_unit_tests.exe"));
    }
    job_.SetOption(UTIL_DEBUGHELP_FRAME_MODE,
                   UTIL_DEBUGHELP_FRAME_ARGUMENTS | UTIL_DEBUGHELP_FRAME_OWN_THREAD);
    EXPECT_TRUE(job_.WalkStack(nullptr));
    job_.SetOption(UTIL_DEBUGHELP_MOST_FRAMES, 0);
    EXPECT_EQ(job_.WalkStack(nullptr)->Next(1, &frame, nullptr), S_FALSE);
}

// The second job fails after five seconds, here or on another thread, and leaves the first alone.
TEST_F(CrashEngineTest, HasOneJobAtATime) {
    const auto tryAnother = [] {
        const ULONGLONG start = GetTickCount64();
        clsDBGHelpWrapperGPFProt other;
        other.Open();
        EXPECT_GE(GetTickCount64() - start, 4900u);
        EXPECT_FALSE(other.ListModules());
        EXPECT_FALSE(other.WalkStack(nullptr));
        EXPECT_FALSE(other.WriteMiniDump(L"nothing.dmp", nullptr));
    };
    std::thread elsewhere(tryAnother);
    tryAnother();
    elsewhere.join();
    std::thread([] { EXPECT_FALSE(DebugHelpThreadingSection().TryEnter()); }).join();
    EXPECT_TRUE(job_.ListModules());
}

void SetAge(const String& path, int seconds) {
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    ULARGE_INTEGER ticks = {{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart -= static_cast<uint64_t>(seconds) * 10'000'000;
    time = {ticks.LowPart, ticks.HighPart};
    const clsAutoCloseFile file(
        CreateFileW(path.Text(), FILE_WRITE_ATTRIBUTES, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    SetFileTime(file.Get(), nullptr, nullptr, &time);
}

// Without an exception, under a name of the caller's. Of the logs, the one that is nine minutes old is
// packed.
TEST_F(CrashEngineTest, PacksADumpWithRecentLogs) {
    const test::FreshFolder folder;
    test::RegistryScope mode(kSettingMiniDumpMode);
    mode.SetText(L"not a number");
    mode.SetNumber(0);
    SetAge(folder.Put(L"TRCWIN.LOG", "nine"), 9 * 60);
    SetAge(folder.Put(L"VELMORA.LOG", "eleven"), 11 * 60);
    const String temp = EnvironmentText(L"TEMP");
    const String data = EnvironmentText(L"APPDATA");
    const String path = folder.Path().Left(folder.Path().Length() - 1);
    SetEnvironmentVariableW(L"TEMP", path.Text());
    SetEnvironmentVariableW(L"APPDATA", path.Text());
    String name = folder.At(L"my.dmp");
    const bool isWritten = WritePackedDump(job_, name, nullptr);
    SetEnvironmentVariableW(L"TEMP", temp.Text());
    SetEnvironmentVariableW(L"APPDATA", data.Text());
    ASSERT_TRUE(isWritten);
    EXPECT_EQ(name, folder.At(L"Velmora.dmp.zip"));
    EXPECT_EQ(folder.Get(L"my.dmp"), "(no file)");
    const test::ZipArchive archive = test::ReadZip(folder.Get(L"Velmora.dmp.zip"));
    EXPECT_EQ(archive.comment, "Velmora Crash Information File");
    ASSERT_EQ(archive.members.size(), 2u);
    EXPECT_EQ(archive.members[0].comment, "DumpFile");
    EXPECT_TRUE(archive.members[0].content.starts_with("MDMP"));
    EXPECT_EQ(archive.members[1].name, "trcwin.log");
    EXPECT_EQ(archive.members[1].content, "nine");
}

TEST(SymbolPathTest, JoinsWhatIsThere) {
    EXPECT_EQ(BuildSymbolPath({}), L".");
    EXPECT_EQ(BuildSymbolPath({L"c:\\now", L"C:\\PROGRAM\\", L"c:\\s", L"c:\\t", L"c:\\win", true}),
              L".;c:\\now;C:\\PROGRAM;c:\\s;c:\\t;c:\\win;c:\\win\\system32;c:\\win\\syswow64;d:\\bin");
}

TEST(SymbolTypeTest, HasATextForEachNumber) {
    EXPECT_STREQ(SymbolTypeText(SymPdb), "PDB");
    EXPECT_STREQ(SymbolTypeText(SymVirtual), "Virtual");
    EXPECT_STREQ(SymbolTypeText(static_cast<SYM_TYPE>(9)), "-unknown-");
}

TEST(RecentLogTest, TenMinutesCount) {
    constexpr uint64_t kMinute = 600'000'000;
    EXPECT_TRUE(IsRecentLog(0, 9 * kMinute));
    EXPECT_TRUE(IsRecentLog(0, 10 * kMinute));
    EXPECT_FALSE(IsRecentLog(0, 10 * kMinute + 1));
}

TEST(FrameValuesTest, ReadsRegistersByTheirNumbers) {
    scFrameContext context = {};
    context.registers.Rax = 0x1122334455667788;
    context.registers.Rbx = 5;
    context.registers.R12 = 12;
    context.registers.Xmm0.Low = 7;
    context.isInnermost = true;
    uint64_t bits = 0;
    const uint64_t wanted[][2] = {{328, 0x1122334455667788},
                                  {17, 0x55667788},
                                  {9, 0x7788},
                                  {1, 0x88},
                                  {5, 0x77},
                                  {329, 5},
                                  {340, 12},
                                  {154, 7}};
    for (const auto& [number, value] : wanted) {
        EXPECT_TRUE(ReadRegister(context, static_cast<uint32_t>(number), bits)) << number;
        EXPECT_EQ(bits, value) << number;
    }
    EXPECT_FALSE(ReadRegister(context, 9999, bits));
    context.isInnermost = false; // the callees may have changed them
    EXPECT_FALSE(ReadRegister(context, 328, bits));
    EXPECT_FALSE(ReadRegister(context, 154, bits));
    EXPECT_TRUE(ReadRegister(context, 329, bits));
}

TEST(FrameValuesTest, FillsMissingParametersFromTheStack) {
    const uint64_t stack[] = {0, 0, 0x1111111122222222, 0x3333333344444444, 0x55};
    DBGStackTraceItem frame = {};
    frame.valueCount = 4;
    frame.values[0].type = kValueUnsigned32;
    frame.values[1].type = kValueUnsigned64;
    frame.values[2].isFilled = 1;
    frame.values[3].isLocal = 1;
    FillFromArguments(reinterpret_cast<uint64_t>(stack), frame);
    EXPECT_EQ(frame.values[0].value.bits, 0x22222222u);
    EXPECT_EQ(frame.values[1].value.bits, 0x3333333344444444u);
    EXPECT_EQ(frame.values[2].value.bits, 0u);
    EXPECT_FALSE(frame.values[3].isFilled);
    FillFromArguments(16, frame); // unreadable
}

TEST(FrameValuesTest, MapsBasicTypes) {
    EXPECT_EQ(ValueTypeOf(kBasicUInt, 4), kValueUnsigned32);
    EXPECT_EQ(ValueTypeOf(kBasicULong, 8), kValueUnsigned64);
    EXPECT_EQ(ValueTypeOf(kBasicInt, 2), kValueSigned64);
    EXPECT_EQ(ValueTypeOf(kBasicFloat, 4), kValueDouble);
    EXPECT_EQ(ValueTypeOf(kBasicHresult, 4), kValueOther);
    EXPECT_STREQ(BasicTypeName(kBasicWChar), L"WChar");
    EXPECT_STREQ(BasicTypeName(99), L"unknown type");
}

DBGStackTraceValue Value(uint32_t type, uint64_t bits) {
    DBGStackTraceValue value = {};
    value.type = type;
    value.value.bits = bits;
    return value;
}

std::wstring TextOf(const DBGStackTraceValue& value) {
    wchar_t text[kValueTextUnits];
    FormatValue(value, text);
    return text;
}

TEST(ValueTextTest, EachTypeHasItsForm) {
    DBGStackTraceValue number = Value(4, 0);
    number.value.floating = 1.5;
    EXPECT_EQ(TextOf(Value(0, 0xFFFFFFFFFFFFFFFF)), L"4294967295=0xffffffff");
    EXPECT_EQ(TextOf(Value(1, 10)), L"10=0x000000000000000a");
    EXPECT_EQ(TextOf(Value(2, 65)), L"65");
    EXPECT_EQ(TextOf(Value(3, static_cast<uint64_t>(-5))), L"-5");
    EXPECT_EQ(TextOf(number), L"1.5");
    EXPECT_EQ(TextOf(Value(8, 0x10)), L"0x0000000000000010");
    EXPECT_EQ(TextOf(Value(9, 0x10)), L"0x00000010");
}

// Texts are cut, and may be anywhere.
TEST(ValueTextTest, TextsAreReadWithCare) {
    const std::string narrow(150, 'a');
    const std::wstring wide(150, L'b');
    const auto at = [](const void* text) { return reinterpret_cast<uint64_t>(text); };
    EXPECT_NE(TextOf(Value(5, at(narrow.c_str()))).find(L" '" + std::wstring(99, L'a') + L"'"),
              std::wstring::npos);
    for (const uint32_t type : {6u, 7u})
        EXPECT_NE(TextOf(Value(type, at(wide.c_str()))).find(L" '" + std::wstring(100, L'b') + L"'"),
                  std::wstring::npos);
    EXPECT_EQ(TextOf(Value(6, at(L"@@@<array[3] of Int>"))), L"<array[3] of Int>");
    EXPECT_NE(TextOf(Value(6, at(L"@@@x"))).find(L" '@@@x'"), std::wstring::npos);
    EXPECT_NE(TextOf(Value(5, 16)).find(L" '(inaccessible)'"), std::wstring::npos);
    EXPECT_NE(TextOf(Value(7, 16)).find(L" '(inaccessible)'"), std::wstring::npos);
}

class Lines final : public clsDebugOutput {
public:
    void Line(const wchar_t* format, ...) override {
        wchar_t line[4096];
        va_list arguments;
        va_start(arguments, format);
        _vsnwprintf(line, 4095, format, arguments);
        va_end(arguments);
        text += line + std::wstring(L"|");
    }
    std::wstring text;
};

std::wstring LinesOf(const DBGStackTraceItem& frame, AddressForm form) {
    Lines lines;
    WriteFrameLines(frame, form, lines);
    return lines.text;
}

TEST(FrameLinesTest, EachKindOfFrameHasItsForm) {
    DBGStackTraceItem frame = {};
    frame.size = sizeof frame;
    frame.address = 0x1234;
    frame.moduleBase = 0x1000;
    CopyToField(frame.module, "mod");
    EXPECT_EQ(LinesOf(frame, AddressForm::kShort), L"[0x00001234] mod!+0x00000234 \n|");
    EXPECT_EQ(LinesOf(frame, AddressForm::kLong), L"[0x0000000000001234] mod!+0x0000000000000234 \n|");
    CopyToField(frame.symbol, "decorated");
    CopyToField(frame.file, "a.c");
    frame.line = 7;
    frame.displacement = 2;
    frame.valueCount = 2;
    frame.values[0] = Value(2, 5);
    CopyToField(frame.values[0].name, "p");
    frame.values[1] = Value(2, 6);
    frame.values[1].isLocal = 1;
    EXPECT_EQ(
        LinesOf(frame, AddressForm::kShort),
        L"[0x00001234] mod!decorated + 0x00000002   (a.c, line 7)\n|        param(p)=5|        local()=6|");
    CopyToField(frame.name, "name");
    frame.isCall = 1; // no values follow
    EXPECT_EQ(LinesOf(frame, AddressForm::kShort),
              L"   CALL [0x00001234] mod!name + 0x00000002   (a.c, line 7)|");
    CopyToField(frame.fullName, "full");
    frame.displacement = 0;
    EXPECT_EQ(LinesOf(frame, AddressForm::kShort), L"   CALL [0x00001234] mod!full   (a.c, line 7)|");
    frame.size = 12;
    EXPECT_EQ(LinesOf(frame, AddressForm::kShort), L"");
}

} // namespace
} // namespace vxut
