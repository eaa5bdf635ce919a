// Standard output and standard error: UTF-8 when redirected, the console's own text otherwise.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

class clsOutput {
public:
    // Which: STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
    explicit clsOutput(DWORD which) : clsOutput(GetStdHandle(which)) {}
    // Somebody else's handle.
    explicit clsOutput(HANDLE handle);
    ~clsOutput() { Flush(); }
    clsOutput(const clsOutput&) = delete;
    clsOutput& operator=(const clsOutput&) = delete;

    void Write(std::wstring_view text);
    void Line(std::wstring_view text = {});
    // A label and what belongs to it, in two columns.
    void Field(std::wstring_view label, std::wstring_view value);
    // Whether the output is a console, and one that can show colours.
    bool EnableColours() const;
    // False once anything could not be written.
    bool Flush();

private:
    bool WriteBytes(std::string_view bytes) const;
    bool WriteToConsole(std::wstring_view text) const;

    HANDLE handle_;
    bool isConsole_;
    bool failed_ = false;
    std::wstring pending_;
};

} // namespace vlm
