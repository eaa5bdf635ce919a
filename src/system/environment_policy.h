// The kind of environment that the process runs in, and whether a user may be asked anything.
#pragma once

#include "base/critical_section.h"
#include "text/string.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// UTIL_ENVIRONMENT_* of util/environment.h, or kEnvironmentUnknown as long as it is not determined.
using EnvironmentType = uint32_t;
inline constexpr EnvironmentType kEnvironmentUnknown = 0;

// The facts that the environment type follows from. Names are compared without case.
struct scEnvironmentFacts {
    String processName; // without extension
    String userName;
    EnvironmentType typeOfToken = kEnvironmentUnknown; // unknown if the token cannot be read
    bool isUserRootReadable = true;
};

struct scInteractionFacts {
    String processName; // without extension
    bool isWindowStationHidden = false;
    String nonInteractiveApps; // process names, separated by semicolons
};

// The order of the tests is part of the interface: the user name "aspnet", the process name, the user name
// "system", the token, and last whether the user's settings can be opened.
EnvironmentType DecideEnvironment(const scEnvironmentFacts& facts);
// The first group that is the interactive or the service group decides.
EnvironmentType TypeOfTokenGroups(const TOKEN_GROUPS& groups);
// A hidden window station and a listed process win over the type. Writes to the debug channel if one of them
// decides.
bool DecideInteraction(const scInteractionFacts& facts, EnvironmentType type);

// The answers for this process, determined once. May be used by any thread; the first call of each function
// reads the registry and the token while it holds the lock, and may write to the debug channel.
class clsEnvironmentPolicy {
public:
    static clsEnvironmentPolicy& Instance();

    EnvironmentType Type();
    bool IsInteractionAllowed();

private:
    enum InteractionState { kUnknown = 0, kNotAllowed = 1, kAllowed = 2 };

    clsCriticalSection lock_; // guards both answers, and is held while they are determined
    EnvironmentType type_ = kEnvironmentUnknown;
    InteractionState interaction_ = kUnknown;
};

// The locks that all components of a process share, for the graphics functions and for the debug-help
// library, neither of which is safe for threads. They exist from load to unload.
clsCriticalSection& GdiThreadingSection();
clsCriticalSection& DebugHelpThreadingSection();

} // namespace vxut
