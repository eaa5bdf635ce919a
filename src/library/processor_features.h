// A workaround for a defect of old C run-time libraries on processors, or systems, without the AVX state.
#pragma once

namespace vxut {

// Disables the FMA3 and AVX code paths of the run-times' math functions if the system does not save the
// registers that they use. Must run before any floating-point work.
void DisableDefectiveMathPaths();

} // namespace vxut
