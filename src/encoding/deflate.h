// Streams of zlib with the settings that the formats of the library use.
#pragma once

#define ZLIB_CONST // input is const
#include <zlib.h>

#include <cstdint>

namespace vxut {

constexpr int kZlibFormat = 15; // window bits
constexpr int kRawDeflate = -15;

// A row of the table by which formats name their settings.
enum DeflateMode : uint32_t {
    kDeflateFast = 1,
    kDeflateBest = 3,
    kDeflateBlocks = 4,   // blocks of the text encoding
    kDeflateProfiles = 5, // packed profiles
    kDeflateFastFiltered = 6,
    kDeflateFastSmall = 7,
};

struct scDeflateMode {
    int level;
    int memoryLevel;
    int strategy;
};

// The settings of a mode; those of zlib for a number that is none.
scDeflateMode SettingsOf(uint32_t mode) noexcept;

// A zlib stream that is ended with the object. Its allocations are zlib's own.
class clsDeflateStream {
public:
    clsDeflateStream(uint32_t mode, int windowBits) noexcept;
    ~clsDeflateStream() { deflateEnd(&stream_); }
    clsDeflateStream(const clsDeflateStream&) = delete;
    clsDeflateStream& operator=(const clsDeflateStream&) = delete;

    int InitResult() const noexcept { return initResult_; } // Z_OK, or why there is no stream
    z_stream& Stream() noexcept { return stream_; }

private:
    z_stream stream_{};
    const int initResult_;
};

class clsInflateStream {
public:
    explicit clsInflateStream(int windowBits) noexcept;
    ~clsInflateStream() { inflateEnd(&stream_); }
    clsInflateStream(const clsInflateStream&) = delete;
    clsInflateStream& operator=(const clsInflateStream&) = delete;

    int InitResult() const noexcept { return initResult_; } // Z_OK, or why there is no stream
    z_stream& Stream() noexcept { return stream_; }

private:
    z_stream stream_{};
    const int initResult_;
};

} // namespace vxut
