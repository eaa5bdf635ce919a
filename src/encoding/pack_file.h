// Raw deflate and inflate from file to file.
#pragma once

#include "files/file.h"

#include <cstdint>

namespace vxut {

constexpr int64_t kToEnd = -1; // as a length: everything from the source's position on
constexpr int32_t kPackFailed = -3;
constexpr int32_t kUnpackShortWrite = -5; // zlib's code for a truncated stream, too

// Compresses length bytes of the source, from its position, to the destination's position and ends the
// destination there, also after a failure. A length of 0 makes the two bytes of an empty stream. crc, if not
// null, receives the CRC-32 of what was read. mode is a row of the table in deflate.h. Returns 0, a code of
// zlib's if the stream could not be set up, or kPackFailed if source or destination failed: their Failure()
// tells why, unless the source was shorter than length. Throws std::bad_alloc. For the thread of both files.
int32_t UtilPackFile(clsFile& destination, clsFile& source, uint32_t mode, uint32_t* crc, int64_t length);

struct scUnpackResult {
    int32_t code;  // as of UtilUnpackFile()
    DWORD error;   // why the work could not be done; ERROR_SUCCESS if it was done, also on damaged input
    int64_t bytes; // that were written
};

// Expands a stream of length bytes from the source's position to the destination's position and ends the
// destination there. What comes before damage is written. Ends with ERROR_FILE_TOO_LARGE as soon as the
// stream expands to more than maximum bytes, with up to so many of them written. Throws std::bad_alloc.
scUnpackResult UnpackFile(clsFile& destination, clsFile& source, int64_t length, int64_t maximum);

// The same without a maximum. Returns 1 at the end of the stream; 0 for a length of 0; a negative code of
// zlib's for a damaged or truncated stream; -3 if the source is too short; -5 if the destination could not be
// written. The third argument is not used.
int32_t UtilUnpackFile(clsFile& destination, clsFile& source, uint32_t unused, int64_t length);

} // namespace vxut
