// Collects the texts that the constructing thread passes to OutputDebugString, during its own lifetime.
#pragma once

#include <windows.h>

#include <string>

namespace vxut::test {

class DebugStrings {
public:
    DebugStrings() {
        text_.clear();
        thread_ = GetCurrentThreadId();
        handler_ = AddVectoredExceptionHandler(1, Listen);
    }
    ~DebugStrings() { RemoveVectoredExceptionHandler(handler_); }
    DebugStrings(const DebugStrings&) = delete;
    DebugStrings& operator=(const DebugStrings&) = delete;

    const std::string& Text() const { return text_; }
    bool Heard(const char* text) const { return text_.find(text) != std::string::npos; }

private:
    // The narrow form: the wide one, where the system has it, is raised first and goes on to this one.
    static constexpr DWORD kNarrowText = 0x40010006;

    static LONG CALLBACK Listen(EXCEPTION_POINTERS* exception) {
        const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
        if (record.ExceptionCode == kNarrowText && GetCurrentThreadId() == thread_) {
            text_ += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
            text_ += '\n';
        }
        return EXCEPTION_CONTINUE_SEARCH;
    }

    static inline std::string text_;
    static inline DWORD thread_ = 0;
    void* handler_ = nullptr;
};

} // namespace vxut::test
