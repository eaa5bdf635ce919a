// Texts that the user reads, in the two languages of the system.
#pragma once

#include <windows.h>

namespace vxut {

struct scUserText {
    const wchar_t* english;
    const wchar_t* german;

    const wchar_t* ForUser() const noexcept {
        return PRIMARYLANGID(GetUserDefaultLangID()) == LANG_GERMAN ? german : english;
    }
};

} // namespace vxut
