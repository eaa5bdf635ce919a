#include "heap/job.h"

#include "base/shield.h"
#include "heap/host_name.h"
#include "heap/report.h"
#include "util/frame.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr uint32_t kSkippedCallers = 2;

clsModuleList& Jobs() {
    static clsModuleList jobs;
    return jobs;
}

clsModuleNode* OpenJobNamed(const wchar_t* name, uint32_t flags) {
    clsModuleNode* node = name ? Jobs().Find(name) : nullptr;
    const clsTraceScope trace(node ? node->flags : flags, L"UtilJobOpen('%s',0x%08x)", ReportName(name),
                              flags);
    if (node) {
        ++node->referenceCount;
    } else if (name) {
        node = Jobs().Add(name, flags);
    }
    return trace.Result(node);
}

// The parts of a closed record that the call needs. The handle may not lead to a record.
struct ClosedRecord {
    wchar_t name[clsModuleNode::kNameUnits];
    uint32_t flags;
    uint32_t referenceCount; // before the close
};

// Copies a record and lowers its reference count. Returns false if the memory cannot be read and written.
bool LowerReferenceCount(clsModuleNode* job, ClosedRecord& record) {
    const bool isAligned = reinterpret_cast<uintptr_t>(job) % alignof(clsModuleNode) == 0;
    if (!isAligned || !ReadShielded(record.name, job->name) || !ReadShielded(record.flags, &job->flags) ||
        !ReadShielded(record.referenceCount, &job->referenceCount))
        return false;
    record.name[clsModuleNode::kNameUnits - 1] = L'\0';
    const uint32_t lowered = record.referenceCount - 1;
    return WriteShielded(&job->referenceCount, &lowered, sizeof lowered);
}

// Writes the line that a traced close adds for some results.
void ExplainResult(int32_t result) {
    switch (result) {
        case UTIL_OK:
        case UTIL_ERR_LEFT_BEHIND:
            break;
        case UTIL_ERR_HANDLE:
            WriteReport(L"Error: invalid module handle");
            break;
        default:
            WriteReport(L"Error: unknown result code '%d'", result);
            break;
    }
}

// The record is read and lowered before the handle is looked up: callers rely on the order.
int32_t CloseJobTouched(clsModuleNode* job) {
    ClosedRecord record;
    if (!LowerReferenceCount(job, record)) return Jobs().Delete(job);
    const clsTraceScope trace(record.flags, L"UtilJobClose(%#p) ['%s']", job, record.name);
    if (record.referenceCount != 1) return trace.Result(UTIL_OK);
    JobNames().remove(String(record.name));
    const int32_t result = Jobs().Delete(job);
    if (trace.IsOpen()) ExplainResult(result);
    return trace.Result(result);
}

} // namespace

clsModuleNode* clsModuleList::Find(const wchar_t* name) const noexcept {
    clsModuleNode* node = head_;
    while (node && std::wcscmp(node->name, name) != 0) node = node->next;
    return node;
}

clsModuleNode* clsModuleList::Add(const wchar_t* name, uint32_t flags) {
    auto node = MakeInProcessHeap<clsModuleNode>();
    if (!node) {
        WriteReport(L"Error: clsModuleList::Add(..): Out of Memory");
        return nullptr;
    }
    std::wcsncpy(node->name, name, clsModuleNode::kNameUnits - 1);
    node->flags = flags;
    if (flags & UTIL_JOB_TRACE) node->stackSnapshot = clsStackSnapshot::Take(kSkippedCallers);
    node->referenceCount = 1;
    Append(node.get());
    return node.release();
}

int32_t clsModuleList::Delete(clsModuleNode* node) {
    if (!Contains(node)) {
        WriteReport(L"Error: clsModuleList::Delete(%#p): Invalid handle", node);
        return UTIL_ERR_HANDLE;
    }
    Unlink(node);
    const clsProcessHeapPtr<clsModuleNode> owned(node);
    const int32_t result = node->firstHeap ? UTIL_ERR_LEFT_BEHIND : UTIL_OK;
    node->DestroyHeaps();
    return result;
}

bool clsModuleList::Contains(const clsModuleNode* node) const noexcept {
    const clsModuleNode* each = head_;
    while (each && each != node) each = each->next;
    return each != nullptr;
}

void clsModuleList::Append(clsModuleNode* node) noexcept {
    node->previous = tail_;
    (tail_ ? tail_->next : head_) = node;
    tail_ = node;
}

void clsModuleList::Unlink(clsModuleNode* node) noexcept {
    (node->previous ? node->previous->next : head_) = node->next;
    (node->next ? node->next->previous : tail_) = node->previous;
}

WCValSkipListDict<String, void*>& JobNames() {
    static WCValSkipListDict<String, void*> names;
    return names;
}

bool IsJob(const clsModuleNode* job) noexcept { return Jobs().Contains(job); }

clsModuleNode* OpenJob(const wchar_t* name, uint32_t flags) {
    const clsHostName copy(name);
    return Locked(JobLock(), [&]() -> clsModuleNode* {
        if (!copy.IsReadable()) {
            ReportBadPointer(L"UtilJobOpen", name);
            return nullptr;
        }
        return OpenJobNamed(copy.Text(), flags);
    });
}

int32_t CloseJob(clsModuleNode* job) {
    if (job == nullptr) return UTIL_OK;
    return Locked(JobLock(), [=] { return CloseJobTouched(job); });
}

} // namespace vxut
