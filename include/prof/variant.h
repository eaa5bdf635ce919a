/** @file
 * Values of automation's type VARIANT in a profile: "var://" and the text form of the type and the bytes.
 *
 * These types keep their values: VT_I1, VT_UI1, VT_I2, VT_BOOL, VT_UI2, VT_I4, VT_R4, VT_ERROR, VT_UI4,
 * VT_INT, VT_UINT, VT_R8, VT_CY, VT_DATE, VT_I8, VT_UI8, VT_BSTR and VT_NULL. Of VT_FILETIME the first 2
 * bytes of the value are kept, of VT_CLSID 4. All other types, arrays among them, are read back as VT_EMPTY.
 * A reference is stored as what it refers to.
 *
 *  Example:
 *  @code
 *      VARIANT value, none;
 *      VariantInit(&value);
 *      VariantInit(&none);
 *      ProfGetVariant(job, NULL, L"Document/Modified", &value, &none);
 *      if (V_VT(&value) == VT_DATE) show(V_DATE(&value));
 *      VariantClear(&value);
 *  @endcode
 */
#ifndef VXUT_PROF_VARIANT_H
#define VXUT_PROF_VARIANT_H

#include "prof/codes.h"
#include "prof/types.h"

#include <oaidl.h>

/** Adds an item with a variant at the end of its list, even if the list contains an item of that name.
 *
 *  GetLastError() afterwards is ERROR_SUCCESS, or the system's error if memory ran out or a reference cannot
 * be resolved; the profile is unchanged then.
 *
 *  @param job    the job; null does nothing.
 *  @param list   where a relative path starts; null for the root.
 *  @param name   the item; missing lists are created. Null for an item with an empty name in the list.
 *  @param value  stays the caller's; null does nothing.
 */
VXUT_API void ProfAppendVariant(HPROF job, HPROFLIST list, const wchar_t* name, const VARIANT* value);

/** Replaces the value of the first item of a name by a variant, or adds an item if there is none. Failures
 * are those of ProfAppendVariant().
 *
 *  @param job    the job; null does nothing.
 *  @param list   where a relative path starts; null for the root.
 *  @param name   the item; missing lists are created. Null does nothing.
 *  @param value  stays the caller's; null does nothing.
 */
VXUT_API void ProfSetVariant(HPROF job, HPROFLIST list, const wchar_t* name, const VARIANT* value);

/** Reads an item as a variant. Text that is none is a VT_BSTR; an empty value, and one that is damaged, is
 *  VT_EMPTY.
 *
 *  @param job           the job; null does nothing and returns PROF_OK.
 *  @param list          where a relative path starts; null for the root.
 *  @param name          the item; null finds nothing.
 *  @param out           must be initialised; what it holds is freed. The caller frees the new contents with
 *                       VariantClear(). Null does nothing and returns PROF_OK.
 *  @param defaultValue  copied to out if the item is missing; may be out itself. Null leaves out unchanged.
 *  @return PROF_OK; PROF_ERR_NOT_FOUND if the item is missing; PROF_ERR_MEMORY, with out unchanged.
 */
VXUT_API int32_t ProfGetVariant(HPROF job, HPROFLIST list, const wchar_t* name, VARIANT* out,
                                const VARIANT* defaultValue);

/** Reads the value of an item, which the caller holds, as a variant. May be called on any thread.
 *
 *  @param value  the text.
 *  @param out    as for ProfGetVariant().
 *  @return PROF_OK; PROF_ERR_VALUE for a null text; PROF_ERR_MEMORY, with out unchanged.
 */
VXUT_API int32_t ProfGetVariantFromContents(const wchar_t* value, VARIANT* out);

#endif
