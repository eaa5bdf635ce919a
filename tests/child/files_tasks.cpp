#include "files/thread.h"
#include "tests/child/tasks.h"
#include "tests/support/debug_listener.h"
#include "util/environment.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask environment("environment", [] {
    for (int round = 0; round < 2; ++round)
        std::printf("%u %d ", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    return 0;
});

const AddChildTask threadTimes("thread-times", [] {
    struct TimedThread : clsThreadBase {
        TimedThread() : clsThreadBase("Timed") {}
        ~TimedThread() override { ThreadEnd(false, -1, false); }
        uint32_t ThreadBody() override { return 0; }
    };
    const DebugListener listener;
    TimedThread().ThreadStart();
    for (const std::wstring& line : listener.Lines()) std::printf("%ls\n", line.c_str());
    return 0;
});

} // namespace
} // namespace vxut::test
