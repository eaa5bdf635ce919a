/** @file
 * Download of a file, with progress.
 *
 * @code
 *     static int32_t STDMETHODCALLTYPE Report(UtilDownloadCallback* self, uint32_t kind, int32_t value,
 *                                             const wchar_t* text) {
 *         if (kind == UTIL_DOWNLOAD_DONE) wprintf(L"%s\n", text);
 *         return 0;
 *     }
 *     const UtilDownloadCallbackTable table = {Report};
 *     UtilDownloadCallback callback = {&table};
 *     if (UtilDownloadFile(L"https://example.org/list.txt", &callback) < 0) ...
 * @endcode
 */
#ifndef VXUT_UTIL_DOWNLOAD_H
#define VXUT_UTIL_DOWNLOAD_H

#include "util/types.h"

#include <windows.h>

/** What a callback is told. */
enum {
    /** value is the percentage, 0 to 100, or -1 if nothing is new; text is the system's status text or null.
     *  It is 0 while the size is unknown. */
    UTIL_DOWNLOAD_PROGRESS = 0,
    UTIL_DOWNLOAD_DONE = 1,  /**< value is 100; text is the path of the file, which the host deletes */
    UTIL_DOWNLOAD_FAILED = 2 /**< value is 100; text describes the failure: "INET_E_CANNOT_CONNECT" */
};

typedef struct UtilDownloadCallback UtilDownloadCallback;

/** The functions of a callback. */
typedef struct UtilDownloadCallbackTable {
    /** The text is valid during the call only. The result is ignored. */
    int32_t(STDMETHODCALLTYPE* Report)(UtilDownloadCallback* self, uint32_t kind, int32_t value,
                                       const wchar_t* text);
} UtilDownloadCallbackTable;

/** A host's object that is told about a download: in C++, any object whose first virtual function is such a
 *  Report(). */
struct UtilDownloadCallback {
    const UtilDownloadCallbackTable* table;
};

/** Downloads a file to the user's temp directory. Returns when the file is complete or the download has
 *  failed, at the latest 45 seconds after the last byte.
 *
 *  Progress is reported on another thread; progress of -1, which comes ten times a second and whenever the
 * calling thread has got a window message, and the two final reports on the calling thread, which may
 * dispatch its messages then. Nothing is reported after the call has returned.
 *
 *  An answer that is not the file is a failure: 404 and 410 (INET_E_OBJECT_NOT_FOUND), 401 and 407
 * (INET_E_AUTHENTICATION_REQUIRED) and all others from 400 on (INET_E_DOWNLOAD_FAILURE). So is a file that is
 * shorter than announced.
 *
 *  @param url       of any scheme that the system can download; null and empty ones fail.
 *  @param callback  may be null.
 *  @return the system's status: not negative on success, else INET_E_* or another HRESULT: E_POINTER if
 * callback is no such object.
 */
VXUT_API int32_t UtilDownloadFile(const wchar_t* url, UtilDownloadCallback* callback);

#endif
