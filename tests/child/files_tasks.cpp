#include "files/thread.h"
#include "tests/child/tasks.h"
#include "tests/support/debug_listener.h"
#include "util/environment.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask environment("environment", [] {
    std::printf("%u %d ", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    std::printf("%u %d", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    return 0;
});

class TimedThread : public clsThreadBase {
public:
    TimedThread() : clsThreadBase("Timed") {}
    ~TimedThread() override { ThreadEnd(false, -1, false); }
    uint32_t ThreadBody() override { return 0; }
};

const AddChildTask threadTimes("thread-times", [] {
    const DebugListener listener;
    {
        TimedThread thread;
        thread.ThreadStart();
    }
    for (const std::wstring& line : listener.Lines()) std::printf("%ls\n", line.c_str());
    return 0;
});

} // namespace
} // namespace vxut::test
