// A list of documents with a cache.
#pragma once

#include "base/critical_section.h"
#include "base/owners.h"
#include "containers/containers.h"
#include "docinfo/async_read.h"
#include "docinfo/document.h"
#include "threads/deadline.h"
#include "threads/thread.h"

#include <cstdint>
#include <memory>

namespace vxut {

// Answers requests for documents. Its thread, which runs at idle priority from the first cached answer on,
// removes answers that are out of date and reads on shares that have ended.
//
// Threads: Get() may be called on any number of threads. The lock is held for look-ups and insertions only.
class clsDocuList : private clsThreadBase {
public:
    // With 0 seconds nothing is cached.
    explicit clsDocuList(uint32_t cacheSeconds);
    // Waits for all reads that requests have left behind.
    ~clsDocuList() override { ThreadEnd(false, -1, false); }

    // Returns the document of a request, from the cache if the answer there is valid. timeout is in
    // milliseconds and limits the wait for a file on a share. The document must not be changed. Throws
    // std::bad_alloc.
    clsAutoRelease<clsDocu*> Get(const IString& request, int32_t timeout);

protected:
    uint32_t ThreadBody() override;

private:
    // Reads on shares beyond this number are not started until earlier ones have ended.
    static constexpr int kMostReads = 20;

    bool IsCaching() const { return cacheMilliseconds_ != 0; }
    bool IsValid(const clsDocu& document, uint64_t tick) const;
    clsAutoRelease<clsDocu*> Find(const IString& request);
    void Keep(const IString& request, const clsAutoRelease<clsDocu*>& document);
    void Refresh(clsDocu& document, int32_t timeout);
    void ReadOnShare(clsDocu& document, const clsDeadline& deadline);
    bool WaitForOtherReads(const clsDeadline& deadline);
    void LeaveBehind(std::unique_ptr<clsDocuAsync> read);
    void RemoveInvalid();
    int RemoveEndedReads();

    const uint64_t cacheMilliseconds_;
    clsCriticalSection lock_; // guards all below
    WCValSkipListDict<IString, clsAutoRelease<clsDocu*>> documents_;
    WCValSList<std::unique_ptr<clsDocuAsync>> reads_;
};

} // namespace vxut
