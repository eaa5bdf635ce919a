// Names of files that foreign data brings along.
#pragma once

#include "text/string.h"

namespace vxut {

// Whether a name, appended to a folder, leads to a file of that very folder on every version of the system.
// False for one with a folder, a drive or a stream in it, for "." and "..", for devices in either case, alone
// or with an extension, and for what the system forbids in names, drops from their end or finds too long. Any
// thread may call it.
bool IsPlainFileName(const String& name);

} // namespace vxut
