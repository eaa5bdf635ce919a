#include "profile/open_file.h"

#include "base/tick_count.h"

namespace vxut {
namespace {

constexpr uint64_t kLimitMilliseconds = 10000;
constexpr DWORD kSleepMilliseconds = 100;

} // namespace

const scPatience kOpenPatience{kLimitMilliseconds, [] { Sleep(kSleepMilliseconds); }};
const scPatience kSavePatience{kLimitMilliseconds, [] { SwitchToThread(); }};

DWORD OpenPatiently(clsFile& file, const String& name, const scOpenArguments& arguments,
                    const scPatience& patience) {
    const uint64_t start = TickCount64();
    for (;;) {
        if (file.Open(name, arguments.access, arguments.disposition, arguments.share) == 0)
            return ERROR_SUCCESS;
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION || TickCount64() - start >= patience.limitMilliseconds)
            return error;
        patience.pause();
    }
}

} // namespace vxut
