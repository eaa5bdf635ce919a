// Runs a task of vxut_test_child in a process of its own.
#pragma once

#include <string>

namespace vxut::test {

struct ChildResult {
    int exitCode = -1000;
    std::string output; // what it has printed
};

ChildResult RunChild(const std::wstring& task);

} // namespace vxut::test
