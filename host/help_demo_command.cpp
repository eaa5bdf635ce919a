// vlm help-demo: a window in which F1 shows how context help finds its number.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/text.h"

#include <util.h>
#include <windows.h>

#include <string>

namespace vlm {

namespace {

constexpr wchar_t kWindowClass[] = L"vlmHelpDemo";
constexpr UINT kHelpMessage = WM_APP + 1;
constexpr UINT kNextStep = WM_APP + 2;

enum ControlId : int { kName = 10, kCity = 20, kMark = 30, kPush = 31, kPop = 32, kAnswer = 33 };
enum Number : int32_t { kNumberOfName = 101, kNumberOfWindow = 500, kPushed = 900 };

struct Meaning {
    int32_t number;
    const wchar_t* words;
};
constexpr Meaning kMeanings[] = {
    {kNumberOfName, L"the mark beside the field that has the focus"},
    {kNumberOfWindow, L"the first mark in the window"},
    {kPushed, L"the number that was pushed last"},
};

std::wstring WordsOf(WPARAM command, LPARAM number) {
    if (command != 1) return L"the contents, as no number was pushed and the window has none";
    for (const Meaning& meaning : kMeanings)
        if (meaning.number == number) return std::to_wstring(number) + L": " + meaning.words;
    return std::to_wstring(number);
}

struct Control {
    const wchar_t* kind;
    const wchar_t* text;
    DWORD style;
    int id, x, y, width;
};
// The mark pairs with the field by the negative of its id. The other mark comes and goes with the check box.
constexpr Control kControls[] = {
    {L"STATIC", L"Name (has a mark):", 0, -1, 10, 12, 150},
    {L"EDIT", L"", WS_TABSTOP | WS_BORDER, kName, 170, 10, 200},
    {L"STATIC", L"City (has none):", 0, -1, 10, 42, 150},
    {L"EDIT", L"", WS_TABSTOP | WS_BORDER, kCity, 170, 40, 200},
    {L"BUTTON", L"Mark of the window", WS_TABSTOP | BS_AUTOCHECKBOX, kMark, 170, 70, 200},
    {L"BUTTON", L"Push 900", WS_TABSTOP, kPush, 170, 100, 95},
    {L"BUTTON", L"Pop", WS_TABSTOP, kPop, 275, 100, 95},
    {L"STATIC", L"Press F1.", 0, kAnswer, 10, 140, 360},
};

class Demo {
public:
    Demo(Output& out, bool pressesKeys) : out_(out), pressesKeys_(pressesKeys) {
        Register(kWindowClass, Procedure);
        Register(UTIL_HELP_NUMBER_CLASS, DefWindowProcW);
        window_ = CreateWindowExW(0, kWindowClass, L"Context help", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                  CW_USEDEFAULT, 400, 220, nullptr, nullptr, Module(), this);
        if (!window_) Fail(L"cannot create a window: " + SystemMessage(GetLastError()));
        for (const Control& row : kControls) Create(row);
        nameMark_ = CreateMark(kNumberOfName, -kName);
        help_ = UtilHelpOpen(window_, MAKEINTRESOURCEW(kHelpMessage));
        if (!help_) Fail(L"out of memory");
    }
    ~Demo() { UtilHelpClose(help_); }
    Demo(const Demo&) = delete;
    Demo& operator=(const Demo&) = delete;

    void Run() {
        ShowWindow(window_, SW_SHOW);
        SetForegroundWindow(window_);
        SetFocus(GetDlgItem(window_, kName));
        if (pressesKeys_) PostMessageW(window_, kNextStep, 0, 0);
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) {
            if (IsDialogMessageW(window_, &message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }

private:
    static HINSTANCE Module() { return GetModuleHandleW(nullptr); }

    static void Register(const wchar_t* name, WNDPROC procedure) {
        WNDCLASSW description = {};
        description.lpfnWndProc = procedure;
        description.hInstance = Module();
        description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        description.lpszClassName = name;
        RegisterClassW(&description);
    }

    HWND Create(const Control& row) const {
        return CreateWindowExW(0, row.kind, row.text, WS_CHILD | WS_VISIBLE | row.style, row.x, row.y,
                               row.width, 24, window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.id)),
                               Module(), nullptr);
    }
    HWND CreateMark(Number number, int id) const {
        return CreateWindowExW(0, UTIL_HELP_NUMBER_CLASS, std::to_wstring(number).c_str(), WS_CHILD, 0, 0, 0,
                               0, window_, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), Module(),
                               nullptr);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE) {
            void* const demo = reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams;
            SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(demo));
        }
        auto* const demo = reinterpret_cast<Demo*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (demo && demo->Handle(message, wParam, lParam)) return 1;
        if (message == WM_DESTROY) PostQuitMessage(0);
        return DefWindowProcW(window, message, wParam, lParam);
    }

    bool Handle(UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kHelpMessage) {
            ShowAnswer(WordsOf(wParam, lParam));
            return true;
        }
        if (message == kNextStep) Step();
        if (message == WM_COMMAND) Press(LOWORD(wParam));
        return false;
    }

    void Press(int id) {
        if (id == kPush) UtilHelpPush(help_, kPushed);
        if (id == kPop) UtilHelpPop(help_);
        if (id != kMark) return;
        if (windowMark_) {
            DestroyWindow(windowMark_);
            windowMark_ = nullptr;
        } else {
            windowMark_ = CreateMark(kNumberOfWindow, 0);
            SetWindowPos(windowMark_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE); // before the other mark
        }
    }

    void ShowAnswer(const std::wstring& words) {
        SetDlgItemTextW(window_, kAnswer, words.c_str());
        out_.Line(L"F1: " + words);
        out_.Flush();
        if (pressesKeys_) PostMessageW(window_, kNextStep, 0, 0);
    }

    // Presses F1 in each state once.
    void Step() {
        switch (step_++) {
            case 0:
                break;
            case 1:
                Press(kPush);
                break;
            case 2:
                SetFocus(GetDlgItem(window_, kCity));
                Press(kMark);
                break;
            case 3:
                Press(kMark);
                DestroyWindow(nameMark_);
                break;
            default:
                DestroyWindow(window_);
                return;
        }
        keybd_event(VK_F1, 0, 0, 0);
        keybd_event(VK_F1, 0, KEYEVENTF_KEYUP, 0);
    }

    Output& out_;
    const bool pressesKeys_;
    HWND window_ = nullptr;
    HWND nameMark_ = nullptr;
    HWND windowMark_ = nullptr;
    HUTILHELP help_ = nullptr;
    int step_ = 0;
};

ExitCode RunHelpDemo(const Arguments& arguments, Output& out) {
    Demo(out, arguments.Has(L"press")).Run();
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {L"press", nullptr, L"press F1 in each state and end"},
};

} // namespace

Command HelpDemoCommand() {
    return {
        .name = L"help-demo",
        .summary = L"Show a window in which F1 shows how context help finds its number",
        .help =
            L"The window has a field with a mark, a field without one, a mark of the window that can be\n"
            L"switched on, and buttons that push and pop a number. Each F1 is also printed as a line.",
        .options = kOptions,
        .run = RunHelpDemo,
    };
}

} // namespace vlm
