// The hook of window events.
#pragma once

#include "util/message.h"

namespace vxut {

// Installs the callback of the host for all threads of the desktop, or removes the hook if it is null. Does
// nothing under a debugger, which a global hook would slow down. Not synchronised: hosts call it on one
// thread.
void SetCbtHook(UtilCBTCallback callback);

} // namespace vxut
