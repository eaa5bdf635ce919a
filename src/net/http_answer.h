// What the head of a server's answer says about the file that follows.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

struct scHttpAnswer {
    HRESULT refusal = S_OK;      // why the body is not the file; S_OK if it is
    bool isRedirect = false;     // the file is elsewhere
    int64_t announcedBytes = -1; // of the file; -1 if the length of the body is unknown or another one
};

// headers are lines that end with "\r\n"; null for none. Any text is accepted.
scHttpAnswer JudgeAnswer(uint32_t status, const wchar_t* headers);

} // namespace vxut
