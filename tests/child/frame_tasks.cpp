#include "frame/load.h"
#include "frame/settings.h"
#include "frame/validate.h"
#include "tests/child/tasks.h"
#include "util/validate.h"

#include <cstdio>

namespace vxut::test {
namespace {

const AddChildTask userRoot("user-root", [] {
    const clsUserRoot root = UserRegistryRoot(true);
    std::printf("%s", root.Get() == HKEY_CURRENT_USER ? "current user" : "opened");
    return 0;
});

const AddChildTask developer("developer", [] { return IsDeveloperLogin() ? 1 : 0; });

const AddChildTask failedAssertion("failed-assertion", [] {
    std::printf("before ");
    std::fflush(stdout);
    UtilAssert(L"1 == 2", L"arithmetic.cpp", 12);
    std::printf("behind");
    return 0;
});

const AddChildTask unload("unload", [] {
    SetUnloadStep(UnloadStep::kProfileItemPool, [] { std::printf("pool "); });
    SetUnloadStep(UnloadStep::kHandleLists, [] { std::printf("handles "); });
    Detach();
    std::printf("| ");
    Detach(); // the library is not there any more
    return 0;
});

} // namespace
} // namespace vxut::test
