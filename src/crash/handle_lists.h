// The handles of all types of GDI objects, and their snapshots.
#pragma once

#include "containers/containers.h"
#include "crash/handle_list.h"

#include <cstdint>

namespace vxut {

// For each type its snapshots, the latest on top.
using clsUTHandleListStack = WCValVector<WCStack<clsUTHandleList>>;

// Made by the first call of Instance(), and kept until the process ends. All functions may be called on any
// thread.
class clsHandleLists {
public:
    static clsHandleLists& Instance();

    // Carries out a command of UtilHandleListMgr(). Throws std::bad_alloc.
    uint64_t Run(uint32_t type, uint32_t command, void* handle);

private:
    clsHandleLists();

    void PushSnapshot(uint32_t type);
    void CompareSnapshots(uint32_t type);
    void ListAtUnload();

    clsCriticalSection lock_;            // guards the snapshots; the locks of the lists are taken inside it
    WCValVector<clsUTHandleList> lists_; // by type; their number never changes
    clsUTHandleListStack snapshots_;
};

} // namespace vxut
