// Prints the lines of all processes in the order of their arrival.
#pragma once

#include "host/output.h"
#include "host/trace_assembler.h"
#include "host/trace_line.h"
#include "host/trace_processes.h"
#include "host/trace_queue.h"

#include <string>

namespace vlm {

// Selects the lines to show. Join and leave lines and notes are always shown.
struct TraceFilter {
    std::wstring text;             // without regard to case; empty: any
    Weight weight = Weight::kNone; // the lowest
};

class TraceView {
public:
    // The file may be null; otherwise all that is shown is written there, too. Nobody else may use the
    // outputs while the view runs.
    TraceView(TraceFilter filter, clsOutput& out, clsOutput* file);

    // Shows the records of the queue until it is closed. False as soon as something cannot be written.
    bool Run(TraceQueue& queue);

private:
    struct Piece {
        const char* style;
        std::wstring_view text;
    };

    size_t AddRecords(const TraceQueue::Batch& batch);
    void Take(const std::string& text);
    TraceProcess* ProcessOf(const TraceLine& line);
    void NoteGap(const TraceLine& line, TraceProcess* process);
    bool IsWanted(const TraceLine& line, const std::wstring& label);
    void Show(const TraceLine& line, const std::wstring& label, DWORD process);
    void Note(const std::wstring& text);
    void Write(std::initializer_list<Piece> pieces);
    bool Flush();

    TraceFilter filter_;
    clsOutput& out_;
    clsOutput* file_;
    bool hasColours_;
    bool wasWanted_ = true; // whether the last line with columns was shown
    size_t strangers_ = 0;  // the number of lines of unknown processes
    TraceAssembler assembler_;
    TraceProcesses processes_;
};

} // namespace vlm
