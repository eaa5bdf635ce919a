// Works round a defect of old run-time libraries on processors, or systems, without the AVX state.
#pragma once

namespace vxut {

// Switches the FMA3 and AVX paths of the run-time math library off where the system does not save their
// registers.
void DisableDefectiveMathPaths();

} // namespace vxut
