#include "host/trace_view.h"

#include "host/text.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace vlm {

namespace {

constexpr std::chrono::milliseconds kPatience{50};
constexpr ULONGLONG kMaxEndMilliseconds = 2000;
constexpr size_t kLabelColumns = 20;
constexpr wchar_t kUnknownProcess[] = L"?";

// The numbers of terminal styles.
constexpr char kPlain[] = "";
constexpr char kModule[] = "36";
constexpr char kTime[] = "90";
constexpr char kGreeting[] = "92";
constexpr char kNote[] = "95";
constexpr const char* kWeights[] = {kPlain, "37", "96", "93", "91"}; // by Weight
// For processes and threads.
constexpr const char* kPalette[] = {"31", "32", "33", "34", "35", "36", "94", "95"};

// Ids are multiples of 4.
const char* StyleOf(DWORD id) { return kPalette[id / 4 % std::size(kPalette)]; }

std::wstring Lower(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

const char* StyleOf(const TraceLine& line) {
    const bool isGreeting = line.kind == TraceLine::Kind::kJoin || line.kind == TraceLine::Kind::kLeave;
    return isGreeting ? kGreeting : kWeights[static_cast<size_t>(line.weight)];
}

} // namespace

TraceView::TraceView(TraceFilter filter, clsOutput& out, clsOutput* file)
    : filter_{Lower(std::move(filter.text)), filter.weight},
      out_(out),
      file_(file),
      hasColours_(out.EnableColours()),
      assembler_([this](const std::string& line) { Take(line); }) {
    if (!hasColours_) return;
    out_.Line(L"Waiting for lines. Ctrl-C ends.");
    out_.Flush();
}

bool TraceView::Run(TraceQueue& queue) {
    for (;;) {
        const TraceQueue::Batch batch = queue.Take(kPatience);
        const size_t shown = AddRecords(batch);
        if (batch.records.empty() || batch.isLast) assembler_.Flush();
        const size_t lost = batch.lost + batch.records.size() - shown;
        if (lost) Note(std::to_wstring(lost) + L" records arrived faster than they could be shown");
        if (!Flush()) return false;
        if (batch.isLast) return true;
    }
}

// Returns how many records were added. At the end there is a limit of time, which a slow output may exceed.
size_t TraceView::AddRecords(const TraceQueue::Batch& batch) {
    const ULONGLONG start = GetTickCount64();
    size_t added = 0;
    for (const std::string& record : batch.records) {
        if (batch.isLast && GetTickCount64() - start > kMaxEndMilliseconds) break;
        assembler_.Add(record);
        ++added;
    }
    return added;
}

void TraceView::Take(const std::string& text) {
    const TraceLine line = ParseTraceLine(text);
    TraceProcess* const process = ProcessOf(line);
    const std::wstring label = process ? process->Label() : kUnknownProcess;
    NoteGap(line, process);
    if (IsWanted(line, label)) Show(line, label, process ? process->Id() : 0);
    if (line.kind == TraceLine::Kind::kLeave) processes_.Leave(line.thread);
}

TraceProcess* TraceView::ProcessOf(const TraceLine& line) {
    switch (line.kind) {
        case TraceLine::Kind::kBare:
            return nullptr;
        case TraceLine::Kind::kJoin:
            return processes_.Join(line.thread, ProcessPathOf(line));
        default:
            return processes_.OfThread(line.thread);
    }
}

// A process may have counted lines before it joined: they were sent to others.
void TraceView::NoteGap(const TraceLine& line, TraceProcess* process) {
    if (!process) {
        if (line.kind != TraceLine::Kind::kBare) ++strangers_;
        return;
    }
    const int missing = process->CountMissing(line.digit, strangers_);
    if (missing > 0 && line.kind != TraceLine::Kind::kJoin)
        Note(process->Label() + L": lines are missing here, at least " + std::to_wstring(missing));
}

bool TraceView::IsWanted(const TraceLine& line, const std::wstring& label) {
    if (line.kind == TraceLine::Kind::kJoin || line.kind == TraceLine::Kind::kLeave) return true;
    if (line.kind == TraceLine::Kind::kBare && wasWanted_) return true;
    const bool isWanted =
        line.weight >= filter_.weight &&
        (filter_.text.empty() || Lower(label + L" " + line.whole).find(filter_.text) != std::wstring::npos);
    if (line.kind != TraceLine::Kind::kBare) wasWanted_ = isWanted;
    return isWanted;
}

void TraceView::Show(const TraceLine& line, const std::wstring& label, DWORD process) {
    const std::wstring_view whole = line.whole;
    std::wstring column = line.kind == TraceLine::Kind::kBare ? L"" : label;
    column.append(column.size() < kLabelColumns ? kLabelColumns - column.size() : 1, L' ');
    const auto between = [&](size_t begin, size_t end) { return whole.substr(begin, end - begin); };
    Write({{StyleOf(process), column},
           {kModule, between(0, line.moduleEnd)},
           {kTime, between(line.moduleEnd, line.threadBegin)},
           {StyleOf(line.thread), between(line.threadBegin, line.threadEnd)},
           {kTime, between(line.threadEnd, line.textBegin)},
           {StyleOf(line), line.Text()}});
}

void TraceView::Note(const std::wstring& text) { Write({{kNote, L"!! " + text}}); }

void TraceView::Write(std::initializer_list<Piece> pieces) {
    std::wstring plain;
    std::wstring coloured;
    for (const Piece& piece : pieces) {
        const std::wstring text = Visible(piece.text);
        plain += text;
        const std::wstring style(piece.style, piece.style + std::strlen(piece.style));
        const bool isPlain = style.empty() || text.empty();
        if (isPlain)
            coloured += text;
        else
            coloured.append(L"\x1B[").append(style).append(L"m").append(text).append(L"\x1B[0m");
    }
    out_.Line(hasColours_ ? coloured : plain);
    if (file_) file_->Line(plain);
}

bool TraceView::Flush() {
    const bool isShown = out_.Flush();
    const bool isWritten = !file_ || file_->Flush();
    return isShown && isWritten;
}

} // namespace vlm
