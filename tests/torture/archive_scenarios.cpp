#include "profile_sample.h"
#include "scenario.h"
#include "util.h"

#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <cstring>
#include <string>
#include <vector>

namespace torture {
namespace {

constexpr wchar_t kArchive[] = L"a.zip";

// An archive that is reported as complete has all entries that were reported as added, and its end record
// agrees with its size. No temporary file is left.
class ZipCreate : public Scenario {
public:
    void Prepare() override {
        CreateDirectoryW(L"in", nullptr);
        CreateDirectoryW(L"in\\sub", nullptr);
        PutFile(L"in\\a.txt", std::string(5000, 'a'));
        PutFile(L"in\\sub\\b.txt", "b");
        PutFile(kArchive, "old");
    }
    void Run() override {
        const HUTILZIP zip = UtilZIPCreate(kArchive, L"comment");
        isCreated_ = zip != nullptr;
        added_ = UtilZIPAppend(zip, L"in\\a.txt", L"\u65E5", L"first");
        listed_ = UtilZIPAppendList(zip, L"in", nullptr, UTIL_ZIP_RECURSIVE);
        closed_ = UtilZIPClose(zip);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        const std::string bytes = BytesOf(kArchive);
        DeleteFileW(kArchive);
        verdict.Expect(any || (isCreated_ && added_ == 0 && listed_ == 0 && closed_ == 0),
                       "created %d, the codes %d, %d and %d", isCreated_, added_, listed_, closed_);
        verdict.Expect(added_ >= UTIL_ZIP_ERR_ENTRY && added_ <= 0, "the code %d of an addition", added_);
        verdict.Expect(closed_ == 0 || closed_ == UTIL_ZIP_ERR_WRITE, "the code %d at the end", closed_);
        if (!isCreated_) {
            verdict.Expect(bytes == "old" || bytes.empty(), "no archive, but %zu bytes", bytes.size());
        } else if (closed_ == UTIL_ZIP_OK) {
            CheckArchive(verdict, bytes);
        }
    }

private:
    void CheckArchive(Verdict& verdict, const std::string& bytes) const {
        const size_t headers = Count(bytes, "PK\1\2");
        verdict.Expect(bytes.ends_with("comment"), "an archive without its end");
        verdict.Expect(headers == Count(bytes, "PK\3\4"), "%zu central headers", headers);
        verdict.Expect(verdict.AnyFailed() || headers == 4, "%zu entries", headers);
        verdict.Expect(added_ != 0 || bytes.find("first") != std::string::npos, "the entry is missing");
        const size_t end = bytes.rfind("PK\5\6");
        if (!verdict.Expect(end + 22 + 7 == bytes.size(), "the end record is at %zu", end)) return;
        uint32_t index[2]; // size and offset
        std::memcpy(index, bytes.data() + end + 12, sizeof index);
        verdict.Expect(index[0] + index[1] == end, "the central directory is said to end at %u",
                       index[0] + index[1]);
    }
    static size_t Count(const std::string& text, const std::string& wanted) {
        size_t count = 0;
        for (size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) ++count;
        return count;
    }

    bool isCreated_ = false;
    int32_t added_ = 1;
    int32_t listed_ = 1;
    int32_t closed_ = 1;
};

const AddScenario<ZipCreate> zipCreate("zip-create");

// A conversion stores the right text or leaves the target alone.
class Html : public Scenario {
public:
    ~Html() override {
        for (const BSTR text : results_) SysFreeString(text);
    }

    void Run() override {
        UtilConvertHtml2PlainText(L"<p>a &amp; <a href=\"u\">b</a>", &results_[0], 0);
        UtilConvertText2HTML(L"a\r\nb\xAB", &results_[1], 0);
        UtilMaskAllHTMLCharacters(L"<\xE4>", &results_[2]);
        UtilDemaskAllHTMLCharacters(L"&lt;&#65;", &results_[3]);
    }
    void Check(Verdict& verdict) override {
        static const wchar_t* const kWanted[] = {L"a & b [u]", L"<p>a</p><p>b&laquo;&laquo;</p>",
                                                 L"&lt;&auml;&gt;", L"<A"};
        for (size_t i = 0; i < std::size(kWanted); ++i) {
            const bool isRight = results_[i] && std::wcscmp(results_[i], kWanted[i]) == 0;
            verdict.Expect(isRight || (verdict.AnyFailed() && !results_[i]), "the text '%ls'",
                           results_[i] ? results_[i] : L"(null)");
        }
    }

private:
    BSTR results_[4] = {};
};

const AddScenario<Html> html("html");

} // namespace
} // namespace torture
