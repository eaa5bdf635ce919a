// The text form: its bytes, its reading rules, fragments on streams.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace vxut::test {
namespace {

std::wstring TreeOfBytes(const std::string& bytes) {
    const MemoryStream stream(bytes);
    const Job job(ProfJobOpenStream(stream));
    EXPECT_EQ(ProfGetError(job), PROF_OK);
    return TreeOf(job);
}

std::string BytesOf(HPROF job) {
    MemoryStream stream;
    EXPECT_EQ(ProfSaveToStream(job, stream, PROF_FORMAT_TEXT), PROF_OK);
    return stream.Bytes();
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
    // Pictures in a value come back as what they show, and those in a name stay.
    EXPECT_EQ(TreeOfRoundTrip(L"n", L"\u2409\u2400\u2420"), L"n=\t\u2400\u2420;");
    EXPECT_EQ(TreeOfRoundTrip(L"n\t\u2338", L"v"), L"n\u2409==v;");
    EXPECT_EQ(TreeOfRoundTrip(L"  n", L"v"), L"n=v;");
    EXPECT_EQ(TreeOfRoundTrip(L"", L"v"), L"=v;");
    for (const wchar_t* unprotected : {L"#n", L";n", L"{n", L"}n"})
        EXPECT_EQ(TreeOfRoundTrip(unprotected, L"v"), L"");
}

TEST(ProfileTextTest, ReadingRules) {
    const std::pair<const wchar_t*, const wchar_t*> kTextsAndTrees[] = {
        {L"before=1\n[/]\n{\na=1\n}\nafter=2\n", L"a=1;"},
        {L"[/]\na=1", L"a=1;"},
        {L"[/]\na\n", L"a=;"},
        {L"[/]\n=1\n", L"=1;"},
        {L"  [/]\r\r\n   \n \t a=1 \r\n", L"a=1 ;"},
        {L"no root here\na=1\n", L""},
        {L"[/]\n# a=1\n; b=2\nc=3\n", L"c=3;"},
        {L"[/]\n[l]\na=1\n}\nb=2\n", L"l{a=1;}b=2;"},
        {L"[/]\n[l]\n{\n{\na=1\n", L"l{a=1;}"},
        {L"[/]\n[l]\n[m]\na=1\n", L"l{m{a=1;}}"},
        {L"[/]\n[l] trailing\na=1\n}\n", L"l] trailin{a=1;}"},
        {L"[/]\n[a]b]\n}\n", L"a]b{}"},
        {L"[/]\n} rest\na=1\n", L""},
        // Flat sections lie inside each other, and the first name is dropped.
        {L"[one]\na=1\n[two]\nb=2\n[three]\nc=3\n", L"a=1;two{b=2;three{c=3;}}"},
        {L"[one]\na=1\n}\nb=2\n", L"a=1;"},
        {L"[/]x\na=1\n", L"a=1;"}};
    for (const auto& [text, tree] : kTextsAndTrees) EXPECT_EQ(TreeOfBytes(Utf16Marked(text)), tree) << text;
}

TEST(ProfileTextTest, Encodings) {
    const std::string utf8 = "[/]\r\na=\xE2\x82\xAC\r\n";
    const std::string swapped("\xFE\xFF\0[\0/\0]\0\r\0\n\0a\0=\0b", 18);
    const struct {
        const char* what;
        std::string bytes;
        std::wstring tree;
    } kCases[] = {
        {"narrow", "[/]\r\na=\x80\r\n", L"a=\u20AC;"},
        {"marked UTF-8", "\xEF\xBB\xBF" + utf8, L"a=\u20AC;"},
        {"UTF-8 by its content", utf8 + std::string(200, '#'), L"a=\u20AC;"},
        {"an odd byte at the end", Utf16Marked(L"[/]\r\na=\u20AC") + "x", L"a=\u20AC;"},
        {"ends at a zero", Utf16Marked(std::wstring(L"[/]\r\na=1\0b=2\r\n", 16)), L"a=1;"},
        {"big-endian, which is taken for little-endian", swapped, L""},
    };
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    for (const auto& row : kCases) EXPECT_EQ(TreeOfBytes(row.bytes), row.tree) << row.what;
}

TEST(ProfileTextTest, FormsAreRecognisedByTheFirstLine) {
    const std::wstring xml = L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=";
    const std::pair<std::string, int32_t> kBytesAndErrors[] = {
        {"abcd", PROF_OK},
        {"<?xm\n<value>\n", PROF_ERR_FORMAT},
        {Utf16Marked(xml + L"\"no\"?>\n"), PROF_OK},
        {Utf16Marked(xml + L"\"yes\"?>\n<list>\n"), PROF_ERR_FORMAT},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<value>\n", PROF_ERR_FORMAT}};
    for (const auto& [bytes, error] : kBytesAndErrors) {
        const MemoryStream stream(bytes);
        const Job job(ProfJobOpenStream(stream));
        EXPECT_EQ(ProfGetError(job), error) << bytes;
        EXPECT_EQ(TreeOf(job), L"");
    }
}

TEST(ProfileStreamTest, AFragmentIsWrittenAndReadAtItsLevel) {
    MemoryStream stream;
    {
        const Job job(ProfJobOpenStreamObjectW(stream, L"[part]", 2));
        ProfSetStringW(job, nullptr, L"a", L"1");
        EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    }
    EXPECT_EQ(FromUtf16(stream.Bytes()), L"  [part]\r\n   {\r\n   a=1\r\n   }\r\n");
    stream.Seek(0);
    EXPECT_EQ(TreeOf(Job(ProfJobOpenStreamObjectA(stream, "[part]", 2))), L"part{a=1;}");

    MemoryStream middle(Utf16(L"[other]\r\na=1\r\n[l]\r\n{\r\nb=2\r\n}\r\n}\r\nc=3\r\n"));
    middle.Seek(18);
    EXPECT_EQ(TreeOf(Job(ProfJobOpenStreamObjectW(middle, L"x", 0xFFFFFFFF))), L"a=1;l{b=2;}")
        << "from where the stream stands to its own close";
}

TEST(ProfileStreamTest, TheJobKeepsItsStreamAndOthersCanBeWritten) {
    MemoryStream own(Utf16Marked(L"[/]\r\na=1\r\n" + std::wstring(1000, L'#')));
    const Job job(ProfJobOpenStream(own));
    const std::string saved = Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n");
    MemoryStream other(std::string(500, 'x'));
    EXPECT_EQ(ProfSaveToStream(job, other, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(other.Bytes(), saved);
    const std::function<int32_t()> saves[] = {
        [&] { return ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT); },
        [&] { return ProfSaveToStream(job, own, PROF_FORMAT_TEXT); },
        [&] { return ProfSaveW(job, nullptr, PROF_FORMAT_TEXT); },
        [&] { return ProfSaveA(job, "(stream)", PROF_FORMAT_TEXT); },
    };
    for (const auto& save : saves) {
        own.Seek(0);
        static_cast<IStream*>(own)->Write("dirt", 4, nullptr);
        EXPECT_EQ(save(), PROF_OK);
        EXPECT_EQ(own.Bytes(), saved);
    }
    EXPECT_EQ(ProfSaveToStream(Job(), own, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(own.Bytes(), "") << "an empty profile empties its stream";
    EXPECT_EQ(ProfSaveToStream(Job(ProfJobOpenStream(nullptr)), nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

TEST(ProfileStreamTest, UnsupportedFormsLeaveTheTargetAlone) {
    const Job job;
    ProfSetStringW(job, nullptr, L"a", L"1");
    const FilePlace file;
    file.Put("kept");
    MemoryStream stream("kept");
    for (const uint32_t format : {1u, 2u, 3u, 15u, 0x40u}) {
        EXPECT_EQ(ProfSaveToStream(job, stream, format), PROF_ERR_FORMAT);
        EXPECT_EQ(ProfSaveW(job, file, format), PROF_ERR_FORMAT);
        EXPECT_EQ(stream.Bytes() + file.Bytes(), "keptkept");
    }
    for (const uint32_t format : {0x10u, 0x80u, 0xFFFFFF30u}) // flags that mean nothing here
        EXPECT_EQ(ProfSaveToStream(job, stream, format), PROF_OK);
}

} // namespace
} // namespace vxut::test
