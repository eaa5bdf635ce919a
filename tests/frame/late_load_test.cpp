#include "frame/late_load.h"

#include "frame/system_libraries.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vxut {
namespace {

// What a replaced resolver was asked for, and the one spelling that it knows.
std::vector<std::string> asked;
std::string known;

int WINAPI Seven() { return 7; }

FARPROC WINAPI FakeResolver(HMODULE, LPCSTR name) {
    asked.emplace_back(name);
    return name == known ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(Seven)) : nullptr;
}

class FakeLibrary : public CLateLoadBase {
public:
    explicit FakeLibrary(const wchar_t* name) : CLateLoadBase(name) {
        asked.clear();
        known.clear();
        SetResolver(FakeResolver);
        SetFreeAtEnd(false);
    }
    using CLateLoadBase::SetNameOffset;

    std::vector<std::wstring> loads;
    bool exists = true;

    clsLateFunction<int WINAPI()> Function{*this, "Function", 12};

private:
    HMODULE Load(const wchar_t* name) override {
        loads.emplace_back(name);
        return exists ? GetModuleHandleW(nullptr) : nullptr;
    }
};

using Names = std::vector<std::string>;

TEST(LateLoad, TriesFourSpellingsInTheLibrarysOrder) {
    const Names usual = {"Foo", "FooW", "_Foo@12", "_FooW@12"};
    const Names wideFirst = {"FooW", "Foo", "_Foo@12", "_FooW@12"};
    const struct {
        const wchar_t* library;
        Names expected;
    } cases[] = {{L"user32", usual}, {L"shell32", wideFirst}, {L"Shell32", wideFirst}, {L"shell32x", usual}};
    for (const auto& row : cases) {
        FakeLibrary library(row.library);
        LateStatus status = kLatePresent;
        EXPECT_EQ(library.Resolve("Foo", status, 12), nullptr);
        EXPECT_EQ(status, kLateAbsent);
        EXPECT_EQ(asked, row.expected) << row.library;
    }
}

TEST(LateLoad, StopsAtTheFirstSpellingThatIsFound) {
    FakeLibrary library(L"any");
    known = "FunctionW";
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_EQ(library.Function(), 7);
    EXPECT_EQ(asked, (Names{"Function", "FunctionW"}));
}

TEST(LateLoad, AFunctionFoundAbsentIsNotSoughtAgain) {
    FakeLibrary library(L"any");
    EXPECT_FALSE(library.Function.IsAvailable());
    known = "Function";
    EXPECT_FALSE(library.Function.IsAvailable());
    EXPECT_EQ(asked.size(), 4u);
}

TEST(LateLoad, LeavesOutPrefixAndNameOffset) {
    const struct {
        const char* name;
        uint32_t offset;
        const char* expected;
    } cases[] = {{"p_Foo", 0, "Foo"}, {"p_", 0, ""},      {"P_Foo", 0, "P_Foo"},
                 {"Foo", 2, "o"},     {"p_Foo", 1, "oo"}, {"Foo", 99, ""}};
    for (const auto& row : cases) {
        FakeLibrary library(L"any");
        library.SetNameOffset(row.offset);
        LateStatus status = kLateNotAsked;
        library.Resolve(row.name, status, 0);
        EXPECT_EQ(asked.at(0), row.expected) << row.name;
    }
}

TEST(LateLoad, ANameThatIsTooLongIsAbsent) {
    FakeLibrary library(L"any");
    LateStatus status = kLateNotAsked;
    EXPECT_EQ(library.Resolve(std::string(255, 'x').c_str(), status, 4), nullptr);
    EXPECT_EQ(status, kLateAbsent);
    EXPECT_EQ(asked, (Names{std::string(255, 'x')})); // the other spellings do not fit
}

TEST(LateLoad, AMissingLibraryIsSoughtOnceAndLeavesTheStatusOpen) {
    FakeLibrary library(L"missing");
    library.exists = false;
    known = "Function";
    EXPECT_FALSE(library.Function.IsAvailable());
    EXPECT_FALSE(library.Function.IsAvailable());
    LateStatus status = kLatePresent;
    EXPECT_EQ(library.Resolve("Function", status, 0), nullptr);
    EXPECT_EQ(status, kLateNotAsked);
    EXPECT_EQ(library.loads.size(), 1u);
    EXPECT_TRUE(asked.empty());

    library.exists = true;
    EXPECT_FALSE(library.SetLibrary(L"present", false));
    EXPECT_TRUE(library.Function.IsAvailable());
    EXPECT_EQ(library.loads, (std::vector<std::wstring>{L"missing", L"present"}));
}

TEST(LateLoad, SetLibraryKeepsALoadedModule) {
    FakeLibrary library(nullptr);
    EXPECT_FALSE(library.SetLibrary(nullptr, true));
    EXPECT_TRUE(library.loads.empty());
    EXPECT_TRUE(library.SetLibrary(std::wstring(300, L'x').c_str(), true));
    EXPECT_EQ(library.loads.at(0).size(), 259u);
    EXPECT_TRUE(library.SetLibrary(L"other", true));
    EXPECT_EQ(library.loads.size(), 1u);
}

class RealLibrary : public CLateLoadBase {
public:
    explicit RealLibrary(const wchar_t* name) : CLateLoadBase(name) {}
};

TEST(LateLoad, FreesWhatItLoadedAndKeepsTheLastError) {
    constexpr wchar_t kSeldomUsed[] = L"msimg32.dll";
    ASSERT_EQ(GetModuleHandleW(kSeldomUsed), nullptr);
    LateStatus status = kLateNotAsked;
    {
        RealLibrary library(kSeldomUsed);
        SetLastError(1234);
        EXPECT_NE(library.Resolve("p_TransparentBlt", status, 44), nullptr);
        EXPECT_EQ(status, kLatePresent);
        EXPECT_EQ(library.Resolve("NoSuchFunction", status, 0), nullptr);
        EXPECT_EQ(GetLastError(), 1234u);
        EXPECT_NE(GetModuleHandleW(kSeldomUsed), nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(kSeldomUsed), nullptr);
    SetLastError(1234);
    RealLibrary missing(L"vxut-no-such-library");
    EXPECT_EQ(missing.Resolve("Function", status, 0), nullptr);
    EXPECT_EQ(status, kLateNotAsked);
    EXPECT_EQ(GetLastError(), 1234u);
}

TEST(SystemLibraries, FindTheirFunctions) {
    ASSERT_TRUE(Kernel32().GetTickCount64.IsAvailable());
    EXPECT_LE(GetTickCount64(), Kernel32().GetTickCount64());

    wchar_t target[MAX_PATH];
    ASSERT_TRUE(Kernel32().GetFullPathName.IsAvailable()); // known with a W only
    ASSERT_GT(Kernel32().GetFullPathName(L"c:\\a\\..\\b", MAX_PATH, target, nullptr), 0u);
    EXPECT_STREQ(target, L"c:\\b");
    ASSERT_TRUE(Shlwapi().PathCanonicalize.IsAvailable());
    ASSERT_TRUE(Shlwapi().PathCanonicalize(target, L"c:\\x\\.\\y"));
    EXPECT_STREQ(target, L"c:\\x\\y");

    ASSERT_TRUE(Kernel32().IsBadReadPtr.IsAvailable());
    EXPECT_TRUE(Kernel32().IsBadReadPtr(reinterpret_cast<void*>(16), 4));
    ASSERT_TRUE(Kernel32().IsBadStringPtr.IsAvailable());
    EXPECT_FALSE(Kernel32().IsBadStringPtr(target, MAX_PATH));

    void* frames[4];
    ASSERT_TRUE(NTdll().RtlCaptureStackBackTrace.IsAvailable());
    EXPECT_GT(NTdll().RtlCaptureStackBackTrace(0, 4, frames, nullptr), 0);
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
