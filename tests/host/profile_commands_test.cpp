#include "tests/host/vlm_fixture.h"

#include <memory>
#include <vector>

namespace vlm::test {

namespace {

using ProfileCommands = VlmTest;

} // namespace

TEST_F(ProfileCommands, EveryTypeIsStoredInItsFormAndReadBack) {
    const struct {
        std::wstring typeAndValue;
        const char* stored;
        const char* printed;
    } rows[] = {
        {L"string \"\u00C4 \u65E5 \U0001F600\"", "\xC3\x84 \xE6\x97\xA5 \xF0\x9F\x98\x80",
         "\xC3\x84 \xE6\x97\xA5 \xF0\x9F\x98\x80"},
        {L"bool Yes", "TRUE", "true"},
        {L"int 0xFFFFFFFF", "-1", "-1"},
        {L"int64 18446744073709551614", "18446744073709551614", "-2"},
        {L"int64hex xABCDEF0123456789", "xabcdef0123456789", "0xabcdef0123456789"},
        {L"double -0.5", "-0.500000", "-0.5"},
        {L"point 3,-4", "(3,-4)", "(3,-4)"},
        {L"rectltwh -10,2,30,40", "(-10,2,30,40)", "(-10,2,30,40)"},
        {L"color 255,0,1", "(255,0,1)", "#ff0001"},
    };
    for (const auto& [typeAndValue, stored, printed] : rows) {
        const std::wstring type = typeAndValue.substr(0, typeAndValue.find(L' '));
        Expect({
            {L"profile set a.prf Window/Main/Value --as " + typeAndValue},
            {L"profile get a.prf Window/Main/Value", 0, stored + std::string("\n")},
            {L"profile get a.prf /Window/Main/Value --as " + type, 0, printed + std::string("\n")},
        });
    }
}

TEST_F(ProfileCommands, ValuesThatDoNotParseChangeNothing) {
    for (const wchar_t* words :
         {L"12x --as int", L"2147483648 --as int", L"x --as hex", L"\"\" --as int",
          L"18446744073709551616 --as int64", L"maybe --as bool", L"1 --as point", L"1,2,3 --as rect",
          L"1,2,3,4,5 --as rect", L"2147483647,0,1,0 --as rectltwh", L"256,0,0 --as color",
          L"#12345 --as color", L"#12345g --as color", L"nan --as double", L"1e999 --as double"})
        Expect({std::wstring(L"profile set a.prf n ") + words, 2, "", "' is not "});
    EXPECT_FALSE(IsThere(L"a.prf"));
}

TEST_F(ProfileCommands, NamesThatTheTextFormWouldMisreadAreRefused) {
    for (const wchar_t* path :
         {L"#n", L";n", L"{", L"}", L"a//n", L"a/", L"[a]/n", L"\" n\"", L"\"a\nb/n\"", L"\"a\tb\""})
        Expect({std::wstring(L"profile set a.prf ") + path + L" v", 2, "", "name"});
    EXPECT_FALSE(IsThere(L"a.prf"));
}

TEST_F(ProfileCommands, MissingThingsEndWithOne) {
    WriteFile(L"a.prf", "[/]\r\nempty=\r\nword=x y\r\n[List]\r\n}\r\n}\r\n");
    Expect({
        {L"profile get a.prf none", 1, "", "none: there is no such item"},
        {L"profile get a.prf none --default x", 0, "x\n"},
        {L"profile get a.prf none --as int --default 0x10", 0, "16\n"},
        {L"profile get a.prf word --as int --default 1", 1, "", "the value is not of this type"},
        {L"profile get a.prf empty --as int", 1, "", "its value is empty"},
        {L"profile show a.prf None", 1, "", "no such list"},
        {L"profile delete a.prf word --list", 1, "", "no such list"},
        {L"profile get none.prf a", 1, "", "none.prf: "},
        {L"profile convert a.prf none\\b.prf", 1, "", "cannot be opened for writing"},
    });
    EXPECT_FALSE(IsThere(L"none.prf"));
}

TEST_F(ProfileCommands, ControlCharactersAreShownAsPicturesAndReadAsTheyAre) {
    Expect({
        {L"profile set a.prf n \"\tb\u0085\" --shared"},
        {L"profile show a.prf", 0, "n = \u2409b\\u0085\n"},
        {L"profile get a.prf n", 0, "\tb\xC2\x85\n"},
    });
}

TEST_F(ProfileCommands, PackedProfilesAreReadChangedAndConvertedBack) {
    Expect({
        {L"profile set a.prf List/n v"},
        {L"profile convert a.prf b.prf --packed"},
        {L"profile set b.prf List/m w"},
        {L"profile get b.prf List/m", 0, "w\n"},
    });
    EXPECT_EQ(ReadFile(L"b.prf").substr(0, 4), "ZRzQ");
    Expect({L"profile delete b.prf List/m"});
    Expect({L"profile convert b.prf c.prf"});
    EXPECT_EQ(ReadFile(L"c.prf"), ReadFile(L"a.prf"));
}

TEST_F(ProfileCommands, APackedProfileKeepsTheFormInside) {
    for (const wchar_t* const form : {L"text", L"xml"}) {
        const std::wstring as = std::wstring(L" --form ") + form;
        Expect({
            {L"profile set a.prf List/n \"<v> \u65E5\""},
            {L"profile convert a.prf packed.prf --packed" + as},
            {L"profile set packed.prf List/m w"},
            {L"profile set packed.prf List/o x --shared"},
            {L"profile delete packed.prf List/m"},
            {L"profile set a.prf List/o x"},
            {L"profile convert a.prf wanted.prf --packed" + as},
        });
        EXPECT_EQ(ReadFile(L"packed.prf"), ReadFile(L"wanted.prf")) << form;
    }
}

TEST_F(ProfileCommands, EncodingDecidesForNarrowFiles) {
    WriteFile(L"a.prf", "[/]\r\n{\r\nn=\xE4\r\n}\r\n");
    WriteFile(L"utf8.prf", "[/]\r\n{\r\nn=\xC3\xA4\r\n}\r\n");
    Expect({
        {L"profile get a.prf n --encoding 1251", 0, "\xD0\xB4\n"},
        {L"profile get utf8.prf n --encoding utf-8", 0, "\xC3\xA4\n"},
        {L"profile set a.prf m 1 --encoding 1251"},
        {L"profile get a.prf n --encoding 1252", 0, "\xD0\xB4\n"},
    });
    EXPECT_EQ(ReadFile(L"a.prf").substr(0, 8), std::string("\xFF\xFE[\0/\0]\0", 8));
}

TEST_F(ProfileCommands, FlatSectionsNestAndAreNotWrittenBack) {
    const std::string sections = "[first]\r\na=1\r\n[second]\r\nb=2\r\n[third]\r\nc=3\r\n";
    WriteFile(L"a.ini", sections);
    Expect({
        {L"profile show a.ini", 0, "a = 1\n[second]\n  b = 2\n  [third]\n    c = 3\n"},
        {L"profile set a.ini a 2", 1, "", "a file of flat sections cannot be written back"},
    });
    EXPECT_EQ(ReadFile(L"a.ini"), sections);
}

TEST_F(ProfileCommands, ConvertReadsAndWritesAllForms) {
    WriteFile(L"a.prf", "[/]\r\nn=<1>\r\n[List]\r\nm=x\xE2\x90\x8D\xE2\x90\x8Ay\r\n}\r\n}\r\n");
    Expect({
        {L"profile convert a.prf a.xml --form xml --encoding utf-8"},
        {L"profile show a.xml", 0, "n = <1>\n[List]\n  m = x\u240D\u240Ay\n"},
        {L"profile convert a.xml b.prf --form text"},
        {L"profile convert b.prf b.xml --form xml"},
        {L"profile set a.xml List/k 2"},
        {L"profile get a.xml List/k", 0, "2\n"},
        {L"profile convert b.prf a.xfdf --form xfdf"},
        {L"profile show a.xfdf", 1, "", "the profile is damaged"},
        {L"profile convert b.prf c.prf --form html", 2, "", "unknown form"},
    });
    EXPECT_EQ(ReadFile(L"a.xml").substr(0, 12), std::string("\xFF\xFE<\0?\0x\0m\0l\0", 12))
        << "keeps its form";
    EXPECT_EQ(ReadFile(L"a.xfdf"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
              "<xfdf xmlns=\"http://ns.adobe.com/xfdf/\" xml:space=\"preserve\">\r\n<fields>\r\n"
              " <field name=\"n\">\r\n  <value><1></value>\r\n </field>\r\n"
              " <field=\"List\">\r\n  <field name=\"m\">\r\n   <value>x\r\ny</value>\r\n"
              "  </field>\r\n </field>\r\n</fields>\r\n</xfdf>\r\n");
    Expect({L"profile convert b.xml d.prf"});
    EXPECT_EQ(ReadFile(L"b.prf"), ReadFile(L"d.prf"));
}

TEST_F(ProfileCommands, FormFieldsAreReadAndNotWrittenBack) {
    const std::string fields =
        "<?xml version=\"1.0\"\n<xfdf >\n<field>name=\"a\"\n<value>1</value>\n</field>\n";
    WriteFile(L"a.xfdf", fields);
    Expect({
        {L"profile show a.xfdf", 0, "a = 1\n"},
        {L"profile set a.xfdf a 2", 1, "", "a file of form fields cannot be written back"},
        {L"profile convert a.xfdf a.xml --form xml"},
        {L"profile get a.xml a", 0, "1\n"},
    });
    EXPECT_EQ(ReadFile(L"a.xfdf"), fields);
}

TEST_F(ProfileCommands, FilesThatHoldNoProfileAreNotReplaced) {
    const std::pair<std::string, const char*> rows[] = {
        {"Dear all,\r\nthis is a letter.\r\n", "contains no items"},
        {"abc", "too short for a profile"},
        {std::string("\xFE\xFF\0[\0/\0]\0\r\0\n\0a\0=\0b", 18), "contains no items"},
    };
    for (const auto& [bytes, errors] : rows) {
        WriteFile(L"a.txt", bytes);
        Expect({L"profile set a.txt n v", 1, "", errors});
        Expect({L"profile set a.txt n v --shared", 1, "", errors});
        Expect({L"profile convert a.txt b.prf", 1, "", errors});
        EXPECT_FALSE(IsThere(L"b.prf"));
        EXPECT_EQ(ReadFile(L"a.txt"), bytes);
    }
}

// Another process keeps the file longer than the commands wait for it.
TEST_F(ProfileCommands, FilesThatCannotBeReadAreNotReplaced) {
    const std::string bytes = "[/]\r\na=1\r\n";
    WriteFile(L"a.prf", bytes);
    vxut::clsAutoCloseFile other(
        CreateFileW((Folder() / L"a.prf").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(other);
    const wchar_t* const calls[] = {L"profile set a.prf n v --shared", L"profile set a.prf n v",
                                    L"profile delete a.prf a --shared", L"profile convert a.prf b.prf"};
    std::vector<std::unique_ptr<RunningProgram>> programs;
    for (const wchar_t* words : calls) {
        const std::wstring name = L"vlm" + std::to_wstring(programs.size());
        programs.push_back(std::make_unique<RunningProgram>(L"vlm.exe", words, Folder(), name));
    }
    for (size_t i = 0; i < programs.size(); ++i) {
        const Answer answer = programs[i]->Wait();
        EXPECT_EQ(answer.exitCode, 1) << calls[i];
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "a.prf: the file stayed in use", answer.errors);
    }
    other.Reset();
    EXPECT_EQ(ReadFile(L"a.prf"), bytes);
    EXPECT_FALSE(IsThere(L"b.prf"));
}

TEST_F(ProfileCommands, AFileInUseIsWaitedFor) {
    WriteFile(L"a.prf", "[/]\r\na=1\r\n");
    vxut::clsAutoCloseFile other(
        CreateFileW((Folder() / L"a.prf").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(other);
    RunningProgram program(L"vlm.exe", L"profile set a.prf a 2", Folder(), L"vlm");
    Sleep(1000);
    other.Reset();
    const Answer answer = program.Wait();
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    Expect({L"profile get a.prf a", 0, "2\n"});
}

TEST_F(ProfileCommands, OnlyAMissingFileBecomesANewProfile) {
    std::filesystem::create_directory(Folder() / L"folder.prf");
    for (const wchar_t* path : {L"folder.prf", L"none\\a.prf"})
        for (const wchar_t* way : {L"", L" --shared"})
            Expect({std::wstring(L"profile set ") + path + L" n v" + way, 1, "",
                    ".prf: the file cannot be opened"});
    Expect({
        {L"profile set new.prf n v --shared"},
        {L"profile get new.prf n", 0, "v\n"},
    });
}

TEST_F(ProfileCommands, DeepTreeIsShownWithoutRecursion) {
    std::string bytes = "[/]\r\n";
    for (int depth = 0; depth < 20000; ++depth) bytes += "[d]\r\n";
    WriteFile(L"deep.prf", bytes + "leaf=1\r\n");
    const Answer answer = Run(L"profile show deep.prf");
    EXPECT_EQ(answer.exitCode, 0) << answer.errors;
    EXPECT_PRED_FORMAT2(testing::IsSubstring, " leaf = 1\n", answer.out);
    EXPECT_LT(answer.out.size(), 20000u * 100);
}

} // namespace vlm::test
