// Bad arguments of run-time library calls are reported and survived.
#pragma once

namespace vxut {

void InstallInvalidParameterHandler();

// Puts the handler back that was there before, unless another module has set its own since.
void RemoveInvalidParameterHandler();

} // namespace vxut
