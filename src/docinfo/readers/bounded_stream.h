// The bytes of a file for a parser of the system's, which may take any time for them.
#pragma once

#include "base/unknown.h"
#include "files/file.h"
#include "text/match_budget.h"

#include <objidl.h>
#include <windows.h>

#include <cstdint>

namespace vxut {

// Reads a file from its start. Ends early, as if the file did, when the thread has used up its time or has
// read so much. On the stack: it must outlive the parser, and the file must outlive it. For one thread.
class clsBoundedStream : public clsIUnknownImpl, public ISequentialStream {
public:
    clsBoundedStream(clsFile& file, int64_t mostBytes, uint64_t milliseconds);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return clsIUnknownImpl::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return clsIUnknownImpl::Release(); }

    // Whether the time is used up.
    bool IsOver();

private:
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG bytes, ULONG* bytesRead) override;
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG bytes, ULONG* bytesWritten) override;

    clsFile& file_;
    int64_t position_ = 0;
    const int64_t mostBytes_;
    clsMatchBudget budget_;
    uint64_t lastTick_;
};

} // namespace vxut
