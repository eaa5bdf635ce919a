#include "base/late_load.h"

#include "base/owners.h"
#include "base/system_libraries.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using Names = std::vector<std::string>;

Names asked;

FARPROC WINAPI FakeResolver(HMODULE, LPCSTR name) {
    asked.emplace_back(name);
    return nullptr;
}

class FakeLibrary : public CLateLoadBase {
public:
    explicit FakeLibrary(const wchar_t* name) : CLateLoadBase(name) { SetResolver(FakeResolver); }
};

TEST(LateLoad, TriesFourSpellingsInTheLibrarysOrder) {
    const struct {
        const wchar_t* library;
        const char* name;
        Names expected;
    } cases[] = {{L"user32", "Foo", {"Foo", "FooW", "_Foo@12", "_FooW@12"}},
                 {L"Shell32", "p_Foo", {"FooW", "Foo", "_Foo@12", "_FooW@12"}}};
    for (const auto& row : cases) {
        FakeLibrary library(row.library);
        asked.clear();
        LateStatus status = kLatePresent;
        EXPECT_EQ(library.Resolve(row.name, status, 12), nullptr);
        EXPECT_EQ(status, kLateAbsent);
        EXPECT_EQ(asked, row.expected) << row.library;
    }
}

TEST(LateLoad, TakesLibrariesFromTheSystemFolderOnly) {
    const test::FreshFolder folder;
    const String planted = folder.At(L"vxutplanted.dll");
    ASSERT_TRUE(CopyFileW(L"C:\\windows\\system32\\version.dll", planted.Text(), FALSE));
    ASSERT_TRUE(SetDllDirectoryW(folder.Path().Text()));
    EXPECT_FALSE(FakeLibrary(L"vxutplanted").SetLibrary(nullptr, true));
    EXPECT_FALSE(FakeLibrary(L"vxutplanted").SetLibrary(L"vxutplanted.dll", true));
    EXPECT_TRUE(clsAutoFreeLibrary(LoadLibraryW(L"vxutplanted"))); // the folder is searched for others
    SetDllDirectoryW(nullptr);
    EXPECT_TRUE(FakeLibrary(L"").SetLibrary(L"VERSION", true));
    EXPECT_FALSE(FakeLibrary(L"").SetLibrary(std::wstring(300, L'x').c_str(), true));
}

TEST(LateLoad, FreesOrPinsWhatItLoads) {
    class PinnedLibrary : public FakeLibrary {
    public:
        explicit PinnedLibrary(const wchar_t* name) : FakeLibrary(name) { SetFreeAtEnd(false); }
    };
    EXPECT_TRUE(FakeLibrary(L"").SetLibrary(L"cabinet", true));
    EXPECT_EQ(GetModuleHandleW(L"cabinet"), nullptr);
    EXPECT_TRUE(PinnedLibrary(L"").SetLibrary(L"cabinet", true));
    FreeLibrary(GetModuleHandleW(L"cabinet"));
    EXPECT_NE(GetModuleHandleW(L"cabinet"), nullptr);
}

// Each has a fallback, so a name that is spelt wrong would go unnoticed.
TEST(SystemLibraries, FindTheirFunctions) {
    CLateLoadBase* const libraries[] = {&Kernel32(), &NTdll(), &Shlwapi(), &WinMM()};
    for (CLateLoadBase* library : libraries) EXPECT_EQ(library->ResolveAll(), 0);
}

} // namespace
} // namespace vxut
