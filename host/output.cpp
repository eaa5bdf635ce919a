#include "host/output.h"

#include "host/text.h"

#include <algorithm>

namespace vlm {

namespace {

constexpr size_t kFlushUnits = size_t{32} * 1024;
// The units that a console accepts in one call on every version of Windows.
constexpr size_t kConsoleUnits = size_t{8} * 1024;
constexpr size_t kLabelColumns = 22;

} // namespace

Output::Output(HANDLE handle) : handle_(handle) {
    DWORD mode = 0;
    isConsole_ = GetConsoleMode(handle_, &mode) != 0;
}

void Output::Write(std::wstring_view text) {
    pending_ += text;
    if (pending_.size() >= kFlushUnits) Flush();
}

void Output::Line(std::wstring_view text) {
    Write(text);
    Write(L"\n");
}

void Output::Field(std::wstring_view label, std::wstring_view value) {
    std::wstring line(label);
    if (!value.empty()) line.append(line.size() < kLabelColumns ? kLabelColumns - line.size() : 1, L' ');
    Line(line.append(value));
}

bool Output::EnableColours() const {
    DWORD mode = 0;
    return isConsole_ && GetConsoleMode(handle_, &mode) &&
           SetConsoleMode(handle_, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

bool Output::Flush() {
    if (!pending_.empty())
        failed_ |= isConsole_ ? !WriteToConsole(pending_) : !WriteBytes(BytesOf(pending_, CP_UTF8));
    pending_.clear();
    return !failed_;
}

bool Output::WriteBytes(std::string_view bytes) const {
    while (!bytes.empty()) {
        DWORD written = 0;
        const DWORD wanted = static_cast<DWORD>(std::min<size_t>(bytes.size(), kFlushUnits));
        if (!WriteFile(handle_, bytes.data(), wanted, &written, nullptr) || !written) return false;
        bytes.remove_prefix(written);
    }
    return true;
}

bool Output::WriteToConsole(std::wstring_view text) const {
    while (!text.empty()) {
        DWORD written = 0;
        const DWORD wanted = static_cast<DWORD>(std::min(text.size(), kConsoleUnits));
        if (!WriteConsoleW(handle_, text.data(), wanted, &written, nullptr) || !written) return false;
        text.remove_prefix(written);
    }
    return true;
}

} // namespace vlm
