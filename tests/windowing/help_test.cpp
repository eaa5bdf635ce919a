// Context help with message boxes and the old help engine replaced, and a stand-in for the viewer.
#include "windowing/help.h"

#include "tests/support/debug_listener.h"
#include "tests/support/import_table.h"
#include "tests/support/temp_folder.h"
#include "windowing/help_number.h"
#include "windowing/help_path.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace vxut {
namespace {

// What was shown instead of windows.
std::vector<std::wstring> shown;

int WINAPI RecordBox(HWND, LPCWSTR text, LPCWSTR title, UINT style) {
    shown.push_back(std::wstring(title) + L"|" + text + L"|" + std::to_wstring(style));
    return IDOK;
}

BOOL WINAPI RecordHelp(HWND, LPCWSTR file, UINT command, ULONG_PTR data) {
    const std::wstring name = file;
    shown.push_back(L"engine|" + name.substr(name.rfind(L'\\') + 1) + L"|" + std::to_wstring(command) + L"|" +
                    std::to_wstring(command == kHelpIndex ? *reinterpret_cast<const wchar_t*>(data) : data));
    return 7;
}

std::wstring TakeShown() {
    std::wstring all;
    for (const std::wstring& line : shown) all += line + L";";
    shown.clear();
    return all;
}

void Pump(DWORD milliseconds = 0) {
    const ULONGLONG start = GetTickCount64();
    do {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
        if (milliseconds) Sleep(5);
    } while (GetTickCount64() - start < milliseconds);
}

class HelpTest : public testing::Test {
protected:
    HelpTest() : patch_(GetModuleHandleW(nullptr)) {
        patch_.Replace("MessageBoxW", RecordBox);
        patch_.Replace("WinHelpW", RecordHelp);
        for (const wchar_t* const name : {kWindow, L"vlmrHelpID", L"vlmrHelpIDs", L"vlmrHelp"}) {
            WNDCLASSW description = {};
            description.lpfnWndProc = Procedure;
            description.hInstance = GetModuleHandleW(nullptr);
            description.lpszClassName = name;
            RegisterClassW(&description);
        }
        window_ = Create(kWindow, L"", nullptr, 0);
        SetActiveWindow(window_);
        shown.clear();
        answer = 0;
        sent.clear();
    }
    ~HelpTest() override {
        for (HUTILHELP help : opened_) UtilHelpClose(help);
        DestroyWindow(window_);
    }

    static HWND Create(const wchar_t* kind, const wchar_t* text, HWND parent, int id) {
        const DWORD style = parent ? WS_CHILD | WS_VISIBLE : WS_OVERLAPPEDWINDOW;
        return CreateWindowExW(0, kind, text, style, 0, 0, 100, 100, parent,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr),
                               nullptr);
    }
    HUTILHELP Open(const wchar_t* file) { return opened_.emplace_back(UtilHelpOpen(window_, file)); }

    static void Press(std::vector<BYTE> keys) {
        for (const BYTE key : keys) {
            keybd_event(key, 0, 0, 0);
            Pump(30);
        }
        for (const BYTE key : keys) keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
        Pump(30);
    }

    static constexpr wchar_t kWindow[] = L"vxutHelpTest";
    static inline LRESULT answer = 0;                                 // of the window to messages for help
    static inline std::vector<std::tuple<UINT, WPARAM, LPARAM>> sent; // such messages
    HWND window_;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_APP || message == RegisterWindowMessageW(UTIL_HELP_CONTEXT_MESSAGE)) {
            sent.emplace_back(message, wParam, lParam);
            return answer;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    test::ImportPatch patch_;
    std::vector<HUTILHELP> opened_;
};

TEST_F(HelpTest, TheNumberComesFromThePairTheMarkOrTheStack) {
    clsHelp help(window_, nullptr, 0, L"");
    EXPECT_EQ(FindHelpNumber(help), -1);
    answer = 12;
    EXPECT_EQ(FindHelpNumber(help), 12) << "the window knows";
    help.Push(3);
    help.Push(4);
    EXPECT_EQ(FindHelpNumber(help), 4);
    const HWND edit = Create(L"EDIT", L"", window_, 10);
    SetFocus(edit);
    Create(L"vlmrHelp", L"1", window_, -10);
    EXPECT_EQ(FindHelpNumber(help), 4) << "another class";
    Create(L"vlmrHelpIDs", L"20", window_, 1);
    EXPECT_EQ(FindHelpNumber(help), 20) << "class names are compared as far as the class reaches";
    Create(L"vlmrHelpID", L"30 x", window_, -10);
    EXPECT_EQ(FindHelpNumber(help), 30) << "paired with the focus";
    DestroyWindow(edit);
    SetFocus(window_);
    EXPECT_EQ(FindHelpNumber(help), 20);
    help.Pop();
    help.Pop();
    answer = 0;
    EXPECT_EQ(FindHelpNumber(help), -1);
    const DebugListener listener;
    help.Pop();
    EXPECT_TRUE(listener.Heard(L"VLMRUTIL(Help): Min Help Depth reached, too many POPs"));
}

TEST_F(HelpTest, KeysDecideWhatIsShown) {
    const test::FreshFolder folder;
    const HUTILHELP help = Open(folder.Put(L"a.hlp", "x").Text());
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
    UtilHelpPush(help, 5);
    Press({VK_F1});
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|1|5;");
    for (const BYTE key : {VK_SHIFT, VK_CONTROL}) {
        Press({key, VK_F1});
        EXPECT_EQ(TakeShown(), L"") << key;
    }
    Press({VK_SHIFT, VK_CONTROL, VK_MENU, VK_F1});
    EXPECT_EQ(TakeShown(), L"Help|Context# 5|64;");
    Press({VK_F2});
    EXPECT_EQ(TakeShown(), L"");

    const HWND child = Create(kWindow, L"", window_, 1);
    SetFocus(child);
    Press({VK_F1});
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|1|5;") << "the window above is served";
    UtilHelpClose(help);
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|2|0;");
    Press({VK_F1});
    EXPECT_EQ(TakeShown(), L"") << "nobody watches";
    Open(folder.At(L"a.hlp").Text());
    Press({VK_F1});
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|3|0;") << "and again";
}

TEST_F(HelpTest, TheWindowIsAskedFirst) {
    const HUTILHELP help = Open(MAKEINTRESOURCEW(WM_APP));
    answer = 1;
    EXPECT_EQ(UtilHelpDisplayContext(help, 9), 1);
    EXPECT_EQ(UtilHelpShowContents(help), 1);
    EXPECT_EQ(UtilHelpShowIndex(help), 1);
    EXPECT_EQ(UtilHelpShowHelpOnHelp(help), 1);
    ASSERT_EQ(sent.size(), size_t{4});
    EXPECT_EQ(sent[0], std::tuple(UINT{WM_APP}, WPARAM{1}, LPARAM{9}));
    EXPECT_EQ(std::get<1>(sent[1]), WPARAM{3});
    EXPECT_EQ(std::get<1>(sent[2]), WPARAM{261});
    EXPECT_EQ(std::get<1>(sent[3]), WPARAM{4});
    answer = 0;
    EXPECT_EQ(UtilHelpDisplayContext(help, 9), 0);
    EXPECT_EQ(TakeShown(), L"Problem|The help file '' could not be found!|48;");
}

TEST_F(HelpTest, TheFileDecidesAboutTheEngine) {
    const test::FreshFolder folder;
    const HUTILHELP help = Open(folder.Put(L"a.hlp", "x").Text());
    EXPECT_EQ(UtilHelpShowContents(help), 1);
    EXPECT_EQ(UtilHelpShowIndex(help), 1);
    EXPECT_EQ(UtilHelpShowHelpOnHelp(help), 1);
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|3|0;engine|a.hlp|261|0;engine|a.hlp|4|0;");
    EXPECT_EQ(UtilHelp(help, window_, folder.At(L"a.hlp").Text(), 1, 77), 7) << "the engine's own result";
    EXPECT_EQ(UtilHelp(help, window_, folder.At(L"none.chm").Text(), 1, 77), 0);
    TakeShown();
    EXPECT_EQ(UtilHelp(help, window_, std::wstring(100000, L'x').c_str(), 1, 77), 0);
    TakeShown();

    const auto titleOfViewer = [] {
        wchar_t title[600] = L"";
        const HWND viewer = FindWindowW(L"HH Parent", nullptr);
        if (viewer) GetWindowTextW(viewer, title, 600);
        return std::wstring(title);
    };
    const std::wstring file = folder.Put(L"A.CHM", "x").Text();
    EXPECT_EQ(UtilHelp(help, window_, file.c_str(), 1, 77), 1);
    EXPECT_EQ(titleOfViewer(), L"HH.EXE -mapid 77 \"" + file + L"\"");
    EXPECT_EQ(UtilHelp(help, window_, file.c_str(), 261, 0), 1);
    for (int i = 0; i < 100 && titleOfViewer().find(L"mapid") != std::wstring::npos; ++i) Sleep(50);
    EXPECT_EQ(titleOfViewer(), L"HH.EXE \"" + file + L"\"") << "the first one was closed";
    UtilHelpClose(help);
    for (int i = 0; i < 100 && !titleOfViewer().empty(); ++i) Sleep(50);
    EXPECT_EQ(titleOfViewer(), L"");
    EXPECT_EQ(TakeShown(), L"engine|a.hlp|2|0;");
}

TEST_F(HelpTest, AViewerThatCannotStartIsReported) {
    test::ImportPatch patch(GetModuleHandleW(nullptr));
    patch.Replace(
        "CreateProcessW",
        +[](LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID, LPCWSTR,
            LPSTARTUPINFOW, LPPROCESS_INFORMATION) WINAPI -> BOOL {
            SetLastError(ERROR_FILE_NOT_FOUND);
            return FALSE;
        });
    const test::FreshFolder folder;
    const HUTILHELP help = Open(folder.Put(L"a.chm", "x").Text());
    EXPECT_EQ(UtilHelpShowContents(help), 0);
    EXPECT_EQ(TakeShown().find(L"ERROR|CreateProcess() failed: "), size_t{0});
}

class Host final : public IUtilHelp {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetHelpFileName(BSTR* name) override {
        ++asked;
        *name = SysAllocString(L"known.hlp");
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetHelpMessage(uint32_t* message) override {
        *message = WM_APP;
        return S_OK;
    }

    ULONG references = 1;
    int asked = 0;
};

TEST_F(HelpTest, TheHostSuppliesMessageAndFileAndTheCompanionItsName) {
    Host host;
    const HUTILHELP help = UtilHelpOpenEx(window_, &host);
    EXPECT_EQ(host.asked, 0);
    EXPECT_STREQ(TranslatedHelpPath(L"known.hlp").Text(), L"known.hlp");
    const clsAutoFreeLibrary controls(LoadLibraryW(L"VLMRCTL.dll"));
    ASSERT_TRUE(controls);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(UtilHelpShowContents(help), 0);
        EXPECT_EQ(TakeShown(), L"Problem|The help file 'C:\\translated.hlp' could not be found!|48;");
    }
    EXPECT_EQ(host.asked, 1);
    EXPECT_EQ(sent.size(), size_t{2});
    UtilHelpClose(help);
    EXPECT_EQ(host.references, 1u);
}

TEST_F(HelpTest, HandlesThatAreNotOpenAreLeftAlone) {
    const HUTILHELP help = Open(L"a.hlp");
    for (int i = 0; i < 100000; ++i) ASSERT_EQ(UtilHelpPush(help, i), 1);
    UtilHelpSetHelpMode(help, 3);
    EXPECT_EQ(UtilHelpIsInHelpMode(help), 3u);
    UtilHelpClose(help);
    const DebugListener listener;
    for (HUTILHELP gone : {help, HUTILHELP{nullptr}, reinterpret_cast<HUTILHELP>(8)}) {
        EXPECT_EQ(UtilHelpPush(gone, 1), 0);
        UtilHelpPop(gone);
        EXPECT_EQ(UtilHelpDisplay(gone), 0);
        EXPECT_EQ(UtilHelpCursor(gone), nullptr);
        UtilHelpSetHelpMode(gone, 1);
        EXPECT_EQ(UtilHelpIsInHelpMode(gone), 0u);
        EXPECT_EQ(UtilHelp(gone, window_, L"a.hlp", 1, 1), 0);
        UtilHelpClose(gone);
    }
    EXPECT_EQ(TakeShown(), L"");
    ASSERT_EQ(listener.Lines().size(), size_t{1});
    EXPECT_TRUE(
        listener.Heard(L"VLMRUTIL(Help): UtilHelpClose(): Try to unhook Help object that is not hooked"));
}

TEST(HelpFileTest, FilesAreCopiedOnce) {
    const test::FreshFolder folder;
    const std::wstring name = L"vxut-help-" + std::to_wstring(GetCurrentProcessId()) + L".chm";
    const String file = folder.Put(name.c_str(), "first");
    const String copy = CopyOfHelpFile(file);
    EXPECT_FALSE(copy == file);
    EXPECT_NE(Find(copy.Text(), L"\\Velmora\\"), -1);
    EXPECT_TRUE(DeleteFileW(copy.Text()));
    ASSERT_TRUE(CopyFileW(file.Text(), copy.Text(), TRUE));
    const HANDLE held = CreateFileW(copy.Text(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(CopyOfHelpFile(file) == copy) << "the same time: it is not copied again";
    CloseHandle(held);
    const String missing = folder.At(L"no such file.chm");
    EXPECT_TRUE(CopyOfHelpFile(missing) == missing);
    DeleteFileW(copy.Text());
}

} // namespace
} // namespace vxut
