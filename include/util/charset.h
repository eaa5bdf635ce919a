/** @file
 * Charsets of text. The functions may be called from any thread.
 */
#ifndef VXUT_UTIL_CHARSET_H
#define VXUT_UTIL_CHARSET_H

#include "util/types.h"

/** Returns the GDI charset number (SHIFTJIS_CHARSET, GREEK_CHARSET and so on) of a font that can display a
 * text, judged by the scripts of its characters. Scripts that every font has, such as Latin, do not count.
 *
 *  @param text  may be null.
 *  @return the charset of the script, if the text has one. If it has several, or ideographs, the charset of
 * the library's default code page if that is Japanese, Chinese or Korean. Otherwise 0, and 0 for a null or
 * empty text.
 *
 *  Example:
 *  @code
 *      UtilGetLikelyCharsetFromString(L"\x3B1\x3B2"); // 161, GREEK_CHARSET
 *  @endcode
 */
VXUT_API uint32_t UtilGetLikelyCharsetFromString(const wchar_t* text);

#endif
