// vlm trace: the viewer of the debug lines of all processes.
#include "host/groups.h"

#include "host/arguments.h"
#include "host/output.h"
#include "host/stop_event.h"
#include "host/text.h"
#include "host/trace_receiver.h"
#include "host/trace_view.h"

#include <windows.h>

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
        FailUsage(L"not a number of seconds: " + *seconds);
    return static_cast<DWORD>(wcstoul(seconds->c_str(), nullptr, 10)) * 1000;
}

// The file that the lines are written to as well.
class clsTraceFile {
public:
    explicit clsTraceFile(const std::wstring& path)
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

// Shows what the queue takes, on a thread of its own, until the scope ends. A viewer whose output has gone is
// stopped.
class clsShowing {
public:
    clsShowing(clsTraceView& view, clsTraceQueue& queue, clsStopEvent& stop)
        : queue_(queue), thread_([this, &view, &stop] {
              try {
                  isGood_ = view.Run(queue_);
              } catch (const std::exception&) {
                  isGood_ = false;
              }
              if (!isGood_) stop.Set();
          }) {}
    ~clsShowing() { Finish(); }
    clsShowing(const clsShowing&) = delete;
    clsShowing& operator=(const clsShowing&) = delete;

    // False if not all could be shown.
    bool Finish() {
        queue_.Close();
        if (thread_.joinable()) thread_.join();
        return isGood_;
    }

private:
    clsTraceQueue& queue_;
    bool isGood_ = true;
    std::thread thread_;
};

ExitCode RunTrace(const clsArguments& arguments, clsOutput& out) {
    const TraceFilter filter = FilterOf(arguments);
    const DWORD milliseconds = MillisecondsOf(arguments);
    clsStopEvent stop;
    clsTraceQueue queue;
    clsTraceReceiver receiver(queue);
    std::optional<clsTraceFile> file;
    if (const std::wstring* path = arguments.Value(kOutput)) file.emplace(*path);
    clsTraceView view(filter, out, file ? file->Output() : nullptr);
    clsShowing showing(view, queue, stop);
    receiver.Run(stop.Get(), milliseconds);
    if (!showing.Finish()) Fail(L"the output could not be written");
    return kExitSuccess;
}

constexpr Option kOptions[] = {
    {kFilter, L"TEXT", L"shows the lines with this text, in upper or lower case"},
    {kWeight, L"WEIGHT", L"shows the lines of this weight and above: error, warning, hint, info"},
    {kOutput, L"FILE", L"writes what is shown to a file as well"},
    {kSeconds, L"N", L"ends after so many seconds"},
};

} // namespace

Command TraceCommand() {
    return {
        .name = L"trace",
        .summary = L"Shows the debug lines of all processes that use the library, as they come",
        .help =
            L"Each line shows its process, then the columns as the process wrote them: module, time, thread\n"
            L"and processor, a digit that counts the lines, and the text. Lines that begin with \"++\" and\n"
            L"\"--\" tell that a process joins and leaves, those with \"!!\" that lines are missing; a "
            L"filter\n"
            L"leaves these in. The weight of a line is in its first words, as \"Warning: \". Ctrl-C ends.\n"
            L"One viewer runs at a time.",
        .options = kOptions,
        .run = RunTrace,
    };
}

} // namespace vlm
