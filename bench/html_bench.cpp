// HTML to text on a page of 10 MB. The peer removes tags with one expression in PCRE2's machine code, which
// is what programs without a parser do; it neither reads entities nor links nor collapses blanks. The floor
// copies the page.
#include "encoding/html.h"
#include "support.h"
#include "text/string.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using vxut::HtmlTags;
using vxut::String;

constexpr size_t kPageUnits = 5000000; // of two bytes

std::wstring MakePage() {
    std::wstring page = L"<html><head><title>Page</title><style>p { margin: 0 }</style></head>\r\n<body>\r\n";
    for (int i = 0; page.size() < kPageUnits; ++i) {
        page += L"<div class=\"entry\"><h2>Entry " + std::to_wstring(i) + L"</h2>\r\n";
        page +=
            L"<p>Plain text of some length, with <b>bold</b> words &amp; entities such as &auml; and &#8364;,"
            L" and\r\n    a line break in between.<br />More text follows here.</p>\r\n";
        page += L"<ul><li>first<li>second</ul><a href=\"http://host/page\">a link</a>\r\n</div>\r\n";
    }
    return page + L"</body></html>\r\n<a>";
}

const std::wstring& Page() {
    static const std::wstring page = MakePage();
    return page;
}

void ToTextVxut(benchmark::State& state) {
    const String page(Page().c_str());
    for (auto _ : state) benchmark::DoNotOptimize(vxut::HtmlToText(page, HtmlTags::kAngleBrackets).Text());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Page().size() * sizeof(wchar_t)));
}

PCRE2_SPTR Units(const wchar_t* text) { return reinterpret_cast<PCRE2_SPTR>(text); }

void StripTagsPcre2(benchmark::State& state) {
    int error = 0;
    PCRE2_SIZE offset = 0;
    const std::unique_ptr<pcre2_code, void (*)(pcre2_code*)> code(
        pcre2_compile(Units(L"<[^>]*>"), PCRE2_ZERO_TERMINATED, 0, &error, &offset, nullptr),
        pcre2_code_free);
    pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE);
    std::wstring out(Page().size() + 1, L'\0');
    for (auto _ : state) {
        PCRE2_SIZE length = out.size();
        const int count = pcre2_substitute(code.get(), Units(Page().c_str()), Page().size(), 0,
                                           PCRE2_SUBSTITUTE_GLOBAL, nullptr, nullptr, Units(L""), 0,
                                           reinterpret_cast<PCRE2_UCHAR*>(out.data()), &length);
        if (count <= 0) state.SkipWithError("no tags");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Page().size() * sizeof(wchar_t)));
}

void CopyPage(benchmark::State& state) {
    std::wstring out(Page().size(), L'\0');
    for (auto _ : state) {
        std::memcpy(out.data(), Page().data(), Page().size() * sizeof(wchar_t));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Page().size() * sizeof(wchar_t)));
}
BENCHMARK(ToTextVxut)->Name("HtmlToText/vxut");
BENCHMARK(StripTagsPcre2)->Name("HtmlToText/PCRE2 strips tags");
BENCHMARK(CopyPage)->Name("HtmlToText/floor:memcpy");

void FromTextVxut(benchmark::State& state) {
    const String text(vxut::HtmlToText(String(Page().c_str()), HtmlTags::kAngleBrackets));
    for (auto _ : state) benchmark::DoNotOptimize(vxut::TextToHtml(text, HtmlTags::kAngleBrackets).Text());
    state.SetBytesProcessed(state.iterations() * text.Length() * static_cast<int64_t>(sizeof(wchar_t)));
}
BENCHMARK(FromTextVxut)->Name("TextToHtml/vxut");

} // namespace
