#include "profile/line_reader.h"

#include <memory>

namespace vxut {
namespace {

constexpr uint32_t kCodePageDefault = 0;

uint32_t CodePageOf(UtfType encoding) { return encoding == kUtf8 ? CP_UTF8 : kCodePageDefault; }

} // namespace

// The rest of the file in whole units with a terminator; an empty text if it cannot be read.
template <class Unit>
clsAutoDeleteBytes<Unit> clsProfLineReader::ReadRest(clsFile& file) {
    const int64_t size = file.GetSize();
    const int64_t position = file.GetPosition();
    const int64_t left = size >= 0 && position >= 0 ? size - position : 0;
    size_t units = left > 0 ? static_cast<size_t>(left) / sizeof(Unit) : 0;
    auto text = std::make_unique_for_overwrite<Unit[]>(units + 1);
    const auto bytes = static_cast<int64_t>(units * sizeof(Unit));
    isComplete_ = size >= 0 && position >= 0 && (bytes == 0 || file.Read(text.get(), bytes) == bytes);
    if (!isComplete_) units = 0;
    text[units] = 0;
    return text;
}

clsProfLineReader::clsProfLineReader(clsFile& file, UtfType encoding)
    : encoding_(encoding), converter_(CodePageOf(encoding)) {
    if (IsWide()) {
        wide_ = ReadRest<wchar_t>(file);
        wideCursor_ = clsLineCursor<wchar_t>(wide_.get());
    } else {
        narrow_ = ReadRest<char>(file);
        narrowCursor_ = clsLineCursor<char>(narrow_.get());
    }
}

std::wstring_view clsProfLineReader::Widen(std::string_view line) {
    if (line.empty()) return {};
    converter_.Set(line.data(), static_cast<int64_t>(line.size()));
    return converter_.GetWide();
}

bool clsProfLineReader::TakeLine(clsLineCursor<wchar_t>& wide, clsLineCursor<char>& narrow,
                                 std::wstring_view& line) {
    if (IsWide()) return wide.Next(line);
    std::string_view bytes;
    if (!narrow.Next(bytes)) return false;
    line = Widen(bytes);
    return true;
}

String clsProfLineReader::FirstLine() {
    clsLineCursor<wchar_t> wide = wideCursor_;
    clsLineCursor<char> narrow = narrowCursor_;
    std::wstring_view line;
    if (!TakeLine(wide, narrow, line) || line.empty()) return String();
    return String(line.data(), 0, static_cast<int64_t>(line.size()));
}

bool clsProfLineReader::NextLine(std::wstring_view& line) {
    return TakeLine(wideCursor_, narrowCursor_, line);
}

} // namespace vxut
