// Replaces the content of profile files so that a failure at any moment leaves the old content.
#pragma once

#include "profile/open_file.h"

#include <cstdint>

namespace vxut {

// The bytes of a whole file.
struct scImage {
    const void* bytes;
    int64_t size;
};

// Where the bytes of a save come from. Both operations throw std::bad_alloc.
struct IclsImageSource {
    virtual ~IclsImageSource() = default;
    // Writes the bytes to an empty file. Returns the system's error.
    virtual DWORD WriteTo(clsFile& file) = 0;
    // All bytes in memory, where they stay as long as the source. Returns the system's error.
    virtual DWORD GetImage(scImage& image) = 0;
};

// Bytes that are in memory already, and outlive the source.
class clsMemoryImage : public IclsImageSource {
public:
    explicit clsMemoryImage(const scImage& image) : image_(image) {}
    DWORD WriteTo(clsFile& file) override;
    DWORD GetImage(scImage& image) override {
        image = image_;
        return ERROR_SUCCESS;
    }

private:
    const scImage image_;
};

// Saves under a name, asking for the file with patience while others use it; nobody may share it. Returns the
// system's error, ERROR_SUCCESS if the new content is in the file and on the disk.
DWORD SaveUnderName(const String& name, IclsImageSource& source, const scPatience& patience = kSavePatience);

// Saves into the file or stream that a job keeps. A file on disk stays open for reading and writing, shared
// with readers; it is closed for the moment of the rename only. Should another process take it in that moment
// and not let go of it within the patience, the file is closed afterwards, and the next save opens it again.
DWORD SaveIntoKept(clsFile& kept, IclsImageSource& source, const scPatience& patience = kSavePatience);

} // namespace vxut
