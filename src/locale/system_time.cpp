#include "locale/system_time.h"

#include "locale/time_zone.h"

#include <bit>
#include <tuple>

namespace vxut {
namespace {

constexpr int64_t kTicksInMillisecond = 10'000;

} // namespace

SYSTEMTIME SystemTimeOf(const FILETIME& time, bool toLocalTime) noexcept {
    SYSTEMTIME result = EmptyTime();
    if (!FileTimeToSystemTime(&time, &result)) return EmptyTime();
    return toLocalTime ? LocalTimeOfUtc(result) : result;
}

bool IsBefore(const SYSTEMTIME& time, const SYSTEMTIME& other) noexcept {
    const auto fields = [](const SYSTEMTIME& value) {
        return std::tie(value.wYear, value.wMonth, value.wDay, value.wHour, value.wMinute, value.wSecond,
                        value.wMilliseconds);
    };
    return fields(time) < fields(other);
}

void AddMilliseconds(SYSTEMTIME& time, int64_t milliseconds) noexcept {
    FILETIME fileTime{};
    if (!SystemTimeToFileTime(&time, &fileTime)) {
        time = EmptyTime();
        return;
    }
    // Two's complement wraps to a value that the system refuses.
    const uint64_t ticks =
        std::bit_cast<uint64_t>(fileTime) + static_cast<uint64_t>(milliseconds) * kTicksInMillisecond;
    time = SystemTimeOf(std::bit_cast<FILETIME>(ticks));
}

} // namespace vxut
