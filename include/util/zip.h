/** @file
 * ZIP archives: building them from files and folders.
 *
 * Files are compressed when they are added, each into a temporary file that stays open until the archive is
 * closed. UtilZIPClose() writes the archive; until then it is an empty file.
 *
 * Conventions:
 *  - Names are stored in code page 437 if the name and the comment of the entry have no other characters,
 *    else in UTF-8. A drive or a server at the beginning of a name is removed, and "\" becomes "/".
 *  - There is no ZIP64: files, compressed files and archives of more than 4 GB fail. The number of entries is
 *    stored modulo 65536.
 *  - An archive is used by one thread at a time; different archives are independent.
 *  - The reason of a failure is written to the debug channel.
 *
 * @code
 *     HUTILZIP zip = UtilZIPCreate(L"C:\\backup.zip", L"Daily backup");
 *     UtilZIPAppend(zip, L"C:\\notes.txt", NULL, L"notes.txt");
 *     UtilZIPAppendList(zip, L"C:\\pictures", L"*.png", UTIL_ZIP_RECURSIVE);
 *     if (UtilZIPClose(zip) != UTIL_ZIP_OK) ...
 * @endcode
 */
#ifndef VXUT_UTIL_ZIP_H
#define VXUT_UTIL_ZIP_H

#include "util/types.h"

/** An archive that is being built. UtilZIPClose() frees it. */
typedef struct UtilZIPRecord* HUTILZIP;

/** Result codes. */
#define UTIL_ZIP_OK 0
#define UTIL_ZIP_ERR_SOURCE (-1) /**< the source cannot be opened */
#define UTIL_ZIP_ERR_ENTRY (-2)  /**< the entry cannot be made: size, compression, names, memory */
#define UTIL_ZIP_ERR_WRITE (-3)  /**< the archive cannot be written or exceeds 4 GB */

/** Flag of UtilZIPAppendList(): subfolders too. */
#define UTIL_ZIP_RECURSIVE 0x01u

/** Starts an archive. An existing file is replaced by an empty one at once, and nobody else can open the file
 * until UtilZIPClose(). Without that call the file stays empty.
 *
 *  @param path     the file of the archive.
 *  @param comment  of the archive, stored in the default code page, at most 65535 bytes; may be null.
 *  @return the archive, which the caller closes with UtilZIPClose(); null if the file cannot be created, or
 * if the comment is too long, and then an existing file is left alone.
 */
VXUT_API HUTILZIP UtilZIPCreate(const wchar_t* path, const wchar_t* comment);

/** Adds a file. Others may read the file meanwhile, and it must not be open for writing anywhere. After a
 * failure the archive is as it was.
 *
 *  @param zip      may be null; then nothing is done and the result is UTIL_ZIP_OK.
 *  @param source   path of the file.
 *  @param comment  of the entry; may be null.
 *  @param name     of the entry; null or empty for the source path. Name and comment have at most 65535 bytes
 * each as they are stored.
 *  @return UTIL_ZIP_OK, UTIL_ZIP_ERR_SOURCE or UTIL_ZIP_ERR_ENTRY.
 */
VXUT_API int32_t UtilZIPAppend(HUTILZIP zip, const wchar_t* source, const wchar_t* comment,
                               const wchar_t* name);

/** Adds the files of a folder under their names without the folder. Files that cannot be added are left out.
 * Folders that lead back to themselves through links are not entered.
 *
 *  @param zip      may be null; then nothing is done and the result is UTIL_ZIP_OK.
 *  @param folder   path of the folder; null or empty for the current directory.
 *  @param pattern  with the wildcards "*" and "?", for the files of the folder itself; null for all files.
 *  @param flags    UTIL_ZIP_RECURSIVE adds each subfolder, with all of its files and subfolders regardless of
 * the pattern.
 *  @return UTIL_ZIP_OK; UTIL_ZIP_ERR_ENTRY if memory is exhausted, and then the files added so far stay.
 */
VXUT_API int32_t UtilZIPAppendList(HUTILZIP zip, const wchar_t* folder, const wchar_t* pattern,
                                   uint32_t flags);

/** Writes the archive and frees everything, also after a failure.
 *
 *  @param zip  may be null; then the result is UTIL_ZIP_OK. The handle is invalid afterwards.
 *  @return UTIL_ZIP_OK, or UTIL_ZIP_ERR_WRITE, after which the file is incomplete.
 */
VXUT_API int32_t UtilZIPClose(HUTILZIP zip);

#endif
