#include "util/html.h"

#include "base/guard.h"
#include "encoding/html.h"

namespace {

using namespace vxut;

HtmlTags TagsOf(int placeholders) {
    return placeholders ? HtmlTags::kPlaceholders : HtmlTags::kAngleBrackets;
}

// Stores what convert() makes of a text, unless nobody wants it.
template <class Convert>
void Store(const wchar_t* text, BSTR* target, Convert convert) {
    Guarded([&] {
        if (target) convert(String(text)).ToBSTR(target);
    });
}

} // namespace

void UtilConvertHtml2PlainText(const wchar_t* html, BSTR* target, int placeholders) {
    Store(html, target, [&](const String& text) { return HtmlToText(text, TagsOf(placeholders)); });
}

void UtilConvertText2HTML(const wchar_t* text, BSTR* target, int placeholders) {
    Store(text, target, [&](const String& plain) { return TextToHtml(plain, TagsOf(placeholders)); });
}

void UtilMaskAllHTMLCharacters(const wchar_t* text, BSTR* target) { Store(text, target, MaskHtml); }

void UtilDemaskAllHTMLCharacters(const wchar_t* text, BSTR* target) { Store(text, target, DemaskHtml); }
