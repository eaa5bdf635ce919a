// Profiles on the clipboard.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

class ProfJob;

// The registered format of a profile's bytes.
UINT ProfileClipboardFormat();

// Fills a new job with the profile on the clipboard. A failure is the job's last error.
void LoadFromClipboard(ProfJob& job, HWND window);

// Puts a profile on the clipboard. Returns PROF_OK, PROF_ERR_SAVE, PROF_ERR_WRITE or PROF_ERR_FORMAT;
// failures of the clipboard itself are not reported.
int32_t SaveToClipboard(ProfJob& job, HWND window, uint32_t format);

} // namespace vxut
