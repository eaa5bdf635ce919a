// The processes that the threads in the lines belong to.
#pragma once

#include "host/owners.h"

#include <windows.h>

#include <map>
#include <memory>
#include <string>

namespace vlm {

// Not synchronised.
class TraceProcess {
public:
    // The id is 0 if it is unknown.
    TraceProcess(DWORD id, std::wstring name, HandleOwner handle)
        : id_(id), name_(std::move(name)), handle_(std::move(handle)) {}

    // "NAME.EXE:264".
    std::wstring Label() const;
    DWORD Id() const { return id_; }
    // Returns how many lines are missing between the previous line and the one with this digit. A lower
    // bound: only the last digit of the count is known. The missing ones may be among the lines of unknown
    // processes, of which strangers have arrived in all; 0 if there were enough of those.
    int CountMissing(int digit, size_t strangers);

private:
    DWORD id_;
    std::wstring name_;
    HandleOwner handle_; // keeps the system from reusing the id
    int lastDigit_ = -1;
    size_t lastStrangers_ = 0;
};

// Remembers a limited number of threads: beyond it all are forgotten and looked up again. Results are valid
// until the next call. Not synchronised.
class TraceProcesses {
public:
    // Null if the process of a thread is unknown because the thread has ended already.
    TraceProcess* OfThread(DWORD thread);
    // Enters the process of a join line, which states its path.
    TraceProcess* Join(DWORD thread, const std::wstring& path);
    // Forgets the process of a leave line, its last line.
    void Leave(DWORD thread);

private:
    struct Thread {
        HandleOwner handle; // keeps the system from reusing the id; empty if the thread could not be opened
        std::shared_ptr<TraceProcess> process;
    };

    std::shared_ptr<TraceProcess> ProcessOf(DWORD id);
    TraceProcess* Remember(DWORD thread, Thread known);

    std::map<DWORD, Thread> threads_;
    std::map<DWORD, std::weak_ptr<TraceProcess>> processes_;
};

} // namespace vlm
