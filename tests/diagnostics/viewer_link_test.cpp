#include "diagnostics/viewer_link.h"

#include "diagnostics/standard_sinks.h"
#include "frame/identity.h"
#include "tests/support/child_process.h"
#include "tests/support/debug_strings.h"
#include "tests/support/fake_viewer.h"
#include "tests/support/temp_folder.h"
#include "util/debug.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <regex>

namespace vxut {
namespace {

using test::FakeViewer;

// The text column of a record that has no module column.
std::string TextOf(const std::string& record) {
    static const std::regex layout("(?:\\d\\d:)?\\d\\d:\\d\\d\\.\\d{3} [0-9a-f]{8}/[0-9a-f]{2} \\d +([^]*)");
    std::smatch match;
    return std::regex_match(record, match, layout) ? match[1].str() : "malformed: " + record;
}

// The process has sinks of its own, which look for viewers of the test's names.
class ViewerLinkTest : public testing::Test {
protected:
    ViewerLinkTest() : previous_(SetDebugSinks(&sinks)) {}
    ~ViewerLinkTest() override { SetDebugSinks(previous_); }

    // The texts of the records in a mailslot, without the byte behind each.
    static std::vector<std::string> Texts(FakeViewer& viewer, char end = '\r') {
        std::vector<std::string> texts;
        for (const std::string& record : viewer.Records()) {
            EXPECT_EQ(record.back(), end);
            texts.push_back(TextOf(record.substr(0, record.size() - 1)));
        }
        return texts;
    }

    const test::FreshViewerNames fresh;
    const ViewerNames names = fresh.Get();
    const std::string path = String(Identity().processPath).Narrow();
    const std::string join = "++VXUT_UNIT_TESTS.EXE  <no version info> [" + path + "]";
    const std::string leave = "--VXUT_UNIT_TESTS.EXE  <no version info> [" + path + "]";
    clsStandardSinks sinks{names};

private:
    IclsDebugSinks* previous_;
};

using Strings = std::vector<std::string>;

TEST_F(ViewerLinkTest, FindsAViewerThatRunsAlready) {
    FakeViewer viewer(names);
    sinks.Attach();
    EXPECT_TRUE(sinks.IsAttached());
    UtilDebug(L"line");
    EXPECT_EQ(Texts(viewer), (Strings{join, "line"}));
    EXPECT_EQ(viewer.Queries(), (std::vector<ULONG_PTR>{UTIL_TRACE_QUERY_UTF8, UTIL_TRACE_QUERY_CAPABILITY}));
    EXPECT_EQ(sinks.Viewer().Capability(), 77u);
}

TEST_F(ViewerLinkTest, LeavesTheSearchToTheFirstProcess) {
    FakeViewer viewer(names);
    clsStandardSinks second(names);
    second.Attach();
    EXPECT_FALSE(second.IsAttached());
    // The first one must not take back what a viewer has written meanwhile.
    viewer.Publish();
    FakeViewer::Habits habits;
    habits.hasMailslot = false;
    FakeViewer other(names, habits);
    sinks.Attach();
    EXPECT_EQ(Texts(viewer), Strings{join});
    EXPECT_TRUE(other.Records().empty());
}

TEST_F(ViewerLinkTest, JoinsAViewerThatStartsLater) {
    sinks.Attach();
    EXPECT_EQ(UtilGetFlags(), 0);
    UtilDebug(L"lost");
    FakeViewer viewer(names);
    viewer.Publish();
    const test::DebugStrings strings;
    UtilDebugExt(nullptr, 0, L"first");
    EXPECT_TRUE(strings.Heard("trying to reattach to TRCWIN\n"));
    UtilDebug(L"second\r\nin two");
    EXPECT_EQ(UtilGetFlags(), 1);
    const Strings records = viewer.Records();
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(TextOf(records[0]), join + '\r');
    EXPECT_EQ(TextOf(records[1]), "first\r");
    EXPECT_EQ(TextOf(records[2]), "second\r");
    EXPECT_EQ(records[3], "in two\r");
}

TEST_F(ViewerLinkTest, FindsANewViewerWhenAskedForTheFlags) {
    FakeViewer viewer(names);
    viewer.Publish();
    EXPECT_EQ(UtilGetFlags(), 1);
    EXPECT_EQ(Texts(viewer), Strings{join});
}

TEST_F(ViewerLinkTest, SendsMessagesToAViewerWithoutMailslot) {
    FakeViewer::Habits habits;
    habits.hasMailslot = false;
    FakeViewer viewer(names, habits);
    viewer.Publish();
    const test::DebugStrings strings;
    UtilDebug(L"%0600d", 7);
    EXPECT_TRUE(strings.Heard("DebugPipe FAIL"));
    const Strings records = viewer.Records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(TextOf(records[0]), join + '\0');
    EXPECT_EQ(records[1].size(), 511u);
    EXPECT_EQ(TextOf(records[1].substr(0, 510) + records[2]), std::string(599, '0') + '7' + '\0');
    EXPECT_EQ(records[1].back(), '\0');
}

TEST_F(ViewerLinkTest, AsksForTheCodePage) {
    const struct {
        FakeViewer::Habits habits;
        std::string text;
    } rows[] = {
        {{.takesUtf8 = true}, "\xC3\xA4\xE2\x82\xAC \xD0\xAF \xEF\xBF\xBD"},
        {{.takesUtf8 = false}, "\xE4\x80 ? ?"},
        {{.answersAtAll = false}, "\xE4\x80 ? ?"},
    };
    for (const auto& row : rows) {
        FakeViewer viewer(names, row.habits);
        viewer.Publish();
        UtilDebug(L"\u00E4\u20AC \u042F \xD800"); // the last one is half a character
        EXPECT_EQ(Texts(viewer).back(), row.text);
        viewer.Withdraw();
        UtilDebug(L"lets go of the mailslot, which the next viewer wants to make");
    }
}

TEST_F(ViewerLinkTest, SaysGoodByeOnceToAViewerThatWithdraws) {
    FakeViewer viewer(names);
    viewer.Publish();
    UtilDebug(L"line");
    viewer.Withdraw();
    for (int i = 0; i < 3; ++i) UtilDebug(L"nobody takes this");
    EXPECT_EQ(UtilGetFlags(), 0);
    EXPECT_EQ(Texts(viewer), (Strings{join, "line", leave}));
    viewer.Publish();
    UtilDebug(L"again");
    EXPECT_EQ(Texts(viewer), (Strings{join, "line", leave, join, "again"}));
}

TEST_F(ViewerLinkTest, SurvivesAViewerThatDies) {
    auto viewer = std::make_unique<FakeViewer>(names);
    viewer->Publish();
    UtilDebug(L"line");
    viewer->Close();
    UtilDebug(L"nobody takes this");
    EXPECT_EQ(UtilGetFlags(), 0);
    // What it has left in the block is looked at once.
    const test::DebugStrings strings;
    UtilDebug(L"nor this");
    EXPECT_EQ(strings.Text(), "");
    EXPECT_EQ(Texts(*viewer), (Strings{join, "line"}));
    FakeViewer next(names);
    next.Publish();
    UtilDebug(L"to the next");
    EXPECT_EQ(Texts(next), (Strings{join, "to the next"}));
}

TEST_F(ViewerLinkTest, ChangesFromOneViewerToTheNext) {
    FakeViewer::Habits habits;
    habits.hasMailslot = false;
    FakeViewer one(names), other(names, habits);
    one.Publish();
    UtilDebug(L"to one");
    other.Publish();
    UtilDebug(L"to the other");
    EXPECT_EQ(Texts(one).size(), 5u); // the mailslot is there for both
    EXPECT_EQ(Texts(one)[2], leave);
    EXPECT_EQ(Texts(one)[4], "to the other");
    EXPECT_TRUE(other.Records().empty());
}

TEST_F(ViewerLinkTest, LeavesWhenTheLibraryIsUnloaded) {
    FakeViewer viewer(names);
    sinks.Attach();
    sinks.Detach();
    sinks.Detach();
    EXPECT_EQ(Texts(viewer), (Strings{join, leave}));
    // Static destructors may still write; no mailslot is open any more.
    UtilDebug(L"late");
    ASSERT_EQ(viewer.Records().size(), 3u);
    EXPECT_EQ(TextOf(viewer.Records()[2]), std::string("late\0", 5));
}

// A viewer that neither reads nor answers delays the process once, not for each line.
TEST_F(ViewerLinkTest, WaitsForAHangingViewerOnce) {
    FakeViewer viewer(names);
    viewer.Publish();
    UtilDebug(L"line");
    viewer.Hang();
    const ULONGLONG start = GetTickCount64();
    for (int i = 0; i < 2000; ++i) UtilDebug(L"%0500d", i);
    EXPECT_LT(GetTickCount64() - start, 2u * UTIL_TRACE_PATIENCE);
}

TEST_F(ViewerLinkTest, GreetsOrNotAsTheProgramIsCalled) {
    const struct {
        const wchar_t* program;
        bool joins;
        bool leaves;
    } rows[] = {
        {L"RESWEAVE.EXE", true, false},
        {L"ResWeaver.exe", false, false},
        {L"RESWEAV.EXE", true, true},
    };
    const test::FreshFolder folder;
    for (const auto& row : rows) {
        const String program = folder.At(row.program);
        FakeViewer viewer(names);
        viewer.Publish();
        test::RunChildAs(program.Text(), L"greet-viewer",
                         {{L"VXUT_TEST_BLOCK", names.block}, {L"VXUT_TEST_MAILSLOT", names.mailslot}});
        const Strings texts = Texts(viewer);
        const auto has = [&](const char* start) {
            return std::any_of(texts.begin(), texts.end(),
                               [&](const std::string& text) { return text.rfind(start, 0) == 0; });
        };
        EXPECT_TRUE(has("here")) << row.program;
        EXPECT_EQ(has("++"), row.joins) << row.program;
        EXPECT_EQ(has("--"), row.leaves) << row.program;
        viewer.Withdraw();
    }
}

TEST_F(ViewerLinkTest, WorksWithoutTheBlock) {
    const clsAutoCloseHandle event(CreateEventW(nullptr, TRUE, FALSE, L"vxut-test-not-a-block"));
    const test::DebugStrings strings;
    ViewerNames bad = names;
    bad.block = L"vxut-test-not-a-block";
    clsStandardSinks without(bad);
    EXPECT_TRUE(strings.Heard("TRCWIN global info struct cannot be created: ")) << strings.Text();
    without.Attach();
    EXPECT_FALSE(without.IsAttached());
    without.Detach();
}

} // namespace
} // namespace vxut
