#include "profile_sample.h"
#include "scenario.h"

#include <oleauto.h>

#include <algorithm>
#include <string>

namespace torture {
namespace {

constexpr wchar_t kPassword[] = L"secret";

std::string FirstFile() { return std::string(5000, 'a') + "end"; }

void PutFiles() {
    CreateDirectoryW(L"in", nullptr);
    PutFile(L"in\\a.txt", FirstFile());
    PutFile(L"in\\b.txt", "second");
}

// Adds the files to the root, and the first one as an item. Returns whether all of that is said to be done.
bool Embed(HPROF job) {
    const bool hasBoth = ProfAppendFilesW(job, nullptr, L"in\\*.txt", kPassword) == 2;
    const bool areWhole = GetLastError() == ERROR_SUCCESS;
    ProfAppendFileW(job, nullptr, L"Item", kPassword, L"in\\a.txt");
    return hasBoth && areWhole && GetLastError() == ERROR_SUCCESS;
}

// What is in the tree is whole; an item whose file could not be read is empty. Everything is there if no
// error was left.
class EmbedFiles : public Scenario {
public:
    ~EmbedFiles() override { ProfJobClose(job_); }

    void Prepare() override {
        PutFiles();
        const HPROF expected = ProfJobOpenW(nullptr);
        Embed(expected);
        expected_ = TreeOf(expected);
        ProfJobClose(expected);
        job_ = ProfJobOpenW(nullptr);
    }
    void Run() override { isDone_ = Embed(job_); }
    void Check(Verdict& verdict) override {
        const Tree tree = TreeOf(job_);
        verdict.Expect(isDone_ || verdict.AnyFailed(), "a failure without a cause");
        verdict.Expect(!isDone_ || tree == expected_, "no error, but %zu of %zu entries", tree.size(),
                       expected_.size());
        for (const std::wstring& entry : tree)
            verdict.Expect(std::ranges::count(expected_, entry) > 0 || entry == L"Item=",
                           "the entry '%.60ls'", entry.c_str());
        verdict.Expect(std::ranges::count(tree, L"File.Entry/") * 3 + std::ranges::count_if(tree, IsItem) ==
                           static_cast<int>(tree.size()),
                       "a list that is not whole");
    }

private:
    static bool IsItem(const std::wstring& entry) { return entry.starts_with(L"Item="); }

    Tree expected_;
    HPROF job_ = nullptr;
    bool isDone_ = false;
};

const AddScenario<EmbedFiles> embedFiles("embed-files");

// Each file has its old or its new content, the new one if no error was left. No other file is made.
class ExtractFiles : public Scenario {
public:
    ~ExtractFiles() override { ProfJobClose(job_); }

    void Prepare() override {
        PutFiles();
        job_ = ProfJobOpenW(nullptr);
        Embed(job_);
        CreateDirectoryW(L"out", nullptr);
        PutFile(L"out\\a.txt", "old");
    }
    void Run() override {
        filesCode_ = ProfExtractFilesW(job_, nullptr, L"out", kPassword);
        filesError_ = GetLastError();
        fileCode_ = ProfGetFileW(job_, nullptr, L"Item", kPassword, L"out\\c.txt");
        fileError_ = GetLastError();
    }
    void Check(Verdict& verdict) override {
        for (const int32_t code : {filesCode_, fileCode_})
            verdict.Expect(code == PROF_OK ||
                               (verdict.AnyFailed() && (code == PROF_ERR_WRITE || code == PROF_ERR_MEMORY)),
                           "the code %d", code);
        verdict.Expect((fileCode_ == PROF_OK) == (fileError_ == ERROR_SUCCESS),
                       "the code %d with the error %lu", fileCode_, fileError_);
        verdict.Expect(filesCode_ == PROF_OK || filesError_ != ERROR_SUCCESS, "the code %d without an error",
                       filesCode_);
        const bool areNew = filesCode_ == PROF_OK && filesError_ == ERROR_SUCCESS;
        CheckFile(verdict, L"out\\a.txt", "old", FirstFile(), areNew);
        CheckFile(verdict, L"out\\b.txt", "(no file)", "second", areNew);
        CheckFile(verdict, L"out\\c.txt", "(no file)", FirstFile(), fileCode_ == PROF_OK);
        for (const wchar_t* const name : {L"out\\a.txt", L"out\\b.txt", L"out\\c.txt"}) DeleteFileW(name);
        const bool isClean = RemoveDirectoryW(L"out") != FALSE;
        // A file beside the target stays if it cannot be deleted.
        verdict.Expect(isClean || verdict.ThePlan().domain == Domain::kFile, "another file is left");
    }

private:
    static void CheckFile(Verdict& verdict, const wchar_t* name, const std::string& old,
                          const std::string& content, bool isNew) {
        const std::string now = BytesOf(name);
        verdict.Expect(now == content || (!isNew && now == old), "%ls has %zu bytes", name, now.size());
    }

    HPROF job_ = nullptr;
    int32_t filesCode_ = 1;
    int32_t fileCode_ = 1;
    DWORD filesError_ = 0;
    DWORD fileError_ = 0;
};

const AddScenario<ExtractFiles> extractFiles("extract-files");

// A variant is stored and read whole, or neither the tree nor the target changes.
class Variants : public Scenario {
public:
    ~Variants() override {
        ProfJobClose(job_);
        SysFreeString(text_.bstrVal);
        if (out_.vt == VT_BSTR) SysFreeString(out_.bstrVal);
    }

    void Prepare() override {
        text_.vt = VT_BSTR;
        text_.bstrVal = SysAllocString(std::wstring(300, L'v').c_str());
        out_.vt = VT_I4;
        job_ = ProfJobOpenW(nullptr);
        ProfAppendVariant(job_, nullptr, L"Stored", &text_);
        stored_ = TreeOf(job_);
    }
    void Run() override {
        ProfSetVariant(job_, nullptr, L"List/New", &text_);
        setError_ = GetLastError();
        code_ = ProfGetVariant(job_, nullptr, L"Stored", &out_, nullptr);
    }
    void Check(Verdict& verdict) override {
        const Tree tree = TreeOf(job_);
        const bool isSet = setError_ == ERROR_SUCCESS;
        verdict.Expect(verdict.AnyFailed() || (isSet && code_ == PROF_OK), "the error %lu and the code %d",
                       setError_, code_);
        verdict.Expect(
            isSet ? tree.size() == 3 && tree[2].substr(9) == stored_[0].substr(7) : tree == stored_,
            "after the error %lu the tree has %zu entries", setError_, tree.size());
        verdict.Expect(code_ == PROF_OK || code_ == PROF_ERR_MEMORY, "the code %d", code_);
        const bool isRead = out_.vt == VT_BSTR && std::wstring(300, L'v') == out_.bstrVal;
        verdict.Expect(code_ == PROF_OK ? isRead : out_.vt == VT_I4, "the type %d after the code %d", out_.vt,
                       code_);
    }

private:
    HPROF job_ = nullptr;
    VARIANT text_{};
    VARIANT out_{};
    Tree stored_;
    DWORD setError_ = 0;
    int32_t code_ = 1;
};

const AddScenario<Variants> variants("variants");

// A profile comes back whole from the clipboard, or with a code; the clipboard is free afterwards.
class Clipboard : public Scenario {
public:
    ~Clipboard() override {
        ProfJobClose(job_);
        ProfJobClose(copy_);
    }

    void Prepare() override {
        OpenClipboard(nullptr);
        EmptyClipboard();
        CloseClipboard();
        job_ = ProfJobOpenW(nullptr);
        FillSample(job_, 1);
    }
    void Run() override {
        code_ = ProfSaveToClipboard(job_, nullptr, PROF_FORMAT_XML);
        copy_ = ProfJobOpenClipboard(nullptr);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(code_ == PROF_OK || (any && (code_ == PROF_ERR_SAVE || code_ == PROF_ERR_WRITE)),
                       "the code %d", code_);
        const int32_t error = copy_ ? ProfGetError(copy_) : PROF_ERR_MEMORY;
        verdict.Expect(error == PROF_OK || any, "the error %d", error);
        verdict.Expect(error != PROF_OK || TreeOf(copy_) == TreeOf(job_), "PROF_OK with another tree");
        verdict.Expect(OpenClipboard(nullptr) && CloseClipboard(), "the clipboard is still open");
    }

private:
    HPROF job_ = nullptr;
    HPROF copy_ = nullptr;
    int32_t code_ = 1;
};

const AddScenario<Clipboard> clipboard("clipboard");

} // namespace
} // namespace torture
