// The temp-file manager: a thread that deletes temporary files as soon as the system lets it.
#pragma once

#include "base/critical_section.h"
#include "base/owners.h"
#include "containers/list.h"
#include "text/string.h"
#include "threads/thread.h"

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace vxut {

// Deletes the files of its list, sweeps the shared temp folder, and shows other processes that this one is at
// work there. What is still in the list at the end is tried once more by the destructor.
//
// All functions may be called on any thread. The thread takes the object's lock only, and holds it while it
// deletes: for at most 10 ms for each file plus the time of one deletion.
class clsTempFileRemover final : public clsThreadBase {
public:
    // The shared temp folder, without a backslash at its end. A folder that does not exist is reported, and
    // never swept.
    explicit clsTempFileRemover(const String& folder);
    ~clsTempFileRemover() override;

    // Starts the thread if the folder exists. For the owner, once the object is constructed.
    void Begin();
    // Adds a file to the list and starts the thread if it does not run. Without memory for the list the file
    // is tried once, at once.
    void Add(const IString& path);

    void AddUser() noexcept { ++useCount_; }
    // Returns whether it was the last one.
    bool RemoveUser() noexcept { return --useCount_ == 0; }

    // One cycle of work, which the thread repeats. Returns the pause until the next one in milliseconds.
    int32_t RunCycle();

protected:
    uint32_t ThreadBody() override;

private:
    void StartOnce();
    void ShowActivity();
    int32_t DeletePending();

    clsCriticalSection lock_; // guards the list and the start
    WCValSList<IString> pending_;
    std::atomic<int32_t> useCount_{1};
    uint64_t nextSweepTick_ = 0;
    String activityPath_; // empty if the folder did not exist
    bool isStarted_ = false;
    clsAutoFreeLibrary library_; // is not unloaded while the thread runs
};

// The manager of the process. These functions exclude each other.
void OpenTempFileManager();
void CloseTempFileManager();
// Without an open manager the file is deleted at once, if it can be.
void AddToTempFileManager(const IString& path);

} // namespace vxut
