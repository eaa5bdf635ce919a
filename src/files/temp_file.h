// Temporary files: their names, their folder, and files that are deleted when closed.
#pragma once

#include "files/file.h"

#include <cstdint>

namespace vxut {

constexpr uint32_t kTempLongDirectory = 1;    // the long form of the temp directory
constexpr uint32_t kTempBareNameFirst = 2;    // try the name without a number first
constexpr uint32_t kTempRandomAccess = 4;     // for random instead of sequential access
constexpr uint32_t kTempNoVersionPrefix = 16; // no "_21_" before the name

// Creates a new, empty file and returns its path, or the empty text if that fails.
//
// templatePath supplies folder and base name; the defaults are the temp directory and "qzr". A leading dot of
// the extension is dropped. With a holder the file stays open there and is deleted when closed; a file of the
// same name that was not written for a week is taken over. May be called on any thread.
String CreateTempFile(const String& templatePath, const String& extension, uint32_t flags,
                      clsAutoCloseFile* holder = nullptr);

// Creates a chain of folders ("Velmora", or several separated by backslashes) in the long form of the temp
// directory. Returns its path with a backslash at the end, or the temp directory itself if a folder cannot be
// created.
String TempFolder(const String& folders);

// The folder that all processes of the family share for their temporary files.
constexpr const wchar_t* kSharedTempFolder = L"Velmora";

// A new file in the shared temp folder, open for reading and writing, that is deleted when closed. IsOpen()
// returns false if it could not be created. It cannot be opened on another file.
class clsFileRWTemp : public clsFileRW {
public:
    // Without a name the base is "qzr", without an extension it is "tmp".
    explicit clsFileRWTemp(const String& templateName = String(), const String& extension = String());

protected:
    clsAutoCloseFile OpenHandle(const String& name, DWORD access, DWORD share, DWORD disposition,
                                DWORD attributes) override;
};

// A writable file on a stream that serves as temporary store.
class clsFileRWTempStream : public clsFileRW {
public:
    using clsFileRW::clsFileRW;
};

} // namespace vxut
