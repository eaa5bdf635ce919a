#include "tests/child/tasks.h"
#include "util/environment.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask environment("environment", [] {
    std::printf("%u %d ", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    std::printf("%u %d", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    return 0;
});

} // namespace
} // namespace vxut::test
