#include "library/load.h"

#include <gtest/gtest.h>

namespace {

// The test program takes the role of the library's module.
class LoadedLibrary : public testing::Environment {
public:
    void SetUp() override { vxut::Attach(GetModuleHandleW(nullptr)); }
    void TearDown() override { vxut::Detach(); }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new LoadedLibrary);
    return RUN_ALL_TESTS();
}
