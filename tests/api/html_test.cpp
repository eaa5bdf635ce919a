// The HTML family as a host sees it.
#include "util/html.h"

#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h, which it needs:
#include <oleauto.h>

#include <string>

namespace {

TEST(HtmlExports, ResultsReplaceTheStringOfTheTarget) {
    BSTR target = nullptr;
    UtilConvertText2HTML(L"a & b", &target, 0);
    EXPECT_STREQ(target, L"<p>a &amp; b</p>");
    UtilConvertText2HTML(L"a", &target, 1);
    EXPECT_STREQ(target, L"[_[p]_]a[_[/p]_]");
    UtilConvertHtml2PlainText(target, &target, 1); // the text may be the old result
    EXPECT_STREQ(target, L"a\r");
    UtilConvertHtml2PlainText(L"<p>x</p>", &target, 0);
    EXPECT_STREQ(target, L"x\r");
    UtilMaskAllHTMLCharacters(L"<\x65E5>", &target);
    EXPECT_EQ(SysStringLen(target), 16u) << "one unit more than the text";
    EXPECT_EQ(std::wstring(target, 15), L"&lt;&#x04x;&gt;");
    UtilDemaskAllHTMLCharacters(L"&lt;&gt;", &target);
    EXPECT_STREQ(target, L"<>");
    SysFreeString(target);
}

TEST(HtmlExports, NullTextsAreEmptyAndNullTargetsAreLeftOut) {
    BSTR target = SysAllocString(L"old");
    UtilConvertHtml2PlainText(nullptr, &target, 0);
    EXPECT_STREQ(target, L"");
    SysReAllocString(&target, L"old");
    UtilDemaskAllHTMLCharacters(nullptr, &target);
    EXPECT_STREQ(target, L"");
    SysFreeString(target);
    UtilConvertHtml2PlainText(L"a", nullptr, 0);
    UtilConvertText2HTML(L"a", nullptr, 0);
    UtilMaskAllHTMLCharacters(L"a", nullptr);
    UtilDemaskAllHTMLCharacters(L"a", nullptr);
}

} // namespace
