// What the library decides by patterns and tables: file names, tokens in paths, charsets.
#include "profile_sample.h"
#include "scenario.h"
#include "util.h"

#include <oleauto.h>

#include <cwchar>
#include <iterator>

namespace torture {
namespace {

// A name is refused because it is reserved, and for no other reason; a failing call has a code of its own.
class FileNames : public Scenario {
public:
    ~FileNames() override { ProfJobClose(job_); }

    void Prepare() override {
        job_ = ProfJobOpenW(nullptr);
        ProfAppendStringW(job_, nullptr, L"Name", L"value");
    }
    void Run() override {
        for (size_t i = 0; i < std::size(kNames); ++i) {
            codes_[i] = ProfSaveW(job_, kNames[i].name, PROF_FORMAT_TEXT);
            errors_[i] = GetLastError();
        }
    }
    void Check(Verdict& verdict) override {
        for (size_t i = 0; i < std::size(kNames); ++i) {
            const bool isRefused = codes_[i] != PROF_OK && errors_[i] == ERROR_INVALID_NAME;
            const bool isSaved = codes_[i] == PROF_OK;
            verdict.Expect(verdict.AnyFailed() || (kNames[i].isGood ? isSaved : isRefused),
                           "'%ls' has the code %d and the error %lu", kNames[i].name, codes_[i], errors_[i]);
            verdict.Expect(kNames[i].isGood ? !isRefused : !isSaved,
                           "'%ls' is taken for %s name: the code %d", kNames[i].name,
                           isSaved ? "an allowed" : "a reserved", codes_[i]);
        }
    }

private:
    static constexpr struct {
        const wchar_t* name;
        bool isGood;
    } kNames[] = {{L"good name.prf", true}, {L"NUL.prf", false}, {L"a?b.prf", false}, {L"good.txt", true}};

    HPROF job_ = nullptr;
    int32_t codes_[std::size(kNames)] = {};
    DWORD errors_[std::size(kNames)] = {};
};

const AddScenario<FileNames> fileNames("file-names");

// Tokens are expanded all, or there is no text. A name that means nothing stays.
class Tokens : public Scenario {
public:
    ~Tokens() override { SysFreeString(expanded_); }

    void Run() override {
        result_ = UtilExpandDefaultTokensOfFolderPath(L"%WINDIR%|%NO SUCH NAME%|%PERSONAL%|%", &expanded_);
    }
    void Check(Verdict& verdict) override {
        verdict.Expect(verdict.AnyFailed() ? result_ == 0 || result_ == 1 : result_ == 1, "the result %d",
                       result_);
        verdict.Expect((result_ == 1) == (expanded_ != nullptr), "the result %d with %s text", result_,
                       expanded_ ? "a" : "no");
        if (expanded_ == nullptr) return;
        verdict.Expect(std::wcsstr(expanded_, L"%WINDIR%") == nullptr, "'%ls'", expanded_);
        verdict.Expect(std::wcsstr(expanded_, L"|%NO SUCH NAME%|") != nullptr, "'%ls'", expanded_);
        verdict.Expect(verdict.AnyFailed() || std::wcsstr(expanded_, L"%PERSONAL%") == nullptr, "'%ls'",
                       expanded_);
    }

private:
    BSTR expanded_ = nullptr;
    int result_ = -1;
};

const AddScenario<Tokens> tokens("tokens");

// The charset of a text is that of its script, whatever fails.
class Charsets : public Scenario {
public:
    void Run() override {
        for (size_t i = 0; i < std::size(kTexts); ++i)
            charsets_[i] = UtilGetLikelyCharsetFromString(kTexts[i].text);
    }
    void Check(Verdict& verdict) override {
        for (size_t i = 0; i < std::size(kTexts); ++i)
            verdict.Expect(charsets_[i] == kTexts[i].charset, "text %zu has the charset %u", i, charsets_[i]);
    }

private:
    static constexpr struct {
        const wchar_t* text;
        uint32_t charset;
    } kTexts[] = {{L"", 0},
                  {L"plain", 0},
                  {L"\x3B1\x3B2", GREEK_CHARSET},
                  {L"a \x416", RUSSIAN_CHARSET},
                  {L"\x5D0", HEBREW_CHARSET},
                  {L"\x627", ARABIC_CHARSET},
                  {L"\xE01", THAI_CHARSET},
                  {L"\xAC00", HANGEUL_CHARSET},
                  {L"\x3042", SHIFTJIS_CHARSET},
                  {L"\x3B1\x416", 0}};

    uint32_t charsets_[std::size(kTexts)] = {};
};

const AddScenario<Charsets> charsets("charsets");

} // namespace
} // namespace torture
