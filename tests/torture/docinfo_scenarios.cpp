#include "profile_sample.h"
#include "scenario.h"
#include "tests/support/document_builder.h"
#include "tests/support/storage_builder.h"
#include "util.h"

#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <cwchar>
#include <iterator>
#include <string>

namespace torture {
namespace {

struct Document {
    const wchar_t* name;
    std::string content;
};

using namespace vxut::test;

std::string TitledImage() {
    ImageBuilder image;
    image.Text(269, "title").End();
    return image.File();
}

const Document kDocuments[] = {
    {L"a.htm", "<html><head><title>title</title></head>"},
    {L"b.rtf", "{\\rtf1{\\info{\\title title}}}"},
    {L"c.eml", "Subject: title\r\nFrom: a@example.org\r\n\r\n"},
    {L"d.xml", "<o:DocumentProperties><o:Subject>title</o:Subject></o:DocumentProperties>"},
    {L"e.bin", "no document"},
    {L"f.docx", Package({{"docProps/core.xml", CoreProperties("<dc:title>title</dc:title>")}})},
    {L"g.odt", Package({{"meta.xml", OpenDocumentMeta("<dc:title>title</dc:title>")}})},
    {L"h.xml",
     "<a:a xmlns:a=\"a\" xmlns:cp=\"b\" xmlns:dc=\"c\"><cp:coreProperties><dc:title>title</dc:title>"
     "</cp:coreProperties></a:a>"},
    {L"i.tif", TitledImage()},
    {L"j.jpg", Photo(TitledImage())},
    {L"k.doc", OldWordDocument({"0", "1", "title"})},
    {L"l.wpd", PerfectDocument({{17, u"title"}})},
    // Made by the system.
    {L"m.doc", ""},
    {L"n.msg", ""},
};

void PutDocuments() {
    for (const Document& document : kDocuments)
        if (!document.content.empty()) PutFile(document.name, document.content);
    MakeStorage(L"m.doc", {{kSummaryName, SummarySet({{2, NarrowValue("title")}})}});
    MakeStorage(L"n.msg", {{L"__substg1.0_0037001E", "title"},
                           {L"__recip_version1.0_#00000000/__substg1.0_3001001E", "recipient"}});
}

// Each answer is that of the file, or has nothing. A list goes on working after a failure, and a later list
// finds everything.
class DocumentList : public Scenario {
public:
    explicit DocumentList(uint32_t cacheSeconds) : cacheSeconds_(cacheSeconds) {}

    void Prepare() override { PutDocuments(); }
    void Run() override {
        list_ = UtilDocInfoOpen(cacheSeconds_);
        for (int round = 0; round < 2; ++round)
            for (size_t i = 0; i < std::size(kDocuments); ++i)
                results_[round][i].Ask(list_, kDocuments[i].name);
        UtilDocInfoClose(list_);
    }
    void Check(Verdict& verdict) override {
        for (const auto& round : results_)
            for (size_t i = 0; i < std::size(kDocuments); ++i) round[i].Check(verdict, kDocuments[i].name);
        const HUTILDOCINFO list = UtilDocInfoOpen(cacheSeconds_);
        Result later;
        later.Ask(list, kDocuments[0].name);
        UtilDocInfoClose(list);
        verdict.Expect(later.HasTitle(), "nothing is found afterwards");
    }

private:
    struct Result {
        Result() {
            VariantInit(&title);
            VariantInit(&subject);
        }
        ~Result() {
            VariantClear(&title);
            VariantClear(&subject);
        }
        Result(const Result&) = delete;
        Result& operator=(const Result&) = delete;

        void Ask(HUTILDOCINFO list, const wchar_t* name) {
            DocInfoRequest request = {};
            request.Size = sizeof request;
            request.Title = &title;
            request.Subject = &subject;
            code = UtilDocInfoGet(list, name, &request, 1);
        }
        bool HasTitle() const {
            const VARIANT& text = V_VT(&title) == VT_EMPTY ? subject : title;
            if (V_VT(&text) != VT_BSTR || !V_BSTR(&text)) return false;
            // The blank behind the control word belongs to the title of RTF.
            return std::wcscmp(V_BSTR(&text) + (V_BSTR(&text)[0] == L' '), L"title") == 0;
        }
        void Check(Verdict& verdict, const wchar_t* name) const {
            const bool isEmpty = V_VT(&title) == VT_EMPTY && V_VT(&subject) == VT_EMPTY;
            const bool isRight = std::wcscmp(name, L"e.bin") == 0 ? isEmpty : HasTitle();
            verdict.Expect(verdict.AnyFailed() || (code == 1 && isRight), "%ls: the code %u", name, code);
            verdict.Expect(isEmpty || HasTitle(), "%ls: another title", name);
            verdict.Expect(code <= 1, "%ls: the code %u", name, code);
        }

        VARIANT title;
        VARIANT subject;
        uint32_t code = 2;
    };

    const uint32_t cacheSeconds_;
    HUTILDOCINFO list_ = nullptr;
    Result results_[2][std::size(kDocuments)];
};

const AddScenario<DocumentList> documents("documents", 0u);
const AddScenario<DocumentList> documentsCached("documents-cached", 3600u);

// A date is right or a failure.
class Dates : public Scenario {
public:
    ~Dates() override { VariantClear(&text_); }

    void Run() override {
        VariantInit(&text_);
        code_ = UtilLocSystemTimeFromLocaleString(1031, L"13.11.2026 16:30", &read_, 0);
        const SYSTEMTIME time = {2026, 11, 0, 13, 16, 30, 5, 0};
        UtilLocLocaleStringFromSystemTime(1031, &time, &text_);
        isCompact_ = UtilDateTimeFromLocaleString(L"11/13/2026", compact_, 16, 0);
        UtilLocDateTimeToSYSTEMTIME(L"Fri, 13 Nov 2026 16:30:00 +0100", &mail_);
        UtilLocDateTimeToSYSTEMTIME(L"2026-11-13T16:30:00+01:00", &iso_);
    }
    void Check(Verdict& verdict) override {
        const bool any = verdict.AnyFailed();
        verdict.Expect(
            code_ == 0 ? read_.wYear == 2026 && read_.wMonth == 11 && read_.wHour == 16 : any && code_ == -52,
            "the code %d", code_);
        verdict.Expect(V_VT(&text_) == VT_BSTR ? IsWritten(any) : any, "the text of type %d", V_VT(&text_));
        verdict.Expect(isCompact_ ? std::wcscmp(compact_, L"20261113000000") == 0 : any && !compact_[0],
                       "the compact date '%ls'", compact_);
        for (const SYSTEMTIME& time : {mail_, iso_})
            verdict.Expect(time.wHour == 15 ? time.wDay == 13 : any && time.wYear == 0, "the hour %d",
                           time.wHour);
    }

private:
    // A locale that does not answer is written without what it did not say.
    bool IsWritten(bool any) const {
        return V_BSTR(&text_) && (any || std::wcscmp(V_BSTR(&text_), L"13.11.2026 16:30:05") == 0);
    }

    int32_t code_ = 1;
    SYSTEMTIME read_ = {};
    VARIANT text_ = {};
    int isCompact_ = 0;
    wchar_t compact_[16] = L"";
    SYSTEMTIME mail_ = {};
    SYSTEMTIME iso_ = {};
};

const AddScenario<Dates> dates("dates");

} // namespace
} // namespace torture
