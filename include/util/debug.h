/** @file
 * The debug channel: trace lines for a live viewer and a log file.
 *
 * A line shows the module, the time, the thread and processor, a digit that counts the lines, the current
 * indent, the thread's name if it has one, and the text. Lines are cut at 1024 units. If nobody listens, a
 * call costs a few nanoseconds and formats nothing, so calls can stay in shipped code.
 *
 * All functions may be called by any thread. They have no result and keep the thread's last error. A viewer
 * that answers late, or a log file that another program keeps open, delays a process for a limited time; then
 * lines are dropped (viewer) or kept in memory (log file) without waiting. While one thread waits, calls of
 * other threads are delayed by a quarter of a second at most, and their lines are sent afterwards.
 *
 * Formats are those of the system's run-time library for wide text: `%s` is for wide, `%hs` for narrow text.
 * An argument that cannot be read ends the line. An exception of the system that reading an argument raises
 * may reach the caller; the channel remains usable.
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
 *  @param format  the format; null writes nothing.
 */
VXUT_API void UtilDebug(const wchar_t* format, ...);

/** Writes a line and changes the indent of the process.
 *
 *  @param module        the text of the module column, padded to 8 units; null omits the column.
 *  @param indentChange  negative: lowers the indent by one before the line; positive: raises it by one after
 *                       the line. Only the sign matters. The indent does not change while nobody listens. At
 *                       most 50 levels are shown.
 *  @param format        the format; null writes no line and changes the indent only.
 */
VXUT_API void UtilDebugExt(const wchar_t* module, int32_t indentChange, const wchar_t* format, ...);

/** Same as UtilDebugExt(), with the arguments in a list. */
VXUT_API void UtilDebugExtV(const wchar_t* module, int32_t indentChange, const wchar_t* format,
                            va_list arguments);

/** Writes a text without a module column, for clients that cannot pass variable arguments.
 *
 *  @param text  the text, in which percent signs have no meaning.
 */
VXUT_API void PasDebug(const wchar_t* text);

#endif
