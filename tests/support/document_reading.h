// Runs a reader of documents on bytes.
#pragma once

#include "base/owners.h"
#include "docinfo/readers/readers.h"
#include "tests/support/document_text.h"
#include "tests/support/temp_folder.h"

#include <windows.h>

#include <string>

namespace vxut::test {

using Document = clsAutoRelease<clsDocu*>;
using DocumentReader = int (*)(clsDocu& document, clsDocFile& file);

// The document as the reader left it. result receives what the reader returned.
inline Document ReadDocument(DocumentReader read, const std::string& bytes, int* result = nullptr) {
    const FreshFolder folder;
    clsDocFile file(folder.Put(L"document", bytes));
    Document document(MakeCounted<clsDocu>());
    const int code = read(*document.Get(), file);
    if (result) *result = code;
    return document;
}

// The processor time that the reader takes, in milliseconds. It does not depend on the load of the machine.
inline double ProcessorTime(DocumentReader read, const std::string& bytes) {
    const auto now = [] {
        FILETIME times[4] = {};
        GetThreadTimes(GetCurrentThread(), &times[0], &times[1], &times[2], &times[3]);
        ULARGE_INTEGER user;
        user.LowPart = times[3].dwLowDateTime;
        user.HighPart = times[3].dwHighDateTime;
        return static_cast<double>(user.QuadPart) / 10'000;
    };
    const double start = now();
    ReadDocument(read, bytes);
    return now() - start;
}

} // namespace vxut::test
