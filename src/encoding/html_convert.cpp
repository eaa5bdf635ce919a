#include "encoding/html.h"
#include "encoding/html_passes.h"

namespace vxut {
namespace {

constexpr int64_t kGuillemets = 2;
constexpr wchar_t kOpeningGuillemet = 0xAB;
constexpr wchar_t kClosingGuillemet = 0xBB;

struct ParagraphTags {
    const wchar_t* opening;
    const wchar_t* closing;
};
constexpr ParagraphTags kAngleTags = {L"<p>", L"</p>"};
constexpr ParagraphTags kPlaceholderTags = {L"[_[p]_]", L"[_[/p]_]"};

} // namespace

String TextToHtml(const String& text, HtmlTags tags) {
    const auto& [opening, closing] = tags == HtmlTags::kPlaceholders ? kPlaceholderTags : kAngleTags;
    String doubled(text);
    for (const wchar_t guillemet : {kOpeningGuillemet, kClosingGuillemet})
        doubled.ReplaceText(String(guillemet, 1), String(guillemet, kGuillemets));
    String html = MaskHtml(doubled);
    const String between = String(closing) + opening;
    html.ReplaceText(L"\r\n", between);
    html.ReplaceText(L"\r", between);
    html = String(opening) + html + closing;
    html.ReplaceText(String(opening) + closing, String());
    return html;
}

String HtmlToText(const String& html, HtmlTags tags) {
    const int64_t length = html.Length();
    String work;
    String result;
    wchar_t* const first = work.GetBuffer(length);
    wchar_t* const second = result.GetBuffer(length);
    wchar_t* end = RemoveHtmlComments(html.Text(), html.Text() + length, first);
    end = JoinHtmlLineEnds(first, end, first);
    end = RenderHtmlLinks(first, end, second);
    end = ResolveHtmlTags(second, end, second, tags);
    end = DemaskHtmlUnits(second, end, second);
    end = CleanHtmlText(second, end, second);
    result.SetLength(ShortenHtmlGaps(second, end, second) - second);
    return result;
}

} // namespace vxut
