/** @file
 * How a viewer takes the debug lines of all processes of its session.
 *
 * A viewer owns a top-level window and, if it likes, a mailslot, and writes its window into a block of shared
 * memory that every process with the library maps. Each process looks into the block before each line that
 * it writes, so viewers may come and go at any time:
 *
 *  1. Create the mailslot UTIL_TRACE_MAILSLOT and a window of the class UTIL_TRACE_WINDOW_CLASS.
 *  2. Create the block: CreateFileMappingW on the paging file, PAGE_READWRITE | SEC_COMMIT, a security
 *     descriptor with a null access list, the size of UtilTraceBlock and the name UTIL_TRACE_BLOCK. Store the
 *     window in it.
 *  3. Answer the queries, which are WM_COPYDATA messages with dwData UTIL_TRACE_QUERY_*, and take the
 * records.
 *  4. In the end set the block's window to 0 and go on taking records for a moment: a process notices when it
 *     writes its next line, and says good-bye.
 *
 * A record is 8-bit text of at most UTIL_TRACE_RECORD_BYTES bytes without line end; a longer line arrives in
 * several. It comes through the mailslot, with the byte UTIL_TRACE_RECORD_END behind it, or, for a process
 * that finds no mailslot, as a WM_COPYDATA message with dwData UTIL_TRACE_LINE and a zero byte behind it.
 * Each message has to be answered within UTIL_TRACE_PATIENCE milliseconds.
 *
 * A process's first record begins with "++" in its text column, its last one with "--": both tell the
 * library's version and, in brackets, the path of the process; the first one also the library's directory,
 * if the library is not the process itself.
 */
#ifndef VXUT_UTIL_TRACE_VIEWER_H
#define VXUT_UTIL_TRACE_VIEWER_H

#include <stdint.h>

#define UTIL_TRACE_WINDOW_CLASS L"QzrClsTRCWIN16"      /**< the class of a viewer's window */
#define UTIL_TRACE_MAILSLOT L"\\\\.\\mailslot\\trcwin" /**< the name of a viewer's mailslot */
#define UTIL_TRACE_BLOCK L"TRCWINGlobalData"           /**< the name of the shared block */

enum {
    UTIL_TRACE_RECORD_BYTES = 510, /**< the most text that one record holds */
    UTIL_TRACE_RECORD_END = 0x0D,  /**< the byte behind a record in the mailslot */
    UTIL_TRACE_PATIENCE = 5000     /**< how long a process waits for a viewer at most, in milliseconds */
};

/** The dwData of a WM_COPYDATA message to a viewer. */
enum {
    UTIL_TRACE_LINE = 0,            /**< lpData is a record */
    UTIL_TRACE_QUERY_UTF8 = 6,      /**< answer other than 0 to get UTF-8, else the text is of the ANSI code
                                         page */
    UTIL_TRACE_QUERY_CAPABILITY = 7 /**< the answer is noted for later use */
};

/** The shared block, which is made zeroed. */
typedef struct UtilTraceBlock {
    uint64_t window; /**< the viewer's window, 0 when there is none; written in one access */
} UtilTraceBlock;

#endif
