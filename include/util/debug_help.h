/** @file
 * Stack traces with symbols, parameters and locals, lists of loaded modules, and packed minidumps, made by
 * the process of itself.
 *
 * Everything goes through a job. A process has one at a time: while a job is open, opening another one takes
 * five seconds and ends with a job whose calls fail, also on the thread that has the first. The work is done
 * on a thread of the job, which is terminated after 60 seconds; the job then fails in all further calls. The
 * system's dbghelp.dll is looked for in the folder of the program, in those of the Debugging Tools for
 * Windows, and then as LoadLibrary() does.
 *
 * A job belongs to the thread that opened it. A null job makes each function do nothing and return 0.
 *
 * @code
 *     HUTILDEBUGHELP job = UtilDebugHelpJobOpen();
 *     IDBGStackTraceList* frames = NULL;
 *     if (UtilDebugHelpGetStackTrace(job, &frames, NULL)) {
 *         const DBGStackTraceItem* frame;
 *         while (frames->Next(1, &frame, NULL) == 0) Print(frame->module, frame->symbol, frame->line);
 *         frames->Release();
 *     }
 *     UtilDebugHelpJobClose(job);
 * @endcode
 */
#ifndef VXUT_UTIL_DEBUG_HELP_H
#define VXUT_UTIL_DEBUG_HELP_H

#include "util/types.h"

#include <windows.h>

#include <objbase.h>

/** A job. UtilDebugHelpJobClose() frees it. */
typedef struct UtilDebugHelpRecord* HUTILDEBUGHELP;

/** Options of UtilDebugHelpSetOption(). */
#define UTIL_DEBUGHELP_MOST_FRAMES 1 /**< how many frames are walked at most; default 100 */
#define UTIL_DEBUGHELP_USE_THREAD 2  /**< not 0: the work is done on the job's thread; default 1 */
#define UTIL_DEBUGHELP_FRAME_MODE 3  /**< UTIL_DEBUGHELP_FRAME_*, added; default 1 */

/** Values of UTIL_DEBUGHELP_FRAME_MODE. Without one of the first two, frames have an address and a module
 *  only, and no symbols are loaded. */
#define UTIL_DEBUGHELP_FRAME_SYMBOLS 1    /**< symbols, source lines, parameters, locals */
#define UTIL_DEBUGHELP_FRAME_ARGUMENTS 2  /**< the same; values that are not found come from the stack */
#define UTIL_DEBUGHELP_FRAME_OWN_THREAD 4 /**< the walk runs on one more thread, not on the walked one */

/** A loaded module. Texts are in the system's code page. */
typedef struct DBGModuleItem {
    uint32_t size; /**< of this record; do not use one of another size */
    char path[260];
    char name[260];      /**< of the file, with extension */
    char symbolType[36]; /**< kind of its symbols, such as "PDB"; "-unknown-" if there are none */
    uint64_t base;
    uint32_t imageSize;
    char fileVersion[64];
    char company[64];
    char productVersion[132];
} DBGModuleItem;

/** A parameter or local variable of a frame. */
typedef struct DBGStackTraceValue {
    /** 0: unsigned 32-bit, 1: unsigned 64-bit, 2: 32-bit, decimal, 3: signed 64-bit, 4: floating, 5: pointer
     * to narrow text, 6 and 7: pointer to wide text, 8: pointer; others: 32-bit, hexadecimal. A text of type
     * 6 that begins with "@@@<" belongs to the list and describes a value that is not shown. */
    uint32_t type;
    uint8_t isLocal; /**< 0 for a parameter */
    uint8_t reserved1[3];
    union {
        uint64_t bits;
        int64_t integer;
        double floating;
    } value;
    char name[56];
    uint8_t isFilled; /**< 0 if the value could not be read */
    uint8_t reserved2[7];
} DBGStackTraceValue;

/** A frame of a stack. */
typedef struct DBGStackTraceItem {
    uint32_t size;         /**< of this record; do not use one of another size */
    int32_t isCall;        /**< 1 if the frame was taken without symbols */
    uint64_t address;      /**< of the next instruction */
    char symbol[1024];     /**< as it is stored; empty if there is none */
    char name[1024];       /**< undecorated, without parameters */
    char fullName[1024];   /**< undecorated, in full */
    uint64_t displacement; /**< of the address from the symbol */
    uint32_t reserved1;
    uint32_t line;
    char file[1288]; /**< source file; empty if it is not known */
    uint64_t moduleBase;
    char module[1024];
    uint32_t valueCount; /**< at most 50 */
    uint32_t reserved2;
    DBGStackTraceValue values[50]; /**< parameters, then locals */
} DBGStackTraceItem;

#ifdef __cplusplus

/** The modules of the process, in the order in which the system names them. A list stays valid after its job
 * is closed. Its items belong to it. It is used by one thread at a time. */
struct IDBGModuleList : public IUnknown {
    /** Stores up to count items. fetched, which receives their number, may be null. Returns 0 if there was
     * one at least, else 1. */
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, const DBGModuleItem** items, ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0; /**< Leaves out items. Returns 0. */
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;           /**< Starts again. Returns 0. */
    /** Makes a copy in the same position, with items of its own. Returns 0 if it succeeds. */
    virtual HRESULT STDMETHODCALLTYPE Clone(IDBGModuleList** list) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) = 0; /**< of all items. Returns 0. */
    virtual void STDMETHODCALLTYPE Destroy() = 0;                 /**< For the library: call Release(). */

protected:
    ~IDBGModuleList() = default;
};

/** The frames of a stack, the innermost first. As IDBGModuleList otherwise. */
struct IDBGStackTraceList : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, const DBGStackTraceItem** items, ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IDBGStackTraceList** list) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) = 0;
    virtual void STDMETHODCALLTYPE Destroy() = 0;

protected:
    ~IDBGStackTraceList() = default;
};

#else

/* The same for C: list->lpVtbl->Next(list, 1, &item, NULL). */
typedef struct IDBGModuleList IDBGModuleList;
typedef struct IDBGStackTraceList IDBGStackTraceList;

#define VXUT_DBG_LIST_METHODS(Interface, Item)                                                           \
    HRESULT(STDMETHODCALLTYPE* QueryInterface)(Interface * list, REFIID id, void** object);              \
    ULONG(STDMETHODCALLTYPE* AddRef)(Interface * list);                                                  \
    ULONG(STDMETHODCALLTYPE* Release)(Interface * list);                                                 \
    HRESULT(STDMETHODCALLTYPE* Next)(Interface * list, ULONG count, const Item** items, ULONG* fetched); \
    HRESULT(STDMETHODCALLTYPE* Skip)(Interface * list, ULONG count);                                     \
    HRESULT(STDMETHODCALLTYPE* Reset)(Interface * list);                                                 \
    HRESULT(STDMETHODCALLTYPE* Clone)(Interface * list, Interface * *copy);                              \
    HRESULT(STDMETHODCALLTYPE* GetCount)(Interface * list, ULONG * count);                               \
    void(STDMETHODCALLTYPE * Destroy)(Interface * list);

typedef struct IDBGModuleListVtbl {
    VXUT_DBG_LIST_METHODS(IDBGModuleList, DBGModuleItem)
} IDBGModuleListVtbl;
struct IDBGModuleList {
    const IDBGModuleListVtbl* lpVtbl;
};

typedef struct IDBGStackTraceListVtbl {
    VXUT_DBG_LIST_METHODS(IDBGStackTraceList, DBGStackTraceItem)
} IDBGStackTraceListVtbl;
struct IDBGStackTraceList {
    const IDBGStackTraceListVtbl* lpVtbl;
};

#endif

/** Opens a job. Waits up to five seconds for another job, or for another component that holds the lock of
 *  UtilGetDBGHELPThreadingCS(); the calling thread holds that lock until the job is closed.
 *
 *  @return the job, whose calls fail if the lock or dbghelp.dll could not be had; null if memory ran out.
 */
VXUT_API HUTILDEBUGHELP UtilDebugHelpJobOpen(void);

/** Closes a job, on the thread that opened it. */
VXUT_API void UtilDebugHelpJobClose(HUTILDEBUGHELP job);

/** Sets an option, UTIL_DEBUGHELP_*. It applies from the next call on. Others are stored without effect. */
VXUT_API void UtilDebugHelpSetOption(HUTILDEBUGHELP job, uint32_t option, uint32_t value);

/** Walks a stack.
 *
 *  @param list     receives the frames, which the caller releases; null after a failure.
 *  @param context  where the walk starts, a CONTEXT of the process's own kind: that of a fault, or of a
 * thread that is suspended. Null: the stack of the caller.
 *  @return 1, or 0 after a failure.
 */
VXUT_API int UtilDebugHelpGetStackTrace(HUTILDEBUGHELP job, IDBGStackTraceList** list,
                                        const CONTEXT* context);

/** Lists the modules of the process.
 *
 *  @param list  receives the modules, which the caller releases; null after a failure.
 *  @return 1, or 0 after a failure.
 */
VXUT_API int UtilDebugHelpGetModuleList(HUTILDEBUGHELP job, IDBGModuleList** list);

/** Writes a minidump of the process and packs it, together with the log files of the last ten minutes, into
 * "Velmora.dmp.zip" in the folder of the dump, which is then deleted. The kind of dump is set in the registry
 * (key "Software\Velmora" of the user, value GPFMiniDumpMode, a number as MiniDumpWriteDump() takes it).
 *
 * The library VLMRCTL shows the progress and decides before each step whether to go on. Without it the
 * archive stays empty unless UtilExHandlerSetOption() has allowed the contrary. A log that grows holds the
 * call up for as long as it grows.
 *
 *  @param fileName    the path of the dump. If it is empty, a temporary file is used. Receives the path of
 * the archive, or that of the dump if the packing was stopped, cut to the size.
 *  @param size        of fileName, in units.
 *  @param exception   the exception that is reported, of the calling thread; null if there is none.
 *  @return 1, or 0 if the dump could not be written.
 */
VXUT_API int UtilDebugHelpWriteMiniDump(HUTILDEBUGHELP job, wchar_t* fileName, uint32_t size,
                                        EXCEPTION_POINTERS* exception);

#endif
