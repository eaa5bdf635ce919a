// Help objects: what a window needs to show its help.
//
// Help objects and the chain belong to the thread that opens them. Showing help runs code of the host, which
// may close the object: callers hold a reference meanwhile.
#pragma once

#include "base/owners.h"
#include "containers/stack.h"
#include "text/string.h"
#include "util/help.h"
#include "windowing/help_viewer.h"

#include <windows.h>

#include <cstdint>
#include <memory>

namespace vxut {

// The commands of WinHelp.
constexpr uint32_t kHelpPage = 1;
constexpr uint32_t kHelpQuit = 2;
constexpr uint32_t kHelpContents = 3;
constexpr uint32_t kHelpOnHelp = 4;
constexpr uint32_t kHelpIndex = 261;

class clsHelp {
public:
    clsHelp(HWND window, IUtilHelp* host, uint32_t message, const String& file);
    clsHelp(const clsHelp&) = delete;
    clsHelp& operator=(const clsHelp&) = delete;

    HWND Window() const noexcept { return window_; }
    HCURSOR Cursor() const noexcept { return cursor_.Get(); }
    uint32_t Mode() const noexcept { return mode_; }
    void SetMode(uint32_t mode) noexcept { mode_ = mode; }

    // Returns false if there is no memory.
    bool Push(int32_t number) { return numbers_.push(number); }
    void Pop();
    // The number that was pushed last; null if there is none.
    const int32_t* Top() noexcept { return numbers_.top(); }

    // These return whether help was shown.
    bool Display(int32_t number);
    bool ShowContents() { return Ask(kHelpContents, 0); }
    bool ShowIndex();
    bool ShowHelpOnHelp() { return Ask(kHelpOnHelp, 0); }
    int Show(HWND window, const String& file, uint32_t command, ULONG_PTR data);

    // Closes the help that was shown.
    void Close();
    // For objects that are open when the library is unloaded: the host may be gone.
    void ForgetHost() noexcept { static_cast<void>(host_.Detach()); }

private:
    bool Ask(uint32_t command, ULONG_PTR data);
    String File();

    clsAutoRelease<IUtilHelp*> host_;
    const uint32_t message_; // 0: the window is not asked
    WCStack<int32_t> numbers_;
    const HWND window_;
    bool hasUsedEngine_ = false;
    clsAutoDestroyCursor cursor_;
    uint32_t mode_ = 0;
    clsHelpViewer viewer_;
    String file_; // empty until the host was asked for it
};

// As of the message that the thread handles.
inline bool IsKeyDown(int key) { return (GetKeyState(key) & 0x8000) != 0; }

using HelpOwner = std::shared_ptr<clsHelp>;

// All help objects, in the order in which they were opened. F1 is watched while there are some.
void LinkHelp(const HelpOwner& help);
// Returns the object of a handle; null if it is not in the chain.
HelpOwner FindHelp(HUTILHELP handle);
HelpOwner FindHelpOfWindow(HWND window);
// Returns false if the object is not in the chain.
bool UnlinkHelp(const HelpOwner& help);

} // namespace vxut
