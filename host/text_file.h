// A text file of unknown encoding: its bytes, what they are, and the text in them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace vlm {

enum class Encoding { kEmpty, kAscii, kUtf8, kUtf16LittleEndian, kUtf16BigEndian, kNarrow, kBinary };

struct TextFile {
    Encoding encoding = Encoding::kEmpty;
    bool hasMark = false;
    // The bytes behind the mark.
    std::string bytes;
    // The file goes on behind them.
    bool isCut = false;
};

// Reads the beginning of a file. Fails with a message if it cannot be read.
TextFile ReadTextFile(const std::wstring& path, size_t maximumBytes);

// The text of a file that was read; narrow text is taken to be of the code page.
std::wstring TextOf(const TextFile& file, UINT codePage);

// "UTF-16, little-endian, by its mark" and so on.
std::wstring Describe(const TextFile& file);

} // namespace vlm
