/** @file
 * The temp-file manager: deletes temporary files as soon as the system lets it.
 *
 * A temporary file often cannot be deleted when it is no longer needed: another component has it open, or the
 * process dies first. The manager takes over the paths of such files, and a thread of its own tries to delete
 * them until it succeeds or the manager is closed. Files in the shared folder, "Velmora" below the user's
 * temp directory, also go if their process died: the first process that opens the manager after three hours
 * in which none had it open deletes what was not written for an hour there. Only names that begin with "_21_"
 * are touched. Processes show each other that they are at work by rewriting "_21_activity.signal" in the
 * folder.
 *
 * No function reports a failure: reports go to the debug channel. All functions may be called on any thread,
 * but not from a DllMain, as they may start or end the thread.
 *
 * @code
 *     UtilTempFileMgrOpen();
 *     BSTR path = NULL;
 *     if (UtilTempFileMgrCreateFile(L"preview", L"png", 0, &path) && SysStringLen(path) > 0) {
 *         ShowInViewer(path);
 *         UtilTempFileMgrAdd(path); // goes when the viewer closes it
 *     }
 *     SysFreeString(path);
 *     UtilTempFileMgrClose();       // at the end of the program
 * @endcode
 */
#ifndef VXUT_UTIL_TEMP_FILE_H
#define VXUT_UTIL_TEMP_FILE_H

#include "util/types.h"

#include <wtypes.h>

/** Opens the manager, or counts one more user of the open manager. Each call needs one of
 *  UtilTempFileMgrClose().
 *
 *  The thread starts with the first call if the shared folder exists, else with the first
 *  UtilTempFileMgrAdd(), and without it does not sweep the folder. Its first work is ten seconds later, then
 *  every ten seconds, and more often the more files are waiting. Without memory the manager stays closed.
 *  While its thread runs the library is not unloaded.
 */
VXUT_API void UtilTempFileMgrOpen(void);

/** Removes one user of the manager. The last one ends the thread, for which it may wait ten seconds, and
 * tries once more to delete each file that is waiting. A call without an open manager does nothing.
 *
 *  A manager that is not closed when the process ends deletes nothing then.
 */
VXUT_API void UtilTempFileMgrClose(void);

/** Passes a file to the manager, which deletes it as soon as possible. Without an open manager the file is
 *  deleted at once, if it can be.
 *
 *  @param path  absolute path of the file. It is copied. Null does nothing.
 */
VXUT_API void UtilTempFileMgrAdd(const wchar_t* path);

/** Creates a new, empty file in the shared folder, and the folder if it is missing. The manager need not be
 *  open, and does not delete the file unless it is passed to UtilTempFileMgrAdd().
 *
 *  @param prefix     beginning of the name, behind "_21_"; a directory in it is dropped.
 *  @param extension  with or without the leading dot.
 *  @param flags      bit 0: the long form of the temp directory, which is used in any case; others are
 * ignored.
 *  @param path       receives the absolute path as a BSTR, which the caller frees with SysFreeString(). It
 * must be null or a BSTR, which is reallocated. The text is empty if no file could be created.
 *  @return 1; 0 if an argument is null or there is no memory for the path.
 */
VXUT_API int UtilTempFileMgrCreateFile(const wchar_t* prefix, const wchar_t* extension, uint8_t flags,
                                       BSTR* path);

#endif
