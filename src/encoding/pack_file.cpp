#include "encoding/pack_file.h"

#include "base/debug.h"
#include "base/owners.h"
#include "encoding/deflate.h"

#include <algorithm>
#include <memory>

namespace vxut {
namespace {

constexpr uInt kPiece = 0x100000;
constexpr int64_t kReserve = 512;

// The two buffers of a stream between files.
struct Buffers {
    clsAutoDeleteBytes<uint8_t> in = std::make_unique_for_overwrite<uint8_t[]>(kPiece);
    clsAutoDeleteBytes<uint8_t> out = std::make_unique_for_overwrite<uint8_t[]>(kPiece);
};

// Replaces kToEnd by the number of bytes behind the source's position. False if that is not known.
bool FindLength(clsFile& source, int64_t& length) {
    if (length != kToEnd) {
        length = std::max<int64_t>(length, 0);
        return true;
    }
    const int64_t size = source.GetSize();
    const int64_t position = source.GetPosition();
    length = std::max<int64_t>(size - position, 0);
    return size >= 0 && position >= 0;
}

// Reads the next piece of what is left. Returns false if the source is shorter.
bool Feed(z_stream& stream, clsFile& source, uint8_t* buffer, int64_t& left) {
    const int64_t piece = std::min<int64_t>(left, kPiece);
    if (source.Read(buffer, piece) != piece) return false;
    left -= piece;
    stream.next_in = buffer;
    stream.avail_in = static_cast<uInt>(piece);
    return true;
}

// Calls step once with an empty output buffer. Returns the number of bytes that it put there.
template <class Step>
int64_t Produce(z_stream& stream, Step step, uint8_t* buffer, int flush, int& status) {
    stream.next_out = buffer;
    stream.avail_out = kPiece;
    status = step(&stream, flush);
    return kPiece - stream.avail_out;
}

int32_t PackPieces(z_stream& stream, clsFile& destination, clsFile& source, uint32_t* crc, int64_t left) {
    const Buffers buffers;
    for (int status = Z_OK; status != Z_STREAM_END;) {
        if (!Feed(stream, source, buffers.in.get(), left)) return kPackFailed;
        if (crc) *crc = crc32(*crc, buffers.in.get(), stream.avail_in);
        do {
            const int64_t produced =
                Produce(stream, deflate, buffers.out.get(), left > 0 ? Z_NO_FLUSH : Z_FINISH, status);
            if (status == Z_STREAM_ERROR || destination.Write(buffers.out.get(), produced) != produced)
                return kPackFailed;
        } while (stream.avail_out == 0 && status != Z_STREAM_END);
    }
    return Z_OK;
}

DWORD FailureOf(const clsFile& file, DWORD otherwise) {
    return file.Failure() != ERROR_SUCCESS ? file.Failure() : otherwise;
}

// A code of inflate as a result. Damage is no failure of the work.
scUnpackResult ResultOf(int status, int64_t bytes) {
    return {status == Z_NEED_DICT ? kPackFailed : status,
            static_cast<DWORD>(status == Z_MEM_ERROR ? ERROR_NOT_ENOUGH_MEMORY : ERROR_SUCCESS), bytes};
}

// Whether inflate can go on, with more space for its output or with more input.
bool CanGoOn(int status) { return status == Z_OK || status == Z_BUF_ERROR; }

scUnpackResult UnpackPieces(z_stream& stream, clsFile& destination, clsFile& source, int64_t left,
                            int64_t maximum) {
    const Buffers buffers;
    int64_t bytes = 0;
    int status = Z_OK;
    while (left > 0 && CanGoOn(status)) {
        if (!Feed(stream, source, buffers.in.get(), left))
            return {kPackFailed, FailureOf(source, ERROR_HANDLE_EOF), bytes};
        do {
            const int64_t produced =
                Produce(stream, inflate, buffers.out.get(), left > 0 ? Z_NO_FLUSH : Z_FINISH, status);
            if (produced > maximum - bytes) return {kPackFailed, ERROR_FILE_TOO_LARGE, bytes};
            const int64_t written = destination.Write(buffers.out.get(), produced);
            bytes += written;
            if (written != produced)
                return {kUnpackShortWrite, FailureOf(destination, ERROR_WRITE_FAULT), bytes};
        } while (stream.avail_out == 0 && CanGoOn(status));
    }
    return ResultOf(status, bytes);
}

// Only sets the size ahead, so that the file system allocates once.
bool Reserve(clsFile& destination, int64_t length) {
    const int64_t size = destination.GetSize();
    return size >= 0 && size <= INT64_MAX - kReserve - length && destination.Extend(size + kReserve + length);
}

} // namespace

int32_t UtilPackFile(clsFile& destination, clsFile& source, uint32_t mode, uint32_t* crc, int64_t length) {
    if (crc) *crc = 0;
    if (!FindLength(source, length)) return kPackFailed;
    clsDeflateStream deflater(mode, kRawDeflate);
    int32_t result = deflater.InitResult();
    if (result == Z_OK) result = PackPieces(deflater.Stream(), destination, source, crc, length);
    return destination.SetEOF() || result != Z_OK ? result : kPackFailed;
}

scUnpackResult UnpackFile(clsFile& destination, clsFile& source, int64_t length, int64_t maximum) {
    if (!FindLength(source, length)) return {kPackFailed, FailureOf(source, ERROR_READ_FAULT), 0};
    clsInflateStream inflater(kRawDeflate);
    if (inflater.InitResult() != Z_OK) {
        DebugWrite(L"ERR: ZLIB init error '%d'", inflater.InitResult());
        return {inflater.InitResult(), ERROR_NOT_ENOUGH_MEMORY, 0};
    }
    scUnpackResult result = {kUnpackShortWrite, ERROR_SUCCESS, 0};
    if (Reserve(destination, length))
        result = UnpackPieces(inflater.Stream(), destination, source, length, maximum);
    else
        result.error = FailureOf(destination, ERROR_DISK_FULL);
    if (!destination.SetEOF() && result.error == ERROR_SUCCESS)
        return {kUnpackShortWrite, FailureOf(destination, ERROR_WRITE_FAULT), result.bytes};
    return result;
}

int32_t UtilUnpackFile(clsFile& destination, clsFile& source, uint32_t, int64_t length) {
    return UnpackFile(destination, source, length, INT64_MAX).code;
}

} // namespace vxut
