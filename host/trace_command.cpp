// vlm trace: a viewer for the debug lines of all processes.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/stop_event.h"
#include "host/text.h"
#include "host/trace_receiver.h"
#include "host/trace_view.h"

#include <windows.h>

#include <cwchar>
#include <optional>
#include <string>
#include <thread>

namespace vlm {

namespace {

constexpr wchar_t kFilter[] = L"filter";
constexpr wchar_t kOutput[] = L"output";
constexpr wchar_t kSeconds[] = L"seconds";
constexpr wchar_t kWeight[] = L"weight";
constexpr size_t kMostSecondsDigits = 6;

TraceFilter FilterOf(const clsArguments& arguments) {
    TraceFilter filter;
    if (const std::wstring* text = arguments.Value(kFilter)) filter.text = *text;
    if (const std::wstring* weight = arguments.Value(kWeight)) filter.weight = WeightNamed(*weight);
    return filter;
}

DWORD MillisecondsOf(const clsArguments& arguments) {
    const std::wstring* seconds = arguments.Value(kSeconds);
    if (!seconds) return INFINITE;
    if (seconds->empty() || seconds->size() > kMostSecondsDigits ||
        seconds->find_first_not_of(L"0123456789") != std::wstring::npos)
        FailUsage(L"invalid number of seconds: " + *seconds);
    return static_cast<DWORD>(std::wcstoul(seconds->c_str(), nullptr, 10)) * 1000;
}

// The file that receives a copy of the output.
class TraceFile {
public:
    explicit TraceFile(const std::wstring& path)
        : file_(Own(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr))) {
        if (!file_) Fail(path + L": " + SystemMessage(GetLastError()));
        output_.emplace(file_.get());
    }

    clsOutput* Output() { return output_ ? &*output_ : nullptr; }

private:
    HandleOwner file_;
    std::optional<clsOutput> output_;
};

// Shows the records of the queue on a thread of its own, until the scope ends. Stops the viewer if its output
// fails.
class Display {
public:
    Display(TraceView& view, TraceQueue& queue, StopEvent& stop)
        : queue_(queue), thread_([this, &view, &stop] {
              try {
                  isGood_ = view.Run(queue_);
              } catch (const std::exception&) {
                  isGood_ = false;
              }
              if (!isGood_) stop.Set();
          }) {}
    ~Display() { Finish(); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // Waits until everything is shown. False if the output has failed.
    bool Finish() {
        queue_.Close();
        if (thread_.joinable()) thread_.join();
        return isGood_;
    }

private:
    TraceQueue& queue_;
    bool isGood_ = true;
    std::thread thread_;
};

ExitCode RunTrace(const clsArguments& arguments, clsOutput& out) {
    const TraceFilter filter = FilterOf(arguments);
    const DWORD milliseconds = MillisecondsOf(arguments);
    StopEvent stop;
    TraceQueue queue;
    TraceReceiver receiver(queue);
    std::optional<TraceFile> file;
    if (const std::wstring* path = arguments.Value(kOutput)) file.emplace(*path);
    TraceView view(filter, out, file ? file->Output() : nullptr);
    Display display(view, queue, stop);
    receiver.Run(stop.Get(), milliseconds);
    if (!display.Finish()) Fail(L"the output could not be written");
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {kFilter, L"TEXT", L"show only lines that contain this text, regardless of case"},
    {kWeight, L"WEIGHT", L"show only lines of this weight or above: error, warning, hint, info"},
    {kOutput, L"FILE", L"write the output to a file, too"},
    {kSeconds, L"N", L"end after this number of seconds"},
};

} // namespace

Command TraceCommand() {
    return {
        .name = L"trace",
        .summary = L"Show the debug lines of all processes that use the library",
        .help =
            L"Each line shows its process, then the columns that the process has written: module, time,\n"
            L"thread and processor, a digit that counts the lines, and the text. Lines that begin with\n"
            L"\"++\" or \"--\" mark processes that join or leave, lines that begin with \"!!\" mark\n"
            L"missing lines; filters do not apply to these. The first words of a text, such as\n"
            L"\"Warning: \", state its weight. Control characters, direction marks and other invisible\n"
            L"characters are shown as pictures or escapes. Press Ctrl-C to end. Only one viewer can run\n"
            L"at a time.",
        .options = kOptions,
        .run = RunTrace,
    };
}

} // namespace vlm
