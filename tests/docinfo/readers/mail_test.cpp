#include "docinfo/readers/mail.h"

#include "docinfo/readers/address_field.h"
#include "docinfo/readers/encoded_word.h"
#include "docinfo/readers/reader_exception.h"
#include "tests/support/document_reading.h"
#include "tests/support/fake_stream.h"

#include <gtest/gtest.h>

namespace vxut {
namespace {

using namespace test;

TEST(MailTest, DecodesWordsInFields) {
    const struct {
        const wchar_t* value;
        const wchar_t* decoded;
    } kRows[] = {
        {L"plain", L"plain"},
        {L"=?utf-8?B?w6Q=?=", L"\xE4"},
        {L"=?iso-8859-1?Q?Andr=E9_X?= y", L"Andr\xE9 X y"},
        {L"=?ISO-8859-1?q?=80?=", L"\x20AC"}, // as code page 1252
        {L"=?utf-8*de?Q?x?=", L"x"},
        {L"=?utf-8?Q?a?= =?utf-8?b?Yg==?=", L"a b"}, // the blank stays
        {L"=?no-such?Q?=E4?=", L"\xE4"},             // the system's code page
        {L"=?utf-8?Q?a=00b?=", L"a"},
        {L"=?utf-8?Q?ab=4?=", L"ab"},
        {L"=?utf-8?Q?=2a=2A=zz?=", L"**S"}, // letters are not checked to be digits
        {L"=?utf-8?B?Y W-J j?=", L"abc"},
        {L"=?utf-8?B?YQ?=", L"a"},
        {L"=?utf-8?X?a?=", L"=?utf-8?X?a?="},
        {L"=?utf-8?Q?a", L"=?utf-8?Q?a"},
        {L"x=?utf-8?Q?a?==?", L"xa=?"},
        {L"=?unicode?Q?a?=", L""}, // a code page that does not convert
    };
    for (const auto& [value, decoded] : kRows)
        EXPECT_STREQ(UtilDecodeMailField(value, L"Subject").Text(), decoded) << value;
    const String kLong(L'a', 60000);
    EXPECT_EQ(UtilDecodeMailField(String(L"=?utf-8?Q?") + kLong + L"?=", L"Subject").Length(), 60000);
}

TEST(MailTest, DecodesAddressFields) {
    const struct {
        const wchar_t* value;
        const wchar_t* decoded;
    } kRows[] = {
        {L"=?iso-8859-1?Q?Andr=E9?= <a@b.c>", L"Andr\xE9 <a@b.c>"},
        {L"\"Doe, J.\" \t <j@d.e>", L"\"Doe, J.\" <j@d.e>"},
        {L"a@b.c", L"a@b.c"},
        {L"mailto:a@b.c.", L"a@b.c"},
        {L"root", L""},
        {L"a@b", L""},
        {L"Me <EX:/O=X/CN=Y>", L"Me "},
        {L"Me <ex:1> <a@b.c>", L"Me  <a@b.c>"},
        {L"a@b.c (x =?utf-8?Q?=C3=A4?=  y)", L"a@b.c (x\xE4y)"},
        {L"x=?utf-8?Q?w?=", L"wx"}, // the word first
        {L"a\\\"b c", L"a\"b c"},
        {L"a \x01 b@c.d", L""}, // what follows the control character is not read
        {L"a x@y.z\x7f", L"x@y.z"},
        {L"a (b", L"a (b"},
        {L"\"a", L""},
        {L"=x y", L"=x y"},
        {L"<a@b.c", L"a@b.c"},
        {L"", L""},
    };
    for (const auto& [value, decoded] : kRows)
        EXPECT_STREQ(UtilDecodeMailField(value, L"from").Text(), decoded) << value;
}

TEST(MailTest, TokensHaveKindsAndPositions) {
    const struct {
        int32_t kind;
        int64_t position;
        const wchar_t* text;
    } kTokens[] = {{1, 0, L"A"},  {5, 1, L" "},        {1, 4, L"\"b\""}, {3, 7, L"(c)"},
                   {5, 11, L" "}, {4, 12, L"<a@b.c>"}, {1, 19, L";"}};
    const WCValDList<clsParseItem> items = TokeniseAddressField(L"A   \"b\"(c ) <a@b.c>;");
    ASSERT_EQ(items.entries(), static_cast<int>(std::size(kTokens)));
    int index = 0;
    for (const clsParseItem& item : items) {
        EXPECT_EQ(item.Kind, kTokens[index].kind) << index;
        EXPECT_EQ(item.Position, kTokens[index].position) << index;
        ++index;
    }
}

TEST(MailTest, AnUnknownEncodingIsAFault) {
    clsRegExMatchList groups;
    ASSERT_TRUE(clsRegEx(L"(a)(X)(b)").Match(L"aXb", &groups));
    try {
        clsRFC1342Decoder(L"field").Replace(L"aXb", groups);
        FAIL();
    } catch (const clsException& fault) {
        EXPECT_STREQ(fault.Message().Text(), L"Bad encoding 'X' in word 'field'");
    }
}

TEST(MailTest, ReadsTheHeader) {
    const struct {
        const char* text;
        const wchar_t* author;
        const wchar_t* title;
        const char* created;
    } kRows[] = {
        {"From: a@b.c\r\nSubject:\tone\r\nDate: Fri, 13 Nov 2026 16:30:00 +0100\r\n\r\nTitle: no", L"a@b.c",
         L"one", "2026-11-13 15:30:00"},
        {"from: a@b.c\rSUBJECT: one\r\rx", L"a@b.c", L"one", "(empty)"},
        {"Subject: one\nFrom: a@b.c\n\nSubject: two\n\n", L"a@b.c", L"one", "(empty)"},
        {"Subject: a\r\n b\r\n\tc\nSubject: two\r\n three\n\n", L"(unset)", L"two three", "(empty)"},
        {"X-Subject: no\nSubject : no\n Subject: no\nSubject:\n\n", L"(unset)", L"", "(empty)"},
        {"Date: 32 Nov 2026 16:30:00\nSubject: x\n\n", L"(unset)", L"x", "(empty)"},
        {"Date: 1 Xyz 2026 16:30:00\nSubject: x\n\n", L"(unset)", L"x", "(empty)"},
        {"Date: 1 Dec 2026 24:59:59 GMT\nDate: never\n\n", L"(unset)", L"(unset)", "2026-12-01 24:59:59"},
        {"Subject: no empty line\r\n", L"(unset)", L"(unset)", "(empty)"},
        {"\n\nSubject: behind it\n\n", L"(unset)", L"(unset)", "(empty)"},
        {"", L"(unset)", L"(unset)", "(empty)"},
    };
    for (const auto& [text, author, title, created] : kRows) {
        int result = -1;
        const Document document = ReadDocument(ReadMail, text, &result);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(TextOrUnset(document->Author), author) << text;
        EXPECT_EQ(TextOrUnset(document->Title), title) << text;
        EXPECT_EQ(TimeText(document->Created), created) << text;
    }
}

TEST(MailTest, SeesTheFirst64Kibibytes) {
    const std::string subject = "Subject: x\n";
    const std::string filler(65536 - subject.size() - 4, 'y');
    EXPECT_EQ(TextOrUnset(ReadDocument(ReadMail, subject + "X:" + filler + "\n\n")->Title), L"x");
    EXPECT_EQ(TextOrUnset(ReadDocument(ReadMail, subject + "X: " + filler + "\n\n")->Title), L"(unset)");
}

TEST(MailTest, AFailingCallMakesNoOtherMessage) {
    for (unsigned call = 1;; ++call) {
        FakeStream stream("Subject: Subject: x\n\n" + std::string(70000, 'y'));
        stream.position = 9; // where a message begins, too
        clsDocFile file(L"");
        file.OpenOnStream(&stream);
        const Document document(MakeCounted<clsDocu>());
        stream.FailCall(call, false);
        ReadMail(*document.Get(), file);
        const std::wstring title = TextOrUnset(document->Title);
        EXPECT_TRUE(title == L"Subject: x" || (stream.HasStruck() && title == L"(unset)")) << call;
        if (!stream.HasStruck()) break;
    }
}

TEST(MailTest, HostileHeadersTakeLittleTime) {
    const std::string kHeaders[] = {
        Repeated("From: a\n", 8192),
        "Subject: " + Repeated("=?a?q?x", 9000) + "\n\n",
        "From: " + Repeated("=?a?q?x", 9000) + "\n\n",
        "From: " + Repeated("=?a*?q?x", 8000) + "?=\n\n",
        "From: " + std::string(65000, 'a') + ".@\n\n",
        "Date: " + std::string(65000, '1') + ":::\n\n",
        "To: " + Repeated("a ", 32000) + "\n\n",
    };
    for (const std::string& header : kHeaders)
        EXPECT_LT(ProcessorTime(ReadMail, header), 1000) << header.substr(0, 20);
}

} // namespace
} // namespace vxut
