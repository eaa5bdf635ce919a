// The files that paths of the command line stand for.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vlm {

struct DocinfoFile {
    std::wstring path;
    uint64_t bytes = 0;
};

// A path is a file, a folder, which stands for its files, or a pattern with "*" or "?" in its last part. With
// isRecursive folders and patterns reach into subfolders, except through links. A file that is named without
// a pattern is listed whether it exists or not. Throws CommandError for a folder or a pattern without files.
std::vector<DocinfoFile> FindDocinfoFiles(std::span<const std::wstring> paths, bool isRecursive);

} // namespace vlm
