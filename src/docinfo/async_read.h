// One read of a document on a network share, on a thread of its own.
#pragma once

#include "docinfo/document.h"
#include "threads/thread.h"

#include <cstdint>

namespace vxut {

// Works on a copy of the document, which nobody else touches while the thread runs. The destructor waits for
// the thread without limit.
class clsDocuAsync : public clsThreadBase {
public:
    // Throws std::bad_alloc.
    explicit clsDocuAsync(const scDocuFields& document);
    ~clsDocuAsync() override { ThreadEnd(false, -1, false); }

    // Starts the read and waits for its end, dispatching the window messages of the caller meanwhile. timeout
    // is in milliseconds. Returns false if the read is not over by then, or failed for lack of memory.
    bool Run(int32_t timeout);
    bool HasEnded() { return State() != kThreadRunning; }
    // The document, once Run() has returned true.
    const scDocuFields& Result() const noexcept { return document_; }

protected:
    uint32_t ThreadBody() override;
    // Readers use COM, XML and patterns of the system.
    uint32_t ThreadStackSize() const override { return 512 * 1024; }

private:
    clsDocu document_;
    bool isComplete_ = false; // read after the thread has ended
};

} // namespace vxut
