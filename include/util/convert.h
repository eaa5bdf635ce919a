/** @file
 * Binary data as text: Base64, optionally of a compressed block.
 *
 * The text is one line: "@2@" and Base64 for data that was compressed, Base64 alone for other data, the empty
 * text for no data. Texts that begin with "@1@", which older versions wrote, can be read. Data may have up to
 * 2^32 - 1 bytes. The functions may be called from any thread; a stream serves one call at a time.
 *
 * Functions to text share their last arguments and results. buffer receives the text with its terminator;
 * capacity is its size in characters. With a null buffer or a capacity of 0 nothing is written and the result
 * is the number of characters that the text needs, terminator included. Otherwise the text is cut to
 * capacity - 1 characters and terminated, and the result is 0, or UTIL_CONVERT_ERR_SMALL if it was cut. On
 * UTIL_CONVERT_ERR_FAILED the buffer is unchanged and GetLastError() returns the reason.
 *
 *  Example:
 *  @code
 *      const int64_t size = UtilConvertBLOBToString(data, dataSize, NULL, 0, 1);
 *      wchar_t* text = size > 0 ? malloc(size * sizeof(wchar_t)) : NULL;
 *      if (text && UtilConvertBLOBToString(data, dataSize, text, size, 1) == 0) Store(text);
 *      free(text);
 *  @endcode
 */
#ifndef VXUT_UTIL_CONVERT_H
#define VXUT_UTIL_CONVERT_H

#include <objbase.h>
#include <windows.h>
/* After windows.h, which it needs: */
#include "util/types.h"

/** Result codes. All failures are negative. */
enum {
    UTIL_CONVERT_ERR_CAPACITY = -1, /**< the buffer for bytes is smaller than the data; it is unchanged */
    UTIL_CONVERT_ERR_ARGUMENT = -2, /**< a null argument, or no stream can be made on the memory handle */
    UTIL_CONVERT_ERR_FAILED = -3, /**< reading, writing or an allocation failed, or there is too much data */
    UTIL_CONVERT_ERR_SMALL = -44  /**< the buffer for text is too small: the text was cut */
};

/** Converts bytes to text.
 *
 *  @param bytes     the data; null only if size is 0.
 *  @param size      in bytes. 0 makes the empty text.
 *  @param buffer    receives the text; may be null.
 *  @param capacity  of buffer, in characters.
 *  @param compress  other than 0: compress the data first.
 *  @return see above.
 */
VXUT_API int64_t UtilConvertBLOBToString(const void* bytes, size_t size, wchar_t* buffer, size_t capacity,
                                         int compress);

/** Converts a stream, from its start to its end, to text.
 *
 *  @param stream    stays the caller's. Its position afterwards is not specified.
 *  @param buffer    receives the text; may be null.
 *  @param capacity  of buffer, in characters.
 *  @param compress  other than 0: compress the data first.
 *  @return see above.
 */
VXUT_API int64_t UtilConvertStreamToString(IStream* stream, wchar_t* buffer, size_t capacity, int compress);

/** Converts a global memory block to text: all of GlobalSize() bytes.
 *
 *  @param memory    a movable block, which stays the caller's.
 *  @param buffer    receives the text; may be null.
 *  @param capacity  of buffer, in characters.
 *  @param compress  other than 0: compress the data first.
 *  @return see above; UTIL_CONVERT_ERR_ARGUMENT also for a handle that is not one.
 */
VXUT_API int64_t UtilConvertHGLOBALToString(HGLOBAL memory, wchar_t* buffer, size_t capacity, int compress);

/** Converts text to bytes.
 *
 *  Characters outside the Base64 alphabet are skipped. White space between groups of four symbols does no
 *  harm; inside a group it may add bytes to the result. A compressed block that is damaged yields no bytes.
 *
 *  @param text      the text.
 *  @param buffer    receives the bytes; null only asks for their number.
 *  @param capacity  of buffer, in bytes.
 *  @return the number of bytes; UTIL_CONVERT_ERR_CAPACITY, UTIL_CONVERT_ERR_ARGUMENT, or
 * UTIL_CONVERT_ERR_FAILED if memory is short.
 */
VXUT_API int64_t UtilConvertStringToBLOB(const wchar_t* text, void* buffer, size_t capacity);

/** Replaces the content of a stream by the bytes of a text, as UtilConvertStringToBLOB() decodes it, and
 * moves the stream to its start.
 *
 *  @param text    the text. The empty text empties the stream.
 *  @param stream  stays the caller's.
 *  @return 0; UTIL_CONVERT_ERR_ARGUMENT; UTIL_CONVERT_ERR_FAILED if the stream could not be written, with the
 * reason in GetLastError(). The stream has its old content then, provided that it can be read and still be
 * written; or the new content, if only the move to the start failed.
 */
VXUT_API int64_t UtilConvertStringToStream(const wchar_t* text, IStream* stream);

/** Converts text to a new block of global memory.
 *
 *  The block may be larger than the data: GlobalSize() rounds up.
 *
 *  @param text    the text.
 *  @param memory  receives the movable block, which the caller frees with GlobalFree(). A block that is
 * already there is freed; null says that there is none.
 *  @return 0; UTIL_CONVERT_ERR_ARGUMENT; UTIL_CONVERT_ERR_FAILED, with the old block still there.
 */
VXUT_API int64_t UtilConvertStringToHGLOBAL(const wchar_t* text, HGLOBAL* memory);

#endif
