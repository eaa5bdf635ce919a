// Cross-reference tables of PDF.
//
// Source: PDF 1.7 (ISO 32000-1), section 7.5.4 and 7.5.8.
#pragma once

#include "containers/containers.h"
#include "docinfo/readers/pdf_dictionary.h"
#include "docinfo/readers/pdf_scanner.h"

#include <cstddef>
#include <cstdint>

namespace vxut {

// Where the objects of a file are. Sections are read from the newest to the oldest, and the first entry of an
// object counts. Free entries count like others: callers rely on it.
class clsPdfObjects {
public:
    // Throws std::bad_alloc.
    void Insert(int32_t number, uint64_t offset);
    // Returns false if the object is missing.
    bool Find(int32_t number, uint64_t& offset) const;
    // The smallest offset above the given one, if it is below the limit; else the limit.
    uint64_t NextOffset(uint64_t offset, uint64_t limit) const;
    // The number of entries that were inserted, refused ones included.
    size_t Inserted() const noexcept { return inserted_; }

private:
    WCValSkipListDict<int32_t, uint64_t> offsets_;
    size_t inserted_ = 0;
};

// Reads a section and its trailer. A section of several subsections, and a cross-reference stream, are
// faults: callers rely on such files having no properties. Throws std::bad_alloc; at a fault clsException,
// and the entries before it stay.
void PdfXrefSection(clsPdfPosition& position, clsPdfObjects& objects, clsPdfDictionary& trailer);

} // namespace vxut
