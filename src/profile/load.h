// Fills a job's tree from a file of any form.
#pragma once

#include "files/file.h"

namespace vxut {

class ProfJob;

// Returns false if the profile could not be read to its end; the reason is the job's last error then. What
// was read of a damaged file stays in the tree; when memory ran out the tree is empty. A file of fewer than 4
// bytes leaves no last error: it is the caller who knows whether an empty one is right.
bool LoadProfile(ProfJob& job, clsFile& file);

} // namespace vxut
