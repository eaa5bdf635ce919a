/** @file
 * Declarations that all headers of the library share.
 *
 * Conventions of the whole interface:
 *  1. Functions are undecorated C functions. Nothing is ever thrown across the boundary.
 *  2. Wide text is `const wchar_t*`, narrow text `const char*`; both end with a zero unit. Lengths and
 *     capacities count units, never bytes, unless a name says so. Paths have 260 units.
 *  3. Failures are negative numbers or null results; the reason is written to the debug channel.
 *     A function that cannot do its work returns a neutral value.
 *  4. Handles are opaque. The caller that opened a handle closes it. What a function returns belongs to the
 * caller only if its description says so.
 *  5. Pointers may be null only if a description says so.
 *  6. Functions may be called from any thread unless a description says otherwise.
 */
#ifndef VXUT_UTIL_TYPES_H
#define VXUT_UTIL_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef VXUT_BUILD
#define VXUT_IMPORT
#else
#define VXUT_IMPORT __declspec(dllimport)
#endif

#ifdef __cplusplus
#define VXUT_API extern "C" VXUT_IMPORT
#else
#define VXUT_API VXUT_IMPORT
#endif

#endif
