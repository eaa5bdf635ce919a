// The symbols of single addresses, such as the frames of stacks that were recorded earlier.
#pragma once

#include "text/string.h"

#include <memory>

namespace vxut {

// Takes the stack engine at the first look-up and releases it with its end. Without it, as while another job
// has it, no symbol is found, after a wait of some seconds. Belongs to one thread.
class clsFrameSymbols {
public:
    clsFrameSymbols();
    ~clsFrameSymbols();
    clsFrameSymbols(const clsFrameSymbols&) = delete;
    clsFrameSymbols& operator=(const clsFrameSymbols&) = delete;

    // Returns "module!function + 0x...", with the place in the source if it is known, for a return address;
    // empty if there is no symbol.
    String TextOf(void* returnAddress);

private:
    class Job;

    std::unique_ptr<Job> job_;
};

} // namespace vxut
