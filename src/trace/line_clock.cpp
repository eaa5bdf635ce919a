#include "trace/line_clock.h"

#include "base/registry.h"

#include <windows.h>

namespace vxut {
namespace {

int64_t Counter() noexcept {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

} // namespace

clsLineClock::clsLineClock(Form form) noexcept : form_(form) {
    if (form_ == Form::kLocalTime) return;
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    frequency_ = frequency.QuadPart;
    start_ = Counter();
}

clsLineClock::Form clsLineClock::ConfiguredForm() {
    LARGE_INTEGER now;
    if (!QueryPerformanceCounter(&now)) return Form::kLocalTime;
    const wchar_t wanted = ReadSettingFirstUnit(kSettingForceUsePerfCounters, L'F');
    return wanted == L'F' || wanted == L'0' ? Form::kLocalTime : Form::kPerformanceCounter;
}

void clsLineClock::AppendTime(clsLineBuffer& line) const noexcept {
    if (form_ == Form::kLocalTime) {
        SYSTEMTIME now;
        GetLocalTime(&now);
        line.Append(L"%02u:%02u:%02u.%03u", now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
        return;
    }
    const auto elapsed = static_cast<uint64_t>((Counter() - start_) * 1000 / frequency_);
    const uint64_t seconds = elapsed / 1000;
    line.Append(L"%02u:%02u.%03u", static_cast<unsigned>(seconds / 60 % 60),
                static_cast<unsigned>(seconds % 60), static_cast<unsigned>(elapsed % 1000));
}

} // namespace vxut
