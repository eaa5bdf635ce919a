// The header of a mail message in Internet text form.
//
// Threads: no shared state.
#pragma once

#include "text/string.h"

namespace vxut {

// Decodes the value of a header field for display: encoded words in all fields, and the tokens of address
// fields. Throws std::bad_alloc, and clsException as clsRFC1342Decoder does.
String UtilDecodeMailField(const String& value, const String& fieldName);

} // namespace vxut
