#include "docinfo/readers/rtf.h"

#include "tests/support/document_reading.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

using namespace test;

TEST(RtfTest, DecodesText) {
    const struct {
        const wchar_t* text;
        const wchar_t* decoded;
    } kRows[] = {
        {L"", L""},
        {L"a\r\nb\\'e4\\'E4", L"ab\xE4\xE4"},
        {L"a\\\\b\\\\\\\\", L"a\\b\\\\"},
        {L"a\\'00b\\'4", L"ab\\'4"},
        {L"\\'5c'41", L"A"}, // the backslash makes another escape
        {L"\\'\\'3441", L"D1"},
        {L"\\'4\r\n1", L"A"},
        {L"\\'0d", L"\r"},
        {L"\\u228?", L"\\u228?"},
    };
    for (const auto& [text, decoded] : kRows) EXPECT_STREQ(RtfDecodeText(text).Text(), decoded) << text;
}

TEST(RtfTest, ReadsItems) {
    const auto read = [](const std::string& items) {
        return ReadDocument(ReadRtf, "{\\rtf1{\\info" + items + "}\\pard {\\title no}}");
    };
    const struct {
        const char* items;
        const wchar_t* title;
    } kRows[] = {
        {"{\\title Report}", L" Report"},
        {"{\\TITLE\\b x \t}", L"\\b x"},
        {"{\\title  }", L" "},
        {"{\\title a\\\\b\\'e4}", L" a\\b\xE4"},
        {"{\\title A{\\b bold} tail}{\\author B}", L" A{\\b bold"},
        {"{\\author B}{\\title{\\b bold} tail}", L" tail"}, // what remains when the inner group is removed
        {"{\\author B}{\\*\\company C}{\\title T}", L" T"},
        {"{\\author B}{\\*\\company {C}}{\\title T}", L"(unset)"}, // two closing braces end the group
        {"{\\title one}{\\title two}{\\title one}", L" two"},      // equal groups count at the first place
        {"{\\title T} \r\n", L" T"},
        {"{\\title}", L"(unset)"},
        {"{\\*\\title x}", L"(unset)"},
        {"\r\n{\\title x}", L"(unset)"},
        {"{\\title x", L" no"}, // the group ends with what follows
    };
    for (const auto& [items, title] : kRows) EXPECT_EQ(TextOrUnset(read(items)->Title), title) << items;

    const Document document = read(
        "{\\subject s}{\\author a}{\\keywords k}{\\doccomm c}"
        "{\\creatim\\yr2026\\mo11\\dy13\\hr16\\min30\\sec9}{\\revtim\\yr2027\\Mo5}");
    EXPECT_EQ(TextOrUnset(document->Subject), L" s");
    EXPECT_EQ(TextOrUnset(document->Author), L" a");
    EXPECT_EQ(TextOrUnset(document->Keywords), L" k");
    EXPECT_EQ(TextOrUnset(document->Comments), L" c");
    EXPECT_EQ(TimeText(document->Created), "2026-11-13 16:30:00");
    EXPECT_EQ(TimeText(document->Modified), "2027-00-00 00:00:00");
}

TEST(RtfTest, HostileGroupsTakeLittleTime) {
    std::string distinct;
    for (int number = 0; number < 5000; ++number) distinct += "{\\a " + std::to_string(number) + "}";
    const std::string kItems[] = {Repeated("{\\info{\\a }", 6000),
                                  Repeated("{\\info{\\a ", 6500),
                                  "{\\info{\\a }" + Repeated("{\\b", 8000) + distinct + "}}",
                                  "{\\info" + Repeated("{\\a ", 16000) + "}}",
                                  "{\\info{\\title " + Repeated(" ", 60000) + "x}}",
                                  "{\\info{\\title \\'5c" + Repeated("'5c", 21000) + "}}"};
    for (const std::string& items : kItems)
        EXPECT_LT(ProcessorTime(ReadRtf, items), 1000) << items.substr(0, 30);
}

} // namespace
} // namespace vxut
