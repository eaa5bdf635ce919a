/** @file
 * Splitting and building of paths, properties of volumes, and tokens in folder paths.
 *
 * Capacities are in 16-bit units and include the terminator. The functions may be called from any thread.
 */
#ifndef VXUT_UTIL_PATH_H
#define VXUT_UTIL_PATH_H

#include "util/types.h"

#include <wtypes.h>

/** Capacities, in units, of the buffers of UtilSplitpath() and UtilMergepath(). */
enum {
    UTIL_PATH_UNITS = 260,
    UTIL_DRIVE_UNITS = 3,
    UTIL_DIRECTORY_UNITS = 256,
    UTIL_NAME_UNITS = 256,
    UTIL_EXTENSION_UNITS = 256
};

/** Properties of a volume, filled in by UtilGetFSInfo(). */
typedef struct UtilFSInfo {
    uint32_t size;                   /**< of this structure in bytes: 20, set by the caller */
    uint32_t maximumPath;            /**< UTIL_PATH_UNITS */
    uint32_t maximumDrive;           /**< UTIL_DRIVE_UNITS */
    uint32_t maximumComponentLength; /**< of one name on this volume, in units; 0 if it is not known */
    uint32_t flags;                  /**< UTIL_FS_* */
} UtilFSInfo;

/** Flags of a volume. */
#define UTIL_FS_CASE_SENSITIVE 0x01u /**< names that differ in case only are different files */
#define UTIL_FS_CASE_PRESERVED 0x02u /**< names keep their case */
#define UTIL_FS_UNICODE 0x04u        /**< names are stored as Unicode */
#define UTIL_FS_LONG_NAMES 0x08u     /**< names may have more than 12 units */
#define UTIL_FS_COMPRESSED 0x10u     /**< the volume is compressed */

/** Result of UtilGetFSInfo() for a structure of the wrong size. */
#define UTIL_FS_ERR_SIZE 64u

/** Splits a path into its parts. A missing part is returned empty; if a part does not fit, all are empty.
 *
 *  @param path       the path, absolute or not.
 *  @param drive      3 units: "C:". This and the other targets may be null if they are not wanted.
 *  @param directory  256 units, with the trailing separator.
 *  @param name       256 units.
 *  @param extension  256 units, with the leading dot.
 *  @return 0, or the error number of `_wsplitpath_s` (EINVAL, ERANGE).
 *
 *  Example:
 *  @code
 *      wchar_t name[UTIL_NAME_UNITS], extension[UTIL_EXTENSION_UNITS];
 *      UtilSplitpath(L"C:\\data\\a.txt", NULL, NULL, name, extension); // "a", ".txt"
 *  @endcode
 */
VXUT_API int32_t UtilSplitpath(const wchar_t* path, wchar_t* drive, wchar_t* directory, wchar_t* name,
                               wchar_t* extension);

/** Builds a path from its parts, any of which may be null or empty. Adds a missing colon, separator or dot.
 *
 *  @param target  260 units.
 *  @return 0, or the error number of `_wmakepath_s` (EINVAL, ERANGE) with target empty.
 */
VXUT_API int32_t UtilMergepath(wchar_t* target, const wchar_t* drive, const wchar_t* directory,
                               const wchar_t* name, const wchar_t* extension);

/** Makes a path absolute. Nothing is looked up on disk.
 *
 *  @param target    receives the path; empty if the path does not fit or cannot be made absolute.
 *  @param relative  the path; null or empty is the current directory.
 *  @param capacity  of target. With 0 nothing is written.
 */
VXUT_API void UtilFullpath(wchar_t* target, const wchar_t* relative, uint32_t capacity);

/** Queries the properties of a volume. If the query fails, component length and flags are 0.
 *
 *  @param root  root path of the volume, with a trailing backslash ("C:\\"); null is the volume of the
 * current directory.
 *  @param info  the caller sets its size; the other fields are filled in.
 *  @return UTIL_FS_CASE_SENSITIVE or 0; UTIL_FS_ERR_SIZE, with info unchanged, if its size is not 20.
 */
VXUT_API uint32_t UtilGetFSInfo(const wchar_t* root, UtilFSInfo* info);

/** Replaces each %NAME% in a path with the environment variable of that name. If there is none, replaces it
 * with the shell folder of that name ("%PERSONAL%"), that of the user before that of the machine. Unknown
 * names are left unchanged.
 *
 *  @param path    the text. The call fails if it is null.
 *  @param target  receives a new BSTR, which the caller frees with SysFreeString(); null on failure. Its old
 * value is ignored.
 *  @return 1 on success, 0 on failure.
 */
VXUT_API int UtilExpandDefaultTokensOfFolderPath(const wchar_t* path, BSTR* target);

/** Converts a path between a share and the drive that is connected to it: UtilEnsureLocalPath() makes
 * "N:\a.txt" of "\\server\share\a.txt" if the user has a permanent connection of N: to the share, and
 * UtilEnsureUNCPath() the reverse. Other paths are returned unchanged. The calls may take long while the
 * network does not answer.
 *
 *  @param path    the path. The call fails if it is null.
 *  @param target  receives a new BSTR, which the caller frees with SysFreeString(); null on failure. Its old
 * value is ignored.
 *  @return 1 on success, 0 on failure.
 */
VXUT_API int UtilEnsureLocalPath(const wchar_t* path, BSTR* target);
VXUT_API int UtilEnsureUNCPath(const wchar_t* path, BSTR* target);

#endif
