// Which process the threads of the lines belong to, and what is known of each.
#pragma once

#include "host/owners.h"

#include <windows.h>

#include <map>
#include <memory>
#include <string>

namespace vlm {

class clsTraceProcess {
public:
    clsTraceProcess(DWORD id, std::wstring name, HandleOwner handle)
        : id_(id), name_(std::move(name)), handle_(std::move(handle)) {}

    // "NAME.EXE:264".
    std::wstring Label() const;
    DWORD Id() const { return id_; }
    // Takes the digit of a line and gives how many lines are missing in front of it, in truth or less: the
    // count shows its last digit only. Lines that nobody is known for, of which so many have come in all,
    // may be among those.
    int CountMissing(int digit, size_t strangers);

private:
    DWORD id_; // 0 if it cannot be told
    std::wstring name_;
    HandleOwner handle_; // keeps the id from being given out again
    int lastDigit_ = -1;
    size_t lastStrangers_ = 0;
};

class clsTraceProcesses {
public:
    // Null for a thread of whose process nothing is known: it had ended when its line was looked at.
    clsTraceProcess* OfThread(DWORD thread);
    // A join line tells who a thread belongs to.
    clsTraceProcess* Join(DWORD thread, const std::wstring& path);
    // A leave line is the last one of its process.
    void Leave(DWORD thread);

private:
    struct Thread {
        HandleOwner handle; // keeps the id from being given out again
        std::shared_ptr<clsTraceProcess> process;
    };

    std::shared_ptr<clsTraceProcess> ProcessOf(DWORD id);

    std::map<DWORD, Thread> threads_;
    std::map<DWORD, std::weak_ptr<clsTraceProcess>> processes_;
};

} // namespace vlm
