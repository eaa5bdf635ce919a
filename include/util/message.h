/** @file
 * Numbers of window messages by name, and the hook of window events.
 *
 * Components of one process agree on a message by its name. The numbers are valid in this process only, and
 * only until the library is unloaded.
 *
 * @code
 *     const uint32_t refresh = UtilGetWindowMessage(L"MyCompany.Refresh");
 *     SendMessageW(window, refresh, 0, 0);
 * @endcode
 */
#ifndef VXUT_UTIL_MESSAGE_H
#define VXUT_UTIL_MESSAGE_H

#include "util/types.h"

#include <windows.h>
/* After windows.h, which it needs: */
#include <wtypes.h>

/** The number of the first name: WM_APP. Every new name gets the next number. */
#define UTIL_FIRST_WINDOW_MESSAGE 0x8000u

/** Returns the number of a message.
 *
 *  @param name  of the message; case is ignored. A new name gets the next free number.
 *  @return the number, from UTIL_FIRST_WINDOW_MESSAGE on; 0 if name is null or memory is exhausted.
 */
VXUT_API uint32_t UtilGetWindowMessage(const wchar_t* name);

/** Looks up the name of a message.
 *
 *  @param number  of the message.
 *  @param name    receives the name as it was first passed to UtilGetWindowMessage(); may be null. It holds
 * null or a BSTR, which is reallocated; the caller frees it with SysFreeString(). Unchanged if the number has
 * no name or memory is exhausted.
 *  @return 1 if the number has a name, else 0.
 */
VXUT_API int UtilGetWindowMessageName(uint32_t number, BSTR* name);

/** A callback for window events, called on the thread of each event.
 *
 *  @param code    of the hook, HCBT_*.
 *  @param wParam  of the hook.
 *  @param lParam  of the hook.
 *  @param before  1 before the next hook is called, 0 after it.
 *  @param result  null before the next hook; after it, the result of the hook, which may be changed.
 *  @return is ignored.
 */
typedef LRESULT(CALLBACK* UtilCBTCallback)(int code, WPARAM wParam, LPARAM lParam, int before,
                                           LRESULT* result);

/** Installs a callback for the window events (WH_CBT) of all threads of the desktop. There is one callback
 *  in a process; a new one replaces it. Other processes load this library then, but only this process has
 *  the callback. Does nothing while a debugger is attached. Call it from one thread.
 *
 *  @param callback  null removes the hook.
 */
VXUT_API void UtilSetCBTHook(UtilCBTCallback callback);

#endif
