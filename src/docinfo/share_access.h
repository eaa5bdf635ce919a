// Network shares that did not answer.
//
// Threads: the functions may be called on any thread. A share is tested while no lock is held.
#pragma once

#include "text/string.h"

namespace vxut {

// Returns the server and share of a UNC path, "\\server\share"; empty for another path.
IString ShareRoot(const String& path);

// Whether the share is not among those that did not answer.
bool IsShareAccessible(const IString& root);

// The same after a test. A share that fails it once is not tested again as long as the process runs.
bool TestShare(const IString& root);

} // namespace vxut
