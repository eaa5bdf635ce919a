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
 *  @return the job in every case: ask ProfGetError() for PROF_OK, PROF_ERR_OPEN if the clipboard holds no
 * profile, or PROF_ERR_FORMAT. Null only when memory is short. Close it with ProfJobClose().
 */
VXUT_API HPROF ProfJobOpenClipboard(HWND window);

/** Puts a profile on the clipboard, with a short notice as text. The clipboard is not emptied before.
 *
 *  @param window  the window that opens the clipboard, or null.
 *  @param format  PROF_FORMAT_* of a form; flags are ignored.
 *  @return PROF_OK, also if the clipboard refused; PROF_ERR_SAVE without a temporary file, PROF_ERR_WRITE if
 * the profile could not be written, or PROF_ERR_FORMAT for a form that is not supported.
 */
VXUT_API int32_t ProfSaveToClipboard(HPROF job, HWND window, uint32_t format);

/** Whether the clipboard holds a profile. */
VXUT_API int ProfIsClipboardDataAvailable(void);

#endif
