/** @file
 * Parsers of value texts that the caller holds.
 *
 * Each stores the value in out, or the default if the text is null or is no such value. A null out, or a null
 * pointer as default, is not written or read. They are stricter than the readers of prof/typed.h.
 */
#ifndef VXUT_PROF_PARSE_H
#define VXUT_PROF_PARSE_H

#include "prof/types.h"

/** Parses TRUE if the text begins with an upper-case "T" or "Y", or is empty; else FALSE. The default counts
 * for null. */
VXUT_API void ProfLPSTRtoBOOLW(const wchar_t* text, int* out, int defaultValue);
VXUT_API void ProfLPSTRtoBOOLA(const char* text, int* out, int defaultValue);

/** Parses a decimal number of 32 bits; hexadecimal digits behind "x" are not understood. */
VXUT_API void ProfLPSTRtoINTW(const wchar_t* text, int32_t* out, int32_t defaultValue);
VXUT_API void ProfLPSTRtoINTA(const char* text, int32_t* out, int32_t defaultValue);

/** Parses a decimal number of 64 bits; hexadecimal digits behind "x" are not understood. */
VXUT_API void ProfLPSTRtoINT64W(const wchar_t* text, int64_t* out, int64_t defaultValue);
VXUT_API void ProfLPSTRtoINT64A(const char* text, int64_t* out, int64_t defaultValue);

/** Parses "(left,top,right,bottom)". */
VXUT_API void ProfLPSTRtoRECTW(const wchar_t* text, RECT* out, const RECT* defaultValue);
VXUT_API void ProfLPSTRtoRECTA(const char* text, RECT* out, const RECT* defaultValue);

/** Parses "(red,green,blue)", or the raw value in hexadecimal digits behind "x". */
VXUT_API void ProfLPSTRtoCOLORREFW(const wchar_t* text, COLORREF* out, COLORREF defaultValue);
VXUT_API void ProfLPSTRtoCOLORREFA(const char* text, COLORREF* out, COLORREF defaultValue);

#endif
