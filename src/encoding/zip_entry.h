// One entry of an archive that is being built.
#pragma once

#include "encoding/zip_format.h"
#include "files/temp_file.h"
#include "text/string.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vxut {

// Holds the headers' values and, for a file, the compressed data in a temporary file of its own until the
// archive is written. Belongs to one thread at a time.
class clsZIPFileEntry {
public:
    // The name is that of ZipName().
    clsZIPFileEntry(const String& name, const String& comment);
    clsZIPFileEntry(const clsZIPFileEntry&) = delete;
    clsZIPFileEntry& operator=(const clsZIPFileEntry&) = delete;

    // Whether name and comment could be converted and fit into their fields. An entry whose texts do not is
    // of no use.
    bool HasValidTexts() const noexcept { return hasValidTexts_; }

    // Compresses a file from its position to its end and takes over its time and attributes. Returns false,
    // with a line on the debug channel, if it is too large or cannot be compressed.
    bool Pack(clsFile& source);
    // Makes the entry one of a folder.
    void SetFolder(const FILETIME& written, DWORD attributes) noexcept;

    // Writes the local header and the data at the archive's position. Return false, reported, on failure.
    bool Write(clsFile& archive);
    // Writes the header of the central directory. The entry has been written before.
    bool WriteIndex(clsFile& archive) const;
    int64_t IndexBytes() const noexcept;

private:
    bool PackInto(clsFile& target, clsFile& source, int64_t size);
    bool CopyContent(clsFile& archive);
    void TakeTimeAndAttributes(const clsFile& source) noexcept;
    void SetTime(const FILETIME& written) noexcept;
    void SetPresentTimeSwapped() noexcept;

    scZipLocalHeader header_;
    String name_;
    String comment_;
    std::string nameBytes_;
    std::string commentBytes_;
    bool hasValidTexts_ = false;
    std::optional<clsFileRWTemp> content_; // of a file
    DWORD attributes_ = 0;
    uint32_t offset_ = 0; // of the local header, once it is written
};

} // namespace vxut
