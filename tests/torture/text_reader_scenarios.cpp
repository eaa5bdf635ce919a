// The readers of mail, PDF, RTF and HTML, one document each, with every property that the format has.
#include "profile_sample.h"
#include "scenario.h"
#include "tests/support/pdf_builder.h"
#include "util.h"

#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <cwchar>
#include <iterator>
#include <string>

namespace torture {
namespace {

constexpr size_t kTexts = 6;
constexpr const wchar_t* kNames[kTexts] = {L"title",       L"subject",  L"author",
                                           L"last author", L"keywords", L"comments"};

// A property that the document does not have is null. Years of 0 are not looked at.
struct Expected {
    const wchar_t* file;
    std::string content;
    const wchar_t* texts[kTexts];
    WORD created;
    WORD modified;
};

// A failure leaves properties out, or the document is not found; none is ever wrong.
class TextReader : public Scenario {
public:
    explicit TextReader(const Expected& expected) : expected_(expected) {
        for (VARIANT& value : values_) VariantInit(&value);
    }
    ~TextReader() override {
        for (VARIANT& value : values_) VariantClear(&value);
    }

    void Prepare() override { PutFile(expected_.file, expected_.content); }
    void Run() override {
        const HUTILDOCINFO list = UtilDocInfoOpen(0);
        const DocInfoRequest request = {sizeof request, &values_[6], &values_[7], &values_[0], &values_[1],
                                        &values_[2],    &values_[3], &values_[4], &values_[5], nullptr};
        code_ = UtilDocInfoGet(list, expected_.file, &request, 1);
        UtilDocInfoClose(list);
    }
    void Check(Verdict& verdict) override {
        verdict.Expect(code_ == 1 || verdict.AnyFailed(), "the code %u", code_);
        for (size_t i = 0; i < kTexts; ++i) CheckText(verdict, values_[i], expected_.texts[i], kNames[i]);
        CheckYear(verdict, values_[6], expected_.created, "created");
        CheckYear(verdict, values_[7], expected_.modified, "modified");
    }

private:
    static void CheckText(Verdict& verdict, const VARIANT& value, const wchar_t* expected,
                          const wchar_t* name) {
        const wchar_t* const text = V_VT(&value) == VT_BSTR ? V_BSTR(&value) : nullptr;
        const bool isRight = expected ? text && std::wcscmp(text, expected) == 0 : text == nullptr;
        verdict.Expect(isRight || (verdict.AnyFailed() && text == nullptr), "%ls is '%ls'", name,
                       text ? text : L"(unset)");
    }

    static void CheckYear(Verdict& verdict, const VARIANT& value, WORD expected, const char* name) {
        SYSTEMTIME time = {};
        if (V_VT(&value) == VT_DATE) VariantTimeToSystemTime(V_DATE(&value), &time);
        verdict.Expect(expected == 0 || verdict.AnyFailed() || time.wYear == expected, "%s in %u", name,
                       time.wYear);
    }

    const Expected expected_;
    VARIANT values_[kTexts + 2];
    uint32_t code_ = 2;
};

const AddScenario<TextReader> mail(
    "read-mail", Expected{L"a.eml",
                          "From: =?utf-8?Q?A?= <a@b.c>\r\nTo: (x =?utf-8?B?Yg==?=) d@e.f,\r\n g@h.i\r\n"
                          "Subject: =?utf-8?Q?S?=\r\nDate: Fri, 13 Nov 2026 16:30:00 +0100\r\n\r\nbody",
                          {L"S", nullptr, L"A <a@b.c>", L"(xb) d@e.f, g@h.i", nullptr, nullptr},
                          2026,
                          0});

const AddScenario<TextReader> pdf(
    "read-pdf",
    Expected{L"a.pdf",
             vxut::test::PdfBuilder()
                 .Object("<</Title(no)>>")
                 .Object("<<>>")
                 .Section("/Info 1 0 R")
                 .From(1)
                 .Object("<</Title(\\376\\377\\000T)/Subject<FEFF0053>/Author[A]/Keywords(K)/X<</Y 1>>/Z 1 2"
                         "/CreationDate(D:2020)/ModDate(D:20210203040506+01'00')>>")
                 .Section("/ID[<1>]")
                 .Finish(),
             {L"T", L"S", L"A", nullptr, L"K", nullptr},
             2020,
             2021});

const AddScenario<TextReader> rtf(
    "read-rtf", Expected{L"a.rtf",
                         "{\\rtf1{\\info{\\title \\'54}{\\subject S}{\\author A}{\\keywords K}{\\doccomm C}"
                         "{\\creatim\\yr2020\\mo5\\dy6\\hr7\\min8}{\\revtim\\yr2021\\mo5\\dy6}}}",
                         {L" T", L" S", L" A", nullptr, L" K", L" C"},
                         2020,
                         2021});

const AddScenario<TextReader> html(
    "read-html", Expected{L"a.htm",
                          "<head><title>&auml;&#66;</title><meta name=\"author\" content=\"A\">"
                          "<meta name=\"description\" content=\"C\"><meta name=\"DC.Subject\" content=\"S\">"
                          "<meta name=\"keywords\" content=\"K\"></head>",
                          {L"\xE4"
                           L"B",
                           L"S", L"A", nullptr, L"K", L"C"},
                          0,
                          0});

const AddScenario<TextReader> officeBlock(
    "read-office-block",
    Expected{
        L"b.htm",
        "<head><title>T</title><o:DocumentProperties><o:Author>A</o:Author><o:LastAuthor>L</o:LastAuthor>"
        "<o:Subject>S</o:Subject><o:Keywords>K</o:Keywords><o:Description>C</o:Description>"
        "<o:Created>2020-05-06T07:08:09Z</o:Created><o:LastSaved>2021-05-06T07:08:09Z</o:LastSaved>"
        "</o:DocumentProperties></head>",
        {L"T", L"S", L"A", L"L", L"K", L"C"},
        2020,
        2021});

} // namespace
} // namespace torture
