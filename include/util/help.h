/** @file
 * Context help: F1 shows the page for what the user does.
 *
 * A host opens a help object for a window. While one exists, F1 in that window, or in one below it, shows
 * help for a context number, by the first of these that there is:
 *  1. the text of a control of class "vlmrHelpID" beside the focus window whose control id is the negative
 *     of that window's id;
 *  2. the text of the first child of class "vlmrHelpID" of the active window;
 *  3. the number that was pushed last.
 *
 * These are looked at once a number has been pushed. Before that, the active window is asked: it is sent the
 * registered message UTIL_HELP_CONTEXT_MESSAGE and returns the number, or 0. Without a number the contents
 * are shown. F1 with Shift, Ctrl and Alt shows the number instead of a page.
 *
 * Files with the extension ".chm" are shown by HH.EXE, others by WinHelp. A file on a network path is copied
 * to the temp directory first. If the library VLMRCTL is in the process, names of files pass its function
 * `int WINAPI CtlXlatPath(const wchar_t* path, wchar_t* target, uint32_t capacity)`, which returns 0 to leave
 * a name as it is; the capacity is 260 units.
 *
 * Help objects belong to the thread that opens them: all calls are made there. A handle that is not, or no
 * longer, open is treated like null.
 *
 * @code
 *     HUTILHELP help = UtilHelpOpen(window, L"C:\\Program Files\\App\\app.chm");
 *     UtilHelpPush(help, IDH_OPTIONS); // a dialog begins
 *     ...
 *     UtilHelpPop(help);
 *     UtilHelpClose(help);
 * @endcode
 */
#ifndef VXUT_UTIL_HELP_H
#define VXUT_UTIL_HELP_H

#include "util/types.h"

#include <windows.h>
/* After windows.h, which it needs: */
#include <objbase.h>

/** A help object. UtilHelpClose() frees it. */
typedef struct UtilHelpRecord* HUTILHELP;

/** The registered window message (RegisterWindowMessageW) by which a window is asked for its context number.
 */
#define UTIL_HELP_CONTEXT_MESSAGE L"QzrUtilGetContextHelpID"
/** The window class, which the host registers, of controls whose text is a context number. */
#define UTIL_HELP_NUMBER_CLASS L"vlmrHelpID"
/** The context number that means: find the number. */
#define UTIL_HELP_FIND_NUMBER (-1)

/** A host's object that supplies what a help object needs. */
#undef INTERFACE
#define INTERFACE IUtilHelp
DECLARE_INTERFACE_(IUtilHelp, IUnknown) {
#ifndef __cplusplus
    STDMETHOD(QueryInterface)(THIS_ REFIID id, void** object) PURE;
    STDMETHOD_(ULONG, AddRef)(THIS) PURE;
    STDMETHOD_(ULONG, Release)(THIS) PURE;
#endif
    /** Returns the name of the help file as a new BSTR, which the library frees. */
    STDMETHOD(GetHelpFileName)(THIS_ BSTR * name) PURE;
    /** Returns the number of a window message, see UtilHelpOpen(), or 0. */
    STDMETHOD(GetHelpMessage)(THIS_ uint32_t* message) PURE;
#ifdef __cplusplus
protected:
    ~IUtilHelp() = default;
#endif
};
#undef INTERFACE

/** Opens a help object.
 *
 *  @param window  whose help it is.
 *  @param file    the help file; or, as MAKEINTRESOURCEW(message), the number of a window message. The window
 * is then sent this message with the command (1: a page, 3: the contents, 4: help on help, 261: the index)
 * and the context number, before anything else is done; if it returns a value other than 0, it has shown the
 * help.
 *  @return the object, which the caller closes with UtilHelpClose(); null if memory is exhausted.
 */
VXUT_API HUTILHELP UtilHelpOpen(HWND window, const wchar_t* file);

/** Opens a help object on an object of the host.
 *
 *  @param window  whose help it is.
 *  @param host    supplies the help message at once and the file when it is needed. A reference is held until
 * the object is closed. May be null.
 *  @return as UtilHelpOpen().
 */
VXUT_API HUTILHELP UtilHelpOpenEx(HWND window, IUtilHelp* host);

/** Closes a help object, and the help that it has shown.
 *
 *  @param help  null is reported to the debug channel.
 */
VXUT_API void UtilHelpClose(HUTILHELP help);

/** Shows the page for the number that is found.
 *
 *  @return not 0 if help was shown. This holds for all functions that show help.
 */
VXUT_API int UtilHelpDisplay(HUTILHELP help);

/** Shows the page for a number.
 *
 *  @param number  UTIL_HELP_FIND_NUMBER as in UtilHelpDisplay().
 */
VXUT_API int UtilHelpDisplayContext(HUTILHELP help, int32_t number);

/** Shows the contents of the help file. */
VXUT_API int UtilHelpShowContents(HUTILHELP help);

/** Shows the index of the help file. */
VXUT_API int UtilHelpShowIndex(HUTILHELP help);

/** Shows the help on using help. */
VXUT_API int UtilHelpShowHelpOnHelp(HUTILHELP help);

/** Pushes a context number, which is valid until it is popped.
 *
 *  @return 1; 0 if help is not open or memory is exhausted.
 */
VXUT_API int UtilHelpPush(HUTILHELP help, int32_t number);

/** Pops a context number. An empty stack is reported to the debug channel. */
VXUT_API void UtilHelpPop(HUTILHELP help);

/** Returns the cursor of the help mode, which belongs to the help object; null if help is not open. */
VXUT_API HCURSOR UtilHelpCursor(HUTILHELP help);

/** Stores a number for the host, such as whether a click asks for help. */
VXUT_API void UtilHelpSetHelpMode(HUTILHELP help, uint32_t mode);

/** Returns the number that was stored, 0 at first and if help is not open. */
VXUT_API uint32_t UtilHelpIsInHelpMode(HUTILHELP help);

/** Shows help as the system's WinHelp does.
 *
 *  @param help     the help object.
 *  @param window   the owner of the help.
 *  @param file     the help file. A missing one is reported in a message box.
 *  @param command  1 for the page of the number in data, 3, 4 or 261; see UtilHelpOpen().
 *  @param data     for the command.
 *  @return the result of WinHelp, or 1 if HH.EXE was started, else 0.
 */
VXUT_API int UtilHelp(HUTILHELP help, HWND window, const wchar_t* file, uint32_t command, ULONG_PTR data);

#endif
