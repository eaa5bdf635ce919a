// The text form: its bytes, its reading rules, fragments on streams.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <utility>

namespace vxut::test {
namespace {

std::string BytesOf(HPROF job) {
    FakeStream stream;
    EXPECT_EQ(ProfSaveToStream(job, &stream, PROF_FORMAT_TEXT), PROF_OK);
    return stream.bytes;
}

TEST(ProfileTextTest, ExactBytes) {
    const Job job;
    ProfAppendStringW(job, nullptr, L"a=[b]\t", L"v=[1]\r\n\t\x1F");
    ProfSetStringW(job, nullptr, L"l1/l2/l3/l4/x", L"deep");
    ProfCreateListW(job, nullptr, L"e]");
    EXPECT_EQ(BytesOf(job), Utf16Marked(L"[/]\r\n {\r\n"
                                        L" a\u2338\u301Ab\u301B\u2409=v=[1]\u240D\u240A\u2409\u241F\r\n"
                                        L" [l1]\r\n  {\r\n  [l2]\r\n   {\r\n   [l3]\r\n"
                                        L"\t{\r\n\t[l4]\r\n\t {\r\n\t x=deep\r\n\t }\r\n\t}\r\n"
                                        L"   }\r\n  }\r\n [e]]\r\n  {\r\n  }\r\n }\r\n"));
}

std::wstring TreeOfRoundTrip(const wchar_t* name, const wchar_t* value) {
    const Job job;
    ProfAppendStringW(job, nullptr, name, value);
    return TreeOfBytes(BytesOf(job));
}

TEST(ProfileTextTest, WhatSurvivesARoundTrip) {
    for (const std::wstring value :
         {L"", L"  a=b=c\r\nline 2\n\n  ", L"}", L"# ; { [x]", L"\u00E4\u20AC\U0001F600\uFEFF\uFFFF"})
        EXPECT_EQ(TreeOfRoundTrip(L"a=b[c]d ", value.c_str()), L"a=b[c]d =" + value + L";");
    // Pictures in a value are read as what they show, and those in a name stay.
    EXPECT_EQ(TreeOfRoundTrip(L"n", L"\u2409\u2400\u2420"), L"n=\t\u2400\u2420;");
    EXPECT_EQ(TreeOfRoundTrip(L"n\t\u2338", L"v"), L"n\u2409==v;");
    EXPECT_EQ(TreeOfRoundTrip(L"  n", L"v"), L"n=v;");
    for (const wchar_t* unprotected : {L"#n", L";n", L"{n", L"}n"})
        EXPECT_EQ(TreeOfRoundTrip(unprotected, L"v"), L"");
}

TEST(ProfileTextTest, ReadingRules) {
    const std::pair<const wchar_t*, const wchar_t*> kTextsAndTrees[] = {
        {L"before=1\n[/]\n{\na=1\n}\nafter=2\n", L"a=1;"},
        {L"[/]\na\n", L"a=;"},
        {L"  [/]\r\r\n   \n \t a=1 \r\n", L"a=1 ;"},
        {L"[/]\n# a=1\n; b=2\nc=3\n", L"c=3;"},
        {L"[/]\n[l]\n{\n{\na=1\n", L"l{a=1;}"},
        {L"[/]\n[l] trailing\na=1\n}\n", L"l] trailin{a=1;}"},
        {L"[/]\n} rest\na=1\n", L""},
        {L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"no\"?>\n[/]\n", L""},
        // Flat sections lie inside each other, and the first name is dropped.
        {L"[one]\na=1\n[two]\nb=2\n[three]\nc=3\n", L"a=1;two{b=2;three{c=3;}}"}};
    for (const auto& [text, tree] : kTextsAndTrees) EXPECT_EQ(TreeOfBytes(Utf16Marked(text)), tree) << text;
}

TEST(ProfileTextTest, Encodings) {
    const std::string utf8 = "[/]\r\na=\xE2\x82\xAC\r\n";
    const std::pair<std::string, const wchar_t*> kBytesAndTrees[] = {
        {"[/]\r\na=\x80\r\n", L"a=\u20AC;"},
        {"\xEF\xBB\xBF" + utf8, L"a=\u20AC;"},
        {utf8 + std::string(200, '#'), L"a=\u20AC;"}, // is UTF-8 by its content
        {Utf16Marked(L"[/]\r\na=\u20AC") + "x", L"a=\u20AC;"},
        {Utf16Marked(std::wstring(L"[/]\r\na=1\0b=2\r\n", 16)), L"a=1;"},
        {std::string("\xFE\xFF\0[\0/\0]\0\n\0a", 12), L""}, // big-endian is read as little-endian
    };
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    for (const auto& [bytes, tree] : kBytesAndTrees) EXPECT_EQ(TreeOfBytes(bytes), tree) << bytes;
}

TEST(ProfileStreamTest, AFragmentIsWrittenAndReadAtItsLevel) {
    FakeStream stream;
    {
        const Job job(ProfJobOpenStreamObjectW(&stream, L"[part]", 2));
        ProfSetStringW(job, nullptr, L"a", L"1");
        EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    }
    EXPECT_EQ(stream.bytes, Utf16(L"  [part]\r\n   {\r\n   a=1\r\n   }\r\n"));
    stream.position = 0;
    EXPECT_EQ(TreeOf(Job(ProfJobOpenStreamObjectA(&stream, "[part]", 2))), L"part{a=1;}");
    FakeStream middle(Utf16(L"[other]\r\na=1\r\n[l]\r\n{\r\nb=2\r\n}\r\n}\r\nc=3\r\n"));
    middle.position = 18;
    EXPECT_EQ(TreeOf(Job(ProfJobOpenStreamObjectW(&middle, L"x", 0xFFFFFFFF))), L"a=1;l{b=2;}")
        << "from the stream's position to its own close";
}

TEST(ProfileStreamTest, TheJobKeepsItsStreamAndOthersCanBeWritten) {
    FakeStream own(Utf16Marked(L"[/]\r\na=1\r\n" + std::wstring(1000, L'#')));
    FakeStream other(std::string(500, 'x'));
    const Job job(ProfJobOpenStream(&own));
    for (const wchar_t* name : {L"(stream)", static_cast<const wchar_t*>(nullptr)}) {
        EXPECT_EQ(ProfSaveW(job, name, PROF_FORMAT_TEXT), PROF_OK);
        EXPECT_EQ(own.bytes, Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n"));
        own.bytes += "dirt";
    }
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(ProfSaveToStream(job, &other, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(other.bytes, own.bytes);
    EXPECT_EQ(ProfSaveToStream(Job(ProfJobOpenStream(nullptr)), nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

} // namespace
} // namespace vxut::test
