#include "base/critical_section.h"

namespace vxut {

// The owner of a section that cannot be entered now has been terminated: the section is made anew. Waiting
// for it would end the process on the spot, or never end.
void clsCriticalSection::EnterAtProcessEnd() {
    if (TryEnter()) return;
    InitializeCriticalSectionAndSpinCount(&section_, 0);
    EnterCriticalSection(&section_);
}

} // namespace vxut
