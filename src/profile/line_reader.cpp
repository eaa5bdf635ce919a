#include "profile/line_reader.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace vxut {
namespace {

constexpr uint32_t kCodePageDefault = 0;

// Reading a large file into memory that was never used before takes far longer than reading it in pieces.
constexpr size_t kPieceBytes = size_t{64} * 1024;

uint32_t CodePageOf(UtfType encoding) { return encoding == kUtf8 ? CP_UTF8 : kCodePageDefault; }

template <class Unit>
bool IsLineEnd(Unit unit) noexcept {
    return unit == '\r' || unit == '\n';
}

const char* FindLineEnd(const char* text) noexcept {
    while (*text != 0 && !IsLineEnd(*text)) ++text;
    return text;
}

template <class Unit>
bool NextOf(clsLineBuffer<Unit>& buffer, std::basic_string_view<Unit>& line) {
    auto result = buffer.Next(line);
    for (; result == buffer.kNeedsMore; result = buffer.Next(line)) buffer.Fill();
    return result == buffer.kLine;
}

} // namespace

template <class Unit>
clsLineBuffer<Unit>::clsLineBuffer(clsFile& file) : file_(file) {
    const int64_t size = file.GetSize();
    const int64_t position = file.GetPosition();
    if (size > position && position >= 0) left_ = static_cast<size_t>(size - position) / sizeof(Unit);
    hasFailed_ = size < 0 || position < 0;
    capacity_ = std::min(left_, kPieceBytes / sizeof(Unit));
    units_ = std::make_unique_for_overwrite<Unit[]>(capacity_ + kUnitsPerScan);
    next_ = end_ = units_.get();
    *end_ = 0;
    if (hasFailed_) Fail();
}

template <class Unit>
typename clsLineBuffer<Unit>::Result clsLineBuffer<Unit>::Next(std::basic_string_view<Unit>& line) noexcept {
    const auto atZero = [&](const Unit* at) { return at == end_ && left_ > 0 ? kNeedsMore : kEnd; };
    while (IsLineEnd(*next_)) ++next_;
    const Unit* start = next_;
    while (*start == ' ' || *start == '\t') ++start;
    if (*start == 0) return atZero(start);
    const Unit* const lineEnd = FindLineEnd(start);
    if (lineEnd == end_ && left_ > 0) return kNeedsMore;
    line = {start, static_cast<size_t>(lineEnd - start)};
    next_ = *lineEnd == 0 ? lineEnd : lineEnd + 1;
    return kLine;
}

template <class Unit>
void clsLineBuffer<Unit>::Fill() {
    MakeSpace();
    const auto space = capacity_ - static_cast<size_t>(end_ - units_.get());
    const size_t wanted = std::min(space, left_);
    const auto bytes = static_cast<int64_t>(wanted * sizeof(Unit));
    if (bytes > 0 && file_.Read(end_, bytes) != bytes) return Fail();
    left_ -= wanted;
    end_ += wanted;
    std::memset(end_, 0, kUnitsPerScan * sizeof(Unit));
}

// Moves what is left to the front, into a larger buffer if it is most of this one.
template <class Unit>
void clsLineBuffer<Unit>::MakeSpace() {
    const auto kept = static_cast<size_t>(end_ - next_);
    clsAutoDeleteBytes<Unit> larger;
    const size_t capacity = capacity_ + std::min(capacity_, left_);
    if (kept > capacity_ / 2) larger = std::make_unique_for_overwrite<Unit[]>(capacity + kUnitsPerScan);
    std::memmove(larger ? larger.get() : units_.get(), next_, kept * sizeof(Unit));
    if (larger) {
        units_ = std::move(larger);
        capacity_ = capacity;
    }
    next_ = units_.get();
    end_ = units_.get() + kept;
}

template <class Unit>
void clsLineBuffer<Unit>::SkipRest() {
    while (left_ > 0) {
        next_ = end_;
        Fill();
    }
}

template <class Unit>
void clsLineBuffer<Unit>::Fail() noexcept {
    hasFailed_ = true;
    left_ = 0;
    next_ = end_ = units_.get();
    *end_ = 0;
}

clsProfLineReader::clsProfLineReader(clsFile& file, UtfType encoding) : converter_(CodePageOf(encoding)) {
    if (encoding == kUtf16LittleEndian || encoding == kUtf16BigEndian)
        wide_.emplace(file);
    else
        narrow_.emplace(file);
}

bool clsProfLineReader::TakeLine(std::wstring_view& line) {
    if (wide_) return NextOf(*wide_, line);
    std::string_view bytes;
    if (!NextOf(*narrow_, bytes)) return false;
    line = {};
    if (bytes.empty()) return true;
    converter_.Set(bytes.data(), static_cast<int64_t>(bytes.size()));
    line = converter_.GetWide();
    return true;
}

String clsProfLineReader::FirstLine() {
    if (!hasFirstLine_) hasFirstLine_ = TakeLine(firstLine_);
    if (!hasFirstLine_ || firstLine_.empty()) return String();
    return String(firstLine_.data(), 0, static_cast<int64_t>(firstLine_.size()));
}

bool clsProfLineReader::NextLine(std::wstring_view& line) {
    if (!std::exchange(hasFirstLine_, false)) return TakeLine(line);
    line = firstLine_;
    return true;
}

size_t clsProfLineReader::NextLines(std::span<std::wstring_view> lines) {
    if (!NextLine(lines.front())) return 0;
    size_t count = 1;
    while (wide_ && count < lines.size() && wide_->Next(lines[count]) == wide_->kLine) ++count;
    return count;
}

bool clsProfLineReader::Finish() {
    if (wide_)
        wide_->SkipRest();
    else
        narrow_->SkipRest();
    return !HasFailed();
}

} // namespace vxut
