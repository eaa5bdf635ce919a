#include "profile/clipboard.h"

#include "prof/codes.h"
#include "profile/item_path.h"
#include "profile/job.h"
#include "tests/support/child_process.h"

#include <gtest/gtest.h>

#include <string>

namespace vxut {
namespace {

using test::ChildResult;
using test::RunChild;

// The clipboard is the session's: tests with its name run alone. They leave it empty.
class ClipboardTest : public testing::Test {
protected:
    ClipboardTest() { EXPECT_TRUE(Empty()); }
    ~ClipboardTest() override { EXPECT_TRUE(Empty()); }

    static bool Empty() { return OpenClipboard(nullptr) && EmptyClipboard() && CloseClipboard(); }
    // Puts bytes there as another program might.
    static void Put(const std::string& bytes) {
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
        GlobalUnlock(memory);
        EXPECT_TRUE(OpenClipboard(nullptr) && SetClipboardData(ProfileClipboardFormat(), memory) &&
                    CloseClipboard());
    }
};

TEST_F(ClipboardTest, ProfilesGoFromOneProcessToTheOther) {
    for (const int format : {+PROF_FORMAT_TEXT, +PROF_FORMAT_XML, PROF_FORMAT_XML | PROF_FORMAT_PACKED}) {
        Empty();
        EXPECT_EQ(RunChild(L"clipboard-put " + std::to_wstring(format)).exitCode, PROF_OK);
        ProfJob fromChild;
        LoadFromClipboard(fromChild, nullptr);
        EXPECT_EQ(fromChild.LastError(), PROF_OK);
        const scPlace place{fromChild.Root(), fromChild.Root()};
        ASSERT_NE(FindItemAt(place, L"a"), nullptr) << format;
        EXPECT_STREQ(FindItemAt(place, L"a")->ValueText(), L"from the child \u65E5");
        ASSERT_NE(FindItemAt(place, L"List/b"), nullptr);

        Empty();
        ProfJob job;
        job.Root().AppendItem(L"c", L"<for the child>");
        EXPECT_EQ(SaveToClipboard(job, nullptr, format), PROF_OK);
        const ChildResult child = RunChild(L"clipboard-get");
        EXPECT_EQ(child.exitCode, PROF_OK);
        EXPECT_EQ(child.output.substr(0, 15), "<for the child>");
    }
    Empty();
    EXPECT_EQ(RunChild(L"clipboard-put " + std::to_wstring(PROF_FORMAT_XFDF)).exitCode, PROF_OK);
    EXPECT_EQ(RunChild(L"clipboard-get").exitCode, PROF_ERR_FORMAT) << "that form cannot be read back";
    Empty();
    EXPECT_EQ(RunChild(L"clipboard-get").exitCode, PROF_ERR_OPEN);
}

TEST_F(ClipboardTest, WhatOtherProgramsPutThereIsReadOrRefused) {
    const struct {
        std::string bytes;
        int32_t code;
        int items;
    } kRows[] = {
        {std::string("[/]\n{\na=1\n}\n\0\0\0", 15), PROF_OK, 1},
        {"ZRzQ\xFF\xFF", PROF_OK, 0},
        {std::string(1, '\0'), PROF_OK, 0},
        {"<?xml version=\"1.0\"\n<profile>\n <item name=\"a\">1</item>\n<profile>\n", PROF_ERR_FORMAT, 1},
        {std::string(100000, '['), PROF_OK, 0},
    };
    for (const auto& row : kRows) {
        Empty();
        Put(row.bytes);
        ProfJob job;
        LoadFromClipboard(job, nullptr);
        EXPECT_EQ(job.LastError(), row.code) << row.bytes.substr(0, 20);
        EXPECT_EQ(job.Root().entries(), row.items) << row.bytes.substr(0, 20);
    }
}

} // namespace
} // namespace vxut
