// Dates of PDF.
#pragma once

#include "text/string.h"

#include <windows.h>

namespace vxut {

// Reads a date such as "D:20070102030405+01'00'"; what is missing at the end is as in
// "00000101000000Z00'00'". Fields are not checked. Returns the empty time if the text is no date. The minutes
// of a zone count 24 seconds each, callers rely on it. Throws std::bad_alloc. Threads: no shared state.
// Source: PDF 1.7 (ISO 32000-1), section 7.9.4.
SYSTEMTIME PdfDate(const String& text);

} // namespace vxut
