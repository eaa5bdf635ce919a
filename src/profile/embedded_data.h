// Files and streams as values of items: the text form of their bytes, compressed, and encrypted if there is a
// password.
//
// Null passwords and names count as empty. Everything here throws std::bad_alloc; the tree, and a file or
// stream that was to be written, are unchanged then.
#pragma once

#include "profile/item_path.h"
#include "profile/outcome.h"
#include "text/string.h"

#include <objbase.h>

#include <string_view>

namespace vxut {

// The text form of a file on disk; empty if the file is, and if it could not be read: error, which is
// ERROR_SUCCESS otherwise, receives the system's error then.
String EncodeFileNamed(const String& name, const String& password, DWORD& error);

// Replaces a file by what a text form decodes to, or creates it. The file holds the old or the new content,
// whole. Nobody may have it open. Returns the system's error.
DWORD WriteDecodedFile(const String& name, std::wstring_view text, const String& password);

// Adds an item with the text form of a file or stream. One that cannot be read makes an empty value. Returns
// the system's error.
DWORD AppendFile(const scPlace& place, const wchar_t* path, const String& password, const String& fileName);
DWORD AppendStream(const scPlace& place, const wchar_t* path, const String& password, IStream* stream);

// Writes what an item's value decodes to: PROF_OK; PROF_ERR_NOT_FOUND, with the target untouched, if item is
// null or its value is empty; PROF_ERR_WRITE, with the target as it was, if it could not be written.
scOutcome GetFile(const clsItem* item, const String& password, const String& fileName);
scOutcome GetStream(const clsItem* item, const String& password, IStream* stream);

} // namespace vxut
