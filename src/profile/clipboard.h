// Profiles on the clipboard.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

class ProfJob;

// The registered format of a profile's bytes.
UINT ProfileClipboardFormat();

// Fills a new job with what the clipboard holds; the job's last error tells.
void LoadFromClipboard(ProfJob& job, HWND window);

// What ProfSaveToClipboard() gives.
int32_t SaveToClipboard(ProfJob& job, HWND window, uint32_t format);

} // namespace vxut
