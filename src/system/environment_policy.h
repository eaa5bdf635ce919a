// In what kind of environment the process runs, and whether a user may be asked anything.
#pragma once

#include "base/critical_section.h"
#include "text/string.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

enum EnvironmentType : uint32_t {
    kEnvironmentUnknown = 0,
    kEnvironmentInteractive = 1,
    kEnvironmentReserved = 2, // never found
    kEnvironmentNonInteractive = 3,
    kEnvironmentWebServer = 4,
};

// What is decided from. Names compare without case.
struct scEnvironmentFacts {
    String processName; // without extension
    String userName;
    EnvironmentType typeOfToken = kEnvironmentUnknown; // unknown if the token cannot be read
    bool isUserRootReadable = true;
};

struct scInteractionFacts {
    String processName; // without extension
    bool isWindowStationHidden = false;
    String nonInteractiveApps; // process names between semicolons
};

// The first test that says something decides, in the order of the facts above but for the user name "aspnet",
// which comes before the process name.
EnvironmentType DecideEnvironment(const scEnvironmentFacts& facts);
// The first group that is the interactive or the service one decides.
EnvironmentType TypeOfTokenGroups(const TOKEN_GROUPS& groups);
// A hidden window station and a listed process win over the type; they are reported.
bool DecideInteraction(const scInteractionFacts& facts, EnvironmentType type);

// The answers for this process, found once. For use by all threads.
class clsEnvironmentPolicy {
public:
    static clsEnvironmentPolicy& Instance();

    EnvironmentType Type();
    bool IsInteractionAllowed();

private:
    enum InteractionState { kUnknown = 0, kNotAllowed = 1, kAllowed = 2 };

    clsCriticalSection lock_; // guards both answers, and is held while they are found
    EnvironmentType type_ = kEnvironmentUnknown;
    InteractionState interaction_ = kUnknown;
};

// The locks that all components of the family share, made at load: for the graphics functions and for the
// debug-help library, which are not safe for threads.
clsCriticalSection& GdiThreadingSection();
clsCriticalSection& DebugHelpThreadingSection();

} // namespace vxut
