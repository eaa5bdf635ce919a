// Writes a job's tree to files, streams and images in memory.
#pragma once

#include "files/file.h"
#include "profile/forms.h"
#include "profile/outcome.h"

#include <objbase.h>

#include <cstdint>

namespace vxut {

class ProfJob;

// Writes the tree in one form from the start of a file and ends the file there. An empty tree leaves an empty
// file. Returns the system's error, ERROR_SUCCESS if everything was written. Meant for images in memory and
// for temporary files: a target that fails half way is not put back.
DWORD SerialiseProfile(ProfJob& job, const IclsFormWriter& writer, int startDepth, clsFile& target);

// A null name is the job's own. All memory is allocated before the target is touched, and a target that could
// not be written holds its old content.
scOutcome SaveProfile(ProfJob& job, const wchar_t* name, uint32_t format);
// A null stream is the file or stream that the job keeps.
scOutcome SaveProfileToStream(ProfJob& job, IStream* stream, uint32_t format);

} // namespace vxut
