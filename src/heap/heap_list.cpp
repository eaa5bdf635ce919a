// The heaps of a job.
#include "base/debug.h"
#include "heap/heap.h"
#include "heap/job.h"
#include "heap/report.h"
#include "util/frame.h"

namespace vxut {

clsHeapNode* clsModuleNode::AddHeap(const wchar_t* heapName, uint32_t heapFlags) {
    auto node = MakeInProcessHeap<clsHeapNode>();
    if (!node || !node->Create(this, heapName, heapFlags)) {
        WriteReport(L"Error: clsModuleNode['%s']::AddHeap('%s',0x%08x): Out of Memory", name,
                    ReportName(heapName), heapFlags);
        return nullptr;
    }
    node->previous = lastHeap;
    (lastHeap ? lastHeap->next : firstHeap) = node.get();
    lastHeap = node.get();
    return node.release();
}

int32_t clsModuleNode::DeleteHeap(clsHeapNode* node) {
    const clsHeapNode* each = firstHeap;
    while (each && each != node) each = each->next;
    if (each == nullptr) {
        WriteReport(L"Error: clsModuleNode['%s']::DeleteHeap(%#p): Invalid handle", name, node);
        return UTIL_ERR_HANDLE;
    }
    const int32_t result = node->objectCount > 0 ? UTIL_ERR_LEFT_BEHIND : UTIL_OK;
    DestroyHeap(node);
    return result;
}

void clsModuleNode::DestroyHeaps() {
    if (firstHeap == nullptr) return;
    const clsReportScope scope(L"Error: deleting module '%s', but the following heaps are left:", name);
    while (firstHeap) {
        firstHeap->WriteListing();
        DestroyHeap(firstHeap);
    }
}

// Destroys the objects that are left with the heap. Their stacks are not freed: the pointers to them lie in
// memory that the host may have overwritten.
void clsModuleNode::DestroyHeap(clsHeapNode* node) {
    (node->previous ? node->previous->next : firstHeap) = node->next;
    (node->next ? node->next->previous : lastHeap) = node->previous;
    const clsProcessHeapPtr<clsHeapNode> owned(node);
    node->WriteFarewell();
}

} // namespace vxut
