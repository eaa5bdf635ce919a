/** @file
 * Tests of pointers, and reports on bad ones: aids for development.
 *
 * A test never raises an exception and never stops the program. If a pointer is bad it writes a banner with
 * the names of function and parameter to the debug channel and returns 0; the caller then returns its own
 * failure value. The tests rely on probes of the system, which handle access faults internally. A debugger
 * would stop at each of them, so once a debugger has been seen every pointer counts as good, until the
 * process ends.
 *
 * The functions may be called from any thread.
 *
 * @code
 *     if (!UtilIsWPtr(L"ReadRecord", buffer, L"Buffer", sizeof(RECORD))) return -1;
 * @endcode
 */
#ifndef VXUT_UTIL_VALIDATE_H
#define VXUT_UTIL_VALIDATE_H

#include "util/types.h"

/** Tests whether a range of memory can be read.
 *
 *  @param function   name of the function on whose behalf the test runs, for the report.
 *  @param pointer    start of the range; null counts as good.
 *  @param parameter  name of the parameter that holds the pointer, for the report.
 *  @param size       size of the range in bytes.
 *  @return 1 if the pointer is good, 0 if it is bad.
 */
VXUT_API int UtilIsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter,
                        uint32_t size);

/** Tests whether a range of memory can be written. Otherwise as UtilIsRPtr(). */
VXUT_API int UtilIsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size);

/** Tests whether a text can be read up to its terminator, or for its first 65535 units. Otherwise as
 * UtilIsRPtr(). */
VXUT_API int UtilIsString(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter);

/** Returns the length of a text, and tests each unit before it reads it.
 *
 *  @param function  for the report.
 *  @param text      not null: a null text faults, as does any bad one once a debugger has been seen.
 *  @return the number of units before the terminator. If the text runs into memory that cannot be read, which
 * is reported, one less than its readable units, but at least 0.
 */
VXUT_API int32_t UtilSafeStrlen(const wchar_t* function, const wchar_t* text);

/** Writes an error of a function to the debug channel. */
VXUT_API void UtilError(const wchar_t* function, const wchar_t* text);

/** Shows a failed assertion in a message box and ends the process with exit code -1, whatever the answer.
 *
 *  @param expression  the condition that does not hold.
 *  @param fileName    name of the source file.
 *  @param line        line in the source file.
 */
VXUT_API void UtilAssert(const wchar_t* expression, const wchar_t* fileName, uint32_t line);

#endif
