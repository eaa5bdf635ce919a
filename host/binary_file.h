// Whole files as bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vlm {

// Reads the beginning of a file, up to maximumBytes rounded up to the size of a read. Fails with a message if
// it cannot be read.
std::string ReadBinaryFile(const std::wstring& path, size_t maximumBytes = SIZE_MAX);

// The same for standard input, if the path is "-".
std::string ReadInput(const std::wstring& path, size_t maximumBytes = SIZE_MAX);

// Writes a file beside the target and puts it in the target's place: a failure, which ends with a message,
// leaves the old file.
void WriteBinaryFile(const std::wstring& path, std::string_view bytes);

} // namespace vlm
