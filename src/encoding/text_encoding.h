// The text form of binary data: Base64, optionally of a block that is compressed, encrypted, or both.
#pragma once

#include "encoding/packed_block.h"
#include "files/file.h"
#include "text/string.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace vxut {

// The text form of bytes without a password; empty for no bytes. There are at most 2^32 - 1 bytes. Throws
// std::bad_alloc.
String EncodeBytes(std::span<const uint8_t> bytes, bool compress);

// Decodes a text form, up to its first zero unit. An empty password is none. Damage is no failure: a packed
// block that cannot be expanded decodes to nothing, one that is none after decryption to what it is. Returns
// false, which is reported, if the text does not fit what it should decode to. Throws std::bad_alloc.
bool DecodeText(std::wstring_view text, const String& password, scByteBlock& block);

// Returns the text form of a whole file. It is empty if the file is, and if the file could not be read or has
// more than 2^32 - 1 bytes: error, if not null, receives the system's error then, else ERROR_SUCCESS. Blocks
// below 8 bytes are not encrypted. Throws std::bad_alloc.
String UtilEncodeFile(clsFile& file, bool compress, const String& password, DWORD* error = nullptr);

// Replaces the content of a file by the bytes of a text form, and moves to the start. Returns false, with the
// file as it was, if the text is empty. error, if not null, receives the system's error if the file could not
// be written, and then has its old content, or only not moved to the start; else ERROR_SUCCESS. Blocks below
// 12 bytes are not decrypted, though those of 8 to 11 bytes were encrypted: callers rely on it. Throws
// std::bad_alloc.
bool UtilDecodeFile(clsFile& file, const String& text, const String& password, DWORD* error = nullptr);

// What UtilDecodeFile() does for a text that is not empty. An empty one empties the file. Returns the
// system's error, ERROR_SUCCESS if the content is there.
DWORD ReplaceByDecoded(clsFile& file, std::wstring_view text, const String& password);

} // namespace vxut
