// How paths lead to items and lists.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace vxut::test {
namespace {

std::wstring NameOf(size_t length) { return std::wstring(length, L'n'); }

// A tree with two lists of one name and an item that bears it too.
void Fill(HPROF job) {
    for (const wchar_t* path : {L"a", L"a/x", L"a/b/x", L"c/x"}) ProfSetStringW(job, nullptr, path, path);
    ProfAppendListW(job, nullptr, L"a");
}

TEST(ProfilePathTest, LookupsFollowTheFirstListAndEndAtAPlainItem) {
    const Job job;
    Fill(job);
    const HPROFLIST c = ProfGetListW(job, nullptr, L"c");
    for (const wchar_t* path : {L"a", L"a/x", L"a/b/x", L"c/x"}) EXPECT_EQ(ValueOf(job, path), path);
    EXPECT_EQ(ValueOf(job, L"/a/x", c), L"a/x");
    EXPECT_EQ(ValueOf(job, L"x", c), L"c/x");
    for (const wchar_t* path : {L"A/x", L"c", L"a/b", L"a//x", L"/", L"", L"a/", L"../a", L"//a"})
        EXPECT_EQ(ValueOf(job, path), L"<-6>") << path;
    for (const wchar_t* path : {L"a/x", L"../x"}) EXPECT_EQ(ValueOf(job, path, c), L"<-6>") << path;
}

TEST(ProfilePathTest, GetListKnowsItselfItsParentAndItsChildren) {
    const Job job;
    Fill(job);
    const HPROFLIST b = ProfGetListW(job, nullptr, L"a/b");
    EXPECT_EQ(TreeOf(job, b), L"x=a/b/x;");
    EXPECT_EQ(ProfGetListW(job, b, nullptr), b);
    EXPECT_EQ(ProfGetListW(job, b, L".."), ProfGetListW(job, nullptr, L"a"));
    EXPECT_EQ(ProfGetListA(job, b, "/a/b"), b);
    for (const wchar_t* path : {L"..", L"", L"/", L"a/", L"a//b", L"none", L"a/x", L"a/.."})
        EXPECT_EQ(ProfGetListW(job, nullptr, path), nullptr) << path;
}

TEST(ProfilePathTest, WritersCreateTheirPath) {
    const Job job;
    ProfAppendStringW(job, nullptr, L"a/b/x", L"1");
    ProfAppendStringW(job, nullptr, L"a/b/x", L"2");
    ProfSetStringW(job, ProfGetListW(job, nullptr, L"a"), L"/a/b/x", L"3");
    ProfSetStringW(job, ProfGetListW(job, nullptr, L"a"), L"b/y", L"4");
    ProfAppendStringW(job, nullptr, nullptr, L"nameless");
    ProfSetStringW(job, nullptr, nullptr, L"ignored");
    ProfSetStringW(job, nullptr, L"z", nullptr);
    ProfAppendStringW(job, nullptr, L"z", nullptr);
    EXPECT_EQ(TreeOf(job), L"a{b{x=3;x=2;y=4;}}=nameless;");
    ProfSetStringW(job, nullptr, L"a", L"beside the list");
    EXPECT_EQ(TreeOf(job), L"a{b{x=3;x=2;y=4;}}=nameless;a=beside the list;");
}

TEST(ProfilePathTest, CreateEmptiesAppendAddsGetLeavesAlone) {
    const Job job;
    ProfSetStringW(job, nullptr, L"p/l/x", L"1");
    const HPROFLIST list = ProfGetListW(job, nullptr, L"p/l");
    EXPECT_EQ(ProfCreateListW(job, nullptr, L"p/l"), list);
    EXPECT_EQ(TreeOf(job), L"p{l{}}");
    EXPECT_NE(ProfAppendListA(job, nullptr, "p/l"), list);
    EXPECT_EQ(ProfGetListW(job, nullptr, L"p/l"), list);
    EXPECT_NE(ProfCreateListA(job, list, "q/r"), nullptr);
    EXPECT_NE(ProfAppendListW(job, list, L"/s/t"), nullptr);
    EXPECT_EQ(TreeOf(job), L"p{l{q{r{}}}l{}}s{t{}}");
    EXPECT_EQ(ProfCreateListW(job, nullptr, nullptr), nullptr);
    EXPECT_EQ(ProfAppendListW(job, nullptr, nullptr), nullptr);
}

TEST(ProfilePathTest, AListNameThatOpensABracketLosesBothEnds) {
    const std::pair<const wchar_t*, const wchar_t*> kNamesAndTrees[] = {
        {L"[abc]", L"abc{}"}, {L"[abc", L"ab{}"}, {L"[[abc]]", L"[abc]{}"},
        {L"[", L"{}"},        {L"[]", L"{}"},     {L"abc]", L"abc]{}"}};
    for (const auto& [name, tree] : kNamesAndTrees) {
        const Job job;
        ProfCreateListW(job, nullptr, name);
        EXPECT_EQ(TreeOf(job), tree) << name;
    }
}

TEST(ProfilePathTest, FoldersAreCutAt255UnitsAndItemNamesAreNot) {
    const Job job;
    const std::wstring name = NameOf(300);
    ProfSetStringW(job, nullptr, (name + L"/" + name).c_str(), L"v");
    EXPECT_EQ(TreeOf(job), NameOf(255) + L"{" + name + L"=v;}");
    EXPECT_EQ(ValueOf(job, (NameOf(256) + L"/" + name).c_str()), L"v");
    EXPECT_EQ(ValueOf(job, (NameOf(254) + L"/" + name).c_str()), L"<-6>");
}

TEST(ProfileDeleteTest, ItemsAndListsOfEveryMatchingPathGo) {
    const struct {
        void (*erase)(HPROF job);
        const wchar_t* tree;
    } kCases[] = {
        {[](HPROF job) { ProfDeleteItemW(job, nullptr, L"l/x"); }, L"l{x{}}l{y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteItemA(job, nullptr, "x"); }, L"l{x=1;x{}}l{x=2;y=3;}x{}"},
        {[](HPROF job) { ProfDeleteListW(job, nullptr, L"l/x"); }, L"l{x=1;}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteListA(job, nullptr, "l"); }, L"x=4;x{}"},
        {[](HPROF job) { ProfDeleteItemW(job, nullptr, L"/x"); }, L"l{x=1;x{}}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteListW(job, nullptr, L"/l"); }, L"l{x=1;x{}}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteListW(job, ProfGetListW(job, nullptr, L"l"), L""); },
         L"l{}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteListW(job, ProfGetListW(job, nullptr, L"l/x"), nullptr); },
         L"l{x=1;}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfDeleteListW(job, nullptr, nullptr); }, L"l{x{}}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfEmptyList(job, ProfGetListW(job, nullptr, L"l")); }, L"l{}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfEmptyList(job, nullptr); }, L""},
    };
    for (const auto& row : kCases) {
        const MemoryStream stream(Utf16Marked(L"[/]\n[l]\nx=1\n[x]\n}\n}\n[l]\nx=2\ny=3\n}\nx=4\n[x]\n"));
        const Job job(ProfJobOpenStream(stream));
        row.erase(job);
        EXPECT_EQ(TreeOf(job), row.tree) << &row - kCases;
    }
}

// The name that the function hands back may lie in what is deleted.
TEST(ProfileEnumTest, TheFunctionMayAddEntriesDeleteItsOwnAndStop) {
    const Job job;
    for (const wchar_t* name : {L"a", L"b", L"c"}) ProfAppendStringW(job, nullptr, name, L"");
    const auto replace = [](HPROF j, const wchar_t* name, const wchar_t*, HPROFLIST, void* calls) {
        ProfAppendStringW(j, nullptr, (std::wstring(name) + L"2").c_str(), L"");
        ProfDeleteItemW(j, nullptr, name);
        return *static_cast<int*>(calls) += 1;
    };
    int calls = 0;
    EXPECT_EQ(ProfEnumW(job, nullptr, replace, &calls), 1);
    EXPECT_EQ(TreeOf(job), L"a2=;b2=;c2=;");
    ProfEmptyList(job, nullptr);
    for (int i = 0; i < 3; ++i) ProfAppendStringW(job, nullptr, NameOf(100).c_str(), L"");
    calls = -1;
    EXPECT_EQ(ProfEnumW(job, nullptr, replace, &calls), 0);
    EXPECT_EQ(TreeOf(job), NameOf(100) + L"2=;");
    EXPECT_EQ(ProfEnumW(job, nullptr, nullptr, nullptr), 0);

    std::string seen;
    const auto note = [](HPROF, const char* name, const char* value, HPROFLIST, void* user) {
        static_cast<std::string*>(user)->append(name).append(value);
        return 1;
    };
    EXPECT_EQ(ProfEnumA(job, nullptr, note, &seen), 1);
    EXPECT_EQ(seen, std::string(100, 'n') + "2");
}

TEST(ProfileCopyTest, CopiesWhatWasThereWhenTheCallBegan) {
    const Job job;
    ProfSetStringW(job, nullptr, L"l/m/x", L"1");
    const HPROFLIST m = ProfGetListW(job, nullptr, L"l/m");
    EXPECT_EQ(ProfCopyList(job, m, job, nullptr), PROF_OK);
    EXPECT_EQ(TreeOf(job), L"l{m{x=1;l{m{x=1;}}}}");
    EXPECT_EQ(ProfCopyList(job, m, job, m), PROF_OK);
    EXPECT_EQ(TreeOf(job), L"l{m{x=1;l{m{x=1;}}x=1;l{m{x=1;}}}}");
    const HPROFLIST copied = ProfGetListW(job, m, L"l");
    EXPECT_EQ(ProfGetListW(job, copied, L".."), m);

    const Job other;
    EXPECT_EQ(ProfCopyList(other, nullptr, job, m), PROF_OK);
    EXPECT_EQ(TreeOf(other), L"x=1;l{m{x=1;}}x=1;l{m{x=1;}}");
    EXPECT_EQ(ProfGetListW(other, ProfGetListW(other, nullptr, L"l"), L".."),
              ProfGetListW(other, nullptr, nullptr));
    EXPECT_EQ(ProfCopyList(nullptr, nullptr, job, nullptr), PROF_ERR_JOB);
    EXPECT_EQ(ProfCopyList(job, nullptr, nullptr, nullptr), PROF_ERR_JOB);
}

TEST(ProfileNullJobTest, NothingHappens) {
    wchar_t buffer[] = L"kept";
    EXPECT_EQ(ProfGetStringW(nullptr, nullptr, L"x", buffer, 5, L"default"), 0);
    EXPECT_STREQ(buffer, L"kept");
    EXPECT_EQ(ProfGetStringLengthW(nullptr, nullptr, L"x"), 0);
    EXPECT_EQ(ProfGetListW(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(ProfCreateListW(nullptr, nullptr, L"x"), nullptr);
    EXPECT_EQ(ProfGetError(nullptr), PROF_ERR_JOB);
    EXPECT_EQ(ProfDebugList(nullptr, nullptr), PROF_ERR_JOB);
    EXPECT_EQ(ProfSaveW(nullptr, L"never.prf", PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(GetFileAttributesW(L"never.prf"), INVALID_FILE_ATTRIBUTES);
    for (const auto erase : {ProfDeleteItemW, ProfDeleteListW}) erase(nullptr, nullptr, L"x");
    ProfEmptyList(nullptr, nullptr);
    ProfJobAddRef(nullptr);
}

} // namespace
} // namespace vxut::test
