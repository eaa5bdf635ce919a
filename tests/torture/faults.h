// Decides which calls of the library to the system fail during a run.
//
// Calls are counted for each domain, on the thread that armed the plan only. Any thread may ask; one plan is
// armed at a time.
#pragma once

#include <windows.h>

#include <string>

namespace torture {

enum class Domain : unsigned {
    kMemory, // allocations
    kFile,   // calls on files
    kSystem, // other calls that need something of the system: events, mappings, registry keys, conversions
    kStream, // methods of the streams that a scenario hands to the library
    kCount
};

// One run: which call fails. Written as "alloc:17" for the 17th allocation alone and "alloc:17+" for all from
// the 17th on.
struct Plan {
    Domain domain = Domain::kMemory;
    unsigned call = 0; // 0: none fails
    bool onwards = false;

    std::string Text() const;
    // Returns false, and leaves the plan alone, if the text is no plan.
    bool Parse(const std::string& text);
};

const char* NameOf(Domain domain);

void Arm(const Plan& plan);
void Disarm();

// Whether the calling thread is the one that a plan is armed for.
bool IsArmedHere();
// Counts a call of the armed thread; true if it has to fail.
bool ShallFail(Domain domain, const char* function);

// Of the last armed plan: the calls that were counted, and how many of all failed.
unsigned CallsOf(Domain domain);
unsigned FailedCalls();
// The function whose call failed first; "" if none did.
const char* FirstFailed();

} // namespace torture
