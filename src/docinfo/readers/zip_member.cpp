#include "docinfo/readers/zip_member.h"

#include "base/debug.h"
#include "docinfo/readers/properties.h"
#include "encoding/deflate.h"
#include "encoding/zip_format.h"

#include <algorithm>
#include <new>

namespace vxut {
namespace {

constexpr uint16_t kHasDescriptor = 0x08;
// Another bit than the one that says so: callers rely on the descriptor being looked for only with this one.
constexpr uint16_t kLooksForDescriptor = 0x80;
constexpr size_t kFirstOutputBytes = 4096;

// Inflates a raw stream. Empty if it is damaged, cut short or expands to too much.
std::vector<uint8_t> Inflate(std::vector<uint8_t>& packed, size_t expected) {
    clsInflateStream inflater(kRawDeflate);
    if (inflater.InitResult() != Z_OK) throw std::bad_alloc();
    z_stream& stream = inflater.Stream();
    stream.next_in = packed.data();
    stream.avail_in = static_cast<uInt>(packed.size());
    std::vector<uint8_t> bytes(std::clamp(expected, kFirstOutputBytes, kMostMemberBytes));
    for (int result = Z_OK;;) {
        stream.next_out = bytes.data() + stream.total_out;
        stream.avail_out = static_cast<uInt>(bytes.size() - stream.total_out);
        result = inflate(&stream, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR) throw std::bad_alloc();
        if (result == Z_STREAM_END) break;
        const bool isFull = stream.avail_out == 0 && (result == Z_OK || result == Z_BUF_ERROR);
        if (!isFull || bytes.size() == kMostMemberBytes) return {};
        bytes.resize(std::min(2 * bytes.size(), kMostMemberBytes));
    }
    bytes.resize(stream.total_out);
    return bytes;
}

std::vector<uint8_t> ContentOf(clsDocFile& file, const scZipMemberHeader& header) {
    std::vector<uint8_t> bytes;
    if (header.sizes.compressed == 0 || header.sizes.uncompressed == 0) return bytes;
    if (header.method != kZipStored && header.method != kZipDeflated) {
        DebugWrite(L"unknown compression method %d", header.method);
        return bytes;
    }
    if (header.sizes.compressed > kMostMemberBytes ||
        !ReadAll(file, header.dataOffset, bytes, header.sizes.compressed)) {
        return {};
    }
    return header.method == kZipStored ? bytes : Inflate(bytes, header.sizes.uncompressed);
}

void LookForDescriptor(clsDocFile& file, int64_t fileSize, const scZipMemberHeader& header) {
    const int64_t offset = header.dataOffset + header.sizes.compressed;
    DebugWrite(L"file finalizer: %x %x", static_cast<uint32_t>(offset), static_cast<uint32_t>(fileSize));
    if (!ReadZipDescriptor(file, offset)) DebugWrite(L"bad finalizer!");
}

} // namespace

std::vector<uint8_t> ZipMemberText(clsDocFile& file, const scZipDirectoryEntry& entry) {
    const int64_t fileSize = file.GetSize();
    scZipMemberHeader header;
    if (!ReadZipMemberHeader(file, fileSize, entry.localOffset, header)) {
        DebugWrite(L"ERR: bad ZIP FILE ENTRY");
        return {};
    }
    if (header.flags & kHasDescriptor) header.sizes = entry.sizes;
    std::vector<uint8_t> text = ContentOf(file, header);
    if (entry.flags & kLooksForDescriptor) LookForDescriptor(file, fileSize, header);
    text.erase(std::ranges::find(text, uint8_t{0}), text.end());
    return text;
}

} // namespace vxut
