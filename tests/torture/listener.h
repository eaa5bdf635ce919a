// A viewer of the debug channel in the process, for as long as it lives: a window on a thread of its own that
// takes the records as messages. The session has one viewer at a time.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace torture {

class Listener {
public:
    Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener();

    // The records up to now. Messages are answered one by one, so a line that was written has arrived.
    std::vector<std::string> Records() const;

private:
    static DWORD WINAPI Listen(void* self);
    static LRESULT CALLBACK Answer(HWND window, UINT message, WPARAM wide, LPARAM low);
    void Publish(HWND window) const;

    HANDLE mapping_;
    HANDLE isReady_;
    HANDLE thread_;
    HWND window_ = nullptr;
    mutable CRITICAL_SECTION lock_;
    std::vector<std::string> records_;
};

} // namespace torture
