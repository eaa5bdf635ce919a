// Allocations that fail on request, in the unit test program only.
#pragma once

#include <cstddef>

namespace vxut::test {

// While it lives, the allocation of this thread after the given number of allocations fails, once.
class FailingAllocation {
public:
    explicit FailingAllocation(size_t allocationsBefore) noexcept;
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool HasFailed() const noexcept;
};

} // namespace vxut::test
