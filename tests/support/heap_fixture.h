// A job with a plain and a debug heap, and the reports of the library.
#pragma once

#include "heap/heap.h"
#include "tests/support/debug_listener.h"
#include "util/heap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace vxut::test {

using Lines = std::vector<std::wstring>;

// Returns the reports without the columns of the channel, and without the lines of call stacks, whose number
// depends on the system. Each indent is one blank.
inline Lines Reports(const DebugListener& listener) {
    Lines reports;
    for (const std::wstring& line : listener.Lines()) {
        const size_t start = line.find(L"        :");
        if (start != std::wstring::npos && line.find(L"[called by ") == std::wstring::npos)
            reports.push_back(line.substr(start + 9, line.size() - start - 10));
    }
    return reports;
}

template <class... Arguments>
std::wstring Text(const wchar_t* format, Arguments... arguments) {
    wchar_t text[512] = L"";
    _snwprintf(text, 511, format, arguments...);
    return text;
}

// Read and write values at a distance from an object.
template <class T>
T At(const void* object, ptrdiff_t distance) {
    T value;
    std::memcpy(&value, static_cast<const char*>(object) + distance, sizeof value);
    return value;
}
template <class T>
void Put(void* object, ptrdiff_t distance, T value) {
    std::memcpy(static_cast<char*>(object) + distance, &value, sizeof value);
}

inline bool IsFilled(const void* object, size_t size, int value) {
    const std::string expected(size, static_cast<char>(value));
    return std::memcmp(object, expected.data(), size) == 0;
}

inline const clsHeapNode& Node(HUTILHEAP heap) { return *reinterpret_cast<const clsHeapNode*>(heap); }

// Nobody listens until the test sets listener.isAttached.
class HeapTest : public testing::Test {
protected:
    HeapTest() { listener.isAttached = false; }
    ~HeapTest() override { UtilJobClose(job); }

    const HUTILJOB job = UtilJobOpen(L"JOB", 0);
    const HUTILHEAP plain = UtilHeapCreate(job, L"PLAIN", 0);
    const HUTILHEAP debug = UtilHeapCreate(job, L"DEBUG", UTIL_HEAP_DEBUG);
    DebugListener listener;
};

} // namespace vxut::test
