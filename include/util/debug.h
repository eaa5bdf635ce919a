/** @file
 * The debug channel: trace lines that a live viewer, or a log file, may take.
 *
 * A line shows the module, the time, thread and processor, a digit that counts the lines, the current indent,
 * the thread's name if it has one, and the text. Lines are cut at 1024 units. Nobody needs to listen: a call
 * then costs a few nanoseconds and formats nothing, so calls stay in shipped code. The thread's last error
 * stays.
 *
 * Formats are those of the system's run-time library for wide text: `%s` takes wide, `%hs` narrow text.
 *
 * @code
 *     UtilDebugExt(L"IMPORT", 1, L"reading '%s'", fileName);
 *     UtilDebug(L"%d records", count);
 *     UtilDebugExt(L"IMPORT", -1, L"done");
 * @endcode
 */
#ifndef VXUT_UTIL_DEBUG_H
#define VXUT_UTIL_DEBUG_H

#include <stdarg.h>

#include "util/types.h"

/** Writes a line without a module column.
 *
 *  @param format  null writes nothing.
 */
VXUT_API void UtilDebug(const wchar_t* format, ...);

/** Writes a line and changes the indent of the process.
 *
 *  @param module        the module column, filled up to 8 units; null leaves it out.
 *  @param indentChange  negative: one step out, before the line; positive: one step in, after the line. Its
 * size does not count. Nothing changes while nobody listens. The line shows at most 50 steps.
 *  @param format        null writes no line and changes the indent only.
 */
VXUT_API void UtilDebugExt(const wchar_t* module, int32_t indentChange, const wchar_t* format, ...);

/** As UtilDebugExt(), with the arguments in a list. */
VXUT_API void UtilDebugExtV(const wchar_t* module, int32_t indentChange, const wchar_t* format,
                            va_list arguments);

/** Writes a text as it is, for clients that cannot pass variable arguments. */
VXUT_API void PasDebug(const wchar_t* text);

#endif
