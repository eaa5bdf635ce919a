// Runs a task of vxut_test_child in a process of its own.
#pragma once

#include <map>
#include <string>

namespace vxut::test {

struct ChildResult {
    int exitCode = -1000;
    std::string output; // what it has printed
};

// With these environment variables added. A task that takes longer than a minute is ended.
ChildResult RunChild(const std::wstring& task, const std::map<std::wstring, std::wstring>& environment = {});

// Copies the program of the children to another path, and runs a task of the copy.
ChildResult RunChildAs(const std::wstring& program, const std::wstring& task,
                       const std::map<std::wstring, std::wstring>& environment = {});

} // namespace vxut::test
