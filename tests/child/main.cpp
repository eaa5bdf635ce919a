#include "library/load.h"
#include "tests/child/tasks.h"

#include <cstdio>

int main(int argc, char** argv) {
    constexpr int kUnknownTask = 99;
    const auto& tasks = vxut::test::ChildTasks();
    const auto task = tasks.find(argc > 1 ? argv[1] : "");
    if (task == tasks.end()) return kUnknownTask;
    vxut::Attach(GetModuleHandleW(nullptr));
    const int exitCode = task->second();
    std::fflush(stdout);
    vxut::Detach();
    return exitCode;
}
