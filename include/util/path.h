/** @file
 * File names taken apart and built, volumes, and tokens in folder paths.
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

/** What UtilGetFSInfo() tells of a volume. */
typedef struct UtilFSInfo {
    uint32_t size;                   /**< of this structure in bytes: 20, set by the caller */
    uint32_t maximumPath;            /**< units of a path: 260 */
    uint32_t maximumDrive;           /**< units of its drive part: 3 */
    uint32_t maximumComponentLength; /**< units of one name on this volume */
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

/** Takes a path apart. Parts that are absent come out empty; a part that does not fit empties them all.
 *
 *  @param path       the path, absolute or not.
 *  @param drive      3 units: "C:". This and the other parts may be null if they are not wanted.
 *  @param directory  256 units, with the separator at the end.
 *  @param name       256 units.
 *  @param extension  256 units, with the dot.
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

/** Builds a path from its parts, any of which may be null or empty. Adds the colon, separator and dot that
 * the parts lack.
 *
 *  @param target  260 units.
 *  @return 0, or the error number of `_wmakepath_s` (EINVAL, ERANGE); target is then empty.
 */
VXUT_API int32_t UtilMergepath(wchar_t* target, const wchar_t* drive, const wchar_t* directory,
                               const wchar_t* name, const wchar_t* extension);

/** Makes a relative path absolute. A path that does not fit leaves target without a useful text.
 *
 *  @param target    receives the path.
 *  @param relative  the path; null or empty stands for the current directory.
 *  @param capacity  units of target.
 */
VXUT_API void UtilFullpath(wchar_t* target, const wchar_t* relative, uint32_t capacity);

/** Tells what a volume can do. If the volume cannot be asked, component length and flags are 0.
 *
 *  @param root  root path of the volume, with its backslash ("C:\\"); null is the volume of the current
 * directory.
 *  @param info  its size must be set; filled in.
 *  @return UTIL_FS_CASE_SENSITIVE or 0, or UTIL_FS_ERR_SIZE, and info is untouched, if the size is not 20.
 */
VXUT_API uint32_t UtilGetFSInfo(const wchar_t* root, UtilFSInfo* info);

/** Replaces each %NAME% of a path by the environment variable of that name or, failing that, by the user's or
 * the machine's shell folder of that name ("%PERSONAL%"). Unknown names stay in the text.
 *
 *  @param path    the text; null gives 0.
 *  @param target  receives a new BSTR, which the caller frees with SysFreeString(). Not looked at before, and
 * null after a failure.
 *  @return 1 on success, else 0.
 */
VXUT_API int UtilExpandDefaultTokensOfFolderPath(const wchar_t* path, BSTR* target);

#endif
