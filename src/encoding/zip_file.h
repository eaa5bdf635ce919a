// A ZIP archive that is built from files and folders.
#pragma once

#include "containers/list.h"
#include "encoding/zip_entry.h"
#include "files/file.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

enum ZipResult : int32_t { kZipOk = 0, kZipNoSource = -1, kZipNoEntry = -2, kZipWriteFailed = -3 };

// Entries are compressed into temporary files when they are added; the archive is written whole by Close()
// and is empty until then. There is no ZIP64: what exceeds 4 GB is a failure, and the number of entries is
// stored in 16 bits without a test. Failures are reported on the debug channel.
//
// Belongs to one thread at a time. Members throw std::bad_alloc; the archive is as before then.
class clsZIPFile : private WCPtrSList<clsZIPFileEntry> {
public:
    clsZIPFile() = default;
    clsZIPFile(const clsZIPFile&) = delete;
    clsZIPFile& operator=(const clsZIPFile&) = delete;
    ~clsZIPFile() override;

    // Replaces the file by an empty one that nobody else can open. Returns false if it cannot be created, or
    // if the comment is too long, in which case the file is left alone.
    bool Create(const String& path, const String& comment);
    // Writes to the position of a stream, which should be its start.
    bool CreateOnStream(IStream* stream, const String& comment);

    // Adds a file. An empty name stands for the path.
    ZipResult AppendFile(const String& path, const String& comment, const String& name);
    // Adds an open file or stream from its position to its end.
    ZipResult Append(clsFile& source, const String& comment, const String& name);
    // Adds the files of a folder that match the pattern and, if it is recursive, all subfolders with all
    // their files, whatever the pattern is. Files that cannot be added are left out.
    void AppendFolder(const String& folder, const String& pattern, bool isRecursive);

    // Writes the archive, closes it and releases the entries. After a failure the archive is incomplete.
    ZipResult Close();

private:
    struct Folder;

    bool HasValidComment() const;
    ZipResult Add(clsGenericAutoDelete<clsZIPFileEntry> entry);
    void AppendFiles(const Folder& folder, const String& path, const String& pattern);
    bool WriteAll();
    bool WriteEnd(int64_t indexOffset, int64_t indexBytes);
    void ReleaseEntries() noexcept;

    clsFile file_;
    String comment_;
};

} // namespace vxut
