// JPEG images: the data of the camera.
#include "base/byte_cursor.h"
#include "docinfo/readers/properties.h"
#include "docinfo/readers/readers.h"

namespace vxut {
namespace {

constexpr uint16_t kStart = 0xFFD8;
constexpr uint16_t kEnd = 0xFFD9;
constexpr uint16_t kApplication1 = 0xFFE1;
constexpr uint32_t kExif = 0x45786966;
constexpr int64_t kExifBytes = 6;
constexpr size_t kLengthBytes = 2;
// The data of a camera is in the first segments of an image.
constexpr int kMostSegments = 10000;

// Finds the content of the first application segment of that kind. Returns false if there is none before the
// image.
bool FindSegment(clsDocFile& file, int64_t& offset) {
    offset = 0;
    for (int i = 0; i < kMostSegments; ++i) {
        uint8_t bytes[4];
        clsByteCursor cursor(bytes, ReadSome(file, offset, bytes, sizeof bytes));
        uint16_t marker = 0;
        uint16_t length = 0;
        if (!cursor.ReadBig(marker) || marker == kEnd || marker >> 8 != 0xFF) return false;
        offset += sizeof marker;
        if (marker == kStart) continue;
        if (!cursor.ReadBig(length)) return false;
        if (marker == kApplication1) {
            offset += kLengthBytes;
            return true;
        }
        offset += length;
    }
    return false;
}

} // namespace

int ReadJpeg(clsDocu& document, clsDocFile& file) {
    int64_t offset = 0;
    uint8_t bytes[sizeof kExif];
    uint32_t kind = 0;
    if (!FindSegment(file, offset) || !ReadAll(file, offset, bytes, sizeof bytes)) return -1;
    if (!clsByteCursor(bytes).PeekBig(kind) || kind != kExif) return -1;
    const int64_t base = offset + kExifBytes;
    return base <= UINT32_MAX ? ReadTiff(document, file, static_cast<uint32_t>(base)) : -1;
}

} // namespace vxut
