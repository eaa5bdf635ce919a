#include "docinfo/document_list.h"

#include "docinfo/answer.h"
#include "docinfo/share_access.h"
#include "tests/support/import_table.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace vxut {
namespace {

using test::CallCount;
using test::FreshFolder;

std::string Page(const std::string& title) {
    return "<html><head><title>" + title + "</title></head></html>";
}

std::wstring TitleOf(const clsDocu& document) {
    return document.Title.vt == VT_BSTR ? document.Title.bstrVal : L"(none)";
}

std::wstring Ask(clsDocuList& list, const String& request, int32_t timeout = 5000) {
    const auto document = list.Get(request, timeout);
    return document->Exists ? TitleOf(*document.Get()) : L"(not there)";
}

// A file that is written again gets a later time, whatever the steps of the file system's clock.
void Rewrite(const FreshFolder& folder, const wchar_t* name, const std::string& content) {
    static int writes = 0;
    folder.Put(name, content);
    const std::filesystem::path path = folder.At(name).Text();
    last_write_time(path, last_write_time(path) + std::chrono::seconds(++writes));
}

TEST(DocumentListTest, AnAnswerIsKeptForItsTimeOnly) {
    const FreshFolder folder;
    const String path = folder.Put(L"a.htm", Page("one"));
    clsDocuList keeping(3600), forgetting(0);
    EXPECT_EQ(Ask(keeping, path), L"one");
    EXPECT_EQ(Ask(forgetting, path), L"one");
    Rewrite(folder, L"a.htm", Page("two"));
    {
        const CallCount<decltype(CreateFileW)> opens("CreateFileW");
        EXPECT_EQ(Ask(keeping, path.Upper()), L"one") << "requests compare without case";
        EXPECT_EQ(opens.Calls(), 0u);
    }
    EXPECT_EQ(Ask(forgetting, path), L"two");
    EXPECT_EQ(Ask(keeping, path + L"|x"), L"two") << "a suffix makes another request for the same file";
}

TEST(DocumentListTest, TheListsThreadRemovesWhatIsOutOfDate) {
    const FreshFolder folder;
    const String path = folder.Put(L"a.htm", Page("one"));
    clsDocuList list(1);
    const auto document = list.Get(path, 0);
    const auto references = [&] {
        document->AddRef();
        return document->Release();
    };
    EXPECT_EQ(references(), 2u) << "the list's and the test's";
    for (int i = 0; i < 200 && references() > 1; ++i) Sleep(50);
    EXPECT_EQ(references(), 1u);
    EXPECT_EQ(Ask(list, path), L"one") << "the list goes on working";
}

TEST(DocumentListTest, WhatCannotBeOpenedDoesNotExist) {
    const FreshFolder folder;
    clsDocuList list(3600);
    for (const String& path : {folder.At(L"missing.htm"), folder.At(L"none\\a.htm"), folder.Path(), String(),
                               String(L"|a.htm"), folder.At(L"missing.lnk"), folder.At(L"a?.htm")})
        EXPECT_EQ(Ask(list, path), L"(not there)") << path.Text();
    folder.Put(L"missing.htm", Page("now"));
    EXPECT_EQ(Ask(list, folder.At(L"missing.htm")), L"now") << "a missing file is not remembered";
}

TEST(DocumentTest, AnUnchangedFileIsNotReadAgain) {
    const FreshFolder folder;
    clsDocu document;
    document.ResolvedPath = folder.Put(L"a.htm", Page("one"));
    document.Reload();
    EXPECT_EQ(TitleOf(document), L"one");
    {
        const CallCount<decltype(ReadFile)> reads("ReadFile");
        document.Reload();
        EXPECT_EQ(reads.Calls(), 0u);
        EXPECT_EQ(TitleOf(document), L"one");
    }
    Rewrite(folder, L"a.htm", "<html><head></head></html>");
    document.Reload();
    EXPECT_EQ(TitleOf(document), L"(none)") << "properties of the earlier content do not stay";
    std::filesystem::remove(folder.At(L"a.htm").Text());
    document.LoadedTick = 1;
    document.Reload();
    EXPECT_TRUE(document.Exists && document.LoadedTick == 0) << "a vanished file is only out of date";
}

TEST(DocumentTest, AFailedReaderLeavesAFileThatExistsTheNextTimeWithoutProperties) {
    const FreshFolder folder;
    clsDocu document;
    document.ResolvedPath = folder.Put(L"a.tif", "no image");
    document.LoadedTick = 7;
    document.Reload();
    EXPECT_TRUE(!document.Exists && document.LoadedTick == 0 && document.Modified.wYear == 0);
    EXPECT_NE(document.FileTime.wYear, 0);
    document.Reload();
    EXPECT_TRUE(document.Exists && document.Modified.wYear == 0);
}

TEST(DocumentTest, TheExtensionDecidesBeforeTheContent) {
    // A document of Word for Windows 2, with a title.
    std::string word(400, '\0');
    word.replace(0, 4, std::string("\xDB\xA5\x2D\x00", 4));
    word.replace(280, 4, std::string("\x30\x01\x00\x00", 4));
    word.replace(0x130, 2, std::string("\x0A\x00", 2));
    word.replace(0x132, 8,
                 std::string("\x01"
                             "x"
                             "\x01"
                             "y"
                             "\x03"
                             "old",
                             8));
    const FreshFolder folder;
    const std::tuple<const wchar_t*, std::string, const wchar_t*> kFiles[] = {
        {L"a.bin", word, L"old"},
        {L"a", word, L"old"},
        {L"a.htm", word, L"(none)"},
        {L"a.HTML", Page("page"), L"page"},
        {L"a.bin2", Page("page"), L"(none)"},
        {L"a.ht", Page("page"), L"(none)"},
        {L"three", word.substr(0, 3), L"(none)"},
        {L"empty", "", L"(none)"},
    };
    clsDocuList list(0);
    for (const auto& [name, content, title] : kFiles) {
        const auto document = list.Get(folder.Put(name, content), 0);
        EXPECT_EQ(TitleOf(*document.Get()), title) << name;
        EXPECT_TRUE(document->Exists && document->Modified.wYear != 0 && document->Created.wYear == 0)
            << name;
    }
}

TEST(DocumentListTest, RequestsOfManyThreadsGetWholeAnswers) {
    constexpr int kThreads = 8, kRequests = 400, kDocuments = 5;
    const FreshFolder folder;
    for (int i = 0; i < kDocuments; ++i)
        folder.Put((std::to_wstring(i) + L".htm").c_str(), Page(std::string(40, static_cast<char>('a' + i))));
    clsDocuList list(1);
    std::atomic<int> wrong = 0, slow = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kRequests; ++i) {
                const int number = (thread + i) % kDocuments;
                const uint64_t began = GetTickCount64();
                const auto name = std::to_wstring(number) + L".htm";
                // Every other request has a key of its own, so that answers come and go.
                const std::wstring suffix = i % 2 ? L"" : L"|" + std::to_wstring(i % 40);
                const auto document = list.Get(folder.At(name.c_str()) + suffix.c_str(), 0);
                const std::wstring wanted(40, static_cast<wchar_t>(L'a' + number));
                if (!document->Exists || TitleOf(*document.Get()) != wanted) ++wrong;
                if (GetTickCount64() - began > 5000) ++slow;
                if (i % 100 == 99) Sleep(300);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(slow, 0);
}

TEST(ShareRootTest, IsTheFirstTwoPartsOfAUncPath) {
    const std::pair<const wchar_t*, const wchar_t*> kPaths[] = {
        {L"\\\\server\\share\\a\\b.txt", L"\\\\server\\share"},
        {L"\\\\server\\share", L"\\\\server\\share"},
        {L"\\\\server\\share\\", L"\\\\server\\share"},
        {L"\\\\server", L""},
        {L"C:\\a\\b", L""},
        {L"a\\\\b\\c", L""},
        {L"", L""},
    };
    for (const auto& [path, root] : kPaths) EXPECT_STREQ(ShareRoot(path).Text(), root) << path;
}

// A share of this machine: a folder below the one that the system looks in for shares.
class ShareTest : public testing::Test {
protected:
    ShareTest() {
        const wchar_t* const prefix = _wgetenv(L"WINEPREFIX");
        if (!prefix) return;
        std::wstring unix = prefix;
        for (wchar_t& unit : unix)
            if (unit == L'/') unit = L'\\';
        server_ = L"vxut-" + std::to_wstring(GetCurrentProcessId());
        folder_ = L"Z:" + unix + L"\\dosdevices\\unc\\" + server_;
        create_directories(folder_ / L"share");
    }
    ~ShareTest() override {
        if (!folder_.empty()) remove_all(folder_);
    }
    std::wstring Root(const wchar_t* share) const { return L"\\\\" + server_ + L"\\" + share; }
    void Put(const std::wstring& name, const std::string& content) const {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    std::wstring server_;
    std::filesystem::path folder_;
};

TEST_F(ShareTest, AFileOnAShareIsRead) {
    ASSERT_FALSE(folder_.empty()) << "needs a prefix of Wine";
    Put(L"share\\a.htm", Page("far"));
    clsDocuList list(3600);
    EXPECT_EQ(Ask(list, (Root(L"share") + L"\\a.htm").c_str()), L"far");
    EXPECT_EQ(Ask(list, (Root(L"share") + L"\\b.htm").c_str()), L"(not there)");
    EXPECT_EQ(UtilDocInfoShareAccessibility((Root(L"SHARE") + L"\\x").c_str()), UTIL_SHARE_ACCESSIBLE);
}

TEST_F(ShareTest, AShareThatIsNoFolderIsNotAskedAgain) {
    ASSERT_FALSE(folder_.empty()) << "needs a prefix of Wine";
    Put(L"file", "a plain file");
    clsDocuList list(0);
    for (const wchar_t* share : {L"file", L"missing"}) {
        const String path = (Root(share) + L"\\a.htm").c_str();
        EXPECT_EQ(UtilDocInfoShareAccessibility(path.Text()), UTIL_SHARE_ACCESSIBLE) << "not tested yet";
        EXPECT_EQ(Ask(list, path), L"(not there)");
        EXPECT_EQ(UtilDocInfoShareAccessibility(path.Upper().Text()), UTIL_SHARE_INACCESSIBLE);
    }
    create_directories(folder_ / L"missing");
    Put(L"missing\\a.htm", Page("late"));
    EXPECT_EQ(Ask(list, (Root(L"missing") + L"\\a.htm").c_str()), L"(not there)");
}

std::atomic<bool> isHanging = false;
std::atomic<int> hanging = 0;
void* openFile = nullptr;

// Hangs for names that say so.
HANDLE WINAPI HangingOpen(LPCWSTR name, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                          DWORD disposition, DWORD flags, HANDLE pattern) {
    if (std::wstring_view(name).find(L"hang") != std::wstring_view::npos) {
        ++hanging;
        while (isHanging) Sleep(10);
        --hanging;
    }
    return reinterpret_cast<decltype(&CreateFileW)>(openFile)(name, access, share, security, disposition,
                                                              flags, pattern);
}

TEST_F(ShareTest, AServerThatHangsHoldsNoRequestBeyondItsTime) {
    ASSERT_FALSE(folder_.empty()) << "needs a prefix of Wine";
    constexpr int kRequests = 25; // more than the reads that may be left behind
    Put(L"share\\hang.htm", Page("late"));
    Put(L"share\\quick.htm", Page("quick"));
    test::ImportPatch patch(GetModuleHandleW(nullptr));
    isHanging = true;
    openFile = patch.Replace("CreateFileW", HangingOpen);
    {
        clsDocuList list(0);
        std::vector<std::thread> threads;
        const uint64_t began = GetTickCount64();
        for (int i = 0; i < kRequests; ++i)
            EXPECT_EQ(Ask(list, (Root(L"share") + L"\\hang.htm").c_str(), 20), L"(not there)");
        EXPECT_LT(GetTickCount64() - began, 20'000u);
        EXPECT_LE(hanging, 20);
        isHanging = false;
        EXPECT_EQ(Ask(list, (Root(L"share") + L"\\quick.htm").c_str(), 20'000), L"quick");
        EXPECT_EQ(Ask(list, (Root(L"share") + L"\\hang.htm").c_str(), 20'000), L"late");
    }
    EXPECT_EQ(hanging, 0) << "the list waits for what it has left behind";
}

} // namespace
} // namespace vxut
