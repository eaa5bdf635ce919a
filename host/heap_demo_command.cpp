// vlm heap-demo: mistakes in a debug heap, and what the library says of them.
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

// What the library says on this thread, heard as a viewer hears it.
class clsEar {
public:
    clsEar() {
        try {
            receiver_.emplace(queue_);
        } catch (const CommandError& error) {
            reason_ = error.message;
        }
    }

    // Why nothing is heard; empty if all is well.
    const std::wstring& Reason() const { return reason_; }

    // What was said since the last time. It arrives on a road of its own: a mark tells when all of it has
    // come.
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
    static constexpr wchar_t kMark[] = L"vlm heap-demo: all is said";
    static constexpr ULONGLONG kPatience = 2000;
    static constexpr std::chrono::milliseconds kPeriod{50};

    // A report of the frame stands behind its empty module.
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
    if (!object) Fail(L"there is no memory");
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
    const wchar_t* call; // which tells of it
    int32_t (*make)(HUTILHEAP heap);
};
constexpr Mistake kMistakes[] = {
    {L"Overrun: 17 bytes are written to an object of 16, which is freed then", L"UtilHeapObjectFree",
     Overrun},
    {L"Double free: an object is freed, and freed again", L"UtilHeapObjectFree", FreeTwice},
    {L"Leak: a heap is deleted with an object in it", L"UtilHeapDelete", Leak},
};

const wchar_t* Meaning(int32_t result) {
    switch (result) {
        case UTIL_OK:
            return L"success";
        case UTIL_ERR_LEFT_BEHIND:
            return L"done, but objects were left";
        case UTIL_ERR_OBJECT:
            return L"bad object";
        default:
            return L"unexpected";
    }
}

ExitCode RunHeapDemo(const clsArguments&, clsOutput& out) {
    clsEar ear;
    for (const Mistake& mistake : kMistakes) {
        const HUTILJOB job = UtilJobOpen(L"HEAPDEMO", 0);
        const HUTILHEAP heap = UtilHeapCreate(job, L"DEMO", UTIL_HEAP_DEBUG);
        if (!heap) Fail(L"there is no memory for a heap");
        ear.Take();
        const int32_t result = mistake.make(heap);
        out.Line(mistake.title);
        out.Line(L"  " + std::wstring(mistake.call) + L" gives " + std::to_wstring(result) + L": " +
                 Meaning(result));
        for (const std::wstring& line : ear.Take()) out.Line(L"    " + Visible(line));
        UtilJobClose(job);
    }
    if (!ear.Reason().empty()) out.Line(L"What the library says is not shown here: " + ear.Reason() + L".");
    return kExitSuccess;
}

} // namespace

Command HeapDemoCommand() {
    return {
        .name = L"heap-demo",
        .summary = L"Makes mistakes in a debug heap and shows what the library says of them",
        .help =
            L"An overrun, a double free and a leak, each with the result code that a program gets and the\n"
            L"lines that the library writes to its debug channel meanwhile. While 'vlm trace' runs the "
            L"lines\n"
            L"appear there instead.",
        .run = RunHeapDemo,
    };
}

} // namespace vlm
