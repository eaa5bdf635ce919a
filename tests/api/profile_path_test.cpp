// How paths lead to items and lists.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <utility>

namespace vxut::test {
namespace {

std::wstring NameOf(size_t length) { return std::wstring(length, L'n'); }

TEST(ProfilePathTest, LookupsFollowTheFirstListAndEndAtAPlainItem) {
    const Job job;
    for (const wchar_t* path : {L"a", L"a/x", L"a/b/x", L"c/x"}) ProfSetStringW(job, nullptr, path, path);
    ProfAppendListW(job, nullptr, L"a");
    for (const wchar_t* path : {L"a", L"a/x", L"a/b/x", L"c/x"}) EXPECT_EQ(ValueOf(job, path), path);
    for (const wchar_t* path : {L"A/x", L"c", L"a/b", L"a//x", L"/", L"", L"a/", L"../a", L"//a"})
        EXPECT_EQ(ValueOf(job, path), L"<-6>") << path;
    const HPROFLIST b = ProfGetListW(job, nullptr, L"a/b");
    EXPECT_EQ(ValueOf(job, L"/a/x", b), L"a/x");
    EXPECT_EQ(ValueOf(job, L"x", b), L"a/b/x");
    EXPECT_EQ(ValueOf(job, L"../x", b), L"<-6>");
    EXPECT_EQ(ProfGetListW(job, b, nullptr), b);
    EXPECT_EQ(ProfGetListW(job, b, L".."), ProfGetListW(job, nullptr, L"a"));
    EXPECT_EQ(ProfGetListA(job, b, "/a/b"), b);
    for (const wchar_t* path : {L"..", L"", L"/", L"a/", L"a//b", L"none", L"a/x", L"a/.."})
        EXPECT_EQ(ProfGetListW(job, nullptr, path), nullptr) << path;
}

TEST(ProfileWriteTest, WritersCreateTheirPath) {
    const Job job;
    ProfAppendStringW(job, nullptr, L"a/b/x", L"1");
    ProfAppendStringW(job, nullptr, L"a/b/x", L"2");
    ProfSetStringW(job, ProfGetListW(job, nullptr, L"a"), L"/a/b/x", L"3");
    ProfSetStringA(job, ProfGetListW(job, nullptr, L"a"), "b/y", "4");
    ProfAppendStringA(job, nullptr, nullptr, "nameless");
    ProfSetStringW(job, nullptr, nullptr, L"ignored");
    ProfSetStringW(job, nullptr, L"z", nullptr);
    ProfSetStringW(job, nullptr, L"a", L"beside the list");
    EXPECT_EQ(TreeOf(job), L"a{b{x=3;x=2;y=4;}}=nameless;a=beside the list;");
}

TEST(ProfileWriteTest, CreateEmptiesAndAppendAdds) {
    const Job job;
    ProfSetStringW(job, nullptr, L"p/l/x", L"1");
    const HPROFLIST list = ProfGetListW(job, nullptr, L"p/l");
    EXPECT_EQ(ProfCreateListW(job, nullptr, L"p/l"), list);
    EXPECT_NE(ProfAppendListA(job, nullptr, "p/l"), list);
    EXPECT_NE(ProfCreateListA(job, list, "q/r"), nullptr);
    EXPECT_NE(ProfAppendListW(job, list, L"/s/t"), nullptr);
    EXPECT_EQ(TreeOf(job), L"p{l{q{r{}}}l{}}s{t{}}");
}

TEST(ProfileWriteTest, ListNamesLoseTheirBracketsAndEndAt255Units) {
    const std::pair<std::wstring, std::wstring> kNamesAndTrees[] = {
        {L"[abc]", L"abc{}"},
        {L"[abc", L"ab{}"}, // one that opens a bracket loses both ends
        {L"[[abc]]", L"[abc]{}"},
        {L"[", L"{}"},
        {L"abc]", L"abc]{}"},
        {NameOf(256) + L"/" + NameOf(255), NameOf(255) + L"{" + NameOf(255) + L"{}}"}};
    for (const auto& [name, tree] : kNamesAndTrees) {
        const Job job;
        ProfCreateListW(job, nullptr, name.c_str());
        EXPECT_EQ(TreeOf(job), tree) << name;
    }
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
        {[](HPROF job) { ProfDeleteListW(job, nullptr, nullptr); }, L"l{x{}}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfEmptyList(job, ProfGetListW(job, nullptr, L"l")); }, L"l{}l{x=2;y=3;}x=4;x{}"},
        {[](HPROF job) { ProfEmptyList(job, nullptr); }, L""},
    };
    for (const auto& row : kCases) {
        FakeStream stream(Utf16Marked(L"[/]\n[l]\nx=1\n[x]\n}\n}\n[l]\nx=2\ny=3\n}\nx=4\n[x]\n"));
        const Job job(ProfJobOpenStream(&stream));
        row.erase(job);
        EXPECT_EQ(TreeOf(job), row.tree) << &row - kCases;
    }
}

// The name that the function hands back may lie in what is deleted.
TEST(ProfileEnumTest, TheFunctionMayAddEntriesDeleteItsOwnAndStop) {
    const Job job;
    for (const wchar_t* name : {L"a", L"b", L"c"}) ProfAppendStringW(job, nullptr, name, L"");
    const auto replace = [](HPROF j, const wchar_t* name, const wchar_t*, HPROFLIST, void* calls) {
        ProfAppendStringW(j, nullptr, (NameOf(100) + name).c_str(), L"");
        ProfDeleteItemW(j, nullptr, name);
        return *static_cast<int*>(calls) += 1;
    };
    int calls = -2;
    EXPECT_EQ(ProfEnumW(job, nullptr, replace, &calls), 0);
    EXPECT_EQ(TreeOf(job), L"c=;" + NameOf(100) + L"a=;" + NameOf(100) + L"b=;");
}

TEST(ProfileCopyTest, CopiesWhatWasThereWhenTheCallBegan) {
    const Job job;
    ProfSetStringW(job, nullptr, L"l/m/x", L"1");
    const HPROFLIST m = ProfGetListW(job, nullptr, L"l/m");
    EXPECT_EQ(ProfCopyList(job, m, job, nullptr), PROF_OK);
    EXPECT_EQ(ProfCopyList(job, m, job, m), PROF_OK);
    EXPECT_EQ(TreeOf(job), L"l{m{x=1;l{m{x=1;}}x=1;l{m{x=1;}}}}");
    EXPECT_EQ(ProfGetListW(job, ProfGetListW(job, m, L"l"), L".."), m);
    EXPECT_EQ(ProfCopyList(nullptr, nullptr, job, nullptr), PROF_ERR_JOB);
    EXPECT_EQ(ProfCopyList(job, nullptr, nullptr, nullptr), PROF_ERR_JOB);
}

TEST(ProfileNullJobTest, NothingHappens) {
    wchar_t buffer[] = L"kept";
    EXPECT_EQ(ProfGetStringW(nullptr, nullptr, L"x", buffer, 5, L"default"), 0);
    EXPECT_STREQ(buffer, L"kept");
    EXPECT_EQ(ProfGetError(nullptr), PROF_ERR_JOB);
    EXPECT_EQ(ProfSaveW(nullptr, L"none\\a.prf", PROF_FORMAT_TEXT), PROF_OK);
}

} // namespace
} // namespace vxut::test
