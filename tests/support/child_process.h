// Runs a task of vxut_test_child in a process of its own.
#pragma once

#include "base/owners.h"

#include <string>

namespace vxut::test {

struct ChildResult {
    int exitCode = -1000;
    std::string output; // of stdout
};

// Waits for the end of the child, another program than vxut_test_child if one is named. The exit code is
// -1000 if it could not be started.
ChildResult RunChild(const std::wstring& task, const wchar_t* program = L"vxut_test_child");

// A task that runs beside the test, and is ended with this object at the latest.
class ChildHandle {
public:
    explicit ChildHandle(HANDLE process) : process_(process) {}
    ~ChildHandle() { Kill(); }
    ChildHandle(const ChildHandle&) = delete;
    ChildHandle& operator=(const ChildHandle&) = delete;

    bool IsRunning() const { return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT; }
    void Kill() const;

private:
    clsAutoCloseHandle process_;
};

ChildHandle StartChild(const std::wstring& task);

} // namespace vxut::test
