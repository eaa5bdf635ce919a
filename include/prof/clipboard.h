/** @file
 * Profiles on the clipboard, under the registered format "QzrProfCBFormat".
 */
#ifndef VXUT_PROF_CLIPBOARD_H
#define VXUT_PROF_CLIPBOARD_H

#include "prof/codes.h"
#include "prof/types.h"

/** Opens a new profile with the contents of the clipboard.
 *
 *  @param window  the window that opens the clipboard, or null.
 *  @return the job, also if the clipboard could not be read: ProfGetError() then returns PROF_ERR_OPEN if
 *          the clipboard contains no profile, or PROF_ERR_FORMAT. Null only if memory ran out. Close it
 *          with ProfJobClose().
 */
VXUT_API HPROF ProfJobOpenClipboard(HWND window);

/** Puts a profile on the clipboard, with a short notice as text. The clipboard is not emptied before.
 *
 *  @param job     the job; null does nothing and returns PROF_OK.
 *  @param window  the window that opens the clipboard, or null.
 *  @param format  PROF_FORMAT_* of a form; flags are ignored.
 *  @return PROF_OK, also if the clipboard refused the data; PROF_ERR_SAVE if there is no temporary file;
 *          PROF_ERR_WRITE if the profile could not be written; PROF_ERR_FORMAT if the form is not
 *          supported.
 */
VXUT_API int32_t ProfSaveToClipboard(HPROF job, HWND window, uint32_t format);

/** Returns whether the clipboard contains a profile: not 0 if it does. */
VXUT_API int ProfIsClipboardDataAvailable(void);

#endif
