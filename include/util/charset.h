/** @file
 * Charsets of text.
 */
#ifndef VXUT_UTIL_CHARSET_H
#define VXUT_UTIL_CHARSET_H

#include "util/types.h"

/** Gives the GDI charset number (SHIFTJIS_CHARSET, GREEK_CHARSET and so on) of a font that can show a text,
 * judged by the scripts of its characters.
 *
 *  @param text  null or empty gives 0.
 *  @return the charset of the one script that the text is written in besides those of every font. If there
 * are several, the charset of the library's default code page if that is Japanese, Chinese or Korean.
 * Otherwise 0.
 *
 *  Example:
 *  @code
 *      UtilGetLikelyCharsetFromString(L"\x3B1\x3B2"); // 161, GREEK_CHARSET
 *  @endcode
 */
VXUT_API uint32_t UtilGetLikelyCharsetFromString(const wchar_t* text);

#endif
