// Standard output and standard error.
#pragma once

#include "host/command.h"

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

// Buffers text and writes it to a handle: as UTF-8, or as wide text if the handle is a console. Not
// thread-safe. The handle belongs to the process or to the caller and is not closed.
class Output {
public:
    // Which is STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
    explicit Output(DWORD which) : Output(GetStdHandle(which)) {}
    explicit Output(HANDLE handle);
    ~Output() { Flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::wstring_view text);
    void Line(std::wstring_view text = {});
    // A line with a label and its value, in two columns.
    void Field(std::wstring_view label, std::wstring_view value);
    // Makes a console interpret colour sequences. False if the output is no console, or cannot.
    bool EnableColours() const;
    // Writes what is buffered. False if anything could not be written since construction.
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
