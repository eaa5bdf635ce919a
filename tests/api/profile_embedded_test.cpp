// Files, streams and folders of files inside a profile.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace vxut::test {
namespace {

namespace fs = std::filesystem;

// A folder with an empty folder "out" in it, into which files are extracted.
class ProfileEmbeddedTest : public testing::Test {
protected:
    ProfileEmbeddedTest() {
        fs::remove_all(folder_);
        fs::create_directories(folder_ / L"out");
        start_ = fs::current_path();
    }
    ~ProfileEmbeddedTest() override {
        fs::current_path(start_);
        fs::remove_all(folder_);
    }

    std::wstring At(const std::wstring& name) const { return (folder_ / name).wstring(); }
    std::wstring Put(const std::wstring& name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return At(name);
    }
    std::string Get(const std::wstring& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        if (!file) return "(no file)";
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // All names below a folder, sorted and separated by blanks.
    std::wstring Names(const std::wstring& name = L"") const {
        std::set<std::wstring> names;
        for (const auto& entry : fs::recursive_directory_iterator(folder_ / name))
            names.insert(entry.path().lexically_relative(folder_ / name).wstring());
        std::wstring text;
        for (const std::wstring& found : names) text += (text.empty() ? L"" : L" ") + found;
        return text;
    }
    static void AddEntry(HPROF job, const wchar_t* name, const wchar_t* contents) {
        HPROFLIST entry = ProfAppendListW(job, nullptr, L"File.Entry");
        if (name) ProfAppendStringW(job, entry, L"Name", name);
        ProfAppendStringW(job, entry, L"Contents", contents);
    }

    const fs::path folder_ =
        fs::temp_directory_path() / (L"vxut-embedded-" + std::to_wstring(GetCurrentProcessId()));
    fs::path start_;
};

constexpr wchar_t kHello[] = L"aGVsbG8="; // "hello"

std::string Bytes() {
    std::string bytes;
    for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i * i / 7);
    return bytes;
}

std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

TEST_F(ProfileEmbeddedTest, AFileGoesThroughAnItemWithAndWithoutPassword) {
    const std::wstring source = Put(L"a.bin", Bytes());
    const std::wstring copy = Put(L"b.bin", "old");
    const Job job;
    for (const wchar_t* const password : {(const wchar_t*)nullptr, L"", L"secret"}) {
        ProfDeleteListW(job, nullptr, L"");
        ProfAppendFileW(job, nullptr, L"List/Item", password, source.c_str());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(ValueOf(job, L"List/Item").substr(0, 3), L"@2@");
        EXPECT_EQ(ProfGetFileW(job, nullptr, L"List/Item", password, copy.c_str()), PROF_OK);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(Get(L"b.bin"), Bytes());
    }
    EXPECT_EQ(ProfGetFileW(job, nullptr, L"List/Item", L"wrong", copy.c_str()), PROF_OK);
    EXPECT_NE(Get(L"b.bin"), Bytes());
    ProfAppendFileA(job, nullptr, "Narrow", "secret", Narrow(source).c_str());
    EXPECT_EQ(ValueOf(job, L"Narrow"), ValueOf(job, L"List/Item"));
    EXPECT_EQ(ProfGetFileA(job, nullptr, "Narrow", "secret", Narrow(At(L"new.bin")).c_str()), PROF_OK);
    EXPECT_EQ(Get(L"new.bin"), Bytes());
}

TEST_F(ProfileEmbeddedTest, FilesThatCannotBeReadOrWrittenLeaveTheirCodes) {
    const Job job;
    const std::wstring busy = Put(L"busy", "old");
    const HANDLE holder =
        CreateFileW(busy.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const struct {
        const wchar_t* file;
        DWORD error;
    } kUnreadable[] = {{L"missing", ERROR_FILE_NOT_FOUND},
                       {L"no\\file", ERROR_PATH_NOT_FOUND},
                       {L"busy", ERROR_SHARING_VIOLATION},
                       {L"", ERROR_INVALID_NAME}}; // the folder
    for (const auto& row : kUnreadable) {
        ProfAppendFileW(job, nullptr, L"Empty", nullptr, At(row.file).c_str());
        EXPECT_EQ(GetLastError(), row.error) << row.file;
    }
    ProfAppendFileW(job, nullptr, L"Empty", nullptr, nullptr);
    ProfAppendFileW(job, nullptr, L"Empty", nullptr, Put(L"empty", "").c_str());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(TreeOf(job), L"Empty=;Empty=;Empty=;Empty=;Empty=;Empty=;");

    ProfAppendStringW(job, nullptr, L"Hello", kHello);
    const struct {
        const wchar_t* item;
        const wchar_t* file;
        int32_t code;
        DWORD error;
    } kRows[] = {{L"Missing", L"out.bin", PROF_ERR_NOT_FOUND, ERROR_NOT_FOUND},
                 {L"Empty", L"out.bin", PROF_ERR_NOT_FOUND, ERROR_NOT_FOUND},
                 {nullptr, L"out.bin", PROF_ERR_NOT_FOUND, ERROR_NOT_FOUND},
                 {L"Hello", L"busy", PROF_ERR_WRITE, ERROR_SHARING_VIOLATION},
                 {L"Hello", L"no\\file", PROF_ERR_WRITE, ERROR_PATH_NOT_FOUND},
                 {L"Hello", L"nul", PROF_ERR_WRITE, ERROR_INVALID_NAME},
                 {L"Hello", L"out", PROF_ERR_WRITE, ERROR_ACCESS_DENIED}};
    for (const auto& row : kRows) {
        EXPECT_EQ(ProfGetFileW(job, nullptr, row.item, nullptr, At(row.file).c_str()), row.code) << row.file;
        EXPECT_EQ(GetLastError(), row.error) << row.file;
    }
    CloseHandle(holder);
    EXPECT_EQ(Get(L"busy"), "old");
    EXPECT_EQ(Names(), L"busy empty out");
    EXPECT_EQ(ProfGetFileW(job, nullptr, L"Hello", nullptr, nullptr), PROF_ERR_WRITE);
}

TEST_F(ProfileEmbeddedTest, AStreamGoesThroughAnItem) {
    FakeStream source(Bytes());
    source.position = 17;
    FakeStream target("old content that is longer" + Bytes());
    const Job job;
    ProfAppendStreamW(job, nullptr, L"a", L"secret", &source);
    ProfAppendStreamA(job, nullptr, "b", "secret", &source);
    EXPECT_EQ(ValueOf(job, L"a"), ValueOf(job, L"b"));
    EXPECT_EQ(ProfGetStreamW(job, nullptr, L"a", L"secret", &target), PROF_OK);
    EXPECT_EQ(target.bytes, Bytes());
    EXPECT_EQ(target.position, 0u);
    target.bytes = "old";
    EXPECT_EQ(ProfGetStreamA(job, nullptr, "b", "secret", &target), PROF_OK);
    EXPECT_EQ(target.bytes, Bytes());
    EXPECT_EQ(ProfGetStreamW(job, nullptr, L"c", nullptr, &target), PROF_ERR_NOT_FOUND);
    EXPECT_EQ(ProfGetStreamW(job, nullptr, L"a", nullptr, nullptr), PROF_ERR_WRITE);
    target.bytes = "old";
    target.capacity = 100;
    EXPECT_EQ(ProfGetStreamW(job, nullptr, L"a", L"secret", &target), PROF_ERR_WRITE);
    EXPECT_EQ(target.bytes, "old");
    source.readResult = STG_E_ACCESSDENIED;
    for (IStream* const unreadable : {static_cast<IStream*>(&source), static_cast<IStream*>(nullptr)}) {
        ProfAppendStreamW(job, nullptr, L"d", nullptr, unreadable);
        EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS});
        EXPECT_EQ(ValueOf(job, L"d"), L"");
    }
    EXPECT_EQ(source.references, 1u);
    EXPECT_EQ(target.references, 1u);
}

TEST_F(ProfileEmbeddedTest, AFolderOfFilesGoesThroughAList) {
    fs::create_directory(folder_ / L"in");
    fs::create_directory(folder_ / L"in" / L"sub.txt");
    Put(L"in\\a.txt", "first");
    Put(L"in\\b.log", "second");
    Put(L"in\\c.txt", "");
    Put(L"in\\\u65E5.txt", Bytes());
    Put(L"out\\a.txt", "old");
    const Job job;
    HPROFLIST list = ProfCreateListW(job, nullptr, L"Files");
    EXPECT_EQ(ProfAppendFilesW(job, list, At(L"in\\*.txt").c_str(), L"pw"), 3) << "the empty one is counted";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(ProfAppendFilesW(job, list, At(L"in\\*.none").c_str(), nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(ProfAppendFilesW(job, list, At(L"no\\*").c_str(), nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(ProfAppendFilesW(job, list, nullptr, nullptr), 0);
    EXPECT_EQ(std::ranges::count(TreeOf(job, list), L'{'), 2) << TreeOf(job, list);
    EXPECT_EQ(ProfExtractFilesW(job, list, At(L"out").c_str(), L"pw"), PROF_OK);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(Names(L"out"), L"a.txt \u65E5.txt");
    EXPECT_EQ(Get(L"out\\a.txt"), "first");
    EXPECT_EQ(Get(L"out\\\u65E5.txt"), Bytes());

    ProfDeleteListW(job, nullptr, L"");
    EXPECT_EQ(ProfAppendFilesA(job, nullptr, Narrow(At(L"in\\b*")).c_str(), "pw"), 1);
    EXPECT_EQ(ValueOf(job, L"File.Entry/Name"), L"b.log");
    EXPECT_EQ(ProfExtractFilesA(job, nullptr, (Narrow(At(L"new")) + "\\").c_str(), "pw"), PROF_OK);
    EXPECT_EQ(Get(L"new\\b.log"), "second");
}

TEST_F(ProfileEmbeddedTest, EntriesThatLackSomethingArePassedOver) {
    Put(L"out\\gone", "old");
    const Job job;
    ProfAppendStringW(job, nullptr, L"File.Entry", L"an item, no list");
    AddEntry(job, nullptr, kHello);
    AddEntry(job, L"", kHello);
    AddEntry(job, L"first", kHello);
    AddEntry(job, L"gone", nullptr);
    AddEntry(job, L"never", L"");
    AddEntry(job, L"damaged", L"@2@ZAAAAFF6Ul9QYWNrZWQAeNpL");
    AddEntry(job, L"last", kHello);
    AddEntry(job, L"last", L"Yg==");
    EXPECT_EQ(ProfExtractFilesW(job, nullptr, At(L"out").c_str(), nullptr), PROF_OK);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
    EXPECT_EQ(Names(L"out"), L"damaged first last");
    EXPECT_EQ(Get(L"out\\damaged"), "");
    EXPECT_EQ(Get(L"out\\first"), "hello");
    EXPECT_EQ(Get(L"out\\last"), "b");

    EXPECT_EQ(ProfExtractFilesW(job, nullptr, At(L"no\\out").c_str(), nullptr), PROF_ERR_WRITE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(ProfExtractFilesW(job, nullptr, nullptr, nullptr), PROF_ERR_WRITE);
    EXPECT_EQ(ProfExtractFilesW(job, ProfGetListW(job, nullptr, L"File.Entry"), At(L"no").c_str(), nullptr),
              PROF_OK)
        << "a list without files makes no folder";
    EXPECT_EQ(Names(), L"out out\\damaged out\\first out\\last");
    EXPECT_EQ(ProfExtractFilesW(nullptr, nullptr, L"x", nullptr), PROF_OK);
}

// Whatever a name says, nothing is written or deleted outside the folder, and the next file is extracted.
TEST_F(ProfileEmbeddedTest, NoNameLeadsOutOfTheFolder) {
    Put(L"keep", "old");
    Put(L"out\\keep", "old");
    fs::create_directory(folder_ / L"out" / L"sub");
    fs::current_path(folder_);
    const std::wstring full = At(L"keep");
    const std::wstring names[] = {L"..\\keep",
                                  L"../keep",
                                  L"..",
                                  L"\\keep",
                                  full,
                                  full.substr(0, 2) + L"keep",
                                  L"\\\\?\\" + full,
                                  L"sub\\..\\..\\keep",
                                  L"sub/keep",
                                  L"sub",
                                  L"keep:stream",
                                  L"keep.",
                                  L"keep ",
                                  L"nul",
                                  L"con.txt",
                                  L"k*p",
                                  std::wstring(300, L'n')};
    for (const std::wstring& name : names) {
        for (const wchar_t* const contents : {+kHello, (const wchar_t*)nullptr}) {
            const Job job;
            AddEntry(job, name.c_str(), contents);
            EXPECT_EQ(ProfExtractFilesW(job, nullptr, At(L"out").c_str(), nullptr), PROF_OK);
            EXPECT_NE(GetLastError(), DWORD{ERROR_SUCCESS}) << name;
            AddEntry(job, L"next", kHello);
            EXPECT_EQ(ProfExtractFilesW(job, nullptr, L"out\\", nullptr), PROF_OK);
            EXPECT_EQ(Names(), L"keep out out\\keep out\\next out\\sub") << name;
            EXPECT_EQ(Get(L"keep") + Get(L"out\\keep"), "oldold") << name;
        }
    }
}

} // namespace
} // namespace vxut::test
