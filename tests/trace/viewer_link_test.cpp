#include "trace/viewer_link.h"

#include "base/identity.h"
#include "trace/standard_sinks.h"
#include "util/debug.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <regex>

namespace vxut {
namespace {

// A viewer that keeps what it is sent, and takes messages on the thread that makes it.
class FakeViewer {
public:
    // Lives from here on. It is the block's viewer when it is published.
    explicit FakeViewer(const ViewerNames& names, bool takesUtf8 = true)
        : windowClass_(names.windowClass),
          block_(names.block, sizeof(UtilTraceBlock)),
          mailslot_(CreateMailslotW(names.mailslot, 0, 0, nullptr)) {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = Answer;
        windowClass.lpszClassName = windowClass_;
        RegisterClassW(&windowClass);
        window_ = CreateWindowW(windowClass_, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window_, GWLP_USERDATA, takesUtf8);
    }
    ~FakeViewer() { Close(); }

    void Publish() { Name(window_); }
    void Withdraw() { Name(nullptr); }
    // Closes the window and the mailslot.
    void Close() {
        Records(); // what the mailslot still holds
        mailslot_.Reset();
        DestroyWindow(window_);
        UnregisterClassW(windowClass_, nullptr);
    }

    // The records up to now.
    std::vector<std::string> Records() {
        char record[1024];
        DWORD bytes = 0;
        while (mailslot_ && ReadFile(mailslot_.Get(), record, sizeof record, &bytes, nullptr))
            records_.emplace_back(record, bytes);
        return records_;
    }

private:
    static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != WM_COPYDATA) return DefWindowProcW(window, message, wParam, lParam);
        const auto query = reinterpret_cast<const COPYDATASTRUCT*>(lParam)->dwData;
        return query == UTIL_TRACE_QUERY_UTF8 ? GetWindowLongPtrW(window, GWLP_USERDATA) : 77;
    }
    void Name(HWND window) {
        static_cast<UtilTraceBlock*>(block_.View())->window = reinterpret_cast<uintptr_t>(window);
    }

    const wchar_t* const windowClass_;
    clsSharedBlock block_;
    clsAutoCloseFile mailslot_;
    HWND window_ = nullptr;
    std::vector<std::string> records_;
};

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
    static std::vector<std::string> Texts(FakeViewer& viewer) {
        std::vector<std::string> texts;
        for (const std::string& record : viewer.Records()) {
            EXPECT_EQ(record.back(), '\r');
            texts.push_back(TextOf(record.substr(0, record.size() - 1)));
        }
        return texts;
    }

    // Names that no other process and no earlier test uses.
    static inline int made = 0;
    const std::wstring own = std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made);
    const std::wstring block = L"vxut-test-block-" + own, windowClass = L"vxut-test-viewer-" + own;
    const std::wstring mailslot = L"\\\\.\\mailslot\\vxut-test-" + own;
    const ViewerNames names = {block.c_str(), windowClass.c_str(), mailslot.c_str()};
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
    UtilDebug(L"line");
    EXPECT_EQ(Texts(viewer), (Strings{join, "line"}));
    EXPECT_EQ(sinks.Viewer().Capability(), 77u);
    sinks.Detach();
    sinks.Detach();
    EXPECT_EQ(Texts(viewer), (Strings{join, "line", leave}));
}

TEST_F(ViewerLinkTest, AsksForTheCodePage) {
    const std::pair<bool, std::string> rows[] = {
        {true, "\xC3\xA4\xE2\x82\xAC \xD0\xAF \xEF\xBF\xBD"},
        {false, "\xE4\x80 ? ?"},
    };
    for (const auto& [takesUtf8, text] : rows) {
        FakeViewer viewer(names, takesUtf8);
        viewer.Publish();
        UtilDebug(L"\u00E4\u20AC \u042F \xD800"); // the last one is half a character
        EXPECT_EQ(Texts(viewer).back(), text);
        viewer.Withdraw();
        UtilDebug(L"lets go of the mailslot, which the next viewer wants to make");
    }
}

TEST_F(ViewerLinkTest, SaysGoodByeOnceToAViewerThatWithdraws) {
    sinks.Attach();
    UtilDebug(L"lost");
    EXPECT_EQ(UtilGetFlags(), 0);
    FakeViewer viewer(names);
    viewer.Publish();
    UtilDebug(L"line");
    viewer.Withdraw();
    for (int i = 0; i < 3; ++i) UtilDebug(L"nobody takes this");
    EXPECT_EQ(UtilGetFlags(), 0);
    EXPECT_EQ(Texts(viewer), (Strings{join, "line", leave}));
    viewer.Publish();
    UtilDebug(L"again");
    EXPECT_EQ(UtilGetFlags(), 1);
    EXPECT_EQ(Texts(viewer), (Strings{join, "line", leave, join, "again"}));
}

TEST_F(ViewerLinkTest, SurvivesAViewerThatDies) {
    auto viewer = std::make_unique<FakeViewer>(names);
    viewer->Publish();
    UtilDebug(L"line");
    viewer->Close();
    UtilDebug(L"nobody takes this");
    EXPECT_EQ(UtilGetFlags(), 0);
    EXPECT_EQ(Texts(*viewer), (Strings{join, "line"}));
    FakeViewer next(names);
    next.Publish();
    UtilDebug(L"to the next");
    EXPECT_EQ(Texts(next), (Strings{join, "to the next"}));
}

// A viewer that reads nothing delays the process once, not for each line.
TEST_F(ViewerLinkTest, WaitsForAHangingViewerOnce) {
    FakeViewer viewer(names);
    viewer.Publish();
    const ULONGLONG start = GetTickCount64();
    for (int i = 0; i < 2000; ++i) UtilDebug(L"%0500d", i);
    EXPECT_LT(GetTickCount64() - start, 2u * UTIL_TRACE_PATIENCE);
}

TEST_F(ViewerLinkTest, GreetsOrNotAsTheProgramIsCalled) {
    const std::pair<const wchar_t*, Strings> rows[] = {
        {L"RESWEAVE.EXE", {join, "here"}},
        {L"ResWeaver.exe", {"here"}},
        {L"RESWEAV.EXE", {join, "here", leave}},
    };
    auto* const program = const_cast<wchar_t*>(Identity().processFileName);
    const std::wstring own(program);
    for (const auto& [name, texts] : rows) {
        std::wcscpy(program, name);
        FakeViewer viewer(names);
        viewer.Publish();
        UtilDebug(L"here");
        sinks.Detach();
        EXPECT_EQ(Texts(viewer), texts) << name;
        viewer.Withdraw();
        UtilDebug(L"nobody takes this");
    }
    std::wcscpy(program, own.c_str());
}

} // namespace
} // namespace vxut
