// Runs a reader of documents on bytes, and makes its results comparable.
#pragma once

#include "base/owners.h"
#include "docinfo/readers/readers.h"
#include "tests/support/temp_folder.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace vxut::test {

using Document = clsAutoRelease<clsDocu*>;
using DocumentReader = int (*)(clsDocu& document, clsDocFile& file);

// The document as the reader left it. result receives what the reader returned.
inline Document ReadDocument(DocumentReader read, const std::string& bytes, int* result = nullptr) {
    const FreshFolder folder;
    clsDocFile file(folder.Put(L"document", bytes));
    Document document(MakeCounted<clsDocu>());
    const int code = read(*document.Get(), file);
    if (result) *result = code;
    return document;
}

inline std::string Repeated(std::string_view text, size_t times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
}

// The processor time that the reader takes, in milliseconds. It does not depend on the load of the machine.
inline double ProcessorTime(DocumentReader read, const std::string& bytes) {
    const auto now = [] {
        FILETIME times[4] = {};
        GetThreadTimes(GetCurrentThread(), &times[0], &times[1], &times[2], &times[3]);
        ULARGE_INTEGER user;
        user.LowPart = times[3].dwLowDateTime;
        user.HighPart = times[3].dwHighDateTime;
        return static_cast<double>(user.QuadPart) / 10'000;
    };
    const double start = now();
    ReadDocument(read, bytes);
    return now() - start;
}

inline std::wstring TextOrUnset(const clsVariant& property) {
    if (property.vt == VT_EMPTY) return L"(unset)";
    String text;
    property.ToString(text);
    return text.Text();
}

// "2026-11-13 16:30:00", or "(empty)" for the empty time.
inline std::string TimeText(const SYSTEMTIME& time) {
    const SYSTEMTIME empty = EmptyTime();
    if (std::memcmp(&time, &empty, sizeof time) == 0) return "(empty)";
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", time.wYear, time.wMonth, time.wDay,
                  time.wHour, time.wMinute, time.wSecond);
    return text;
}

} // namespace vxut::test
