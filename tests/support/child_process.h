// Runs a task of vxut_test_child in a process of its own.
#pragma once

#include <string>

namespace vxut::test {

struct ChildResult {
    int exitCode = -1000;
    std::string output; // of stdout
};

// Waits for the end of the child. The exit code is -1000 if it could not be started.
ChildResult RunChild(const std::wstring& task);

} // namespace vxut::test
