#include "text_document_targets.h"

#include "docinfo/readers/html_references.h"
#include "docinfo/readers/pdf_date.h"
#include "docinfo/readers/readers.h"
#include "docinfo/readers/rtf.h"
#include "tests/support/pdf_builder.h"

#include <objbase.h>
#include <windows.h>
// After objbase.h, which it needs:
#include <shlwapi.h>

namespace fuzz {
namespace {

using namespace vxut;
using vxut::test::PdfBuilder;
using vxut::test::PdfWithInfo;

// Every reader of these formats succeeds on any bytes.
template <int (*read)(clsDocu& document, clsDocFile& file)>
void Run(const uint8_t* data, size_t size) {
    IStream* const stream = SHCreateMemStream(data, static_cast<UINT>(size));
    if (stream == nullptr) return;
    clsDocFile file(L"");
    clsDocu document;
    if (file.OpenOnStream(stream) == 0 && read(document, file) != 0) __builtin_trap();
    stream->Release();
}

// The text up to the first zero byte, as readers have it.
String Latin(const uint8_t* data, size_t size) {
    const clsCHARString text(reinterpret_cast<const char*>(data), static_cast<int64_t>(size));
    return text.ToString(0).Text();
}

void RunPdf(const uint8_t* data, size_t size) {
    Run<ReadPdf>(data, size);
    PdfDate(Latin(data, size));
}

// What has been decoded has nothing left to decode, but for two backslashes.
void RunRtf(const uint8_t* data, size_t size) {
    Run<ReadRtf>(data, size);
    const String text = RtfDecodeText(Latin(data, size));
    if (Find(text.Text(), L"\\\\") < 0 && Find(text.Text(), L"\\'") < 0 && !(RtfDecodeText(text) == text) &&
        Find(text.Text(), L"\r") < 0 && Find(text.Text(), L"\n") < 0)
        __builtin_trap();
}

// A text without line ends and references decodes to itself.
void RunHtml(const uint8_t* data, size_t size) {
    Run<ReadHtml>(data, size);
    String text = Latin(data, size);
    ReadOfficeBlock(*MakeCounted<clsDocu>().Get(), text);
    DecodeHtmlEntities(text, true);
    String again = text;
    DecodeHtmlEntities(again, false);
    if (Find(text.Text(), L"&#") < 0 && Find(text.Text(), L"\r") < 0 && Find(text.Text(), L"\n") < 0 &&
        !(again == text))
        __builtin_trap();
}

} // namespace

std::vector<Target> TextDocumentTargets() {
    return {
        {"mail",
         Run<ReadMail>,
         {Bytes(
              "From: =?iso-8859-1?Q?Andr=E9?= <a@b.c>\r\nTo: \"Doe, J.\" (x =?utf-8?B?w6Q=?=) <EX:/O=X>,\r\n"
              "\troot\r\nSubject: =?utf-8*de?q?x?= y\r\nDate: Fri, 13 Nov 2026 16:30:00 +0100\r\n\r\nbody"),
          Bytes("From: a@b.c\nTo: a\\\"b\nDate: 1 Dec 2026 24:59:59 GMT\n\n")},
         {Bytes("=?utf-8?Q?"), Bytes("=?koi8-r?b?"), Bytes("?="), Bytes("From: "), Bytes("To: "),
          Bytes("Subject: "), Bytes("Date: "), Bytes("\r\n"), Bytes("\n\n"), Bytes("<EX:"), Bytes("@b.c"),
          Bytes("\""), Bytes("("), Bytes(")"), Bytes("\\")}},
        {"pdf",
         RunPdf,
         {Bytes(PdfWithInfo("<</Title(T\\(\\376)/Au#74hor<FEFF0041>/Subject[(x)]/Keywords 12 0 R\n"
                            "/CreationDate(D:20070102030405+01'00')/X<</Y true>> % c\n>>")),
          Bytes(PdfBuilder()
                    .Object("<</Title(\xFE\xFF\\000A)>>")
                    .Object("<<>>")
                    .Section("/Info 1 0 R")
                    .From(1)
                    .Object("<</Title(new)/ModDate(D:2007)>>")
                    .Section("")
                    .Finish()),
          Bytes("1 0 obj<</Type/XRef/Filter/FlateDecode/Length 2>>stream\r\nxx "
                "endstream\nstartxref\n0\n%%EOF")},
         {Bytes("startxref\n"), Bytes("xref\n0 3\n"), Bytes("0000000009 00000 n \n"), Bytes("trailer\n<<"),
          Bytes("/Prev "), Bytes("/Info 1 0 R"), Bytes("<<"), Bytes(">>"), Bytes("<FEFF"), Bytes("("),
          Bytes("\\376\\377"), Bytes("/Title"), Bytes("/ModDate(D:"), Bytes(" obj\n"), Bytes("true"),
          Bytes("#41")}},
        {"rtf",
         RunRtf,
         {Bytes("{\\rtf1{\\info{\\title Gr\\'fc\\'dfe}{\\author A{\\b 1} x}{\\*\\company C}{\\keywords1 k}"
                "{\\creatim\\yr2026\\mo11\\dy13\\hr16\\min30}{\\revtim\\yr2027} }\\pard x}"),
          Bytes("\\'5c'41\\\\")},
         {Bytes("{\\info"), Bytes("{\\title "), Bytes("{\\author{"), Bytes("}"), Bytes("}}"), Bytes("\\'"),
          Bytes("\\'5c"), Bytes("\\'7d"), Bytes("{\\revtim"), Bytes("\\yr1"), Bytes("\\\\")}},
        {"htmldoc",
         RunHtml,
         {Bytes("<html><head><title>a&auml;&#228;&#xE4;</title><meta name=\"author\" content=\"A\">"
                "<meta name=\"DC.Subject\" content=\"S\"></head>"),
          Bytes("<head><title>T</title><o:DocumentProperties><o:Author>A</o:Author>"
                "<o:Created>2010-06-28T23:52:00Z</o:Created></o:DocumentProperties></head>")},
         {Bytes("<head>"), Bytes("</head>"), Bytes("<title>"), Bytes("</title>"),
          Bytes("<meta name=\"keywords\" content=\""), Bytes("\">"), Bytes("<o:DocumentProperties>"),
          Bytes("</o:DocumentProperties>"), Bytes("<o:Author>"), Bytes("</o:"), Bytes("<o:"), Bytes("&#x"),
          Bytes("&#38;"), Bytes("&auml;"), Bytes("&#59;")}},
    };
}

} // namespace fuzz
