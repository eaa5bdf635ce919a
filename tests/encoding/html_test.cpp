#include "encoding/html.h"

#include "tests/support/html_reference.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>

namespace vxut {
namespace {

using test::StringOf;
using test::WideOf;

constexpr HtmlTags kAngle = HtmlTags::kAngleBrackets;
constexpr HtmlTags kPlaceholders = HtmlTags::kPlaceholders;

using Pair = std::pair<const wchar_t*, const wchar_t*>;

TEST(HtmlTest, MaskingWritesEntities) {
    const Pair kRows[] = {
        {L"", L""},
        {L"a\t\"&'<>\r\n", L"a&#09;&quot;&amp;&apos;&lt;&gt;\r\n"},
        {L"\x80\xA0\xBE\xE4\xFF", L"&euro;&nbsp;&frac34;&auml;&yuml;"},
        // What has no entity loses its identity and adds a unit at the end.
        {L"x\u20ACy", L"x&#x04x;y "},
        {L"\x81\x9F\u65E5", L"&#x04x;&#x04x;&#x04x;   "},
    };
    for (const auto& [text, masked] : kRows) EXPECT_STREQ(MaskHtml(text).Text(), masked) << text;
}

TEST(HtmlTest, DemaskingReadsEntities) {
    const Pair kRows[] = {
        {L"&amp;&quot;&lt;&gt;&euro;&nbsp;&szlig;", L"&\"<>\x80\xA0\xDF"},
        {L"&Auml;&auml;&AUML;", L"\xC4\xE4&AUML;"},
        {L"&apos;&unknown;&;&", L"&apos;&unknown;&;&"},
        {L"&toolong;&amp", L"&toolong;&amp"},
        {L"& &lt;", L"& &lt;"}, // the entity begins at the first ampersand
        {L"&#65;&#x41;&#x20AC;&#09;", L"AA\u20AC\t"},
        {L"&#65601;", L"A"}, // the lower 16 bits
        {L"&#0;&#x;&#;&#X41;&#6 5;&#x04x;", L"#0;#x;#;#X41;#6 5;#x04x;"},
        {L"&#amp;&amp;", L"#amp;&"},
    };
    for (const auto& [text, plain] : kRows) EXPECT_STREQ(DemaskHtml(text).Text(), plain) << text;
}

TEST(HtmlTest, TextBecomesParagraphs) {
    const Pair kRows[] = {
        {L"", L""},
        {L"a", L"<p>a</p>"},
        {L"a\r\nb\rc\nd", L"<p>a</p><p>b</p><p>c\nd</p>"},
        {L"\r\n\r\na\r\n\r\nb\r\n", L"<p>a</p><p>b</p>"},
        {L"\xAB<\xBB", L"<p>&laquo;&laquo;&lt;&raquo;&raquo;</p>"},
        {L"\u20AC", L"<p>&#x04x; </p>"},
    };
    for (const auto& [text, html] : kRows) EXPECT_STREQ(TextToHtml(text, kAngle).Text(), html) << text;
    EXPECT_STREQ(TextToHtml(L"a\r[b]", kPlaceholders).Text(), L"[_[p]_]a[_[/p]_][_[p]_][b][_[/p]_]");
    EXPECT_STREQ(TextToHtml(L"", kPlaceholders).Text(), L"");
}

TEST(HtmlTest, HtmlBecomesText) {
    const Pair kRows[] = {
        {L"", L""},
        {L"<p>one</p><P>two</P>", L"one\rtwo\r"},
        {L"a<br>b<br />c<br/>d<hr size=1>e", L"a\rb\rcd\re"},
        {L"<ul><li>x</li><li>y</ul>", L"- x\r- y\r"},
        {L"<table><tr><td>1</td><th>2</th></tr></table>", L"1 2 \r"},
        {L"<h1>T</h1><blockquote>q</blockquote><center>c</center>", L"T\rq\rc"},
        {L"a < b > c", L"a c"},
        {L"a<b title='>'>c", L"a'>c"},
        {L"<x <br>a", L"a"}, // the name of the outer tag was over, so the inner one has none
        {L"<x<br>a", L"\ra"},
        // Comments: all from the first opening to the last closing.
        {L"a<!-- x -->b<!-- y -->c", L"ac"},
        {L"a<!-->b", L"ab"}, // no comment, a tag
        {L"a<!---->b<!-- open", L"ab"},
        // Elements that are not shown.
        {L"a<script>b<style>c</script>d</style>e", L"ae"},
        {L"a</script>b<script>c", L"ac"},
        {L"<HEAD><br>x</HEAD>y<textarea>t</textarea><select><li></select>z", L"yz"},
        // Links.
        {L"<a href=\"u\">t</a>x<a href=\"U\">u</a>", L"t [u]xU"},
        {L"x<a href=\"u\">t</a> lost", L"xt [u]"},
        {L"<a  id=\"i\" HREF=\"u\" x>t</A>y<abbr>z", L"t [u]yz"},
        {L"<A HREF=\"u\">t</A>x", L"tx"},
        {L"<a href=\"u\">t</a>y<a b>\n", L"t [u]y"}, // without the line feed at the end
        {L"<a>t</a> <a href='u'>v</a>", L"t v"},
        // Blanks.
        {L" a \t\r\n b\xA0 c \xA0",
         L" a b\xA0"
         L"c "},
        {L"a <b> c", L"a c"},
        {L"a&nbsp; b&#32;&#10;c",
         L"a\xA0"
         L"b c"},
        // Guillemets: the outermost go.
        {L"\xABx\xBB &laquo;&laquo;y&raquo;&raquo;", L"x \xABy\xBB"},
        {L"x\xBB", L"x\xBB"},
        {L"\xAB a \xBB b", L" a  b"},
        // Sequences of line ends.
        {L"a<br><br>b<br><br><br>c", L"a\r\rb\r\rc"},
        {L"a<br><br><br><br><br><br>c<br><br><br><br><br>d", L"a\r\rc\r\rd"},
        {L"&amp;lt;", L"&lt;"},
    };
    for (const auto& [html, text] : kRows) EXPECT_STREQ(HtmlToText(html, kAngle).Text(), text) << html;
}

TEST(HtmlTest, PlaceholdersAreTagsToo) {
    const Pair kRows[] = {
        {L"[_[p]_]a[_[/p]_]b", L"a\rb"},      {L"[br]a[li]b", L"\ra- b"}, {L"a [note] b", L"a b"},
        {L"[_[br x]_]a<br>_]", L"\ra<br>_]"}, {L"[_[br_]a]b", L"a]b"},    {L"a[_", L"a"},
    };
    for (const auto& [html, text] : kRows) EXPECT_STREQ(HtmlToText(html, kPlaceholders).Text(), text) << html;
}

TEST(HtmlTest, TextSurvivesTheWayThereAndBack) {
    for (const HtmlTags tags : {kAngle, kPlaceholders}) {
        const String html = TextToHtml(L"\xABone\xBB & <two>\r\n\x80\xE4 three", tags);
        EXPECT_STREQ(HtmlToText(html, tags).Text(), L"\xABone\xBB & <two>\r\x80\xE4 three\r");
    }
}

// Texts of random pieces, so that each rule meets each other one.
TEST(HtmlTest, AgreesWithThePassesOfThePatterns) {
    const wchar_t* const kPieces[] = {
        L"<",      L">",       L"[",       L"]",      L"[_[",     L"]_]",     L"_",     L"<!--",  L"-->",
        L"-",      L"<a ",     L"<A\n",    L"<ab>",   L"href=\"", L"HREF=\"", L"\"",    L"</a>",  L"u",
        L"U",      L"</A>",    L"&amp;",   L"&",      L";",       L"&#",      L"65",    L"&#x4",  L"&nbsp;",
        L"\r\n",   L"\r",      L"\n",      L"<br>",   L"br",      L"<li ",    L"/p",    L"\xA0",  L" ",
        L"\t",     L"\xAB",    L"\xBB",    L"x",      L"<head>",  L"<br>",    L"style", L"</td>", L"[br]",
        L"\r\r\r", L"&laquo;", L"</head>", L"script", L"/",
    };
    std::mt19937 random(11);
    for (int i = 0; i < 4000; ++i) {
        String html;
        for (size_t pieces = random() % 16; pieces > 0; --pieces)
            html += kPieces[random() % std::size(kPieces)];
        for (const HtmlTags tags : {kAngle, kPlaceholders}) {
            const String wanted = test::ReferenceHtmlToText(html, tags);
            ASSERT_EQ(WideOf(HtmlToText(html, tags)), WideOf(wanted)) << WideOf(html);
        }
        ASSERT_EQ(WideOf(DemaskHtml(html)), test::ReferenceDemask(WideOf(html))) << WideOf(html);
    }
}

// In quadratic time these would take minutes.
TEST(HtmlTest, HostileTextsTakeLinearTime) {
    constexpr int kRepeats = 200000;
    for (const wchar_t* piece : {L"<!--", L"-->", L"<a ", L"<a href=\"", L"<A HREF=\"\"></A>", L"&", L"&#",
                                 L"<", L"\r", L"<a href=\"\"></a>", L"\xAB", L"<script>"}) {
        std::wstring html;
        for (int i = 0; i < kRepeats; ++i) html += piece;
        const String text = StringOf(html + L"<a");
        EXPECT_LE(HtmlToText(text, kAngle).Length(), text.Length());
        EXPECT_GE(MaskHtml(text).Length(), text.Length());
    }
}

} // namespace
} // namespace vxut
