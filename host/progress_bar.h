// A line on standard error that shows how far long work has come.
#pragma once

#include "host/output.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace vlm {

// Shown once the work takes more than a second, and only on a console unless it is forced. Not thread-safe.
class ProgressBar {
public:
    // total is in bytes. The verb says what is done with them while they are not counted.
    ProgressBar(uint64_t total, bool isForced, std::wstring verb);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Draws the line again. 0 bytes while work is under way mean that the system does not count them; the
    // line shows the time then.
    void Show(uint64_t done);
    // Ends the line, with the work done.
    void Finish();

private:
    void Draw(const std::wstring& text);

    const uint64_t total_;
    const bool isForced_;
    const std::wstring verb_;
    const bool isWanted_;
    const uint64_t start_ = GetTickCount64();
    bool isDrawn_ = false;
    Output errors_{STD_ERROR_HANDLE};
};

} // namespace vlm
