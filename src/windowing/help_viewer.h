// The viewer of compiled help, HH.EXE.
#pragma once

#include "text/string.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// How the viewer is started.
enum class HelpViewerMode { kContents = 1, kIndex = 2, kPage = 15 };

// The viewer of one help object. For one thread.
class clsHelpViewer {
public:
    // Replaces the viewer that runs. The number is that of the page. Returns whether the viewer was started;
    // a failure is shown to the user.
    bool Start(HWND owner, const String& file, HelpViewerMode mode, uint32_t number);
    // Asks the viewer to end, if it runs.
    void Close();

private:
    HWND window_ = nullptr;
};

// A copy of the file in the temp directory, made if there is none of the same time. Returns the file itself
// if it cannot be copied.
String CopyOfHelpFile(const String& file);

} // namespace vxut
