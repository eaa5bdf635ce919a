// The language of the user, and the numbers that the library gives to languages.
#pragma once

#include <windows.h>

#include <cstdint>

namespace vxut {

// The number of a system language: 1 for one without a number of its own.
uint32_t LanguageNumber(LANGID language) noexcept;

// The system's language of the user, as first seen by the process.
LANGID UserLanguageId();

// The number that the user has chosen, else that of UserLanguageId().
uint32_t UserLanguage();

// Gives the registry's result code.
LSTATUS SetUserLanguage(uint32_t language);

} // namespace vxut
