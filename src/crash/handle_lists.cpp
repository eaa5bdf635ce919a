#include "crash/handle_lists.h"

#include "base/unload_steps.h"
#include "crash/handle_report.h"
#include "util/handle_tracking.h"

#include <new>
#include <optional>
#include <utility>

namespace vxut {
namespace {

constexpr uint32_t kTypes = 15;

struct TypeName {
    uint32_t type;
    const wchar_t* name;
};
// The numbers of GetObjectType() that have a name here; the others can be used without.
constexpr TypeName kTypeNames[] = {
    {OBJ_PEN, L"PEN"},
    {OBJ_BRUSH, L"BRUSH"},
    {OBJ_DC, L"DC"},
    {OBJ_PAL, L"PALETTE"},
    {OBJ_FONT, L"FONT"},
    {OBJ_BITMAP, L"BITMAP"},
    {OBJ_REGION, L"RGN"},
    {OBJ_METAFILE, L"MF"},
    {OBJ_MEMDC, L"MEMDC"},
    {OBJ_ENHMETAFILE, L"EMF"},
    {OBJ_COLORSPACE, L"COLORSPACE"},
};

} // namespace

clsHandleLists& clsHandleLists::Instance() {
    static clsHandleLists lists;
    static const bool isRegistered = [] {
        SetUnloadStep(UnloadStep::kHandleLists, [] { lists.ListAtUnload(); });
        return true;
    }();
    static_cast<void>(isRegistered);
    return lists;
}

clsHandleLists::clsHandleLists() : lists_(kTypes), snapshots_(kTypes) {
    // The elements of a vector are made when they are first reached, which is here.
    lists_[kTypes - 1];
    snapshots_[kTypes - 1];
    for (const TypeName& row : kTypeNames) lists_[static_cast<int>(row.type)].SetTypeName(row.name);
}

uint64_t clsHandleLists::Run(uint32_t type, uint32_t command, void* handle) {
    if (type >= kTypes) return 0;
    clsUTHandleList& list = lists_[static_cast<int>(type)];
    switch (command) {
        case UTIL_HANDLES_LIST:
            list.ListLost();
            return 0;
        case UTIL_HANDLES_ADD:
            list.Add(handle);
            return 0;
        case UTIL_HANDLES_REMOVE:
            list.Remove(handle);
            return 0;
        case UTIL_HANDLES_COUNT:
            return list.Count();
        case UTIL_HANDLES_IS_LIVE:
            return list.IsLive(handle) ? 1 : 0;
        case UTIL_HANDLES_PUSH_SNAPSHOT:
            PushSnapshot(type);
            return 0;
        case UTIL_HANDLES_COMPARE_SNAPSHOTS:
            CompareSnapshots(type);
            return 0;
        default:
            return 0;
    }
}

void clsHandleLists::PushSnapshot(uint32_t type) {
    const int index = static_cast<int>(type);
    clsUTHandleList snapshot(lists_[index]);
    const clsCriticalSectionScope scope(lock_);
    if (!snapshots_[index].push(std::move(snapshot))) throw std::bad_alloc();
}

// The report is written without the lock: the stack engine may take seconds.
void clsHandleLists::CompareSnapshots(uint32_t type) {
    std::optional<clsUTHandleList> later;
    std::optional<clsUTHandleList> earlier;
    {
        const clsCriticalSectionScope scope(lock_);
        WCStack<clsUTHandleList>& stack = snapshots_[static_cast<int>(type)];
        if (stack.entries() < 2) return;
        later.emplace(stack.pop());
        earlier.emplace(stack.pop());
    }
    WriteHandleChanges(*earlier, *later);
}

// Under the loader's lock: no thread of the stack engine could start.
void clsHandleLists::ListAtUnload() {
    const clsCriticalSectionScope scope(lock_);
    for (uint32_t type = 0; type < kTypes; ++type) lists_[static_cast<int>(type)].ListLostAtUnload();
}

} // namespace vxut
