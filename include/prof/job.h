/** @file
 * Profile jobs: opening, saving, closing.
 *
 * How to tell what went wrong. An open returns a job even if the file could not be read, so that a host can
 * work with defaults. ProfGetError() then returns the kind of failure, and GetLastError(), called directly
 * after the open, the system error that caused it. Both are 0 if and only if the profile was read in full, is
 * empty, or was created.
 *
 * | ProfGetError()  | GetLastError() after the open              | Meaning                                  |
 * |-----------------|--------------------------------------------|------------------------------------------|
 * | PROF_OK         | ERROR_SUCCESS                              | read in full                             |
 * | PROF_ERR_OPEN   | ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND | there is no such file (shared open)      |
 * | PROF_ERR_OPEN   | ERROR_INVALID_NAME                         | the name is not allowed for files        |
 * | PROF_ERR_OPEN   | any other                                  | the file or stream could not be opened   |
 * | PROF_ERR_SAVE   | any                                        | an exclusive open failed                 |
 * | PROF_ERR_BUSY   | ERROR_SHARING_VIOLATION                    | the file stayed in use for 10 s          |
 * | PROF_ERR_BUSY   | ERROR_LOCK_VIOLATION                       | its first byte stayed locked for 10 s    |
 * | PROF_ERR_BUSY   | ERROR_HANDLE_EOF                           | shorter than 4 bytes, or it ended before |
 * |                 |                                            | its size                                 |
 * | PROF_ERR_BUSY   | any other                                  | the file could not be read               |
 * | PROF_ERR_FORMAT | ERROR_NOT_SUPPORTED                        | files of this form cannot be read        |
 * | PROF_ERR_FORMAT | ERROR_INVALID_DATA                         | damaged                                  |
 * | PROF_ERR_MEMORY | ERROR_NOT_ENOUGH_MEMORY                    | out of memory; the tree is empty         |
 *
 * Devices, such as "nul", and names that are too long for every file system count as ERROR_INVALID_NAME. A
 * clipboard without a profile is PROF_ERR_OPEN with ERROR_FILE_NOT_FOUND.
 *
 * Only the row with ERROR_FILE_NOT_FOUND means that there is nothing to lose. In all other rows but the
 * first the file may contain settings that the tree does not: saving the tree would replace them for good.
 *
 * Saves return their result; if it is not PROF_OK, GetLastError() is the system's error, and the file has
 * its old content, unless putting it back failed too. Only files that had to be overwritten in place and
 * streams are put back: see ProfSaveW(). The null job leaves the thread's last error alone.
 */
#ifndef VXUT_PROF_JOB_H
#define VXUT_PROF_JOB_H

#include "prof/codes.h"
#include "prof/types.h"

/** Opens a profile file, reads it and closes the file. The form is recognised from its content.
 *
 *  A file that another process has open without sharing it is tried again for up to 10 s. What could be
 *  read of a damaged file is in the tree, and the job is usable.
 *
 *  @param fileName  the file; null for an empty profile without a file.
 *  @return the job, also if the file could not be read: see the table above. Null only if memory ran out.
 *          Close it with ProfJobClose().
 *
 *  Example:
 *  @code
 *      HPROF job = ProfJobOpenW(L"settings.prf");
 *      DWORD reason = GetLastError();
 *      int isMissing = ProfGetError(job) == PROF_ERR_OPEN && reason == ERROR_FILE_NOT_FOUND;
 *      int mayBeSaved = job && (ProfGetError(job) == PROF_OK || isMissing);
 *      int32_t width;
 *      ProfGetIntW(job, NULL, L"Window/Width", &width, 640);
 *      ProfSetIntW(job, NULL, L"Window/Width", width + 1);
 *      if (!mayBeSaved || ProfSaveW(job, NULL, PROF_FORMAT_TEXT) != PROF_OK) report_failure();
 *      ProfJobClose(job);
 *  @endcode
 */
VXUT_API HPROF ProfJobOpenW(const wchar_t* fileName);
VXUT_API HPROF ProfJobOpenA(const char* fileName);

/** Opens a profile file as ProfJobOpenW() does, but creates a missing one and keeps the file open for
 *  reading and writing until the job is closed; others may read it meanwhile.
 *
 *  @param fileName  the file; null for an empty profile without a file.
 *  @return the job, with PROF_ERR_SAVE for a file that could not be opened. A file that could not be read
 *          is closed: the job does not keep it. Null only if memory ran out. Close it with ProfJobClose().
 */
VXUT_API HPROF ProfJobOpenExclusiveW(const wchar_t* fileName);
VXUT_API HPROF ProfJobOpenExclusiveA(const char* fileName);

/** Opens a profile on a stream: ProfJobOpenStreamObjectW() with the name "/" and level 0.
 *
 *  @param stream  the stream; null for an empty profile.
 *  @return the job, or null if memory ran out.
 */
VXUT_API HPROF ProfJobOpenStream(IStream* stream);

/** Opens a profile on a stream. The job adds a reference to the stream and keeps it until it is closed,
 *  even if the stream could not be read.
 *
 *  @param stream  the stream, used on the thread that uses the job; null for an empty profile.
 *  @param name    the name of the root; null for "/".
 *  @param level   0 for a whole file. Above 0 the profile is a fragment inside a larger UTF-16 text: it is
 *                 read from the stream's position, and written with this depth, without byte order mark and
 *                 header.
 *  @return the job, also if the stream could not be read: see the table above. Null only if memory ran out.
 */
VXUT_API HPROF ProfJobOpenStreamObjectW(IStream* stream, const wchar_t* name, uint32_t level);
VXUT_API HPROF ProfJobOpenStreamObjectA(IStream* stream, const char* name, uint32_t level);

/** Adds a reference to a job. May be called on any thread.
 *
 *  @param job  the job; null does nothing.
 */
VXUT_API void ProfJobAddRef(HPROF job);

/** Releases a reference to a job. The last one closes the job's file and frees its tree; nothing is saved.
 *  May be called on any thread.
 *
 *  @param job  the job; null does nothing. With the last reference the handle and all its list handles
 *              become invalid.
 */
VXUT_API void ProfJobClose(HPROF job);

/** Returns the error of the job's open: PROF_OK or PROF_ERR_*, see the table above. The thread's last error
 *  is kept.
 *
 *  @param job  the job; PROF_ERR_JOB for null.
 */
VXUT_API int32_t ProfGetError(HPROF job);

/** Saves a profile to a file. An empty profile leaves an empty file.
 *
 *  A save under the name of the file that the job keeps, "(Stream)" being the name of a stream, is written
 *  to that file. Any other file is replaced, or created if it is missing; one that is in use is tried again
 *  for up to 10 s.
 *
 *  The new content is written beside the file and put in its place at once, so that the file holds the old
 *  or the new content whatever happens. Only a file that would lose something by that, such as its hard
 *  links or alternate streams, is overwritten in place; when that fails, the old content is put back.
 *
 *  @param job       the job; null does nothing and returns PROF_OK.
 *  @param fileName  the file; null for the name that the job was opened with.
 *  @param format    PROF_FORMAT_*: a form and flags. Other forms are XML, other flags are ignored.
 *  @return PROF_OK; PROF_ERR_SAVE if the save failed; PROF_ERR_FORMAT if the form is not supported.
 *          GetLastError() is ERROR_SUCCESS or the system's error.
 */
VXUT_API int32_t ProfSaveW(HPROF job, const wchar_t* fileName, uint32_t format);
VXUT_API int32_t ProfSaveA(HPROF job, const char* fileName, uint32_t format);

/** Saves a profile to a stream, from its start, and ends the stream after it.
 *
 *  @param job     the job; null does nothing and returns PROF_OK.
 *  @param stream  the stream; null for the file or stream that the job keeps.
 *  @param format  as for ProfSaveW().
 *  @return PROF_OK; PROF_ERR_WRITE if not everything could be written; PROF_ERR_SAVE if there is no stream;
 *          PROF_ERR_FORMAT if the form is not supported. GetLastError() is ERROR_SUCCESS or the system's
 *          error.
 */
VXUT_API int32_t ProfSaveToStream(HPROF job, IStream* stream, uint32_t format);

/** Returns an option of the process. May be called on any thread.
 *
 *  @param option  PROF_OPTION_CODE_PAGE.
 *  @return the option's value as it was set; 0 for other options.
 */
VXUT_API uint32_t ProfGetOption(uint32_t option);

/** Sets an option of the process. May be called on any thread.
 *
 *  @param option  PROF_OPTION_CODE_PAGE; others are ignored.
 *  @param value   the code page; its high 16 bits are ignored.
 */
VXUT_API void ProfSetOption(uint32_t option, uint32_t value);

/** Does nothing; kept for callers. */
VXUT_API void ProfSetDebug(void);

/** Returns the version of the profile store.
 *
 *  @param selector  0 for both numbers, the major one in bits 8 to 15 and the minor one in bits 0 to 7; 1
 *                   for the major number; 2 for the minor number.
 *  @return the version; 0xFFFFFFFF for other selectors.
 */
VXUT_API uint32_t ProfGetVersion(uint32_t selector);

#endif
