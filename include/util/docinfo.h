/** @file
 * Document information: title, author, dates and other properties of documents, and the target of shortcuts.
 *
 * A list answers requests and keeps the answers for a time. A file on a network share is read on a thread of
 * its own, and a request waits for it only as long as its caller says. A share that does not answer is
 * remembered for the life of the process and not asked again.
 *
 * The formats are listed in util/docinfo_formats.h. A file of another type has the time of its last write and
 * no other property.
 *
 * A list may be used by any number of threads at the same time, except that UtilDocInfoClose() must be the
 * last call. No lock is held while a caller's memory is accessed.
 *
 * @code
 *     HUTILDOCINFO list = UtilDocInfoOpen(60);
 *     VARIANT title;
 *     DocInfoRequest request = {0};
 *     request.Size = sizeof request;
 *     VariantInit(&title);
 *     request.Title = &title;
 *     if (UtilDocInfoGet(list, L"C:\\letters\\offer.doc", &request, 5) && V_VT(&title) == VT_BSTR)
 *         wprintf(L"%s\n", V_BSTR(&title));
 *     VariantClear(&title);
 *     UtilDocInfoClose(list);
 * @endcode
 */
#ifndef VXUT_UTIL_DOCINFO_H
#define VXUT_UTIL_DOCINFO_H

#include "util/types.h"

#include <windows.h>
/* After windows.h, which it needs: */
#include <oaidl.h>

/** A list of documents. UtilDocInfoClose() frees it. */
typedef struct UtilDocInfoRecord* HUTILDOCINFO;

/** Which properties are wanted. Each target is null or a VARIANT that the caller has initialised and clears
 * afterwards; its old value is released. */
typedef struct DocInfoRequest {
    uint32_t Size;         /**< of this record in bytes; below 72 nothing is written */
    VARIANT* Created;      /**< VT_DATE, local time; 0.0 if the document does not say */
    VARIANT* Modified;     /**< VT_DATE, local time; that of the file if the document does not say */
    VARIANT* Title;        /**< VT_BSTR as all below, VT_EMPTY if the document has none */
    VARIANT* Subject;      /**< */
    VARIANT* Author;       /**< of a message: its sender */
    VARIANT* LastAuthor;   /**< of a message: its recipients */
    VARIANT* Keywords;     /**< */
    VARIANT* Comments;     /**< */
    VARIANT* ResolvedPath; /**< the path, or the target of a shortcut; only if Size is at least 80 */
} DocInfoRequest;

/** Results of UtilDocInfoShareAccessibility(). */
#define UTIL_SHARE_INACCESSIBLE 0u
#define UTIL_SHARE_ACCESSIBLE 1u
#define UTIL_SHARE_NONE 0xFFFFFFFFu /**< the path is on no share */

/** Opens a list of documents.
 *
 *  @param cacheSeconds  how long an answer is valid. After that a request looks at the file again, and reads
 * it if it was written meanwhile. 0 turns the cache off: each request reads the file.
 *  @return the list, which the caller closes with UtilDocInfoClose(); null if memory is exhausted.
 */
VXUT_API HUTILDOCINFO UtilDocInfoOpen(uint32_t cacheSeconds);

/** Frees a list. Waits for reads on shares that requests have left behind.
 *
 *  @param list  may be null. The handle is invalid afterwards.
 */
VXUT_API void UtilDocInfoClose(HUTILDOCINFO list);

/** Finds the properties of a document.
 *
 *  @param list            may be null; then the result is 0.
 *  @param path            of the document or of a shortcut (.lnk) to it. What follows a "|" is not part of
 * the path, but makes the request one with a cached answer of its own.
 *  @param request         receives the properties; null only refreshes the cache.
 *  @param timeoutSeconds  how long to wait for a file on a share. If it is over, the result is the cached one
 * or 0. The window messages of the calling thread are dispatched while it waits. The first request to a share
 * tests on the calling thread whether the share exists, which is not limited.
 *  @return 1 if the file was opened, also if nothing could be read from it. 0, with nothing written, if not,
 * or if memory is exhausted; some of the targets may then be written.
 */
VXUT_API uint32_t UtilDocInfoGet(HUTILDOCINFO list, const wchar_t* path, const DocInfoRequest* request,
                                 uint32_t timeoutSeconds);

/** Tells whether requests have found the share of a path to be unreachable. Nothing is tested.
 *
 *  @param path  a UNC path, or one on a drive that is connected to a share. May be null.
 *  @return UTIL_SHARE_ACCESSIBLE, also for a share that no request has tested, UTIL_SHARE_INACCESSIBLE or
 * UTIL_SHARE_NONE.
 */
VXUT_API uint32_t UtilDocInfoShareAccessibility(const wchar_t* path);

#endif
