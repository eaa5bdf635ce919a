// A job with a plain and a debug heap, and what the library says of them.
#pragma once

#include "frame/heap.h"
#include "tests/support/debug_listener.h"
#include "util/heap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace vxut::test {

// The text of each report, behind the columns of the channel: a blank for each step in.
inline std::vector<std::wstring> Reports(const DebugListener& listener) {
    std::vector<std::wstring> reports;
    for (const std::wstring& line : listener.Lines()) {
        const size_t start = line.find(L"        :");
        if (start != std::wstring::npos) reports.push_back(line.substr(start + 9, line.size() - start - 10));
    }
    return reports;
}

// The same without the lines of call stacks, whose number is the system's affair.
inline std::vector<std::wstring> ReportsWithoutCallers(const DebugListener& listener) {
    std::vector<std::wstring> reports = Reports(listener);
    std::erase_if(reports,
                  [](const std::wstring& text) { return text.find(L"[called by ") != std::wstring::npos; });
    return reports;
}

template <class... Arguments>
std::wstring Text(const wchar_t* format, Arguments... arguments) {
    wchar_t text[512] = L"";
    _snwprintf(text, 511, format, arguments...);
    return text;
}

// What stands at a distance from an object.
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

inline bool IsDebugObject(const void* object) { return At<uint32_t>(object, -4) == 0xAFFEAFFE; }
inline bool IsPlainObject(const void* object) { return At<uint32_t>(object, -4) == 0xFAAFFAAF; }
inline bool IsFilled(const void* object, size_t size, unsigned char value) {
    const std::string expected(size, static_cast<char>(value));
    return std::memcmp(object, expected.data(), size) == 0;
}

inline const clsHeapNode& Node(HUTILHEAP heap) { return *reinterpret_cast<const clsHeapNode*>(heap); }

// Nobody listens before the test says so.
class HeapTest : public testing::Test {
protected:
    HeapTest() { listener.isAttached = false; }
    ~HeapTest() override {
        listener.isAttached = false;
        UtilJobClose(job);
    }

    HUTILJOB job = UtilJobOpen(L"JOB", 0);
    HUTILHEAP plain = UtilHeapCreate(job, L"PLAIN", 0);
    HUTILHEAP debug = UtilHeapCreate(job, L"DEBUG", UTIL_HEAP_DEBUG);
    DebugListener listener;
};

} // namespace vxut::test
