#include "docinfo/readers/pdf_xref.h"

#include "docinfo/readers/reader_exception.h"

#include <cstdlib>
#include <new>

namespace vxut {
namespace {

struct Entry {
    int32_t offset;
    int32_t generation;
};

// Reads offset, generation and letter, with any white space before each of them. Does not move if they are
// not there.
bool ReadEntry(clsPdfPosition& position, Entry& entry) {
    clsPdfPosition ahead = position;
    if (!PdfDigits(ahead, entry.offset) || !PdfDigits(ahead, entry.generation)) return false;
    ahead.SkipWhiteSpace();
    if (ahead.IsAtEnd()) return false;
    ahead.SkipAtMost(1);
    position = ahead;
    return true;
}

void SkipToText(clsPdfPosition& position) {
    position.SkipWhiteSpace();
    if (position.IsAtEnd()) throw clsException(L"premature end of xref");
}

// The header of a second subsection is one entry too many, and ends in the fault.
void ReadTable(clsPdfPosition& position, clsPdfObjects& objects) {
    if (!position.Find("xref")) throw clsException(L"no xref");
    position.SkipAtMost(4);
    SkipToText(position);
    auto number = static_cast<uint32_t>(PdfInteger(position)); // wraps
    int32_t count = PdfInteger(position);
    for (Entry entry{}; ReadEntry(position, entry); ++number) {
        if (count-- <= 0) throw clsException(L"bad xref count");
        objects.Insert(static_cast<int32_t>(number), static_cast<uint64_t>(int64_t{entry.offset}));
        SkipToText(position);
    }
    if (count != 0) throw clsException(L"bad xref count");
}

void SkipLineEnd(clsPdfPosition& position) {
    if (position.Byte() == '\r') position.SkipAtMost(1);
    if (position.Byte() != '\n') throw clsException(L"no xref");
    position.SkipAtMost(1);
}

// Cross-reference streams are recognised and refused. Nobody needs what is in them, so it is not expanded.
[[noreturn]] void RefuseStream(clsPdfPosition& position, clsPdfDictionary& trailer) {
    PdfInteger(position);
    PdfInteger(position);
    PdfReadDictionary("obj", position, trailer);
    int32_t length = 0;
    if (!trailer.contains(L"Filter") || !PdfNumberOf(trailer, L"Length", length) ||
        !(PdfTextOf(trailer, L"Type") == L"XRef"))
        throw clsException(L"no xref");
    if (!position.StartsWith("stream")) throw clsException(L"no xref stream");
    position.SkipAtMost(6);
    SkipLineEnd(position);
    if (length < 0 || !position.Skip(static_cast<size_t>(length)) || !PdfSkipTo(position, "endstream"))
        throw clsException(L"no xref");
    throw clsException(String(L"no xref compressed(") + PdfTextOf(trailer, L"Filter") + L")");
}

} // namespace

void clsPdfObjects::Insert(int32_t number, uint64_t offset) {
    ++inserted_;
    if (!offsets_.insert(number, offset) && !offsets_.contains(number)) throw std::bad_alloc();
}

bool clsPdfObjects::Find(int32_t number, uint64_t& offset) const {
    const uint64_t* const found = offsets_.find(number);
    if (found) offset = *found;
    return found != nullptr;
}

uint64_t clsPdfObjects::NextOffset(uint64_t offset, uint64_t limit) const {
    for (const auto& entry : offsets_)
        if (entry.value > offset && entry.value < limit) limit = entry.value;
    return limit;
}

void PdfXrefSection(clsPdfPosition& position, clsPdfObjects& objects, clsPdfDictionary& trailer) {
    if (!position.StartsWith("xref")) RefuseStream(position, trailer);
    ReadTable(position, objects);
    PdfReadDictionary("trailer", position, trailer);
}

} // namespace vxut
