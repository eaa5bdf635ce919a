// One document: its path, its properties as the readers found them, and when it was read.
//
// Ownership: counted (MakeCounted()); a list, each running request and each running asynchronous read hold a
// reference. The list itself is not counted.
// Threads: a document has no lock. Two requests may refresh one document at once; an asynchronous read works
// on a private copy.
#pragma once

#include "base/unknown.h"
#include "files/file.h"
#include "locale/system_time.h"
#include "text/string.h"
#include "variant/variant.h"

#include <windows.h>

#include <cstdint>

namespace vxut {

class clsDocuList;

// The file that a reader reads.
class clsDocFile : public clsFileRO {
public:
    explicit clsDocFile(const String& path)
        : clsFileRO(path, kAccessRead, kDispositionOpenExisting, kShareReadWrite) {}
};

class clsDocu : public clsIUnknownImpl {
public:
    String Path;
    uint64_t CacheMilliseconds = 0;
    uint64_t LoadedTick = 0; // tick of the last refresh; 0: never, or no longer valid
    clsDocuList* List = nullptr;
    uint16_t Exists = 0;
    SYSTEMTIME FileTime = EmptyTime(); // last write, as of the last read
    SYSTEMTIME Created = EmptyTime();
    SYSTEMTIME Modified = EmptyTime();
    clsVariant Suffix; // what follows the first "|" of the request; kept for its callers, no reader uses it
    clsVariant Title;
    clsVariant Subject;
    clsVariant Author;
    clsVariant LastAuthor;
    clsVariant Keywords;
    clsVariant Comments;
    String ResolvedPath;
    int32_t ReadProperties = 1;
    uint32_t AsyncMilliseconds = 0;
    bool RefreshEnabled = true;
};

} // namespace vxut
