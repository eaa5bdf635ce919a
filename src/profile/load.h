// Fills a job's tree from a file of any form.
#pragma once

#include "files/file.h"

namespace vxut {

class ProfJob;

// False if the file could not be read to its end; what was read stays in the tree. A bad file leaves its code
// as the job's last error, one that is too short leaves none.
bool LoadProfile(ProfJob& job, clsFile& file);

} // namespace vxut
