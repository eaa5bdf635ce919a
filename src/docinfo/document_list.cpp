#include "docinfo/document_list.h"

#include "base/tick_count.h"
#include "docinfo/share_access.h"
#include "files/network_path.h"
#include "text/append_or_throw.h"

#include <utility>

namespace vxut {
namespace {

constexpr int32_t kSweepInterval = 1000; // milliseconds
constexpr DWORD kPollInterval = 100;

} // namespace

clsDocuList::clsDocuList(uint32_t cacheSeconds)
    : clsThreadBase("DocuList::Reload"), cacheMilliseconds_(uint64_t{cacheSeconds} * 1000) {}

clsAutoRelease<clsDocu*> clsDocuList::Get(const IString& request, int32_t timeout) {
    const clsAutoRelease<clsDocu*> cached = Find(request);
    if (cached && IsValid(*cached.Get(), TickCount64())) return cached;
    clsAutoRelease<clsDocu*> document = MakeCounted<clsDocu>(request);
    if (cached) document->CopyFrom(*cached.Get());
    Refresh(*document.Get(), timeout);
    Keep(request, document);
    return document;
}

bool clsDocuList::IsValid(const clsDocu& document, uint64_t tick) const {
    return document.LoadedTick != 0 && tick <= document.LoadedTick + cacheMilliseconds_;
}

clsAutoRelease<clsDocu*> clsDocuList::Find(const IString& request) {
    if (!IsCaching()) return {};
    const clsCriticalSectionScope scope(lock_);
    const clsAutoRelease<clsDocu*>* const document = documents_.find(request);
    return document ? *document : clsAutoRelease<clsDocu*>();
}

// Requests for one document may read it at the same time; the last one stays.
void clsDocuList::Keep(const IString& request, const clsAutoRelease<clsDocu*>& document) {
    if (!IsCaching()) return;
    bool isFirst = false;
    clsAutoRelease<clsDocu*> previous; // is released after the lock
    {
        const clsCriticalSectionScope scope(lock_);
        isFirst = documents_.isEmpty();
        clsAutoRelease<clsDocu*>& place = documents_[request];
        previous = std::move(place);
        place = document;
    }
    // Without the thread, answers that are out of date only take up memory.
    if (isFirst) ThreadStart(THREAD_PRIORITY_IDLE);
}

void clsDocuList::Refresh(clsDocu& document, int32_t timeout) {
    const uint64_t now = TickCount64();
    document.Resolve();
    if (document.ResolvedPath.IsEmpty()) return document.Clear();
    document.LoadedTick = now;
    const IString share = ShareRoot(EnsureUncPath(document.ResolvedPath));
    if (share.IsEmpty())
        document.Reload();
    else if (TestShare(share))
        ReadOnShare(document, clsDeadline(timeout));
}

// Leaves the document as it was if the read is not over in time.
void clsDocuList::ReadOnShare(clsDocu& document, const clsDeadline& deadline) {
    if (!WaitForOtherReads(deadline)) return;
    auto read = std::make_unique<clsDocuAsync>(document);
    if (read->Run(static_cast<int32_t>(deadline.Remaining())))
        document.CopyFrom(read->Result());
    else if (!read->HasEnded())
        LeaveBehind(std::move(read));
}

bool clsDocuList::WaitForOtherReads(const clsDeadline& deadline) {
    while (RemoveEndedReads() >= kMostReads) {
        if (deadline.HasPassed()) return false;
        Sleep(kPollInterval);
    }
    return true;
}

// Without memory for it, the read has to be waited for.
void clsDocuList::LeaveBehind(std::unique_ptr<clsDocuAsync> read) {
    const clsCriticalSectionScope scope(lock_);
    AppendOrThrow(reads_, std::move(read));
}

uint32_t clsDocuList::ThreadBody() {
    int32_t index = 0;
    do {
        RemoveInvalid();
        RemoveEndedReads();
    } while (ThreadWait(kSweepInterval, index));
    return 0;
}

void clsDocuList::RemoveInvalid() {
    WCValSList<IString> requests;
    const clsCriticalSectionScope scope(lock_);
    const uint64_t now = TickCount64();
    for (const auto& pair : documents_)
        if (!IsValid(*pair.value.Get(), now)) AppendOrThrow(requests, pair.key());
    for (const IString& request : requests) documents_.remove(request);
}

// Returns the number of reads that are left.
int clsDocuList::RemoveEndedReads() {
    const clsCriticalSectionScope scope(lock_);
    reads_.removeIf([](const std::unique_ptr<clsDocuAsync>& read) { return read->HasEnded(); });
    return reads_.entries();
}

} // namespace vxut
