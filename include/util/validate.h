/** @file
 * Tests of pointers, and reports on bad ones: aids for development.
 *
 * A test never stops the program. It writes a banner with the function and the parameter to the debug channel
 * and gives 0; the caller then returns its own failure value. Tests ask the system, which catches a fault of
 * its own: while a debugger is attached, and ever after, every pointer counts as good.
 *
 * @code
 *     if (!UtilIsWPtr(L"ReadRecord", buffer, L"Buffer", sizeof(RECORD))) return -1;
 * @endcode
 */
#ifndef VXUT_UTIL_VALIDATE_H
#define VXUT_UTIL_VALIDATE_H

#include "util/types.h"

/** Gives 1 if a range can be read.
 *
 *  @param function   the function on whose behalf the test runs, for the report.
 *  @param pointer    start of the range; null counts as good.
 *  @param parameter  the parameter that holds the pointer, for the report.
 *  @param size       bytes of the range.
 *  @return 1 good, 0 bad.
 */
VXUT_API int UtilIsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter,
                        uint32_t size);

/** Gives 1 if a range can be written. As UtilIsRPtr(). */
VXUT_API int UtilIsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size);

/** Gives 1 if a text can be read up to its end, or for its first 65535 units. As UtilIsRPtr(). */
VXUT_API int UtilIsString(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter);

/** Gives the length of a text, and tests each unit before it is read.
 *
 *  @param function  for the report.
 *  @param text      not null: a null text faults, as does any bad one before a debugger.
 *  @return units before the terminator. Of a text that runs into unreadable memory, which is reported, one
 * less than the units that can be read, but at least 0.
 */
VXUT_API int32_t UtilSafeStrlen(const wchar_t* function, const wchar_t* text);

/** Writes an error of a function to the debug channel. */
VXUT_API void UtilError(const wchar_t* function, const wchar_t* text);

/** Shows a failed assertion in a message box and ends the process with exit code -1, whatever is answered.
 *
 *  @param expression  what does not hold.
 *  @param fileName    the source file, with its `line`.
 */
VXUT_API void UtilAssert(const wchar_t* expression, const wchar_t* fileName, uint32_t line);

#endif
