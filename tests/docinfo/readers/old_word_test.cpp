#include "docinfo/readers/readers.h"
#include "tests/support/document_builder.h"
#include "tests/support/document_text.h"

#include <gtest/gtest.h>

namespace vxut::test {
namespace {

std::wstring ReadWord(const std::string& bytes) { return ReadAndDescribe(ReadWinWord2, bytes); }
std::wstring ReadPerfect(const std::string& bytes) { return ReadAndDescribe(ReadWordPerfect, bytes); }

TEST(OldWordTest, ReadsWinWord2) {
    const std::string document = OldWordDocument({"0", "1", "T", "", "K", "C", "\xC4", "L", "more"});
    EXPECT_EQ(ReadWord(document), L"0 Title=T|Subject=|Author=\xC4|LastAuthor=L|Keywords=K|Comments=C|");
    EXPECT_EQ(ReadWord(OldWordDocument({"0", "1", "T"})), L"0 Title=T|");
    std::string tooLong = OldWordDocument({"0", "1", "T", "S"});
    tooLong[tooLong.size() - 2] = '\x7F';
    EXPECT_EQ(ReadWord(tooLong), L"0 Title=T|");
    std::string noSize = document;
    noSize[284] = '\1';
    noSize[285] = '\0';
    for (const std::string& bytes :
         {document.substr(0, 282), document.substr(0, 285), document.substr(0, document.size() - 1), noSize})
        EXPECT_EQ(ReadWord(bytes), L"-1 ");
}

TEST(OldWordTest, ReadsWordPerfect) {
    const std::string document = PerfectDocument({{1, u"a\xF90A\u00E4"},
                                                  {2, u"none"},
                                                  {5, u"\u0126\u010E\u0200z"},
                                                  {17, u"T"},
                                                  {26, u"K"},
                                                  {46, u"S"},
                                                  {48, u""}});
    EXPECT_EQ(ReadPerfect(document),
              L"0 Title=T|Subject=S|Author=\x80\xF8z|LastAuthor=|Keywords=K|Comments=a\r\n\xE4|");
    const auto with = [&](size_t offset, char byte) {
        std::string bytes = document;
        bytes[offset] = byte;
        return bytes;
    };
    for (const std::string& bytes : {document.substr(0, 511), with(1, 'X'), with(10, '\1'), with(12, '\1'),
                                     with(16, '\3'), with(18, '\0')})
        EXPECT_EQ(ReadPerfect(bytes), L"-1 ");
    // An index before byte 16 counts as being there.
    EXPECT_EQ(ReadPerfect(with(14, '\1')), ReadPerfect(document));
    EXPECT_EQ(ReadPerfect(PerfectDocument({{17, u"T"}}, 0xFFFFFFFF)), L"0 Title=T|");
    // A record without a size ends the packet.
    EXPECT_EQ(ReadPerfect(with(512, '\0')), L"0 ");
}

} // namespace
} // namespace vxut::test
