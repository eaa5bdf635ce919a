// A message box on a thread of its own.
#pragma once

#include "text/string.h"
#include "threads/thread.h"

#include <windows.h>

namespace vxut {

// The faulting thread may be the one that serves the program's windows, or hold its locks.
class clsMessageBoxThread : public clsThreadBase {
public:
    clsMessageBoxThread(const wchar_t* text, const wchar_t* title, UINT style, int result)
        : clsThreadBase("GPFInfo::clsMessageBox"),
          text_(text),
          title_(title),
          style_(style),
          result_(result) {}
    ~clsMessageBoxThread() override { ThreadEnd(false, -1, false); }

    int Result() const { return result_; }

protected:
    uint32_t ThreadBody() override;

private:
    const String text_;
    const String title_;
    const UINT style_;
    int result_;
};

// Shows a box and returns the answer; on the calling thread if no other can be started. Returns fallback if
// the box could not be shown.
int AskUser(const wchar_t* text, const wchar_t* title, UINT style, int fallback);

} // namespace vxut
