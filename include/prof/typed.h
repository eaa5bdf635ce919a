/** @file
 * Typed values of a profile. Every value is stored as text; these functions write and parse it.
 *
 * All take a path as `name`. `ProfAppend...` adds an item at the end of its list, even beside one of the same
 * name; a null name is an empty one. `ProfSet...` replaces the value of the first item of the name, or adds
 * one; a null name does nothing. A null pointer as value does nothing.
 *
 * `ProfGet...` gives PROF_OK; PROF_ERR_NOT_FOUND if the job is null, the item is missing or its value empty,
 * and out then gets the default; or PROF_ERR_VALUE if the text is no such value, and out then stays unless a
 * description says otherwise. Text beyond 199 units (63 for 64-bit numbers) is not looked at. A null out is
 * allowed; a null pointer as default leaves out alone.
 */
#ifndef VXUT_PROF_TYPED_H
#define VXUT_PROF_TYPED_H

#include "prof/codes.h"
#include "prof/types.h"

/** Adds an item with a boolean, "TRUE" or "FALSE". */
VXUT_API void ProfAppendBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value);
VXUT_API void ProfAppendBoolA(HPROF job, HPROFLIST list, const char* name, int value);

/** Replaces or adds a boolean, "TRUE" or "FALSE". */
VXUT_API void ProfSetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value);
VXUT_API void ProfSetBoolA(HPROF job, HPROFLIST list, const char* name, int value);

/** Reads a boolean, "TRUE" or "FALSE". TRUE if the text begins with an upper-case "T" or "Y". */
VXUT_API int32_t ProfGetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int* out, int defaultValue);
VXUT_API int32_t ProfGetBoolA(HPROF job, HPROFLIST list, const char* name, int* out, int defaultValue);

/** Adds an item with a number with six decimals, in the locale of the run-time library. */
VXUT_API void ProfAppendDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value);
VXUT_API void ProfAppendDoubleA(HPROF job, HPROFLIST list, const char* name, double value);

/** Replaces or adds a number with six decimals, in the locale of the run-time library. */
VXUT_API void ProfSetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value);
VXUT_API void ProfSetDoubleA(HPROF job, HPROFLIST list, const char* name, double value);

/** Reads a number with six decimals, in the locale of the run-time library. Text that is no number is 0. */
VXUT_API int32_t ProfGetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double* out,
                                double defaultValue);
VXUT_API int32_t ProfGetDoubleA(HPROF job, HPROFLIST list, const char* name, double* out,
                                double defaultValue);

/** Adds an item with a decimal number. */
VXUT_API void ProfAppendIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfAppendIntA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Replaces or adds a decimal number. */
VXUT_API void ProfSetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfSetIntA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Reads a number of 32 bits. Decimal digits, or hexadecimal ones behind "x". */
VXUT_API int32_t ProfGetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t* out,
                             int32_t defaultValue);
VXUT_API int32_t ProfGetIntA(HPROF job, HPROFLIST list, const char* name, int32_t* out, int32_t defaultValue);

/** Adds an item with "x" and hexadecimal digits: eight upper-case ones when appended, lower-case ones without
 * leading zeros when set. */
VXUT_API void ProfAppendIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfAppendIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Replaces or adds "x" and hexadecimal digits: eight upper-case ones when appended, lower-case ones without
 * leading zeros when set. */
VXUT_API void ProfSetIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfSetIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Adds an item with an unsigned decimal number of 64 bits. */
VXUT_API void ProfAppendInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfAppendInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Replaces or adds an unsigned decimal number of 64 bits. */
VXUT_API void ProfSetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfSetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Reads a number of 64 bits. Decimal digits, or hexadecimal ones behind "x". */
VXUT_API int32_t ProfGetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t* out,
                               int64_t defaultValue);
VXUT_API int32_t ProfGetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t* out,
                               int64_t defaultValue);

/** Adds an item with "x" and hexadecimal digits of 64 bits: upper-case ones when appended, lower-case ones
 * when set. */
VXUT_API void ProfAppendInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfAppendInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Replaces or adds "x" and hexadecimal digits of 64 bits: upper-case ones when appended, lower-case ones
 * when set. */
VXUT_API void ProfSetInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfSetInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Adds an item with "(x,y)". */
VXUT_API void ProfAppendPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value);
VXUT_API void ProfAppendPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value);

/** Replaces or adds "(x,y)". */
VXUT_API void ProfSetPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value);
VXUT_API void ProfSetPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value);

/** Reads "(x,y)". Out holds what could be parsed if the result is PROF_ERR_VALUE. */
VXUT_API int32_t ProfGetPointW(HPROF job, HPROFLIST list, const wchar_t* name, POINT* out,
                               const POINT* defaultValue);
VXUT_API int32_t ProfGetPointA(HPROF job, HPROFLIST list, const char* name, POINT* out,
                               const POINT* defaultValue);

/** Adds an item with "(left,top,right,bottom)". */
VXUT_API void ProfAppendRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfAppendRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Replaces or adds "(left,top,right,bottom)". */
VXUT_API void ProfSetRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfSetRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Reads "(left,top,right,bottom)". Out holds what could be parsed if the result is PROF_ERR_VALUE. */
VXUT_API int32_t ProfGetRectW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                              const RECT* defaultValue);
VXUT_API int32_t ProfGetRectA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                              const RECT* defaultValue);

/** Adds an item with "(left,top,width,height)". */
VXUT_API void ProfAppendRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfAppendRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Replaces or adds "(left,top,width,height)". */
VXUT_API void ProfSetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfSetRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Reads "(left,top,width,height)". As ProfGetRectW(), then width and height are made right and bottom. */
VXUT_API int32_t ProfGetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                                  const RECT* defaultValue);
VXUT_API int32_t ProfGetRectLTWHA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                                  const RECT* defaultValue);

/** Adds an item with "(red,green,blue)". */
VXUT_API void ProfAppendColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value);
VXUT_API void ProfAppendColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value);

/** Replaces or adds "(red,green,blue)". */
VXUT_API void ProfSetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value);
VXUT_API void ProfSetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value);

/** Reads "(red,green,blue)". The triple, or the raw value in hexadecimal digits behind "x". */
VXUT_API int32_t ProfGetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF* out,
                                  COLORREF defaultValue);
VXUT_API int32_t ProfGetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF* out,
                                  COLORREF defaultValue);

#endif
