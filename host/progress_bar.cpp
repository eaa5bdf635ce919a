#include "host/progress_bar.h"

#include <algorithm>
#include <utility>

namespace vlm {

namespace {

constexpr uint64_t kQuietMilliseconds = 1000;
constexpr size_t kBarColumns = 30;
constexpr size_t kLineColumns = 70; // covers what an earlier, longer line has left

bool IsErrorsConsole() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::wstring Megabytes(uint64_t bytes) { return std::to_wstring(bytes / 1000000) + L" MB"; }

std::wstring BarText(uint64_t done, uint64_t total) {
    const double share = total ? static_cast<double>(std::min(done, total)) / static_cast<double>(total) : 1;
    const auto columns = static_cast<size_t>(share * kBarColumns);
    return L"[" + std::wstring(columns, L'#') + std::wstring(kBarColumns - columns, L' ') + L"] " +
           std::to_wstring(static_cast<int>(share * 100)) + L" % of " + Megabytes(total);
}

} // namespace

ProgressBar::ProgressBar(uint64_t total, bool isForced, std::wstring verb)
    : total_(total), isForced_(isForced), verb_(std::move(verb)), isWanted_(isForced || IsErrorsConsole()) {}

void ProgressBar::Show(uint64_t done) {
    const uint64_t milliseconds = GetTickCount64() - start_;
    if (milliseconds < kQuietMilliseconds) return;
    Draw(done ? BarText(done, total_)
              : verb_ + L" " + Megabytes(total_) + L", " + std::to_wstring(milliseconds / 1000) + L" s");
}

void ProgressBar::Finish() {
    if (isDrawn_ || isForced_) Draw(BarText(total_, total_));
    if (!isDrawn_) return;
    errors_.Line();
    errors_.Flush();
}

void ProgressBar::Draw(const std::wstring& text) {
    if (!isWanted_) return;
    isDrawn_ = true;
    errors_.Write(L"\r" + text + std::wstring(kLineColumns - std::min(kLineColumns, text.size()), L' '));
    errors_.Flush();
}

} // namespace vlm
