// Damaged, deep and large profiles, and profiles on several threads.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

namespace vxut::test {
namespace {

std::wstring SampleText() {
    return L"[/]\r\n {\r\n a=1\r\n # comment\r\n b=x\u2409y\r\n [list]\r\n  {\r\n  c=" +
           std::wstring(300, L'v') + L"\r\n  [in]ner]\r\n   {\r\n   }\r\n  }\r\n d=4\r\n }\r\n";
}

// Loads bytes, and walks and saves the tree: each must end.
void ExpectUsable(const std::string& bytes) {
    FakeStream stream(bytes);
    const Job job(ProfJobOpenStream(&stream));
    const int32_t error = ProfGetError(job);
    EXPECT_TRUE(error == PROF_OK || error == PROF_ERR_FORMAT) << error;
    EXPECT_EQ(ProfSaveToStream(job, &stream, PROF_FORMAT_TEXT), PROF_OK);
    TreeOf(job);
}

TEST(ProfileHostileTest, EveryPrefixLoadsAndKeepsWhatPrecedesTheCut) {
    const std::wstring text = SampleText();
    const std::string narrow(text.begin(), text.end());
    for (const std::string& bytes : {Utf16Marked(text), Utf16(text), "\xEF\xBB\xBF" + narrow, narrow})
        for (size_t length = 0; length <= bytes.size(); ++length) ExpectUsable(bytes.substr(0, length));
    EXPECT_EQ(TreeOfBytes(Utf16Marked(text.substr(0, text.find(L"  [in]")))),
              L"a=1;b=x\ty;list{c=" + std::wstring(300, L'v') + L";}");
}

TEST(ProfileHostileTest, AlteredBytesLoad) {
    std::mt19937 random(20); // NOLINT: the same bytes in every run
    const std::string good = Utf16Marked(SampleText());
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = good;
        for (int flips = 0; flips < 1 + round % 5; ++flips)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        ExpectUsable(bytes);
    }
}

TEST(ProfileHostileTest, AVeryDeepFileLoadsCopiesSavesAndCloses) {
    std::string bytes = "[/]\n";
    std::wstring path;
    for (int i = 0; i < 100'000; ++i) {
        bytes += "[l]\n";
        path += L"l/";
    }
    path += L"a";
    FakeStream stream(bytes + "a=1\n");
    const Job job(ProfJobOpenStream(&stream));
    const Job copy;
    EXPECT_EQ(ProfCopyList(copy, nullptr, job, nullptr), PROF_OK);
    EXPECT_EQ(ProfDebugList(copy, nullptr), PROF_OK);
    FakeStream saved;
    EXPECT_EQ(ProfSaveToStream(copy, &saved, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_LT(saved.bytes.size(), 100'000u * 150) << "the indentation stops growing";
    saved.position = 0;
    const Job again(ProfJobOpenStream(&saved));
    EXPECT_EQ(ValueOf(again, path.c_str()), L"1");
    ProfDeleteItemW(again, nullptr, path.c_str());
    EXPECT_EQ(ValueOf(again, path.c_str()), L"<-6>");
}

TEST(ProfileHostileTest, AValueOfAHundredMegabytesSurvives) {
    constexpr size_t kLarge = 50'000'000;
    std::wstring value(kLarge, L'v');
    value[kLarge / 2] = L'\n';
    const Job job;
    ProfSetStringW(job, nullptr, L"a", value.c_str());
    FakeStream stream;
    ASSERT_EQ(ProfSaveToStream(job, &stream, PROF_FORMAT_TEXT), PROF_OK);
    const Job again(ProfJobOpenStream(&stream));
    ASSERT_EQ(ProfGetStringLengthW(again, nullptr, L"a"), static_cast<int32_t>(kLarge));
    EXPECT_TRUE(ValueOf(again, L"a") == value);
}

TEST(ProfileThreadsTest, JobsOfTwoThreadsShareTheItemPool) {
    std::atomic<int> wrong{0};
    const auto work = [&wrong](const wchar_t* name) {
        for (int round = 0; round < 50; ++round) {
            const Job job;
            for (int i = 0; i < 300; ++i) ProfAppendIntW(job, nullptr, i % 2 ? name : L"l/x", i);
            const Job copy;
            ProfCopyList(copy, nullptr, job, nullptr);
            wrong += TreeOf(copy) != TreeOf(job);
        }
    };
    std::thread first(work, L"first");
    std::thread second(work, L"second");
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace vxut::test
