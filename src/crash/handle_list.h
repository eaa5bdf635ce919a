// The live handles of one type of GDI object, as a host announces them.
#pragma once

#include "base/critical_section.h"
#include "containers/skip_list.h"
#include "text/string.h"

#include <windows.h>

#include <cstdint>
#include <utility>

namespace vxut {

// A live handle. The stack begins with frames of the library itself.
struct scHandleRecord {
    static constexpr uint32_t kFrames = 20;

    uint32_t count = 0; // references
    void* frames[kFrames] = {};
    uint32_t frameCount = 0;
};

using HandleDict = WCValSkipListDict<void*, scHandleRecord>;

// All functions may be called on any thread, except those that the constructing thread fills the list with.
// A copy is a snapshot with a lock of its own.
class clsUTHandleList {
public:
    clsUTHandleList() = default;
    clsUTHandleList(const clsUTHandleList& other);
    clsUTHandleList(clsUTHandleList&& other) noexcept;
    clsUTHandleList& operator=(const clsUTHandleList&) = delete;

    void SetTypeName(const wchar_t* name) { typeName_ = name; }
    const String& TypeName() const noexcept { return typeName_; }

    // Adds a handle, or a reference to it if it is live. Throws std::bad_alloc.
    void Add(void* handle);
    // Removes a reference, and with the last one the handle.
    void Remove(void* handle);
    uint64_t Count() const;
    bool IsLive(void* handle) const;

    // Writes the live handles to the debug channel, with symbols where the stack engine finds them.
    void ListLost();
    // The same with addresses only, unless the list was written before. For the unload.
    void ListLostAtUnload();

    // The handles of a snapshot, which no other thread knows.
    const HandleDict& Handles() const noexcept { return handles_; }

private:
    bool AddReference(void* handle);

    mutable clsCriticalSection lock_; // guards all below but the name
    String typeName_;
    HandleDict handles_;
    bool isReported_ = false;
};

} // namespace vxut
