// The numbers of window messages, by name.
#pragma once

#include "base/critical_section.h"
#include "containers/skip_list.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

// Numbers are never taken back. All functions may be called on any thread; nothing is called under the lock.
class clsWindowMessages {
public:
    // The table of the process.
    static clsWindowMessages& Instance();

    // Returns the number of a name, a new one for a new name. Throws std::bad_alloc.
    uint32_t NumberOf(const IString& name);
    // Returns false if the number has no name.
    bool FindName(uint32_t number, String& name);

private:
    static constexpr uint32_t kFirstNumber = 0x8000;

    clsCriticalSection lock_;
    WCValSkipListDict<IString, uint32_t> numbers_;
    uint32_t next_ = kFirstNumber;
};

} // namespace vxut
