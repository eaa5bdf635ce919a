#include "docinfo/async_read.h"

namespace vxut {

clsDocuAsync::clsDocuAsync(const scDocuFields& document) : clsThreadBase("clsDocuAsync") {
    document_.CopyFrom(document);
}

bool clsDocuAsync::Run(int32_t timeout) {
    if (!ThreadStart()) return false;
    ThreadEnd(false, timeout, false);
    return HasEnded() && isComplete_;
}

uint32_t clsDocuAsync::ThreadBody() {
    document_.Reload();
    isComplete_ = true;
    return 0;
}

} // namespace vxut
