// The structured storage of a document, and the streams in it.
//
// Threads: each object on one thread.
#pragma once

#include "base/owners.h"
#include "text/string.h"

#include <objbase.h>
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxut {

// A file that is deleted at the end; a failure is reported.
class clsTemporaryCopy {
public:
    clsTemporaryCopy() = default;
    ~clsTemporaryCopy();
    clsTemporaryCopy(const clsTemporaryCopy&) = delete;
    clsTemporaryCopy& operator=(const clsTemporaryCopy&) = delete;

    // Copies a file, which somebody else may be writing. Returns false if that fails.
    bool Make(const String& path);
    const String& Path() const noexcept { return path_; }

private:
    String path_;
};

// A storage that is open for reading.
class clsDocumentStorage {
public:
    // Opens a file, or a copy of it if others have it open in ways that the system does not let it be shared
    // in. Returns the system's result; STG_E_DOCFILECORRUPT for a file whose structure cannot be true.
    // Throws std::bad_alloc.
    HRESULT Open(const String& path);
    IStorage* Get() const noexcept { return storage_.Get(); }

private:
    clsTemporaryCopy copy_; // deleted after the storage was released
    clsAutoRelease<IStorage*> storage_;
};

// The most bytes of one stream that readers take; no property is that long. A longer stream counts as
// absent.
constexpr size_t kMostStreamBytes = size_t{16} * 1024 * 1024;

// Reads a whole stream of a storage. Returns false if it is missing, too long or cannot be read. Throws
// std::bad_alloc.
bool ReadStorageStream(IStorage& storage, const wchar_t* name, std::vector<uint8_t>& bytes);

} // namespace vxut
