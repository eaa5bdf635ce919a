/** @file
 * Files and streams inside a profile.
 *
 * An item can hold the bytes of a whole file as text: "@2@" and Base64 of the compressed bytes, which are
 * encrypted if a password is given. A list can hold a folder of files: each file is a list named "File.Entry"
 * with the items "Name", the file name without folder, and "Contents". Files may have up to 2^32 - 1 bytes.
 *
 * Conventions of these functions:
 *  1. `job` is the job. Null does nothing and returns 0.
 *  2. `list` is where a relative path starts, or the list of files; null for the root.
 *  3. `name` is the path of the item. ProfAppend...() adds an item at the end of its list, even if the list
 *     contains an item of that name; null is an empty name. Missing lists are created.
 *  4. `password` is null or empty for none. It is used in the default code page, up to 72 bytes. Contents of
 *     fewer than 8 bytes before encryption are not encrypted. A password that does not fit is not detected:
 *     the contents are empty then, or meaningless.
 *  5. GetLastError() afterwards is ERROR_SUCCESS if and only if everything was read or written; otherwise it
 *     is the system's error, or ERROR_NOT_ENOUGH_MEMORY. The null job leaves it alone.
 *  6. Files that are written hold the old or the new content whole, whatever happens; one that is in use is
 *     not waited for.
 *
 *  Example:
 *  @code
 *      HPROF job = ProfJobOpenW(NULL);
 *      HPROFLIST list = ProfCreateListW(job, NULL, L"Templates");
 *      int32_t found = ProfAppendFilesW(job, list, L"C:\\Templates\\*.dot", NULL);
 *      if (GetLastError() != ERROR_SUCCESS) report_unreadable_file();
 *      ProfSaveW(job, L"templates.prf", PROF_FORMAT_TEXT | PROF_FORMAT_PACKED);
 *      ProfExtractFilesW(job, list, L"D:\\Copy", NULL);
 *      ProfJobClose(job);
 *  @endcode
 */
#ifndef VXUT_PROF_EMBEDDED_H
#define VXUT_PROF_EMBEDDED_H

#include "prof/codes.h"
#include "prof/types.h"

/** Adds an item with the contents of a file. A file that is empty or cannot be read makes an empty value.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param name      see above.
 *  @param password  see above.
 *  @param fileName  the file, opened for reading and shared with readers; null cannot be read.
 */
VXUT_API void ProfAppendFileW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                              const wchar_t* fileName);
VXUT_API void ProfAppendFileA(HPROF job, HPROFLIST list, const char* name, const char* password,
                              const char* fileName);

/** Writes the contents of an item to a file, which is replaced, or created if it is missing.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param name      see above; null finds nothing.
 *  @param password  see above.
 *  @param fileName  the file; null cannot be written.
 *  @return PROF_OK, also for contents that are damaged, which yield an empty file; PROF_ERR_NOT_FOUND if the
 *          item is missing or its value is empty, PROF_ERR_WRITE if the file could not be written,
 *          PROF_ERR_MEMORY: the file is unchanged then.
 */
VXUT_API int32_t ProfGetFileW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                              const wchar_t* fileName);
VXUT_API int32_t ProfGetFileA(HPROF job, HPROFLIST list, const char* name, const char* password,
                              const char* fileName);

/** Adds an item with the contents of a stream. A stream that is empty or cannot be read makes an empty value.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param name      see above.
 *  @param password  see above.
 *  @param stream    stays the caller's; read from its start to its end, its position afterwards is not
 *                   specified. Null cannot be read.
 */
VXUT_API void ProfAppendStreamW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                                IStream* stream);
VXUT_API void ProfAppendStreamA(HPROF job, HPROFLIST list, const char* name, const char* password,
                                IStream* stream);

/** Replaces the content of a stream by the contents of an item, and moves the stream to its start.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param name      see above; null finds nothing.
 *  @param password  see above.
 *  @param stream    stays the caller's. Null cannot be written.
 *  @return as for ProfGetFileW(). After PROF_ERR_WRITE the stream has its old content, provided that it can
 *          be read and still be written.
 */
VXUT_API int32_t ProfGetStreamW(HPROF job, HPROFLIST list, const wchar_t* name, const wchar_t* password,
                                IStream* stream);
VXUT_API int32_t ProfGetStreamA(HPROF job, HPROFLIST list, const char* name, const char* password,
                                IStream* stream);

/** Adds all files that a pattern matches to a list, without subfolders. Files that are empty or cannot be
 *  read are counted, but get no entry.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param pattern   a path with wildcards in its last part; null matches nothing.
 *  @param password  see above.
 *  @return the number of matches. 0 if memory ran out: the list is unchanged then.
 */
VXUT_API int32_t ProfAppendFilesW(HPROF job, HPROFLIST list, const wchar_t* pattern, const wchar_t* password);
VXUT_API int32_t ProfAppendFilesA(HPROF job, HPROFLIST list, const char* pattern, const char* password);

/** Writes all files of a list to a folder. Files of the same names are replaced.
 *
 *  Nothing is ever written outside the folder: an entry is passed over if its "Name" has a folder, a drive or
 *  a stream in it, is a device such as "nul.txt", ends in a dot or a blank, or is that of a link. So is one
 *  without "Name", and one that cannot be written; each is reported on the debug channel and shows in
 *  GetLastError(). An entry without "Contents" deletes the file of its name.
 *
 *  @param job       see above.
 *  @param list      see above.
 *  @param folder    is created if it is missing; its parent must exist. Null cannot be created.
 *  @param password  see above.
 *  @return PROF_OK, also if the list has no files or some were passed over; PROF_ERR_WRITE if there is no
 *          folder; PROF_ERR_MEMORY, with the files before the one that needs it written.
 */
VXUT_API int32_t ProfExtractFilesW(HPROF job, HPROFLIST list, const wchar_t* folder, const wchar_t* password);
VXUT_API int32_t ProfExtractFilesA(HPROF job, HPROFLIST list, const char* folder, const char* password);

#endif
