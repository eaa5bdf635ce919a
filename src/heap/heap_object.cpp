#include "heap/heap_object.h"

#include "base/debug.h"
#include "base/line_buffer.h"
#include "base/shielded_read.h"
#include "heap/report.h"

#include <algorithm>
#include <cctype>

namespace vxut {
namespace {

constexpr int32_t kDumpedBytes = 64;
constexpr int32_t kBytesInLine = 8;

// Writes up to 8 bytes as numbers and as characters.
void WriteDumpLine(const uint8_t* data, int32_t count) {
    clsLineBuffer line;
    line.Append(L"  ");
    for (int32_t i = 0; i < kBytesInLine; ++i) {
        if (i < count) {
            line.Append(L"%02x ", data[i]);
        } else {
            line.Append(L"   ");
        }
    }
    line.Append(L" ");
    for (int32_t i = 0; i < kBytesInLine; ++i)
        line.Append(L"%c", i >= count ? ' ' : std::isprint(data[i]) ? data[i] : '.');
    WriteReport(L"%s", line.Text());
}

bool Refuse(const scDebugHeader* block, const wchar_t* reason) {
    const clsReportScope scope(L"%s", reason);
    WriteObjectDump(block);
    return false;
}

} // namespace

uint32_t ReadMagic(const void* object) {
    uint32_t magic = 0;
    const void* const word = AddressAt(object, -static_cast<ptrdiff_t>(sizeof magic));
    return ReadShielded(magic, word) ? magic : 0;
}

bool ReadHeader(scDebugHeader& header, const scDebugHeader* block) {
    return ReadShielded(&header, block, kDebugHeaderBytes) && header.headMagic == kHeadMagic;
}

bool TestObject(const scDebugHeader* block) {
    scDebugHeader header;
    if (!ReadHeader(header, block))
        return Refuse(block, L"Error: Not allocated with UTIL or memory underrun");
    uint32_t fence = 0;
    // An unreadable fence is damage, too: the size in the header has been overwritten.
    if (ReadShielded(fence, FenceOf(block, header.size)) && fence == kFence) return true;
    return Refuse(block, L"Error: Memory overrun, fence value has been changed");
}

void WriteObjectDump(const scDebugHeader* block) {
    scDebugHeader header;
    if (!DebugIsActive() || !ReadHeader(header, block)) return;
    const void* const object = ObjectOf(block);
    WriteReport(L"-Object at %#p, %d(=0x%08x) Bytes", object, header.size, header.size);
    const int32_t end = std::min(header.size, kDumpedBytes);
    for (int32_t start = 0; start < end; start += kBytesInLine) {
        uint8_t data[kBytesInLine];
        const int32_t count = std::min(end - start, kBytesInLine);
        if (!ReadShielded(data, AddressAt(object, start), static_cast<size_t>(count))) break;
        WriteDumpLine(data, count);
    }
    if (header.stackSnapshot && clsStackSnapshot::IsSnapshot(header.stackSnapshot))
        header.stackSnapshot->WriteListing(L"Memory object allocation");
}

} // namespace vxut
