// Names and comments of ZIP entries: how a path becomes a name, and how both become bytes.
#pragma once

#include "text/string.h"

#include <string>

namespace vxut {

// The name of an entry: the given name, or the source path if the name is empty, without the drive or the
// server and with "/" as the separator. A leading "/" behind a drive or server is kept; unpackers drop it.
String ZipName(const String& name, const String& sourcePath);

// Whether each character is one of code page 437. An empty text is.
bool IsZipOemText(const String& text);

// The bytes of a text in code page 437 or in UTF-8, where a lone surrogate becomes U+FFFD. Empty if the
// system cannot convert it.
std::string ZipBytes(const String& text, bool isUtf8);

} // namespace vxut
