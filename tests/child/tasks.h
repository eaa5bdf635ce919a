// The tasks of vxut_test_child: each file of this folder adds its own.
#pragma once

#include <functional>
#include <map>
#include <string>

namespace vxut::test {

using ChildTask = int (*)(); // reads its arguments from the command line; returns the exit code; prints what
                             // its test wants to see

inline std::map<std::string, ChildTask>& ChildTasks() {
    static std::map<std::string, ChildTask> tasks;
    return tasks;
}

// Adds a task under a name.
struct AddChildTask {
    AddChildTask(const char* name, ChildTask task) { ChildTasks()[name] = task; }
};

} // namespace vxut::test
