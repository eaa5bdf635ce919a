// The names of help files as hosts write them.
#pragma once

#include "text/string.h"

namespace vxut {

// The name after the translation of the companion library, if that is in the process.
String TranslatedHelpPath(const String& path);

} // namespace vxut
