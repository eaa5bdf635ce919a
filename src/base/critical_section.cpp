#include "base/critical_section.h"

namespace vxut {

// If the section cannot be entered, its owner has been terminated: the section is initialised again. To wait
// for it would terminate the process at once, or last for ever.
void clsCriticalSection::EnterAtProcessEnd() {
    if (TryEnter()) return;
    InitializeCriticalSectionAndSpinCount(&section_, 0);
    EnterCriticalSection(&section_);
}

} // namespace vxut
