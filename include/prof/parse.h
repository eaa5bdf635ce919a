/** @file
 * Parsers of value texts that the caller holds.
 *
 * Conventions of these functions:
 *  1. `text` is the text to parse; null is no value.
 *  2. `out` receives the value, or the default if the text is not a value of the type. A null `out` does
 *     nothing.
 *  3. `defaultValue` is passed as it is, or by pointer for records; with a null pointer `out` is left
 *     unchanged.
 *  4. They accept less than the getters of prof/typed.h, as each description says.
 */
#ifndef VXUT_PROF_PARSE_H
#define VXUT_PROF_PARSE_H

#include "prof/types.h"

/** Parses a boolean: 1 if the text begins with an upper-case "T" or "Y" or is empty, else 0. Only null
 *  selects the default. */
VXUT_API void ProfLPSTRtoBOOLW(const wchar_t* text, int* out, int defaultValue);
VXUT_API void ProfLPSTRtoBOOLA(const char* text, int* out, int defaultValue);

/** Parses a decimal number of 32 bits. Larger numbers wrap; hexadecimal digits after "x" are not accepted. */
VXUT_API void ProfLPSTRtoINTW(const wchar_t* text, int32_t* out, int32_t defaultValue);
VXUT_API void ProfLPSTRtoINTA(const char* text, int32_t* out, int32_t defaultValue);

/** Parses a decimal number of 64 bits. Larger numbers wrap; hexadecimal digits after "x" are not accepted. */
VXUT_API void ProfLPSTRtoINT64W(const wchar_t* text, int64_t* out, int64_t defaultValue);
VXUT_API void ProfLPSTRtoINT64A(const char* text, int64_t* out, int64_t defaultValue);

/** Parses "(left,top,right,bottom)". */
VXUT_API void ProfLPSTRtoRECTW(const wchar_t* text, RECT* out, const RECT* defaultValue);
VXUT_API void ProfLPSTRtoRECTA(const char* text, RECT* out, const RECT* defaultValue);

/** Parses "(red,green,blue)", or hexadecimal digits after "x" as the raw value. */
VXUT_API void ProfLPSTRtoCOLORREFW(const wchar_t* text, COLORREF* out, COLORREF defaultValue);
VXUT_API void ProfLPSTRtoCOLORREFA(const char* text, COLORREF* out, COLORREF defaultValue);

#endif
