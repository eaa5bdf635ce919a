#include "diagnostics/version_text.h"

#include "frame/owners.h"

#include <gtest/gtest.h>

#include <windows.h>
// Behind windows.h, which it needs:
#include <winternl.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

using Bytes = std::string;

Bytes Word(size_t value) { return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)}; }
Bytes Wide(const std::wstring& text) {
    return Bytes(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(wchar_t));
}
Bytes Padded(Bytes bytes) { return bytes.append((4 - bytes.size() % 4) % 4, '\0'); }

// A block of version data: its head, name, value and children.
Bytes Block(const std::wstring& name, const Bytes& value, bool isText, const std::vector<Bytes>& children) {
    Bytes rest = Padded(Bytes(6, '\0') + Wide(name)).substr(6) + value;
    for (const Bytes& child : children) rest = Padded(Bytes(6, '\0') + rest).substr(6) + child;
    const size_t valueSize = isText ? value.size() / sizeof(wchar_t) : value.size();
    return Word(rest.size() + 6) + Word(valueSize) + Word(isText) + rest;
}

Bytes Text(const wchar_t* name, const wchar_t* value) { return Block(name, Wide(value), true, {}); }

Bytes Strings(const wchar_t* language, const std::vector<Bytes>& texts) {
    return Block(L"StringFileInfo", "", true, {Block(language, "", true, texts)});
}

Bytes Translation(WORD language, WORD codePage) {
    return Block(L"VarFileInfo", "", true,
                 {Block(L"Translation", Word(language) + Word(codePage), false, {})});
}

Bytes Version(const std::vector<Bytes>& parts) {
    VS_FIXEDFILEINFO fixed = {};
    fixed.dwSignature = VS_FFI_SIGNATURE;
    return Block(L"VS_VERSION_INFO", Bytes(reinterpret_cast<const char*>(&fixed), sizeof fixed), false,
                 parts);
}

TEST(VersionTextTest, ShowsVersionAndBuild) {
    const std::vector<Bytes> both = {Text(L"Build", L"(beta)"), Text(L"FileVersion", L"1.2.3")};
    const struct {
        const char* name;
        Bytes data;
        const wchar_t* text;
    } rows[] = {
        {"by its translation", Version({Strings(L"040904b0", both), Translation(0x409, 1200)}),
         L"LIB.DLL 1.2.3 (beta)"},
        {"a translation in lower case", Version({Strings(L"0c0a04e4", both), Translation(0xC0A, 1252)}),
         L"LIB.DLL 1.2.3 (beta)"},
        {"a translation that has no strings", Version({Strings(L"040704b0", both), Translation(0x409, 1200)}),
         L""},
        {"the first block", Version({Strings(L"040704b0", both)}), L"LIB.DLL 1.2.3 (beta)"},
        {"a block that begins with a letter", Version({Strings(L"abcd04b0", both)}), L""},
        {"a block without a name", Version({Strings(L"", both)}), L""},
        {"no build", Version({Strings(L"040904b0", {both[1]})}), L"LIB.DLL 1.2.3"},
        {"no version", Version({Strings(L"040904b0", {both[0]})}), L"LIB.DLL (beta)"},
        {"strings without blocks", Version({Block(L"StringFileInfo", "", true, {})}), L""},
        {"no strings", Version({Translation(0x409, 1200)}), L""},
        {"nothing but the head", Version({}), L""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(VersionTextOfData(L"Lib.dll", row.data.data(), row.data.size()), row.text) << row.name;
}

TEST(VersionTextTest, ReadsALoadedLibraryOrItsFile) {
    const clsAutoFreeLibrary loaded(LoadLibraryW(L"version.dll"));
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(loaded.Get(), path, MAX_PATH);
    const String fromModule = BuildVersionText(path, L"a.dll");
    EXPECT_EQ(fromModule.Left(6), L"A.DLL ");
    EXPECT_EQ(Find(fromModule.Text(), L"no version"), -1);
    // The same file under a name that is not loaded.
    wchar_t copy[MAX_PATH];
    GetTempPathW(MAX_PATH, copy);
    wcscat(copy, L"vxut-version-test.dll");
    ASSERT_TRUE(CopyFileW(path, copy, FALSE));
    EXPECT_EQ(BuildVersionText(copy, L"a.dll"), fromModule);
    DeleteFileW(copy);
    EXPECT_EQ(BuildVersionText(copy, L"a.dll"), L"A.DLL  <no version info>");
}

// Another thread inside the loader may be waiting for the debug channel.
TEST(VersionTextTest, IsNotBuiltWhileTheLoaderIsBusy) {
    constexpr size_t kLoaderLock = sizeof(void*) == 8 ? 0x110 : 0xA0;
    CRITICAL_SECTION* loader;
    std::memcpy(&loader, reinterpret_cast<const BYTE*>(NtCurrentTeb()->ProcessEnvironmentBlock) + kLoaderLock,
                sizeof loader);
    const clsAutoCloseHandle entered(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const clsAutoCloseHandle leave(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread other([&] {
        EnterCriticalSection(loader);
        SetEvent(entered.Get());
        WaitForSingleObject(leave.Get(), INFINITE);
        LeaveCriticalSection(loader);
    });
    WaitForSingleObject(entered.Get(), INFINITE);
    clsVersionText version;
    EXPECT_STREQ(version.Text(), L"");
    SetEvent(leave.Get());
    other.join();
    EXPECT_STREQ(version.Text(), L"VXUT_UNIT_TESTS.EXE  <no version info>");
}

} // namespace
} // namespace vxut
