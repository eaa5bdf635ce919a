// The user's language, and the library's own numbers for languages. Any thread may call these functions.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// Returns the number of a system language identifier, 1 for a language without a number of its own.
uint32_t LanguageNumber(LANGID language) noexcept;

// Returns the user's language identifier of the system, which is read once for the life of the process.
LANGID UserLanguageId();

// Returns the number that is stored for the user, else that of UserLanguageId().
uint32_t UserLanguage();

// Stores the number for the user. Returns the result of opening the registry key, ERROR_SUCCESS or an error
// code.
LSTATUS SetUserLanguage(uint32_t language);

} // namespace vxut
