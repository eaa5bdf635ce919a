/** @file
 * Profile jobs: opening, saving, closing.
 */
#ifndef VXUT_PROF_JOB_H
#define VXUT_PROF_JOB_H

#include "prof/codes.h"
#include "prof/types.h"

/** Opens a profile file, reads it and closes the file. The form is recognised.
 *
 *  A file that another process holds is tried again for up to 10 s. A bad file leaves what was read of it in
 * the tree, and the job is usable.
 *
 *  @param fileName  null for an empty profile without a file.
 *  @return the job, also if the file could not be read: ask ProfGetError() for PROF_OK, PROF_ERR_OPEN,
 *          PROF_ERR_FORMAT or PROF_ERR_BUSY. Null only when memory is short. Close it with ProfJobClose().
 *
 *  Example:
 *  @code
 *      HPROF job = ProfJobOpenW(L"settings.prf");
 *      int32_t width;
 *      ProfGetIntW(job, NULL, L"Window/Width", &width, 640);
 *      ProfSetIntW(job, NULL, L"Window/Width", width + 1);
 *      ProfSaveW(job, NULL, PROF_FORMAT_TEXT);
 *      ProfJobClose(job);
 *  @endcode
 */
VXUT_API HPROF ProfJobOpenW(const wchar_t* fileName);
VXUT_API HPROF ProfJobOpenA(const char* fileName);

/** Opens a profile file as ProfJobOpenW() does, but creates a missing one and keeps it open for reading and
 *  writing until the job is closed; others may read. A file that could not be read is not kept.
 *
 *  @return as ProfJobOpenW(); PROF_ERR_SAVE stands for a file that could not be opened.
 */
VXUT_API HPROF ProfJobOpenExclusiveW(const wchar_t* fileName);
VXUT_API HPROF ProfJobOpenExclusiveA(const char* fileName);

/** Opens a profile on a stream: ProfJobOpenStreamObjectW() with the name "/" and level 0. */
VXUT_API HPROF ProfJobOpenStream(IStream* stream);

/** Opens a profile on a stream, to which the job adds a reference and which it keeps until it is closed, even
 * if it could not be read.
 *
 *  @param stream  null for an empty profile.
 *  @param name    the root's name. Null counts as "/".
 *  @param level   0 for a whole file. Above 0 the profile is a fragment inside a larger UTF-16 text: it is
 * read from where the stream stands, and written with this depth, without byte order mark and header.
 *  @return as ProfJobOpenW().
 */
VXUT_API HPROF ProfJobOpenStreamObjectW(IStream* stream, const wchar_t* name, uint32_t level);
VXUT_API HPROF ProfJobOpenStreamObjectA(IStream* stream, const char* name, uint32_t level);

/** Adds a reference to a job. May be called on any thread. */
VXUT_API void ProfJobAddRef(HPROF job);

/** Drops a reference to a job. The last one closes its file and frees the tree; nothing is saved. */
VXUT_API void ProfJobClose(HPROF job);

/** Gives the last error of the job's open, or PROF_ERR_JOB for the null job. */
VXUT_API int32_t ProfGetError(HPROF job);

/** Saves a profile to a file. An empty profile leaves an empty file.
 *
 *  A save under the name of the file that the job keeps, "(Stream)" being the name of a stream, goes to that
 * file. Any other file is replaced; one that is in use is tried again for up to 10 s.
 *
 *  @param fileName  null for the job's own name.
 *  @param format    PROF_FORMAT_*: a form and flags. Unknown forms are XML, unknown flags are ignored.
 *  @return PROF_OK, PROF_ERR_SAVE, or PROF_ERR_FORMAT for a form that is not supported.
 */
VXUT_API int32_t ProfSaveW(HPROF job, const wchar_t* fileName, uint32_t format);
VXUT_API int32_t ProfSaveA(HPROF job, const char* fileName, uint32_t format);

/** Saves a profile to the start of a stream and ends the stream there.
 *
 *  @param stream  null for the file or stream that the job keeps.
 *  @param format  as for ProfSaveW().
 *  @return PROF_OK, PROF_ERR_WRITE if something could not be written in full, PROF_ERR_SAVE if there is no
 * stream, or PROF_ERR_FORMAT for a form that is not supported.
 */
VXUT_API int32_t ProfSaveToStream(HPROF job, IStream* stream, uint32_t format);

/** Gives an option of the process: PROF_OPTION_CODE_PAGE; 0 for others. */
VXUT_API uint32_t ProfGetOption(uint32_t option);

/** Sets an option of the process. Others than PROF_OPTION_CODE_PAGE are ignored, and so are the high 16 bits
 * of a code page. */
VXUT_API void ProfSetOption(uint32_t option, uint32_t value);

/** Does nothing; kept for callers. */
VXUT_API void ProfSetDebug(void);

/** Gives the version: selector 0 both numbers (major in the high byte), 1 the major, 2 the minor number, any
 * other 0xFFFFFFFF. */
VXUT_API uint32_t ProfGetVersion(uint32_t selector);

#endif
