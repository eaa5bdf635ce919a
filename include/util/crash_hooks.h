/** @file
 * Reports the ends of the C and C++ run-time of a host, which no filter for exceptions sees: abort(),
 * std::terminate(), calls of pure virtual functions, bad arguments of run-time functions.
 *
 * The hooks belong to the run-time that the host is linked with, so this header is compiled into the host:
 * include it in the one source file that sets and removes them. Each hook calls UtilExHandlerReportFatal(),
 * then what was set before it, and then the run-time ends the process, with its usual exit code (3;
 * 0xC0000417 after a bad argument). A report is written if the thread is protected
 * (util/exception_handler.h); one for each process.
 *
 * With MinGW a pure virtual call is reported as std::terminate() unless UTIL_CRASH_HOOKS_DEFINE_PURE_CALL is
 * defined before the header is included; it then defines the function that the compiler calls.
 *
 * @code
 *     #include "util/crash_hooks.h"
 *     ...
 *     UtilCrashHooksSet();
 *     Run();
 *     UtilCrashHooksRemove();
 * @endcode
 */
#ifndef VXUT_UTIL_CRASH_HOOKS_H
#define VXUT_UTIL_CRASH_HOOKS_H

#include "util/exception_handler.h"

#include <windows.h>

#include <signal.h>
#include <stdlib.h>
#ifdef __cplusplus
#include <exception>
#endif

typedef void(__cdecl* UtilCrashSignalHandler)(int number);
typedef void(__cdecl* UtilCrashParameterHandler)(const wchar_t* expression, const wchar_t* function,
                                                 const wchar_t* file, unsigned int line, uintptr_t reserved);
typedef UtilCrashParameterHandler(__cdecl* UtilCrashSetParameterHandler)(UtilCrashParameterHandler handler);
typedef void(__cdecl* UtilCrashPlainHandler)(void);

/** What the hooks have replaced. For this header only. */
static struct UtilCrashHooksState {
    int areSet;
    volatile LONG isReported;
    UtilCrashSignalHandler abortHandler;
    UtilCrashParameterHandler parameterHandler;
    UtilCrashPlainHandler terminateHandler;
    UtilCrashPlainHandler pureCallHandler;
} utilCrashHooksState;

/* For C as well: NOLINTBEGIN(modernize-use-nullptr, bugprone-casting-through-void) */
/** Reports once: terminate() ends in abort(). For this header only. */
static __inline void UtilCrashHooksReport(int32_t kind, const wchar_t* text) {
    if (InterlockedExchange(&utilCrashHooksState.isReported, 1) == 0) UtilExHandlerReportFatal(kind, text);
}

/** Sets the handler for bad arguments in the run-time itself: MinGW's import library has a function of its
 * own, with a handler that no run-time calls. For this header only. */
static __inline UtilCrashParameterHandler UtilCrashHooksExchange(UtilCrashParameterHandler handler) {
#ifdef __MINGW32__
    static const wchar_t* const runTimes[] = {L"msvcrt", L"ucrtbase"};
    int i;
    for (i = 0; i < 2; ++i) {
        const HMODULE runTime = GetModuleHandleW(runTimes[i]);
        FARPROC function = runTime ? GetProcAddress(runTime, "_set_invalid_parameter_handler") : NULL;
        if (function) return ((UtilCrashSetParameterHandler)(void*)function)(handler);
    }
    return NULL;
#else
    return (UtilCrashParameterHandler)_set_invalid_parameter_handler((_invalid_parameter_handler)handler);
#endif
}

static __inline void __cdecl UtilCrashHookAbort(int number) {
    UtilCrashHooksReport(UTIL_EXHANDLER_ABORT, NULL);
    if (utilCrashHooksState.abortHandler != SIG_DFL && utilCrashHooksState.abortHandler != SIG_IGN &&
        utilCrashHooksState.abortHandler != SIG_ERR)
        utilCrashHooksState.abortHandler(number);
}

static __inline void __cdecl UtilCrashHookParameter(const wchar_t* expression, const wchar_t* function,
                                                    const wchar_t* file, unsigned int line,
                                                    uintptr_t reserved) {
    UtilCrashHooksReport(UTIL_EXHANDLER_INVALID_PARAMETER, function);
    if (utilCrashHooksState.parameterHandler)
        utilCrashHooksState.parameterHandler(expression, function, file, line, reserved);
    TerminateProcess(GetCurrentProcess(), 0xC0000417u);
}

#ifdef __cplusplus
static inline void UtilCrashHookTerminate() {
    UtilCrashHooksReport(UTIL_EXHANDLER_TERMINATE, NULL);
    if (utilCrashHooksState.terminateHandler) utilCrashHooksState.terminateHandler();
    abort();
}
#endif

#ifdef _MSC_VER
static __inline void __cdecl UtilCrashHookPureCall(void) {
    UtilCrashHooksReport(UTIL_EXHANDLER_PURE_CALL, NULL);
    if (utilCrashHooksState.pureCallHandler) utilCrashHooksState.pureCallHandler();
    abort();
}
#elif defined(__cplusplus) && defined(UTIL_CRASH_HOOKS_DEFINE_PURE_CALL)
extern "C" void __cxa_pure_virtual() {
    if (utilCrashHooksState.areSet) UtilCrashHooksReport(UTIL_EXHANDLER_PURE_CALL, NULL);
    std::terminate();
}
#endif

/** Sets the hooks. A second call does nothing. */
static __inline void UtilCrashHooksSet(void) {
    if (utilCrashHooksState.areSet) return;
    utilCrashHooksState.areSet = 1;
    utilCrashHooksState.parameterHandler = UtilCrashHooksExchange(UtilCrashHookParameter);
    utilCrashHooksState.abortHandler = signal(SIGABRT, UtilCrashHookAbort);
#ifdef __cplusplus
    utilCrashHooksState.terminateHandler = std::set_terminate(UtilCrashHookTerminate);
#endif
#ifdef _MSC_VER
    utilCrashHooksState.pureCallHandler = _set_purecall_handler(UtilCrashHookPureCall);
#endif
}

/** Restores what the hooks have replaced. Without UtilCrashHooksSet() the call does nothing. */
static __inline void UtilCrashHooksRemove(void) {
    if (!utilCrashHooksState.areSet) return;
    utilCrashHooksState.areSet = 0;
    UtilCrashHooksExchange(utilCrashHooksState.parameterHandler);
    if (utilCrashHooksState.abortHandler != SIG_ERR) signal(SIGABRT, utilCrashHooksState.abortHandler);
#ifdef __cplusplus
    std::set_terminate(utilCrashHooksState.terminateHandler);
#endif
#ifdef _MSC_VER
    _set_purecall_handler(utilCrashHooksState.pureCallHandler);
#endif
}

/* NOLINTEND(modernize-use-nullptr, bugprone-casting-through-void) */

#endif
