// One document: its path, its properties as the readers found them, and when it was read.
//
// Ownership: counted (MakeCounted()); a list, each running request and each read on a share hold a reference.
// Threads: a document is changed by the request that made it, and only read once a list keeps it: other
// requests answer from it without a lock. A request that finds it out of date works on a copy.
#pragma once

#include "base/unknown.h"
#include "files/file.h"
#include "locale/system_time.h"
#include "text/string.h"
#include "variant/variant.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

// The file that a reader reads.
class clsDocFile : public clsFileRO {
public:
    explicit clsDocFile(const String& path)
        : clsFileRO(path, kAccessRead, kDispositionOpenExisting, kShareReadWrite) {}
};

// What is known about a document. Times are UTC.
struct scDocuFields {
    String Path;
    uint64_t LoadedTick = 0;           // tick of the last refresh; 0: never, or no longer valid
    bool Exists = false;               // a file was opened
    SYSTEMTIME FileTime = EmptyTime(); // last write, as of the last read
    SYSTEMTIME Created = EmptyTime();
    SYSTEMTIME Modified = EmptyTime();
    clsVariant Title;
    clsVariant Subject;
    clsVariant Author;
    clsVariant LastAuthor;
    clsVariant Keywords;
    clsVariant Comments;
    String ResolvedPath; // the path, or the target of a shortcut
};

// The properties that are texts.
inline constexpr clsVariant scDocuFields::* kDocuTexts[] = {
    &scDocuFields::Title,      &scDocuFields::Subject,  &scDocuFields::Author,
    &scDocuFields::LastAuthor, &scDocuFields::Keywords, &scDocuFields::Comments};

class clsDocu : public clsIUnknownImpl, public scDocuFields {
public:
    clsDocu() = default;
    // The path is what comes before the first "|" of the request.
    explicit clsDocu(const String& request);

    // Takes all fields of another document. Throws std::bad_alloc.
    void CopyFrom(const scDocuFields& other);

    // Sets ResolvedPath: the target of a shortcut, in the form of a local path. Empty if a shortcut has none.
    void Resolve();

    // Reads the properties of the file at ResolvedPath, unless it is the one that was read before. A file
    // that is not there makes the document out of date and leaves the rest alone, any other failure clears
    // it. Throws std::bad_alloc.
    void Reload();

    // Forgets all but the paths and the time of the file: an unchanged file is not read again, and then
    // exists without properties. Callers rely on it.
    void Clear();

private:
    void ClearProperties();
};

} // namespace vxut
