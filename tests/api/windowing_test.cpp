// Window messages, hooks and the help cursor through the DLL. Each test has a process of its own.
#include "util/help.h"
#include "util/message.h"

#include <gtest/gtest.h>
#include <oleauto.h>
#include <winternl.h>

#include <string>
#include <vector>

namespace {

TEST(WindowMessageTest, NamesHaveNumbersInTheirOrder) {
    const uint32_t first = UtilGetWindowMessage(L"MyMessage");
    EXPECT_GE(first, UTIL_FIRST_WINDOW_MESSAGE);
    EXPECT_EQ(UtilGetWindowMessage(L"Another"), first + 1);
    EXPECT_EQ(UtilGetWindowMessage(L"MYMESSAGE"), first);
    EXPECT_EQ(UtilGetWindowMessage(nullptr), 0u);
    BSTR name = nullptr;
    EXPECT_EQ(UtilGetWindowMessageName(first, &name), 1);
    EXPECT_STREQ(name, L"MyMessage");
    EXPECT_EQ(UtilGetWindowMessageName(first + 1, &name), 1);
    EXPECT_STREQ(name, L"Another");
    for (const uint32_t number : {0u, 0x7FFFu, 0x8100u})
        EXPECT_EQ(UtilGetWindowMessageName(number, &name), 0);
    EXPECT_STREQ(name, L"Another");
    EXPECT_EQ(UtilGetWindowMessageName(first, nullptr), 1);
    SysFreeString(name);
}

struct HookCall {
    int code;
    int before;
    bool hasResult;
};
std::vector<HookCall> calls;
bool refuses = false;

LRESULT CALLBACK Record(int code, WPARAM, LPARAM, int before, LRESULT* result) {
    calls.push_back({code, before, result != nullptr});
    if (result && code == HCBT_CREATEWND && refuses) *result = 1;
    return 99;
}

LRESULT CALLBACK Ignore(int, WPARAM, LPARAM, int, LRESULT*) { return 0; }

HWND CreateTestWindow() {
    return CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
}

TEST(CbtHookTest, TheCallbackRunsBeforeAndAfterTheNextHook) {
    UtilSetCBTHook(Ignore);
    UtilSetCBTHook(Record);
    const HWND window = CreateTestWindow();
    ASSERT_NE(window, nullptr);
    size_t creations = 0;
    for (size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].before, i % 2 == 0);
        EXPECT_EQ(calls[i].hasResult, i % 2 == 1);
        creations += calls[i].code == HCBT_CREATEWND;
    }
    EXPECT_GE(creations, size_t{2}); // the system makes windows of its own
    EXPECT_EQ(calls.size() % 2, size_t{0});
    refuses = true;
    EXPECT_EQ(CreateTestWindow(), nullptr) << "the result may be changed";
    UtilSetCBTHook(nullptr);
    calls.clear();
    DestroyWindow(window);
    EXPECT_NE(CreateTestWindow(), nullptr);
    EXPECT_TRUE(calls.empty());
}

TEST(CbtHookTest, NothingHappensUnderADebugger) {
    calls.clear();
    refuses = false;
    BYTE& isDebugged = NtCurrentTeb()->ProcessEnvironmentBlock->BeingDebugged;
    isDebugged = 1;
    UtilSetCBTHook(Record);
    CreateTestWindow();
    EXPECT_TRUE(calls.empty());
    isDebugged = 0;
    UtilSetCBTHook(Record);
    isDebugged = 1;
    UtilSetCBTHook(nullptr);
    CreateTestWindow();
    EXPECT_FALSE(calls.empty());
    isDebugged = 0;
    UtilSetCBTHook(nullptr);
}

TEST(HelpCursorTest, TheLibraryHasACursor) {
    const HUTILHELP help = UtilHelpOpenEx(nullptr, nullptr);
    ASSERT_NE(help, nullptr);
    ICONINFO info = {};
    EXPECT_TRUE(GetIconInfo(reinterpret_cast<HICON>(UtilHelpCursor(help)), &info));
    EXPECT_FALSE(info.fIcon);
    DeleteObject(info.hbmMask);
    DeleteObject(info.hbmColor);
    UtilHelpClose(help);
    EXPECT_EQ(UtilHelpCursor(help), nullptr);
}

// A process unloads the library with its hooks installed and goes on to use windows.
TEST(HookUnloadTest, NoHookStaysBehind) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"vxut21.dll"), path, MAX_PATH);
    const std::wstring copy = path + std::to_wstring(GetCurrentProcessId()) + L".dll";
    ASSERT_TRUE(CopyFileW(path, copy.c_str(), TRUE));
    const HMODULE library = LoadLibraryW(copy.c_str());
    ASSERT_NE(library, nullptr);
    const auto function = [=](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    };
    reinterpret_cast<decltype(&UtilSetCBTHook)>(function("UtilSetCBTHook"))(Ignore);
    reinterpret_cast<decltype(&UtilHelpOpenEx)>(function("UtilHelpOpenEx"))(nullptr, nullptr);
    const HWND before = CreateTestWindow();
    for (int i = 0; i < 4 && GetModuleHandleW(copy.c_str()); ++i)
        FreeLibrary(library); // hooks may hold references
    const HWND after = CreateTestWindow();
    EXPECT_NE(after, nullptr);
    keybd_event(VK_F1, 0, 0, 0);
    keybd_event(VK_F1, 0, KEYEVENTF_KEYUP, 0);
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    DestroyWindow(before);
    DestroyWindow(after);
    DeleteFileW(copy.c_str());
}

} // namespace
