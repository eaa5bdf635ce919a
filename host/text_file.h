// A text file of unknown encoding: its bytes, their encoding, and the text.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

enum class Encoding { kEmpty, kAscii, kUtf8, kUtf16LittleEndian, kUtf16BigEndian, kNarrow, kBinary };

struct TextFile {
    Encoding encoding = Encoding::kEmpty;
    bool hasMark = false;
    // The bytes after the mark.
    std::string bytes;
    // Whether the file is longer than the bytes that were read.
    bool isCut = false;
};

// Reads the beginning of a file, or of standard input if the path is "-", up to maximumBytes rounded up to
// the size of a read. Fails with a message if it cannot be read.
TextFile ReadTextFile(const std::wstring& path, size_t maximumBytes);

// The text of a file that was read. The code page is that of narrow text.
std::wstring TextOf(const TextFile& file, UINT codePage);

// Describes the encoding: "UTF-16, little-endian, by its mark".
std::wstring Describe(const TextFile& file);

} // namespace vlm
