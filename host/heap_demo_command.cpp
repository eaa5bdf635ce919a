// vlm heap-demo: mistakes in a debug heap, and what the library reports about them.
#include "host/groups.h"

#include "host/output.h"
#include "host/text.h"
#include "host/trace_assembler.h"
#include "host/trace_line.h"
#include "host/trace_receiver.h"

#include <util.h>
#include <windows.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace vlm {

namespace {

constexpr int32_t kObjectBytes = 16;

// Collects the lines that the library writes on this thread, as a viewer does.
class LineCollector {
public:
    LineCollector() {
        try {
            receiver_.emplace(queue_);
        } catch (const CommandError& error) {
            reason_ = error.message;
        }
    }

    // Why there are no lines; empty if there is no reason.
    const std::wstring& Reason() const { return reason_; }

    // Returns the lines since the last call. They arrive with delay: a line of our own marks the last one.
    std::vector<std::wstring> Take() {
        std::vector<std::wstring> lines;
        if (!receiver_) return lines;
        UtilDebug(L"%s", kMark);
        bool isComplete = false;
        TraceAssembler assembler([&](const std::string& record) {
            const TraceLine line = ParseTraceLine(record);
            if (line.kind != TraceLine::Kind::kLine || line.thread != GetCurrentThreadId()) return;
            isComplete |= line.Text() == kMark;
            if (!isComplete) lines.push_back(Report(line.Text()));
        });
        for (const ULONGLONG start = GetTickCount64(); !isComplete && GetTickCount64() - start < kPatience;)
            for (const std::string& record : queue_.Take(kPeriod).records) assembler.Add(record);
        return lines;
    }

private:
    static constexpr wchar_t kMark[] = L"vlm heap-demo: end of the lines";
    static constexpr ULONGLONG kPatience = 2000;
    static constexpr std::chrono::milliseconds kPeriod{50};

    // Reports of heaps begin with an empty module column.
    static std::wstring Report(std::wstring_view text) {
        if (text.starts_with(L':')) text.remove_prefix(1);
        return std::wstring(text);
    }

    TraceQueue queue_;
    std::optional<TraceReceiver> receiver_;
    std::wstring reason_;
};

int32_t Overrun(HUTILHEAP heap) {
    void* const object = UtilHeapObjectAlloc(heap, kObjectBytes, 0);
    if (!object) Fail(L"out of memory");
    std::memset(object, 'x', kObjectBytes + 1);
    return UtilHeapObjectFree(heap, object);
}

int32_t FreeTwice(HUTILHEAP heap) {
    void* const object = UtilHeapObjectAlloc(heap, kObjectBytes, 0);
    UtilHeapObjectFree(heap, object);
    return UtilHeapObjectFree(heap, object);
}

int32_t Leak(HUTILHEAP heap) {
    void* const object = UtilHeapObjectAlloc(heap, kObjectBytes, 0);
    if (object) std::memcpy(object, "nobody frees me", kObjectBytes);
    return UtilHeapDelete(heap);
}

struct Mistake {
    const wchar_t* title;
    const wchar_t* call; // the function that detects it
    int32_t (*make)(HUTILHEAP heap);
};
constexpr Mistake kMistakes[] = {
    {L"Overrun: 17 bytes are written to an object of 16 bytes, which is then freed", L"UtilHeapObjectFree",
     Overrun},
    {L"Double free: an object is freed twice", L"UtilHeapObjectFree", FreeTwice},
    {L"Leak: a heap is deleted while an object is left in it", L"UtilHeapDelete", Leak},
};

const wchar_t* Meaning(int32_t result) {
    switch (result) {
        case UTIL_OK:
            return L"success";
        case UTIL_ERR_LEFT_BEHIND:
            return L"carried out, but objects were left";
        case UTIL_ERR_OBJECT:
            return L"bad object";
        default:
            return L"unexpected";
    }
}

ExitCode RunHeapDemo(const clsArguments&, clsOutput& out) {
    LineCollector collector;
    for (const Mistake& mistake : kMistakes) {
        const HUTILJOB job = UtilJobOpen(L"HEAPDEMO", 0);
        const HUTILHEAP heap = UtilHeapCreate(job, L"DEMO", UTIL_HEAP_DEBUG);
        if (!heap) Fail(L"out of memory");
        collector.Take();
        const int32_t result = mistake.make(heap);
        out.Line(mistake.title);
        out.Line(L"  " + std::wstring(mistake.call) + L" returns " + std::to_wstring(result) + L": " +
                 Meaning(result));
        for (const std::wstring& line : collector.Take()) out.Line(L"    " + Visible(line));
        UtilJobClose(job);
    }
    if (!collector.Reason().empty())
        out.Line(L"The lines of the library are not shown: " + collector.Reason() + L".");
    return kExitSuccess;
}

} // namespace

Command HeapDemoCommand() {
    return {
        .name = L"heap-demo",
        .summary = L"Make mistakes in a debug heap and show the library's reports",
        .help =
            L"Shows an overrun, a double free and a leak, each with the result code that a program receives "
            L"and\n"
            L"the lines that the library writes to its debug channel. While 'vlm trace' runs, the lines "
            L"appear\n"
            L"there instead.",
        .run = RunHeapDemo,
    };
}

} // namespace vlm
