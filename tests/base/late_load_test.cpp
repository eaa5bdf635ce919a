#include "base/late_load.h"

#include "base/system_libraries.h"

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

// Each has a fallback, so a name that is spelt wrong would go unnoticed.
TEST(SystemLibraries, FindTheirFunctions) {
    auto& k = Kernel32();
    auto& n = NTdll();
    const auto missing = [](auto&... functions) { return (0 + ... + !functions.IsAvailable()); };
    EXPECT_EQ(missing(k.IsBadReadPtr, k.IsBadWritePtr, k.IsBadStringPtr, k.IsBadStringPtrA, k.GetTickCount64,
                      k.GetCurrentProcessorNumber, k.GetCurrentProcessorNumberEx, k.LCMapStringEx,
                      k.GetFullPathName, k.GetLongPathName, k.GetUserDefaultUILanguage,
                      k.GetEnabledXStateFeatures, n.RtlTryEnterCriticalSection, n.RtlLeaveCriticalSection,
                      n.RtlCaptureStackBackTrace, Shlwapi().PathCanonicalize),
              0);
}

} // namespace
} // namespace vxut
