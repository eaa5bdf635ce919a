/** @file
 * The protocol by which a viewer receives the debug lines of all processes of its session.
 *
 * A viewer owns a top-level window and optionally a mailslot. It stores the handle of its window in a block
 * of shared memory that is mapped by every process with the library. A process reads the block before each
 * line that it writes, so a viewer may start and stop at any time:
 *
 *  1. Create the mailslot UTIL_TRACE_MAILSLOT and a window of the class UTIL_TRACE_WINDOW_CLASS.
 *  2. Create the block: CreateFileMappingW on the paging file, PAGE_READWRITE | SEC_COMMIT, a security
 *     descriptor with a null access list, the size of UtilTraceBlock and the name UTIL_TRACE_BLOCK. Store the
 *     window's handle in it.
 *  3. Answer the queries, which are WM_COPYDATA messages with dwData UTIL_TRACE_QUERY_*, and receive the
 *     records.
 *  4. To end, set the block's window to 0 and continue to receive records for a moment: a process notices the
 *     change when it writes its next line, and sends its leave line.
 *
 * A record is 8-bit text of at most UTIL_TRACE_RECORD_BYTES bytes without line end; a longer line arrives in
 * several. It arrives through the mailslot, followed by the byte UTIL_TRACE_RECORD_END, or, if a process
 * finds no mailslot, as a WM_COPYDATA message with dwData UTIL_TRACE_LINE, followed by a zero byte.
 *
 * Messages are to be answered at once. A process waits for an answer UTIL_TRACE_PATIENCE milliseconds at
 * most. Waits of more than 100 milliseconds add up, and when their sum reaches UTIL_TRACE_PATIENCE the
 * process sends no messages for 10 seconds; it writes to the mailslot as long as that has space. The records
 * of this time are lost, which shows in the digit that counts the lines.
 *
 * The text column of a process's first record, the join line, begins with "++", that of its last record, the
 * leave line, with "--". Both contain the library's version and, in brackets, the path of the process; the
 * join line also the library's directory, unless the library is the program itself.
 */
#ifndef VXUT_UTIL_TRACE_VIEWER_H
#define VXUT_UTIL_TRACE_VIEWER_H

#include <stdint.h>

#define UTIL_TRACE_WINDOW_CLASS L"QzrClsTRCWIN16"      /**< the class of a viewer's window */
#define UTIL_TRACE_MAILSLOT L"\\\\.\\mailslot\\trcwin" /**< the name of a viewer's mailslot */
#define UTIL_TRACE_BLOCK L"TRCWINGlobalData"           /**< the name of the shared block */

enum {
    UTIL_TRACE_RECORD_BYTES = 510, /**< the maximum length of a record's text */
    UTIL_TRACE_RECORD_END = 0x0D,  /**< the byte that follows a record in the mailslot */
    UTIL_TRACE_PATIENCE = 5000     /**< the longest wait for one answer, in milliseconds */
};

/** The dwData of a WM_COPYDATA message to a viewer. */
enum {
    UTIL_TRACE_LINE = 0,            /**< lpData is a record */
    UTIL_TRACE_QUERY_UTF8 = 6,      /**< an answer other than 0 selects UTF-8, 0 the ANSI code page */
    UTIL_TRACE_QUERY_CAPABILITY = 7 /**< the answer is stored for later use */
};

/** The shared block, which is created zeroed. */
typedef struct UtilTraceBlock {
    uint64_t window; /**< the viewer's window, 0 if there is none; written in one access */
} UtilTraceBlock;

#endif
