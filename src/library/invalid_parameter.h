// Bad arguments of C run-time calls, anywhere in the process, are reported and survived.
#pragma once

namespace vxut {

// Installs a handler in each C run-time library that is loaded. It writes a line to the debug channel and
// returns, so that the call fails instead of ending the process. Run-times that are loaded later keep
// theirs. Called under the loader's lock, once before each removal.
void InstallInvalidParameterHandler();

// Restores the earlier handlers, except where another module has installed its own since.
void RemoveInvalidParameterHandler();

} // namespace vxut
