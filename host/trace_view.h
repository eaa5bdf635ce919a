// Shows the lines of all processes, one below the other.
#pragma once

#include "host/output.h"
#include "host/trace_assembler.h"
#include "host/trace_line.h"
#include "host/trace_processes.h"
#include "host/trace_queue.h"

#include <string>

namespace vlm {

// Which lines are wanted. Joins, leaves and gaps always are.
struct TraceFilter {
    std::wstring text; // in any case
    Weight weight = Weight::kNone;
};

class clsTraceView {
public:
    // With a file, what is shown is written there as well. Both outputs belong to the view while it runs.
    clsTraceView(TraceFilter filter, clsOutput& out, clsOutput* file);

    // Shows what the queue takes until it is closed. False as soon as something cannot be written.
    bool Run(clsTraceQueue& queue);

private:
    struct Piece {
        const char* style;
        std::wstring_view text;
    };

    void Take(const std::string& text);
    clsTraceProcess* ProcessOf(const TraceLine& line);
    void NoteGap(const TraceLine& line, clsTraceProcess* process);
    bool IsWanted(const TraceLine& line, const std::wstring& label);
    void Show(const TraceLine& line, const std::wstring& label, DWORD process);
    void Note(const std::wstring& text);
    void Write(std::initializer_list<Piece> pieces);
    bool Flush();

    TraceFilter filter_;
    clsOutput& out_;
    clsOutput* file_;
    bool hasColours_;
    bool wasWanted_ = true; // the last line that had columns
    size_t strangers_ = 0;  // lines of threads that had ended when their process was looked for
    clsTraceAssembler assembler_;
    clsTraceProcesses processes_;
};

} // namespace vlm
