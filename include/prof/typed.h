/** @file
 * Typed values of a profile. Every value is stored as text; these functions format and parse it.
 *
 * Conventions of these functions:
 *  1. `job` is the job. Null does nothing, except that `ProfGet...` stores the default.
 *  2. `list` is where a relative path starts; null for the root.
 *  3. `name` is the path of the item. `ProfAppend...` adds an item at the end of its list, even if the list
 *     contains an item of that name; null is an empty name. `ProfSet...` replaces the value of the first
 *     item of the name, or adds one if there is none; null does nothing. Missing lists are created.
 *  4. `value` is passed as it is, or by pointer for records; a null pointer does nothing.
 *  5. `ProfGet...` stores the parsed value in `out` and returns PROF_OK. If the job is null, or the item is
 *     missing or its value is empty, it stores the default and returns PROF_ERR_NOT_FOUND; with a null
 *     pointer as default `out` is left unchanged. If the text is not a value of the type, it returns
 *     PROF_ERR_VALUE and leaves `out` unchanged unless the description says otherwise. `out` may be null.
 *  6. Getters parse at most 199 units of a value, those of 64-bit numbers at most 63.
 *
 *  Example:
 *  @code
 *      RECT place = {0, 0, 640, 480};
 *      ProfGetRectW(job, NULL, L"Window/Place", &place, &place);
 *      ProfSetRectW(job, NULL, L"Window/Place", &place);
 *  @endcode
 */
#ifndef VXUT_PROF_TYPED_H
#define VXUT_PROF_TYPED_H

#include "prof/codes.h"
#include "prof/types.h"

/** Adds an item with a boolean as "TRUE" or "FALSE". */
VXUT_API void ProfAppendBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value);
VXUT_API void ProfAppendBoolA(HPROF job, HPROFLIST list, const char* name, int value);

/** Stores a boolean as "TRUE" or "FALSE". */
VXUT_API void ProfSetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int value);
VXUT_API void ProfSetBoolA(HPROF job, HPROFLIST list, const char* name, int value);

/** Reads a boolean: 1 if the text begins with an upper-case "T" or "Y", else 0. Every text is a value. */
VXUT_API int32_t ProfGetBoolW(HPROF job, HPROFLIST list, const wchar_t* name, int* out, int defaultValue);
VXUT_API int32_t ProfGetBoolA(HPROF job, HPROFLIST list, const char* name, int* out, int defaultValue);

/** Adds an item with a number with six decimals, in the locale of the C run-time library. */
VXUT_API void ProfAppendDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value);
VXUT_API void ProfAppendDoubleA(HPROF job, HPROFLIST list, const char* name, double value);

/** Stores a number with six decimals, in the locale of the C run-time library. */
VXUT_API void ProfSetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double value);
VXUT_API void ProfSetDoubleA(HPROF job, HPROFLIST list, const char* name, double value);

/** Reads a number, in the locale of the C run-time library. Text that is not a number is 0. */
VXUT_API int32_t ProfGetDoubleW(HPROF job, HPROFLIST list, const wchar_t* name, double* out,
                                double defaultValue);
VXUT_API int32_t ProfGetDoubleA(HPROF job, HPROFLIST list, const char* name, double* out,
                                double defaultValue);

/** Adds an item with a decimal number. */
VXUT_API void ProfAppendIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfAppendIntA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Stores a decimal number. */
VXUT_API void ProfSetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfSetIntA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Reads a number of 32 bits: decimal digits, or hexadecimal digits after "x". Larger numbers wrap. For a
 *  text that ends before its number, such as "x", the result is PROF_OK and out is left unchanged. */
VXUT_API int32_t ProfGetIntW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t* out,
                             int32_t defaultValue);
VXUT_API int32_t ProfGetIntA(HPROF job, HPROFLIST list, const char* name, int32_t* out, int32_t defaultValue);

/** Adds an item with a number of 32 bits as "x" and eight upper-case hexadecimal digits. */
VXUT_API void ProfAppendIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfAppendIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Stores a number of 32 bits as "x" and lower-case hexadecimal digits without leading zeros. */
VXUT_API void ProfSetIntHexW(HPROF job, HPROFLIST list, const wchar_t* name, int32_t value);
VXUT_API void ProfSetIntHexA(HPROF job, HPROFLIST list, const char* name, int32_t value);

/** Adds an item with an unsigned decimal number of 64 bits. */
VXUT_API void ProfAppendInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfAppendInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Stores an unsigned decimal number of 64 bits. */
VXUT_API void ProfSetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfSetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Reads a number of 64 bits: decimal digits, or hexadecimal digits after "x". Larger numbers wrap. For a
 *  text that ends before its number, such as "x", the result is PROF_OK and out is left unchanged. */
VXUT_API int32_t ProfGetInt64W(HPROF job, HPROFLIST list, const wchar_t* name, int64_t* out,
                               int64_t defaultValue);
VXUT_API int32_t ProfGetInt64A(HPROF job, HPROFLIST list, const char* name, int64_t* out,
                               int64_t defaultValue);

/** Adds an item with a number of 64 bits as "x" and upper-case hexadecimal digits without leading zeros. */
VXUT_API void ProfAppendInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfAppendInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Stores a number of 64 bits as "x" and lower-case hexadecimal digits without leading zeros. */
VXUT_API void ProfSetInt64HexW(HPROF job, HPROFLIST list, const wchar_t* name, int64_t value);
VXUT_API void ProfSetInt64HexA(HPROF job, HPROFLIST list, const char* name, int64_t value);

/** Adds an item with a point as "(x,y)". */
VXUT_API void ProfAppendPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value);
VXUT_API void ProfAppendPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value);

/** Stores a point as "(x,y)". */
VXUT_API void ProfSetPointW(HPROF job, HPROFLIST list, const wchar_t* name, const POINT* value);
VXUT_API void ProfSetPointA(HPROF job, HPROFLIST list, const char* name, const POINT* value);

/** Reads "(x,y)". With PROF_ERR_VALUE, out holds the fields parsed before the fault. */
VXUT_API int32_t ProfGetPointW(HPROF job, HPROFLIST list, const wchar_t* name, POINT* out,
                               const POINT* defaultValue);
VXUT_API int32_t ProfGetPointA(HPROF job, HPROFLIST list, const char* name, POINT* out,
                               const POINT* defaultValue);

/** Adds an item with a rectangle as "(left,top,right,bottom)". */
VXUT_API void ProfAppendRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfAppendRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Stores a rectangle as "(left,top,right,bottom)". */
VXUT_API void ProfSetRectW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfSetRectA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Reads "(left,top,right,bottom)". With PROF_ERR_VALUE, out holds the fields parsed before the fault. */
VXUT_API int32_t ProfGetRectW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                              const RECT* defaultValue);
VXUT_API int32_t ProfGetRectA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                              const RECT* defaultValue);

/** Adds an item with a rectangle as "(left,top,width,height)". */
VXUT_API void ProfAppendRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfAppendRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Stores a rectangle as "(left,top,width,height)". */
VXUT_API void ProfSetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, const RECT* value);
VXUT_API void ProfSetRectLTWHA(HPROF job, HPROFLIST list, const char* name, const RECT* value);

/** Reads "(left,top,width,height)". With PROF_ERR_VALUE, out holds the fields parsed before the fault;
 *  otherwise right and bottom are computed. */
VXUT_API int32_t ProfGetRectLTWHW(HPROF job, HPROFLIST list, const wchar_t* name, RECT* out,
                                  const RECT* defaultValue);
VXUT_API int32_t ProfGetRectLTWHA(HPROF job, HPROFLIST list, const char* name, RECT* out,
                                  const RECT* defaultValue);

/** Adds an item with a colour as "(red,green,blue)". */
VXUT_API void ProfAppendColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value);
VXUT_API void ProfAppendColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value);

/** Stores a colour as "(red,green,blue)". */
VXUT_API void ProfSetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF value);
VXUT_API void ProfSetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF value);

/** Reads a colour: "(red,green,blue)", or hexadecimal digits after "x" as the raw value. */
VXUT_API int32_t ProfGetColorrefW(HPROF job, HPROFLIST list, const wchar_t* name, COLORREF* out,
                                  COLORREF defaultValue);
VXUT_API int32_t ProfGetColorrefA(HPROF job, HPROFLIST list, const char* name, COLORREF* out,
                                  COLORREF defaultValue);

#endif
