#include "tests/child/tasks.h"
#include "util/environment.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask environment("environment", [] {
    for (int round = 0; round < 2; ++round)
        std::printf("%u %d ", UtilGetOSEnvironmentType(), UtilGetUIInteractionAllowed());
    return 0;
});

} // namespace
} // namespace vxut::test
