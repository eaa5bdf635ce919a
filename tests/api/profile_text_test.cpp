// The text form: its bytes, its reading rules, fragments on streams.
#include "profile_support.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(BytesOf(job), Utf16Marked(L"[/]\r\n"
                                        L" {\r\n"
                                        L" a\u2338\u301Ab\u301B\u2409=v=[1]\u240D\u240A\u2409\u241F\r\n"
                                        L" [l1]\r\n"
                                        L"  {\r\n"
                                        L"  [l2]\r\n"
                                        L"   {\r\n"
                                        L"   [l3]\r\n"
                                        L"\t{\r\n"
                                        L"\t[l4]\r\n"
                                        L"\t {\r\n"
                                        L"\t x=deep\r\n"
                                        L"\t }\r\n"
                                        L"\t}\r\n"
                                        L"   }\r\n"
                                        L"  }\r\n"
                                        L" [e]]\r\n"
                                        L"  {\r\n"
                                        L"  }\r\n"
                                        L" }\r\n"));
}

TEST(ProfileTextTest, WhatSurvivesARoundTrip) {
    const struct {
        const wchar_t* name;
        const wchar_t* value;
        const wchar_t* tree; // null: the same
    } kCases[] = {
        {L"n", L"a=b=c", nullptr},
        {L"n", L"line 1\r\nline 2\n\n", nullptr},
        {L"n", L"  trailing and leading  ", nullptr},
        {L"n", L"}", nullptr},
        {L"n", L"# ; { [x]", nullptr},
        {L"a=b[c]d", L"v", nullptr},
        {L"n", L"\u00E4\u20AC\U0001F600\uFEFF\uFFFF", nullptr},
        {L"n ", L"v", nullptr},
        {L"n", L"", nullptr},
        // Pictures in a value come back as what they show, and those in a name stay.
        {L"n", L"\u2409\u2400\u2420", L"n=\t\u2400\u2420;"},
        {L"n\t", L"v", L"n\u2409=v;"},
        {L"\u2338", L"v", L"==v;"},
        {L"  n", L"v", L"n=v;"},
        // Nothing protects these names.
        {L"#n", L"v", L""},
        {L";n", L"v", L""},
        {L"{n", L"v", L""},
        {L"}n", L"v", L""},
        {L"", L"v", L"=v;"},
    };
    for (const auto& row : kCases) {
        const Job job;
        ProfAppendStringW(job, nullptr, row.name, row.value);
        const std::wstring wanted = row.tree ? row.tree : TreeOf(job);
        EXPECT_EQ(TreeOfBytes(BytesOf(job)), wanted) << row.name << "=" << row.value;
    }
}

TEST(ProfileTextTest, ReadingRules) {
    const struct {
        const wchar_t* text;
        const wchar_t* tree;
    } kCases[] = {
        {L"[/]\n{\na=1\n}\n", L"a=1;"},
        {L"before=1\n[/]\na=1\n}\nafter=2\n", L"a=1;"},
        {L"[/]\na=1", L"a=1;"},
        {L"[/]\na\n", L"a=;"},
        {L"[/]\n=1\n", L"=1;"},
        {L"[/]\r\r\n\n \t a=1 \r\n", L"a=1 ;"},
        {L"[/]\n# a=1\n; b=2\nc=3\n", L"c=3;"},
        {L"[/]\n[l]\na=1\n}\nb=2\n", L"l{a=1;}b=2;"},
        {L"[/]\n[l]\n{\n{\na=1\n", L"l{a=1;}"},
        {L"[/]\n[l]\n[m]\na=1\n", L"l{m{a=1;}}"},
        {L"[/]\n[l] trailing\na=1\n}\n", L"l] trailin{a=1;}"},
        {L"[/]\n[a]b]\n}\n", L"a]b{}"},
        {L"[/]\n} rest\na=1\n", L""},
        {L"[/]\n   \na=1\n", L"a=1;"},
        {L"  [/]\na=1\n", L"a=1;"},
        {L"[/]x\na=1\n", L"a=1;"}, // flat sections, whose first name is dropped
        {L"no root here\na=1\n", L""},
        // Flat sections lie inside each other.
        {L"[one]\na=1\n[two]\nb=2\n[three]\nc=3\n", L"a=1;two{b=2;three{c=3;}}"},
        {L"[one]\na=1\n}\nb=2\n", L"a=1;"},
    };
    for (const auto& row : kCases) EXPECT_EQ(TreeOfBytes(Utf16Marked(row.text)), row.tree) << row.text;
}

TEST(ProfileTextTest, Encodings) {
    const std::string lines = "[/]\r\na=\x80\r\n";
    const std::string utf8 = "[/]\r\na=\xE2\x82\xAC\r\n";
    ProfSetOption(PROF_OPTION_CODE_PAGE, 1252);
    EXPECT_EQ(TreeOfBytes(lines), L"a=\u20AC;");
    EXPECT_EQ(TreeOfBytes("\xEF\xBB\xBF" + utf8), L"a=\u20AC;");
    EXPECT_EQ(TreeOfBytes(utf8 + "b=" + std::string(200, 'x')),
              L"a=\u20AC;b=" + std::wstring(200, L'x') + L";");
    EXPECT_EQ(TreeOfBytes(Utf16Marked(L"[/]\r\na=\u20AC\r\n")), L"a=\u20AC;");
    // An odd byte at the end does not matter, nor what stands behind a zero unit.
    EXPECT_EQ(TreeOfBytes(Utf16Marked(L"[/]\r\na=\u20AC") + "x"), L"a=\u20AC;");
    EXPECT_EQ(TreeOfBytes(Utf16Marked(std::wstring(L"[/]\r\na=1\0b=2\r\n", 16))), L"a=1;");
    // Big-endian text is taken for little-endian, and is garbage.
    std::string swapped = Utf16Marked(L"[/]\r\na=1\r\n");
    for (size_t i = 0; i < swapped.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
    EXPECT_EQ(TreeOfBytes(swapped), L"");
}

TEST(ProfileTextTest, FormsAreRecognisedByTheFirstLine) {
    const struct {
        std::string bytes;
        int32_t error;
    } kCases[] = {
        {"abcd", PROF_OK},
        {Utf16Marked(L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"no\"?>\n"), PROF_OK},
        {Utf16Marked(L"<?xml version=\"1.0\" encoding=\"UTF-16\" standalone=\"yes\"?>\n<list>\n"),
         PROF_ERR_FORMAT},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<value>\n", PROF_ERR_FORMAT},
        {"<?xm\n<value>\n", PROF_ERR_FORMAT},
    };
    for (const auto& row : kCases) {
        const MemoryStream stream(row.bytes);
        const Job job(ProfJobOpenStream(stream));
        EXPECT_EQ(ProfGetError(job), row.error) << row.bytes;
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
    const Job again(ProfJobOpenStreamObjectA(stream, "[part]", 2));
    EXPECT_EQ(TreeOf(again), L"part{a=1;}");
}

TEST(ProfileStreamTest, AFragmentBeginsWhereTheStreamStandsAndEndsAtItsClose) {
    const std::wstring before = L"[other]\r\n";
    MemoryStream stream(Utf16(before + L"a=1\r\n[l]\r\n{\r\nb=2\r\n}\r\n}\r\nc=3\r\n"));
    stream.Seek(static_cast<int64_t>(before.size() * sizeof(wchar_t)));
    const Job job(ProfJobOpenStreamObjectW(stream, L"x", 0xFFFFFFFF));
    EXPECT_EQ(TreeOf(job), L"a=1;l{b=2;}");
}

TEST(ProfileStreamTest, TheJobKeepsItsStreamAndOthersCanBeWritten) {
    MemoryStream own(Utf16Marked(L"[/]\r\na=1\r\n" + std::wstring(1000, L'#')));
    const Job job(ProfJobOpenStream(own));
    EXPECT_EQ(TreeOf(job), L"a=1;");
    const std::string saved = Utf16Marked(L"[/]\r\n {\r\n a=1\r\n }\r\n");
    MemoryStream other(std::string(500, 'x'));
    EXPECT_EQ(ProfSaveToStream(job, other, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(other.Bytes(), saved);
    const HPROF handle = job;
    int32_t (*const saves[])(HPROF, IStream*) = {
        [](HPROF j, IStream*) { return ProfSaveToStream(j, nullptr, PROF_FORMAT_TEXT); },
        [](HPROF j, IStream* stream) { return ProfSaveToStream(j, stream, PROF_FORMAT_TEXT); },
        [](HPROF j, IStream*) { return ProfSaveW(j, nullptr, PROF_FORMAT_TEXT); },
        [](HPROF j, IStream*) { return ProfSaveA(j, "(stream)", PROF_FORMAT_TEXT); },
    };
    for (const auto save : saves) {
        own.Seek(0);
        static_cast<IStream*>(own)->Write("dirt", 4, nullptr);
        EXPECT_EQ(save(handle, own), PROF_OK);
        EXPECT_EQ(own.Bytes(), saved);
    }
}

TEST(ProfileStreamTest, WithoutAStream) {
    const Job job(ProfJobOpenStream(nullptr));
    EXPECT_EQ(ProfGetError(job), PROF_OK);
    EXPECT_EQ(ProfSaveToStream(job, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
    EXPECT_EQ(ProfSaveW(job, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
    const Job shared;
    EXPECT_EQ(ProfSaveToStream(shared, nullptr, PROF_FORMAT_TEXT), PROF_ERR_SAVE);
}

TEST(ProfileStreamTest, AnEmptyProfileEmptiesItsStream) {
    MemoryStream stream(std::string(100, 'x'));
    const Job job;
    EXPECT_EQ(ProfSaveToStream(job, stream, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(stream.Bytes(), "");
}

TEST(ProfileStreamTest, UnsupportedFormsLeaveTheTargetAlone) {
    const Job job;
    ProfSetStringW(job, nullptr, L"a", L"1");
    for (const uint32_t format : {1u, 2u, 3u, 15u, 0x40u}) {
        MemoryStream stream("kept");
        EXPECT_EQ(ProfSaveToStream(job, stream, format), PROF_ERR_FORMAT);
        EXPECT_EQ(stream.Bytes(), "kept");
        const FilePlace file;
        file.Put("kept");
        EXPECT_EQ(ProfSaveW(job, file, format), PROF_ERR_FORMAT);
        EXPECT_EQ(file.Bytes(), "kept");
    }
    for (const uint32_t format : {0x10u, 0x80u, 0xFFFFFF30u}) {
        MemoryStream stream;
        EXPECT_EQ(ProfSaveToStream(job, stream, format), PROF_OK) << "flags that mean nothing here";
    }
}

} // namespace
} // namespace vxut::test
