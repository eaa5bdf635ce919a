#include "crash/minidump_notes.h"

#include "base/debug.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace vxut {

BOOL CALLBACK clsMinidumpNotes::Callback(void* notes, MINIDUMP_CALLBACK_INPUT* input,
                                         MINIDUMP_CALLBACK_OUTPUT* output) {
    return static_cast<clsMinidumpNotes*>(notes)->Take(*input, *output);
}

// Systems differ in the question by which a thread can be left out.
BOOL clsMinidumpNotes::Take(const MINIDUMP_CALLBACK_INPUT& input, MINIDUMP_CALLBACK_OUTPUT& output) {
    constexpr ULONG kReadMemoryFailure = 14;
    BOOL result = TRUE;
    if (input.CallbackType == ModuleCallback) {
        Note(L"Module '%s'", input.Module.FullPath ? input.Module.FullPath : L"");
    } else if (input.CallbackType == IncludeThreadCallback) {
        result = input.IncludeThread.ThreadId != leftOut_;
        Note(L"IncludeThread %d%s", input.IncludeThread.ThreadId, result ? L"" : L" IGNORE");
    } else if (input.CallbackType == ThreadCallback) {
        result = input.Thread.ThreadId != leftOut_;
    } else if (input.CallbackType == kReadMemoryFailure) {
        output.ModuleWriteFlags = 0; // the place of the status, which says that the dump goes on
    }
    Note(L"<MyMiniDumpCallback -> %d", result);
    return result;
}

void clsMinidumpNotes::Note(const wchar_t* format, ...) {
    const size_t left = kUnits - length_;
    va_list arguments;
    va_start(arguments, format);
    const int units = _vsnwprintf(lines_ + length_, left, format, arguments);
    va_end(arguments);
    if (units >= 0 && static_cast<size_t>(units) + 1 < left)
        length_ += static_cast<size_t>(units) + 1;
    else
        lines_[length_] = L'\0';
}

void clsMinidumpNotes::Report() {
    for (const wchar_t* line = lines_; line < lines_ + length_; line += std::wcslen(line) + 1)
        DebugWrite(L"%s", line);
}

} // namespace vxut
