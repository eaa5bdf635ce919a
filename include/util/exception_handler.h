/** @file
 * Reports on crashes: a text in the debug channel and in a log file, a minidump packed with the recent logs,
 * and a message for the user.
 *
 * A host opens a job, which installs a filter for unhandled exceptions of the process, and starts protection
 * on each thread whose faults are to be reported. Faults of other threads go to the filter that was installed
 * before. After the report the system ends the process with the exception code. Reports contain:
 *  - "%APPDATA%\VELMORA.LOG", or VELMORA.LOG in the temp folder: the exception and the bytes around the
 * address; for the execution of memory that is no code also the modules and the stack.
 *  - "Velmora.dmp.zip" in the folder "Velmora" of the temp folder: see UtilDebugHelpWriteMiniDump().
 * Nobody is asked and no message is shown if UtilGetUIInteractionAllowed() returns 0.
 *
 * Not reported: exceptions of applications and compilers, such as C++ exceptions; breakpoints, which are
 * stepped over; a stack overflow, unless UTIL_EXHANDLER_STACK_RESERVE is set. The end of a C or C++ run-time,
 * such as abort(), never reaches a filter: see util/crash_hooks.h.
 *
 * Registry (key "SOFTWARE\Velmora" of the user, texts, by their first letter): ForceUseGPFHandler "T" or "1"
 * enables the reports, "F" or "0" disables them; if it is anything else or missing, UseGPFHandler "F" or "0"
 * disables them. Both are read once.
 *
 * @code
 *     UtilExHandlerJobOpen();
 *     UtilExHandlerStartProtection(0);
 *     Run();
 *     UtilExHandlerEndProtection(0);
 *     UtilExHandlerJobClose();
 * @endcode
 */
#ifndef VXUT_UTIL_EXCEPTION_HANDLER_H
#define VXUT_UTIL_EXCEPTION_HANDLER_H

#include "util/types.h"

/** Options of UtilExHandlerSetOption(); all are 0 at first. */
#define UTIL_EXHANDLER_STACK_RESERVE \
    1 /**< bytes of stack that a thread keeps for the report of a stack overflow */
#define UTIL_EXHANDLER_TRACE_LINES \
    2 /**< debug lines that are kept in memory for the archive, at most 65536 */
#define UTIL_EXHANDLER_PACK_ALWAYS 3 /**< not 0: archives are filled also without the library VLMRCTL */

/** Kinds of UtilExHandlerReportFatal(). */
#define UTIL_EXHANDLER_ABORT 1             /**< abort() */
#define UTIL_EXHANDLER_TERMINATE 2         /**< std::terminate() */
#define UTIL_EXHANDLER_PURE_CALL 3         /**< call of a pure virtual function */
#define UTIL_EXHANDLER_INVALID_PARAMETER 4 /**< bad argument of a run-time function */

/** Installs the filter, unless the registry disables reports. Calls may be nested.
 *
 *  @return 1, also if reports are disabled.
 */
VXUT_API int UtilExHandlerJobOpen(void);

/** Installs the filter again that the last open has replaced. Without an open the call does nothing. */
VXUT_API void UtilExHandlerJobClose(void);

/** Protects the calling thread. Calls may be nested. Does nothing while a report is made.
 *
 *  @param reserved  not used.
 */
VXUT_API void UtilExHandlerStartProtection(int32_t reserved);

/** Ends what the last UtilExHandlerStartProtection() of the calling thread has begun. Without one, and while
 * a report is made, the call does nothing.
 *
 *  @param reserved  not used.
 */
VXUT_API void UtilExHandlerEndProtection(int32_t reserved);

/** Sets an option.
 *
 *  @param option  UTIL_EXHANDLER_STACK_RESERVE applies to threads whose protection starts later, and starts
 * the thread that reports a stack overflow; UTIL_EXHANDLER_TRACE_LINES empties the memory and applies at
 * once.
 *  @param value   see the options; 0 switches an option off.
 *  @return 0, or -7 for an unknown option.
 */
VXUT_API int32_t UtilExHandlerSetOption(uint32_t option, uint32_t value);

/** Writes the short report for a fault that is no exception of the system, if the calling thread is protected
 * and reports are enabled, and returns. The exception code is 0x40000015, that of
 * UTIL_EXHANDLER_INVALID_PARAMETER 0xC0000417. The hooks of util/crash_hooks.h call this function.
 *
 *  @param kind  UTIL_EXHANDLER_ABORT or another kind; anything else does nothing.
 *  @param text  a detail for the debug channel and the log file; may be null.
 */
VXUT_API void UtilExHandlerReportFatal(int32_t kind, const wchar_t* text);

#endif
