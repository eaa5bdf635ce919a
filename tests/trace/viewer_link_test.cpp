#include "trace/viewer_link.h"

#include "base/identity.h"
#include "tests/support/import_table.h"
#include "trace/standard_sinks.h"
#include "trace/wait_budget.h"
#include "util/debug.h"
#include "util/frame.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cwchar>
#include <functional>
#include <regex>
#include <thread>

namespace vxut {
namespace {

// A viewer that keeps what it is sent, and takes messages on the thread that makes it.
class FakeViewer {
public:
    // Lives from here on. It is the block's viewer when it is published.
    explicit FakeViewer(const scViewerNames& names, bool takesUtf8 = true, bool hasMailslot = true)
        : windowClass_(names.windowClass), block_(names.block, sizeof(UtilTraceBlock)) {
        if (hasMailslot) mailslot_.Reset(CreateMailslotW(names.mailslot, 0, 0, nullptr));
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = Answer;
        windowClass.lpszClassName = windowClass_;
        RegisterClassW(&windowClass);
        window_ = CreateWindowW(windowClass_, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window_, GWLP_USERDATA, takesUtf8);
    }
    ~FakeViewer() { Close(); }

    // Runs before a message is answered.
    static inline std::function<void(const COPYDATASTRUCT&)> whenAsked;

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
        const auto& copy = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        if (whenAsked) whenAsked(copy);
        const auto query = copy.dwData;
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

// A viewer without a mailslot, which works on a thread of its own and answers late.
class LateViewer {
public:
    // Each answer is delayed by so many milliseconds, or until Release().
    LateViewer(const scViewerNames& names, DWORD delay) : delay_(delay) {
        FakeViewer::whenAsked = [this](const COPYDATASTRUCT& copy) { Take(copy); };
        thread_ = std::thread([this, &names] { Run(names); });
        WaitForSingleObject(published_.Get(), INFINITE);
    }
    ~LateViewer() { Stop(); }
    LateViewer(const LateViewer&) = delete;
    LateViewer& operator=(const LateViewer&) = delete;

    // Answers at once from now on.
    void Release() { SetEvent(released_.Get()); }
    void WaitUntilAsked() { WaitForSingleObject(asked_.Get(), INFINITE); }
    size_t Answered() const { return answered_; }
    size_t Asked() const { return askedCount_; }

    // The records; the viewer ends.
    const std::vector<std::string>& Stop() {
        Release();
        PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
        if (thread_.joinable()) thread_.join();
        FakeViewer::whenAsked = nullptr;
        return records_;
    }

private:
    static clsAutoCloseHandle Event() {
        return clsAutoCloseHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    }
    void Run(const scViewerNames& names) {
        FakeViewer viewer(names, true, false);
        viewer.Publish();
        threadId_ = GetCurrentThreadId();
        SetEvent(published_.Get());
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
        viewer.Withdraw();
    }
    void Take(const COPYDATASTRUCT& copy) {
        ++askedCount_;
        SetEvent(asked_.Get());
        WaitForSingleObject(released_.Get(), delay_);
        if (copy.dwData == UTIL_TRACE_LINE) records_.emplace_back(static_cast<const char*>(copy.lpData));
        ++answered_;
    }

    const DWORD delay_;
    const clsAutoCloseHandle published_ = Event(), asked_ = Event(), released_ = Event();
    std::atomic<size_t> askedCount_{0}, answered_{0};
    std::vector<std::string> records_;
    DWORD threadId_ = 0;
    std::thread thread_;
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

    // The texts of the records in a mailslot, without the byte after each.
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
    const scViewerNames names = {block.c_str(), windowClass.c_str(), mailslot.c_str()};
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
        UtilDebug(L"closes the mailslot, whose name the next viewer uses");
    }
}

TEST_F(ViewerLinkTest, SendsOneLeaveLineToAViewerThatWithdraws) {
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

// A viewer that neither answers nor reads delays the process once, not for each line.
TEST_F(ViewerLinkTest, WaitsForAHangingViewerOnce) {
    FakeViewer viewer(names);
    viewer.Publish();
    static unsigned waits = 0;
    test::ImportPatch imports(GetModuleHandleW(nullptr));
    imports.Replace(
        "WaitForSingleObject", +[](HANDLE object, DWORD milliseconds) WINAPI -> DWORD {
            waits += milliseconds == UTIL_TRACE_PATIENCE;
            return WaitForSingleObjectEx(object, milliseconds, FALSE);
        });
    for (int i = 0; i < 2000; ++i) UtilDebug(L"%0500d", i);
    EXPECT_LT(waits, 12u); // one, and one more after each rest on a slow machine
}

TEST_F(ViewerLinkTest, GivesUpOnAViewerThatAnswersLate) {
    LateViewer viewer(names, UTIL_TRACE_PATIENCE / 2 + 100);
    for (int i = 0; i < 10; ++i) UtilDebug(L"line");
    EXPECT_GE(viewer.Asked(), 1u);
    EXPECT_LE(viewer.Asked(), 2u);
    EXPECT_EQ(UtilGetFlags(), 1);
}

// While a thread waits for the viewer, others go on; what they write is sent in order afterwards.
TEST_F(ViewerLinkTest, LetsNoThreadWaitForTheWaitOfAnother) {
    LateViewer viewer(names, UTIL_TRACE_PATIENCE * 4 / 5);
    std::thread first([] { UtilDebug(L"first"); });
    viewer.WaitUntilAsked();
    EXPECT_EQ(UtilGetFlags(), 1);
    UtilDebug(L"second");
    UtilDebug(L"third");
    EXPECT_EQ(viewer.Answered(), 0u);
    viewer.Release();
    first.join();
    UtilDebug(L"fourth");
    std::vector<std::string> texts;
    int digit = -1;
    for (const std::string& record : viewer.Stop()) {
        texts.push_back(TextOf(record));
        const int next = record[record.find('/') + 4] - '0';
        EXPECT_TRUE(digit < 0 || next == (digit + 1) % 10) << record;
        digit = next;
    }
    EXPECT_EQ(texts, (std::vector<std::string>{join, "second", "third", "first", "fourth"}));
}

TEST(WaitBudgetTest, RestsWhenLongWaitsAddUp) {
    clsWaitBudget budget(100, 50);
    budget.Spend(60, 1000);
    EXPECT_TRUE(budget.MayWait(1000));
    budget.Spend(40, 1000);
    EXPECT_FALSE(budget.MayWait(1049));
    EXPECT_TRUE(budget.MayWait(1050));
    budget.Spend(3, 1053); // of the 50 between, 5 are forgiven
    EXPECT_TRUE(budget.MayWait(1053));
    budget.Spend(2, 1055);
    EXPECT_FALSE(budget.MayWait(1104));
    budget.Refill();
    EXPECT_TRUE(budget.MayWait(1104));
    budget.Spend(99, 5000);
    budget.Spend(99, 7000);
    EXPECT_TRUE(budget.MayWait(7000));
}

TEST_F(ViewerLinkTest, ComparesTheNameOfTheProgramBeforeJoinAndLeaveLines) {
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
