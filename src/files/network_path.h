// Paths on network drives and the UNC form of the same.
//
// The functions may be called on any thread. They may take long while the network does not answer.
#pragma once

#include "text/string.h"

namespace vxut {

// Returns a path on a share that is connected to a drive as a path on the drive: "\\server\share\a.txt" is
// "N:\a.txt". Any other path is returned unchanged.
String EnsureLocalPath(const String& path);

// Returns a path on a network drive in its UNC form. Any other path is returned unchanged.
String EnsureUncPath(const String& path);

} // namespace vxut
