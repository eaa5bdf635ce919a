// Profiles on the clipboard. The clipboard is the session's: one test, which leaves it empty.
#include "profile_support.h"

#include <gtest/gtest.h>

#include <cstring>

namespace vxut::test {
namespace {

class ClipboardScope {
public:
    ClipboardScope() { OpenClipboard(nullptr); }
    ~ClipboardScope() { CloseClipboard(); }
};

void EmptyTheClipboard() {
    const ClipboardScope scope;
    EmptyClipboard();
}

std::string ClipboardBytes(UINT format) {
    const ClipboardScope scope;
    const HANDLE block = GetClipboardData(format);
    if (!block) return {};
    std::string bytes(GlobalSize(block), '\0');
    memcpy(bytes.data(), GlobalLock(block), bytes.size());
    GlobalUnlock(block);
    return bytes;
}

TEST(ProfileClipboardTest, ATreeGoesThere) {
    const UINT format = RegisterClipboardFormatW(L"QzrProfCBFormat");
    EmptyTheClipboard();
    EXPECT_FALSE(ProfIsClipboardDataAvailable());
    {
        const Job none(ProfJobOpenClipboard(nullptr));
        EXPECT_EQ(ProfGetError(none), PROF_ERR_OPEN);
    }
    EXPECT_EQ(ProfSaveToClipboard(nullptr, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_FALSE(ProfIsClipboardDataAvailable());

    const Job job;
    ProfSetStringW(job, nullptr, L"l/a", L"1");
    EXPECT_EQ(ProfSaveToClipboard(job, nullptr, PROF_FORMAT_TEXT | PROF_FORMAT_PACKED), PROF_OK);
    ASSERT_TRUE(ProfIsClipboardDataAvailable());
    const std::string image = Utf16Marked(L"[/]\r\n {\r\n [l]\r\n  {\r\n  a=1\r\n  }\r\n }\r\n") + '\0';
    EXPECT_EQ(ClipboardBytes(format).substr(0, image.size()), image);
    const std::wstring notice = L"PROF data available";
    EXPECT_EQ(ClipboardBytes(CF_TEXT).substr(0, Utf16(notice).size()), Utf16(notice));
    const Job pasted(ProfJobOpenClipboard(nullptr));
    EXPECT_EQ(ProfGetError(pasted), PROF_OK);
    EXPECT_EQ(TreeOf(pasted), L"l{a=1;}");

    EmptyTheClipboard();
    const Job empty;
    EXPECT_EQ(ProfSaveToClipboard(empty, nullptr, PROF_FORMAT_TEXT), PROF_OK);
    EXPECT_EQ(ClipboardBytes(format).substr(0, 1), std::string(1, '\0'));
    const Job fromEmpty(ProfJobOpenClipboard(nullptr));
    EXPECT_EQ(ProfGetError(fromEmpty), PROF_OK);
    EXPECT_EQ(TreeOf(fromEmpty), L"");
    EmptyTheClipboard();
}

} // namespace
} // namespace vxut::test
