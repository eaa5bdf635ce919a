#include "frame/late_load.h"

#include "frame/system_libraries.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

using Names = std::vector<std::string>;

// What a replaced resolver was asked for, and the one spelling that it knows.
Names asked;
std::string known;

int WINAPI Seven() { return 7; }

FARPROC WINAPI FakeResolver(HMODULE, LPCSTR name) {
    asked.emplace_back(name);
    return name == known ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(Seven)) : nullptr;
}

class RealLibrary : public CLateLoadBase {
public:
    explicit RealLibrary(const wchar_t* name) : CLateLoadBase(name) {}
};

class FakeLibrary : public CLateLoadBase {
public:
    explicit FakeLibrary(const wchar_t* name, uint32_t nameOffset = 0) : CLateLoadBase(name) {
        asked.clear();
        known = "(none)";
        SetResolver(FakeResolver);
        SetFreeAtEnd(false);
        SetNameOffset(nameOffset);
    }

    std::vector<std::wstring> loads;
    bool exists = true;
    clsLateFunction<int WINAPI()> Function{*this, "Function", 12};

private:
    HMODULE Load(const wchar_t* name) override {
        loads.emplace_back(name);
        return exists ? GetModuleHandleW(nullptr) : nullptr;
    }
};

TEST(LateLoad, TriesFourSpellingsInTheLibrarysOrder) {
    const std::string longName(255, 'x');
    const struct {
        const wchar_t* library;
        std::string name;
        uint32_t offset;
        Names expected;
    } cases[] = {
        {L"user32", "Foo", 0, {"Foo", "FooW", "_Foo@12", "_FooW@12"}},
        {L"Shell32", "p_Foo", 0, {"FooW", "Foo", "_Foo@12", "_FooW@12"}},
        {L"shell32x", "P_Foo", 0, {"P_Foo", "P_FooW", "_P_Foo@12", "_P_FooW@12"}},
        {L"any", "p_Foo", 1, {"oo", "ooW", "_oo@12", "_ooW@12"}},
        {L"any", "Foo", 99, {"", "W", "_@12", "_W@12"}},
        {L"any", longName, 0, {longName}}, // its other spellings do not fit
    };
    for (const auto& row : cases) {
        FakeLibrary library(row.library, row.offset);
        LateStatus status = kLatePresent;
        EXPECT_EQ(library.Resolve(row.name.c_str(), status, 12), nullptr);
        EXPECT_EQ(status, kLateAbsent);
        EXPECT_EQ(asked, row.expected) << row.library;
    }
}

TEST(LateLoad, AFunctionIsSoughtOnceWhetherFoundOrNot) {
    FakeLibrary library(L"any");
    known = "FunctionW";
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_EQ(library.Function(), 7);
    EXPECT_EQ(asked, (Names{"Function", "FunctionW"}));

    FakeLibrary without(L"any");
    EXPECT_FALSE(without.Function.IsAvailable());
    known = "Function";
    EXPECT_FALSE(without.Function.IsAvailable());
    EXPECT_EQ(asked.size(), 4u);
}

TEST(LateLoad, ALibraryIsSoughtOnceForEachName) {
    FakeLibrary library(L"missing");
    library.exists = false;
    known = "Function";
    EXPECT_FALSE(library.Function.IsAvailable());
    LateStatus status = kLatePresent;
    EXPECT_EQ(library.Resolve("Function", status, 0), nullptr);
    EXPECT_EQ(status, kLateNotAsked); // open, unlike that of a function found absent
    EXPECT_EQ(library.loads.size(), 1u);

    library.exists = true;
    EXPECT_FALSE(library.SetLibrary(nullptr, true));
    EXPECT_FALSE(library.SetLibrary(std::wstring(300, L'x').c_str(), false));
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_TRUE(library.SetLibrary(L"keeps the loaded one", true));
    EXPECT_EQ(library.loads, (std::vector<std::wstring>{L"missing", std::wstring(259, L'x')}));
}

TEST(LateLoad, FreesWhatItLoadedAndKeepsTheLastError) {
    constexpr wchar_t kSeldomUsed[] = L"msimg32.dll";
    ASSERT_EQ(GetModuleHandleW(kSeldomUsed), nullptr);
    LateStatus status = kLateNotAsked;
    SetLastError(1234);
    {
        RealLibrary library(kSeldomUsed);
        EXPECT_NE(library.Resolve("p_TransparentBlt", status, 44), nullptr);
        EXPECT_EQ(status, kLatePresent);
        EXPECT_EQ(library.Resolve("NoSuchFunction", status, 0), nullptr);
        EXPECT_EQ(RealLibrary(L"vxut-no-such-library").Resolve("Function", status, 0), nullptr);
        EXPECT_EQ(GetLastError(), 1234u);
        EXPECT_NE(GetModuleHandleW(kSeldomUsed), nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(kSeldomUsed), nullptr);
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

TEST(SystemLibraries, ShareALockInTheKernelFamilyOnly) {
    class AnotherKernel : public clsKernel32Base {};
    AnotherKernel another;
    EXPECT_EQ(&another.Lock(), &Kernel32().Lock());
    EXPECT_NE(&NTdll().Lock(), &Shlwapi().Lock());
    EXPECT_NE(&NTdll().Lock(), &Kernel32().Lock());
}

} // namespace
} // namespace vxut
