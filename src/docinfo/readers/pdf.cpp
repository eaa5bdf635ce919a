// PDF: the Info dictionary, found through classic cross-reference tables.
//
// Source: PDF 1.7 (ISO 32000-1), section 7.5 and 14.3.3. Pages, object streams and encryption are not read.
#include "base/debug.h"
#include "base/owners.h"
#include "docinfo/readers/named_property.h"
#include "docinfo/readers/pdf_date.h"
#include "docinfo/readers/pdf_dictionary.h"
#include "docinfo/readers/pdf_scanner.h"
#include "docinfo/readers/pdf_xref.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/reader_exception.h"
#include "docinfo/readers/readers.h"
#include "text/shared_regex.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace vxut {
namespace {

constexpr int64_t kMostBufferBytes = 65536;
constexpr int64_t kTailBytes = 50;

// Limits on the chain of sections, far above those of honest files.
constexpr int kMostSections = 1000;
constexpr size_t kMostEntries = 200'000;

clsSharedRegEx startPattern(LR"((?s)startxref\s+(\d+))", kRegExDotAll);

constexpr scNamedProperty kProperties[] = {{L"Author", &clsDocu::Author},
                                           {L"Title", &clsDocu::Title},
                                           {L"Subject", &clsDocu::Subject},
                                           {L"Keywords", &clsDocu::Keywords},
                                           {L"CreationDate", nullptr, &clsDocu::Created},
                                           {L"ModDate", nullptr, &clsDocu::Modified}};

void Report(const clsException& fault) { DebugWrite(L"EXCEPTION '%s'", fault.Message().Text()); }

class PdfReader {
public:
    PdfReader(clsDocFile& file, int64_t size)
        : file_(file),
          size_(size),
          bufferSize_(std::min(size, kMostBufferBytes)),
          buffer_(new char[static_cast<size_t>(bufferSize_) + 1]) {}

    // Reads the Info dictionary as far as it is sound; it stays empty if it is not found.
    void ReadInfo(clsPdfDictionary& info) {
        int32_t position = 0;
        if (!ReadStart(position)) return;
        ReadSections(position);
        try {
            if (infoNumber_ != 0) ReadInfoObject(info);
        } catch (const clsException& fault) {
            Report(fault);
        }
    }

private:
    // Reads up to count bytes at an offset and terminates them. Returns how many there were.
    int64_t ReadAt(int64_t offset, int64_t count) {
        const auto read =
            static_cast<int64_t>(ReadSome(file_, offset, buffer_.get(), static_cast<size_t>(count)));
        buffer_[static_cast<size_t>(read)] = 0;
        return read;
    }

    bool ReadStart(int32_t& position) {
        const int64_t tail = std::min(size_, kTailBytes);
        const int64_t read = ReadAt(size_ - tail, tail);
        std::replace(buffer_.get(), buffer_.get() + read, '\0', ' ');
        clsRegExMatchList groups;
        if (!startPattern.Match(clsCHARString(buffer_.get(), read).ToString(0), &groups)) return false;
        position = _wtoi(groups.get(1).text.Text());
        return true;
    }

    // Reads from the newest section to the oldest, up to the first fault.
    void ReadSections(int32_t position) {
        WCValSkipListSet<int32_t> visited;
        for (int sections = 0; sections < kMostSections && objects_.Inserted() < kMostEntries; ++sections) {
            if (position <= 0 || position >= size_) return;
            if (visited.contains(position)) return; // a ring
            if (!visited.insert(position)) throw std::bad_alloc();
            try {
                position = ReadSection(position);
            } catch (const clsException& fault) {
                return Report(fault);
            }
        }
    }

    // Returns the position of the section before; 0 if there is none. The oldest Info object counts.
    int32_t ReadSection(int32_t position) {
        const int64_t read = ReadAt(position, bufferSize_);
        clsPdfPosition text(buffer_.get(), static_cast<size_t>(read));
        clsPdfDictionary trailer;
        PdfXrefSection(text, objects_, trailer);
        int32_t previous = 0;
        PdfNumberOf(trailer, L"Prev", previous);
        PdfNumberOf(trailer, L"Info", infoNumber_);
        return previous;
    }

    // The object ends where the next one begins. The object with the number after it must exist: callers rely
    // on the object with the highest number not being found.
    void ReadInfoObject(clsPdfDictionary& info) {
        uint64_t offset = 0;
        uint64_t offsetAfter = 0;
        if (infoNumber_ == INT32_MAX || !objects_.Find(infoNumber_, offset) ||
            !objects_.Find(infoNumber_ + 1, offsetAfter) || offset > UINT32_MAX)
            return;
        const auto length =
            static_cast<int64_t>(objects_.NextOffset(offset, static_cast<uint64_t>(size_)) - offset);
        if (length < 0 || length > bufferSize_ || ReadAt(static_cast<int64_t>(offset), length) != length)
            return;
        clsPdfPosition text(buffer_.get(), static_cast<size_t>(length));
        PdfReadDictionary("obj", text, info);
    }

    clsDocFile& file_;
    const int64_t size_;
    const int64_t bufferSize_;
    const clsAutoDeleteBytes<char> buffer_;
    clsPdfObjects objects_;
    int32_t infoNumber_ = 0;
};

// A text that is missing becomes the empty text; a date that is missing leaves the time.
void TakeInfo(clsDocu& document, const clsPdfDictionary& info) {
    for (const scNamedProperty& row : kProperties) {
        if (row.text) SetText(document.*row.text, PdfTextOf(info, row.name));
        if (row.time && info.contains(row.name)) document.*row.time = PdfDate(PdfTextOf(info, row.name));
    }
}

} // namespace

int ReadPdf(clsDocu& document, clsDocFile& file) {
    const int64_t size = file.GetSize();
    if (size < 0) return 0;
    clsPdfDictionary info;
    PdfReader(file, size).ReadInfo(info);
    if (!info.isEmpty()) TakeInfo(document, info);
    return 0;
}

} // namespace vxut
